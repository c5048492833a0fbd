#include "gui/PFChartWidget.h"

#include <QFontMetrics>
#include <QMenu>
#include <QPainter>
#include <QPalette>
#include <QPixmap>
#include <QPaintEvent>
#include <QSignalBlocker>
#include <QSlider>
#include <cmath>
#include <algorithm>
#include <cfloat>
#include <cstring>

#include "data/DataSource.h"
#include "data/PointData.h"
#include "data/ScaleEngine.h"
#include "gui/Barrier.h"
#include "gui/CSkin.h"
#include "gui/TimeScrollBar.h"
#include "gui/ToolBar.h"
#include "gx/Area.h"
#include "gx/AreaPicture.h"
#include "gx/Caption.h"
#include "gx/Chart.h"
#include "gx/Grid.h"
#include "gx/Indicator.h"
#include "gx/LRScale.h"
#include "gx/Layer.h"
#include "gx/Line.h"
#include "gx/TimeScale.h"
#include "gx/Visitors.h"
#include "gx/Walkers.h"
#include "module/ChartInterface.h"
#include "module/PFChartModule.h"
#include "property/CListOnePropery.h"
#include "property/CPropertyWork.h"
#include "util/QtCompat.h"

namespace {

QFont ScaleFont(const PFChartModule* module) {
    QFont font(module ? module->getFont(font::elementCode(12)) : QString::fromLatin1("Arial"));
    font.setPointSize(8);
    return font;
}

// A window's own start colours, kept while the skin is the built-in one.
const QColor kStartAreasFontColor(0x96, 0x96, 0x96);
const QColor kStartTSBackgroundColor(0xFF, 0xFF, 0xFF);
const QColor kStartTSGridColor(0xDC, 0xDC, 0xDC);

}  // namespace

PFChartWidget::PFChartWidget(PFChartModule* module, int chartType, void* hostHandle, QWidget* parent,
                             QWidget* second, const char* name, Qt::WindowFlags flags)
    : CSimpleGUIWidget(parent, flags),
      module_(module),
      chartType_(chartType),
      hostHandle_(hostHandle),
      second_(second),
      toolBar_(nullptr),
      areasFont_(ScaleFont(module)),
      areasFontColor_(kStartAreasFontColor),
      tsBackgroundColor_(kStartTSBackgroundColor),
      tsGridColor_(kStartTSGridColor) {
    if (name) setObjectName(QString::fromLocal8Bit(name));
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setAcceptDrops(true);
    setContextMenuPolicy(Qt::CustomContextMenu);
    pf::gui::ConnectGuarded(this, &QWidget::customContextMenuRequested, this, &PFChartWidget::OnCustomContextMenuRequested);
    toolBar_ = new pf::gui::Guarded<pf::gui::ToolBar>(this);
    chart_.reset(new gx::Chart(this, ChartRect()));
    leftScale_.reset(new gx::LRScale(this));
    rightScale_.reset(new gx::LRScale(this));
    grid_.reset(new gx::Grid);
    scrollBar_.reset(new pf::gui::Guarded<CTimeScrollBar>(this));
    scaleWidth_ = gx::LRScale::nWidth;
    ApplySkin(true);
    getStartParam();
}

PFChartWidget::~PFChartWidget() {
    // The tree first: its objects reach back into the widget while they go.
    chart_.reset();
    for (const boost::shared_ptr<pf::DataSource>& source : std::vector<boost::shared_ptr<pf::DataSource> >(sources_))
        ReleaseDataSource(source);
    scrollBar_.reset();
}

// ---- geometry ----

int PFChartWidget::GetTimeScrollBarTop() const { return height() - kScrollBarHeight; }

QRect PFChartWidget::ChartRect() const {
    const int timeScale = timeScale_ ? timeScale_->Height() : 2 * pf::FontHeight(QFontMetrics(areasFont_)) + 9;
    const int bottom = GetTimeScrollBarTop() - timeScale - 1;
    return QRect(QPoint(0, kToolBarHeight), QPoint(width() - 1, std::max(kToolBarHeight - 1, bottom)));
}

void PFChartWidget::PlaceChildren() {
    if (toolBar_) toolBar_->setGeometry(0, 0, width(), kToolBarHeight);
    if (scrollBar_) scrollBar_->setGeometry(0, GetTimeScrollBarTop(), width(), kScrollBarHeight);
    if (timeScale_) timeScale_->Resize();
    if (chart_) {
        const QRect r = ChartRect();
        chart_->SetRect(r);
        chart_->Resize(r.size());
        chart_->RePlaceAreas();
    }
}

void PFChartWidget::resizeEvent(QResizeEvent*) { PlaceChildren(); }

void PFChartWidget::Resize() {
    if (QWidget* parent = parentWidget()) setGeometry(parent->rect());
    PlaceChildren();
}

void PFChartWidget::Show(bool show) { setVisible(show); }

bool PFChartWidget::IsActive() const { return hasFocus(); }

int PFChartWidget::CalcLRScaleWidth() const { return scaleWidth_; }

void PFChartWidget::UpdateScaleWidth() {
    // Wide enough for the largest price with one digit to spare.
    const QFontMetrics metrics(areasFont_);
    int width = gx::LRScale::nWidth;
    for (const boost::shared_ptr<gx::Area>& area : chart_->GetAreas())
        for (const boost::shared_ptr<gx::Layer>& layer : area->GetLayers())
            for (const boost::shared_ptr<gx::Indicator>& indicator : layer->GetIndicators())
                for (const boost::shared_ptr<gx::Line>& line : indicator->GetLines()) {
                    const int n = line->Size();
                    if (n < 1) continue;
                    const fxChartTypeRecord last = pf::PointData::Record(line->GetArray(), n - 1);
                    const double price = std::max(std::fabs(double(last.end)), std::fabs(double(last.value))) * 10.0;
                    if (!(price < 1e12)) continue;
                    const int decimals = std::max(0, std::min(10, int(line->GetArray()->precision)));
                    width = std::max(width, metrics.horizontalAdvance(gx::LRScale::FormatPrice(price, decimals)) + 10);
                }
    width = std::min(width, 200);
    if (width == scaleWidth_) return;
    scaleWidth_ = width;
    chart_->RePlaceAreas();
}

QColor PFChartWidget::GetAreasColor() const { return grid_ ? grid_->GetBackgroundColor() : QColor(Qt::white); }

const CSkin* PFChartWidget::GetSkin() const { return module_ ? module_->GetSkin() : nullptr; }

QColor PFChartWidget::GetButtonFillColor() const {
    return GetSkin() ? GetSkin()->GetAreaGridColor() : QColor(QRgb(0xECE9D8));
}

QColor PFChartWidget::GetButtonFrameColor() const {
    return GetSkin() ? GetSkin()->GetFontColor() : QColor(QRgb(0x7C7B68));
}

QColor PFChartWidget::GetTimeScaleFontColor() const {
    return GetSkin() ? GetSkin()->GetTimeFontColor() : QColor(QRgb(0x7C7B68));
}

void PFChartWidget::ApplySkin(bool creating) {
    const CSkin* skin = GetSkin();
    if (skin) {
        grid_->SetLineColor(skin->GetAreaGridColor());
        grid_->SetBackgroundColor(skin->GetBackColor());
        const bool loaded = skin->IsLoaded();
        areasFontColor_ = loaded ? skin->GetFontColor() : kStartAreasFontColor;
        tsBackgroundColor_ = loaded ? skin->GetTimeBackColor() : kStartTSBackgroundColor;
        tsGridColor_ = loaded ? skin->GetTimeGridColor() : kStartTSGridColor;
        if (creating) autoScroll_ = skin->GetAutoScroll();
        if (toolBar_) toolBar_->ApplySkin(*skin);
        // A skin document also colours the time scroll bar like the tool bar; the built-in
        // look leaves it to the style.
        QPalette bar;
        if (loaded) {
            bar.setColor(QPalette::Window, skin->GetToolBarBackColor());
            bar.setColor(QPalette::Button, skin->GetToolBarBackColor());
            bar.setColor(QPalette::Base, skin->GetTimeBackColor());
            bar.setColor(QPalette::WindowText, skin->GetToolBarFrontColor());
            bar.setColor(QPalette::ButtonText, skin->GetToolBarFrontColor());
        }
        scrollBar_->setPalette(bar);
    } else {
        grid_->SetLineColor(QColor(QRgb(0xECE9D8)));
        grid_->SetBackgroundColor(QColor(QRgb(0xFFFFFF)));
    }
    for (const boost::shared_ptr<gx::Area>& area : chart_->GetAreas()) area->GetCaption()->UpdateButtonColor();
    UpdateScalesProperties();
    // An open property dialog shows the skin's colours at once; otherwise its next apply
    // would hand the old ones back to the window.
    RefreshProperties();
}

gx::TextStatusBar* PFChartWidget::GetStatusBar() const { return module_ ? module_->GetStatusBar() : nullptr; }

int PFChartWidget::GetCrossCursorState() const { return toolBar_ && toolBar_->IsCrossCursorToggled() ? 1 : 0; }

ChartInterface* PFChartWidget::GetCurrentInterface() const {
    if (!module_) return nullptr;
    switch (chartType_) {
        case PointFigure: return module_->GetPFInterface();
        case Renko: return module_->GetRenkoInterface();
        case Kagi: return module_->GetKagiInterface();
        default: return nullptr;
    }
}

const char* PFChartWidget::GetModuleName() const { return module_ ? module_->GetModuleName() : "PFChartModule"; }

const char* PFChartWidget::DataTypeShow2String(int type) {
    switch (type) {
        case PointFigure: return "Point and Figure";
        case Renko: return "Renko";
        case Kagi: return "Kagi";
        default: return "";
    }
}

QString PFChartWidget::DataTypeShow2StringLocale(int type) const {
    static const char* const keys[] = {"PF0001", "PF0002", "PF0003"};
    if (type < 0 || type > 2) return QString();
    return module_ ? module_->tr(keys[type]) : QString::fromLatin1(DataTypeShow2String(type));
}

bool PFChartWidget::IsAreaDayOff(const gx::Area* area) const {
    if (!module_ || !area) return false;
    for (const boost::shared_ptr<gx::Layer>& layer : area->GetLayers())
        for (const boost::shared_ptr<gx::Indicator>& indicator : layer->GetIndicators())
            if (indicator->GetDataSource() && module_->IsDayOff(indicator->GetDataSource()->GetBaseName()))
                return true;
    return false;
}

// ---- data ----

boost::shared_ptr<pf::DataSource> PFChartWidget::FindDataSource(void* handle) const {
    for (const boost::shared_ptr<pf::DataSource>& source : sources_)
        if (handle && source->GetHandle() == handle) return source;
    return boost::shared_ptr<pf::DataSource>();
}

boost::shared_ptr<pf::DataSource> PFChartWidget::CreateDataSource(void* baseHandle, const QString& symbol,
                                                                  namePeriod period) {
    if (!module_ || !module_->sendToHost) return boost::shared_ptr<pf::DataSource>();
    // The chart type's provider, found by its name (the name is longer than the kind, so the
    // module's generic look-up, which cuts it to the kind's length, cannot be used).
    coreInterfaceRequest request;
    std::memset(&request, 0, sizeof request);
    std::strncpy(request.kind, "CHARTTYPE", sizeof request.kind - 1);
    std::strncpy(request.provider, "TELVIX", sizeof request.provider - 1);
    std::strncpy(request.name, DataTypeShow2String(chartType_), sizeof request.name - 1);
    void* provider = nullptr;
    request.count = 1;
    request.result = &provider;
    module_->sendToHost(module_->hostHandle, MSG_GET_INTERFACE, reinterpret_cast<std::intptr_t>(&request), 0);

    coreNameInstrument name;
    std::memset(&name, 0, sizeof name);
    const int units = std::min<int>(symbol.size(), 254);
    std::memcpy(name.name, symbol.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(units));
    const QByteArray local = symbol.toLocal8Bit().left(254);
    std::memcpy(name.secondName, local.constData(), static_cast<std::size_t>(local.size()));
    name.period = period;
    const QByteArray type = priceType_.toLatin1();
    void* handle = pf::DataSource::Create(module_, provider, name.name, type.constData(), period, 1, nullptr);
    if (!handle) return boost::shared_ptr<pf::DataSource>();
    // Subscribed before the data source fetches its first array: the host hears of the
    // window's interest in the object before it is asked for the object's data.
    pf::DataSource::Subscribe(module_, GetCurrentInterface(), this, handle);
    boost::shared_ptr<pf::DataSource> source(new pf::DataSource(module_, this, handle, name, baseHandle));
    // A full update at once: every array of the object and the base series' name.
    coreCoreUpdateDpaData update;
    std::memset(&update, 0, sizeof update);
    update.handle = handle;
    update.subscriber = this;
    source->UpdateData(&update);
    sources_.push_back(source);
    return source;
}

void PFChartWidget::ReleaseDataSource(const boost::shared_ptr<pf::DataSource>& source) {
    if (!source) return;
    pf::DataSource::Unsubscribe(module_, GetCurrentInterface(), this, source->GetHandle());
    sources_.erase(std::remove(sources_.begin(), sources_.end(), source), sources_.end());
}

boost::shared_ptr<gx::Area> PFChartWidget::AddSecondaryPrimitive(void* baseHandle, const char* symbol,
                                                                  const char* name, int periodType,
                                                                  int periodLength, int startTime,
                                                                  const coreHeadNodeInfo* headNode, int style) {
    namePeriod period;
    period.type = static_cast<char>(periodType);
    period.length = periodLength;
    const boost::shared_ptr<pf::DataSource> source =
        CreateDataSource(baseHandle, QString::fromLocal8Bit(symbol ? symbol : ""), period);
    if (!source) return boost::shared_ptr<gx::Area>();
    boost::shared_ptr<gx::Area> area = chart_->AddArea();
    try {
        const boost::shared_ptr<gx::Indicator> indicator = area->AddLayer()->AddIndicator(source);
        gx::Indicator::Origin origin;
        origin.symbol = QString::fromLocal8Bit(symbol ? symbol : "");
        origin.provider = QString::fromLocal8Bit(name ? name : "");
        // The kind of the data object, as the host described it (3012).
        if (headNode) origin.type = QString::fromLocal8Bit(headNode->interfaceName, int(strnlen(headNode->interfaceName, sizeof headNode->interfaceName)));
        origin.periodType = period.type;
        origin.periodLength = period.length;
        origin.startTime = startTime;
        origin.style = style;
        indicator->SetOrigin(origin);
    } catch (...) {
        chart_->GetAreas().erase(std::remove(chart_->GetAreas().begin(), chart_->GetAreas().end(), area),
                                 chart_->GetAreas().end());
        ReleaseDataSource(source);
        chart_->RePlaceAreas();
        throw;
    }
    chart_->RePlaceAreas();
    UpdateScaleWidth();
    SetFirstDisplay(area, source->GetArray(0));
    CreateTimeScale();
    UpdateTimeScale();
    zoomRecording_ = false;
    UpdateTitle();
    update();
    return area;
}

int PFChartWidget::FirstDisplayCount(int total) const {
    if (total < 0) return freeStep_ <= maxFirstPositions_ ? 0 : maxFirstPositions_;
    const int visible = std::min(maxFirstPositions_, total + freeStep_);
    return visible == freeStep_ ? 0 : visible;
}

void PFChartWidget::SetZoomSlider(bool firstDisplay, const gx::Area* area) {
    if (chart_->GetAreas().empty()) return;
    const pf::ScaleEngine& e = *(area ? area : chart_->GetAreas().back().get())->GetEngine();
    const int total = pf::TruncToInt(e.GetX1());
    if (total == 0) return;
    QSlider* slider = toolBar_->GetZoomSlider();
    const QSignalBlocker block(slider);
    slider->setMinimum(-freeStep_);
    slider->setMaximum(total - 4);
    slider->setValue(firstDisplay ? -freeStep_ : total - e.GetColumnCount());
}

void PFChartWidget::SetFirstDisplay(const boost::shared_ptr<gx::Area>& area, const fxDataPointArray* first) {
    pf::ScaleEngine& e = *area->GetEngine();
    const int total = first ? pf::PointData::RecordCount(first) : 0;
    const int visible = FirstDisplayCount(first ? total : -1);
    e.SetColumnCount(visible);
    e.SetFirstColumn(0);
    e.Update(area->Rect(), 0.0f, static_cast<float>(total), e.GetMinPrice(), e.GetMaxPrice());
    // The window has one time scroll bar: it starts at the beginning again with the new
    // area's range, every area's first position with it, and the zoom slider at the first
    // display of the new area.
    for (const boost::shared_ptr<gx::Area>& a : chart_->GetAreas()) a->GetEngine()->SetFirstColumn(0);
    scrollBar_->SetQuietly(0, total - visible + freeStep_, 0);
    scrollBar_->setPageStep(std::max(1, visible));
    SetZoomSlider(true, area.get());
}

void PFChartWidget::RestorePositions(gx::Area* area, int first, int visible) {
    if (!area) return;
    int total = 0;
    for (const boost::shared_ptr<gx::Layer>& layer : area->GetLayers())
        for (const boost::shared_ptr<gx::Indicator>& indicator : layer->GetIndicators())
            for (const boost::shared_ptr<gx::Line>& line : indicator->GetLines()) total = std::max(total, line->Size());
    pf::ScaleEngine& e = *area->GetEngine();
    if (visible < 0) visible = FirstDisplayCount(total);
    e.SetColumnCount(std::max(0, std::min(visible, total + freeStep_)));
    e.SetFirstColumn(std::max(0, std::min(first, total)));
    e.Update(area->Rect(), 0.0f, static_cast<float>(total), e.GetMinPrice(), e.GetMaxPrice());
}

void PFChartWidget::FollowData(gx::Area& area, int oldTotal, int newTotal) {
    pf::ScaleEngine& e = *area.GetEngine();
    const long long first = e.GetFirstColumn();
    long long visible = e.GetColumnCount();
    // Free positions after the newest in view; not negative: the newest is in view.
    const long long gap = first + visible - oldTotal;
    // A view that showed all of its data keeps showing all of it while the data grows, up
    // to what a first display shows (a chart recomputed with a smaller box comes back as
    // it was before it shrank).
    if (first == 0 && gap >= 0 && newTotal > oldTotal)
        visible = std::max<long long>(visible, FirstDisplayCount(newTotal));
    // Never more positions than the data and its free space.
    visible = std::min<long long>(visible, static_cast<long long>(newTotal) + freeStep_);
    // A window showing its newest position keeps showing it, with the same free space to
    // its right; one scrolled back into the history stays where it is, as far as the data
    // still reaches.
    long long start = first;
    if (autoScroll_ || gap >= 0)
        start = newTotal + std::min<long long>(std::max<long long>(gap, 0), freeStep_) - visible;
    const long long last = std::min<long long>(newTotal - 1LL, newTotal - visible + freeStep_);
    start = std::max<long long>(0, std::min(start, last));
    e.SetColumnCount(static_cast<int>(std::max<long long>(0, visible)));
    e.SetFirstColumn(static_cast<int>(start));
    e.Update(area.Rect(), e.GetX0(), static_cast<float>(newTotal), e.GetMinPrice(), e.GetMaxPrice());
}

bool PFChartWidget::UpdateIndicatorPrimitives(const coreCoreUpdateDpaData* record) {
    if (!record) return false;
    const boost::shared_ptr<pf::DataSource> source = FindDataSource(record->handle);
    if (!source) return false;
    source->UpdateData(record);
    gx::FindAllIndicators all = gx::WidgetWalker<gx::FindAllIndicators>(chart_.get(), gx::FindAllIndicators()).Walk();
    for (const boost::shared_ptr<gx::Indicator>& indicator : all.indicators) {
        if (indicator->GetDataSource() != source) continue;
        indicator->UpdateLines();
        gx::Area* area = indicator->GetLayer() ? indicator->GetLayer()->GetArea() : nullptr;
        if (!area) continue;
        pf::ScaleEngine& e = *area->GetEngine();
        const int oldTotal = pf::TruncToInt(e.GetX1());
        int newTotal = 0;
        for (const boost::shared_ptr<gx::Line>& line : indicator->GetLines()) newTotal = std::max(newTotal, line->Size());
        if (newTotal == oldTotal) continue;
        FollowData(*area, oldTotal, newTotal);
        if (area != chart_->GetAreas().back().get()) continue;
        // The scroll bar and the zoom slider follow the last area's data; the slider stays at
        // its start while the view shows as many positions as a first display does.
        SetScrollRange();
        SetZoomSlider(e.GetColumnCount() == FirstDisplayCount(newTotal));
    }
    UpdateScaleWidth();
    ExpandTimeScale();
    update();
    return true;
}

void PFChartWidget::CreateTimeScale() {
    if (timeScale_) return;
    gx::FindMinTimeLine found = gx::WidgetWalker<gx::FindMinTimeLine>(chart_.get(), gx::FindMinTimeLine()).Walk();
    boost::shared_ptr<pf::ScaleEngine> engine;
    if (found.found) engine = found.found->GetEngine();
    else if (!chart_->GetAreas().empty()) engine = chart_->GetAreas().front()->GetEngine();
    timeScale_.reset(new gx::TimeScale(this, engine, tsGridColor_.rgb()));
    timeScale_->Resize();
    PlaceChildren();
}

void PFChartWidget::ExpandTimeScale() {
    if (!timeScale_) return;
    gx::FindMinTimeLine found = gx::WidgetWalker<gx::FindMinTimeLine>(chart_.get(), gx::FindMinTimeLine()).Walk();
    const boost::shared_ptr<gx::Line>& line = found.found;
    if (!line) {
        timeScale_->Clear();
        return;
    }
    if (timeScale_->GetEngine() != line->GetEngine()) timeScale_->SetEngine(line->GetEngine());
    const int have = timeScale_->Count();
    const int size = line->Size();
    if (have > size || (have > 0 && timeScale_->GetPosTime(0) != line->GetTime(0))) {
        timeScale_->Clear();
        line->UpdateTimes(timeScale_.get(), 0);
        return;
    }
    // The newest position may have been redrawn by the host: its time is taken again.
    if (have > 0 && timeScale_->GetPosTime(have - 1) != line->GetTime(have - 1))
        timeScale_->SetTime(have - 1, line->GetTime(have - 1));
    if (size > have || have == 0) line->UpdateTimes(timeScale_.get(), have);
}

void PFChartWidget::UpdateTimeScale() {
    ExpandTimeScale();
    if (timeScale_) timeScale_->Resize();
}

void PFChartWidget::SetScrollRange() {
    if (chart_->GetAreas().empty()) return;
    const pf::ScaleEngine& e = *chart_->GetAreas().back()->GetEngine();
    scrollBar_->SetQuietly(0, pf::TruncToInt(e.GetX1()) - e.GetColumnCount() + freeStep_, e.GetFirstColumn());
    scrollBar_->setPageStep(std::max(1, e.GetColumnCount()));
}

void PFChartWidget::AfterDelete() {
    gx::FindAllIndicators all = gx::WidgetWalker<gx::FindAllIndicators>(chart_.get(), gx::FindAllIndicators()).Walk();
    for (const boost::shared_ptr<pf::DataSource>& source : std::vector<boost::shared_ptr<pf::DataSource> >(sources_)) {
        bool used = false;
        for (const boost::shared_ptr<gx::Indicator>& indicator : all.indicators)
            used = used || indicator->GetDataSource() == source;
        if (!used) ReleaseDataSource(source);
    }
    UpdateScaleWidth();
    PlaceChildren();
    ExpandTimeScale();
    UpdateTitle();
    update();
}

int PFChartWidget::CountDpaByType(const QString& typeName) const {
    if (priceType_.compare(typeName, Qt::CaseInsensitive) != 0) return 0;
    int count = 0;
    gx::FindAllIndicators all = gx::WidgetWalker<gx::FindAllIndicators>(chart_.get(), gx::FindAllIndicators()).Walk();
    for (const boost::shared_ptr<gx::Indicator>& indicator : all.indicators) count += indicator->GetLineCount();
    return count;
}

void PFChartWidget::ResetType(const QString& typeName) {
    if (typeName.isEmpty() || typeName == priceType_) return;
    priceType_ = typeName;
    gx::FindAllIndicators all = gx::WidgetWalker<gx::FindAllIndicators>(chart_.get(), gx::FindAllIndicators()).Walk();
    for (const boost::shared_ptr<gx::Indicator>& indicator : all.indicators) {
        const boost::shared_ptr<pf::DataSource> old = indicator->GetDataSource();
        if (!old) continue;
        const coreNameInstrument& name = old->GetInstrument();
        const QString symbol = QString::fromUtf16(reinterpret_cast<const char16_t*>(name.name),
                                                  int(std::find(name.name, name.name + 254, coreWChar(0)) - name.name));
        const boost::shared_ptr<pf::DataSource> fresh = CreateDataSource(old->GetBaseHandle(), symbol, name.period);
        if (!fresh) continue;
        indicator->SetDataSource(fresh);
        indicator->UpdateLines();
    }
    AfterDelete();  // releases the sources no indicator uses any more
}

QString PFChartWidget::UpdateTitle() {
    gx::MakeCaption captions = gx::WidgetWalker<gx::MakeCaption>(chart_.get(), gx::MakeCaption()).Walk();
    QString title = QString::fromLatin1(GetModuleName());
    if (!captions.caption.isEmpty()) title += QLatin1String(", ") + captions.caption;
    title_ = title;
    setWindowTitle(title);
    if (title != titleSent_ && module_ && module_->sendToHost) {
        titleSent_ = title;
        module_->sendToHost(module_->hostHandle, MSG_TITLE_CHANGED, reinterpret_cast<std::intptr_t>(this),
                            reinterpret_cast<std::intptr_t>(title.utf16()));
    }
    return title;
}

void PFChartWidget::SendMainChange(const QString& text) {
    if (!module_ || !module_->sendToHost) return;
    char record[259];
    std::memset(record, 0, sizeof record);
    // Four zero bytes, then up to 255 characters filling the record (no terminator then).
    const QByteArray local = text.toLocal8Bit().left(static_cast<int>(sizeof record) - 4);
    std::memcpy(record + 4, local.constData(), static_cast<std::size_t>(local.size()));
    module_->sendToHost(hostHandle_, MSG_MAIN_CHANGED, reinterpret_cast<std::intptr_t>(record), 0);
}

void PFChartWidget::ShowIndicatorProp(const boost::shared_ptr<gx::Line>& line) {
    if (line && line->GetIndicator()) line->GetIndicator()->OnShowPropIndicator();
}

// ---- painting ----

void PFChartWidget::paintEvent(QPaintEvent*) {
    if (busy_ || repaintSuspended_) return;
    SetCursor();
    QPainter painter(this);
    Draw(painter, true);
}

void PFChartWidget::DrawBackImage(QPainter& painter, const QRect& data) const {
    const CSkin* skin = GetSkin();
    if (!skin || skin->GetBackImage().isNull() || data.width() < 1 || data.height() < 1) return;
    // Background positions: 1 to 4 the corners (top left, top right, bottom left, bottom
    // right), 5 tiled, 6 stretched over the data part, anything else centred. The picture
    // is drawn faintly so that the grid stays readable through it.
    enum { TopLeft = 1, TopRight = 2, BottomLeft = 3, BottomRight = 4, Tiled = 5, Stretched = 6 };
    const int kMargin = 4;
    const qreal kOpacity = 0.35;
    const QImage& image = skin->GetBackImage();
    painter.save();
    painter.setClipRect(data);
    painter.setOpacity(kOpacity);
    const QSize size = image.size();
    switch (skin->GetBackPos()) {
        case TopLeft: painter.drawImage(data.topLeft() + QPoint(kMargin, kMargin), image); break;
        case TopRight:
            painter.drawImage(QPoint(data.right() - kMargin - size.width() + 1, data.top() + kMargin), image);
            break;
        case BottomLeft:
            painter.drawImage(QPoint(data.left() + kMargin, data.bottom() - kMargin - size.height() + 1), image);
            break;
        case BottomRight:
            painter.drawImage(data.bottomRight() - QPoint(kMargin + size.width() - 1, kMargin + size.height() - 1), image);
            break;
        case Tiled: painter.drawTiledPixmap(data, QPixmap::fromImage(image), QPoint()); break;
        case Stretched: painter.drawImage(data, image); break;
        default:
            painter.drawImage(QPoint(data.left() + (data.width() - size.width()) / 2,
                                     data.top() + (data.height() - size.height()) / 2),
                              image);
            break;
    }
    painter.restore();
}

void PFChartWidget::Draw(QPainter& painter, bool force) {
    if (busy_) return;
    if (repaintSuspended_ && !force) return;
    // Only what no area, scale or time scale paints over is filled here: the rows the
    // areas leave below them and the gap above the time scale.
    const QRect chartRect = ChartRect();
    const int covered = chart_->GetAreas().empty() ? chartRect.top() : chart_->GetAreas().back()->GetPaneRect().bottom() + 1;
    const int stripTop = timeScale_ ? timeScale_->Rect().top() : GetTimeScrollBarTop();
    if (stripTop > covered) painter.fillRect(QRect(0, covered, width(), stripTop - covered), GetAreasColor());
    ExpandTimeScale();
    for (const boost::shared_ptr<gx::Area>& area : chart_->GetAreas()) {
        const gx::FindMinMax range =
            gx::WidgetWalker<gx::FindMinMax>(chart_.get(), gx::FindMinMax(area.get(), FLT_MAX, FLT_MIN, -1.0f, 4.0f))
                .Walk();
        pf::ScaleEngine& e = *area->GetEngine();
        e.Update(area->Rect(), e.GetX0(), e.GetX1(), range.minPrice, range.maxPrice);
        const QRect pane = area->GetPaneRect();
        const QRect r = area->Rect();
        painter.save();
        leftScale_->Resize(QRect(QPoint(pane.left(), r.top()), QPoint(r.left() - 1, r.bottom())));
        leftScale_->Draw(painter, range, area->GetEngine(), area);
        painter.restore();
        if (rightScale_) {
            painter.save();
            rightScale_->Resize(QRect(QPoint(r.right() + 1, r.top()), QPoint(pane.right(), r.bottom())));
            rightScale_->Draw(painter, range, area->GetEngine(), area);
            painter.restore();
        }
        // Below its caption an area that can paints the grid with its figures from one kept
        // picture; the grid leaves those rows to it.
        const QRect data = gx::Grid::DataRect(e);
        const bool compose = gx::AreaPicture::Composable(painter, *area);
        painter.save();
        const gx::Grid::Rows grid =
            grid_->Draw(painter, range, area->GetEngine(), compose ? area->BodyTop(data) : INT_MAX);
        painter.restore();
        area->ComposeNextPaint(compose ? grid : gx::Grid::Rows(), data, area->BodyTop(data));
        DrawBackImage(painter, r);
    }
    grid_->ForgetUnused();
    if (timeScale_) {
        painter.save();
        timeScale_->Draw(painter);
        painter.restore();
    }
    painter.save();
    chart_->Draw(painter);
    painter.restore();
    drawnOnce_ = true;
}
