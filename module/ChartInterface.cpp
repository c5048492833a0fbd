#include "module/ChartInterface.h"
#include "module/LogHelper.h"

#include <QBuffer>
#include <boost/shared_ptr.hpp>
#include <QPixmap>
#include <QTimerEvent>
#include <QWidget>
#include <algorithm>
#include <cstring>

#include "gui/Barrier.h"
#include "gui/PFChartWidget.h"
#include "gui/ToolBar.h"
#include "gx/Chart.h"
#include "xml/CXMLWorkData.h"
#include "module/PFChartModule.h"

static void initChartResources() { Q_INIT_RESOURCE(pfchart); }

ChartInterface::ChartInterface(PFChartModule* module, const Traits& traits)
    : module_(module), traits_(traits) {
    initChartResources();
    timerId_ = startTimer(1000);
}

ChartInterface::~ChartInterface() {
    // Widgets still listed are left to Qt's parent ownership.
    if (timerId_) killTimer(timerId_);
}

void ChartInterface::InicParameters(HostCallback callback, HostCallback callback2, void* handle,
                                    void* handle2) {
    sendToHost = callback;
    sendToHost2 = callback2;
    hostHandle = handle;
    hostHandle2 = handle2;
}

int ChartInterface::AddInterface() {
    ownHandle_ = this;
    if (!sendToHost) return 0;
    coreInterfaceRequest record;
    std::memset(&record, 0, sizeof record);
    std::strncpy(record.kind, "Windowcomponent", sizeof record.kind - 1);
    std::strncpy(record.provider, "TELVIX", sizeof record.provider - 1);
    std::strncpy(record.name, traits_.registeredName, sizeof record.name - 1);
    // The count field is a 32-bit word: it carries the low 32 bits of the second handle.
    record.count = static_cast<std::int32_t>(reinterpret_cast<std::intptr_t>(hostHandle2));
    record.result = reinterpret_cast<void**>(this);
    sendToHost(hostHandle, MSG_REGISTER_INTERFACE, reinterpret_cast<std::intptr_t>(&record), 0);
    ownHandle_ = reinterpret_cast<void*>(record.result);
    return 0;
}

int ChartInterface::GetWindowComponentName(nameComponent* name) {
    if (!name) return 1;
    std::memset(name->name, 0, sizeof name->name);
    std::strncpy(name->name, traits_.shortName, sizeof name->name - 1);
    std::memset(name->zero, 0, sizeof name->zero);
    return 0;
}

int ChartInterface::GetUnicodeWindowComponentName(fxwcNameCompUnicode* name) {
    if (!name) return 0;
    QPixmap pixmap(QString::fromLatin1(traits_.icon));
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    pixmap.save(&buffer, "PNG");
    if (name->iconBuffer && name->iconSize >= png.size()) {
        name->iconSize = png.size();
        std::memcpy(name->iconBuffer, png.constData(), static_cast<std::size_t>(png.size()));
    }
    const QString text = module_ ? module_->tr(traits_.displayKey) : QString::fromLatin1(traits_.displayKey);
    const int n = std::min(int(text.size()), 500);
    std::memset(name->name, 0, sizeof name->name);
    std::memcpy(name->name, text.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(n));
    name->zero = 0;
    return 0;
}

PFChartWidget* ChartInterface::CreateWindowComponent(CREATEWINDOWCOMPONENT* record) {
    if (!record) return nullptr;
    // Window ids are 32-bit words on the terminal.
    QWidget* parent = QWidget::find(static_cast<WId>(static_cast<std::uint32_t>(record->parentWindowId)));
    QWidget* second = QWidget::find(static_cast<WId>(static_cast<std::uint32_t>(record->secondWindowId)));
    PFChartWidget* widget = new pf::gui::Guarded<PFChartWidget>(module_, traits_.chartType, ownHandle_, parent, second);
    record->widget = widget;
    widget->Resize();
    widget->show();
    AddWidget(widget);
    return widget;
}

int ChartInterface::DestroyWindowComponent(void* target) {
    // The host hears of every window it asks to destroy, listed or not. A window of another
    // of the module's interfaces is still one of the module's: its record carries its host
    // handle. Only an address no interface lists is never read; its record carries 0.
    const bool listed = IsListed(target);
    bool known = listed;
    if (module_)
        for (const ChartInterface* iface : {module_->GetPFInterface(), module_->GetRenkoInterface(), module_->GetKagiInterface()})
            known = known || (iface && iface->IsListed(target));
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    if (sendToHost) {
        fxwcWindowDestroyed record;
        record.hostHandle = known ? widget->GetHostHandle() : nullptr;
        record.widget = widget;
        sendToHost(hostHandle, MSG_WINDOW_DESTROYED, reinterpret_cast<std::intptr_t>(&record), 0);
    }
    if (!listed) return 1;
    DelWidget(widget);
    delete widget;
    return 0;
}

void ChartInterface::DropInstruments(void* target, const fxwcDropList* list) {
    if (!IsListed(target)) return;
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    widget->setFocus(Qt::OtherFocusReason);
    // An empty drop (no list, no records, a count of 0) still focuses the window and
    // recomputes its title. A count no terminal could drag is no list: nothing of it is read.
    fxwcDropList drop{0, nullptr};
    if (list) drop = *list;  // packed: read the fields by value
    if (drop.count > kMaxDroppedInstruments) {
        LogHelper::ShowLogInfo(1, 3, QStringLiteral("Drop of %1 instruments refused: more than %2 cannot be a list")
                                         .arg(drop.count)
                                         .arg(kMaxDroppedInstruments));
        drop.count = 0;
    }
    if (!drop.records) drop.count = 0;
    for (std::int32_t i = 0; i < drop.count; ++i) {
        fxwcDropInstrument record;
        std::memcpy(&record, reinterpret_cast<const char*>(drop.records) + sizeof record * std::size_t(i), sizeof record);
        // The texts are the host's: they are cut at their field's end whether terminated or not.
        record.symbol[sizeof record.symbol - 1] = 0;
        record.providerName[sizeof record.providerName - 1] = 0;
        coreHeadNodeInfo reply;
        std::memset(&reply, 0, sizeof reply);
        if (sendToHost)
            sendToHost(hostHandle, MSG_HEAD_NODE_INFO, reinterpret_cast<std::intptr_t>(record.baseHandle),
                       reinterpret_cast<std::intptr_t>(&reply));
        widget->SetReplacePending(false);
        if (widget->IsReplaceInstrument())
            widget->AddSecondaryPrimitive(record.baseHandle, record.symbol, record.providerName, record.periodType,
                                          record.periodLength, record.startTime, &reply, record.style);
    }
    widget->UpdateTitle();
}

void ChartInterface::AddWidget(PFChartWidget* widget) {
    if (widget && !IsListed(widget)) widgets_.push_back(widget);
}

void ChartInterface::DelWidget(PFChartWidget* widget) {
    widgets_.erase(std::remove(widgets_.begin(), widgets_.end(), widget), widgets_.end());
}

int ChartInterface::GetWidgetIndex(const PFChartWidget* widget) const {
    auto it = std::find(widgets_.begin(), widgets_.end(), widget);
    return it == widgets_.end() ? -1 : int(it - widgets_.begin());
}

void ChartInterface::SaveLoadReQuest(void* target, const coreSzNode* record, bool load) {
    if (!record || !IsListed(target)) return;
    PFChartWidget* widget = static_cast<PFChartWidget*>(target);
    const coreSzNode node = *record;  // packed: read by value
    void* const document = reinterpret_cast<void*>(static_cast<std::uintptr_t>(node.document));
    void* const element = reinterpret_cast<void*>(static_cast<std::uintptr_t>(node.node));
    // Should making the holder fail, the shared pointer deletes the tree and the failure
    // goes on to the module's guard.
    const boost::shared_ptr<CXMLWorkData> holder(new CXMLWorkData(hostHandle, document, element, sendToHost));
    if (load)
        widget->FromXML(holder);
    else
        widget->ToXML(holder);
    if (!widget->GetChart()->GetAreas().empty()) widget->GetToolBar()->ResetStateButtonList(false);
    widget->UpdateTitle();
}

void ChartInterface::ChangePanelStatus(void* target, const fxwcPanelStatus* record) {
    if (!record || !IsListed(target)) return;
    const fxwcPanelStatus status = *record;
    static_cast<PFChartWidget*>(target)->PanelChangeStatus(status.value, status.status);
}

int ChartInterface::ApplyProperty(const PROPERTY_CHANGE* record) {
    if (!record) return 1;
    const PROPERTY_CHANGE change = *record;
    if (!IsListed(change.widget)) return 0;
    PFChartWidget* widget = static_cast<PFChartWidget*>(change.widget);
    widget->ApplyProperty(change.page, change.value);
    widget->UpdateTitle();
    return 0;
}

int ChartInterface::FxWindowComponentGetCaption(const fxwcGetCaption* record, coreWChar* reply) {
    if (!record) return 1;
    const fxwcGetCaption request = *record;
    if (!IsListed(request.widget) || !reply) return 1;
    const QString title = static_cast<PFChartWidget*>(request.widget)->UpdateTitle();
    // The whole title with its terminator; a title is a host string, bounded by its limit.
    const int units = std::min(int(title.size()), int(FXWC_TITLE_MAX_UNITS));
    std::memcpy(reply, title.utf16(), sizeof(coreWChar) * static_cast<std::size_t>(units));
    // The host's buffer may sit at any address: the terminator is copied like the text.
    const coreWChar terminator = 0;
    std::memcpy(reinterpret_cast<char*>(reply) + sizeof(coreWChar) * static_cast<std::size_t>(units), &terminator,
                sizeof terminator);
    return 0;
}

int ChartInterface::GetOwnerForObj(fxwcGetOwnerForObj* record) {
    if (!record) return 1;
    void* object = nullptr;
    std::memcpy(&object, reinterpret_cast<const char*>(record) + offsetof(fxwcGetOwnerForObj, object), sizeof object);
    for (PFChartWidget* widget : widgets_) {
        if (!widget->HoldsObject(object)) continue;
        void* const iface = widget->GetCurrentInterface();
        void* const owner = widget;
        std::memcpy(reinterpret_cast<char*>(record) + offsetof(fxwcGetOwnerForObj, iface), &iface, sizeof iface);
        std::memcpy(reinterpret_cast<char*>(record) + offsetof(fxwcGetOwnerForObj, widget), &owner, sizeof owner);
        return 0;
    }
    return 1;
}

PFChartWidget* ChartInterface::GetActiveWidget() const {
    for (PFChartWidget* widget : widgets_)
        if (widget->IsActive()) return widget;
    return nullptr;
}

bool ChartInterface::IsListed(const void* widget) const {
    return widget && std::find(widgets_.begin(), widgets_.end(), widget) != widgets_.end();
}

void ChartInterface::timerEvent(QTimerEvent* event) {
    if (event->timerId() != timerId_) return;
    for (PFChartWidget* widget : widgets_) {
        if (widget->IsRepaintSuspended()) continue;
        widget->update();
        repainted_ = true;
    }
}

int ChartInterface::ReceiveMessageWrap(void*, unsigned int message, std::intptr_t p1,
                                       std::intptr_t p2) {
    void* record = reinterpret_cast<void*>(p1);
    switch (message) {
        case MSG_WC_NAME:
            return record ? GetWindowComponentName(static_cast<nameComponent*>(record)) : 1;
        case MSG_WC_UNICODE_NAME:
            return record ? GetUnicodeWindowComponentName(static_cast<fxwcNameCompUnicode*>(record)) : 1;
        case MSG_WC_QUERY:
            // The host's slot may sit at any address.
            if (record) {
                const std::int32_t one = 1;
                std::memcpy(record, &one, sizeof one);
            }
            return 0;
        case MSG_WC_CREATE:
            if (!record) return 1;
            CreateWindowComponent(static_cast<CREATEWINDOWCOMPONENT*>(record));
            return 0;
        case MSG_PANEL_STATUS: {
            if (!record) return 1;
            const fxwcPanelTarget target = *static_cast<const fxwcPanelTarget*>(record);
            ChangePanelStatus(target.widget, reinterpret_cast<const fxwcPanelStatus*>(p2));
            return 0;
        }
        case MSG_LOAD_CHART:
        case MSG_SAVE_CHART:
            SaveLoadReQuest(record, reinterpret_cast<const coreSzNode*>(p2), message == MSG_LOAD_CHART);
            return 0;
        // Messages about one chart window: only windows this interface created are acted
        // on; any other address answers 1 and is never dereferenced.
        case MSG_DATA_UPDATED: {
            if (!record) return 1;
            void* widget = nullptr;  // packed record: the field may sit at any address
            std::memcpy(&widget, static_cast<char*>(record) + offsetof(coreCoreUpdateDpaData, subscriber),
                        sizeof widget);
            if (!IsListed(widget)) return 1;
            coreCoreUpdateDpaData update;
            std::memcpy(&update, record, sizeof update);
            PFChartWidget* w = static_cast<PFChartWidget*>(widget);
            w->UpdateIndicatorPrimitives(&update);
            w->UpdateTitle();
            return 0;
        }
        case MSG_WC_DESTROY:
            return DestroyWindowComponent(record);
        case MSG_WC_RESIZE:
            if (!IsListed(record)) return 1;
            static_cast<PFChartWidget*>(record)->Resize();
            return 0;
        case MSG_WC_SHOW: {
            if (!IsListed(record)) return 1;
            PFChartWidget* w = static_cast<PFChartWidget*>(record);
            w->Show(true);
            w->UpdateTitle();
            return 0;
        }
        case MSG_WC_DROP_INSTRUMENTS:
            DropInstruments(record, reinterpret_cast<const fxwcDropList*>(p2));
            return 0;
        case MSG_WC_PRINT: {
            if (!IsListed(record)) return 1;
            PFChartWidget* w = static_cast<PFChartWidget*>(record);
            if (w->IsBusy()) return 1;
            w->Print();
            return 0;
        }
        case MSG_WC_OWNER_FOR_OBJECT:
            return GetOwnerForObj(static_cast<fxwcGetOwnerForObj*>(record));
        case MSG_WC_CAPTION:
            FxWindowComponentGetCaption(static_cast<const fxwcGetCaption*>(record), reinterpret_cast<coreWChar*>(p2));
            return 0;
        case MSG_APPLY_PROPERTY:
            ApplyProperty(static_cast<const PROPERTY_CHANGE*>(record));
            return 0;
        default:
            return 0;
    }
}
