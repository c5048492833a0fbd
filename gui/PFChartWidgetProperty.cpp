// The chart window's property page: its settings shown in the terminal's property dialog
// and taken back when the dialog applies them (10054).
//
// One page per window, made on the first ShowProperties. Every setting is bound to an entry
// (COneProperty); the bindings work on copies of the settings (PropertyValues), which go into
// the window when a page is applied. Entries by group, as translation keys (English text):
//   G0019 (Chart window): PF0005 (Show grid), G0021 (Grid color), C0004BckGrndColor (area
//                         background), G0036 (Left scale), G0052 (Right scale), G0016 (Free
//                         space positions), G0086 (Auto scroll)
//   C0017Font (Font):     C0017Font (scale font), C0018FontColor (scale font colour)
//   G0078 (Time scale):   C0004BckGrndColor (background), G0021 (grid colour)
//   C0035SetAsDef:        Save as default
#include <QColor>
#include <exception>

#include "abi/messages.h"
#include "gui/PFChartWidget.h"
#include "gx/Chart.h"
#include "gx/Grid.h"
#include "gx/LRScale.h"
#include "module/PFChartModule.h"
#include "property/CCheckIntProperty.h"
#include "property/CColorProperty.h"
#include "property/CDefaultProperty.h"
#include "property/CFontProperty.h"
#include "property/CIntProperty.h"
#include "property/CListOnePropery.h"
#include "property/CPropertyWork.h"

namespace {

long ToLong(const QColor& c) { return long(c.rgb() & 0xFFFFFFu); }
QColor FromLong(long v) { return QColor(QRgb(std::uint32_t(v) | 0xFF000000u)); }

// Ids of the bindings.
enum {
    kShowGrid = 1, kGridColor, kAreaColor, kLeftScale, kRightScale, kFreeStep, kAutoScroll, kScaleFont,
    kScaleFontColor, kTsBackground, kTsGrid, kSaveAsDefault
};

// Largest free-space count the page offers.
constexpr int kMaxFreeStep = 1000;

}  // namespace

void PFChartWidget::LoadPropertyValues() {
    PropertyValues& v = propertyValues_;
    v.gridShow = grid_->IsShown() ? 1 : 0;
    v.gridColor = ToLong(grid_->GetLineColor());
    v.areaColor = ToLong(grid_->GetBackgroundColor());
    v.leftScale = leftScale_->IsVisible() ? 1 : 0;
    v.rightScale = rightScale_->IsVisible() ? 1 : 0;
    v.freeStep = freeStep_;
    v.autoScroll = autoScroll_ ? 1 : 0;
    v.areasFont = areasFont_;
    v.areasFontColor = ToLong(areasFontColor_);
    v.tsBackgroundColor = ToLong(tsBackgroundColor_);
    v.tsGridColor = ToLong(tsGridColor_);
}

void PFChartWidget::StorePropertyValues() {
    const PropertyValues& v = propertyValues_;
    grid_->SetShown(v.gridShow != 0);
    grid_->SetLineColor(FromLong(v.gridColor));
    grid_->SetBackgroundColor(FromLong(v.areaColor));
    leftScale_->SetVisible(v.leftScale != 0);
    rightScale_->SetVisible(v.rightScale != 0);
    freeStep_ = v.freeStep >= 0 && v.freeStep <= kMaxFreeStep ? v.freeStep : freeStep_;
    autoScroll_ = v.autoScroll != 0;
    areasFont_ = v.areasFont;
    areasFontColor_ = FromLong(v.areasFontColor);
    tsBackgroundColor_ = FromLong(v.tsBackgroundColor);
    tsGridColor_ = FromLong(v.tsGridColor);
}

void PFChartWidget::BuildPropertyPage() {
    if (propertyPage_) return;
    propertyPage_.reset(new CPropertyWork);
    propertyList_.reset(new CListOnePropery(propertyPage_.get()));
    CPropertyWork* page = propertyPage_.get();
    if (module_) page->SetHost(module_->sendToHost, module_->hostHandle, module_->hostHandle, module_->hostHandle2);
    page->setObject(this);
    CORE_OBJECT_SYSTEM system = {this, GetCurrentInterface()};
    const QString properties = module_ ? module_->tr("C0030Propes") : QStringLiteral("Properties");
    page->ReInicDatePage(properties, DataTypeShow2StringLocale(chartType_), QString(), system);

    // Every text of the page is the module's translation of its key, so that the terminal's
    // language shows.
    const auto text = [this](const char* key) { return module_ ? module_->tr(key) : QString::fromLatin1(key); };
    PropertyValues& v = propertyValues_;
    const int chart = page->CreatePropertyGroup(text("G0019"))->id;
    const int scales = page->CreatePropertyGroup(text("C0017Font"))->id;
    const int time = page->CreatePropertyGroup(text("G0078"))->id;
    const int defaults = page->CreatePropertyGroup(text("C0035SetAsDef"))->id;
    CListOnePropery& list = *propertyList_;
    list.addProperty(new CCheckIntProperty(page, kShowGrid, chart, true, &v.gridShow, 1, 0, text("PF0005"),
                                           text("PF0005")));
    list.addProperty(new CColorProperty(page, kGridColor, chart, true, &v.gridColor, text("G0021"), text("G0021")));
    list.addProperty(new CColorProperty(page, kAreaColor, chart, true, &v.areaColor, text("C0004BckGrndColor"),
                                        text("G0088Message")));
    list.addProperty(new CCheckIntProperty(page, kLeftScale, chart, true, &v.leftScale, 1, 0, text("G0036"),
                                           text("G0036")));
    list.addProperty(new CCheckIntProperty(page, kRightScale, chart, true, &v.rightScale, 1, 0, text("G0052"),
                                           text("G0052")));
    list.addProperty(new CIntProperty(page, kFreeStep, chart, true, 0, kMaxFreeStep, &v.freeStep, text("G0016"),
                                      text("G0016")));
    list.addProperty(new CCheckIntProperty(page, kAutoScroll, chart, true, &v.autoScroll, 1, 0, text("G0086"),
                                           text("G0086")));
    list.addProperty(new CFontProperty(page, kScaleFont, scales, true, &v.areasFont, text("C0017Font"),
                                       text("G0065Message")));
    list.addProperty(new CColorProperty(page, kScaleFontColor, scales, true, &v.areasFontColor, text("C0018FontColor"),
                                        text("G0064Message")));
    list.addProperty(new CColorProperty(page, kTsBackground, time, true, &v.tsBackgroundColor,
                                        text("C0004BckGrndColor"), text("G0067Message")));
    list.addProperty(new CColorProperty(page, kTsGrid, time, true, &v.tsGridColor, text("G0021"),
                                        text("G0075Message")));
    list.addProperty(new CDefaultProperty(page, kSaveAsDefault, defaults, static_cast<CPropertyHead*>(this)));

    LoadPropertyValues();
    for (int i = 0; i < list.count(); ++i) list.at(i)->AddProperty();
}

void PFChartWidget::ShowProperties() {
    BuildPropertyPage();
    LoadPropertyValues();
    // The title is made anew: the stored one is empty until something asked for it.
    const QString title = UpdateTitle();
    propertyPage_->ReNameDatePage(module_ ? module_->tr("C0030Propes") + QStringLiteral(" - ") + title : title);
    try {
        propertyList_->setParameters();
    } catch (const std::exception&) {
        // Every entry was made by this page with its buffer; nothing to refuse here.
    }
    void* gui = chart_->GetMainGUIInterface();
    if (module_ && module_->sendToHost && gui)
        module_->sendToHost(gui, MSG_SHOW_PROPERTY_PAGE, reinterpret_cast<std::intptr_t>(propertyPage_->GetPage()),
                            reinterpret_cast<std::intptr_t>(this));
}

void PFChartWidget::RefreshProperties() {
    if (!propertyPage_) return;
    LoadPropertyValues();
    try {
        propertyList_->refreshParameters();
    } catch (const std::exception&) {
    }
}

void PFChartWidget::ApplyProperty(void* page, int) {
    // Only pages of this window are applied: its own page, or a copy of it the dialog sent.
    if (!propertyPage_ || !page) return;
    if (page != propertyPage_->GetPage()) propertyPage_->CopyWidgetParam(*static_cast<const PROPERTY_PAGE*>(page));
    LoadPropertyValues();
    stateChangeProperty state;
    applyingProperties_ = true;
    try {
        propertyList_->checkParameters(state);
    } catch (const std::exception&) {
        // An entry the dialog left unreadable keeps the setting it had.
    }
    applyingProperties_ = false;
    StorePropertyValues();
    UpdateScaleWidth();
    UpdateScalesProperties();
    if (scrollBar_ && !chart_->GetAreas().empty()) SetScrollRange();
    update();
}
