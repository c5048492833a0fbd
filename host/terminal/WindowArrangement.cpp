#include "host/terminal/WindowArrangement.h"

#include <QAction>
#include <QEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenu>
#include <QStyle>
#include <QTimer>
#include <algorithm>

namespace host {
namespace terminal {

namespace {

// Smallest window the terminal places: the chart's tool bar and a few columns fit.
const int kMinWidth = 320, kMinHeight = 220;
const char* const kListed = "windowListEntry";

}  // namespace

WindowArrangement::WindowArrangement(QMdiArea* area, QObject* parent) : QObject(parent), area_(area) {}

int WindowArrangement::titleStep() const {
    const int title = area_->style()->pixelMetric(QStyle::PM_TitleBarHeight, nullptr, area_);
    return std::max(20, title + 4);
}

QRect WindowArrangement::cascadeRect(int step) const {
    const QRect room = area_->viewport()->rect();
    const int w = std::max(std::min(kMinWidth, room.width()), int(room.width() * kShare));
    const int h = std::max(std::min(kMinHeight, room.height()), int(room.height() * kShare));
    // The steps that fit before a window would leave the area; then back at the corner.
    const int d = titleStep();
    const int fit = std::max(1, std::min((room.width() - w) / d, (room.height() - h) / d) + 1);
    const int at = (step % fit) * d;
    return QRect(at, at, w, h);
}

void WindowArrangement::place(QMdiSubWindow* sub) {
    if (!sub) return;
    // The window that was active is maximized: the area maximizes the new one in its place
    // as it activates it, or (not activated yet) another is still maximized.
    bool maximized = sub->isMaximized();
    for (QMdiSubWindow* other : area_->subWindowList())
        maximized |= other != sub && other->isVisible() && other->isMaximized();
    if (maximized) {
        // The new window keeps a normal place for when it is restored. The area may have
        // maximized it as it was shown: a maximized window given a place keeps it (a frame
        // of normal size, without its title bar), so it is placed while normal, made active
        // (the area restores the window maximized before as it hands over) and maximized.
        if (sub->isMaximized()) sub->showNormal();
        sub->setGeometry(cascadeRect(next_++));
        normal_[sub] = sub->geometry();
        area_->setActiveSubWindow(sub);
        sub->showMaximized();
    } else {
        sub->showNormal();
        sub->setGeometry(cascadeRect(next_++));
        normal_[sub] = sub->geometry();
    }
    adopt(sub);
}

void WindowArrangement::adopt(QMdiSubWindow* sub) {
    if (!sub) return;
    if (!normal_.contains(sub)) {
        // A window that lies mostly outside the area comes in at the next cascade place.
        const QRect room = area_->viewport()->rect();
        const QRect g = sub->isMaximized() || sub->isMinimized() ? sub->normalGeometry() : sub->geometry();
        const QRect seen = g.intersected(room);
        const bool visible = g.isValid() && seen.width() >= std::min(g.width(), room.width()) * 2 / 3 &&
                             seen.height() >= std::min(g.height(), room.height()) * 2 / 3 && g.top() >= 0;
        const QRect normal = visible ? g : cascadeRect(next_++);
        if (!visible && !sub->isMaximized() && !sub->isMinimized()) sub->setGeometry(normal);
        normal_[sub] = normal;
    }
    sub->installEventFilter(this);
    // Connected once per window: a lambda cannot be a unique connection (Qt 5 connects it
    // again, Qt 6 refuses it).
    const char* const kFollowed = "pfhostArrangementFollows";
    if (sub->property(kFollowed).toBool()) return;
    sub->setProperty(kFollowed, true);
    connect(sub, &QMdiSubWindow::windowStateChanged, this,
            [this, sub](Qt::WindowStates before, Qt::WindowStates now) { stateChanged(sub, before, now); });
    connect(sub, &QObject::destroyed, this, [this, sub] { normal_.remove(sub); });
}

void WindowArrangement::stateChanged(QMdiSubWindow* sub, Qt::WindowStates before, Qt::WindowStates now) {
    const Qt::WindowStates special = Qt::WindowMaximized | Qt::WindowMinimized;
    if (!(before & special) || (now & special)) return;
    // Qt puts its own idea of the normal geometry back after the signal: the remembered
    // one follows once that is done.
    const QRect normal = normal_.value(sub);
    if (!normal.isValid()) return;
    QPointer<QMdiSubWindow> target(sub);
    QTimer::singleShot(0, this, [target, normal] {
        if (target && !target->isMaximized() && !target->isMinimized() && target->geometry() != normal)
            target->setGeometry(normal);
    });
}

bool WindowArrangement::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move) {
        QMdiSubWindow* sub = qobject_cast<QMdiSubWindow*>(watched);
        // Only a normal window's own size is remembered; a shaded one, or one caught at its
        // title bar on its way back from maximized or minimized, is not.
        if (sub && !sub->isMaximized() && !sub->isMinimized() && !sub->isShaded() && sub->width() >= kMinWidth &&
            sub->height() >= kMinHeight)
            normal_[sub] = sub->geometry();
    }
    return QObject::eventFilter(watched, event);
}

void WindowArrangement::cascade() {
    int step = 0;
    for (QMdiSubWindow* sub : area_->subWindowList(QMdiArea::CreationOrder)) {
        if (!sub->isVisible() || sub->isMinimized()) continue;
        if (sub->isMaximized()) sub->showNormal();
        sub->setGeometry(cascadeRect(step++));
        sub->raise();
    }
    next_ = step;
    if (QMdiSubWindow* active = area_->activeSubWindow()) active->raise();
}

void WindowArrangement::tile() {
    area_->tileSubWindows();
    next_ = 0;
}

void WindowArrangement::listIn(QMenu* menu, std::function<QString(QMdiSubWindow*)> title) {
    for (QAction* a : menu->actions())
        if (a->property(kListed).toBool()) {
            menu->removeAction(a);
            a->deleteLater();
        }
    const QList<QMdiSubWindow*> subs = area_->subWindowList(QMdiArea::CreationOrder);
    if (subs.isEmpty()) return;
    QAction* separator = menu->addSeparator();
    separator->setProperty(kListed, true);
    int n = 0;
    for (QMdiSubWindow* sub : subs) {
        ++n;
        const QString text = n < 10 ? QStringLiteral("&%1 %2").arg(n).arg(title(sub)) : QStringLiteral("%1 %2").arg(n).arg(title(sub));
        QAction* a = menu->addAction(text);
        a->setProperty(kListed, true);
        a->setObjectName(QStringLiteral("windowList%1").arg(n));
        a->setCheckable(true);
        a->setChecked(sub == area_->activeSubWindow());
        QPointer<QMdiSubWindow> target(sub);
        connect(a, &QAction::triggered, this, [this, target] {
            if (!target) return;
            if (target->isMinimized()) target->showNormal();
            area_->setActiveSubWindow(target);
        });
    }
}

}  // namespace terminal
}  // namespace host
