#include "host/DataCore.h"

#include <algorithm>
#include <cstring>
#include <sstream>

#include "host/InstallPaths.h"
#include "host/data/BaseSeries.h"
#include "host/data/ChartObject.h"
#include "host/data/CsvPriceReader.h"

namespace host {

namespace {

// Upper bound for the pointer count of a 3042 list; larger counts are corrupt records.
const std::int32_t kMaxListCount = 4096;

const data::ChartType kTypes[] = {data::ChartType::PointAndFigure, data::ChartType::Renko,
                                  data::ChartType::Kagi};

const struct BuiltIn {
    const char* name;
    const char* file;
} kBuiltIns[] = {{"USDCHF", "usdchf-30min.csv"}, {"TTRC", "ttrc-daily.csv"}};

std::string hex(const void* p) {
    std::ostringstream out;
    out << p;
    return out.str();
}

void copyField(char* field, std::size_t size, const std::string& text) {
    std::memset(field, 0, size);
    std::strncpy(field, text.c_str(), size - 1);
}

}  // namespace

DataCore::DataCore(Host& host) : host_(host) {
    for (data::ChartType type : kTypes) {
        void* handle = host_.newHandle();
        providers_[int(type)] = handle;
        host_.addInterface({"CHARTTYPE", "TELVIX", data::chartTypeName(type), handle});
    }
    host_.on(MSG_CREATE_DPA, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return createFromRecord(reinterpret_cast<coreCreateDpaData*>(p1), d);
    });
    host_.on(MSG_HEAD_NODE_INFO, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return headNode(p1, reinterpret_cast<coreHeadNodeInfo*>(p2), d);
    });
    host_.on(MSG_DPA_SUBSCRIBE, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return subscription(p1, reinterpret_cast<const coreDpaSubscription*>(p2), true, d);
    });
    host_.on(MSG_DPA_UNSUBSCRIBE, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return subscription(p1, reinterpret_cast<const coreDpaSubscription*>(p2), false, d);
    });
    host_.on(MSG_DPA_LIST, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return fillList(p1, reinterpret_cast<coreListCreateData*>(p2), d);
    });
    host_.on(MSG_DPA_COUNT, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return countArrays(p1, reinterpret_cast<std::int32_t*>(p2), d);
    });
    host_.on(MSG_LINE_INDEX, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        const int index = arrayIndex(reinterpret_cast<const fxDataPointArray*>(p1));
        d = "array " + hex(reinterpret_cast<const void*>(p1)) +
            (index < 0 ? std::string(": no such array") : " index " + std::to_string(index));
        return index < 0 ? 1 : index;
    });
}

DataCore::~DataCore() = default;

// ---- instruments ----

std::string DataCore::builtInPath(const std::string& name) {
    for (const BuiltIn& b : kBuiltIns)
        if (name == b.name) return examplesDir() + "/" + b.file;
    return std::string();
}

data::Instrument* DataCore::adopt(std::unique_ptr<data::Instrument> instrument, std::string* error) {
    const std::string name = instrument->name();
    if (instruments_.count(name)) {
        if (error) *error = "an instrument named " + name + " is already loaded";
        return nullptr;
    }
    data::Instrument* raw = instrument.get();
    instruments_[name] = std::move(instrument);
    void* handle = host_.newHandle();
    std::unique_ptr<data::BaseSeries> base(new data::BaseSeries(handle, *raw));
    bases_[raw] = base.get();
    objects_[handle] = std::move(base);
    return raw;
}

data::Instrument* DataCore::loadInstrument(const std::string& path, const LoadOptions& options, std::string* error) {
    const std::string name = options.name.empty() ? data::CsvPriceReader::nameFromPath(path) : options.name;
    if (instruments_.count(name)) {
        if (error) *error = "an instrument named " + name + " is already loaded";
        return nullptr;
    }
    std::unique_ptr<data::Instrument> instrument = data::CsvPriceReader::readFile(path, name, error);
    if (!instrument) return nullptr;
    return addInstrument(std::move(instrument), options, error);
}

data::Instrument* DataCore::addInstrument(std::unique_ptr<data::Instrument> instrument, const LoadOptions& options,
                                          std::string* error) {
    if (!instrument) return nullptr;
    if (instruments_.count(instrument->name())) {
        if (error) *error = "an instrument named " + instrument->name() + " is already loaded";
        return nullptr;
    }
    if (options.live >= 0) instrument->holdBackAfter(std::size_t(options.live));
    const std::size_t live = instrument->quotes().size();
    if (options.holdBack > 0) instrument->holdBackAfter(live - std::min(live, options.holdBack));
    return adopt(std::move(instrument), error);
}

data::Instrument* DataCore::instrument(const std::string& name) {
    auto it = instruments_.find(name);
    if (it != instruments_.end()) return it->second.get();
    const std::string path = builtInPath(name);
    return path.empty() ? nullptr : loadInstrument(path, LoadOptions{name, -1, 0});
}

data::Instrument* DataCore::loaded(const std::string& name) const {
    auto it = instruments_.find(name);
    return it != instruments_.end() ? it->second.get() : nullptr;
}

std::vector<std::string> DataCore::instrumentNames() const {
    std::vector<std::string> names;
    for (const auto& i : instruments_) names.push_back(i.first);
    for (const BuiltIn& b : kBuiltIns)
        if (!instruments_.count(b.name)) names.push_back(b.name);
    std::sort(names.begin(), names.end());
    return names;
}

void* DataCore::baseHandle(const std::string& name) {
    data::Instrument* i = instrument(name);
    return i ? bases_.at(i)->handle() : nullptr;
}

// ---- chart objects ----

void* DataCore::providerInterface(data::ChartType type) const { return providers_[int(type)]; }

void* DataCore::createChart(const std::string& name, data::ChartType type, const data::ChartSettings& settings,
                            std::string* error) {
    data::Instrument* i = instrument(name);
    if (!i) {
        if (error) *error = "no instrument named " + name;
        return nullptr;
    }
    data::ChartSettings resolved;
    if (!data::ChartObject::resolveSettings(*i, settings, &resolved, error)) return nullptr;
    void* handle = host_.newHandle();
    objects_[handle].reset(new data::ChartObject(handle, *i, type, resolved));
    return handle;
}

bool DataCore::configure(void* handle, const data::ChartSettings& settings, std::string* error) {
    data::ChartObject* c = chart(handle);
    if (!c) {
        if (error) *error = "not a chart object";
        return false;
    }
    data::ChartSettings resolved;
    if (!data::ChartObject::resolveSettings(c->instrument(), settings, &resolved, error)) return false;
    c->reset(resolved);
    notify(*c);
    return true;
}

data::DataObject* DataCore::object(std::intptr_t handle) const {
    auto it = objects_.find(reinterpret_cast<void*>(handle));
    return it == objects_.end() ? nullptr : it->second.get();
}

data::ChartObject* DataCore::chart(void* handle) const {
    return dynamic_cast<data::ChartObject*>(object(reinterpret_cast<std::intptr_t>(handle)));
}

std::vector<data::ChartObject*> DataCore::chartObjects() const {
    std::vector<data::ChartObject*> out;
    for (const auto& o : objects_)
        if (data::ChartObject* c = dynamic_cast<data::ChartObject*>(o.second.get())) out.push_back(c);
    return out;
}

std::vector<fxDataPointArray*> DataCore::arrays(void* handle) const {
    data::DataObject* o = object(reinterpret_cast<std::intptr_t>(handle));
    return o ? std::vector<fxDataPointArray*>{o->array()} : std::vector<fxDataPointArray*>();
}

bool DataCore::removeInstrument(const std::string& name) {
    auto it = instruments_.find(name);
    if (it == instruments_.end()) return false;
    const data::Instrument* instrument = it->second.get();
    for (auto o = objects_.begin(); o != objects_.end();) {
        if (&o->second->instrument() == instrument)
            o = objects_.erase(o);
        else
            ++o;
    }
    bases_.erase(instrument);
    instruments_.erase(it);
    return true;
}

bool DataCore::release(void* handle) {
    if (!chart(handle)) return false;
    objects_.erase(handle);
    return true;
}

void DataCore::setChartSettings(data::ChartType type, const data::ChartSettings& settings) {
    createSettings_[int(type)] = settings;
}

const data::ChartSettings& DataCore::chartSettings(data::ChartType type) const {
    return createSettings_[int(type)];
}

int DataCore::arrayIndex(const fxDataPointArray* array) const {
    if (!array) return -1;
    for (const auto& o : objects_)
        if (o.second->array() == array) return 0;
    return -1;
}

std::size_t DataCore::subscriptionCount(void* handle) const {
    data::DataObject* o = object(reinterpret_cast<std::intptr_t>(handle));
    return o ? o->subscriptions().size() : 0;
}

// ---- replay ----

bool DataCore::append(const std::string& name, const data::Quote& quote) {
    data::Instrument* i = instrument(name);
    if (!i || !i->append(quote)) return false;
    distribute(*i, quote);
    return true;
}

std::size_t DataCore::replay(const std::string& name, std::size_t count) {
    data::Instrument* i = instrument(name);
    std::size_t done = 0;
    data::Quote q;
    while (i && done < count && i->takePending(&q)) {
        distribute(*i, q);
        ++done;
    }
    return done;
}

void DataCore::distribute(data::Instrument& instrument, const data::Quote& quote) {
    // Every object takes the quote before anyone is told, so that a subscriber that reads
    // another object while handling its notice sees it up to date.
    std::vector<void*> changed;
    for (auto& o : objects_)
        if (&o.second->instrument() == &instrument && o.second->takeQuote(quote)) changed.push_back(o.first);
    // A notice may make the module create, subscribe or unsubscribe: look each object up again.
    for (void* handle : changed)
        if (data::DataObject* o = object(reinterpret_cast<std::intptr_t>(handle))) notify(*o);
}

data::DataObject* DataCore::ownerOf(const void* array) const {
    if (!array) return nullptr;
    for (const auto& o : objects_)
        if (static_cast<const void*>(o.second->array()) == array) return o.second.get();
    return nullptr;
}

void DataCore::notify(data::DataObject& object) {
    const std::vector<data::Subscription> subscribers = object.subscriptions();
    void* provider = nullptr;
    if (data::ChartObject* c = dynamic_cast<data::ChartObject*>(&object)) {
        provider = providerInterface(c->type());
    } else {
        const auto transport = host_.findInterfaces("CANDLE", "TELVIX", "CANDLE_TELVIX");
        if (!transport.empty()) provider = transport.front().handle;
    }
    const coreNameInstrument name = object.instrument().nameRecord();
    void* const handle = object.handle();
    const fxDataPointArray* const array = object.array();
    for (const data::Subscription& s : subscribers) {
        coreCoreUpdateDpaData record;
        std::memset(&record, 0, sizeof record);
        record.provider = provider;
        record.name = name;
        record.handle = handle;
        record.subscriber = s.subscriber;
        record.reference = ++reference_;
        const int result = host_.send(s.first, MSG_DATA_UPDATED, reinterpret_cast<std::intptr_t>(&record), 0,
                                      "data " + hex(handle) + " changed, subscriber " + hex(s.subscriber));
        notices_.push_back(Notice{s.first, handle, s.subscriber, record.reference, result});
    }
    // Listeners hear after the subscribers, so that what they make the module redo sees the
    // new data. `object` may be gone by now: only the array's address is passed on.
    for (const ChangeListener& listener : std::vector<ChangeListener>(listeners_)) listener(array);
}

// ---- messages ----

int DataCore::createFromRecord(coreCreateDpaData* record, std::string& detail) {
    if (!record) return 1;
    record->handle = nullptr;
    int type = -1;
    for (data::ChartType t : kTypes)
        if (record->provider && record->provider == providers_[int(t)]) type = int(t);
    const std::string name = data::readWide(record->name.name, 255);
    const namePeriod asked = record->name.period;
    detail = "create " + name + " provider " + hex(record->provider);
    if (type < 0) {
        detail += ": not a chart type provider";
        return 1;
    }
    data::Instrument* i = instrument(name);
    if (!i) {
        detail += ": no such instrument";
        return 1;
    }
    // Period type 0 takes the instrument's own period; any other period must be it.
    if (asked.type != 0 && (asked.type != i->period().type || asked.length != i->period().length)) {
        detail += ": the instrument has no series of that period";
        return 1;
    }
    std::string error;
    // A chooser may give this instrument settings of its own (a workspace's); should they
    // not fit, the chart is made with the usual ones rather than not at all.
    data::ChartSettings chosen = createSettings_[type];
    void* handle = nullptr;
    if (chooser_ && chooser_(name, data::ChartType(type), &chosen))
        handle = createChart(name, data::ChartType(type), chosen, &error);
    if (!handle) handle = createChart(name, data::ChartType(type), createSettings_[type], &error);
    if (!handle) {
        detail += ": " + error;
        return 1;
    }
    record->handle = handle;
    detail += std::string(" ") + data::chartTypeName(data::ChartType(type)) + " = " + hex(handle);
    return 0;
}

int DataCore::headNode(std::intptr_t handle, coreHeadNodeInfo* info, std::string& detail) {
    data::DataObject* o = object(handle);
    if (!o || !info) return 1;
    const data::HeadNode node = o->headNode();
    copyField(info->interfaceName, sizeof info->interfaceName, node.interfaceName);
    copyField(info->provider, sizeof info->provider, node.provider);
    copyField(info->name, sizeof info->name, node.name);
    detail = node.interfaceName + "/" + node.provider + "/" + node.name;
    return 0;
}

int DataCore::subscription(std::intptr_t handle, const coreDpaSubscription* record, bool add, std::string& detail) {
    data::DataObject* o = object(handle);
    if (!o || !record) return 1;
    const data::Subscription s{record->first, record->subscriber};
    const bool changed = add ? o->subscribe(s) : o->unsubscribe(s);
    detail = std::string(add ? "subscribe " : "unsubscribe ") + hex(s.subscriber) + " via " + hex(s.first) +
             (changed ? "" : " (no change)");
    return 0;
}

int DataCore::fillList(std::intptr_t handle, coreListCreateData* list, std::string& detail) {
    data::DataObject* o = object(handle);
    if (!o || !list) return 1;
    const std::int32_t count = list->count;
    if (count < 0 || count > kMaxListCount || (count > 0 && !list->arrays)) return 1;
    fxDataPointArray* const available[] = {o->array()};
    const std::int32_t n = std::min<std::int32_t>(count, 1);
    fxDataPointArray** slots = list->arrays;
    for (std::int32_t k = 0; k < n; ++k) std::memcpy(&slots[k], &available[k], sizeof available[k]);
    detail = "list of " + std::to_string(n) + " array(s), " + std::to_string(o->array()->pointCount) + " points";
    return 0;
}

int DataCore::countArrays(std::intptr_t handle, std::int32_t* count, std::string& detail) {
    data::DataObject* o = object(handle);
    if (!o || !count) return 1;
    const std::int32_t n = 1;
    std::memcpy(count, &n, sizeof n);
    detail = "1 array";
    return 0;
}

}  // namespace host
