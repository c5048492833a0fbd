#include "module/LogHelper.h"

#include "module/CModule.h"

Log* LogHelper::GetLog() {
    CModule* module = CModule::Current();
    return module ? module->GetLog() : nullptr;
}

void LogHelper::Create(const QString& name, eLogMsgType code) {
    if (Log* log = GetLog()) log->Create(name, code, 3072u);
}

void LogHelper::Create(const QString& name, HostCallback callback, void* handle) {
    if (Log* log = GetLog()) log->Create(name, callback, handle);
}

int LogHelper::ShowLogInfo(coreLogMsgType type, coreLogMsgLevel level, const QString& text) {
    Log* log = GetLog();
    return log ? log->ShowLogInfo(type, level, text) : 1;
}
