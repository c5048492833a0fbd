// Static access to the log of the module object that is alive.
#pragma once

#include "module/Log.h"

class LogHelper {
public:
    // The module's log; null when no module exists.
    static Log* GetLog();
    // Names the log; the name-and-type form passes 3072 as the extra value.
    static void Create(const QString& name, eLogMsgType code);
    static void Create(const QString& name, HostCallback callback, void* handle);
    static int ShowLogInfo(coreLogMsgType type, coreLogMsgLevel level, const QString& text);
    static int ShowLogInfo(int type, int level, const QString& text) {
        return ShowLogInfo(coreLogMsgType(type), coreLogMsgLevel(level), text);
    }
};
