// The chart window's slots and event handlers are called from Qt's event loop inside the
// host's process, so nothing they throw may leave them. RunGuarded runs a handler's body
// and turns an escaping exception into a line of the module's log.
#pragma once

#include <QString>
#include <exception>

#include "module/LogHelper.h"

namespace pf {
namespace gui {

inline void ReportEscaped(const char* where, const char* what) noexcept {
    try {
        LogHelper::ShowLogInfo(1, 5, QStringLiteral("Exception in <%1>: %2")
                                         .arg(QString::fromLatin1(where), QString::fromLocal8Bit(what)));
    } catch (...) {
        // Not even the log line could be made; the handler's work is lost either way.
    }
}

template <class Body>
void RunGuarded(const char* where, Body&& body) noexcept {
    try {
        body();
    } catch (const std::exception& e) {
        ReportEscaped(where, e.what());
    } catch (...) {
        ReportEscaped(where, "unknown exception");
    }
}

}  // namespace gui
}  // namespace pf
