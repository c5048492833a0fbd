#include "module/Log.h"

#include <algorithm>
#include <cstring>

Log::Log() {
    text_ = new coreWChar[capacity_];
    text_[0] = 0;
}

Log::~Log() { delete[] text_; }

void Log::Create(const QString& name, eLogMsgType code, unsigned int /*extra*/) {
    // Names the log and sets its level from the stream code; the callback and sink stay.
    name_.assign(name.utf16(), name.utf16() + name.size());
    name_.push_back(0);
    if (code != LOG_SEND) *this << code;
}

void Log::Create(char* name, HostCallback callback, void* handle, eLogMsgType /*code*/) {
    Create(QString::fromLocal8Bit(name ? name : ""), callback, handle);
}

void Log::Create(const QString& name, HostCallback callback, void* handle) {
    name_.assign(name.utf16(), name.utf16() + name.size());
    name_.push_back(0);
    sendToHost_ = callback;
    hostHandle_ = handle;
    if (!sendToHost_) return;
    coreLogSink slot = nullptr;
    sendToHost_(hostHandle_, MSG_LOG_BIND, reinterpret_cast<std::intptr_t>(&slot), 0);
    sink_ = slot;
}

int Log::ShowLogInfo(coreLogMsgType type, coreLogMsgLevel level, const QString& text) {
    if (type != 0 && type != 1) return 1;
    type_ = type;
    level_ = level;
    Append(text);
    const int result = SendMessage();
    ClearText();
    return result;
}

Log& Log::operator<<(coreLogMsgType type) {
    type_ = type;
    return *this;
}

Log& Log::operator<<(coreLogMsgLevel level) {
    level_ = level;
    return *this;
}

Log& Log::operator<<(eLogMsgType code) {
    switch (code) {
        case LOG_LEVEL0: level_ = 0; break;
        case LOG_LEVEL5: level_ = 5; break;
        case LOG_LEVEL4: level_ = 4; break;
        case LOG_LEVEL3: level_ = 3; break;
        case LOG_LEVEL2: level_ = 2; break;
        case LOG_SEND:
            SendMessage();
            ClearText();
            break;
        default: break;
    }
    return *this;
}

Log& Log::operator<<(QChar c) {
    const ushort u = c.unicode();
    Append(&u, 1);
    return *this;
}

Log& Log::operator<<(char c) { return *this << QChar::fromLatin1(c); }
Log& Log::operator<<(short v) { Append(QString::number(v, 10)); return *this; }
Log& Log::operator<<(unsigned short v) { Append(QString::number(v, 10)); return *this; }
Log& Log::operator<<(int v) { Append(QString::number(v, 10)); return *this; }
Log& Log::operator<<(unsigned int v) { Append(QString::number(v, 10)); return *this; }
Log& Log::operator<<(long v) { Append(QString::number(v, 10)); return *this; }
Log& Log::operator<<(unsigned long v) { Append(QString::number(v, 10)); return *this; }
Log& Log::operator<<(float v) { Append(QString::number(v)); return *this; }
Log& Log::operator<<(double v) { Append(QString::number(v)); return *this; }

Log& Log::operator<<(const char* text) {
    if (text) Append(QString::fromLatin1(text));
    return *this;
}

Log& Log::operator<<(const QString& text) {
    Append(text);
    return *this;
}

int Log::SendMessage() {
    if (!sink_) return 1;
    static const coreWChar empty = 0;
    coreLogMessage message;
    message.logName = name_.empty() ? &empty : name_.data();
    message.type = type_;
    message.level = level_;
    message.text = text_;
    return sink_(&message);
}

QString Log::Text() const { return QString::fromUtf16(reinterpret_cast<const char16_t*>(text_), length_ - 1); }

QString Log::Name() const {
    return name_.empty() ? QString() : QString::fromUtf16(reinterpret_cast<const char16_t*>(name_.data()), int(name_.size()) - 1);
}

void Log::Append(const ushort* units, int count) {
    // Lengths count the terminating zero. When the text no longer fits, the capacity becomes
    // the larger of (new length + old capacity) and twice the old capacity.
    const int added = count + 1;
    if (length_ + added - 1 > capacity_) {
        const int grown = std::max(added + capacity_, 2 * capacity_);
        coreWChar* buffer = new coreWChar[grown];
        std::memcpy(buffer, text_, sizeof(coreWChar) * length_);
        delete[] text_;
        text_ = buffer;
        capacity_ = grown;
    }
    std::memcpy(text_ + length_ - 1, units, sizeof(coreWChar) * count);
    length_ += count;
    text_[length_ - 1] = 0;
}

void Log::ClearText() {
    length_ = 1;
    text_[0] = 0;
}
