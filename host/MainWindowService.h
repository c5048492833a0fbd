// The emulated terminal's main window and its interface ("MAINWINDOW"): the window id
// (3502), the work folder (3503), change notices (5008) and requests to show an
// indicator's properties (3092). It also stands for the candle transport interface
// ("CANDLE_TELVIX") that the charts' data sources subscribe through.
//
// The window is a real QMainWindow: its central widget is an MDI area that holds one
// sub-window per chart window, and its status bar has two labels, the time pane and the
// price pane, that the module writes into. The module registers its status-bar panes with
// an interface request of kind "STATUSBAR" (3001, result word: its coreStatusBarPanes);
// the host writes the labels' native window ids into the record then and on 7000/7001.
//
// The window is shown but never put on the screen (Qt::WA_DontShowOnScreen): its widgets
// are visible to Qt, so they take their sizes at once and paint when grabbed.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "host/Host.h"

class QLabel;
class QMainWindow;
class QMdiArea;

namespace host {

class CoreServices;

class MainWindowService {
public:
    MainWindowService(Host& host, CoreServices& core, const std::string& workFolder);
    ~MainWindowService();

    void* handle() const { return handle_; }
    void* transportHandle() const { return transport_; }
    const std::string& workFolder() const { return workFolder_; }

    // The main window whose id 3502 answers; created on first use.
    QMainWindow* window();
    // Whether the window goes on the screen (the desktop terminal) or stays off it (false,
    // the default: tests and pictures). Takes effect at once on a window already made.
    void setOnScreen(bool onScreen);
    bool onScreen() const { return onScreen_; }
    QMdiArea* mdiArea();
    // The status bar's two panes: time (pane 0) and price (pane 1) under the mouse.
    QLabel* timeLabel();
    QLabel* priceLabel();
    // Deletes the window and everything in it (chart windows included); the next use
    // makes a new one.
    void closeWindow();

    // A change notice (5008) as it arrived: to whom it was sent and its text.
    struct Notice {
        void* target;
        std::string text;
    };
    const std::vector<Notice>& notices() const { return notices_; }

    // Requests to show an indicator's properties (3092): the chart widget and the data
    // object handle of the indicator.
    struct PropertiesRequest {
        void* widget;
        void* indicator;
    };
    const std::vector<PropertiesRequest>& propertiesRequests() const { return properties_; }
    // Called with each request once it is recorded (the terminal opens its dialog later,
    // after the module's message has returned). Empty: only recorded.
    void setPropertiesHandler(std::function<void(const PropertiesRequest&)> handler) {
        propertiesHandler_ = std::move(handler);
    }

    // Status-bar pane records the module registered, in order.
    const std::vector<const coreStatusBarPanes*>& statusPanes() const { return panes_; }

private:
    int windowId(void* target, std::int32_t* slot, std::string& detail);
    int writeWorkFolder(void* target, coreWChar* buffer, std::string& detail);
    int changeNotice(void* target, const char* record, std::string& detail);
    int registerPanes(coreInterfaceRequest& request, std::string& detail);
    int paneId(void* target, coreStatusBarPanes* panes, std::intptr_t index, std::string& detail);
    std::int32_t labelId(int pane);

    Host& host_;
    std::string workFolder_;
    void* handle_;
    void* transport_;
    std::unique_ptr<QMainWindow> window_;
    bool onScreen_ = false;
    QMdiArea* mdi_ = nullptr;
    QLabel* labels_[2] = {nullptr, nullptr};
    std::vector<Notice> notices_;
    std::vector<PropertiesRequest> properties_;
    std::function<void(const PropertiesRequest&)> propertiesHandler_;
    std::vector<const coreStatusBarPanes*> panes_;
};

}  // namespace host
