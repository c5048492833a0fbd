#include "host/CoreServices.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QFile>
#include <QTextStream>
#include <QTranslator>
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "host/Emulator.h"

namespace host {

namespace {

CoreServices* g_logOwner = nullptr;

// Reads a NUL-padded 8-bit field without running past its end.
std::string field(const char* text, std::size_t size) { return std::string(text, strnlen(text, size)); }

QString wide(const coreWChar* text) {
    if (!text) return QString();
    int n = 0;
    while (text[n] && n < 1 << 20) ++n;
    return QString::fromUtf16(reinterpret_cast<const char16_t*>(text), n);
}

// The host's two date formatting functions handed over with 3207.
void formatDateTime(const QDateTime& time, const QString& format, QString& out) {
    out = time.toString(format);
}

// `flag` set: the time is shown in UTC; clear: in local time.
void formatTime(long time, const QString& format, bool flag, QString& out) {
    const QDateTime t = QDateTime::fromSecsSinceEpoch(time, flag ? Qt::UTC : Qt::LocalTime);
    out = t.toString(format);
}

// Upper bound for result slots the emulator fills in one request.
const std::int32_t kMaxSlots = 4096;
// Upper bound for language records.
const std::int32_t kMaxLanguages = 256;

}  // namespace

// Answers QCoreApplication::translate from the table the module filled through 3019,
// with the selected language's own texts taking precedence.
class CoreServices::Translator : public QTranslator {
public:
    explicit Translator(const CoreServices& owner) : owner_(owner) {}
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* key, const char* = nullptr, int = -1) const override {
        if (!context || !key) return QString();
        return owner_.translation(QString::fromLatin1(context), QString::fromLatin1(key));
    }

private:
    const CoreServices& owner_;
};

CoreServices::CoreServices(Host& host, const EmulatorOptions& options)
    : host_(host),
      languages_(options.languages),
      selected_(options.selectedLanguage),
      logFile_(options.logFile),
      logToStderr_(options.logToStderr) {
    host_.on(MSG_REGISTER_INTERFACE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return registerComponent(reinterpret_cast<coreInterfaceRequest*>(p1), d);
    });
    host_.on(MSG_GET_INTERFACE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return getInterfaces(reinterpret_cast<coreInterfaceRequest*>(p1), d);
    });
    host_.on(MSG_COUNT_INTERFACES, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return countInterfaces(reinterpret_cast<coreInterfaceRequest*>(p1),
                               reinterpret_cast<std::int32_t*>(p2), d);
    });
    host_.on(MSG_INSERT_TRANSLATION, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return insertTranslation(reinterpret_cast<const coreTranslateRecord*>(p1), d);
    });
    host_.on(MSG_LANGUAGE_COUNT, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return languages(reinterpret_cast<coreLanguageRequest*>(p1), false, d);
    });
    host_.on(MSG_LANGUAGE_LIST, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        return languages(reinterpret_cast<coreLanguageRequest*>(p1), true, d);
    });
    host_.on(MSG_LOG_BIND, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        d = "log sink bound";
        return bindLog(reinterpret_cast<coreLogSink*>(p1));
    });
    host_.on(MSG_DATE_FUNCTIONS, [](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        coreDateTimeFunctions* f = reinterpret_cast<coreDateTimeFunctions*>(p1);
        if (!f) return 1;
        f->formatDateTime = reinterpret_cast<void*>(&formatDateTime);
        f->formatTime = reinterpret_cast<void*>(&formatTime);
        d = "date functions";
        return 0;
    });
    host_.on(MSG_EVENT_SUBSCRIBE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        const coreEventSubscribe* r = reinterpret_cast<const coreEventSubscribe*>(p1);
        if (!r) return 1;
        subscriptions_.push_back({field(r->name, sizeof r->name), r->subscriberId, r->object});
        d = "subscribe \"" + subscriptions_.back().event + "\" id=" + std::to_string(r->subscriberId);
        return 0;
    });
    host_.on(MSG_EVENT_UNSUBSCRIBE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        const coreEventUnsubscribe* r = reinterpret_cast<const coreEventUnsubscribe*>(p1);
        if (!r) return 1;
        const std::size_t before = subscriptions_.size();
        for (auto it = subscriptions_.begin(); it != subscriptions_.end();)
            it = (it->subscriberId == r->subscriberId && it->object == r->object) ? subscriptions_.erase(it) : it + 1;
        d = "unsubscribe id=" + std::to_string(r->subscriberId);
        return before == subscriptions_.size() ? 1 : 0;
    });
    host_.on(MSG_EVENT_CREATE, [this](void*, std::intptr_t p1, std::intptr_t, std::string& d) {
        coreEventCreate* r = reinterpret_cast<coreEventCreate*>(p1);
        if (!r) return 1;
        const std::string name = field(r->name, sizeof r->name);
        auto it = events_.find(name);
        if (it == events_.end())
            it = events_.emplace(name, reinterpret_cast<std::intptr_t>(host_.newHandle())).first;
        r->id = it->second;
        d = "create event \"" + name + "\"";
        return 0;
    });
    host_.on(MSG_EVENT_RAISE, [this](void*, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        FXEvent* event = reinterpret_cast<FXEvent*>(p2);
        if (!event) return 1;
        std::string name;
        for (const auto& e : events_)
            if (e.second == p1) name = e.first;
        if (name.empty()) return 1;
        d = "raise \"" + name + "\"";
        for (const Subscription& s : subscribers(name)) deliverEvent(s.object, *event);
        return 0;
    });
    translator_.reset(new Translator(*this));
    QCoreApplication::installTranslator(translator_.get());
}

CoreServices::~CoreServices() {
    QCoreApplication::removeTranslator(translator_.get());
    if (g_logOwner == this) g_logOwner = nullptr;
}

std::string CoreServices::selectedLanguage() const {
    return selected_ >= 0 && selected_ < int(languages_.size()) ? languages_[selected_] : std::string("English");
}

int CoreServices::registerComponent(coreInterfaceRequest* record, std::string& detail) {
    if (!record) return 1;
    // The host hands out a handle of its own; messages still go to the object's address.
    // A name registered again keeps its handle and takes the new address: the terminal
    // lists a component once, however often the module announces it.
    const std::string kind = field(record->kind, sizeof record->kind);
    const std::string provider = field(record->provider, sizeof record->provider);
    const std::string name = field(record->name, sizeof record->name);
    auto known = std::find_if(components_.begin(), components_.end(),
                              [&name](const Component& c) { return c.name == name; });
    if (known == components_.end()) {
        components_.push_back(Component{name, host_.newHandle(), nullptr});
        host_.addInterface({kind, provider, name, components_.back().handle});
        known = components_.end() - 1;
    }
    known->object = reinterpret_cast<void*>(record->result);
    record->result = reinterpret_cast<void**>(known->handle);
    detail = "register " + kind + "/" + provider + "/" + name + " second=" + std::to_string(record->count);
    return 0;
}

void* CoreServices::componentObject(const std::string& name) const {
    for (const Component& c : components_)
        if (c.name == name) return c.object;
    return nullptr;
}

void CoreServices::onRequest(const std::string& kind, RequestHandler handler) {
    requestHandlers_[kind] = std::move(handler);
}

int CoreServices::getInterfaces(coreInterfaceRequest* record, std::string& detail) {
    if (!record) return 1;
    const auto claimed = requestHandlers_.find(field(record->kind, sizeof record->kind));
    if (claimed != requestHandlers_.end()) return claimed->second(*record, detail);
    const auto found = host_.findInterfaces(field(record->kind, sizeof record->kind),
                                            field(record->provider, sizeof record->provider),
                                            field(record->name, sizeof record->name));
    detail = "find " + field(record->kind, sizeof record->kind) + "/" +
             field(record->provider, sizeof record->provider) + "/" +
             field(record->name, sizeof record->name) + " found=" + std::to_string(found.size());
    if (!record->result || record->count < 1 || record->count > kMaxSlots) return 1;
    const std::size_t n = std::min<std::size_t>(found.size(), std::size_t(record->count));
    for (std::size_t i = 0; i < n; ++i) record->result[i] = found[i].handle;
    return n ? 0 : 1;
}

int CoreServices::countInterfaces(coreInterfaceRequest* record, std::int32_t* count, std::string& detail) {
    if (!record || !count) return 1;
    const auto found = host_.findInterfaces(field(record->kind, sizeof record->kind),
                                            field(record->provider, sizeof record->provider),
                                            field(record->name, sizeof record->name));
    const std::int32_t n = std::int32_t(found.size());
    std::memcpy(count, &n, sizeof n);  // the count field of a packed record: any alignment
    detail = "count " + field(record->kind, sizeof record->kind) + " = " + std::to_string(found.size());
    return 0;
}

int CoreServices::insertTranslation(const coreTranslateRecord* record, std::string& detail) {
    if (!record) return 1;
    const std::string context = field(record->context, sizeof record->context);
    const std::string key = field(record->key, sizeof record->key);
    const std::string text = field(record->text, sizeof record->text);
    table_[std::make_pair(QString::fromLatin1(context.c_str()), QString::fromLatin1(key.c_str()))] =
        QString::fromLocal8Bit(text.c_str());
    inserted_.emplace_back(key, text);
    detail = context + " " + key + " = \"" + text + "\"";
    return 0;
}

QString CoreServices::translation(const QString& context, const QString& key) const {
    auto lang = overrides_.find(selectedLanguage());
    if (lang != overrides_.end()) {
        auto it = lang->second.find(key);
        if (it != lang->second.end()) return it->second;
    }
    auto it = table_.find(std::make_pair(context, key));
    return it == table_.end() ? QString() : it->second;
}

void CoreServices::setTranslation(const std::string& language, const QString& key, const QString& text) {
    overrides_[language][key] = text;
}

int CoreServices::languages(coreLanguageRequest* request, bool fill, std::string& detail) {
    if (!request) return 1;
    const std::int32_t available = std::int32_t(std::min<std::size_t>(languages_.size(), kMaxLanguages));
    if (!fill) {
        request->count = available;
        detail = "languages = " + std::to_string(available);
        return 0;
    }
    if (!request->languages || request->count < 1) return 1;
    const std::int32_t n = std::min(request->count, available);
    for (std::int32_t i = 0; i < n; ++i) {
        coreLanguage& l = request->languages[i];
        std::memset(&l, 0, sizeof l);
        std::strncpy(l.name, languages_[i].c_str(), sizeof l.name - 1);
        l.selected = i == selected_ ? 1 : 0;
    }
    detail = "selected \"" + selectedLanguage() + "\"";
    return 0;
}

int CoreServices::bindLog(coreLogSink* slot) {
    if (!slot) return 1;
    g_logOwner = this;
    *slot = &CoreServices::logSink;
    return 0;
}

int CoreServices::logSink(const coreLogMessage* message) {
    if (!message || !g_logOwner) return 1;
    g_logOwner->writeLog({wide(message->logName), int(message->type), int(message->level), wide(message->text)});
    return 0;
}

void CoreServices::writeLog(const LogRecord& record) {
    log_.push_back(record);
    const QString line = QStringLiteral("%1\t%2\t%3\t%4\t%5\n")
                             .arg(QDateTime::currentDateTimeUtc().toString(Qt::ISODate), record.name)
                             .arg(record.type)
                             .arg(record.level)
                             .arg(record.text);
    if (!logFile_.empty()) {
        QFile file(QString::fromStdString(logFile_));
        if (file.open(QIODevice::Append | QIODevice::Text)) file.write(line.toUtf8());
    }
    if (logToStderr_) std::fputs(line.toUtf8().constData(), stderr);
}

std::vector<CoreServices::Subscription> CoreServices::subscribers(const std::string& event) const {
    std::vector<Subscription> out;
    for (const Subscription& s : subscriptions_)
        if (s.event == event) out.push_back(s);
    return out;
}

int CoreServices::deliverEvent(void* target, FXEvent& event) {
    return host_.send(target, MSG_EVENT, reinterpret_cast<std::intptr_t>(&event), 0,
                      "event code=" + std::to_string(event.code));
}

int CoreServices::raiseEvent(const std::string& name, int code, void* payload, int payloadCount) {
    int delivered = 0;
    for (const Subscription& s : subscribers(name)) {
        FXEvent event;
        std::memset(&event, 0, sizeof event);
        event.sender = reinterpret_cast<void*>(static_cast<std::intptr_t>(s.subscriberId));
        std::strncpy(event.name, name.c_str(), sizeof event.name - 1);
        auto id = events_.find(name);
        event.id = id == events_.end() ? 0 : std::int32_t(id->second);
        event.code = code;
        event.payloadCount = payloadCount;
        event.payload = payload;
        deliverEvent(s.object, event);
        ++delivered;
    }
    return delivered;
}

}  // namespace host
