// Answers the modal dialogs the module opens while the emulated terminal runs without a
// person in front of it. A dialog's exec() runs a nested event loop inside the host's call
// into the module. A modal window being shown is answered as soon as that loop runs (an
// application event filter sees it shown and posts the answer), so no call into the module
// waits for a dialog; a repeating timer (10 ms) looks at QApplication::activeModalWidget()
// as well, for what the filter cannot see. Either answers by the policy the tests or pfhost
// set:
//
//   QMessageBox   the button meaning yes or no, as the policy says (default: no). A button
//                 means yes when it is the Yes standard button, has the YesRole or
//                 AcceptRole, or reads "Yes" or one of the extra yes texts (the module's
//                 translation of its "Yes" key); likewise for no. A box without such a
//                 button is closed with done(-1), which no button index equals.
//   QPrintDialog  accepted with its printer set to PDF output into a file (default: the
//                 file the emulator names, print-N.pdf in the work folder), or rejected.
//                 The dialog is ended with done(Accepted), so its own printer choice is
//                 not applied over the file.
//   any other     rejected (closed, for a modal widget that is not a dialog).
//
// Every answer is recorded. Policy Leave keeps the answerer's hands off that kind of
// dialog, for a test that wants to answer it itself. A dialog of the terminal's own that a
// person fills in (the trade ticket) carries the property leaveAloneProperty() and is
// never answered.
#pragma once

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>
#include <QTimer>
#include <functional>
#include <vector>

class QWidget;

namespace host {

class DialogAnswerer : public QObject {
public:
    enum class Reply { No, Yes, Leave };
    enum class Printing { Accept, Reject, Leave };

    // `printFolder` is where the print files the answerer names go.
    explicit DialogAnswerer(const QString& printFolder, QObject* parent = nullptr);
    ~DialogAnswerer() override;

    void setReply(Reply reply) { reply_ = reply; }
    Reply reply() const { return reply_; }
    // Texts of yes and no buttons besides "Yes" and "No" (and their standard buttons).
    // Called at every answer, so translations installed later count.
    void setButtonTexts(std::function<QStringList(bool yes)> texts) { texts_ = std::move(texts); }

    // Print dialogs are accepted into `file` (empty: a file the answerer names) or rejected.
    void setPrinting(Printing printing, const QString& file = QString());
    Printing printing() const { return printing_; }

    struct Answer {
        enum Kind { Question, Print, Other } kind;
        QString title;
        QString text;         // a message box's text
        QStringList buttons;  // a message box's button texts, in order
        QString answer;       // the button pressed; "accepted", "rejected" or "closed"
        QString file;         // a print dialog accepted: the PDF file
    };
    const std::vector<Answer>& answers() const { return answers_; }
    void clearAnswers() { answers_.clear(); }

    // While inactive the answerer looks at no dialog (a person at the terminal answers them).
    void setActive(bool active);
    bool active() const { return timer_.isActive(); }

    // Set true on a dialog the answerer must not answer.
    static const char* leaveAloneProperty() { return "pfhostLeaveAlone"; }

    // Answers the active modal dialog now; true when there was one it answered.
    bool answerNow();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool answerQuestion(QWidget* box, Answer& answer);
    bool answerPrint(QWidget* dialog, Answer& answer);

    QTimer timer_;
    QString printFolder_;
    Reply reply_ = Reply::No;
    Printing printing_ = Printing::Accept;
    QString printFile_;
    std::function<QStringList(bool)> texts_;
    std::vector<Answer> answers_;
    int printed_ = 0;
    QPointer<QWidget> last_;  // answered, yet still shown
    bool posted_ = false;     // an answer is posted and not run yet
};

}  // namespace host
