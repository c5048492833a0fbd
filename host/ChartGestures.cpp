// What a person does to a chart window with the mouse, played through Qt's own event
// delivery: drags dropped on it and choices from its context menu.
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QWidget>

#include "host/ChartWindows.h"

namespace host {

namespace {

// An entry's text as a person reads it: mnemonic marks and the shortcut part dropped.
QString plain(const QString& text) {
    QString out;
    for (int i = 0; i < text.size(); ++i) {
        if (text[i] == QLatin1Char('\t')) break;
        if (text[i] == QLatin1Char('&') && i + 1 < text.size()) ++i;
        out += text[i];
    }
    return out;
}

QStringList entries(const QMenu* menu) {
    QStringList out;
    for (QAction* a : menu->actions())
        if (!a->isSeparator() && a->isVisible()) out << plain(a->text()) + (a->menu() ? QStringLiteral(" >") : QString());
    return out;
}

QAction* entry(const QMenu* menu, const QString& text) {
    for (QAction* a : menu->actions())
        if (!a->isSeparator() && a->isVisible() && plain(a->text()) == text) return a;
    return nullptr;
}

void closePopups() {
    // Bounded: a popup that refuses to close is hidden instead.
    for (int i = 0; i < 64; ++i) {
        QWidget* popup = QApplication::activePopupWidget();
        if (!popup) return;
        if (!popup->close()) popup->hide();
    }
}

bool fail(std::string* error, const QString& why) {
    if (error) *error = why.toStdString();
    closePopups();
    return false;
}

}  // namespace

QWidget* ChartWindows::chartWidget(void* widget) const {
    QWidget* box = container(widget);
    if (!box) return nullptr;
    const auto children = box->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget* child : children)
        if (static_cast<void*>(child) == widget) return child;
    return children.size() == 1 ? children.front() : nullptr;
}

bool ChartWindows::dragDrop(void* widget, const QMimeData* mime, const QPoint& point, Qt::DropAction action) {
    QWidget* chart = chartWidget(widget);
    if (!chart || !mime) return false;
    // Qt gives a drag to the deepest widget under the cursor that accepts drops.
    QWidget* found = chart->childAt(point);
    if (!found) found = chart;
    while (found != chart && !found->acceptDrops()) found = found->parentWidget();
    if (!found->acceptDrops()) return false;
    QPointer<QWidget> target(found);
    const QPoint at = found->mapFrom(chart, point);

    QDragEnterEvent enter(at, action, mime, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &enter);
    if (!target || !enter.isAccepted() || enter.dropAction() == Qt::IgnoreAction) return false;
    QDragMoveEvent move(at, action, mime, Qt::LeftButton, Qt::NoModifier);
    move.setDropAction(enter.dropAction());
    move.accept();
    QApplication::sendEvent(target, &move);
    if (!target) return false;
    if (!move.isAccepted() || move.dropAction() == Qt::IgnoreAction) {
        QDragLeaveEvent leave;
        QApplication::sendEvent(target, &leave);
        return false;
    }
    QDropEvent drop(at, action, mime, Qt::LeftButton, Qt::NoModifier);
    drop.setDropAction(move.dropAction());
    QApplication::sendEvent(target, &drop);
    return drop.isAccepted();
}

QMenu* ChartWindows::openMenu(void* widget, const QPoint& point, const QStringList& path, std::string* error) {
    closePopups();
    QWidget* chart = chartWidget(widget);
    if (!chart) {
        fail(error, QStringLiteral("not a chart window"));
        return nullptr;
    }
    QWidget* found = chart->childAt(point);
    QPointer<QWidget> target(found ? found : chart);
    const QPoint at = target->mapFrom(chart, point);
    const QPoint global = chart->mapToGlobal(point);
    // QApplication passes mouse and context-menu events up to the parents that want them.
    QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::RightButton, Qt::RightButton, Qt::NoModifier);
    QApplication::sendEvent(target, &press);
    if (target && !QApplication::activePopupWidget()) {
        QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::RightButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(target, &release);
    }
    if (target && !QApplication::activePopupWidget()) {
        QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, at, global, Qt::NoModifier);
        QApplication::sendEvent(target, &menuEvent);
    }
    QMenu* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (!menu) {
        fail(error, QStringLiteral("no context menu opened"));
        return nullptr;
    }
    for (const QString& step : path) {
        QAction* a = entry(menu, step);
        if (!a || !a->menu()) {
            fail(error, QStringLiteral("no submenu \"%1\" among: %2").arg(step, entries(menu).join(QStringLiteral(", "))));
            return nullptr;
        }
        // Hovering a submenu's entry opens it at once when the menu is shown.
        menu->setActiveAction(a);
        if (!a->menu()->isVisible()) {
            fail(error, QStringLiteral("submenu \"%1\" did not open").arg(step));
            return nullptr;
        }
        menu = a->menu();
    }
    return menu;
}

bool ChartWindows::chooseFromContextMenu(void* widget, const QPoint& point, const QStringList& path,
                                         std::string* error) {
    if (path.isEmpty()) return fail(error, QStringLiteral("nothing to choose"));
    QMenu* menu = openMenu(widget, point, path.mid(0, path.size() - 1), error);
    if (!menu) return false;
    QAction* a = entry(menu, path.last());
    if (!a || a->menu() || !a->isEnabled())
        return fail(error, QStringLiteral("no entry \"%1\" to choose among: %2")
                               .arg(path.last(), entries(menu).join(QStringLiteral(", "))));
    // Hovered first, as the mouse would: the menus above hear of it too.
    menu->setActiveAction(a);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
    QApplication::sendEvent(menu, &key);
    closePopups();
    return true;
}

QStringList ChartWindows::contextMenuEntries(void* widget, const QPoint& point, const QStringList& path) {
    QMenu* menu = openMenu(widget, point, path, nullptr);
    const QStringList out = menu ? entries(menu) : QStringList();
    closePopups();
    return out;
}

}  // namespace host
