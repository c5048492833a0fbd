// The terminal's problem boxes: each problem said to the person in a warning box that is
// modal to the main window, one box at a time. Problems that come while a box is open wait
// their turn, oldest first; a flood of them (a folder of broken files) is cut to the first
// kMostWaiting, and the last box says how many more there were.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <QMessageBox>
class QWidget;

namespace host {
namespace terminal {

class ProblemBoxes : public QObject {
    Q_OBJECT
public:
    static const int kMostWaiting = 50;

    ProblemBoxes(QWidget* window, const QString& title, QObject* parent = nullptr);

    // Shows `text` now, or once the boxes before it are closed.
    void add(const QString& text);
    // The box on the screen; null when none is.
    QMessageBox* current() const { return box_; }
    int waiting() const { return waiting_.size() + (dropped_ > 0 ? 1 : 0); }

private:
    void showNext();

    QWidget* window_;
    QString title_;
    QPointer<QMessageBox> box_;
    QStringList waiting_;
    int dropped_ = 0;
};

}  // namespace terminal
}  // namespace host
