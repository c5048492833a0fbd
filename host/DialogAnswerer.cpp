#include "host/DialogAnswerer.h"

#include <QAbstractButton>
#include <QApplication>
#include <QDialog>
#include <QDir>
#include <QMessageBox>
#include <QPrintDialog>
#include <QPrinter>

namespace host {

namespace {

// How often the answerer looks for a modal dialog, in milliseconds.
const int kInterval = 10;

QString plain(QString text) { return text.remove(QLatin1Char('&')); }

// Whether `button` of `box` stands for yes (or for no).
bool means(const QMessageBox* box, QAbstractButton* button, bool yes, const QStringList& texts) {
    const QMessageBox::StandardButton standard = box->standardButton(button);
    if (standard != QMessageBox::NoButton) return standard == (yes ? QMessageBox::Yes : QMessageBox::No);
    const QMessageBox::ButtonRole role = box->buttonRole(button);
    if (yes ? (role == QMessageBox::YesRole || role == QMessageBox::AcceptRole)
            : (role == QMessageBox::NoRole || role == QMessageBox::RejectRole))
        return true;
    const QString text = plain(button->text());
    return text == QLatin1String(yes ? "Yes" : "No") || texts.contains(text);
}

}  // namespace

DialogAnswerer::DialogAnswerer(const QString& printFolder, QObject* parent)
    : QObject(parent), printFolder_(printFolder) {
    timer_.setInterval(kInterval);
    connect(&timer_, &QTimer::timeout, this, [this] { answerNow(); });
    timer_.start();
    if (QCoreApplication* app = QCoreApplication::instance()) app->installEventFilter(this);
}

// A modal window shown: its answer is posted, to run once the window's own event loop runs.
bool DialogAnswerer::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Show && !posted_ && timer_.isActive() && watched->isWidgetType()) {
        const QWidget* w = static_cast<const QWidget*>(watched);
        if (w->isWindow() && w->isModal()) {
            posted_ = true;
            QTimer::singleShot(0, this, [this] {
                posted_ = false;
                answerNow();
            });
        }
    }
    return QObject::eventFilter(watched, event);
}

DialogAnswerer::~DialogAnswerer() = default;

void DialogAnswerer::setPrinting(Printing printing, const QString& file) {
    printing_ = printing;
    printFile_ = file;
}

void DialogAnswerer::setActive(bool active) {
    if (active)
        timer_.start();
    else
        timer_.stop();
}

bool DialogAnswerer::answerNow() {
    QWidget* w = QApplication::activeModalWidget();
    if (!w || w->property(leaveAloneProperty()).toBool()) return false;
    Answer answer{Answer::Other, w->windowTitle(), QString(), QStringList(), QString(), QString()};
    if (w == last_) {
        // Answered before and still up: hidden, which ends a dialog's exec() in any case.
        w->hide();
        answer.answer = QStringLiteral("closed");
    } else if (qobject_cast<QMessageBox*>(w)) {
        if (reply_ == Reply::Leave || !answerQuestion(w, answer)) return false;
    } else if (qobject_cast<QPrintDialog*>(w)) {
        if (printing_ == Printing::Leave || !answerPrint(w, answer)) return false;
    } else if (QDialog* dialog = qobject_cast<QDialog*>(w)) {
        dialog->reject();
        answer.answer = QStringLiteral("rejected");
    } else {
        w->close();
        answer.answer = QStringLiteral("closed");
    }
    // A dialog answered but still shown is hidden at the next look; one that went may be
    // shown again (a dialog kept for reuse) and is then answered afresh.
    last_ = w->isVisible() ? w : nullptr;
    answers_.push_back(answer);
    return true;
}

bool DialogAnswerer::answerQuestion(QWidget* widget, Answer& answer) {
    QMessageBox* box = static_cast<QMessageBox*>(widget);
    answer.kind = Answer::Question;
    answer.text = box->text();
    const bool yes = reply_ == Reply::Yes;
    const QStringList texts = texts_ ? texts_(yes) : QStringList();
    QAbstractButton* chosen = nullptr;
    for (QAbstractButton* b : box->buttons()) {
        answer.buttons << plain(b->text());
        if (!chosen && means(box, b, yes, texts)) chosen = b;
    }
    if (chosen) {
        answer.answer = plain(chosen->text());
        chosen->click();
    } else {
        answer.answer = QStringLiteral("closed");
        box->done(-1);
    }
    return true;
}

bool DialogAnswerer::answerPrint(QWidget* widget, Answer& answer) {
    QPrintDialog* dialog = static_cast<QPrintDialog*>(widget);
    answer.kind = Answer::Print;
    if (printing_ == Printing::Reject || !dialog->printer()) {
        answer.answer = QStringLiteral("rejected");
        dialog->done(QDialog::Rejected);
        return true;
    }
    answer.file = !printFile_.isEmpty() ? printFile_
                                        : QDir(printFolder_).filePath(QStringLiteral("print-%1.pdf").arg(++printed_));
    dialog->printer()->setOutputFormat(QPrinter::PdfFormat);
    dialog->printer()->setOutputFileName(answer.file);
    answer.answer = QStringLiteral("accepted");
    dialog->done(QDialog::Accepted);
    return true;
}

}  // namespace host
