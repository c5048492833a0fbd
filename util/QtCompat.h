// The few places where Qt 5 (5.15) and Qt 6 differ in a name or a signature the code uses, so
// that one source builds against the terminal's Qt, whichever it is. Everything else the code
// calls is the same in both; here each difference has one name, chosen at compile time.
#pragma once

#include <QEnterEvent>
#include <QFont>
#include <QList>
#include <QPoint>
#include <QtGlobal>

class QListWidgetItem;

namespace pf {

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)

// The parameter of QWidget::enterEvent.
using EnterEvent = QEnterEvent;

// Where a drag or drop event is in its widget, in whole pixels (rounded).
template <class Event>
QPoint EventPos(const Event* event) { return event->position().toPoint(); }

// The menus, tool bars and other holders an action was added to (QAction::associatedWidgets
// in Qt 5, which Qt 6 widens to objects).
template <class Action>
auto ActionHolders(const Action* action) { return action->associatedObjects(); }

// Which of a font's attributes were set rather than inherited.
inline unsigned FontResolveMask(const QFont& font) { return unsigned(font.resolveMask()); }

// The items QListWidget::mimeData is given.
using ListWidgetItems = const QList<QListWidgetItem*>&;

#else

using EnterEvent = QEvent;

template <class Event>
QPoint EventPos(const Event* event) { return event->pos(); }

template <class Action>
auto ActionHolders(const Action* action) { return action->associatedWidgets(); }

inline unsigned FontResolveMask(const QFont& font) { return font.resolve(); }

using ListWidgetItems = const QList<QListWidgetItem*>;

#endif

}  // namespace pf
