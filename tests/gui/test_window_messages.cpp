// The chart type interface's questions about a window, answered in-process: which window
// holds an area, a layer, a line (5025), and the window's caption cut to the host's buffer
// (5034).
#include "ChartWindowFixture.h"

#include "gx/Indicator.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "module/ChartInterface.h"

namespace {

using WindowMessages = ChartWindowFixture;

TEST_F(WindowMessages, OwnerIsFoundForEveryObjectOfTheTreeAndNobodyElse) {
    Show(QStringLiteral("EURUSD"));
    ChartInterface* iface = module.GetPFInterface();
    iface->AddWidget(widget.get());
    const boost::shared_ptr<gx::Area> area = widget->GetChart()->GetAreas()[0];
    const boost::shared_ptr<gx::Layer> layer = area->GetLayers()[0];
    const boost::shared_ptr<gx::Line> line = layer->GetIndicators()[0]->GetLines()[0];
    for (const void* object : {static_cast<const void*>(widget.get()), static_cast<const void*>(area.get()),
                               static_cast<const void*>(layer.get()), static_cast<const void*>(line.get())}) {
        fxwcGetOwnerForObj record{};
        record.object = const_cast<void*>(object);
        EXPECT_EQ(iface->GetOwnerForObj(&record), 0);
        EXPECT_EQ(record.widget, widget.get());
        EXPECT_EQ(record.iface, iface);
    }
    fxwcGetOwnerForObj nobody{};
    nobody.object = reinterpret_cast<void*>(std::intptr_t(0x5150));
    nobody.widget = reinterpret_cast<void*>(std::intptr_t(0x77));
    EXPECT_EQ(iface->GetOwnerForObj(&nobody), 1);
    EXPECT_EQ(nobody.widget, reinterpret_cast<void*>(std::intptr_t(0x77)));  // left alone
    EXPECT_EQ(iface->GetOwnerForObj(nullptr), 1);
    // Another interface does not list the window.
    fxwcGetOwnerForObj other{};
    other.object = area.get();
    EXPECT_EQ(module.GetKagiInterface()->GetOwnerForObj(&other), 1);
    iface->DelWidget(widget.get());
}

TEST_F(WindowMessages, CaptionIsCutToTheReplyBuffer) {
    Show(QStringLiteral("EURUSD"));
    ChartInterface* iface = module.GetPFInterface();
    iface->AddWidget(widget.get());
    coreWChar reply[300];
    fxwcGetCaption request{};
    request.widget = widget.get();
    ASSERT_EQ(iface->FxWindowComponentGetCaption(&request, reply), 0);  // capacity 0: the host's 256
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(reply)), QStringLiteral("PFChartModule, EURUSD/1 Hour"));
    std::fill(std::begin(reply), std::end(reply), coreWChar(0xAAAA));
    request.capacity = 6;
    ASSERT_EQ(iface->FxWindowComponentGetCaption(&request, reply), 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(reply)), QStringLiteral("PFCha"));
    EXPECT_EQ(reply[6], 0xAAAA);  // nothing past the buffer
    request.widget = reinterpret_cast<void*>(std::intptr_t(0x5150));
    EXPECT_EQ(iface->FxWindowComponentGetCaption(&request, reply), 1);
    EXPECT_EQ(iface->FxWindowComponentGetCaption(nullptr, reply), 1);
    iface->DelWidget(widget.get());
}

}  // namespace
