#include "host/StudyGestures.h"

#include <QApplication>
#include <QDateTime>
#include <QLabel>
#include <QMouseEvent>
#include <QPointer>
#include <QStringList>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "host/ChartWindows.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/ls/StudyGeometry.h"

namespace host {

namespace {

// Moves of the mouse between two control points: the rubber band follows each.
const int kBandSteps = 4;
// Extra clicks at the last point for a study that wants more points than were given.
const int kMaxExtraClicks = 10;

bool fail(std::string* error, const std::string& why) {
    if (error) *error = why;
    return false;
}

// Sends one mouse event to the widget under `point`, as Qt delivers it.
void mouse(QWidget* chart, QEvent::Type type, const QPoint& point, Qt::MouseButton button, Qt::MouseButtons buttons) {
    QWidget* found = chart->childAt(point);
    QPointer<QWidget> target(found ? found : chart);
    QMouseEvent event(type, target->mapFrom(chart, point), chart->mapToGlobal(point), button, buttons, Qt::NoModifier);
    QApplication::sendEvent(target, &event);
}

// What the status bar shows with the mouse resting at `point`: empty texts outside an area.
struct Reading {
    bool inside;
    std::int64_t time;
    double price;
};

Reading read(Emulator& emulator, QWidget* chart, const QPoint& point) {
    QLabel* time = emulator.mainWindow().timeLabel();
    QLabel* price = emulator.mainWindow().priceLabel();
    time->clear();
    price->clear();
    mouse(chart, QEvent::MouseMove, point, Qt::NoButton, Qt::NoButton);
    Reading r{false, 0, 0.0};
    const QDateTime when = QDateTime::fromString(time->text(), QStringLiteral("dd.MM.yyyy hh:mm:ss"));
    bool ok = false;
    r.price = price->text().toDouble(&ok);
    if (!when.isValid() || !ok) return r;
    r.inside = true;
    r.time = QDateTime(when.date(), when.time(), Qt::UTC).toSecsSinceEpoch();
    return r;
}

}  // namespace

bool StudyPixel(Emulator& emulator, void* widget, const StudyPoint& point, QPoint* at, std::string* error) {
    QWidget* chart = emulator.charts().chartWidget(widget);
    if (!chart) return fail(error, "not a chart window");
    // What a person reads off a window is what it shows: a window not painted yet has no
    // price scale, so it is drawn first.
    chart->grab();
    // The first area: the first run of rows, down the middle, where the status bar reads.
    const int middle = chart->width() / 2;
    int top = -1, bottom = -1;
    for (int y = 0; y < chart->height(); ++y) {
        const bool inside = read(emulator, chart, QPoint(middle, y)).inside;
        if (inside && top < 0) top = y;
        if (inside) bottom = y;
        if (!inside && top >= 0) break;
    }
    if (top < 0) return fail(error, "the status bar shows no time and price over the window");
    // The column: the last one whose time is not after the point's. Times the status bar
    // shows nowhere are out of view.
    const int row = (top + bottom) / 2;
    int best = -1, bestEnd = -1;
    std::int64_t bestTime = std::numeric_limits<std::int64_t>::min();
    std::int64_t earliest = std::numeric_limits<std::int64_t>::max(), latest = earliest;
    // Runs of pixels that show one time: the columns' widths.
    std::vector<int> widths;
    int runStart = -1;
    std::int64_t runTime = 0;
    for (int x = 0; x <= chart->width(); ++x) {
        const Reading r = x < chart->width() ? read(emulator, chart, QPoint(x, row)) : Reading{false, 0, 0.0};
        if (runStart >= 0 && (!r.inside || r.time != runTime)) {
            widths.push_back(x - runStart);
            runStart = -1;
        }
        if (!r.inside) continue;
        if (runStart < 0) {
            runStart = x;
            runTime = r.time;
        }
        earliest = std::min(earliest, r.time);
        latest = latest == std::numeric_limits<std::int64_t>::max() ? r.time : std::max(latest, r.time);
        if (r.time <= point.time && r.time > bestTime) {
            bestTime = r.time;
            best = bestEnd = x;
        } else if (r.time == bestTime && bestEnd == x - 1) {
            bestEnd = x;
        }
    }
    // The middle of the column; the last column's time also covers the free space after it,
    // so a run much wider than the usual column is taken from its start. Such a run shows
    // that the data's end is in view: later times belong to its last column.
    std::sort(widths.begin(), widths.end());
    const int usual = widths.empty() ? 1 : std::max(1, widths[widths.size() / 2]);
    const bool wide = best >= 0 && bestEnd - best + 1 > usual + usual / 2;
    if (best < 0 || (point.time > latest && !wide)) {
        const auto text = [](std::int64_t t) {
            return QDateTime::fromSecsSinceEpoch(t, Qt::UTC).toString(QStringLiteral("dd.MM.yyyy hh:mm:ss")).toStdString();
        };
        if (latest == std::numeric_limits<std::int64_t>::max())
            return fail(error, "the status bar shows no time along the first area");
        return fail(error, "the time " + text(point.time) + " is not in view (the first area shows " + text(earliest) +
                               " to " + text(latest) + ")");
    }
    const int x = wide ? best + usual / 2 : (best + bestEnd) / 2;
    // The row whose price is nearest; the middle of rows that read the same.
    int y0 = -1, y1 = -1;
    double bestDistance = std::numeric_limits<double>::max();
    for (int y = top; y <= bottom; ++y) {
        const Reading r = read(emulator, chart, QPoint(x, y));
        if (!r.inside) continue;
        const double d = std::fabs(r.price - point.price);
        if (d < bestDistance) {
            bestDistance = d;
            y0 = y1 = y;
        } else if (d == bestDistance && y1 == y - 1) {
            y1 = y;
        }
    }
    if (y0 < 0) return fail(error, "the status bar shows no price at that time");
    *at = QPoint(x, (y0 + y1) / 2);
    return true;
}

bool StudyClicks(const std::string& name, const std::vector<StudyPoint>& points, std::vector<StudyPoint>* clicks,
                 std::string* error) {
    ls::StudyKind kind;
    if (!ls::kindFromName(name, &kind)) {
        std::string known;
        for (const std::string& n : ls::studyNames()) known += (known.empty() ? "\"" : ", \"") + n + "\"";
        return fail(error, "no study named \"" + name + "\" (studies: " + known + ")");
    }
    const std::size_t n = points.size();
    std::size_t least = std::size_t(ls::controlPointCount(kind)), most = least;
    if (kind == ls::StudyKind::Pitchfork) least = most = 3;  // the fourth handle is the host's
    if (kind == ls::StudyKind::Chanel) least = 3;
    if (kind == ls::StudyKind::PolyLine) least = 2;
    if (n < least || n > most)
        return fail(error, "\"" + name + "\" takes " + std::to_string(least) +
                               (least == most ? "" : " to " + std::to_string(most)) + " points, not " +
                               std::to_string(n));
    *clicks = points;
    if (kind == ls::StudyKind::Chanel && n == 3) clicks->insert(clicks->begin() + 1, points[1]);
    return true;
}

namespace {

// The clicks of a placement; `pixelOf(k)` names where click k lands, asked just before it
// (the chart may rescale its prices as the study's points arrive).
bool place(Emulator& emulator, void* widget, const std::string& name, std::size_t clicks,
           const std::function<bool(std::size_t, QPoint*)>& pixelOf, std::int32_t* id, std::string* error) {
    QPointer<QWidget> chart(emulator.charts().chartWidget(widget));
    if (!chart) return fail(error, "not a chart window");
    if (clicks == 0) return fail(error, "no points to click");
    LineStudies& studies = emulator.studies();
    const std::vector<std::int32_t> before = studies.ids();
    const int ended = studies.endedDrawing();
    if (!ls::kindFromName(name, nullptr)) return fail(error, "no study named \"" + name + "\"");
    const bool poly = name == "PolyLine";
    QPoint from;
    bool chosen = false;
    for (std::size_t k = 0; k < clicks && chart; ++k) {
        QPoint to;
        if (!pixelOf(k, &to)) {
            studies.clearTool();
            // A study half placed goes, as Escape takes it.
            if (chosen && chart) emulator.charts().pressKey(widget, Qt::Key_Escape);
            return false;
        }
        if (!chosen) {
            // The tool is chosen once the first point is found: the probes before it are
            // plain mouse moves.
            studies.chooseTool(name);
            chosen = true;
            from = to;
        }
        for (int s = 1; s <= kBandSteps && chart; ++s)
            mouse(chart, QEvent::MouseMove, from + (to - from) * s / kBandSteps, Qt::NoButton, Qt::NoButton);
        if (!chart) break;
        mouse(chart, QEvent::MouseButtonPress, to, Qt::LeftButton, Qt::LeftButton);
        if (chart) mouse(chart, QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
        from = to;
    }
    // A polyline ends early with a double click on its last point (Qt's order: press,
    // release, double click, release).
    if (poly && chart && studies.endedDrawing() == ended) {
        mouse(chart, QEvent::MouseButtonDblClick, from, Qt::LeftButton, Qt::LeftButton);
        if (chart) mouse(chart, QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
    }
    // A study that takes more points than were given (the pitchfork's fourth handle is the
    // host's, yet clicked) has them at the last one.
    for (int i = 0; i < kMaxExtraClicks && chart && studies.endedDrawing() == ended; ++i) {
        mouse(chart, QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        if (chart) mouse(chart, QEvent::MouseButtonRelease, from, Qt::LeftButton, Qt::NoButton);
    }
    studies.clearTool();
    std::int32_t made = 0;
    for (std::int32_t i : studies.ids())
        if (std::find(before.begin(), before.end(), i) == before.end()) made = i;
    if (!made) return fail(error, "the chart created no \"" + name + "\" study");
    if (studies.endedDrawing() == ended) return fail(error, "the chart did not finish the \"" + name + "\" study");
    if (id) *id = made;
    return true;
}

}  // namespace

bool PlaceStudy(Emulator& emulator, void* widget, const std::string& name, const std::vector<StudyPoint>& points,
                std::int32_t* id, std::string* error) {
    std::vector<StudyPoint> clicks;
    if (!StudyClicks(name, points, &clicks, error)) return false;
    // Every point must be in view before anything is clicked.
    for (const StudyPoint& p : clicks) {
        QPoint at;
        if (!StudyPixel(emulator, widget, p, &at, error)) return false;
    }
    return place(
        emulator, widget, name, clicks.size(),
        [&](std::size_t k, QPoint* at) { return StudyPixel(emulator, widget, clicks[k], at, error); }, id, error);
}

bool PlaceStudyAt(Emulator& emulator, void* widget, const std::string& name, const std::vector<QPoint>& pixels,
                  std::int32_t* id, std::string* error) {
    return place(
        emulator, widget, name, pixels.size(),
        [&](std::size_t k, QPoint* at) {
            *at = pixels[k];
            return true;
        },
        id, error);
}

bool ParseStudy(const std::string& text, std::string* name, std::vector<StudyPoint>* points) {
    const QStringList parts = QString::fromStdString(text).split(QLatin1Char(':'));
    if (parts.size() < 2 || parts[0].isEmpty()) return false;
    *name = parts[0].toStdString();
    points->clear();
    for (int i = 1; i < parts.size(); ++i) {
        const QStringList pair = parts[i].split(QLatin1Char(','));
        if (pair.size() != 2) return false;
        bool okTime = false, okPrice = false;
        const qlonglong time = pair[0].trimmed().toLongLong(&okTime);
        const double price = pair[1].trimmed().toDouble(&okPrice);
        if (!okTime || !okPrice || time < 0 || time > std::numeric_limits<std::int32_t>::max() || !std::isfinite(price))
            return false;
        points->push_back(StudyPoint{std::int32_t(time), price});
    }
    return true;
}

}  // namespace host
