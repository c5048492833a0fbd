#include "data/DataSource.h"

#include <cstring>

#include "abi/messages.h"
#include "module/CModule.h"

namespace pf {

namespace {

bool CanSend(const CModule* module) { return module && module->sendToHost; }

int Send(const CModule* module, unsigned int message, const void* p1, const void* p2) {
    return module->sendToHost(module->hostHandle, message, reinterpret_cast<std::intptr_t>(p1),
                              reinterpret_cast<std::intptr_t>(p2));
}

// A UTF-16 field of `size` units as text, up to its terminator or the field's end.
QString WideField(const coreWChar* field, int size) {
    int n = 0;
    while (n < size && field[n]) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(field), n);
}

constexpr int kNameUnits = sizeof(coreNameInstrument::name) / sizeof(coreWChar);

}  // namespace

void* DataSource::Create(CModule* module, void* provider, const unsigned short* name,
                         const char* text, namePeriod period, int value, coreSzNode* node) {
    if (!CanSend(module)) return nullptr;
    coreCreateDpaData record;
    std::memset(&record, 0, sizeof record);
    record.provider = provider;
    for (int i = 0; name && i < kNameUnits - 1 && name[i]; ++i) record.name.name[i] = name[i];
    if (text) std::strncpy(record.name.secondName, text, sizeof record.name.secondName - 1);
    std::memcpy(&record.name.period, &period, sizeof record.name.period);
    record.value = value;
    if (node) std::memcpy(&record.node, node, sizeof record.node);
    Send(module, MSG_CREATE_DPA, &record, nullptr);
    return record.handle;
}

int DataSource::Subscribe(CModule* module, void* first, void* subscriber, void* handle) {
    if (!CanSend(module)) return -1;
    coreDpaSubscription subscription{first, subscriber};
    return Send(module, MSG_DPA_SUBSCRIBE, handle, &subscription);
}

int DataSource::Unsubscribe(CModule* module, void* first, void* subscriber, void* handle) {
    if (!CanSend(module)) return -1;
    coreDpaSubscription subscription{first, subscriber};
    return Send(module, MSG_DPA_UNSUBSCRIBE, handle, &subscription);
}

DataSource::DataSource(CModule* module, PFChartWidget* widget, void* handle,
                       const coreNameInstrument& name, void* baseHandle)
    : module_(module), widget_(widget), handle_(handle), baseHandle_(baseHandle), arrays_(1, nullptr) {
    std::memcpy(&name_, &name, sizeof name_);
    list_.count = 1;
    list_.arrays = arrays_.data();
    FetchList();
}

void DataSource::FetchList() {
    if (CanSend(module_)) Send(module_, MSG_DPA_LIST, handle_, &list_);
}

int DataSource::UpdateData(const coreCoreUpdateDpaData* update) {
    if (!CanSend(module_)) return 0;
    std::int32_t count = 0;
    Send(module_, MSG_DPA_COUNT, handle_, &count);
    if (count <= 0 || count > kMaxArrays) return 0;

    arrays_.resize(static_cast<std::size_t>(count), nullptr);
    list_.count = count;
    list_.arrays = arrays_.data();
    FetchList();

    if (update) reference_ = update->reference;
    status_ = 0;

    // The stored instrument takes the names of the underlying price series.
    fxDataPointArray* base = nullptr;
    coreListCreateData baseList{1, &base};
    Send(module_, MSG_DPA_LIST, baseHandle_, &baseList);
    if (base) {
        std::memcpy(name_.name, base->name.name, sizeof name_.name);
        std::memcpy(name_.secondName, base->name.secondName, sizeof name_.secondName);
    }
    return status_;
}

fxDataPointArray* DataSource::GetArray(int index) const {
    if (index < 0 || index >= list_.count || index >= static_cast<int>(arrays_.size())) return nullptr;
    return arrays_[static_cast<std::size_t>(index)];
}

QString DataSource::GetName() const {
    const fxDataPointArray* first = GetArray(0);
    return first ? WideField(first->name.name, kNameUnits) : QString();
}

QString DataSource::GetBaseName() const { return WideField(name_.name, kNameUnits); }

}  // namespace pf
