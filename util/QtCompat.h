// The few places where Qt 5 (5.15) and Qt 6 differ in a name or a signature the code uses, so
// that one source builds against the terminal's Qt, whichever it is. Everything else the code
// calls is the same in both; here each difference has one name, chosen at compile time.
#pragma once

#include <cmath>

#include <QEnterEvent>
#include <QFont>
#include <QFontMetrics>
#include <QFontMetricsF>
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

// A font's height in whole pixels, as the chart spaces its price labels and sizes its time
// scale: Qt 5 measures a font with its ascent and descent each rounded up to a whole pixel
// (8 pt DejaVu Sans: 11 + 3); Qt 6 keeps them fractional (10.2 + 2.6) and rounds, which
// would make every label spacing and the time scale a pixel or two smaller. Both are
// measured as Qt 5 does.
inline int FontHeight(const QFontMetrics& metrics) {
    const QFontMetricsF exact(metrics);
    return int(std::ceil(exact.ascent())) + int(std::ceil(exact.descent()));
}

#else

using EnterEvent = QEvent;

template <class Event>
QPoint EventPos(const Event* event) { return event->pos(); }

template <class Action>
auto ActionHolders(const Action* action) { return action->associatedWidgets(); }

inline unsigned FontResolveMask(const QFont& font) { return font.resolve(); }

using ListWidgetItems = const QList<QListWidgetItem*>;

inline int FontHeight(const QFontMetrics& metrics) { return metrics.height(); }

#endif

}  // namespace pf
