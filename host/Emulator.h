// The whole emulated terminal: the Host (loader, callback, journal) with every service
// attached. Tests and `pfhost` build one of these.
#pragma once

#include <QString>
#include <memory>
#include <string>
#include <vector>

#include "host/Host.h"

namespace host {

class CoreServices;
class DataCore;
class WorkDataStore;
class MainWindowService;
class DealingService;
class ChartWindows;
class ChartLayouts;
class DialogAnswerer;
class UndoStack;
class LineStudies;
class PropertyService;

struct EmulatorOptions {
    std::string modulePath;              // default: the installed module, else the built one
    std::string workFolder;              // answered to 3503; default: a temporary folder
    std::vector<std::string> languages{"English"};  // installed languages (3116/3117)
    int selectedLanguage = 0;            // index into languages, -1 for none selected
    std::string logFile;                 // where the log sink writes; empty: no file
    bool logToStderr = false;
};

class Emulator {
public:
    explicit Emulator(const EmulatorOptions& options = EmulatorOptions());
    ~Emulator();

    Host& host() { return *host_; }
    const EmulatorOptions& options() const { return options_; }

    CoreServices& core() { return *core_; }
    DataCore& data() { return *data_; }
    WorkDataStore& workData() { return *workData_; }
    MainWindowService& mainWindow() { return *mainWindow_; }
    DealingService& dealing() { return *dealing_; }
    ChartWindows& charts() { return *charts_; }
    ChartLayouts& layouts() { return *layouts_; }
    // The terminal's undo stack: the module's undoable steps and the undo of the top one.
    UndoStack& undo() { return *undo_; }
    // Answers the module's modal dialogs for as long as the emulator lives (no person is
    // there to do it); its policy is set by the tests and pfhost.
    DialogAnswerer& dialogs() { return *dialogs_; }
    // The line-study provider and the drawing tool the user has chosen.
    LineStudies& studies() { return *studies_; }
    // The terminal's property dialogs (10052, 10053, 10054).
    PropertyService& properties() { return *properties_; }

    // dlopen, GetModuleInfo and Initialize, as the terminal does.
    bool loadModule(std::string* error = nullptr);
    // The record the module gave at load.
    const MODULE_INFO& moduleInfo() const { return info_; }
    // 3004, 3007, 3066.
    void startUp();
    // Tells the module the terminal's skin changed (its LoadSkin entry point): the module has
    // the work-data store open the skin document at `path` (3163) and restyles its chart
    // windows. An empty path asks for the module's built-in look. The module's answer: 0 when
    // it read the document (or gave the built-in look), 1 when it read none.
    int loadSkin(const QString& path);
    // The text of one of the module's translation keys as the terminal's table holds it
    // (the module inserts its defaults at 3007); empty when it has none.
    QString moduleText(const char* key) const;

private:
    EmulatorOptions options_;
    std::unique_ptr<Host> host_;
    std::unique_ptr<CoreServices> core_;
    std::unique_ptr<DataCore> data_;
    std::unique_ptr<WorkDataStore> workData_;
    std::unique_ptr<MainWindowService> mainWindow_;
    std::unique_ptr<DealingService> dealing_;
    std::unique_ptr<ChartWindows> charts_;
    std::unique_ptr<ChartLayouts> layouts_;
    std::unique_ptr<UndoStack> undo_;
    std::unique_ptr<DialogAnswerer> dialogs_;
    std::unique_ptr<LineStudies> studies_;
    std::unique_ptr<PropertyService> properties_;
    std::string tempFolder_;
    MODULE_INFO info_;
};

// The module information record as text, one field per line.
std::string describeModuleInfo(const MODULE_INFO& info);

}  // namespace host
