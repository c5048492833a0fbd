#include "host/Emulator.h"

#include <QDir>
#include <QTemporaryDir>
#include <cstdio>
#include <cstring>
#include <vector>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/LineStudies.h"
#include "host/InstallPaths.h"
#include "host/MainWindowService.h"
#include "host/PropertyService.h"
#include "host/UndoStack.h"
#include "host/WorkDataStore.h"

namespace host {

Emulator::Emulator(const EmulatorOptions& options) : options_(options), host_(new Host) {
    std::memset(&info_, 0, sizeof info_);
    if (options_.modulePath.empty()) options_.modulePath = defaultModulePath();
    if (options_.workFolder.empty()) {
        tempFolder_ = QDir::tempPath().toStdString() + "/pfhost-work-" +
                      std::to_string(reinterpret_cast<std::uintptr_t>(this));
        QDir().mkpath(QString::fromStdString(tempFolder_ + "/etc"));
        options_.workFolder = tempFolder_;
    }
    core_.reset(new CoreServices(*host_, options_));
    data_.reset(new DataCore(*host_));
    workData_.reset(new WorkDataStore(*host_));
    mainWindow_.reset(new MainWindowService(*host_, *core_, options_.workFolder));
    dealing_.reset(new DealingService(*host_, *core_));
    charts_.reset(new ChartWindows(*host_, *core_, *data_, *mainWindow_));
    layouts_.reset(new ChartLayouts(*host_, *charts_, *workData_));
    undo_.reset(new UndoStack(*host_, *workData_, *charts_));
    dialogs_.reset(new DialogAnswerer(QString::fromStdString(options_.workFolder)));
    studies_.reset(new LineStudies(*host_, *data_, *mainWindow_));
    properties_.reset(new PropertyService(*host_, *mainWindow_, *charts_));
    // The module's question boxes label their buttons with its own "Yes" and "No" texts.
    dialogs_->setButtonTexts([this](bool yes) {
        const QString text = moduleText(yes ? "C0078" : "C0077");
        return text.isEmpty() ? QStringList() : QStringList(text);
    });
}

Emulator::~Emulator() {
    // Chart windows are the module's widgets: they go while its code is still loaded, and
    // so does anything else it left in the main window. Then the module goes: its
    // destructors may still talk to the services. Property dialogs show the module's pages
    // and close first.
    properties_->closeAll();
    charts_->destroyAll();
    mainWindow_->closeWindow();
    host_->unload();
    studies_.reset();
    properties_.reset();
    dialogs_.reset();
    undo_.reset();
    layouts_.reset();
    charts_.reset();
    dealing_.reset();
    mainWindow_.reset();
    workData_.reset();
    data_.reset();
    core_.reset();
    if (!tempFolder_.empty()) QDir(QString::fromStdString(tempFolder_)).removeRecursively();
}

bool Emulator::loadModule(std::string* error) {
    std::memset(&info_, 0, sizeof info_);
    if (!host_->load(options_.modulePath, error)) return false;
    host_->getModuleInfo(&info_);
    host_->initialize();
    return true;
}

void Emulator::startUp() { host_->startUp(); }

int Emulator::loadSkin(const QString& path) {
    // The path travels as UTF-16 with its terminator; the module reads at most 255 units.
    std::vector<ushort> text(path.utf16(), path.utf16() + path.size());
    text.push_back(0);
    return host_->loadSkin(text.data(), path.toStdString());
}

QString Emulator::moduleText(const char* key) const {
    const QString context = QString::fromLatin1(info_.translateContext,
                                                int(strnlen(info_.translateContext, sizeof info_.translateContext)));
    return context.isEmpty() ? QString() : core_->translation(context, QString::fromLatin1(key));
}

std::string describeModuleInfo(const MODULE_INFO& info) {
    char buffer[4096];
    const std::string name(info.name, strnlen(info.name, sizeof info.name));
    const std::string description(info.description, strnlen(info.description, sizeof info.description));
    const std::string context(info.translateContext, strnlen(info.translateContext, sizeof info.translateContext));
    std::snprintf(buffer, sizeof buffer,
                  "module name:          %s\n"
                  "description:          %s\n"
                  "numbers (1279..1290): %d %d %d\n"
                  "fixed (1291):         %d\n"
                  "translation context:  %s\n"
                  "kind (1315):          %d\n",
                  name.c_str(), description.c_str(), info.number3, info.number2, info.number1,
                  info.fixed8, context.c_str(), info.kind);
    return buffer;
}

}  // namespace host
