// A line's kept picture of its figures and the stamps its renderer blits for boxes and
// bricks: the window must look exactly as when the renderer draws every figure straight
// onto it, on the paint that makes the picture, on the paints that reuse it, after the data
// or the view changed under it, and after an update drawn into it column by column.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <boost/shared_ptr.hpp>
#include <cstring>
#include <string>
#include <vector>

#include "abi/records/dpa_records.h"
#include "data/FigureStamps.h"
#include "data/PointData.h"
#include "data/ScaleEngine.h"
#include "gx/FigurePicture.h"
#include "gx/Line.h"

namespace {

// Stamps and kept pictures on, or every figure drawn through the painter as it comes.
void Fast(bool on) {
    gx::FigurePicture::SetEnabled(on);
    pf::FigureStamps::SetEnabled(on);
}

fxChartTypeRecord Column(int i) {
    const float low = 1.0f + 0.001f * float((i * 7) % 23);
    return fxChartTypeRecord{946684800 + 3600 * i, 0.001f, low, i % 2, low + 0.001f * float(2 + i % 5), low + 0.002f};
}

struct Chart {
    std::vector<fxChartTypeRecord> records;
    fxDataPointArray array{};
    boost::shared_ptr<pf::ScaleEngine> engine{new pf::ScaleEngine};
    boost::shared_ptr<gx::Line> line;
    // 300 rows; the engine's columns span 396 pixels.
    const QRect rect{QPoint(30, 20), QPoint(429, 319)};

    explicit Chart(const char16_t* type) {
        for (int i = 0; i < 200; ++i) records.push_back(Column(i));
        for (int i = 0; type[i]; ++i) array.name.name[i] = type[i];
        Point();
        array.pointSize = sizeof(fxChartTypeRecord);
        array.precision = 4;
        array.typeShow.color0 = std::int32_t(0xff2e8b57u);
        array.typeShow.color1 = std::int32_t(0xffc0392bu);
        line.reset(new gx::Line(nullptr, &array, engine, rect));
        View(120, 80);
    }
    void Point() {
        array.points = reinterpret_cast<unsigned char*>(records.data());
        array.pointCount = std::int32_t(records.size());
    }
    // The host's next array: one more column.
    void Append() {
        records.push_back(Column(int(records.size())));
        Point();
        line->SetArray(&array);
    }
    void View(int first, int columns, float minPrice = 0.995f, float maxPrice = 1.035f) {
        engine->SetColumnCount(columns);
        engine->SetFirstColumn(first);
        // As the window does: x0 0, the last drawable column the last of the view.
        engine->Update(rect, 0.0f, float(first + columns - 1), minPrice, maxPrice);
    }
    QImage Paint(bool fast, bool antialiased = false) {
        Fast(fast);
        QImage image(460, 340, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing, antialiased);
        painter.translate(3, 2);  // a child widget's offset in a grab
        line->Draw(painter);
        painter.end();
        Fast(true);
        return image;
    }
    // The paint with stamps and the picture first: a direct paint forgets the picture.
    void ExpectAsDrawnDirectly(const std::string& what) {
        const QImage fast = Paint(true);
        EXPECT_EQ(fast, Paint(false)) << what;
    }
};

// Views of the 300 rows and 396 columns of pixels: box heights of 1, 2 and 3 pixels and
// ones that alternate between two sizes, whole and fractional column widths, and columns
// that stand out of the area at the top, the bottom and the right.
struct View {
    const char* what;
    int first, columns;
    float minPrice, maxPrice;
};
const View kViews[] = {
    {"boxes of 1 pixel", 0, 198, 0.9f, 1.2f},       {"boxes of 2 pixels", 40, 132, 0.95f, 1.1f},
    {"boxes of 3 pixels", 60, 99, 0.98f, 1.08f},    {"boxes of 1 and 2 pixels", 10, 150, 0.95f, 1.15f},
    {"boxes of 2 and 3 pixels", 90, 80, 0.96f, 1.08f}, {"columns of 1 pixel", 0, 396, 0.95f, 1.15f},
    {"columns out of the rows", 100, 66, 1.01f, 1.02f}, {"wide columns", 150, 44, 0.995f, 1.035f},
};

class FigurePictureTest : public ::testing::TestWithParam<const char16_t*> {};

TEST_P(FigurePictureTest, LooksExactlyAsDrawnDirectlyWhenMadeReusedAndRemade) {
    Chart chart(GetParam());
    for (bool antialiased : {false, true}) {
        const QImage direct = chart.Paint(false, antialiased);
        EXPECT_EQ(chart.Paint(true, antialiased), direct) << "made";
        EXPECT_EQ(chart.Paint(true, antialiased), direct) << "reused";
        const pf::PointData::DrawState reused = chart.line->GetRenderer()->GetDrawState();
        chart.Paint(false, antialiased);
        const pf::PointData::DrawState drawn = chart.line->GetRenderer()->GetDrawState();
        EXPECT_EQ(reused.xPos, drawn.xPos);
        EXPECT_EQ(reused.stepX, drawn.stepX);
        EXPECT_EQ(reused.penStyle, drawn.penStyle);
    }
    // The host changes the newest visible record in place.
    chart.Paint(true);
    chart.records[150].end += 0.004f;
    chart.line->DataChanged();
    chart.ExpectAsDrawnDirectly("record changed");
    // Scrolled and zoomed.
    chart.Paint(true);
    chart.View(60, 140);
    chart.ExpectAsDrawnDirectly("view changed");
    // Colours of the array's header.
    chart.Paint(true);
    chart.array.typeShow.color0 = std::int32_t(0xff0000ffu);
    chart.ExpectAsDrawnDirectly("colour changed");
}

TEST_P(FigurePictureTest, StampsLookExactlyAsTheFiguresDrawnAtEveryZoom) {
    Chart chart(GetParam());
    for (const View& v : kViews) {
        chart.View(v.first, v.columns, v.minPrice, v.maxPrice);
        const QImage direct = chart.Paint(false);
        EXPECT_EQ(chart.Paint(true), direct) << v.what;
        // Drawn through a painter that cuts the area: the figures across the cut are drawn
        // as they come, those inside it stamped.
        chart.line->SetRect(chart.rect.adjusted(17, 23, -31, -9));
        const QImage cut = chart.Paint(false);
        EXPECT_EQ(chart.Paint(true), cut) << v.what << ", cut";
        chart.line->SetRect(chart.rect);
    }
}

TEST_P(FigurePictureTest, ASelectedLineLooksAsDrawnDirectlyInBothDashPatterns) {
    // Two lines over the same data, selected alike: their pens alternate in step.
    Chart fast(GetParam());
    Chart direct(GetParam());
    for (const View& v : kViews) {
        fast.View(v.first, v.columns, v.minPrice, v.maxPrice);
        direct.View(v.first, v.columns, v.minPrice, v.maxPrice);
        fast.line->Select(true);
        direct.line->Select(true);
        for (const char* pattern : {"dotted", "dash-dotted"}) {
            const QImage drawn = direct.Paint(false);
            EXPECT_EQ(fast.Paint(true), drawn) << v.what << ", " << pattern;
            EXPECT_EQ(fast.line->GetRenderer()->GetPenStyle(), direct.line->GetRenderer()->GetPenStyle());
        }
    }
}

TEST_P(FigurePictureTest, UpdatesDrawnIntoThePictureLookAsANewPicture) {
    Chart chart(GetParam());
    // The newest column grows in place, then columns are added into free space on the
    // right, the view standing still.
    for (const View& v : {View{"whole", 150, 66, 0.995f, 1.035f}, View{"fractional", 150, 70, 0.96f, 1.08f}}) {
        chart.View(v.first, v.columns, v.minPrice, v.maxPrice);
        chart.Paint(true);
        chart.records.back().end += 0.002f;
        chart.line->DataChanged();
        chart.ExpectAsDrawnDirectly(std::string(v.what) + ": the newest column grown");
        chart.Paint(true);
        chart.records.back().end -= 0.003f;
        chart.records.back().type ^= 1;
        chart.line->DataChanged();
        chart.ExpectAsDrawnDirectly(std::string(v.what) + ": the newest column shrunk and turned");
        for (int k = 0; k < 3; ++k) {
            chart.Paint(true);
            chart.Append();
            chart.ExpectAsDrawnDirectly(std::string(v.what) + ": column " + std::to_string(k) + " added");
        }
        chart.Paint(true);
        chart.records.resize(chart.records.size() - 2);
        chart.Point();
        chart.line->SetArray(&chart.array);
        chart.ExpectAsDrawnDirectly(std::string(v.what) + ": columns taken back");
    }
    // The view follows the newest column by one, two and seven columns: the picture moves on
    // by whole pixels for whole column widths, and is made anew for fractional ones.
    for (int columns : {66, 99, 132, 198, 70}) {
        chart.View(int(chart.records.size()) - columns + 1, columns, 0.99f, 1.04f);
        for (int by : {1, 2, 7}) {
            chart.Paint(true);
            for (int k = 0; k < by; ++k) chart.Append();
            chart.View(int(chart.records.size()) - columns + 1, columns, 0.99f, 1.04f);
            chart.ExpectAsDrawnDirectly(std::to_string(columns) + " columns, moved by " + std::to_string(by));
        }
    }
}

INSTANTIATE_TEST_SUITE_P(ChartTypes, FigurePictureTest,
                         ::testing::Values(u"Point and Figure", u"Renko", u"Kagi"));

TEST(FigurePicture, ASelectedLineFlickersOnEveryPaintAsWithoutPicture) {
    Chart chart(u"Point and Figure");
    chart.Paint(true);
    chart.line->Select(true);
    const QImage first = chart.Paint(true);
    const QImage second = chart.Paint(true);
    EXPECT_NE(first, second);
    // Drawn directly, the pen goes on alternating the same way.
    EXPECT_EQ(chart.Paint(false), first);
    chart.line->Select(false);
    EXPECT_EQ(chart.Paint(true), chart.Paint(false));
}

}  // namespace
