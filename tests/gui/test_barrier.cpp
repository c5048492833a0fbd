// The module's barrier: whatever a guarded object's handlers and guarded slots throw stays
// inside, the object is asked to drop the action, and the next event is handled as usual.
#include <gtest/gtest.h>

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QTimerEvent>
#include <QWheelEvent>
#include <stdexcept>

#include "gui/Barrier.h"

namespace {

class Throwing : public QWidget {
public:
    int abandoned = 0;
    int handled = 0;
    bool fail = true;
    void AbandonAction() { ++abandoned; }
    void Slot() { Handle(); }

protected:
    void mousePressEvent(QMouseEvent*) override { Handle(); }
    void mouseDoubleClickEvent(QMouseEvent*) override { throw 42; }  // not a std::exception
    void wheelEvent(QWheelEvent*) override { Handle(); }
    void keyPressEvent(QKeyEvent*) override { Handle(); }
    void timerEvent(QTimerEvent*) override { Handle(); }
    bool event(QEvent* e) override {
        if (e->type() == QEvent::ToolTip) Handle();
        return QWidget::event(e);
    }

private:
    void Handle() {
        ++handled;
        if (fail) throw std::runtime_error("host failed");
    }
};

class Plain : public QObject {
public:
    int calls = 0;
    void Slot() {
        ++calls;
        throw std::runtime_error("no abandon here");
    }
};

TEST(Barrier, EveryHandlerOfAGuardedWidgetEndsInsideTheModule) {
    pf::gui::Guarded<Throwing> w;
    QMouseEvent press(QEvent::MouseButtonPress, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent dbl(QEvent::MouseButtonDblClick, QPointF(5, 5), QPointF(5, 5), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QWheelEvent wheel(QPointF(5, 5), QPointF(5, 5), QPoint(), QPoint(0, 120), Qt::NoButton, Qt::AltModifier,
                      Qt::NoScrollPhase, false);
    QKeyEvent key(QEvent::KeyPress, Qt::Key_Delete, Qt::NoModifier);
    QTimerEvent timer(1);
    QHelpEvent tip(QEvent::ToolTip, QPoint(5, 5), QPoint(5, 5));
    QEvent* events[] = {&press, &dbl, &wheel, &key, &timer, &tip};
    for (QEvent* e : events) EXPECT_NO_THROW(QApplication::sendEvent(&w, e)) << e->type();
    EXPECT_EQ(w.abandoned, 6) << "each caught exception drops the action";
    EXPECT_EQ(w.handled, 5);

    // The next event is handled as usual.
    w.fail = false;
    EXPECT_NO_THROW(QApplication::sendEvent(&w, &press));
    EXPECT_EQ(w.handled, 6);
    EXPECT_EQ(w.abandoned, 6);
}

TEST(Barrier, GuardedSlotsCatchAndAbandonWhereTheReceiverCan) {
    QPushButton button;
    pf::gui::Guarded<Throwing> w;
    Plain plain;
    pf::gui::ConnectGuarded(&button, &QPushButton::clicked, &w, &Throwing::Slot);
    pf::gui::ConnectGuarded(&button, &QPushButton::clicked, &plain, &Plain::Slot);
    EXPECT_NO_THROW(button.click());
    EXPECT_EQ(w.handled, 1);
    EXPECT_EQ(w.abandoned, 1);
    EXPECT_EQ(plain.calls, 1) << "a slot that throws does not stop the others";
}

}  // namespace
