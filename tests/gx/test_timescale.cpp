// The time scale (searches, pointing, labels) and the time questions of a line (period
// table, calendar stepping, positions beyond the data).
#include <gtest/gtest.h>

#include <QDateTime>
#include <QPaintEngine>
#include <QPainter>
#include <QRegularExpression>
#include <algorithm>
#include <climits>
#include <vector>

#include "data/ScaleEngine.h"
#include "gx/Line.h"
#include "gx/TimeScale.h"
#include "gx/ts/Date.h"
#include "tests/data/dpa_arrays.h"
#include "util/QtCompat.h"

namespace {

using gx::Line;
using gx::TimeScale;

long Utc(int y, int mo, int d, int h = 0, int mi = 0) {
    return static_cast<long>(QDateTime(QDate(y, mo, d), QTime(h, mi), Qt::UTC).toSecsSinceEpoch());
}

// `columns` columns over a stored width of `width` pixels from x 2, first column `first`.
boost::shared_ptr<pf::ScaleEngine> Engine(int columns, int width, int first = 0) {
    boost::shared_ptr<pf::ScaleEngine> e(new pf::ScaleEngine);
    e->SetColumnCount(columns);
    e->SetFirstColumn(first);
    e->Update(QRect(0, 0, width + 4, 300), 0.0f, 0.0f, 0.0f, 1.0f);
    return e;
}

// A Point and Figure array of the given period with one column per time.
struct PFArray {
    HostArray host{{{2, "TIME"}, {4, "STEP"}, {4, "VALUE"}, {2, "TYPE"}, {4, "END"}, {4, "SOLID"}}, 4};
    PFArray(char period, int length, std::initializer_list<long> times) {
        host.Name(u"Point and Figure");
        host.a.name.period.type = period;
        host.a.name.period.length = length;
        for (long t : times) host.Add({double(t), 0.001, 1.0, 1, 1.002, 0});
    }
};

struct Label {
    QString text;
    QRect box;
};

// A paint device that keeps the text drawn on it, each piece with its box.
class TextRecorder : public QPaintDevice, QPaintEngine {
public:
    TextRecorder() : QPaintEngine(AllFeatures) {}
    QPaintEngine* paintEngine() const override { return const_cast<TextRecorder*>(this); }
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawPath(const QPainterPath&) override {}
    void drawPolygon(const QPointF*, int, PolygonDrawMode) override {}
    void drawTextItem(const QPointF& p, const QTextItem& item) override {
        const QFontMetricsF fm(item.font(), this);
        const QRectF box(p.x(), p.y() - fm.ascent(), fm.horizontalAdvance(item.text()), fm.height());
        labels.push_back({item.text(), box.toRect()});
        baselines.push_back(qRound(p.y()));
    }
    std::vector<Label> labels;
    std::vector<int> baselines;

protected:
    int metric(PaintDeviceMetric m) const override {
        if (m == PdmDevicePixelRatio) return 1;
        if (m == PdmDevicePixelRatioScaled) return int(devicePixelRatioFScale());
        return m == PdmDpiX || m == PdmDpiY || m == PdmPhysicalDpiX || m == PdmPhysicalDpiY ? 96 : 2000;
    }
};

// Draws the scale over `times` with `columns` columns in `width` pixels from position `first`
// and checks every label: inside the strip, over no other label, and naming the time of the
// visible position whose tick stands one text height plus five pixels to its left.
QStringList DrawScale(const std::vector<long>& times, char period, int columns, int width, int first = 0) {
    TimeScale scale(nullptr, Engine(columns, width, first), 0x808080);
    for (long t : times) scale.AddTime(t);
    scale.SetFormat(period);
    scale.Resize();
    TextRecorder device;
    QPainter painter(&device);
    scale.Draw(painter);
    painter.end();

    const pf::ScaleEngine& e = *scale.GetEngine();
    const int half = int(e.GetXStep(float(columns)) / 2);
    const int offset = QFontMetrics(scale.GetFont(), &device).height() + 5;
    const int last = std::min<int>(first + columns, int(times.size())) - 1;
    const QStringList formats{"dd MMM yyyy", "dd MMM", "yyyy", "MMMM yyyy", "MMM yyyy",
                              "MMM",         "dd.MM",  "dd",   "hh:mm",     "hh"};
    const std::vector<Label>& labels = device.labels;
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const Label& l = labels[i];
        EXPECT_TRUE(scale.Rect().contains(l.box)) << l.text.toStdString();
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_FALSE(l.box.intersects(labels[j].box))
                << l.text.toStdString() << " / " << labels[j].text.toStdString();
        bool named = false;
        for (int p = std::max(first, 0); p <= last; ++p)
            if (std::abs(l.box.left() - offset - (e.GetLeft() + e.TranslateX(p - first) + half)) <= 1)
                for (const QString& f : formats)
                    named |= QDateTime::fromSecsSinceEpoch(times[p], Qt::UTC).toString(f) == l.text;
        EXPECT_TRUE(named) << l.text.toStdString() << " at " << l.box.left();
    }
    QStringList texts;
    for (const Label& l : labels) texts << l.text;
    return texts;
}

// `n` times from `start`, `step` seconds apart on average but irregular, as columns are.
std::vector<long> Columns(long start, int n, long step) {
    std::vector<long> out{start};
    for (unsigned r = 12345; int(out.size()) < n; r = r * 1103515245u + 12345u)
        out.push_back(out.back() + step / 2 + long((r >> 8) % unsigned(step)));
    return out;
}

}  // namespace

TEST(TimeScale, SearchesMatchCeilingAndFloorOfSortedTimes) {
    for (int n = 0; n < 10; ++n) {
        TimeScale scale(nullptr, Engine(10, 100), 0);
        std::vector<long> times;
        for (int i = 0; i < n; ++i) times.push_back(10 * (i + 1)), scale.AddTime(10 * (i + 1));
        for (long t = 0; t <= 10 * n + 15; ++t) {
            const int ceiling = int(std::lower_bound(times.begin(), times.end(), t) - times.begin());
            const int floor = int(std::upper_bound(times.begin(), times.end(), t) - times.begin()) - 1;
            for (int type = 0; type <= 5; ++type)
                EXPECT_EQ(scale.GetTimePos(t, TimeScale::eDateType(type)),
                          type <= 2 ? std::max(0, std::min(ceiling, n - 1)) : std::max(floor, 0))
                    << n << " " << t << " " << type;
        }
    }
}

TEST(TimeScale, VirtualPositionsContinueInStepsPastTheLastTime) {
    TimeScale scale(nullptr, Engine(10, 100), 0);
    EXPECT_EQ(scale.GetVirtualTimePos(500, TimeScale::DateSecond, 100), 0);
    for (long t : {100, 200, 400}) scale.AddTime(t);
    EXPECT_EQ(scale.GetVirtualTimePos(300, TimeScale::DateDay, 100), 1);
    EXPECT_EQ(scale.GetVirtualTimePos(500, TimeScale::DateSecond, 100), 3);
    EXPECT_EQ(scale.GetVirtualTimePos(501, TimeScale::DateSecond, 100), 4);
    EXPECT_EQ(scale.GetVirtualTimePos(501, TimeScale::DateSecond, 0), 2);
    EXPECT_EQ(scale.GetVirtualTimePos(INT32_MAX, TimeScale::DateSecond, 1), INT32_MAX - 400 + 2);
}

TEST(TimeScale, PointsMapToVisiblePositionsAndTimesClampToTheData) {
    // 10 pixels per column from x 2, the first visible column is position 3.
    TimeScale scale(nullptr, Engine(10, 100, 3), 0);
    EXPECT_EQ(scale.GetPointTime(QPoint(50, 0)), 0);  // no times yet
    for (int i = 0; i < 8; ++i) scale.AddTime(1000 + i);
    EXPECT_EQ(scale.GetPointPos(QPoint(2, 0)), 3);
    EXPECT_EQ(scale.GetPointTime(QPoint(25, 0)), 1005);
    EXPECT_EQ(scale.GetPointTime(QPoint(-500, 0)), 1000);
    EXPECT_EQ(scale.GetPointTime(QPoint(900, 0)), 1007);
    scale.DelTime(0);
    scale.SetTime(0, 42);
    EXPECT_EQ(scale.Times(), (std::vector<std::int32_t>{42, 1002, 1003, 1004, 1005, 1006, 1007}));
}

TEST(TimeScale, FormatColoursAndPlacementWithoutWidget) {
    TimeScale scale(nullptr, Engine(10, 100), 0x123456);
    EXPECT_TRUE(scale.IsDateOnly());
    scale.SetFormat('I');
    EXPECT_FALSE(scale.IsDateOnly());
    scale.SetFormat('D');
    EXPECT_TRUE(scale.IsDateOnly());

    EXPECT_EQ(scale.GetGridColor(), QColor(0x12, 0x34, 0x56));
    // Under the engine's area (stored 2..101, bottom 299), two text heights plus 9 high.
    scale.Resize();
    EXPECT_EQ(scale.Rect(), QRect(0, 300, 104, 2 * pf::FontHeight(QFontMetrics(scale.GetFont())) + 9));
}

TEST(TimeScaleDraw, CivilDaysMatchTheCalendarAcrossTheWhole32BitRange) {
    // Every 7 hours and 13 minutes from the first 32-bit time to the last (months, leap days,
    // 1970 and the times before it, the century years 2000 and 2100), and the ends themselves.
    std::vector<std::int64_t> times{INT32_MIN, INT32_MAX, -1, 0, 86399, 86400, 951782399, 951782400, 4107542400};
    for (std::int64_t t = INT32_MIN; t <= INT32_MAX; t += 7 * 3600 + 13 * 60) times.push_back(t);
    for (std::int64_t t : times) {
        const QDate expected = QDateTime::fromSecsSinceEpoch(t, Qt::UTC).date();
        const gx::ts::CivilDay d = gx::ts::Date::CivilDayOf(t);
        ASSERT_EQ(QDate(int(d.year), d.month, d.day), expected) << t;
    }
}

TEST(TimeScaleDraw, EachSpanGetsItsLabelsWithoutOverlap) {
    // Hours: times over the day.
    QStringList t = DrawScale(Columns(Utc(2024, 3, 12, 8), 40, 900), 'I', 40, 600);
    EXPECT_TRUE(t.contains("12 Mar 2024"));
    EXPECT_GE(t.filter(":").size(), 3);
    // Ten intraday days: hours alone ("hh") over the days.
    t = DrawScale(Columns(Utc(2024, 3, 1), 200, 4320), 'I', 200, 800);
    EXPECT_FALSE(t.filter(QRegularExpression("^\\d\\d$")).isEmpty());
    // A month of days: the month with its days ("dd.MM").
    EXPECT_FALSE(DrawScale(Columns(Utc(2023, 5, 3), 30, 86400), 'D', 30, 600).filter(".").isEmpty());
    // Four months: month names. Five years of weeks: years.
    t = DrawScale(Columns(Utc(2023, 1, 10), 120, 86400), 'D', 120, 600);
    EXPECT_TRUE(t.contains("February 2023") || t.contains("Feb 2023"));
    EXPECT_TRUE(DrawScale(Columns(Utc(2015, 6, 1), 260, 604800), 'W', 260, 600).contains("2017"));
}

TEST(TimeScaleDraw, AnHourOrLessIsLabelledByTheMinuteAndMonthsAlwaysNameTheirYear) {
    // Fifty minutes of minute columns, wide apart: the finest band labels minutes, not
    // only every fifth one.
    std::vector<long> minutes;
    for (int i = 0; i < 50; ++i) minutes.push_back(Utc(2024, 3, 12, 8) + 60 * i);
    const QStringList t = DrawScale(minutes, 'I', 50, 3000);
    bool offFive = false;
    for (const QString& label : t.filter(QRegularExpression("^\\d\\d:\\d\\d$"))) offFive |= label.right(2).toInt() % 5 != 0;
    EXPECT_TRUE(offFive) << t.join(' ').toStdString();
    // Months over a year and more, in narrow strips too: "MMMM yyyy" or "MMM yyyy", never the
    // month's name alone.
    for (int width : {300, 600, 1200})
        EXPECT_TRUE(DrawScale(Columns(Utc(2020, 1, 10), 500, 86400), 'D', 500, width)
                        .filter(QRegularExpression("^[A-Za-z]+$"))
                        .isEmpty())
            << width;
}

TEST(TimeScaleDraw, OneRowOfLabelsStandsOnTheMiddleOfTheStripPlusFive) {
    // Years of weekly columns: year labels alone, one row.
    TimeScale scale(nullptr, Engine(400, 600), 0x808080);
    for (long t : Columns(Utc(2000, 1, 1), 400, 604800)) scale.AddTime(t);
    scale.SetFormat('W');
    scale.Resize();
    TextRecorder device;
    {
        QPainter painter(&device);
        scale.Draw(painter);
    }
    ASSERT_FALSE(device.baselines.empty());
    for (int baseline : device.baselines) EXPECT_EQ(baseline, scale.Rect().top() + scale.Rect().height() / 2 + 5);
}

TEST(TimeScaleDraw, DenseOrNarrowStripsStillNeverOverlap) {
    for (long step : {60L, 600L, 86400L, 2629746L})
        for (int width : {60, 150, 400, 1500})
            for (char period : {'I', 'D'}) DrawScale(Columns(Utc(1990, 1, 2), 500, step), period, 500, width);
}

TEST(TimeScaleDraw, OnlyVisiblePositionsAreLabelled) {
    // A long history of which the view shows 100 columns from position 5000 (DrawScale checks
    // that each label names one of them); columns past the data get no labels.
    const std::vector<long> times = Columns(Utc(2001, 1, 1), 10000, 3600 * 6);
    EXPECT_GE(DrawScale(times, 'I', 100, 700, 5000).size(), 3u);
    EXPECT_TRUE(DrawScale(times, 'I', 100, 700, 10000).empty());
}

TEST(LineTime, PeriodTable) {
    struct {
        char type;
        int length, kind, count;
        std::int64_t step;
    } cases[] = {{'D', 0, 3, 1, 86400},   {'I', 0, 2, 1, 1},          {'I', 15, 2, 15, 900}, {'W', 2, 4, 1, 604800},
                 {'M', 0, 5, 1, 2592000}, {'Y', 0, 6, 1, 31536000}, {'X', 0, 0, 1, 1}};
    for (const auto& c : cases) {
        PFArray array(c.type, c.length, {100});
        const Line line(nullptr, &array.host.a, Engine(10, 100), QRect());
        int count = 0;
        EXPECT_EQ(line.GetTimeInterval(count), c.kind) << c.type;
        EXPECT_EQ(count, c.count) << c.type;
        EXPECT_EQ(line.GetTimeStep(), c.step) << c.type;
        count = 5;  // a count given in is kept, except for intraday data
        line.GetTimeInterval(count);
        EXPECT_EQ(count, c.type == 'I' ? c.count : 5);
    }
}

TEST(LineTime, CalendarSteps) {
    // Months forward go to the first of the next month; backward by (days in month - day + 1)
    // of the current date, so one step back from 15 March is 26 February, not the 15th.
    EXPECT_EQ(Line::StepTime(Utc(2023, 1, 15, 10, 30), Line::kMonths, 1), Utc(2023, 2, 1, 10, 30));
    EXPECT_EQ(Line::StepTime(Utc(2023, 1, 31), Line::kMonths, 3), Utc(2023, 4, 1));
    EXPECT_EQ(Line::StepTime(Utc(2023, 3, 15, 10, 30), Line::kMonths, -1), Utc(2023, 2, 26, 10, 30));
    EXPECT_EQ(Line::StepTime(Utc(2024, 3, 15), Line::kMonths, -1), Utc(2024, 2, 27));
    EXPECT_EQ(Line::StepTime(Utc(2023, 3, 15), Line::kMonths, -2), Utc(2023, 2, 23));
    EXPECT_EQ(Line::StepTime(Utc(2023, 3, 31), Line::kMonths, -1), Utc(2023, 3, 30));
    // Years by the days of the current year.
    EXPECT_EQ(Line::StepTime(Utc(2024, 1, 15), Line::kYears, 1), Utc(2025, 1, 15));
    EXPECT_EQ(Line::StepTime(Utc(2023, 6, 1), Line::kYears, 1), Utc(2024, 5, 31));
    EXPECT_EQ(Line::StepTime(Utc(2023, 1, 1), Line::kYears, 2), Utc(2025, 1, 1));
    EXPECT_EQ(Line::StepTime(Utc(2025, 1, 15), Line::kYears, -1), Utc(2024, 1, 16));
}

TEST(LineTime, StepGuards) {
    EXPECT_EQ(Line::StepTime(-1, Line::kDays, 1), -1);
    for (int kind : {0, 1, 7}) EXPECT_EQ(Line::StepTime(1000, kind, 1), 0);
    EXPECT_EQ(Line::StepTime(1000, Line::kWeeks, -2), 1000 - 2 * 604800);
    // Absurd counts end at the edge of 32-bit time, quickly.
    EXPECT_EQ(Line::StepTime(1000, Line::kMinutes, LONG_MAX), INT32_MAX);
    EXPECT_EQ(Line::StepTime(1000, Line::kMinutes, LONG_MIN), INT32_MIN);
    EXPECT_EQ(Line::StepTime(1000, Line::kMonths, 50000000), INT32_MAX);
    EXPECT_EQ(Line::StepTime(1000, Line::kMonths, -50000000), INT32_MIN);
    EXPECT_EQ(Line::StepTime(1000, Line::kYears, LONG_MAX), INT32_MAX);
}

TEST(LineTime, VirtualTimesAndPositionsAroundMinuteData) {
    const long t0 = Utc(2024, 3, 12, 9);
    PFArray array('I', 15, {t0, t0 + 900, t0 + 2700, t0 + 3600});
    Line line(nullptr, &array.host.a, Engine(10, 100), QRect());
    EXPECT_EQ(line.GetIndexVirtualTime(2), t0 + 2700);
    EXPECT_EQ(line.GetIndexVirtualTime(-1), t0 - 900);
    EXPECT_EQ(line.GetIndexVirtualTime(6), t0 + 6300);
    EXPECT_EQ(line.GetTimeVirtualIndex(t0 + 1000), 2);  // the first position not before it
    EXPECT_EQ(line.GetTimeVirtualIndex(t0 + 3600), 3);
    EXPECT_EQ(line.GetTimeVirtualIndex(t0 + 3601), 4);  // between steps: the later one
    EXPECT_EQ(line.GetTimeVirtualIndex(t0 + 4501), 5);
    for (int i = 0; i < 60; ++i) EXPECT_EQ(line.GetTimeVirtualIndex(line.GetIndexVirtualTime(i)), i) << i;
    EXPECT_EQ(line.GetTimeVirtualIndex(INT32_MAX), 3 + (INT32_MAX - (t0 + 3600) + 899) / 900);

    TimeScale scale(nullptr, Engine(10, 100), 0);
    line.UpdateTimes(&scale, 2);
    EXPECT_EQ(scale.Times(), (std::vector<std::int32_t>{std::int32_t(t0 + 2700), std::int32_t(t0 + 3600)}));
    EXPECT_FALSE(scale.IsDateOnly());
}

TEST(LineTime, VirtualPositionsOfMonthlyAndPeriodlessData) {
    PFArray monthly('M', 0, {Utc(2020, 1, 1), Utc(2020, 2, 1), Utc(2020, 3, 1)});
    const Line line(nullptr, &monthly.host.a, Engine(10, 100), QRect());
    EXPECT_EQ(line.GetIndexVirtualTime(5), Utc(2020, 6, 1));
    EXPECT_EQ(line.GetTimeVirtualIndex(Utc(2020, 4, 15)), 4);
    for (int i = 0; i < 40; ++i) EXPECT_EQ(line.GetTimeVirtualIndex(line.GetIndexVirtualTime(i)), i) << i;
    // Stops at the end of 32-bit time (19 January 2038): 1 February 2038 is 215 months on.
    EXPECT_EQ(line.GetTimeVirtualIndex(LONG_MAX), 2 + 215);

    PFArray odd('X', 0, {100, 200});
    const Line periodless(nullptr, &odd.host.a, Engine(10, 100), QRect());
    EXPECT_EQ(periodless.GetTimeVirtualIndex(5000), 1);
    EXPECT_EQ(periodless.GetIndexVirtualTime(5), 0);
    PFArray empty('D', 0, {});
    const Line none(nullptr, &empty.host.a, Engine(10, 100), QRect());
    EXPECT_EQ(none.GetTimeVirtualIndex(5000), 0);
    EXPECT_EQ(none.GetIndexVirtualTime(3), 0);
}
