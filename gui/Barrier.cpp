// The log line of the module's barrier against exceptions on the event loop.
#include "gui/Barrier.h"

#include <QString>
#include <exception>

#include "module/CModule.h"
#include "module/LogHelper.h"

namespace pf {
namespace gui {

void ReportEscaped() noexcept {
    try {
        QString text;
        try {
            throw;
        } catch (const std::exception& e) {
            text = QString::fromLocal8Bit(e.what());
        } catch (...) {
            const CModule* module = CModule::Current();
            text = QStringLiteral("Unknown throw in <%1>")
                       .arg(QString::fromLatin1(module ? module->GetModuleNameForLog() : "PFChartModule"));
        }
        LogHelper::ShowLogInfo(1, 5, text);
    } catch (...) {
        // Not even the log line could be made; the action is lost either way.
    }
}

}  // namespace gui
}  // namespace pf
