// A whole chart window grabbed with its figures stamped and kept in pictures, and grabbed
// again with every figure drawn through the painter: the two grabs must be the same pixels
// for each chart type, after the host's updates (drawn into the kept pictures), at zoom
// levels whose boxes are one to three pixels high, and with a selected line in both of its
// dash patterns. The parts a repaint with nothing new blits (price scales, grid, time
// scale, time scroll bar) must come out the same from their kept pictures as drawn anew.
#include <QPixmap>
#include <functional>

#include "ChartWindowFixture.h"
#include "data/FigureStamps.h"
#include "data/ScaleEngine.h"
#include "gui/TimeScrollBar.h"
#include "gx/FigurePicture.h"
#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"

namespace {

struct WindowPictures : ChartWindowFixture {
    // One area of each chart type.
    void SetUp() override {
        ChartWindowFixture::SetUp();
        const char16_t* types[] = {u"Point and Figure", u"Renko", u"Kagi"};
        const char* names[] = {"PF", "RENKO", "KAGI"};
        for (int t = 0; t < 3; ++t) {
            Serve(QString::fromLatin1(names[t]), 150, 1.0f + 0.01f * float(t));
            Series& s = series.back();
            std::memset(s.array.name.name, 0, sizeof s.array.name.name);
            for (int i = 0; types[t][i]; ++i) s.array.name.name[i] = coreWChar(types[t][i]);
            for (std::size_t i = 0; i < s.records.size(); ++i) {
                fxChartTypeRecord& r = s.records[i];
                r.end = r.value + 0.001f * float(2 + (i * 5) % 9);
                r.solid = r.value + 0.003f;  // Kagi strokes cross their level
            }
            Show(QString::fromLatin1(names[t]));
        }
        ASSERT_EQ(widget->GetChart()->GetAreas().size(), 3u);
    }
    QImage Grab(bool fast) {
        gx::FigurePicture::SetEnabled(fast);
        pf::FigureStamps::SetEnabled(fast);
        const QImage image = widget->grab().toImage();
        gx::FigurePicture::SetEnabled(true);
        pf::FigureStamps::SetEnabled(true);
        return image;
    }
    // The host's next array of every instrument: the newest column grown, then one more.
    void Update(bool addColumn) {
        for (Series& s : series) {
            if (addColumn) {
                fxChartTypeRecord r = s.records[s.records.size() - 2];
                r.time = s.records.back().time + 3600;
                s.records.push_back(r);
            } else {
                s.records.back().end += 0.001f;
            }
            s.array.points = reinterpret_cast<unsigned char*>(s.records.data());
            s.array.pointCount = std::int32_t(s.records.size());
            coreCoreUpdateDpaData update;
            std::memset(&update, 0, sizeof update);
            update.handle = &s;
            update.subscriber = widget.get();
            widget->UpdateIndicatorPrimitives(&update);
        }
    }
    // Every area shows `visible` positions, the newest at the right.
    void View(int visible) {
        for (const boost::shared_ptr<gx::Area>& area : widget->GetChart()->GetAreas()) {
            pf::ScaleEngine& e = *area->GetEngine();
            e.SetColumnCount(visible);
            e.SetFirstColumn(std::max(0, pf::TruncToInt(e.GetX1()) + 1 - visible));
        }
        widget->SetScrollRange();
    }
    gx::Line& Line(int area) {
        return *widget->GetChart()->GetAreas()[std::size_t(area)]->GetLayers().front()->GetIndicators().front()->GetLines().front();
    }
};

TEST_F(WindowPictures, GrabsAreTheSameAsWithEveryFigureDrawnDirectly) {
    for (int visible : {60, 100, 150}) {
        View(visible);
        for (const char* step : {"shown", "grown", "added", "added again"}) {
            if (step[0] == 'g') Update(false);
            if (step[0] == 'a') Update(true);
            const QImage fast = Grab(true);  // first: a direct paint forgets the pictures
            EXPECT_EQ(fast, Grab(false)) << visible << " positions, " << step;
        }
    }
}

TEST_F(WindowPictures, ASelectedLineIsTheSameInBothDashPatterns) {
    View(100);
    for (int area = 0; area < 3; ++area) {
        for (int pattern = 0; pattern < 2; ++pattern) {
            // From a solid pen, the first paint of a selected line is dotted, the next
            // dash-dotted.
            Line(area).Select(false);
            Grab(true);
            Line(area).Select(true);
            for (int k = 0; k < pattern; ++k) Grab(true);
            const QImage fast = Grab(true);
            Line(area).Select(false);
            Grab(true);
            Line(area).Select(true);
            for (int k = 0; k < pattern; ++k) Grab(false);
            EXPECT_EQ(fast, Grab(false)) << "area " << area << ", pattern " << pattern;
        }
        Line(area).Select(false);
    }
}

TEST_F(WindowPictures, RepaintsFromKeptPicturesAreTheSameAfterScrollingZoomingAndNotices) {
    CTimeScrollBar* bar = widget->GetTimeScrollBar();
    ASSERT_NE(bar, nullptr);
    View(100);
    // Each change comes after a paint that kept its pictures: the next paint must see what
    // changed, and the ones after it blit what that one kept.
    const auto check = [this](const char* step, const std::function<void()>& change) {
        Grab(true);
        change();
        const QImage changed = Grab(true);
        Grab(true);
        const QImage kept = Grab(true);  // nothing new: the areas' kept pictures
        const QImage direct = Grab(false);
        EXPECT_EQ(changed, direct) << step << ", pictures made";
        EXPECT_EQ(kept, direct) << step << ", pictures kept";
    };
    check("scrolled", [bar] { bar->setValue(bar->value() - 7); });
    check("scrolled back", [bar] { bar->setValue(bar->maximum()); });
    check("zoomed in", [this] { View(60); });
    check("a column added", [this] { Update(true); });
    check("all shown", [this] { View(150); });
}

}  // namespace
