// The terminal's own work around the charts, as a trader uses it on a real X server: the
// indicator dialog a click on a figure opens (box size, reversal, colours) and the study
// dialog of a text study, both kept by the workspace; the titles that say what each chart
// is; the printed and exported page with its header line; and where chart windows open,
// cascade and come back to.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include <QDoubleSpinBox>
#include <QFile>
#include <QLineEdit>
#include <QMenu>
#include <QPrinter>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QSpinBox>
#include <QCheckBox>
#include <QComboBox>
#include <QStandardPaths>

#include "TerminalSession.h"
#include "host/LineStudies.h"
#include "host/terminal/ChartDescription.h"
#include "host/terminal/ChartSettingsDialog.h"
#include "host/terminal/StudyDialog.h"
#include "host/terminal/WindowArrangement.h"

namespace {

using host::terminal::ChartSettingsDialog;
using host::terminal::StudyDialog;

class TerminalSettings : public TerminalSession {
protected:
    // A window of `type` showing USD/CHF, at its newest figures.
    void* Chart(ChartType type) {
        void* w = terminal->newChart(type);
        EXPECT_NE(w, nullptr);
        if (!w) return nullptr;
        EXPECT_TRUE(DragInstrument(w, QStringLiteral("USDCHF")));
        QTest::keyClick(Charts().chartWidget(w), Qt::Key_End);
        QTest::qWait(50);
        return w;
    }
    host::data::ChartObject* Object(void* w) {
        const auto charts = host::terminal::windowCharts(emulator->data(), w);
        return charts.empty() ? nullptr : charts.front();
    }
    // The window's picture once it has settled.
    QImage Picture(void* w) {
        QImage last = Charts().container(w)->grab().toImage();
        for (int i = 0; i < 100; ++i) {
            QTest::qWait(50);
            QImage now = Charts().container(w)->grab().toImage();
            if (now == last) return now;
            last = now;
        }
        return last;
    }
    // A click where the window shows nothing: whatever was selected no longer is (a window
    // opened from a workspace selects nothing either).
    void ClickEmpty(void* w) {
        QWidget* chart = Charts().chartWidget(w);
        Charts().click(w, QPoint(chart->width() / 3, 40));
        QTest::qWait(50);
    }
    QString Title(void* w) { return Charts().subWindow(w)->windowTitle(); }
    // A click on a figure of the window's first area, as a person picks a column.
    ChartSettingsDialog* ClickFigure(void* w) {
        QPoint at;
        if (!Charts().figureIn(w, 0, &at)) return nullptr;
        Charts().click(w, at);
        if (!QTest::qWaitFor([this] { return terminal->chartSettingsDialog() != nullptr; }, 2000)) return nullptr;
        return terminal->chartSettingsDialog();
    }
    static void Click(QWidget* dialog, const char* button) {
        QPushButton* b = dialog->findChild<QPushButton*>(QString::fromLatin1(button));
        ASSERT_NE(b, nullptr) << button;
        QTest::mouseClick(b, Qt::LeftButton);
    }
};

TEST_F(TerminalSettings, AClickOnAFigureOpensTheChartSettingsAndTheChartIsBuiltAgain) {
    Open(workspace);
    void* pf = Chart(ChartType::PointAndFigure);
    void* renko = Chart(ChartType::Renko);
    void* kagi = Chart(ChartType::Kagi);
    ASSERT_TRUE(pf && renko && kagi);
    terminal->updateTitles();
    // Each title names the instrument, period, chart type and its box (and reversal).
    const QRegularExpression pfTitle(QStringLiteral("^USDCHF 30 min \u00b7 Point and Figure 0\\.\\d{4} \u00d7 3$"));
    EXPECT_TRUE(pfTitle.match(Title(pf)).hasMatch()) << Title(pf).toStdString();
    EXPECT_TRUE(QRegularExpression(QStringLiteral("^USDCHF 30 min \u00b7 Renko 0\\.\\d{4}$")).match(Title(renko)).hasMatch())
        << Title(renko).toStdString();
    EXPECT_TRUE(Title(kagi).startsWith(QStringLiteral("USDCHF 30 min \u00b7 Kagi "))) << Title(kagi).toStdString();

    // The Point and Figure window's settings from a click on one of its columns.
    host::data::ChartObject* object = Object(pf);
    ASSERT_NE(object, nullptr);
    const host::data::ChartSettings old = object->settings();
    ChartSettingsDialog* dialog = ClickFigure(pf);
    ASSERT_NE(dialog, nullptr) << "no dialog after a click on a figure";
    EXPECT_EQ(dialog->chart(), object->handle());
    EXPECT_TRUE(dialog->isVisible());
    QDoubleSpinBox* box = dialog->findChild<QDoubleSpinBox*>(QStringLiteral("boxSize"));
    QSpinBox* reversal = dialog->findChild<QSpinBox*>(QStringLiteral("reversal"));
    ASSERT_TRUE(box && reversal);
    EXPECT_DOUBLE_EQ(box->value(), old.box);
    EXPECT_EQ(reversal->value(), 3);

    // A larger box and a reversal of 2, typed as a person does, then Apply: the data core
    // builds the chart again and the window hears it (3009) and shows other figures.
    const QImage before = Picture(pf);
    const std::size_t heard = emulator->data().notices().size();
    const QString newBox = QString::number(old.box * 2, 'f', 4);
    box->selectAll();
    QTest::keyClicks(box, newBox);
    reversal->selectAll();
    QTest::keyClicks(reversal, QStringLiteral("2"));
    Click(dialog, "apply");
    EXPECT_DOUBLE_EQ(object->settings().box, newBox.toDouble());
    EXPECT_EQ(object->settings().reversal, 2);
    ASSERT_GT(emulator->data().notices().size(), heard);
    EXPECT_EQ(emulator->data().notices().back().handle, object->handle());
    EXPECT_EQ(emulator->data().notices().back().result, 0);
    EXPECT_FALSE(Picture(pf) == before) << "the window shows the old figures";
    terminal->updateTitles();
    EXPECT_TRUE(Title(pf).endsWith(QStringLiteral("Point and Figure %1 \u00d7 2").arg(newBox))) << Title(pf).toStdString();
    bool listed = false;
    for (int row = 0; row < terminal->instruments()->count(); ++row)
        listed |= terminal->instruments()->item(row)->text().contains(Title(pf));
    EXPECT_TRUE(listed) << "the Instruments panel does not show the settings";

    // A colour for the X columns: the chart's array carries it and the window paints with it.
    host::data::ChartSettings blue = object->settings();
    blue.rising = 0xFF0000FFu;
    dialog->setSettings(blue);
    EXPECT_EQ(dialog->findChild<QPushButton*>(QStringLiteral("risingColour"))->text(), QStringLiteral("#0000ff"));
    Click(dialog, "ok");
    EXPECT_FALSE(dialog->isVisible());
    EXPECT_EQ(std::uint32_t(object->array()->typeShow.color0), 0xFF0000FFu);
    const QImage painted = Picture(pf);
    int bluePixels = 0;
    for (int y = 0; y < painted.height(); ++y)
        for (int x = 0; x < painted.width(); ++x) bluePixels += (painted.pixel(x, y) & 0xFFFFFFu) == 0x0000FFu;
    EXPECT_GT(bluePixels, 50) << "no X drawn in the new colour";
    ClickEmpty(pf);

    // Kept in the workspace: after a restart the chart is built with the same settings from
    // the start. (The figures fill the window as in any window opened afresh.)
    ASSERT_TRUE(terminal->saveWorkspace());
    const QString savedTitle = Title(pf);
    terminal->quit();
    Close();
    Open(workspace);
    ASSERT_EQ(Charts().widgets().size(), 3u);
    terminal->updateTitles();
    void* again = nullptr;
    for (void* w : Charts().widgets())
        if (Title(w) == savedTitle) again = w;
    ASSERT_NE(again, nullptr) << savedTitle.toStdString();
    ASSERT_NE(Object(again), nullptr);
    EXPECT_DOUBLE_EQ(Object(again)->settings().box, newBox.toDouble());
    EXPECT_EQ(Object(again)->settings().reversal, 2);
    EXPECT_EQ(Object(again)->settings().rising, 0xFF0000FFu);
    EXPECT_TRUE(terminal->messages().filter(QStringLiteral("Workspace:")).isEmpty())
        << terminal->messages().join(QLatin1Char('\n')).toStdString();
}

// TTRC has highs and lows: its charts can be built from another price than the close, which
// the workspace keeps; USD/CHF has closes only and offers none.
TEST_F(TerminalSettings, ChartsOfQuotesWithHighAndLowCanBeBuiltFromAnotherPrice) {
    Open(workspace, true);
    void* kagi = terminal->newChart(ChartType::Kagi);
    ASSERT_TRUE(DragInstrument(kagi, QStringLiteral("TTRC")));
    host::data::ChartObject* object = Object(kagi);
    ASSERT_NE(object, nullptr);
    ChartSettingsDialog* dialog = terminal->showChartSettings(kagi, object->handle());
    ASSERT_NE(dialog, nullptr);
    QComboBox* price = dialog->findChild<QComboBox*>(QStringLiteral("priceField"));
    ASSERT_NE(price, nullptr);
    const std::vector<fxChartTypeRecord> closes = object->records();
    price->setCurrentIndex(price->findData(int(host::data::PriceField::Typical)));
    Click(dialog, "ok");
    EXPECT_EQ(object->settings().price, host::data::PriceField::Typical);
    const std::vector<fxChartTypeRecord> typical = object->records();
    EXPECT_FALSE(typical.size() == closes.size() &&
                 std::equal(typical.begin(), typical.end(), closes.begin(), [](const fxChartTypeRecord& a, const fxChartTypeRecord& b) {
                     return std::memcmp(&a, &b, sizeof a) == 0;
                 }))
        << "the same figures from the typical price";

    void* pf = Chart(ChartType::PointAndFigure);
    ASSERT_NE(Object(pf), nullptr);
    ChartSettingsDialog* closesOnly = terminal->showChartSettings(pf, Object(pf)->handle());
    ASSERT_NE(closesOnly, nullptr);
    EXPECT_EQ(closesOnly->findChild<QComboBox*>(QStringLiteral("priceField")), nullptr);
    closesOnly->close();

    ASSERT_TRUE(terminal->saveWorkspace());
    terminal->quit();
    Close();
    Open(workspace, true);
    bool found = false;
    for (void* w : Charts().widgets())
        if (Object(w) && Object(w)->instrument().name() == "TTRC") {
            found = true;
            EXPECT_EQ(Object(w)->settings().price, host::data::PriceField::Typical);
            EXPECT_EQ(Object(w)->records().size(), typical.size());
        }
    EXPECT_TRUE(found);
}

// What a chart may ask that makes no sense: properties of a handle the data core does not
// know, or in a widget that is no window, and a study that is gone. Nothing is changed.
TEST_F(TerminalSettings, RequestsForUnknownChartsAndStudiesChangeNothing) {
    Open(workspace);
    void* pf = Chart(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    int stranger = 0;
    EXPECT_EQ(terminal->showChartSettings(&stranger, Object(pf)->handle()), nullptr);
    ChartSettingsDialog* unknown = terminal->showChartSettings(pf, reinterpret_cast<void*>(std::intptr_t(0x7fff)));
    ASSERT_NE(unknown, nullptr);
    QString error;
    EXPECT_FALSE(unknown->apply(&error));
    EXPECT_FALSE(error.isEmpty());
    unknown->close();
    EXPECT_EQ(terminal->showStudyProperties(12345), nullptr);
    // A 4511 for an unknown study is refused by the provider and opens nothing.
    EXPECT_EQ(host::Host::callback(emulator->studies().handle(), MSG_LS_PROPERTIES, 12345, 0), 1);
    QTest::qWait(50);
    EXPECT_EQ(terminal->studyDialog(), nullptr);
}

TEST_F(TerminalSettings, ATextStudyTakesItsTextAndFontFromTheStudyDialogAndKeepsThem) {
    Open(workspace);
    void* pf = Chart(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    QWidget* chart = Charts().chartWidget(pf);
    Trigger("study:Text");
    const QPoint at = chart->rect().center() + QPoint(-60, 0);
    QTest::mouseMove(chart, at - QPoint(20, 0));
    QTest::mouseMove(chart, at);
    QTest::mouseClick(chart, Qt::LeftButton, Qt::NoModifier, at);
    ASSERT_EQ(emulator->studies().ids().size(), 1u);
    const std::int32_t id = emulator->studies().ids()[0];
    QTest::qWait(250);
    EXPECT_EQ(emulator->studies().study(id)->params.text, QStringLiteral("Text"));

    // A double click on the text asks for its properties (4511): the terminal's dialog.
    for (const QPoint d : {QPoint(8, -6), QPoint(4, -4), QPoint(12, -8), QPoint(0, 0), QPoint(20, -6)}) {
        QTest::mouseDClick(chart, Qt::LeftButton, Qt::NoModifier, at + d);
        if (QTest::qWaitFor([this] { return terminal->studyDialog() != nullptr; }, 300)) break;
    }
    StudyDialog* dialog = terminal->studyDialog();
    ASSERT_NE(dialog, nullptr) << "no study dialog after a double click on the text";
    EXPECT_EQ(dialog->study(), id);
    QLineEdit* text = dialog->findChild<QLineEdit*>(QStringLiteral("studyText"));
    QSpinBox* size = dialog->findChild<QSpinBox*>(QStringLiteral("studyFontSize"));
    QCheckBox* bold = dialog->findChild<QCheckBox*>(QStringLiteral("studyBold"));
    ASSERT_TRUE(text && size && bold);
    const QImage before = Picture(pf);
    const std::size_t updates = emulator->studies().updates().size();
    text->selectAll();
    QTest::keyClicks(text, QStringLiteral("Breakout above 1.25"));
    size->selectAll();
    QTest::keyClicks(size, QStringLiteral("16"));
    bold->click();
    Click(dialog, "ok");
    EXPECT_FALSE(dialog->isVisible());
    const host::ls::StudyParams& p = emulator->studies().study(id)->params;
    EXPECT_EQ(p.text, QStringLiteral("Breakout above 1.25"));
    EXPECT_EQ(p.pointSize, 16);
    EXPECT_TRUE(p.bold);
    ASSERT_EQ(emulator->studies().updates().size(), updates + 1);
    EXPECT_EQ(emulator->studies().updates().back().id, id);
    EXPECT_EQ(emulator->studies().updates().back().answer, 0);
    EXPECT_FALSE(Picture(pf) == before) << "the chart still shows the old text";

    // A restart brings the text back as it was edited.
    ClickEmpty(pf);
    ASSERT_TRUE(terminal->saveWorkspace());
    const QImage saved = Picture(pf);
    terminal->quit();
    Close();
    Open(workspace);
    ASSERT_EQ(emulator->studies().ids().size(), 1u);
    const host::ls::StudyParams& q = emulator->studies().study(emulator->studies().ids()[0])->params;
    EXPECT_EQ(q.text, QStringLiteral("Breakout above 1.25"));
    EXPECT_EQ(q.pointSize, 16);
    EXPECT_TRUE(q.bold);
    ASSERT_EQ(Charts().widgets().size(), 1u);
    EXPECT_TRUE(Picture(Charts().widgets()[0]) == saved) << "the restored text differs";
}

TEST_F(TerminalSettings, PrintedAndExportedPagesCarryTheHeaderLine) {
    Open(workspace);
    void* pf = Chart(ChartType::PointAndFigure);
    ASSERT_NE(pf, nullptr);
    host::data::ChartObject* object = Object(pf);
    ASSERT_NE(object, nullptr);
    const QString header = host::terminal::chartHeader(*object);
    EXPECT_TRUE(header.contains(QRegularExpression(QStringLiteral("\\d{4}-\\d\\d-\\d\\d \\d\\d:\\d\\d to \\d{4}-"))))
        << header.toStdString();

    // File > Print chart: the print dialog (answered with a PDF file here), then the page.
    emulator->dialogs().clearAnswers();
    emulator->dialogs().setPrinting(host::DialogAnswerer::Printing::Accept, dir.filePath(QStringLiteral("printed.pdf")));
    const std::size_t moduleMessages = emulator->host().journal().find(5012).size();
    Trigger("print");
    ASSERT_EQ(emulator->dialogs().answers().size(), 1u);
    EXPECT_EQ(emulator->dialogs().answers()[0].answer, QStringLiteral("accepted"));
    EXPECT_EQ(emulator->host().journal().find(5012).size(), moduleMessages) << "the module printed";
    const QString pdf = dir.filePath(QStringLiteral("printed.pdf"));
    ASSERT_TRUE(QFile::exists(pdf));
    const QString pdftotext = QStandardPaths::findExecutable(QStringLiteral("pdftotext"));
    if (!pdftotext.isEmpty()) {
        QProcess run;
        run.start(pdftotext, {pdf, QStringLiteral("-")});
        ASSERT_TRUE(run.waitForFinished(10000));
        const QString text = QString::fromUtf8(run.readAllStandardOutput()).simplified();
        EXPECT_TRUE(text.contains(QStringLiteral("USDCHF 30 min"))) << text.toStdString();
        EXPECT_TRUE(text.contains(QStringLiteral("Point and Figure"))) << text.toStdString();
        EXPECT_TRUE(text.contains(header.section(QStringLiteral(" to "), 1))) << text.toStdString();
    }

    // Export: the suggested name follows the chart, the page has the header strip on top of
    // the chart's picture without tool bar and scroll bar, and the folder is remembered.
    EXPECT_TRUE(terminal->suggestedExportPath(QStringLiteral(".png")).endsWith(QStringLiteral("/USDCHF 30 min Point and Figure.png")))
        << terminal->suggestedExportPath(QStringLiteral(".png")).toStdString();
    QDir(dir.path()).mkdir(QStringLiteral("out"));
    const QString png = dir.filePath(QStringLiteral("out/page.png"));
    ASSERT_TRUE(terminal->exportActive(png));
    EXPECT_EQ(terminal->suggestedExportPath(QStringLiteral(".pdf")),
              dir.filePath(QStringLiteral("out/USDCHF 30 min Point and Figure.pdf")));
    const QImage page(png);
    QWidget* chart = Charts().chartWidget(pf);
    EXPECT_EQ(page.width(), chart->width());
    EXPECT_LT(page.height(), chart->height()) << "tool bar and scroll bar are still in the picture";
    // The header strip is white with dark text.
    int dark = 0;
    for (int y = 0; y < 18; ++y)
        for (int x = 0; x < page.width() / 2; ++x) dark += qGray(page.pixel(x, y)) < 100;
    EXPECT_GT(dark, 20) << "no header text";

    // The folder is kept with the workspace: the terminal started again suggests it.
    ASSERT_TRUE(terminal->saveWorkspace());
    Close();
    Open(workspace);
    EXPECT_EQ(QFileInfo(terminal->suggestedExportPath(QStringLiteral(".png"))).absolutePath(),
              QFileInfo(dir.filePath(QStringLiteral("out"))).absoluteFilePath());
}

TEST_F(TerminalSettings, NewWindowsOpenVisibleCascadeAndComeBackToTheirSize) {
    Open(workspace);
    QMdiArea* area = emulator->mainWindow().mdiArea();
    const QRect room = area->viewport()->rect();
    std::vector<void*> windows;
    for (int i = 0; i < 4; ++i) windows.push_back(terminal->newChart(ChartType(i % 3)));
    for (void* w : windows) {
        QMdiSubWindow* sub = Charts().subWindow(w);
        EXPECT_TRUE(room.contains(sub->geometry())) << "a new window is not fully visible";
        EXPECT_NEAR(sub->width(), room.width() * 2 / 3, 2);
        EXPECT_NEAR(sub->height(), room.height() * 2 / 3, 2);
    }
    EXPECT_NE(Charts().subWindow(windows[0])->pos(), Charts().subWindow(windows[1])->pos());

    // Maximized, then a new window opens maximized too; each comes back to its own size.
    QMdiSubWindow* first = Charts().subWindow(windows[0]);
    const QRect normal = first->geometry();
    area->setActiveSubWindow(first);
    first->showMaximized();
    QTest::qWait(50);
    void* fifth = terminal->newChart(ChartType::Kagi);
    QMdiSubWindow* last = Charts().subWindow(fifth);
    EXPECT_TRUE(last->isMaximized());
    last->showNormal();
    QTest::qWait(50);
    EXPECT_TRUE(room.contains(last->geometry()));
    EXPECT_GE(last->height(), room.height() / 2) << "restored to its title bar";
    area->setActiveSubWindow(first);
    first->showNormal();
    QTest::qWait(50);
    EXPECT_EQ(first->geometry(), normal);

    // Cascade: every window at two-thirds of the area, each title reachable.
    Trigger("cascade");
    std::vector<QPoint> places;
    for (QMdiSubWindow* sub : area->subWindowList()) {
        EXPECT_NEAR(sub->width(), room.width() * 2 / 3, 2);
        EXPECT_NEAR(sub->height(), room.height() * 2 / 3, 2);
        EXPECT_TRUE(room.contains(sub->geometry()));
        places.push_back(sub->pos());
    }
    std::sort(places.begin(), places.end(), [](const QPoint& a, const QPoint& b) { return a.y() < b.y(); });
    EXPECT_LT(places.front().y(), places.back().y());

    // The Window menu lists the charts by title; choosing one brings it to the front.
    QMenu* menu = terminal->window()->findChild<QMenu*>(QStringLiteral("windowMenu"));
    ASSERT_NE(menu, nullptr);
    emit menu->aboutToShow();
    QAction* second = terminal->action(QStringLiteral("windowList2"));
    ASSERT_NE(second, nullptr);
    EXPECT_TRUE(second->text().contains(Charts().subWindow(windows[1])->windowTitle()));
    EXPECT_EQ(terminal->action(QStringLiteral("windowList6")), nullptr);
    second->trigger();
    EXPECT_EQ(terminal->activeChart(), windows[1]);
}

}  // namespace
