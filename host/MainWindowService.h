// The emulated terminal's main window interface ("MAINWINDOW"): the window id (3502), the
// work folder (3503) and change notices (5008). It also stands for the candle transport
// interface ("CANDLE_TELVIX") that the charts' data sources subscribe through.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/Host.h"

class QWidget;

namespace host {

class MainWindowService {
public:
    MainWindowService(Host& host, const std::string& workFolder);
    ~MainWindowService();

    void* handle() const { return handle_; }
    void* transportHandle() const { return transport_; }
    const std::string& workFolder() const { return workFolder_; }

    // The top-level window whose id 3502 answers; created on first use.
    QWidget* window();

    // A change notice (5008) as it arrived: to whom it was sent and its text.
    struct Notice {
        void* target;
        std::string text;
    };
    const std::vector<Notice>& notices() const { return notices_; }

private:
    int windowId(void* target, std::int32_t* slot, std::string& detail);
    int writeWorkFolder(void* target, coreWChar* buffer, std::string& detail);
    int changeNotice(void* target, const char* record, std::string& detail);

    Host& host_;
    std::string workFolder_;
    void* handle_;
    void* transport_;
    std::unique_ptr<QWidget> window_;
    std::vector<Notice> notices_;
};

}  // namespace host
