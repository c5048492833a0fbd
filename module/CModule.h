// The generic module base: the module information record, the host callbacks and handles,
// interface look-up, events, languages and fonts, the log, translation and date-time.
#pragma once

#include <QString>
#include <QByteArray>
#include <cstdint>
#include <map>

#include "abi/PFChartModuleAbi.h"
#include "abi/records.h"
#include "module/FontManager.h"

class BaseLog;
class Log;
class CTranslateManager;
namespace Telvix {
class DateTime;
}

class CModule {
    // The module information record begins the object's data, right after the virtual
    // table pointer (pinned in CModule.cpp); the host gets it by copy.
    MODULE_INFO info_;

public:
    // `name` null leaves the record's name and description empty. The three numbers are
    // stored in the record in reverse order.
    CModule(const char* name, int first, int second, int third, const char* logName,
            const char* translateContext);
    virtual ~CModule();
    CModule(const CModule&) = delete;
    CModule& operator=(const CModule&) = delete;

    virtual void InitializeWrap(HostCallback callback, HostCallback callback2, void* handle,
                                void* handle2);
    virtual int GetModuleInfoWrap(MODULE_INFO* info);
    // Acts only on 3004 (languages, fonts, date-time, log); returns 0.
    virtual int ReceiveMessageWrap(void* target, unsigned int message, std::intptr_t p1,
                                   std::intptr_t p2);

    // The module object that is alive (the library's global one inside the terminal);
    // null when there is none.
    static CModule* Current();

    const MODULE_INFO& Info() const { return info_; }

    // Interface look-up (3001). Each text is copied with at most as many bytes as the kind
    // has, so a longer name or provider is cut to the kind's length.
    void* getInterface(const char* kind, const char* name, const char* provider);

    // Events.
    std::intptr_t CreateEvent(const char* name);
    int EmitEvent(const char* name, FXEvent& event);
    int SubscribeEvent(const char* name);
    int UnSubscribeEvent();
    const std::map<QString, std::intptr_t>& Events() const { return events_; }

    const char* GetModuleName() const { return logName_.constData(); }
    const char* GetModuleNameForLog() const { return logName_.constData(); }
    Log* GetLog() { return log_; }
    const Log* GetLog() const { return log_; }
    CTranslateManager* GetTranslateManager() const { return translate_; }
    int InsertTranslate(const char* context, const char* key, const char* text) const;
    QString tr(const char* key, const char* comment = nullptr) const;
    QString tr(const QString& key, const QString& comment = QString()) const;
    font::Manager* getFontManager() const { return fonts_; }
    QString getFont(font::elementCode code) const;
    int getFontSize(int n) const;
    Telvix::DateTime* GetDateTime() const { return dateTime_; }
    // Sets the process time zone to "TZ=GST0".
    static void SetTimeTz();

    // Host side, given by Initialize; null until then.
    HostCallback sendToHost = nullptr;
    HostCallback sendToHost2 = nullptr;
    void* hostHandle = nullptr;
    void* hostHandle2 = nullptr;

protected:
    // Called by a derived module's constructor to fill its part of the record.
    void SetDescription(const char* text);
    void SetKind(std::int32_t kind) { info_.kind = kind; }
    // 3004: languages and fonts, date-time object, log bound to the host.
    void SetUp();
    void initFonts();
    void SetFontManager(font::Manager* manager);

    std::int32_t subscriberId_ = 0;

private:
    Log* log_ = nullptr;
    BaseLog* log2_ = nullptr;
    QByteArray logName_;
    Telvix::DateTime* dateTime_ = nullptr;
    CTranslateManager* translate_ = nullptr;
    font::Manager* fonts_ = nullptr;
    std::map<QString, std::intptr_t> events_;
    CModule* previous_ = nullptr;
};
