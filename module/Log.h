// The module's log: collects one message at a time and hands it to the sink function the
// host supplies on message 3205.
#pragma once

#include <QChar>
#include <QString>
#include <vector>

#include "abi/PFChartModuleAbi.h"
#include "abi/messages.h"
#include "abi/records/module_records.h"

enum coreLogMsgType : int {};
enum coreLogMsgLevel : int {};

// Stream codes. The numbering runs opposite to the level numbers: 1 is the most severe
// (level 5), 4 the least (level 2); 5 sends the collected message.
enum eLogMsgType : int {
    LOG_LEVEL0 = 0,
    LOG_LEVEL5 = 1,
    LOG_LEVEL4 = 2,
    LOG_LEVEL3 = 3,
    LOG_LEVEL2 = 4,
    LOG_SEND = 5
};

class BaseLog {
public:
    virtual ~BaseLog() {}
    virtual void Create(const QString& name, eLogMsgType code, unsigned int extra) = 0;
    virtual void Create(char* name, HostCallback callback, void* handle, eLogMsgType code) = 0;
    virtual void Create(const QString& name, HostCallback callback, void* handle) = 0;
    virtual int ShowLogInfo(coreLogMsgType type, coreLogMsgLevel level, const QString& text) = 0;
    virtual BaseLog& operator<<(coreLogMsgType type) = 0;
    virtual BaseLog& operator<<(coreLogMsgLevel level) = 0;
    virtual BaseLog& operator<<(eLogMsgType code) = 0;
    virtual BaseLog& operator<<(QChar c) = 0;
    virtual BaseLog& operator<<(char c) = 0;
    virtual BaseLog& operator<<(short v) = 0;
    virtual BaseLog& operator<<(unsigned short v) = 0;
    virtual BaseLog& operator<<(int v) = 0;
    virtual BaseLog& operator<<(unsigned int v) = 0;
    virtual BaseLog& operator<<(long v) = 0;
    virtual BaseLog& operator<<(unsigned long v) = 0;
    virtual BaseLog& operator<<(float v) = 0;
    virtual BaseLog& operator<<(double v) = 0;
    virtual BaseLog& operator<<(const char* text) = 0;
    virtual BaseLog& operator<<(const QString& text) = 0;
};

class Log : public BaseLog {
public:
    Log();
    ~Log() override;

    void Create(const QString& name, eLogMsgType code, unsigned int extra) override;
    void Create(char* name, HostCallback callback, void* handle, eLogMsgType code) override;
    void Create(const QString& name, HostCallback callback, void* handle) override;
    int ShowLogInfo(coreLogMsgType type, coreLogMsgLevel level, const QString& text) override;

    Log& operator<<(coreLogMsgType type) override;
    Log& operator<<(coreLogMsgLevel level) override;
    Log& operator<<(eLogMsgType code) override;
    Log& operator<<(QChar c) override;
    Log& operator<<(char c) override;
    Log& operator<<(short v) override;
    Log& operator<<(unsigned short v) override;
    Log& operator<<(int v) override;
    Log& operator<<(unsigned int v) override;
    Log& operator<<(long v) override;
    Log& operator<<(unsigned long v) override;
    Log& operator<<(float v) override;
    Log& operator<<(double v) override;
    Log& operator<<(const char* text) override;
    Log& operator<<(const QString& text) override;

    // Hands the collected message to the sink; 1 when no sink is bound.
    int SendMessage();

    int Type() const { return type_; }
    int Level() const { return level_; }
    QString Text() const;
    QString Name() const;
    // Length in code units counting the terminator, and the buffer's capacity.
    int TextLength() const { return length_; }
    int TextCapacity() const { return capacity_; }
    coreLogSink Sink() const { return sink_; }

private:
    void Append(const ushort* units, int count);
    void Append(const QString& text) { Append(text.utf16(), text.size()); }
    void ClearText();

    HostCallback sendToHost_ = nullptr;
    void* hostHandle_ = nullptr;
    std::vector<coreWChar> name_;  // empty until Create
    int type_ = 1;
    int level_ = 3;
    coreWChar* text_ = nullptr;
    int length_ = 1;
    int capacity_ = 32;
    coreLogSink sink_ = nullptr;
};
