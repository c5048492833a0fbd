#include "host/cli/PaintClock.h"

#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <cstdio>
#include <ctime>
#include <set>

#include "host/ChartWindows.h"
#include "host/Emulator.h"
#include "host/terminal/Terminal.h"

namespace host {
namespace cli {

namespace {

long long monotonicNs() {
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<long long>(now.tv_sec) * 1000000000LL + now.tv_nsec;
}

// Watches the chart widgets for their first paint event; when the last one has arrived, the
// next turn of the event loop (the paint done and flushed) prints the time and the watcher
// deletes itself.
class PaintClock : public QObject {
public:
    explicit PaintClock(Emulator& emulator) {
        for (void* w : emulator.charts().widgets())
            if (QWidget* chart = emulator.charts().chartWidget(w)) {
                waiting_.insert(chart);
                chart->installEventFilter(this);
                // A window closed before it painted is no longer waited for.
                connect(chart, &QObject::destroyed, this, [this](QObject* gone) {
                    if (waiting_.erase(gone) && waiting_.empty()) QTimer::singleShot(0, this, [this] { report(); });
                });
            }
        total_ = int(waiting_.size());
        if (waiting_.empty()) QTimer::singleShot(0, this, [this] { report(); });
        QTimer::singleShot(30000, this, [this] { report(); });
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && waiting_.erase(watched)) {
            watched->removeEventFilter(this);
            if (waiting_.empty()) QTimer::singleShot(0, this, [this] { report(); });
        }
        return false;
    }

private:
    void report() {
        if (done_) return;
        done_ = true;
        std::printf("pfhost terminal: painted %d of %d windows at monotonic %lld ns\n", total_ - int(waiting_.size()),
                    total_, monotonicNs());
        std::fflush(stdout);
        for (QObject* o : waiting_) o->removeEventFilter(this);
        waiting_.clear();
        deleteLater();
    }

    std::set<QObject*> waiting_;
    int total_ = 0;
    bool done_ = false;
};

}  // namespace

void ReportFirstPaint(Emulator& emulator, terminal::Terminal& terminal) {
    if (qEnvironmentVariableIsEmpty("PFHOST_PAINT_CLOCK")) return;
    if (terminal.isReady()) {
        new PaintClock(emulator);
        return;
    }
    Emulator* e = &emulator;
    QObject::connect(&terminal, &terminal::Terminal::ready, &terminal, [e] { new PaintClock(*e); });  // emitted once
}

}  // namespace cli
}  // namespace host
