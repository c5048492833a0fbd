#include "module/CModule.h"

#include <QFont>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <algorithm>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

#include "module/DateTime.h"
#include "module/Log.h"
#include "module/LogHelper.h"
#include "module/TranslateManager.h"

namespace {

CModule* g_current = nullptr;

// Copies at most `limit` bytes of `text` into a zeroed field of `size` bytes.
void copyCut(char* field, std::size_t size, const char* text, std::size_t limit) {
    std::memset(field, 0, size);
    if (!text) return;
    const std::size_t n = std::min(std::min(limit, size), std::strlen(text));
    std::memcpy(field, text, n);
}

}  // namespace

CModule::CModule(const char* name, int first, int second, int third, const char* logName,
                 const char* translateContext)
    : logName_(logName ? logName : "") {
    // The record is the object's first data, right after the virtual table pointer: at 4 on
    // the terminal's 32-bit build, at 8 on a 64-bit one.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
    static_assert(offsetof(CModule, info_) == sizeof(void*), "MODULE_INFO begins the module's data");
#pragma GCC diagnostic pop
    std::memset(&info_, 0, sizeof info_);
    if (name) {
        copyCut(info_.name, sizeof info_.name, name, sizeof info_.name);
        info_.name[254] = 0;
        copyCut(info_.description, sizeof info_.description, "Noname module", 255);
    }
    info_.number3 = third;
    info_.number2 = second;
    info_.number1 = first;
    info_.fixed8 = 8;
    // Cut at 20 bytes with no terminator forced.
    if (translateContext)
        std::memcpy(info_.translateContext, translateContext,
                    std::min(std::strlen(translateContext), sizeof info_.translateContext));
    info_.kind = 20;
    std::srand(static_cast<unsigned>(std::time(nullptr)));
    log_ = new Log;
    translate_ = new CTranslateManager(QString::fromLatin1(translateContext ? translateContext : ""), this);
    previous_ = g_current;
    g_current = this;
}

CModule::~CModule() {
    if (g_current == this) g_current = previous_;
    events_.clear();
    delete translate_;
    delete dateTime_;
    delete fonts_;
    delete log2_;
    delete log_;
}

CModule* CModule::Current() { return g_current; }

void CModule::InitializeWrap(HostCallback callback, HostCallback callback2, void* handle,
                             void* handle2) {
    sendToHost = callback;
    sendToHost2 = callback2;
    hostHandle = handle;
    hostHandle2 = handle2;
}

int CModule::GetModuleInfoWrap(MODULE_INFO* info) {
    if (info) std::memcpy(info, &info_, sizeof info_);
    return 0;
}

int CModule::ReceiveMessageWrap(void*, unsigned int message, std::intptr_t, std::intptr_t) {
    if (message != MSG_SETUP) return 0;
    try {
        SetUp();
    } catch (...) {
        // Logged with the place it was caught, then passed on to the module's guard.
        *log_ << LOG_LEVEL5 << QStringLiteral("Unknown throw in <%1>|%2|%3")
                                   .arg(QString::fromLatin1(logName_), QStringLiteral(__FILE__))
                                   .arg(__LINE__)
              << LOG_SEND;
        throw;
    }
    return 0;
}

void CModule::SetUp() {
    initFonts();
    delete dateTime_;
    dateTime_ = new Telvix::DateTime(this, hostHandle);
    log_->Create(QString::fromLatin1(logName_), sendToHost, hostHandle);
}

void CModule::initFonts() {
    coreLanguageRequest request = {0, nullptr};
    if (sendToHost)
        sendToHost(hostHandle, MSG_LANGUAGE_COUNT, reinterpret_cast<std::intptr_t>(&request), 0);
    // A count no terminal has (it would ask for gigabytes) is treated like none.
    const std::int32_t kMaxLanguages = 1000;
    if (!sendToHost || request.count < 1 || request.count > kMaxLanguages) {
        SetFontManager(font::CreateManager(QStringLiteral("English")));
        return;
    }
    std::vector<coreLanguage> languages(static_cast<std::size_t>(request.count));
    std::memset(languages.data(), 0, languages.size() * sizeof(coreLanguage));
    request.languages = languages.data();
    sendToHost(hostHandle, MSG_LANGUAGE_LIST, reinterpret_cast<std::intptr_t>(&request), 0);
    QString language = QStringLiteral("English");
    for (const coreLanguage& l : languages) {
        if (l.selected == 1) {
            language = QString::fromLatin1(l.name, int(strnlen(l.name, sizeof l.name)));
            break;
        }
    }
    SetFontManager(font::CreateManager(language));
}

void CModule::SetFontManager(font::Manager* manager) {
    if (manager == fonts_) return;
    delete fonts_;
    fonts_ = manager;
}

void CModule::SetDescription(const char* text) {
    copyCut(info_.description, sizeof info_.description, text, 255);
}

void* CModule::getInterface(const char* kind, const char* name, const char* provider) {
    if (!sendToHost || !kind) return nullptr;
    std::unique_ptr<coreInterfaceRequest> request(new coreInterfaceRequest);
    std::memset(request.get(), 0, sizeof *request);
    const std::size_t limit = std::min<std::size_t>(std::strlen(kind), 255);
    copyCut(request->kind, sizeof request->kind, kind, limit);
    copyCut(request->provider, sizeof request->provider, provider, limit);
    copyCut(request->name, sizeof request->name, name, limit);
    void* slot = nullptr;
    request->count = 1;
    request->result = &slot;
    sendToHost(hostHandle, MSG_GET_INTERFACE, reinterpret_cast<std::intptr_t>(request.get()), 0);
    return slot;
}

std::intptr_t CModule::CreateEvent(const char* name) {
    coreEventCreate record;
    std::memset(&record, 0, sizeof record);
    copyCut(record.name, sizeof record.name, name, sizeof record.name);
    if (sendToHost)
        sendToHost(hostHandle, MSG_EVENT_CREATE, reinterpret_cast<std::intptr_t>(&record), 0);
    events_[QString::fromLatin1(name ? name : "")] = record.id;
    return record.id;
}

int CModule::EmitEvent(const char* name, FXEvent& event) {
    auto it = events_.find(QString::fromLatin1(name ? name : ""));
    if (it == events_.end()) {
        LogHelper::ShowLogInfo(1, 4, QStringLiteral("Can't emit event with name \"%1\"")
                                         .arg(QString::fromLatin1(name ? name : "")));
        return 1;
    }
    copyCut(event.name, sizeof event.name, name, sizeof event.name);
    event.id = static_cast<std::int32_t>(it->second);
    if (sendToHost)
        sendToHost(hostHandle, MSG_EVENT_RAISE, it->second, reinterpret_cast<std::intptr_t>(&event));
    return 0;
}

int CModule::SubscribeEvent(const char* name) {
    coreEventSubscribe record;
    std::memset(&record, 0, sizeof record);
    copyCut(record.name, sizeof record.name, name, sizeof record.name);
    record.subscriberId = subscriberId_;
    record.object = this;
    record.last = -1;
    return sendToHost ? sendToHost(hostHandle, MSG_EVENT_SUBSCRIBE,
                                   reinterpret_cast<std::intptr_t>(&record), 0)
                      : 0;
}

int CModule::UnSubscribeEvent() {
    coreEventUnsubscribe record = {subscriberId_, this};
    return sendToHost ? sendToHost(hostHandle, MSG_EVENT_UNSUBSCRIBE,
                                   reinterpret_cast<std::intptr_t>(&record), 0)
                      : 0;
}

int CModule::InsertTranslate(const char* context, const char* key, const char* text) const {
    return translate_->InsertTranslate(context, key, text);
}

QString CModule::tr(const char* key, const char* comment) const {
    return translate_->Translate(key, comment);
}

QString CModule::tr(const QString& key, const QString& comment) const {
    const QByteArray k = key.toLocal8Bit();
    const QByteArray c = comment.toLocal8Bit();
    return translate_->Translate(k.constData(), comment.isNull() ? nullptr : c.constData());
}

QString CModule::getFont(font::elementCode code) const {
    return fonts_ ? fonts_->GetFont(code) : QString::fromLatin1("Arial");
}

int CModule::getFontSize(int n) const { return fonts_ ? fonts_->getFontSize(n) : n; }

void CModule::SetTimeTz() {
    static char tz[] = "TZ=GST0";
    putenv(tz);
    tzset();
}
