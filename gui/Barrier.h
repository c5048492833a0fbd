// The module's barrier against exceptions on the terminal's event loop.
//
// The module lives in the terminal's process and on its GUI thread. Messages come in
// through ReceiveMessage, whose switch catches everything; but mouse, keys, wheel, paint,
// timers, drops and menu choices come through Qt's event loop, straight into the module's
// event handlers and slots. Nothing thrown there may reach Qt's frames or the terminal.
//
// One mechanism covers them all:
//   Guarded<T>       the class the module actually creates for each of its widgets and
//                    event-receiving objects (`new Guarded<PFChartWidget>(...)`). It is the
//                    most derived class, so every event handler of T is entered through its
//                    override, which runs T's handler inside the barrier: the catch sits in
//                    the module's own frame, below Qt's.
//   ConnectGuarded   connects a signal to a member slot through a barrier, for the slots
//                    bound to menu actions, buttons, sliders and timers.
// What is caught is logged as the module switch logs its catch (level 5: the error's own
// text, or "Unknown throw in <" + the module's log name + ">"). A guarded object that has an
// `AbandonAction()` member is then asked to drop the half-done action, so that the window
// stays usable and the next event works.
#pragma once

#include <QObject>
#include <QWidget>
#include <type_traits>
#include <utility>

#include "util/QtCompat.h"

class QEvent;

namespace pf {
namespace gui {

// Logs the exception being handled; call only inside a catch block. Never throws.
void ReportEscaped() noexcept;

// Runs `body`; an exception is logged and swallowed. True when the body finished.
template <class Body>
bool RunGuarded(Body&& body) noexcept {
    try {
        body();
        return true;
    } catch (...) {
        ReportEscaped();
        return false;
    }
}

namespace detail {
template <class T, class = void>
struct HasAbandon : std::false_type {};
template <class T>
struct HasAbandon<T, std::void_t<decltype(std::declval<T&>().AbandonAction())> > : std::true_type {};

template <class T>
void Abandon(T& object) noexcept {
    if constexpr (HasAbandon<T>::value) RunGuarded([&] { object.AbandonAction(); });
}

// The handlers of QObject, and those QWidget adds.
#define PF_GUARD_HANDLER(Base, handler, EventType)                                          \
    void handler(EventType* e) override {                                                   \
        if (!RunGuarded([&] { Base::handler(e); })) detail::Abandon<Base>(*this);           \
    }

template <class T>
class GuardedObject : public T {
public:
    using T::T;

protected:
    bool event(QEvent* e) override {
        bool handled = true;
        if (!RunGuarded([&] { handled = T::event(e); })) detail::Abandon<T>(*this);
        return handled;
    }
    PF_GUARD_HANDLER(T, timerEvent, QTimerEvent)
    PF_GUARD_HANDLER(T, childEvent, QChildEvent)
    PF_GUARD_HANDLER(T, customEvent, QEvent)
};

template <class T>
class GuardedWidget : public GuardedObject<T> {
public:
    using GuardedObject<T>::GuardedObject;

protected:
    PF_GUARD_HANDLER(T, mousePressEvent, QMouseEvent)
    PF_GUARD_HANDLER(T, mouseReleaseEvent, QMouseEvent)
    PF_GUARD_HANDLER(T, mouseDoubleClickEvent, QMouseEvent)
    PF_GUARD_HANDLER(T, mouseMoveEvent, QMouseEvent)
    PF_GUARD_HANDLER(T, wheelEvent, QWheelEvent)
    PF_GUARD_HANDLER(T, keyPressEvent, QKeyEvent)
    PF_GUARD_HANDLER(T, keyReleaseEvent, QKeyEvent)
    PF_GUARD_HANDLER(T, focusInEvent, QFocusEvent)
    PF_GUARD_HANDLER(T, focusOutEvent, QFocusEvent)
    PF_GUARD_HANDLER(T, enterEvent, pf::EnterEvent)
    PF_GUARD_HANDLER(T, leaveEvent, QEvent)
    PF_GUARD_HANDLER(T, paintEvent, QPaintEvent)
    PF_GUARD_HANDLER(T, moveEvent, QMoveEvent)
    PF_GUARD_HANDLER(T, resizeEvent, QResizeEvent)
    PF_GUARD_HANDLER(T, closeEvent, QCloseEvent)
    PF_GUARD_HANDLER(T, contextMenuEvent, QContextMenuEvent)
    PF_GUARD_HANDLER(T, tabletEvent, QTabletEvent)
    PF_GUARD_HANDLER(T, actionEvent, QActionEvent)
    PF_GUARD_HANDLER(T, dragEnterEvent, QDragEnterEvent)
    PF_GUARD_HANDLER(T, dragMoveEvent, QDragMoveEvent)
    PF_GUARD_HANDLER(T, dragLeaveEvent, QDragLeaveEvent)
    PF_GUARD_HANDLER(T, dropEvent, QDropEvent)
    PF_GUARD_HANDLER(T, showEvent, QShowEvent)
    PF_GUARD_HANDLER(T, hideEvent, QHideEvent)
    PF_GUARD_HANDLER(T, changeEvent, QEvent)
};

#undef PF_GUARD_HANDLER
}  // namespace detail

// The guarded form of a module object: a widget gets every handler guarded, any other
// QObject its event, timer, child and custom events.
template <class T>
class Guarded final
    : public std::conditional_t<std::is_base_of<QWidget, T>::value, detail::GuardedWidget<T>, detail::GuardedObject<T> > {
    using Base =
        std::conditional_t<std::is_base_of<QWidget, T>::value, detail::GuardedWidget<T>, detail::GuardedObject<T> >;

public:
    using Base::Base;
};

// Connects `signal` of `sender` to the member `slot` of `receiver` through the barrier. The
// connection goes when either object does, as an ordinary member connection would.
template <class Sender, class Signal, class Receiver, class Object, class... Args>
QMetaObject::Connection ConnectGuarded(const Sender* sender, Signal signal, Receiver* receiver,
                                       void (Object::*slot)(Args...)) {
    static_assert(std::is_base_of<Object, Receiver>::value, "the slot must be the receiver's");
    return QObject::connect(sender, signal, receiver, [receiver, slot](Args... args) {
        if (!RunGuarded([&] { (receiver->*slot)(args...); })) detail::Abandon<Receiver>(*receiver);
    });
}

}  // namespace gui
}  // namespace pf
