// How the terminal arranges its chart windows in the window area:
//   place     a new window opens fully visible at two-thirds of the area, one title bar
//             down and right of the last one placed (back at the corner when the next step
//             would leave the area), or maximized when the active window is maximized;
//   cascade   every window at two-thirds of the area, stepped by a title bar, so that each
//             one's title stays reachable;
//   restore   a window brought back from maximized or minimized gets its last normal place
//             and size again (never shrunk to its title bar);
//   the Window menu lists the open charts, numbered, the active one checked; choosing one
//   brings it to the front.
#pragma once

#include <QMap>
#include <QObject>
#include <QPointer>
#include <QRect>
#include <functional>

class QMdiArea;
class QMdiSubWindow;
class QMenu;

namespace host {
namespace terminal {

class WindowArrangement : public QObject {
    Q_OBJECT
public:
    explicit WindowArrangement(QMdiArea* area, QObject* parent = nullptr);

    // The share of the area's width and height a placed or cascaded window takes.
    static constexpr double kShare = 2.0 / 3.0;

    // Places a new sub-window as described above and follows its normal geometry.
    void place(QMdiSubWindow* sub);
    // Follows a sub-window's normal geometry (for windows placed elsewhere, a workspace's)
    // and pulls it into the area when it lies outside.
    void adopt(QMdiSubWindow* sub);
    void cascade();
    void tile();
    // The size and place a window of the area takes when placed or cascaded at `step`.
    QRect cascadeRect(int step) const;

    // Fills `menu` with the charts after its fixed entries (those before the first entry
    // this call added); `title` names a sub-window.
    void listIn(QMenu* menu, std::function<QString(QMdiSubWindow*)> title);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    int titleStep() const;
    void stateChanged(QMdiSubWindow* sub, Qt::WindowStates before, Qt::WindowStates now);

    QMdiArea* area_;
    QMap<QMdiSubWindow*, QRect> normal_;  // last normal geometry of each window followed
    int next_ = 0;                        // cascade step of the next window placed
};

}  // namespace terminal
}  // namespace host
