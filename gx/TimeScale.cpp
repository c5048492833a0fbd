#include "gx/TimeScale.h"

#include <QtMath>

#include <QDate>
#include <QDateTime>
#include <QFontMetrics>
#include <QPainter>
#include <QStringList>
#include <algorithm>
#include <climits>

#include "data/ScaleEngine.h"
#include "gui/PFChartWidget.h"
#include "gx/FigurePicture.h"
#include "gx/ts/Date.h"
#include "module/CModule.h"
#include "module/FontManager.h"
#include "util/QtCompat.h"

namespace gx {

namespace {

// Font element and point size of the labels when the scale has no widget to take them from.
const int kFontElement = 12;
const int kFontPointSize = 8;

// Free pixels kept between two labels of a row.
const int kLabelGap = 4;
// Tick lengths below the top border: band boundaries of the coarse row, of the fine row.
const int kCoarseTick = 4;
const int kFineTick = 2;

const std::int64_t kTimeMin = INT32_MIN;
const std::int64_t kTimeMax = INT32_MAX;

std::int32_t ToTime32(long t) {
    return static_cast<std::int32_t>(std::max<std::int64_t>(kTimeMin, std::min<std::int64_t>(kTimeMax, t)));
}

int ClampToInt(std::int64_t v) {
    return static_cast<int>(std::max<std::int64_t>(INT_MIN, std::min<std::int64_t>(INT_MAX, v)));
}

std::int64_t FloorDiv(std::int64_t a, std::int64_t b) {
    std::int64_t q = a / b;
    if (a % b != 0 && ((a < 0) != (b < 0))) --q;
    return q;
}

// Labels are in UTC: the terminal runs with TZ=GST0.
QDateTime Utc(std::int64_t t) { return QDateTime::fromSecsSinceEpoch(t, Qt::UTC); }

// The calendar unit a row of labels marks the boundaries of.
enum Unit { kSeconds, kDays, kMonths, kYears };

// Label steps per unit, finest first. Seconds steps divide a day, so their bands start at
// midnight; day steps are counted within the month (days 1, 6, 11 ... for a step of 5). A
// fine row never steps as far as the unit of the coarse row under it.
const int kSecondSteps[] = {60, 120, 300, 600, 900, 1800, 3600, 7200, 10800, 21600, 43200};
const int kDaySteps[] = {1, 2, 5, 10, 15};
const int kMonthSteps[] = {1, 2, 3, 6};
const int kYearSteps[] = {1, 2, 5, 10, 20, 50, 100};

struct Ladder {
    const int* steps;
    int size;
    double unitSeconds;  // mean length of one unit, for the density estimate
};

Ladder LadderOf(Unit unit) {
    switch (unit) {
    case kSeconds: return {kSecondSteps, int(sizeof kSecondSteps / sizeof *kSecondSteps), 1.0};
    case kDays: return {kDaySteps, int(sizeof kDaySteps / sizeof *kDaySteps), 86400.0};
    case kMonths: return {kMonthSteps, int(sizeof kMonthSteps / sizeof *kMonthSteps), 2629746.0};
    case kYears: break;
    }
    return {kYearSteps, int(sizeof kYearSteps / sizeof *kYearSteps), 31556952.0};
}

// The band of `step` units that time t falls into. Keys grow with the time, so a band
// boundary lies wherever two neighbouring positions have different keys.
std::int64_t BandKey(std::int64_t t, Unit unit, int step) {
    if (unit == kSeconds) return FloorDiv(t, step);
    const ts::CivilDay d = ts::Date::CivilDayOf(t);
    const std::int64_t month = d.year * 12 + d.month - 1;
    switch (unit) {
    case kDays: return month * 32 + (d.day - 1) / step;
    case kMonths: return FloorDiv(month, step);
    default: return FloorDiv(d.year, step);
    }
}

// Time bands of an intraday span of under 15 days: above `above` seconds the labels start
// at `step` seconds. The coarsest band shows the hour only; a span of one hour or less is the
// finest band.
struct TimeBand {
    std::int64_t above;
    int step;
};
const TimeBand kTimeBands[] = {{259200, 43200}, {129600, 21600}, {43200, 10800}, {21600, 3600},
                               {10800, 1800},   {3600, 900},     {INT64_MIN, 60}};

// One row of labels: the boundaries it marks, its label format, where its text stands and
// how long its ticks are.
struct Row {
    Unit unit = kDays;
    int step = 1;
    QString format;
    int textTop = 0;
    int tickLength = kCoarseTick;
    bool viaDate = false;  // drawn by ts::Date::Draw2 with `threshold`
    int threshold = 0;
};

// Draws the rows of labels for the visible positions first .. last. Nothing here touches a
// position outside that range, except the one just before it to tell whether the first
// visible position starts a band.
class LabelWriter {
public:
    LabelWriter(QPainter& painter, const std::vector<std::int32_t>& times, const pf::ScaleEngine& engine,
                int first, int last, const QRect& strip, TextCache& cache)
        : painter_(painter), cache_(cache), times_(times), engine_(engine), first_(first), last_(last),
          strip_(strip) {
        const int columns = engine.GetColumnCount();
        half_ = static_cast<int>(engine.GetXStep(static_cast<float>(columns)) / 2);
        textHeight_ = Measure(QStringLiteral("0")).height();
        // Labels stand right of their tick, as ts::Date::Draw2 places them.
        offset_ = textHeight_ - 1 + 6;
        from_ = Utc(times_[std::size_t(first_)]);
        to_ = Utc(times_[std::size_t(last_)]);
    }

    const QDateTime& From() const { return from_; }
    const QDateTime& To() const { return to_; }
    int TextHeight() const { return textHeight_; }

    // The x of a position: its column's left edge plus half a column.
    int X(int position) const {
        return ClampToInt(std::int64_t(engine_.GetLeft()) + engine_.TranslateX(position - engine_.GetFirstColumn()) +
                          half_);
    }

    // Picks the row's step and format from `formats` (longest first): the smallest step, not
    // below the row's base step, at which labels of the shortest format are expected not to
    // crowd each other, and the longest format that needs no larger step. Positions are not
    // evenly spaced in time, so this is an estimate and DrawRow still checks every label.
    // False for an optional row that would crowd even at its largest step.
    bool Plan(Row& row, const QStringList& formats, bool optional) const {
        int step = StepFor(row.unit, row.step, formats.back());
        if (step < 0) {
            if (optional) return false;
            const Ladder ladder = LadderOf(row.unit);
            step = ladder.steps[ladder.size - 1];
        }
        row.format = formats.back();
        for (const QString& format : formats) {
            const int needs = StepFor(row.unit, row.step, format);
            if (needs >= 0 && needs <= step) {
                row.format = format;
                break;
            }
        }
        row.step = step;
        return true;
    }

    void DrawRow(const Row& row) const {
        // Candidates: the first visible position, and every position that starts a band.
        std::vector<int> positions;
        std::vector<bool> starts;
        std::int64_t previous = first_ > 0 ? BandKey(times_[std::size_t(first_ - 1)], row.unit, row.step) : 0;
        for (int p = first_; p <= last_; ++p) {
            const std::int64_t key = BandKey(times_[std::size_t(p)], row.unit, row.step);
            const bool start = p == 0 || key != previous;
            if (start || p == first_) {
                positions.push_back(p);
                starts.push_back(start);
            }
            previous = key;
        }

        int previousRight = INT_MIN;
        for (std::size_t i = 0; i < positions.size(); ++i) {
            const int tick = X(positions[i]);
            if (starts[i]) painter_.drawLine(tick, strip_.top() + 1, tick, strip_.top() + row.tickLength);

            const QDateTime date = Utc(times_[std::size_t(positions[i])]);
            const QString text = date.toString(row.format);
            const QRect box(QPoint(tick + offset_, row.textTop), Measure(text));
            // A band cut by the left edge is labelled only when the label ends before the
            // next one begins; a band start may run further (the next label then gives way).
            int limit = strip_.right();
            if (!starts[i] && i + 1 < positions.size())
                limit = ClampToInt(std::min<std::int64_t>(std::int64_t(X(positions[i + 1])) + offset_ - kLabelGap - 1,
                                                          limit));
            if (box.right() > limit || box.left() < strip_.left()) continue;
            // Never over the previous label of the row.
            if (std::int64_t(box.left()) - previousRight <= kLabelGap) continue;

            if (row.viaDate) {
                // Date::Draw2 draws when right - left exceeds the text width; this `right`
                // makes that the same test as box.right() <= limit.
                const int right = ClampToInt(std::int64_t(limit) - offset_ + 2);
                if (!ts::Date::Draw2(painter_, date, from_, to_, tick, row.textTop - 3, right, row.threshold)) continue;
            } else {
                painter_.drawStaticText(box.topLeft(), cache_.Get(text, painter_.font()));
            }
            previousRight = box.right();
        }
    }

private:
    // The text's size as laid out once for the painter's font.
    QSize Measure(const QString& text) const {
        const QSizeF size = cache_.Get(text, painter_.font()).size();
        return QSize(qCeil(size.width()), qCeil(size.height()));
    }

    // The smallest ladder step from `base` on whose mean pixel spacing over the visible span
    // holds a label of `format`; -1 when none does. Every step does when the span has no
    // width in pixels or in time.
    int StepFor(Unit unit, int base, const QString& format) const {
        const Ladder ladder = LadderOf(unit);
        const double pixels = double(X(last_)) - X(first_);
        const double seconds = double(times_[std::size_t(last_)]) - times_[std::size_t(first_)];
        // Month names differ in width: measure the first visible date and a wide one.
        static const QDateTime wide(QDate(2000, 9, 28), QTime(23, 58), Qt::UTC);
        const int text = std::max(Measure(from_.toString(format)).width(), Measure(wide.toString(format)).width());
        const double needed = pixels > 0 && seconds > 0 ? (text + offset_ + kLabelGap) * seconds / pixels : 0;
        for (int i = 0; i < ladder.size; ++i)
            if (ladder.steps[i] >= base && ladder.steps[i] * ladder.unitSeconds >= needed) return ladder.steps[i];
        return -1;
    }

    QPainter& painter_;
    TextCache& cache_;
    const std::vector<std::int32_t>& times_;
    const pf::ScaleEngine& engine_;
    int first_;
    int last_;
    QRect strip_;
    int half_ = 0;
    int textHeight_ = 0;
    int offset_ = 0;
    QDateTime from_;
    QDateTime to_;
};

}  // namespace

TimeScale::TimeScale(PFChartWidget* widget, const boost::shared_ptr<pf::ScaleEngine>& engine, unsigned int color)
    : widget_(widget),
      background_(255, 255, 255),
      text_(150, 150, 150),
      grid_(QColor(static_cast<QRgb>(color))),
      engine_(engine) {
    if (widget_) {
        background_ = widget_->GetTSBackgroundColor();
        text_ = widget_->GetTimeScaleFontColor();
        grid_ = widget_->GetTSGridColor();
        font_ = widget_->GetAreasFont();
    } else {
        const CModule* module = CModule::Current();
        const QString family = module ? module->getFont(static_cast<font::elementCode>(kFontElement))
                                      : QString::fromLatin1("Arial");
        font_ = QFont(family, kFontPointSize);
    }
    // Room for two rows of labels; the height stays when the font changes later.
    rect_.setHeight(2 * pf::FontHeight(QFontMetrics(font_)) + 9);
}

void TimeScale::Resize() {
    const int height = rect_.height();
    if (widget_) {
        // Full width, ending on the pixel row just above the time scroll bar.
        const int bottom = widget_->GetTimeScrollBarTop() - 1;
        rect_ = QRect(0, bottom - height + 1, widget_->width(), height);
    } else if (engine_) {
        // Without a window (drawing into an image, printing) the strip lies directly under
        // its engine's area, as wide as the area before the engine's 2-pixel insets.
        rect_ = QRect(engine_->GetLeft() - 2, engine_->GetBottom() + 1,
                      engine_->GetRight() - engine_->GetLeft() + 5, height);
    }
}

void TimeScale::SetFont(const QFont& font) { font_ = font; }

void TimeScale::SetFormat(char periodType) { dateOnly_ = periodType != 'I'; }

void TimeScale::SetColors(const QColor& background, const QColor& text, const QColor& grid) {
    background_ = background;
    text_ = text;
    grid_ = grid;
}

void TimeScale::AddTime(long time) { times_.push_back(ToTime32(time)); }

void TimeScale::DelTime(int index) {
    if (index < 0 || index >= Count()) return;
    times_.erase(times_.begin() + index);
}

void TimeScale::SetTime(int index, long time) {
    if (index < 0 || index >= Count()) return;
    times_[std::size_t(index)] = ToTime32(time);
}

int TimeScale::GetPointPos(const QPoint& point) const {
    if (!engine_) return 0;
    const int column = engine_->UnTranslateX(ClampToInt(std::int64_t(point.x()) - engine_->GetLeft()));
    return ClampToInt(std::int64_t(engine_->GetFirstColumn()) + column - 1);
}

long TimeScale::GetPointTime(const QPoint& point) const {
    if (times_.empty()) return 0;
    const int index = std::max(0, std::min(GetPointPos(point), Count() - 1));
    return times_[std::size_t(index)];
}

int TimeScale::GetTimePos(long time, eDateType type) const {
    const int count = Count();
    if (count == 0) return 0;
    int low = -1;
    int high = count;
    // While high - low >= 2 the probe lies strictly between them.
    const auto probeOf = [](int lo, int hi) { return lo + static_cast<int>((double(hi) - lo) * 0.5 + 0.5); };

    if (type <= DateHour) {
        // Ceiling: the first position whose time is not below `time`.
        while (high > low + 1) {
            const int probe = probeOf(low, high);
            if (times_[std::size_t(probe)] >= time)
                high = probe;
            else
                low = probe;
        }
        return high == count ? count - 1 : high;
    }

    // Floor: the last position whose time is not above `time`; the first one when all are.
    while (high > low + 1) {
        const int probe = probeOf(low, high);
        const long at = times_[std::size_t(probe)];
        if (at == time) return probe;
        if (probe == 0) return 0;
        if (time > at) {
            low = probe;
        } else if (time > times_[std::size_t(probe - 1)]) {
            return probe - 1;
        } else {
            high = probe;
        }
    }
    return std::max(low, 0);
}

int TimeScale::GetVirtualTimePos(long time, eDateType type, int stepSeconds) const {
    const int count = Count();
    if (count == 0) return 0;
    const std::int64_t last = times_.back();
    if (time <= last || stepSeconds <= 0) return GetTimePos(time, type);
    // The first step at or past the time, as gx::Line::GetTimeVirtualIndex counts.
    const std::int64_t target = std::min<std::int64_t>(time, kTimeMax);
    const std::int64_t steps = (target - last + stepSeconds - 1) / stepSeconds;
    return ClampToInt(count - 1 + steps);
}

QByteArray TimeScale::Key() const {
    QByteArray key;
    PictureCache::Append(key, rect_);
    PictureCache::Append(key, background_.rgba64());
    PictureCache::Append(key, text_.rgba64());
    PictureCache::Append(key, grid_.rgba64());
    PictureCache::Append(key, dateOnly_);
    key.append(font_.key().toUtf8()).append('\0');
    if (!engine_) return key;
    // What the labels read of the engine, and the times of the visible positions and of the
    // one before them.
    const pf::ScaleEngine& e = *engine_;
    PictureCache::AppendColumns(key, e);
    PictureCache::Append(key, e.GetFirstColumn());
    const std::int64_t first = std::max<std::int64_t>(std::int64_t(e.GetFirstColumn()) - 1, 0);
    const std::int64_t end = std::min<std::int64_t>(std::int64_t(e.GetFirstColumn()) + e.GetColumnCount(), Count());
    if (first < end)
        key.append(reinterpret_cast<const char*>(times_.data() + first), int((end - first) * sizeof(std::int32_t)));
    return key;
}

void TimeScale::Draw(QPainter& painter) const {
    if (rect_.isEmpty()) return;
    // The strip is cut by the painter's clip: a picture of it stands only for an uncut one.
    if (FigurePicture::Enabled() && !painter.hasClipping()) {
        // Glyphs reach at most about a label's height past the strip.
        const int margin = 2 * QFontMetrics(font_, painter.device()).height() + 8;
        if (pictures_.DrawKept(painter, rect_, margin, Key(), background_, [this](QPainter& p) { DrawStrip(p); }))
            return;
    }
    pictures_.Clear();
    DrawStrip(painter);
}

void TimeScale::DrawStrip(QPainter& painter) const {
    painter.save();
    painter.setClipRect(rect_, Qt::IntersectClip);
    painter.fillRect(rect_, background_);
    painter.setPen(grid_);
    painter.drawLine(rect_.left(), rect_.top(), rect_.right(), rect_.top());

    // Only the visible positions are labelled: the engine's first column and the columns
    // it shows, as far as this scale holds times for them.
    const int count = Count();
    const int columns = engine_ ? engine_->GetColumnCount() : 0;
    if (count == 0 || columns <= 0) {
        painter.restore();
        return;
    }
    const std::int64_t engineFirst = engine_->GetFirstColumn();
    const int first = ClampToInt(std::max<std::int64_t>(engineFirst, 0));
    const int last = ClampToInt(std::min<std::int64_t>(engineFirst + columns - 1, count - 1));
    if (first > last) {
        painter.restore();
        return;
    }

    painter.setFont(font_);
    painter.setPen(text_);
    LabelWriter writer(painter, times_, *engine_, first, last, rect_, labels_);
    const qint64 days = writer.From().daysTo(writer.To());
    const qint64 seconds = writer.From().secsTo(writer.To());

    // The span picks a coarse row (the wider unit) and, where it helps, a fine row inside it.
    Row coarse;
    QStringList coarseFormats;
    Row fine;
    QStringList fineFormats;
    if (days < 15) {
        coarse.unit = kDays;
        coarseFormats = QStringList{QStringLiteral("dd MMM yyyy"), QStringLiteral("dd MMM")};
        if (!dateOnly_) {
            std::size_t band = 0;
            while (seconds <= kTimeBands[band].above) ++band;
            fine.unit = kSeconds;
            fine.step = kTimeBands[band].step;
            // The hour alone in the coarsest band; elsewhere the minutes too, with the hour
            // alone as the short form when the steps are whole hours.
            if (band == 0)
                fineFormats = QStringList{QStringLiteral("hh")};
            else if (fine.step >= 3600)
                fineFormats = QStringList{QStringLiteral("hh:mm"), QStringLiteral("hh")};
            else
                fineFormats = QStringList{QStringLiteral("hh:mm")};
        }
    } else if (days - 15 > 184) {
        coarse.unit = kYears;
        coarseFormats = QStringList{QStringLiteral("yyyy")};
        if (days <= 699) {
            fine.unit = kMonths;
            fineFormats = QStringList{QStringLiteral("MMMM yyyy"), QStringLiteral("MMM yyyy")};
        }
    } else {
        coarse.unit = kMonths;
        coarseFormats = QStringList{QStringLiteral("MMMM yyyy"), QStringLiteral("MMM yyyy")};
        if (days <= 69) {
            fine.unit = kDays;
            if (days < 40) {
                fineFormats = QStringList{QStringLiteral("dd.MM")};
                fine.viaDate = true;
                fine.threshold = static_cast<int>(days);
            } else {
                fineFormats = QStringList{QStringLiteral("dd MMM")};
            }
        }
    }

    writer.Plan(coarse, coarseFormats, false);
    const bool hasFine = !fineFormats.isEmpty() && writer.Plan(fine, fineFormats, true);
    const int height = writer.TextHeight();
    if (hasFine) {
        // Two rows: the fine labels on top, the coarse ones under them.
        fine.textTop = rect_.top() + 3;
        fine.tickLength = kFineTick;
        coarse.textTop = rect_.top() + height + 6;
    } else {
        // One row, its baseline at the middle of the strip plus five pixels.
        const int baseline = rect_.top() + rect_.height() / 2 + 5;
        coarse.textTop = std::max(rect_.top() + 3, baseline - painter.fontMetrics().ascent());
    }
    writer.DrawRow(coarse);
    if (hasFine) writer.DrawRow(fine);
    painter.restore();
}

}  // namespace gx
