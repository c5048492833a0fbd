#include "host/terminal/LatestPrices.h"

#include <QAbstractSlider>
#include <QEvent>
#include <QTimer>
#include <QWidget>
#include <algorithm>

#include "host/ChartWindows.h"

namespace host {
namespace terminal {

void LatestPrices::setEnabled(bool on) {
    enabled_ = on;
    if (on) return;
    for (const Fresh& f : fresh_)
        if (QWidget* chart = charts_.chartWidget(f.widget)) chart->removeEventFilter(this);
    fresh_.clear();
}

void LatestPrices::watch(void* widget) {
    if (!enabled_ || !widget || watching(widget)) return;
    fresh_.push_back({widget, charts_.title(widget)});
    if (QWidget* chart = charts_.chartWidget(widget)) chart->installEventFilter(this);
}

bool LatestPrices::eventFilter(QObject* watched, QEvent* event) {
    // Looked at once the paint is over, outside the module's own handling.
    if (event->type() == QEvent::Paint && !checkPosted_) {
        checkPosted_ = true;
        QTimer::singleShot(0, this, [this] {
            checkPosted_ = false;
            check();
        });
    }
    return QObject::eventFilter(watched, event);
}

bool LatestPrices::watching(void* widget) const {
    return std::any_of(fresh_.begin(), fresh_.end(), [widget](const Fresh& f) { return f.widget == widget; });
}

int LatestPrices::check() {
    if (fresh_.empty()) return 0;
    const std::vector<void*> open = charts_.widgets();
    int scrolled = 0;
    std::vector<Fresh> still;
    for (const Fresh& f : fresh_) {
        if (std::find(open.begin(), open.end(), f.widget) == open.end()) continue;  // closed meanwhile
        const QAbstractSlider* bar = charts_.timeScrollBar(f.widget);
        const bool filled = charts_.title(f.widget) != f.title || (bar && bar->maximum() > bar->minimum());
        if (!filled) {
            still.push_back(f);
            continue;
        }
        if (QWidget* chart = charts_.chartWidget(f.widget)) chart->removeEventFilter(this);
        charts_.pressKey(f.widget, Qt::Key_End);
        ++scrolled;
    }
    fresh_.swap(still);
    return scrolled;
}

}  // namespace terminal
}  // namespace host
