// The terminal's dialogs for what the charts ask it to show: an indicator's settings (3092)
// and a line study's properties (4511), and the window titles (and Instruments panel lines)
// that say what each chart is.
#include <QMainWindow>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QTimer>

#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/MainWindowService.h"
#include "host/terminal/ChartDescription.h"
#include "host/terminal/ChartSettingsDialog.h"
#include "host/terminal/InstrumentPanel.h"
#include "host/terminal/StudyDialog.h"
#include "host/terminal/Terminal.h"
#include "host/terminal/WaitingCharts.h"

namespace host {
namespace terminal {

void Terminal::connectDialogs() {
    // The chart's message must return before a dialog opens: its exec() or event loop must
    // not run inside the module's call.
    emulator_.mainWindow().setPropertiesHandler([this](const MainWindowService::PropertiesRequest& r) {
        QTimer::singleShot(0, this, [this, r] { showChartSettings(r.widget, r.indicator); });
    });
    emulator_.studies().setPropertiesHandler([this](std::int32_t id) {
        QTimer::singleShot(0, this, [this, id] { showStudyProperties(id); });
    });
}

ChartSettingsDialog* Terminal::showChartSettings(void* widget, void* chart) {
    ChartWindows& charts = emulator_.charts();
    if (!charts.subWindow(widget)) return nullptr;
    if (settingsDialog_) settingsDialog_->close();
    ChartSettingsDialog* dialog = new ChartSettingsDialog(emulator_.data(), chart, window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &ChartSettingsDialog::applied, this, [this, dialog](void* object) {
        const data::ChartObject* c = emulator_.data().chart(object);
        if (c) showMessage(tr("Chart settings applied: %1").arg(chartTitle(*c)));
        instruments_->refresh();
        refresh();
    });
    settingsDialog_ = dialog;
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

StudyDialog* Terminal::showStudyProperties(std::int32_t id) {
    if (!emulator_.studies().study(id)) return nullptr;
    if (studyDialog_) studyDialog_->close();
    StudyDialog* dialog = new StudyDialog(emulator_.studies(), id, window());
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    connect(dialog, &StudyDialog::applied, this, [this] { showMessage(tr("Line study changed")); });
    studyDialog_ = dialog;
    dialog->show();
    dialog->raise();
    dialog->activateWindow();
    return dialog;
}

ChartSettingsDialog* Terminal::chartSettingsDialog() const { return settingsDialog_; }
StudyDialog* Terminal::studyDialog() const { return studyDialog_; }

void Terminal::updateTitles() {
    ChartWindows& charts = emulator_.charts();
    for (void* w : charts.widgets()) {
        QMdiSubWindow* sub = charts.subWindow(w);
        data::ChartType type;
        if (!sub || !charts.typeOf(w, &type)) continue;
        // A window standing in for one whose price file is missing says so.
        const QString waits = waiting_->waitText(w);
        const QString typeName = QString::fromLatin1(data::chartTypeName(type));
        const QString title =
            windowTitle(emulator_.data(), w, waits.isEmpty() ? typeName : typeName + QStringLiteral(" · ") + waits);
        if (sub->windowTitle() != title) sub->setWindowTitle(title);
    }
    // The Instruments panel lists the same under each instrument.
    instruments_->refresh();
}

}  // namespace terminal
}  // namespace host
