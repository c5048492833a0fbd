// Printing the chart window into a PDF through the print dialog, and refusing while busy.
#include <QDir>
#include <QFile>
#include <QPrintDialog>
#include <QPrinter>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>

#include "ChartWindowFixture.h"

namespace {

// Answers the print dialog by pointing its printer at a PDF file and accepting.
void PrintTo(const QString& pdf) {
    AnswerModal([pdf](QWidget* modal) {
        QPrintDialog* dialog = qobject_cast<QPrintDialog*>(modal);
        if (!dialog) return;
        dialog->printer()->setOutputFormat(QPrinter::PdfFormat);
        dialog->printer()->setOutputFileName(pdf);
        // done(), not accept(): accept() would copy the dialog's own fields over the printer.
        dialog->done(QDialog::Accepted);
    });
}

// The bounding box of the page's non-white pixels.
QRect Ink(const QImage& page) {
    QRect ink;
    for (int y = 0; y < page.height(); ++y)
        for (int x = 0; x < page.width(); ++x)
            if (qGray(page.pixel(x, y)) < 200) ink |= QRect(x, y, 1, 1);
    return ink;
}

}  // namespace

using Print = ChartWindowFixture;

TEST_F(Print, PageCarriesOnlyTheFooterLine) {
    Show("EURUSD");
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString pdf = dir.filePath("chart.pdf");
    const QSize before = widget->size();
    PrintTo(pdf);
    widget->Print();
    ASSERT_TRUE(QFile::exists(pdf));
    EXPECT_EQ(widget->size(), before);  // laid out for the page and back

    if (QStandardPaths::findExecutable("pdftoppm").isEmpty()) GTEST_SKIP() << "pdftoppm is not installed";
    const QString png = dir.filePath("page");
    ASSERT_EQ(QProcess::execute("pdftoppm", {"-png", "-r", "72", "-singlefile", pdf, png}), 0);
    const QImage page(png + ".png");
    ASSERT_FALSE(page.isNull());
    EXPECT_GT(page.width(), page.height());  // landscape
    const QRect ink = Ink(page);
    ASSERT_FALSE(ink.isEmpty());  // the footer is there
    EXPECT_LT(ink.height(), page.height() / 20);
    EXPECT_LT(ink.width(), page.width() / 3);
    EXPECT_GT(ink.top(), page.height() * 3 / 4);  // at the bottom of the page
}

TEST_F(Print, BusyWindowDoesNotPrint) {
    bool dialogShown = false;
    AnswerModal([&dialogShown](QWidget*) { dialogShown = true; }, 1);  // looks once
    widget->SetBusy(true);
    widget->Print();
    QCoreApplication::processEvents();
    EXPECT_FALSE(dialogShown);
}
