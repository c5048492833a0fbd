#include "host/MainWindowService.h"

#include <QString>
#include <QWidget>
#include <cstring>

namespace host {

namespace {
// Longest change notice text the emulator reads: the chart windows send theirs in a
// 259-byte record, four zero bytes and at most 255 characters.
const std::size_t kMaxNoticeText = 255;
}  // namespace

MainWindowService::MainWindowService(Host& host, const std::string& workFolder)
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
}

MainWindowService::~MainWindowService() = default;

QWidget* MainWindowService::window() {
    if (!window_) {
        window_.reset(new QWidget);
        window_->setWindowTitle(QStringLiteral("pfhost main window"));
        window_->winId();  // a native window, so that QWidget::find knows its id
    }
    return window_.get();
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

}  // namespace host
