#include "module/PFChartModule.h"
#include "module/LogHelper.h"

#include <cstring>

#include "gui/Barrier.h"
#include "gui/CSkin.h"
#include "gui/PFChartWidget.h"
#include "gx/TextStatusBar.h"
#include "module/KagiChartInterface.h"
#include "module/PFChartInterface.h"
#include "module/RenkoChartInterface.h"
#include "module/TranslateManager.h"

PFChartModule::PFChartModule()
    : CModule("Telvix.PFChart module", 1, 1, 9, "PFChartModule", "CTranslatePFgraph") {
    SetDescription("Points and Figures chart analysis");
    SetKind(82);
    skin_.reset(new CSkin(this));
    std::memset(&dealRequest_, 0, sizeof dealRequest_);
    pfInterface_.reset(new pf::gui::Guarded<PFChartInterface>(this));
    renkoInterface_.reset(new pf::gui::Guarded<RenkoChartInterface>(this));
    kagiInterface_.reset(new pf::gui::Guarded<KagiChartInterface>(this));
}

PFChartModule::~PFChartModule() { dealRequest_.result = nullptr; }

int PFChartModule::UndoRequest(const coreUndoStart* record) {
    if (!record) return 1;
    void* target = nullptr;  // packed record: the widget's word may sit at any address
    std::memcpy(&target, reinterpret_cast<const char*>(record) + offsetof(coreUndoStart, widget), sizeof target);
    // Only a window of the module's own is touched; any other address is never dereferenced.
    PFChartWidget* widget = nullptr;
    for (ChartInterface* iface : {GetPFInterface(), GetRenkoInterface(), GetKagiInterface()})
        if (iface->IsListed(target)) widget = static_cast<PFChartWidget*>(target);
    if (!widget || widget->IsBusy()) return 1;
    coreUndoRefresh result;
    const int answer = widget->UndoPop(record, &result);
    if (sendToHost) sendToHost(hostHandle, MSG_UNDO_REPLY, reinterpret_cast<std::intptr_t>(&result), answer);
    return answer;
}

int PFChartModule::LoadSkinFromHost(const coreWChar* text) {
    if (!text) return LoadSkin(QString());
    // The path ends within 255 units; a text without a terminator there is refused and the
    // skin stays as it is. The host's text may sit at any address: its units are copied one
    // by one, never read in place.
    const int kMaxUnits = 255;
    coreWChar units[kMaxUnits];
    int length = 0;
    for (; length < kMaxUnits; ++length) {
        std::memcpy(&units[length], reinterpret_cast<const char*>(text) + sizeof(coreWChar) * std::size_t(length),
                    sizeof(coreWChar));
        if (units[length] == 0) break;
    }
    if (length == kMaxUnits) {
        LogHelper::ShowLogInfo(1, 3, QStringLiteral("Skin not read: the path has no end within %1 units").arg(kMaxUnits));
        return 1;
    }
    const QString path = QString::fromUtf16(reinterpret_cast<const char16_t*>(units), length);
    const int result = LoadSkin(path);
    if (result != 0) LogHelper::ShowLogInfo(1, 3, QStringLiteral("Skin not read from \"%1\"").arg(path));
    return result;
}

int PFChartModule::LoadSkin(const QString& path) {
    const int read = skin_->LoadSkin(path);
    for (ChartInterface* iface : {GetPFInterface(), GetRenkoInterface(), GetKagiInterface()})
        for (PFChartWidget* widget : iface->GetWidgets()) {
            widget->ApplySkin();
            widget->update();
        }
    return read || path.isEmpty() ? 0 : 1;
}

void PFChartModule::CreateStatusBar() {
    // Should making the holder fail, the shared pointer deletes the new status bar before the
    // failure goes on.
    const boost::shared_ptr<gx::TextStatusBar> holder(
        new gx::TextStatusBar(pfInterface_->GetHostHandle(), hostHandle, this));
    holder->InitTextStatusBar();
    statusBar_ = holder;
}

ChartInterface* PFChartModule::GetPFInterface() const { return pfInterface_.get(); }
ChartInterface* PFChartModule::GetRenkoInterface() const { return renkoInterface_.get(); }
ChartInterface* PFChartModule::GetKagiInterface() const { return kagiInterface_.get(); }

int PFChartModule::ReceiveMessageWrap(void* target, unsigned int message, std::intptr_t p1,
                                      std::intptr_t p2) {
    try {
        return Dispatch(target, message, p1, p2);
    } catch (...) {
        return 1;
    }
}

int PFChartModule::Dispatch(void* target, unsigned int message, std::intptr_t p1,
                            std::intptr_t p2) {
    CModule::ReceiveMessageWrap(target, message, p1, p2);

    // A message addressed to a chart type interface goes to it first; its answer is not
    // returned, the module switch below still runs.
    ChartInterface* interfaces[] = {pfInterface_.get(), renkoInterface_.get(), kagiInterface_.get()};
    for (ChartInterface* iface : interfaces) {
        if (target && target == static_cast<void*>(iface)) {
            iface->ReceiveMessageWrap(target, message, p1, p2);
            break;
        }
    }

    switch (message) {
        case MSG_REGISTER:
            InitDefaultStrings();
            return CreateWindowComponentInterface();
        case MSG_DEALING_READY:
            getDealInterface();
            CreateStatusBar();
            return 0;
        case MSG_EVENT: {
            FXEvent* event = reinterpret_cast<FXEvent*>(p1);
            if (!event) return 0;
            if (event->code == EVENT_ACCOUNT_ADDED || event->code == EVENT_ACCOUNT_REMOVED)
                accountWork(event);
            else if (event->code == EVENT_DAYOFF_CHANGED)
                UpdateDayoffStatus(event);
            return 0;
        }
        case MSG_UNDO_REQUEST:
            return UndoRequest(reinterpret_cast<const coreUndoStart*>(p1));
        case MSG_CONVERT_TO_TYPE:
            return MwiConvertToType(p1, p2);
        case MSG_NEED_TO_CONVERT:
            return MwiNeedToConvert(p1, p2);
        case MSG_LS_UPDATE: {
            // The record names a data array, not a window: every window showing it follows.
            const coreUpdateLs* record = reinterpret_cast<const coreUpdateLs*>(p1);
            if (!record) return 0;
            for (ChartInterface* iface : {GetPFInterface(), GetRenkoInterface(), GetKagiInterface()})
                if (iface)
                    for (PFChartWidget* widget : std::vector<PFChartWidget*>(iface->GetWidgets()))
                        widget->OnUpdateLS(record);
            return 0;
        }
        default:
            return 0;
    }
}

const std::vector<std::pair<const char*, const char*> >& PFChartModule::DefaultStrings() {
    static const std::vector<std::pair<const char*, const char*> > strings = {
        {"PF0001", "Point and Figure"},
        {"PF0002", "Renko"},
        {"PF0003", "Kagi"},
        {"PF0004", "Select intstrument"},
        {"PF0005", "Show grid"},
        {"PF0017", "First value"},
        {"PF0018", "Last value"},
        {"PF0019", "Trade"},
        {"PF0020", "Add data to build graph"},
        {"PF0021", "Zoom Out"},
        {"PF0022", "Non-trading time"},
        {"M0036", "Instruments"},
        {"M0254", "1 hour"},
        {"M0255", "3 hours"},
        {"M0256", "Day"},
        {"M0257", "Month"},
        {"M0258", "Year"},
        {"C0004BckGrndColor", "Background color"},
        {"C0015Delete", "Delete"},
        {"C0017Font", "Font"},
        {"C0018FontColor", "Font color"},
        {"C0025Main", "Main"},
        {"C0030Propes", "Properties"},
        {"C0033Select", "Select"},
        {"C0035SetAsDef", "Save as default"},
        {"C0036Message", "Show properties of selected objects"},
        {"C0046ZoomIN", "Zoom In"},
        {"C0077", "No"},
        {"C0078", "Yes"},
        {"C0111Message", "Replace instrument?"},
        {"G0001", "Add new chart"},
        {"G0006", "Cross cursor"},
        {"G0011", "Extend chart left edge"},
        {"G0016", "Free space positions"},
        {"G0019", "Chart window"},
        {"G0021", "Grid color"},
        {"G0036", "Left scale"},
        {"G0045Message", "This slider changes horizontal scale of chart window"},
        {"G0052", "Right scale"},
        {"G0064Message", "Sets font color of chart window (left and right scales)"},
        {"G0065Message", "Sets name and font size of chart window (left and right scales)"},
        {"G0067Message", "Sets backcolor of  time scale"},
        {"G0075Message", "Sets grid color of time scale"},
        {"G0078", "Time scale"},
        {"G0086", "Auto scroll"},
        {"G0088Message", "Chart window contains one or several chart areas with currency charts, indicators, instruments and etc."},
        {"G0134", "Delete Instrument/Indicator/Line"},
        {"G0135", "Delete Area"},
        {"G0137", "Move Line"},
        {"G0138", "Change Scale"},
        {"Tr0038Deal", "Trade"},
        {"Tr0131SetOrdr", "Place order"},
    };
    return strings;
}

void PFChartModule::InitDefaultStrings() {
    for (const auto& entry : DefaultStrings())
        GetTranslateManager()->InsertTranslate(entry.first, entry.second);
}

int PFChartModule::CreateWindowComponentInterface() {
    ChartInterface* interfaces[] = {pfInterface_.get(), renkoInterface_.get(), kagiInterface_.get()};
    for (ChartInterface* iface : interfaces)
        iface->InicParameters(sendToHost, sendToHost2, hostHandle, hostHandle2);
    for (ChartInterface* iface : interfaces) iface->AddInterface();
    return 0;
}
