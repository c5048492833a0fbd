#include "module/DateTime.h"

#include "module/CModule.h"

namespace Telvix {

DateTime::DateTime(CModule* module, void* handle) {
    if (!module || !module->sendToHost) return;
    coreDateTimeFunctions functions = {nullptr, nullptr};
    if (module->sendToHost(handle, MSG_DATE_FUNCTIONS, reinterpret_cast<std::intptr_t>(&functions),
                           0) == 0) {
        formatDateTime_ = reinterpret_cast<FormatDateTimeFn>(functions.formatDateTime);
        formatTime_ = reinterpret_cast<FormatTimeFn>(functions.formatTime);
    }
}

QString DateTime::toString(const QDateTime& time, const QString& format) const {
    QString out;
    if (formatDateTime_) formatDateTime_(time, format, out);
    return out;
}

QString DateTime::toString(long time, const QString& format, bool flag) const {
    QString out;
    if (formatTime_) formatTime_(time, format, flag, out);
    return out;
}

}  // namespace Telvix
