// The emulated terminal's core services: interface registration and look-up (3000-3002),
// the translation table (3019) with a QTranslator installed for the selected language,
// events (3110-3113, delivered back through 3114), installed languages (3116/3117),
// the log sink (3205) and the date formatting functions (3207).
//
// Interface requests of some kinds are not look-ups but registrations: the module hands
// over a record of its own in the result word (the status-bar panes, kind "STATUSBAR").
// A service that serves such a kind claims it with `onRequest`; 3001 of that kind goes to
// the service instead of the interface registry.
#pragma once

#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/Host.h"

class QTranslator;

namespace host {

struct EmulatorOptions;

class CoreServices {
public:
    CoreServices(Host& host, const EmulatorOptions& options);
    ~CoreServices();

    // A window component the module registered with 3000. `handle` is the one the
    // emulator gave it; `object` the interface's address, the target of messages to it.
    struct Component {
        std::string name;
        void* handle;
        void* object;
    };
    const std::vector<Component>& components() const { return components_; }
    // The address to send a message to for a registered name ("Points and Figures" ...);
    // null when nothing of that name registered.
    void* componentObject(const std::string& name) const;

    // Translation table: (context, key) -> default text, and per-language overrides.
    QString translation(const QString& context, const QString& key) const;
    void setTranslation(const std::string& language, const QString& key, const QString& text);
    const std::vector<std::pair<std::string, std::string> >& insertedKeys() const { return inserted_; }

    // Log records the module handed to the sink, in order.
    struct LogRecord {
        QString name;
        int type;
        int level;
        QString text;
    };
    const std::vector<LogRecord>& logRecords() const { return log_; }

    // Event subscriptions (3110) and created events (3112).
    struct Subscription {
        std::string event;
        std::int32_t subscriberId;
        void* object;
    };
    std::vector<Subscription> subscribers(const std::string& event) const;
    const std::map<std::string, std::intptr_t>& events() const { return events_; }
    // Delivers an event to every subscriber of `name` through 3114, as the terminal does:
    // the record's sender is the subscriber's id. Returns the number of deliveries.
    int raiseEvent(const std::string& name, int code, void* payload, int payloadCount);
    // Delivers an event record as given to one target through 3114.
    int deliverEvent(void* target, FXEvent& event);

    std::string selectedLanguage() const;

    // Takes every 3001 whose kind is `kind` (the record is not null); answers what the
    // handler answers.
    using RequestHandler = std::function<int(coreInterfaceRequest& record, std::string& detail)>;
    void onRequest(const std::string& kind, RequestHandler handler);

private:
    class Translator;
    friend class Translator;
    static int logSink(const coreLogMessage* message);

    int registerComponent(coreInterfaceRequest* record, std::string& detail);
    int getInterfaces(coreInterfaceRequest* record, std::string& detail);
    int countInterfaces(coreInterfaceRequest* record, std::int32_t* count, std::string& detail);
    int insertTranslation(const coreTranslateRecord* record, std::string& detail);
    int languages(coreLanguageRequest* request, bool fill, std::string& detail);
    int bindLog(coreLogSink* slot);
    void writeLog(const LogRecord& record);

    Host& host_;
    std::vector<std::string> languages_;
    int selected_;
    std::string logFile_;
    bool logToStderr_;
    std::vector<Component> components_;
    std::map<std::pair<QString, QString>, QString> table_;
    std::map<std::string, std::map<QString, QString> > overrides_;
    std::vector<std::pair<std::string, std::string> > inserted_;
    std::unique_ptr<QTranslator> translator_;
    std::vector<LogRecord> log_;
    std::vector<Subscription> subscriptions_;
    std::map<std::string, std::intptr_t> events_;
    std::map<std::string, RequestHandler> requestHandlers_;
};

}  // namespace host
