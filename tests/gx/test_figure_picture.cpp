// A line's kept picture of its figures: the window must look exactly as when the renderer
// draws straight onto it, on the paint that makes the picture, on the paints that reuse it,
// and after the data or the view changed under it.
#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <boost/shared_ptr.hpp>
#include <cstring>
#include <vector>

#include "abi/records/dpa_records.h"
#include "data/PointData.h"
#include "data/ScaleEngine.h"
#include "gx/FigurePicture.h"
#include "gx/Line.h"

namespace {

struct Chart {
    std::vector<fxChartTypeRecord> records;
    fxDataPointArray array{};
    boost::shared_ptr<pf::ScaleEngine> engine{new pf::ScaleEngine};
    boost::shared_ptr<gx::Line> line;
    const QRect rect{QPoint(30, 20), QPoint(429, 319)};

    explicit Chart(const char16_t* type) {
        for (int i = 0; i < 200; ++i) {
            const float low = 1.0f + 0.001f * float((i * 7) % 23);
            records.push_back(fxChartTypeRecord{946684800 + 3600 * i, 0.001f, low, i % 2, low + 0.001f * float(2 + i % 5),
                                                low + 0.002f});
        }
        for (int i = 0; type[i]; ++i) array.name.name[i] = type[i];
        array.points = reinterpret_cast<unsigned char*>(records.data());
        array.pointCount = std::int32_t(records.size());
        array.pointSize = sizeof(fxChartTypeRecord);
        array.precision = 4;
        array.typeShow.color0 = std::int32_t(0xff2e8b57u);
        array.typeShow.color1 = std::int32_t(0xffc0392bu);
        line.reset(new gx::Line(nullptr, &array, engine, rect));
        View(120, 80);
    }
    void View(int first, int columns) {
        engine->SetColumnCount(columns);
        engine->SetFirstColumn(first);
        engine->Update(rect, float(first), float(first + columns - 1), 0.995f, 1.035f);
    }
    QImage Paint(bool picture, bool antialiased = false) {
        gx::FigurePicture::SetEnabled(picture);
        QImage image(460, 340, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setRenderHint(QPainter::Antialiasing, antialiased);
        painter.translate(3, 2);  // a child widget's offset in a grab
        line->Draw(painter);
        painter.end();
        gx::FigurePicture::SetEnabled(true);
        return image;
    }
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
    EXPECT_EQ(chart.Paint(true), chart.Paint(false)) << "record changed";
    // Scrolled and zoomed.
    chart.Paint(true);
    chart.View(60, 140);
    EXPECT_EQ(chart.Paint(true), chart.Paint(false)) << "view changed";
    // Colours of the array's header.
    chart.Paint(true);
    chart.array.typeShow.color0 = std::int32_t(0xff0000ffu);
    EXPECT_EQ(chart.Paint(true), chart.Paint(false)) << "colour changed";
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
