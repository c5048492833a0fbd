// PFChartModule: the host interfaces the charts need (main window, candle transport, deal
// interfaces), the trading accounts, the dealing day-off table, the bid/ask/middle
// conversion questions of the main window and the default-parameters file.
#include <QStringList>
#include <QWidget>
#include <cstring>
#include <memory>
#include <new>
#include <vector>

#include "gui/PFChartWidget.h"
#include "module/ChartInterface.h"
#include "module/PFChartModule.h"
#include "xml/CXMLWorkData.h"

namespace {

// Counts of interfaces, accounts and day-off records the host reports. A count beyond
// this bound is not believed: nothing is allocated for it, exactly as when an allocation
// fails, so a broken host cannot make the module allocate or walk absurd arrays.
const std::int32_t kMaxHostCount = 100000;

bool Believable(std::int32_t count) { return count > 0 && count <= kMaxHostCount; }

template <typename T>
std::intptr_t Param(T* record) {
    return reinterpret_cast<std::intptr_t>(record);
}

// A deal interface handle carried in a 32-bit word of a host record.
void* HandleFromWord(std::uint32_t word) {
    return reinterpret_cast<void*>(static_cast<std::uintptr_t>(word));
}

void SetText(char* field, std::size_t size, const char* text) {
    std::memset(field, 0, size);
    std::strncpy(field, text, size - 1);
}

// Looks a "TELVIX" interface up once: the cache is the request's single result slot, and
// once the host has written a handle into it the host is not asked again.
void* FindInterfaceOnce(HostCallback send, void* core, void*& cache, const char* kind,
                        const char* name) {
    if (cache || !send) return cache;
    coreInterfaceRequest request;
    std::memset(&request, 0, sizeof request);
    SetText(request.kind, sizeof request.kind, kind);
    SetText(request.provider, sizeof request.provider, "TELVIX");
    SetText(request.name, sizeof request.name, name);
    request.count = 1;
    request.result = &cache;
    send(core, MSG_GET_INTERFACE, Param(&request), 0);
    return cache;
}

// The host hands an array of records over in two steps through a request {count, array}:
// first it writes the count, then it fills an array of that many zeroed records. `send`
// delivers one step's message with the request. Null, with `n` 0, when the count is not
// believable or the array cannot be allocated; the second step is skipped then.
template <typename Request, typename Record, typename Send>
std::unique_ptr<Record[]> FetchRecords(unsigned int countMessage, unsigned int listMessage,
                                       std::int32_t& n, Send send) {
    Request request;
    std::memset(&request, 0, sizeof request);
    send(countMessage, &request);
    n = request.count;
    std::unique_ptr<Record[]> records(Believable(n) ? new (std::nothrow) Record[n]() : nullptr);
    if (!records) {
        n = 0;
        return records;
    }
    request = Request{n, records.get()};  // whole-record store: the fields are packed
    send(listMessage, &request);
    return records;
}

QString DayOffSymbol(const fxdDayOff& record) {
    // The symbol is NUL-terminated within its 19 bytes; a host that fills all 19 still
    // gets no read past the field.
    return QString::fromLatin1(record.symbol, int(strnlen(record.symbol, sizeof record.symbol)));
}

}  // namespace

void* PFChartModule::GetGlobalMainWindow() {
    return FindInterfaceOnce(sendToHost, hostHandle, mainWindow_, "MAINWINDOW", "");
}

void* PFChartModule::GetTransportInterface() {
    return FindInterfaceOnce(sendToHost, hostHandle, transport_, "CANDLE", "CANDLE_TELVIX");
}

QWidget* PFChartModule::getMainWindow() {
    void* window = GetGlobalMainWindow();
    if (!window || !sendToHost) return nullptr;
    std::int32_t id = -1;
    sendToHost(window, MSG_MAIN_WINDOW_ID, Param(&id), 0);
    if (id == -1) return nullptr;
    return QWidget::find(static_cast<WId>(static_cast<std::uint32_t>(id)));
}

void PFChartModule::getDealInterface() {
    dealRequest_.result = nullptr;
    dealRequest_.count = 0;
    dealHandles_.reset();
    SetText(dealRequest_.kind, sizeof dealRequest_.kind, "DEALING");
    if (sendToHost) {
        char* countField = reinterpret_cast<char*>(&dealRequest_) + offsetof(coreInterfaceRequest, count);
        sendToHost(hostHandle, MSG_COUNT_INTERFACES, Param(&dealRequest_), Param(countField));
        const std::int32_t count = dealRequest_.count;
        void** handles = Believable(count) ? new (std::nothrow) void*[count]() : nullptr;
        dealHandles_.reset(handles);
        if (handles) {
            dealRequest_.result = handles;
            sendToHost(hostHandle, MSG_GET_INTERFACE, Param(&dealRequest_), 0);
        }
        // The count always describes the array the module allocated, whatever the host
        // wrote into it while filling.
        dealRequest_.count = handles ? count : 0;
    }
    getStartAccount(&dealRequest_);
}

void PFChartModule::getStartAccount(coreInterfaceRequest* record) {
    accounts_.clearAccountList();
    if (!record || !sendToHost) return;
    void** handles = record->result;
    const std::int32_t count = record->count;
    if (!handles || !Believable(count)) return;
    for (std::int32_t i = 0; i < count; ++i) {
        // Every slot is asked, a null one too: the host answers for it.
        void* deal = handles[i];
        std::int32_t n = 0;
        const auto list = FetchRecords<fxdAccountRequest, fxdDealAccount>(
            MSG_DEAL_ACCOUNT_COUNT, MSG_DEAL_ACCOUNT_LIST, n,
            [&](unsigned int message, fxdAccountRequest* request) {
                sendToHost(deal, message, Param(request), 0);
            });
        for (std::int32_t k = 0; k < n; ++k)
            if (list[k].accountId != 0) accounts_.addToAccountList(list[k], deal);
    }
}

bool PFChartModule::IsDayOff(const QString& symbol) const {
    auto it = dayOff_.find(symbol);
    return it != dayOff_.end() && it->second;
}

void PFChartModule::UpdateDayOffStatusForDealing(void* dealHandle, int accountId, bool clear) {
    // A null deal handle is asked like any other: the host answers for it.
    if (!sendToHost) return;
    std::int32_t n = 0;
    const auto records = FetchRecords<fxdDayOffRequest, fxdDayOff>(
        MSG_DEAL_DAYOFF_COUNT, MSG_DEAL_DAYOFF_LIST, n,
        [&](unsigned int message, fxdDayOffRequest* request) {
            sendToHost(dealHandle, message, accountId, Param(request));
        });
    if (!records) return;
    if (clear)
        for (std::int32_t i = 0; i < n; ++i) records[i].dayOff = 0;
    for (std::int32_t i = 0; i < n; ++i) dayOff_[DayOffSymbol(records[i])] = records[i].dayOff != 0;
    UpdateChartForInterface(GetKagiInterface());
    UpdateChartForInterface(GetRenkoInterface());
    UpdateChartForInterface(GetPFInterface());
}

void PFChartModule::UpdateDayoffStatus(FXEvent* event) {
    if (!event) return;
    // Only the dealing event the PF interface subscribed to carries one of the module's
    // own interface handles as its sender.
    void* sender = event->sender;
    const bool ours = sender && (sender == GetPFInterface()->GetHostHandle() ||
                                 sender == GetRenkoInterface()->GetHostHandle() ||
                                 sender == GetKagiInterface()->GetHostHandle());
    if (!ours || event->payloadCount <= 0 || !event->payload) return;
    fxdDayOffEventPayload payload;
    std::memcpy(&payload, event->payload, sizeof payload);
    UpdateDayOffStatusForDealing(HandleFromWord(payload.dealHandle), payload.accountId, false);
}

void PFChartModule::accountWork(FXEvent* event) {
    if (!event || !event->payload) return;
    fxdDealAccount account;
    std::memcpy(&account, event->payload, sizeof account);
    void* deal = HandleFromWord(account.dealHandle);
    if (event->code == EVENT_ACCOUNT_ADDED) {
        void** handles = dealRequest_.result;
        void* first = handles && dealRequest_.count > 0 ? handles[0] : nullptr;
        accounts_.addToAccountList(account, first);
        UpdateDayOffStatusForDealing(deal, account.accountId, false);
    } else if (event->code == EVENT_ACCOUNT_REMOVED) {
        // With the list empty nothing is closed for trading any more, whether or not this
        // removal found the account.
        accounts_.delFromAccountList(account, deal);
        if (accounts_.empty()) UpdateDayOffStatusForDealing(deal, account.accountId, true);
    }
}

void PFChartModule::UpdateChartForInterface(ChartInterface* iface) {
    if (!iface) return;
    const std::vector<PFChartWidget*> widgets = iface->GetWidgets();
    for (PFChartWidget* widget : widgets) {
        widget->UpdateTitle();
        widget->update();
    }
}

void PFChartModule::SwitchToType(const QString& typeName) {
    ChartInterface* interfaces[] = {GetPFInterface(), GetRenkoInterface(), GetKagiInterface()};
    for (ChartInterface* iface : interfaces) {
        const std::vector<PFChartWidget*> widgets = iface->GetWidgets();
        for (PFChartWidget* widget : widgets) widget->ResetType(typeName);
    }
}

namespace {

int CountLines(const ChartInterface* iface, const QStringList& types) {
    int total = 0;
    if (!iface) return total;
    for (const PFChartWidget* widget : iface->GetWidgets())
        for (const QString& type : types) total += widget->CountDpaByType(type);
    return total;
}

}  // namespace

bool PFChartModule::NeedToSwitchToMid() const {
    const QStringList types{QStringLiteral("Middle")};
    return CountLines(GetPFInterface(), types) + CountLines(GetKagiInterface(), types) +
               CountLines(GetRenkoInterface(), types) == 0;
}

bool PFChartModule::NeedToSwitchToBid() const {
    const QStringList types{QStringLiteral("Ask"), QStringLiteral("Bid")};
    return CountLines(GetPFInterface(), types) + CountLines(GetKagiInterface(), types) +
               CountLines(GetRenkoInterface(), types) == 0;
}

int PFChartModule::MwiConvertToType(std::intptr_t type, std::intptr_t) {
    SwitchToType(type == 0 ? QStringLiteral("Middle")
                           : type == 1 ? QStringLiteral("Bid") : QStringLiteral("Ask"));
    return 0;
}

int PFChartModule::MwiNeedToConvert(std::intptr_t list, std::intptr_t) {
    getStartAccount(&dealRequest_);
    char* record = reinterpret_cast<char*>(list);
    if (!record) return 0;
    // A signed count, then `count` entries of two 32-bit words; one entry is appended.
    std::int32_t count = 0;
    std::memcpy(&count, record, sizeof count);
    if (count < 0 || count >= kMaxHostCount) return 0;
    std::int32_t entry[2] = {0, 3};  // no change
    if (NeedToSwitchToBid()) {
        entry[0] = 1;
        entry[1] = 1;
    } else if (NeedToSwitchToMid()) {
        entry[0] = 1;
        entry[1] = 0;
    }
    std::memcpy(record + sizeof count + sizeof entry * std::size_t(count), entry, sizeof entry);
    ++count;
    std::memcpy(record, &count, sizeof count);
    return 0;
}

void PFChartModule::SendMainAboutChange() {
    void* window = GetGlobalMainWindow();
    if (!window || !sendToHost) return;
    static const char kText[] = "Scale changed";
    char record[sizeof(std::int32_t) + sizeof kText] = {};
    std::memcpy(record + sizeof(std::int32_t), kText, sizeof kText);
    sendToHost(window, MSG_MAIN_CHANGED, Param(record), 0);
}

QString PFChartModule::GetWorkFolder() {
    void* window = GetGlobalMainWindow();
    if (!window || !sendToHost) return QString();
    std::vector<coreWChar> buffer(CORE_WORK_FOLDER_BUFFER / sizeof(coreWChar), 0);
    if (sendToHost(window, MSG_MAIN_WORK_FOLDER, Param(buffer.data()), 0) != 0) return QString();
    buffer.back() = 0;  // a folder that fills the buffer ends at the buffer's end
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(buffer.data()));
}

CXMLWorkData* PFChartModule::getDefaultXml() {
    if (!sendToHost) return nullptr;
    const QString path = GetWorkFolder() + QStringLiteral("/etc/PFChartModule.rdd");
    // The request holds 255 UTF-16 units with the terminator. Older builds copied the path
    // without a bound and ran over the handle slot and beyond; a path that does not fit is
    // refused here instead: there is no default-parameters file to open then.
    coreOpenWorkData request;
    std::memset(&request, 0, sizeof request);
    const int capacity = int(sizeof request.path / sizeof request.path[0]) - 1;
    if (path.size() > capacity) return nullptr;
    std::memcpy(request.path, path.utf16(), sizeof(coreWChar) * std::size_t(path.size()));
    sendToHost(hostHandle, MSG_WD_OPEN, Param(&request), 0);
    void* document = request.handle;
    if (!document) return nullptr;
    try {
        return new CXMLWorkData(hostHandle, document, "DefaultParametersPFChart", sendToHost);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void PFChartModule::saveDefaultXml(CXMLWorkData* tree) {
    if (!tree || !sendToHost) return;
    coreSzNode node;
    std::memset(&node, 0, sizeof node);
    tree->fillNodeData(node);
    sendToHost(hostHandle, MSG_WD_SAVE, Param(&node), 0);
}
