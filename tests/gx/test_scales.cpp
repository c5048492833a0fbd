// Price scale and grid: the step helper, label steps, rows, placement and spacing, the ruler
// without data, the kept pictures of the scale columns, and grid spacing and cost on flat,
// broken and dense ranges.
#include <gtest/gtest.h>

#include <QFontInfo>
#include <QFontMetrics>
#include <QPaintEngine>
#include <QImage>
#include <QPainter>
#include <algorithm>
#include <QTextItem>
#include <cmath>
#include <functional>
#include <set>
#include <vector>

#include "RecordingPaintDevice.h"
#include "data/ScaleEngine.h"
#include "gx/FigurePicture.h"
#include "gx/FindMinMax.h"
#include "gx/Grid.h"
#include "gx/LRScale.h"
#include "util/QtCompat.h"

namespace {

// Records each text a painter writes (baseline and text) and counts the fills.
struct TextEngine : QPaintEngine {
    TextEngine() : QPaintEngine(AllFeatures) {}
    bool begin(QPaintDevice*) override { return true; }
    bool end() override { return true; }
    Type type() const override { return User; }
    void updateState(const QPaintEngineState&) override {}
    void drawPixmap(const QRectF&, const QPixmap&, const QRectF&) override {}
    void drawRects(const QRect*, int) override { ++fills; }
    void drawTextItem(const QPointF& p, const QTextItem& t) override { texts.push_back({p.toPoint(), t.text()}); }
    std::vector<std::pair<QPoint, QString>> texts;
    int fills = 0;
};
struct TextDevice : QPaintDevice {
    mutable TextEngine engine;
    QPaintEngine* paintEngine() const override { return &engine; }
    int metric(PaintDeviceMetric m) const override {
        return m == PdmDepth ? 32 : m == PdmDevicePixelRatio ? 1
             : m == PdmDevicePixelRatioScaled ? int(devicePixelRatioFScale()) : m <= PdmHeight ? 2000 : 96;
    }
};

struct Label {
    QString text;
    int top, bottom, left, right;
};

gx::FindMinMax Range(float lo, float hi, float box, float precision = 4.0f) {
    gx::FindMinMax r(nullptr, lo, hi, 10.0f, precision);
    r.boxSize = box;
    return r;
}

// Rows top .. bottom, data rectangle x 0 .. 103 (the engine's 2 .. 101).
boost::shared_ptr<pf::ScaleEngine> Engine(int bottom, float lo, float hi, int columns = 10, int top = 0) {
    boost::shared_ptr<pf::ScaleEngine> e(new pf::ScaleEngine);
    e->SetColumnCount(columns);
    e->Update(QRect(QPoint(0, top), QPoint(103, bottom)), 0.0f, float(columns), lo, hi);
    return e;
}

// Draws a scale 50 x height at (0, 0); the labels inside it and apart, bottom up.
std::vector<Label> DrawScale(gx::LRScale& scale, int height, const gx::FindMinMax& range,
                             const boost::shared_ptr<pf::ScaleEngine>& engine) {
    TextDevice device;
    scale.Resize(QRect(0, 0, 50, height));
    gx::FigurePicture::SetEnabled(false);  // the texts themselves, not a picture of them
    {
        QPainter painter(&device);
        scale.Draw(painter, range, engine, {});
    }
    gx::FigurePicture::SetEnabled(true);
    const QFontMetrics fm(scale.GetFont(), &device);
    std::vector<Label> labels;
    for (const auto& t : device.engine.texts) {
        const Label l{t.second, t.first.y() - fm.ascent(), t.first.y() - fm.ascent() + fm.height() - 1, t.first.x(),
                      t.first.x() + fm.horizontalAdvance(t.second) - 1};
        EXPECT_TRUE(l.top >= 0 && l.bottom < height && l.left >= 0) << l.text.toStdString();
        EXPECT_TRUE(l.right < 50 || l.left == 0) << l.text.toStdString();  // wider text is cut at the right
        if (!labels.empty()) {
            EXPECT_LT(l.bottom, labels.back().top) << l.text.toStdString();
        }
        labels.push_back(l);
    }
    return labels;
}

}  // namespace

TEST(LRScale, StepParamGivesEvenStepsAndTheSmallestStepForEmptyRanges) {
    gx::LRScale scale(nullptr);
    scale.Resize(QRect(0, 0, 50, 170));  // 10 slots of 17 pixels for a 12-pixel font
    EXPECT_FLOAT_EQ(scale.GetStepParam(1.2f, 1.1f, 12), 0.01f);     // raw 0.0096
    EXPECT_FLOAT_EQ(scale.GetStepParam(1.0f, 0.9584f, 12), 0.005f); // raw 0.0040: half of 0.01
    EXPECT_FLOAT_EQ(scale.GetStepParam(1000.0f, 0.0f, 12), 100.0f); // raw 96
    for (float min : {1.2f, 1.3f, NAN}) EXPECT_FLOAT_EQ(scale.GetStepParam(1.2f, min, 12), 0.0001f);
    scale.Resize(QRect());  // lower than one label: one slot, no division by zero
    EXPECT_FLOAT_EQ(scale.GetStepParam(1.2f, 1.1f, -5), 0.1f);
}

// The label spacing and the time scale's height come from the font's height, which Qt 6
// measures a pixel smaller than Qt 5 for the same font (fractional ascent and descent): the
// chart keeps Qt 5's measure on both, so a chart's scales and areas have the same rows.
TEST(LRScale, AFontMeasuresTheSameOnEveryQt) {
    QFont font(QStringLiteral("DejaVu Sans"), 8);
    TextDevice device;
    if (QFontInfo(font).family() != QLatin1String("DejaVu Sans") || device.logicalDpiY() != 96)
        GTEST_SKIP() << "measured for DejaVu Sans at 96 dpi";
    EXPECT_EQ(pf::FontHeight(QFontMetrics(font, &device)), 14);  // 11 above the base line, 3 below
    font.setPointSize(10);
    EXPECT_EQ(pf::FontHeight(QFontMetrics(font, &device)), 17);
}

TEST(LRScale, LabelsAtEvenStepsOnTheirRowsAndBoundedOnAbsurdRanges) {
    gx::LRScale scale(nullptr);
    TextDevice device;
    const int h = pf::FontHeight(QFontMetrics(scale.GetFont(), &device));
    const int ascent = QFontMetrics(scale.GetFont(), &device).ascent();
    ASSERT_TRUE(h >= 5 && h <= 14) << "the steps below are worked out for fonts of 5 to 14 pixels";

    // 1.2000 on row 980, 1.2960 on row 20: a box of 0.001 is 10 pixels, a spacing of h + 5
    // holds 10 .. 19 points, rounded down to 10 and raised by 10: 0.0020.
    std::vector<Label> labels = DrawScale(scale, 1000, Range(1.2f, 1.296f, 0.001f), Engine(979, 1.2f, 1.296f, 10, 20));
    ASSERT_EQ(labels.size(), 49u);
    for (int i = 0; i < 49; ++i) {
        EXPECT_EQ(labels[i].text, QString::asprintf("%.4f", (12000 + 20 * i) / 10000.0));
        EXPECT_EQ(labels[i].top, 980 - 20 * i - ascent);  // standing on the row
    }
    // On the full height the minimum's row lies below the column: its label is moved inside,
    // its text ending on the column's last row (a row above it on Qt 6, whose text is a pixel
    // shorter than the height labels are spaced by).
    const int shorter = h - QFontMetrics(scale.GetFont(), &device).height();
    EXPECT_EQ(DrawScale(scale, 1000, Range(1.2f, 1.3f, 0.001f), Engine(999, 1.2f, 1.3f)).front().bottom, 999 - shorter);

    // A box of 0.02 pixels: the fallback 0.005 would want 200 labels; the step grows by a
    // whole multiple of it. Broken ranges finish at once.
    labels = DrawScale(scale, 200, Range(1.0f, 2.0f, 0.0001f), Engine(199, 1.0f, 2.0f));
    ASSERT_GE(labels.size(), 2u);
    for (const Label& l : labels) EXPECT_EQ(std::lround(l.text.toDouble() * 10000) % 50, 0) << l.text.toStdString();
    for (const gx::FindMinMax& r : {Range(0.0f, 1e30f, 1.0f), Range(-3e38f, 3e38f, 1e-30f), Range(NAN, 1.0f, 0.1f),
                                    Range(0.0f, 1.0f, NAN, 1e9f)})
        EXPECT_LE(int(DrawScale(scale, 200, r, Engine(199, r.minPrice, r.maxPrice)).size()), 200 / h);
}

TEST(LRScale, RulerWithoutDataAndNothingWhenHidden) {
    gx::LRScale scale(nullptr);
    const std::vector<Label> labels = DrawScale(scale, 300, gx::FindMinMax(), Engine(299, 0.0f, 1.0f));
    ASSERT_EQ(labels.size(), 11u);
    EXPECT_EQ(labels[10].text, "100");
    // Label i stands on row bottom - i x (height / 10), five pixels in.
    TextDevice measure;
    const int ascent = QFontMetrics(scale.GetFont(), &measure).ascent();
    EXPECT_EQ(labels[5].top, 299 - 5 * 30 - ascent);
    EXPECT_EQ(labels[5].left, 5);
    EXPECT_EQ(labels[1].top, 299 - 30 - ascent);
    EXPECT_LT(DrawScale(scale, 40, gx::FindMinMax(), Engine(39, 0.0f, 1.0f)).size(), 11u);  // overlaps left out

    TextDevice device;
    scale.SetVisible(false);
    QPainter painter(&device);
    scale.Draw(painter, Range(1.2f, 1.3f, 0.001f), Engine(99, 1.2f, 1.3f), {});
    EXPECT_TRUE(device.engine.texts.empty() && device.engine.fills == 0);
}

namespace {

// Rows of the horizontal lines (x 0 .. 103) and columns of the vertical ones, in order.
void DrawGrid(const gx::Grid& grid, const gx::FindMinMax& range, const boost::shared_ptr<pf::ScaleEngine>& engine,
              std::vector<int>& rows, std::vector<int>& columns, RecordingPaintDevice& device) {
    device.clear();
    rows.clear();
    columns.clear();
    {
        QPainter painter(&device);
        grid.Draw(painter, range, engine);
    }
    // The lines are painted as pixels: price rows are read down a pixel column that has no
    // column line (the one with the fewest line pixels), column lines along a row that is no
    // price row.
    QImage image(104, engine->GetBottom() + 1, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::black);
    {
        QPainter painter(&image);
        grid.Draw(painter, range, engine);
    }
    const QColor line = grid.GetLineColor();
    int probeX = 0;
    int fewest = image.height() + 1;
    for (int x = 0; x < image.width(); ++x) {
        int n = 0;
        for (int y = 0; y < image.height(); ++y) n += image.pixelColor(x, y) == line;
        if (n < fewest) {
            fewest = n;
            probeX = x;
        }
    }
    for (int y = image.height() - 1; y >= 0; --y)
        if (image.pixelColor(probeX, y) == line) rows.push_back(y);
    for (std::size_t i = 1; i < rows.size(); ++i) EXPECT_GE(rows[i - 1] - rows[i], 5);
    int probeY = engine->GetBottom();
    while (probeY > 0 && std::find(rows.begin(), rows.end(), probeY) != rows.end()) --probeY;
    for (int x = 0; x < image.width(); ++x)
        if (image.pixelColor(x, probeY) == line) columns.push_back(x);
}

}  // namespace

TEST(Grid, BoxLinesColumnLinesSpacingAndCost) {
    gx::Grid grid;
    RecordingPaintDevice device;
    std::vector<int> rows, columns, expected;
    DrawGrid(grid, Range(0.0f, 10.0f, 0.5f), Engine(199, 0.0f, 10.0f, 7), rows, columns, device);
    for (int row = 190; row >= 0; row -= 10) expected.push_back(row);  // box 0.5 = 10 rows
    EXPECT_EQ(rows, expected);
    EXPECT_EQ(columns, (std::vector<int>{2, 16, 31, 45, 59, 73, 88}));  // 100 / 7 pixels, rounded

    // Boxes too low for lines of their own: lines a whole number of boxes apart, the first
    // whole number that reaches a tenth of the height (19.9 pixels per unit: 101 boxes of
    // 0.01, 20.1 pixels), counted from the minimum.
    const auto wholeBoxes = [](const boost::shared_ptr<pf::ScaleEngine>& e, double step) {
        std::vector<int> out;
        for (int k = 1; e->TranslateY(float(k * step)) >= 0; ++k) out.push_back(e->TranslateY(float(k * step)));
        return out;
    };
    DrawGrid(grid, Range(0.0f, 10.0f, 0.01f), Engine(199, 0.0f, 10.0f), rows, columns, device);
    EXPECT_EQ(rows, wholeBoxes(Engine(199, 0.0f, 10.0f), 101 * 0.01));
    DrawGrid(grid, Range(0.0f, 10.0f, 0.01f), Engine(29, 0.0f, 10.0f), rows, columns, device);
    EXPECT_EQ(rows, (std::vector<int>{25, 20, 15, 10, 5, 0}));  // a tenth of 30 would be 3
    for (const gx::FindMinMax& r : {Range(1.0f, 1.0f, 0.1f), Range(NAN, NAN, NAN), Range(-3e38f, 3e38f, 1e-38f)}) {
        DrawGrid(grid, r, Engine(199, r.minPrice, r.maxPrice), rows, columns, device);
        EXPECT_TRUE(!rows.empty() && rows.size() <= 40u);
    }
    // Boxes of 3 pixels: 7 boxes apart (20.9 pixels).
    DrawGrid(grid, Range(0.0f, 10.0f, 0.15f), Engine(199, 0.0f, 10.0f), rows, columns, device);
    EXPECT_EQ(rows, wholeBoxes(Engine(199, 0.0f, 10.0f), 7 * 0.15));
    // No box size: the range found is cut into ten boxes (here 10 pixels each, the range
    // being half the engine's).
    for (float box : {0.0f, NAN}) {
        DrawGrid(grid, Range(0.0f, 5.0f, box), Engine(199, 0.0f, 10.0f), rows, columns, device);
        expected.clear();
        for (int row = 190; row >= 0; row -= 10) expected.push_back(row);
        EXPECT_EQ(rows, expected) << box;
    }
    // 100000 columns on 100 pixels: one line per pixel.
    DrawGrid(grid, Range(0.0f, 10.0f, 0.5f), Engine(199, 0.0f, 10.0f, 100000), rows, columns, device);
    EXPECT_EQ(std::set<int>(columns.begin(), columns.end()).size(), columns.size());
    EXPECT_EQ(columns.size(), 101u);

    grid.SetShown(false);
    DrawGrid(grid, Range(0.0f, 10.0f, 0.5f), Engine(199, 0.0f, 10.0f), rows, columns, device);
    ASSERT_EQ(device.primitives().size(), 1u);  // the fill alone
    EXPECT_EQ(device.primitives()[0].rects.value(0), QRect(QPoint(0, 0), QPoint(103, 199)));
}

namespace {

// One scale drawn with its kept pictures next to a twin drawn directly, both onto a window
// whose painter is offset as a child widget's in a grab.
struct ScalePair {
    gx::LRScale kept{nullptr};
    gx::LRScale direct{nullptr};

    void Set(const QRect& rect, const QFont& font, const QColor& background) {
        for (gx::LRScale* s : {&kept, &direct}) {
            s->Resize(rect);
            s->SetFont(font);
            s->SetBackgroundColor(background);
        }
    }
    static QImage Paint(const gx::LRScale& scale, bool pictures, const gx::FindMinMax& range,
                        const boost::shared_ptr<pf::ScaleEngine>& engine, QImage* window = nullptr) {
        gx::FigurePicture::SetEnabled(pictures);
        QImage own(140, 420, QImage::Format_ARGB32_Premultiplied);
        QImage& image = window ? *window : own;
        if (!window) image.fill(QColor(40, 90, 160));
        {
            QPainter painter(&image);
            painter.translate(3, 2);
            painter.setClipRect(QRect(0, 0, 20, 20));  // the column replaces any clip
            scale.Draw(painter, range, engine, {});
        }
        gx::FigurePicture::SetEnabled(true);
        return image;
    }
    // The kept scale's paint, checked against the twin's.
    QImage Check(const gx::FindMinMax& range, const boost::shared_ptr<pf::ScaleEngine>& engine, const char* what) {
        const QImage image = Paint(kept, true, range, engine);
        EXPECT_EQ(image, Paint(direct, false, range, engine)) << what;
        return image;
    }
};

}  // namespace

TEST(LRScalePicture, LooksExactlyAsDrawnDirectlyAfterEveryChange) {
    ScalePair s;
    const QFont font = s.kept.GetFont();
    s.Set(QRect(10, 20, 50, 380), font, QColor(250, 250, 240));
    gx::FindMinMax range = Range(1.2f, 1.296f, 0.001f);
    boost::shared_ptr<pf::ScaleEngine> engine = Engine(399, 1.2f, 1.296f, 10, 20);

    const QImage first = s.Check(range, engine, "made");
    EXPECT_EQ(s.kept.PictureCount(), 1);
    EXPECT_EQ(s.Check(range, engine, "reused"), first);
    EXPECT_EQ(s.kept.PictureCount(), 1);

    range = Range(1.25f, 1.31f, 0.0005f);
    engine = Engine(399, 1.25f, 1.31f, 10, 20);
    EXPECT_NE(s.Check(range, engine, "range changed"), first);
    range.precision = 2.0f;
    s.Check(range, engine, "decimals changed");
    range.precision = 4.0f;
    engine->Update(QRect(QPoint(0, 20), QPoint(103, 349)), 0.0f, 10.0f, 1.25f, 1.31f);
    s.Check(range, engine, "same range on other rows");
    s.Check(gx::FindMinMax(), engine, "no data");

    QFont bigger = font;
    bigger.setPointSize(font.pointSize() + 4);
    s.Set(QRect(10, 20, 50, 380), bigger, QColor(250, 250, 240));
    const QImage big = s.Check(range, engine, "font changed");
    bigger.setBold(true);
    s.Set(QRect(10, 20, 50, 380), bigger, QColor(250, 250, 240));
    EXPECT_NE(s.Check(range, engine, "bold"), big);
    s.Set(QRect(10, 20, 50, 380), font, QColor(20, 20, 20));
    s.Check(range, engine, "background changed");
    s.Set(QRect(70, 10, 60, 300), font, QColor(20, 20, 20));
    s.Check(range, engine, "rectangle changed");
    // A translucent background blends with the window: drawn directly, nothing kept.
    s.Set(QRect(70, 10, 60, 300), font, QColor(20, 20, 20, 128));
    s.Check(range, engine, "translucent");
    EXPECT_EQ(s.kept.PictureCount(), 0);
    s.Set(QRect(70, 10, 60, 300), font, QColor(20, 20, 20));
    s.Check(range, engine, "opaque again");

    // Switched off, the picture is forgotten and the next paint makes it afresh.
    EXPECT_EQ(ScalePair::Paint(s.kept, false, range, engine), ScalePair::Paint(s.direct, false, range, engine));
    EXPECT_EQ(s.kept.PictureCount(), 0);
    s.Check(range, engine, "after pictures off");
}

TEST(LRScalePicture, OneScaleDrawingSeveralAreasInTurnKeepsEachRight) {
    ScalePair s;
    const QRect top(10, 0, 50, 200), bottom(10, 201, 50, 200);
    const gx::FindMinMax upper = Range(1.2f, 1.3f, 0.001f), lower = Range(95.0f, 110.0f, 0.5f, 2.0f);
    const boost::shared_ptr<pf::ScaleEngine> upperEngine = Engine(199, 1.2f, 1.3f),
                                             lowerEngine = Engine(400, 95.0f, 110.0f, 10, 201);
    // Both areas on one window, as the widget paints them.
    const auto paint = [&](const gx::LRScale& scale, bool pictures) {
        QImage window(140, 420, QImage::Format_ARGB32_Premultiplied);
        window.fill(Qt::black);
        const_cast<gx::LRScale&>(scale).Resize(top);
        ScalePair::Paint(scale, pictures, upper, upperEngine, &window);
        const_cast<gx::LRScale&>(scale).Resize(bottom);
        ScalePair::Paint(scale, pictures, lower, lowerEngine, &window);
        return window;
    };
    const QImage expected = paint(s.direct, false);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(paint(s.kept, true), expected) << "paint " << i;
    EXPECT_EQ(s.kept.PictureCount(), 2);

    // Many areas: the pictures stay bounded and the ones dropped are drawn again.
    for (int area = 0; area < 3 * gx::PictureCache::kDefaultEntries; ++area) {
        s.Set(QRect(10, 0, 50, 100 + area), s.kept.GetFont(), Qt::white);
        s.Check(upper, upperEngine, "area");
    }
    EXPECT_EQ(s.kept.PictureCount(), gx::PictureCache::kDefaultEntries);
    EXPECT_EQ(paint(s.kept, true), expected);
}

TEST(LRScalePicture, PaintersThatBlendOrScaleDrawDirectly) {
    gx::LRScale scale(nullptr), direct(nullptr);
    scale.Resize(QRect(5, 5, 50, 200));
    direct.Resize(QRect(5, 5, 50, 200));
    const gx::FindMinMax range = Range(1.2f, 1.3f, 0.001f);
    const boost::shared_ptr<pf::ScaleEngine> engine = Engine(204, 1.2f, 1.3f, 10, 5);
    const std::vector<std::function<void(QPainter&)>> setups = {
        [](QPainter& p) { p.setRenderHint(QPainter::Antialiasing); },
        [](QPainter& p) { p.translate(0.5, 0); },
        [](QPainter& p) { p.scale(2, 2); },
        [](QPainter& p) { p.setOpacity(0.5); },
        [](QPainter& p) { p.setCompositionMode(QPainter::CompositionMode_Plus); },
    };
    for (std::size_t i = 0; i < setups.size(); ++i) {
        QImage a(140, 420, QImage::Format_ARGB32_Premultiplied), b = a;
        a.fill(Qt::gray);
        b.fill(Qt::gray);
        for (int paint = 0; paint < 2; ++paint) {
            QPainter p(&a);
            setups[i](p);
            scale.Draw(p, range, engine, {});
        }
        gx::FigurePicture::SetEnabled(false);
        for (int paint = 0; paint < 2; ++paint) {
            QPainter p(&b);
            setups[i](p);
            direct.Draw(p, range, engine, {});
        }
        gx::FigurePicture::SetEnabled(true);
        EXPECT_EQ(scale.PictureCount(), 0) << i;
        EXPECT_EQ(a, b) << i;
    }
}
