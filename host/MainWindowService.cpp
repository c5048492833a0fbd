#include "host/MainWindowService.h"

#include <QLabel>
#include <QMainWindow>
#include <QMdiArea>
#include <QStatusBar>
#include <QString>
#include <algorithm>
#include <cstring>
#include <sstream>

#include "host/CoreServices.h"

namespace host {

namespace {

// Longest change notice text the emulator reads: the chart windows send theirs in a
// 259-byte record, four zero bytes and at most 255 characters.
const std::size_t kMaxNoticeText = 255;

std::string hex(const void* p) {
    std::ostringstream out;
    out << p;
    return out.str();
}

}  // namespace

MainWindowService::MainWindowService(Host& host, CoreServices& core, const std::string& workFolder)
    : host_(host), workFolder_(workFolder), handle_(host.newHandle()), transport_(host.newHandle()) {
    host_.addInterface({"MAINWINDOW", "TELVIX", "", handle_});
    host_.addInterface({"CANDLE", "TELVIX", "CANDLE_TELVIX", transport_});
    host_.on(MSG_MAIN_WINDOW_ID, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return windowId(target, reinterpret_cast<std::int32_t*>(p1), d);
    });
    host_.on(MSG_MAIN_WORK_FOLDER, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return writeWorkFolder(target, reinterpret_cast<coreWChar*>(p1), d);
    });
    host_.on(MSG_MAIN_CHANGED, [this](void* target, std::intptr_t p1, std::intptr_t, std::string& d) {
        return changeNotice(target, reinterpret_cast<const char*>(p1), d);
    });
    host_.on(MSG_SHOW_PROPERTIES, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        if (target != handle_) return 1;
        // Recorded, and handed to the terminal's dialog when there is one.
        properties_.push_back({reinterpret_cast<void*>(p1), reinterpret_cast<void*>(p2)});
        d = "properties of " + hex(properties_.back().indicator) + " in " + hex(properties_.back().widget);
        if (propertiesHandler_) propertiesHandler_(properties_.back());
        return 0;
    });
    core.onRequest("STATUSBAR", [this](coreInterfaceRequest& request, std::string& d) {
        return registerPanes(request, d);
    });
    host_.on(MSG_STATUS_PANE_ID, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return paneId(target, reinterpret_cast<coreStatusBarPanes*>(p1), p2, d);
    });
    host_.on(MSG_STATUS_PANE_ID_AGAIN, [this](void* target, std::intptr_t p1, std::intptr_t p2, std::string& d) {
        return paneId(target, reinterpret_cast<coreStatusBarPanes*>(p1), p2, d);
    });
}

MainWindowService::~MainWindowService() = default;

QMainWindow* MainWindowService::window() {
    if (!window_) {
        window_.reset(new QMainWindow);
        window_->setWindowTitle(QStringLiteral("pfhost main window"));
        window_->setAttribute(Qt::WA_DontShowOnScreen, !onScreen_);
        mdi_ = new QMdiArea;
        window_->setCentralWidget(mdi_);
        for (QLabel*& label : labels_) {
            label = new QLabel;
            label->setMinimumWidth(160);
            window_->statusBar()->addWidget(label);
        }
        labels_[CORE_STATUS_PANE_TIME]->setObjectName(QStringLiteral("timePane"));
        labels_[CORE_STATUS_PANE_PRICE]->setObjectName(QStringLiteral("pricePane"));
        window_->resize(1280, 900);
        window_->show();
        // Native windows, so that QWidget::find in the module knows their ids.
        window_->winId();
        for (QLabel* label : labels_) label->winId();
    }
    return window_.get();
}

QMdiArea* MainWindowService::mdiArea() {
    window();
    return mdi_;
}

QLabel* MainWindowService::timeLabel() {
    window();
    return labels_[CORE_STATUS_PANE_TIME];
}

QLabel* MainWindowService::priceLabel() {
    window();
    return labels_[CORE_STATUS_PANE_PRICE];
}

void MainWindowService::setOnScreen(bool onScreen) {
    onScreen_ = onScreen;
    if (!window_ || window_->testAttribute(Qt::WA_DontShowOnScreen) == !onScreen) return;
    const bool visible = window_->isVisible();
    window_->hide();
    window_->setAttribute(Qt::WA_DontShowOnScreen, !onScreen);
    if (visible) window_->show();
}

void MainWindowService::closeWindow() {
    window_.reset();
    mdi_ = nullptr;
    labels_[0] = labels_[1] = nullptr;
}

std::int32_t MainWindowService::labelId(int pane) {
    window();
    return static_cast<std::int32_t>(labels_[pane]->winId());
}

int MainWindowService::windowId(void* target, std::int32_t* slot, std::string& detail) {
    if (target != handle_ || !slot) return 1;
    *slot = static_cast<std::int32_t>(window()->winId());
    detail = "window id=" + std::to_string(*slot);
    return 0;
}

int MainWindowService::writeWorkFolder(void* target, coreWChar* buffer, std::string& detail) {
    if (target != handle_ || !buffer) return 1;
    const QString folder = QString::fromStdString(workFolder_);
    const std::size_t capacity = CORE_WORK_FOLDER_BUFFER / sizeof(coreWChar);
    const std::size_t n = std::min<std::size_t>(std::size_t(folder.size()), capacity - 1);
    std::memcpy(buffer, folder.utf16(), n * sizeof(coreWChar));
    buffer[n] = 0;
    detail = "work folder \"" + workFolder_ + "\"";
    return 0;
}

int MainWindowService::changeNotice(void* target, const char* record, std::string& detail) {
    if (!record) return 1;
    const char* text = record + sizeof(std::int32_t);
    notices_.push_back({target, std::string(text, strnlen(text, kMaxNoticeText))});
    detail = "change \"" + notices_.back().text + "\"";
    return 0;
}

// 3001 of kind "STATUSBAR": the result word carries the module's pane record, which takes
// the ids of both labels at once.
int MainWindowService::registerPanes(coreInterfaceRequest& request, std::string& detail) {
    coreStatusBarPanes* panes = reinterpret_cast<coreStatusBarPanes*>(request.result);
    detail = "status bar \"" + std::string(request.name, strnlen(request.name, sizeof request.name)) + "\"";
    if (!panes || request.count < 1 || panes->count != 2) {
        detail += ": refused";
        return 1;
    }
    panes->windowId[CORE_STATUS_PANE_TIME] = labelId(CORE_STATUS_PANE_TIME);
    panes->windowId[CORE_STATUS_PANE_PRICE] = labelId(CORE_STATUS_PANE_PRICE);
    if (std::find(panes_.begin(), panes_.end(), panes) == panes_.end()) panes_.push_back(panes);
    detail += " panes " + std::to_string(panes->windowId[0]) + ", " + std::to_string(panes->windowId[1]);
    return 0;
}

// 7000/7001: one pane's label id again, only into a record that was registered.
int MainWindowService::paneId(void* target, coreStatusBarPanes* panes, std::intptr_t index, std::string& detail) {
    if (target != host_.coreHandle() || !panes || (index != CORE_STATUS_PANE_TIME && index != CORE_STATUS_PANE_PRICE))
        return 1;
    if (std::find(panes_.begin(), panes_.end(), panes) == panes_.end()) {
        detail = "pane record never registered";
        return 1;
    }
    panes->windowId[index] = labelId(int(index));
    detail = "pane " + std::to_string(index) + " = " + std::to_string(panes->windowId[index]);
    return 0;
}

}  // namespace host
