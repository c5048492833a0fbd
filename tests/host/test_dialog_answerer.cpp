// The dialog answerer against real modal dialogs opened by the test, as the module opens
// them inside a host call: exec() runs, the answerer's timer answers from that loop.
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QFile>
#include <QFileInfo>
#include <QInputDialog>
#include <QMessageBox>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QTemporaryDir>

#include "host/DialogAnswerer.h"

using host::DialogAnswerer;

namespace {

class Answerer : public ::testing::Test {
protected:
    QTemporaryDir dir;
    DialogAnswerer answerer{dir.path()};

    // The question the module asks, with its own labels in place of "Yes" and "No": the
    // index of the button pressed, -1 for none.
    int AskLabelled(const QString& yes = "Ja", const QString& no = "Nein") {
        QMessageBox box(QMessageBox::Question, "Renko", "Replace instrument?", QMessageBox::NoButton);
        box.setDefaultButton(box.addButton(yes, QMessageBox::ActionRole));
        box.setEscapeButton(box.addButton(no, QMessageBox::ActionRole));
        return box.exec();
    }
    // A print dialog as the module runs it; the text printed when it was accepted.
    int Print(QPrinter& printer) {
        QPrintDialog dialog(&printer);
        const int result = dialog.exec();
        if (result == QDialog::Accepted) QPainter(&printer).drawText(10, 100, "Printing by KOVAR");
        return result;
    }
};

}  // namespace

TEST_F(Answerer, QuestionBoxesGetTheAnswerOfThePolicy) {
    answerer.setButtonTexts([](bool yes) { return QStringList(yes ? "Ja" : "Nein"); });
    EXPECT_EQ(AskLabelled(), 1);  // No, by default
    answerer.setReply(DialogAnswerer::Reply::Yes);
    EXPECT_EQ(AskLabelled(), 0);
    EXPECT_EQ(QMessageBox::question(nullptr, "t", "Standard buttons?"), QMessageBox::Yes);
    answerer.setReply(DialogAnswerer::Reply::No);
    EXPECT_EQ(QMessageBox::question(nullptr, "t", "Standard buttons?"), QMessageBox::No);

    ASSERT_EQ(answerer.answers().size(), 4u);
    const DialogAnswerer::Answer& first = answerer.answers()[0];
    EXPECT_EQ(first.kind, DialogAnswerer::Answer::Question);
    EXPECT_EQ(first.title, "Renko");
    EXPECT_EQ(first.text, "Replace instrument?");
    EXPECT_EQ(first.buttons, QStringList({"Ja", "Nein"}));
    EXPECT_EQ(first.answer, "Nein");
    EXPECT_EQ(answerer.answers()[1].answer, "Ja");
}

TEST_F(Answerer, BoxesWithoutAMatchingButtonAndOtherDialogsAreClosed) {
    // Buttons the answerer cannot read: ended with -1, which is neither button's index.
    EXPECT_EQ(AskLabelled("Oui", "Non"), -1);
    bool ok = true;
    QInputDialog::getText(nullptr, "Name", "Name:", QLineEdit::Normal, QString(), &ok);
    EXPECT_FALSE(ok);
    ASSERT_EQ(answerer.answers().size(), 2u);
    EXPECT_EQ(answerer.answers()[0].answer, "closed");
    EXPECT_EQ(answerer.answers()[1].kind, DialogAnswerer::Answer::Other);
    EXPECT_EQ(answerer.answers()[1].answer, "rejected");
}

TEST_F(Answerer, PrintDialogsPrintIntoPdfFilesOrAreRejected) {
    QPrinter named(QPrinter::ScreenResolution);
    ASSERT_EQ(Print(named), QDialog::Accepted);
    const QString file = dir.filePath("print-1.pdf");
    EXPECT_EQ(named.outputFileName(), file);
    EXPECT_EQ(named.outputFormat(), QPrinter::PdfFormat);

    const QString chosen = dir.filePath("chosen.pdf");
    answerer.setPrinting(DialogAnswerer::Printing::Accept, chosen);
    QPrinter printer(QPrinter::ScreenResolution);
    ASSERT_EQ(Print(printer), QDialog::Accepted);
    EXPECT_TRUE(QFileInfo(chosen).isFile());
    QProcess text;
    text.start("pdftotext", {chosen, "-"});
    if (text.waitForFinished(10000)) {
        EXPECT_EQ(QString::fromUtf8(text.readAllStandardOutput()).trimmed(), "Printing by KOVAR");
    }

    answerer.setPrinting(DialogAnswerer::Printing::Reject);
    QPrinter refused;
    EXPECT_EQ(Print(refused), QDialog::Rejected);
    ASSERT_EQ(answerer.answers().size(), 3u);
    EXPECT_EQ(answerer.answers()[0].kind, DialogAnswerer::Answer::Print);
    EXPECT_EQ(answerer.answers()[0].file, file);
    EXPECT_EQ(answerer.answers()[1].file, chosen);
    EXPECT_EQ(answerer.answers()[2].answer, "rejected");
}

TEST_F(Answerer, LeaveKeepsItsHandsOff) {
    answerer.setReply(DialogAnswerer::Reply::Leave);
    QMessageBox box(QMessageBox::Question, "t", "?", QMessageBox::Yes | QMessageBox::No);
    QTimer::singleShot(100, &box, [&box] { box.button(QMessageBox::Yes)->click(); });
    EXPECT_EQ(box.exec(), QMessageBox::Yes);
    EXPECT_TRUE(answerer.answers().empty());
}
