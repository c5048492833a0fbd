// The chart type interface's questions about a window, answered in-process: which window
// holds an area, a layer, a line (5025), and the window's caption (5034).
#include "ChartWindowFixture.h"

#include <QTranslator>

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

TEST_F(WindowMessages, CaptionIsTheWholeTitleAndNothingPastTheRecordIsRead) {
    Show(QStringLiteral("EURUSD"));
    ChartInterface* iface = module.GetPFInterface();
    iface->AddWidget(widget.get());
    coreWChar reply[FXWC_CAPTION_UNITS + 8];
    std::fill(std::begin(reply), std::end(reply), coreWChar(0xAAAA));
    // The record is two words; whatever the host keeps behind them is not the module's.
    struct {
        fxwcGetCaption record;
        std::int32_t behind;
    } request{};
    request.record.widget = widget.get();
    request.behind = 6;
    ASSERT_EQ(iface->FxWindowComponentGetCaption(&request.record, reply), 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(reply)), QStringLiteral("PFChartModule, EURUSD/1 Hour"));
    request.record.widget = reinterpret_cast<void*>(std::intptr_t(0x5150));
    EXPECT_EQ(iface->FxWindowComponentGetCaption(&request.record, reply), 1);
    EXPECT_EQ(iface->FxWindowComponentGetCaption(nullptr, reply), 1);
    iface->DelWidget(widget.get());
}

TEST_F(WindowMessages, ALongTitleIsCutAtTheHostStringLimit) {
    for (QChar c : {QChar('A'), QChar('B'), QChar('C')}) Show(QString(100, c));
    ChartInterface* iface = module.GetPFInterface();
    iface->AddWidget(widget.get());
    const QString title = widget->UpdateTitle();
    ASSERT_GT(title.size(), int(FXWC_TITLE_MAX_UNITS));
    coreWChar reply[FXWC_CAPTION_UNITS + 8];
    std::fill(std::begin(reply), std::end(reply), coreWChar(0xAAAA));
    fxwcGetCaption request{};
    request.widget = widget.get();
    ASSERT_EQ(iface->FxWindowComponentGetCaption(&request, reply), 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(reply)), title.left(FXWC_TITLE_MAX_UNITS));
    EXPECT_EQ(reply[FXWC_CAPTION_UNITS], 0xAAAA);  // nothing past the host's buffer
    iface->DelWidget(widget.get());
}

// A translation table whose display name of the Point and Figure charts is 600 characters.
struct LongDisplayName : QTranslator {
    bool isEmpty() const override { return false; }
    QString translate(const char*, const char* key, const char*, int) const override {
        return QByteArray(key) == "PF0001" ? QString(600, QLatin1Char('N')) : QString();
    }
};

TEST_F(WindowMessages, DisplayNameFillsAllFiveHundredCharacters) {
    LongDisplayName table;
    QCoreApplication::installTranslator(&table);
    fxwcNameCompUnicode name;
    std::memset(&name, 0xAA, sizeof name);
    name.iconBuffer = nullptr;
    name.iconSize = 0;
    EXPECT_EQ(module.GetPFInterface()->GetUnicodeWindowComponentName(&name), 0);
    QCoreApplication::removeTranslator(&table);
    EXPECT_EQ(name.name[0], coreWChar('N'));
    EXPECT_EQ(name.name[499], coreWChar('N'));
    EXPECT_EQ(name.zero, 0);
}

}  // namespace
