// The chart window's property page: its settings shown in the terminal's property dialog
// and taken back when the dialog applies them (10054).
//
// One page per window, made on the first ShowProperties. Every setting is bound to an entry
// (COneProperty); the bindings work on copies of the settings (PropertyValues), which go into
// the window when a page is applied. Entries, by group:
//   "Chart":       "Show grid", "Grid color", "Area color", "Left scale", "Right scale",
//                  "Free space", "Auto scroll"
//   "Price scales": "Scale font", "Scale font color"
//   "Time scale":  "Time scale background", "Time scale grid color"
//   "Defaults":    "Save as default" (the module's text of "C0035SetAsDef")
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

    PropertyValues& v = propertyValues_;
    const int chart = page->CreatePropertyGroup(QStringLiteral("Chart"))->id;
    const int scales = page->CreatePropertyGroup(QStringLiteral("Price scales"))->id;
    const int time = page->CreatePropertyGroup(QStringLiteral("Time scale"))->id;
    const int defaults = page->CreatePropertyGroup(QStringLiteral("Defaults"))->id;
    CListOnePropery& list = *propertyList_;
    list.addProperty(new CCheckIntProperty(page, kShowGrid, chart, true, &v.gridShow, 1, 0, "Show grid",
                                           "Whether the grid lines are drawn"));
    list.addProperty(new CColorProperty(page, kGridColor, chart, true, &v.gridColor, "Grid color",
                                        "Colour of the grid lines"));
    list.addProperty(new CColorProperty(page, kAreaColor, chart, true, &v.areaColor, "Area color",
                                        "Background colour of the chart areas and price scales"));
    list.addProperty(new CCheckIntProperty(page, kLeftScale, chart, true, &v.leftScale, 1, 0, "Left scale",
                                           "Whether the left price scale is shown"));
    list.addProperty(new CCheckIntProperty(page, kRightScale, chart, true, &v.rightScale, 1, 0, "Right scale",
                                           "Whether the right price scale is shown"));
    list.addProperty(new CIntProperty(page, kFreeStep, chart, true, 0, kMaxFreeStep, &v.freeStep, "Free space",
                                      "Empty positions kept at the right edge of the chart"));
    list.addProperty(new CCheckIntProperty(page, kAutoScroll, chart, true, &v.autoScroll, 1, 0, "Auto scroll",
                                           "Scroll to the newest data as it arrives"));
    list.addProperty(new CFontProperty(page, kScaleFont, scales, true, &v.areasFont, "Scale font",
                                       "Font of the price scales and the time scale"));
    list.addProperty(new CColorProperty(page, kScaleFontColor, scales, true, &v.areasFontColor, "Scale font color",
                                        "Colour of the scales' texts"));
    list.addProperty(new CColorProperty(page, kTsBackground, time, true, &v.tsBackgroundColor,
                                        "Time scale background", "Background colour of the time scale"));
    list.addProperty(new CColorProperty(page, kTsGrid, time, true, &v.tsGridColor, "Time scale grid color",
                                        "Colour of the time scale's marks"));
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
