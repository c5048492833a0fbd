// What a person does to a chart window with the mouse and keys, played through Qt's own
// event delivery: drags dropped on it, choices from its context menu, its tool bar and time
// scroll bar, clicks and keys, tool tips, the areas' close buttons and deleting a line.
#include <QAbstractSlider>
#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDragEnterEvent>
#include <QDragLeaveEvent>
#include <QDragMoveEvent>
#include <QDropEvent>
#include <QHelpEvent>
#include <QImage>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPointer>
#include <QSlider>
#include <QToolButton>
#include <QToolTip>
#include <QWidget>
#include <algorithm>

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

// Side of an area's close button, in pixels: a framed square with a cross in it.
const int kButtonSide = 10;
// Steps, in pixels, of the search for a figure under a resting mouse.
const int kProbeStep = 3;
// Strip under an area's close button that belongs to its caption.
const int kCaptionBelowButton = 6;

// True for a close button at (left, top) of `image`: its outline and the two strokes of the
// cross are drawn in one colour, the inside around the cross is not.
bool closeButtonAt(const QImage& image, int left, int top) {
    const QRgb frame = image.pixel(left, top);
    const int last = kButtonSide - 1;
    for (int i = 0; i < kButtonSide; ++i)
        if (image.pixel(left + i, top) != frame || image.pixel(left + i, top + last) != frame ||
            image.pixel(left, top + i) != frame || image.pixel(left + last, top + i) != frame)
            return false;
    const int cross[][2] = {{4, 4}, {5, 5}, {6, 4}, {4, 6}};
    for (const auto& c : cross)
        if (image.pixel(left + c[0], top + c[1]) != frame) return false;
    const int inside[][2] = {{1, 1}, {2, 5}, {5, 2}, {7, 5}, {5, 7}};
    for (const auto& c : inside)
        if (image.pixel(left + c[0], top + c[1]) == frame) return false;
    return true;
}

void hideToolTips() {
    // A tip being hidden lingers for a moment; it goes at once here, so that what a probe
    // reads is what that probe showed.
    for (QWidget* w : QApplication::topLevelWidgets())
        if (w->inherits("QTipLabel")) w->hide();
}

bool noArea(std::size_t areas, int index, std::string* error) {
    if (error)
        *error = "the window shows " + std::to_string(areas) + (areas == 1 ? " area" : " areas") + ", no area " +
                 std::to_string(index);
    return false;
}

// Offsets 0, +step, -step, +2 step ... within [-below, above].
std::vector<int> outwards(int below, int above, int step) {
    std::vector<int> out{0};
    for (int d = step; d <= std::max(below, above); d += step) {
        if (d <= above) out.push_back(d);
        if (d <= below) out.push_back(-d);
    }
    return out;
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

QList<QToolButton*> ChartWindows::toolButtons(void* widget) const {
    QWidget* chart = chartWidget(widget);
    if (!chart) return QList<QToolButton*>();
    QList<QToolButton*> buttons = chart->findChildren<QToolButton*>();
    // Left to right as shown; buttons not laid out yet keep the order they were made in.
    std::stable_sort(buttons.begin(), buttons.end(), [chart](QToolButton* a, QToolButton* b) {
        return a->mapTo(chart, QPoint()).x() < b->mapTo(chart, QPoint()).x();
    });
    return buttons;
}

QAbstractSlider* ChartWindows::timeScrollBar(void* widget) const {
    QWidget* chart = chartWidget(widget);
    if (!chart) return nullptr;
    for (QAbstractSlider* s : chart->findChildren<QAbstractSlider*>())
        if (!qobject_cast<QSlider*>(s)) return s;
    return nullptr;
}

void ChartWindows::click(void* widget, const QPoint& point) {
    QWidget* chart = chartWidget(widget);
    if (!chart) return;
    QWidget* found = chart->childAt(point);
    QPointer<QWidget> target(found ? found : chart);
    const QPoint at = target->mapFrom(chart, point);
    const QPoint global = chart->mapToGlobal(point);
    QMouseEvent press(QEvent::MouseButtonPress, at, global, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(target, &press);
    if (!target) return;
    QMouseEvent release(QEvent::MouseButtonRelease, at, global, Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(target, &release);
}

void ChartWindows::pressKey(void* widget, int key, Qt::KeyboardModifiers modifiers) {
    QPointer<QWidget> chart(chartWidget(widget));
    if (!chart) return;
    chart->setFocus(Qt::OtherFocusReason);
    QKeyEvent press(QEvent::KeyPress, key, modifiers);
    QApplication::sendEvent(chart, &press);
    if (!chart) return;
    QKeyEvent release(QEvent::KeyRelease, key, modifiers);
    QApplication::sendEvent(chart, &release);
}

QString ChartWindows::toolTipAt(void* widget, const QPoint& point) {
    QWidget* chart = chartWidget(widget);
    if (!chart) return QString();
    QWidget* found = chart->childAt(point);
    QWidget* target = found ? found : chart;
    hideToolTips();
    QHelpEvent event(QEvent::ToolTip, target->mapFrom(chart, point), chart->mapToGlobal(point));
    QApplication::sendEvent(target, &event);
    const QString text = QToolTip::isVisible() ? QToolTip::text() : QString();
    hideToolTips();
    return text;
}

std::vector<QRect> ChartWindows::closeButtons(void* widget) {
    std::vector<QRect> out;
    QWidget* chart = chartWidget(widget);
    if (!chart) return out;
    const QImage image = chart->grab().toImage().convertToFormat(QImage::Format_RGB32);
    // The buttons end a pixel or so left of the window's right edge; a little room is
    // searched on either side.
    const int right = image.width() - 1;
    for (int top = 0; top + kButtonSide <= image.height(); ++top)
        for (int left = std::max(0, right - kButtonSide - 4); left + kButtonSide <= image.width(); ++left)
            if (closeButtonAt(image, left, top)) {
                out.push_back(QRect(left, top, kButtonSide, kButtonSide));
                top += kButtonSide - 1;
                break;
            }
    return out;
}

bool ChartWindows::closeArea(void* widget, int index, std::string* error) {
    const std::vector<QRect> buttons = closeButtons(widget);
    if (index < 0 || std::size_t(index) >= buttons.size()) return noArea(buttons.size(), index, error);
    click(widget, buttons[std::size_t(index)].center());
    if (closeButtons(widget).size() + 1 == buttons.size()) return true;
    if (error) *error = "area " + std::to_string(index) + " did not go away";
    return false;
}

bool ChartWindows::figureIn(void* widget, int index, QPoint* point, QString* tip) {
    QWidget* chart = chartWidget(widget);
    const std::vector<QRect> buttons = closeButtons(widget);
    if (!chart || index < 0 || std::size_t(index) >= buttons.size()) return false;
    // The area runs from under its caption to the next area's caption, the last one down to
    // the time scroll bar (the time scale above it shows no figures).
    const std::size_t i = std::size_t(index);
    const int top = buttons[i].bottom() + kCaptionBelowButton;
    int bottom = chart->height() - 1;
    if (i + 1 < buttons.size())
        bottom = buttons[i + 1].top() - 2;
    else if (const QAbstractSlider* bar = timeScrollBar(widget))
        bottom = bar->mapTo(chart, QPoint()).y() - 1;
    if (bottom < top) return false;
    const int x0 = chart->width() / 2;
    const int y0 = (top + bottom) / 2;
    for (int dx : outwards(x0, chart->width() - 1 - x0, kProbeStep))
        for (int dy : outwards(y0 - top, bottom - y0, kProbeStep)) {
            const QPoint at(x0 + dx, y0 + dy);
            const QString text = toolTipAt(widget, at);
            if (text.isEmpty()) continue;
            if (point) *point = at;
            if (tip) *tip = text;
            return true;
        }
    return false;
}

bool ChartWindows::deleteLine(void* widget, int index, std::string* error) {
    const std::size_t areas = closeButtons(widget).size();
    if (index < 0 || std::size_t(index) >= areas) return noArea(areas, index, error);
    QPoint at;
    if (!figureIn(widget, index, &at)) {
        if (error) *error = "area " + std::to_string(index) + " shows no figure";
        return false;
    }
    click(widget, at);
    pressKey(widget, Qt::Key_Delete);
    if (toolTipAt(widget, at).isEmpty()) return true;
    if (error) *error = "the figure of area " + std::to_string(index) + " is still there";
    return false;
}

QStringList ChartWindows::contextMenuEntries(void* widget, const QPoint& point, const QStringList& path) {
    QMenu* menu = openMenu(widget, point, path, nullptr);
    const QStringList out = menu ? entries(menu) : QStringList();
    closePopups();
    return out;
}

}  // namespace host
