#include "host/terminal/ProblemBoxes.h"

#include <QMessageBox>
#include <QTimer>

namespace host {
namespace terminal {

ProblemBoxes::ProblemBoxes(QWidget* window, const QString& title, QObject* parent)
    : QObject(parent), window_(window), title_(title) {}

void ProblemBoxes::add(const QString& text) {
    if (waiting_.size() >= kMostWaiting)
        ++dropped_;
    else
        waiting_ << text;
    showNext();
}

void ProblemBoxes::showNext() {
    if (box_) return;
    QString text;
    if (!waiting_.isEmpty()) {
        text = waiting_.takeFirst();
    } else if (dropped_ > 0) {
        text = dropped_ == 1 ? tr("One more problem came while these were shown; it is not shown.")
                              : tr("%1 more problems came while these were shown; they are not shown.").arg(dropped_);
        dropped_ = 0;
    } else {
        return;
    }
    QMessageBox* box = new QMessageBox(QMessageBox::Warning, title_, text, QMessageBox::Ok, window_);
    box->setObjectName(QStringLiteral("problemBox"));
    box->setAttribute(Qt::WA_DeleteOnClose);
    // Modal to the main window: the person reads it before going on; the next one follows
    // once it is closed.
    box->setWindowModality(Qt::WindowModal);
    box_ = box;
    connect(box, &QMessageBox::finished, this, [this] {
        box_ = nullptr;
        QTimer::singleShot(0, this, [this] { showNext(); });
    });
    box->show();
}

}  // namespace terminal
}  // namespace host
