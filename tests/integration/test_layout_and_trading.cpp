// The real libPFChartModule.so.1 as the terminal uses a chart window beyond drawing it: its
// layout saved into a layout file (3021) and loaded into a fresh window (3020), deals
// and orders from its context menu reaching the dealing interfaces, instruments dragged onto
// it, printing, and the owner, caption and panel-status messages.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QWidget>

#include "ModuleHostTest.h"
#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/DragData.h"
#include "host/MainWindowService.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

using host::DealingService;
using host::DialogAnswerer;
using host::data::ChartType;

namespace {

class ChartUse : public ModuleHostTest {
protected:
    // The terminal with `accounts` trading accounts (DealingService::addDemoAccounts).
    void StartWith(int accounts) {
        Load();
        dealings = Deals().addDemoAccounts(accounts);
        emulator->startUp();
    }
    void* Window(ChartType type, const std::vector<std::string>& instruments) {
        void* widget = Charts().create(type);
        for (const std::string& name : instruments) EXPECT_EQ(Charts().drop(widget, {name}), 0);
        Charts().grab(widget, QSize(800, 600));
        return widget;
    }
    QPoint Middle(void* widget) { return Charts().chartWidget(widget)->rect().center(); }
    QStringList Path(std::initializer_list<const char*> keys, const QString& account = QString()) {
        QStringList path;
        for (const char* key : keys) path << emulator->moduleText(key);
        if (!account.isEmpty()) path.insert(1, account);
        return path;
    }
    static QString Run(const QString& program, const QStringList& args, int* status = nullptr) {
        QProcess p;
        p.start(program, args);
        p.waitForFinished(10000);
        if (status) *status = p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1;
        return QString::fromUtf8(p.readAllStandardOutput() + p.readAllStandardError());
    }
    host::ChartWindows& Charts() { return emulator->charts(); }
    DealingService& Deals() { return emulator->dealing(); }
    DialogAnswerer& Dialogs() { return emulator->dialogs(); }

    std::vector<void*> dealings;
    QTemporaryDir dir;
};

}  // namespace

// The layout file around the module's nodes: one ChartLayout root naming the type, replaced
// on every save, and loaded into a fresh window of whatever type is asked for.
TEST_F(ChartUse, LayoutFilesAreReplacedOnSaveAndLoadIntoAFreshWindow) {
    StartWith(1);
    void* original = Window(ChartType::Renko, {"USDCHF"});
    const QString path = dir.filePath("layout.xml");
    QString error;
    ASSERT_TRUE(emulator->layouts().save(original, path, &error)) << error.toStdString();
    ASSERT_EQ(Charts().drop(original, {"TTRC"}), 0);
    ASSERT_TRUE(emulator->layouts().save(original, path, &error)) << error.toStdString();
    int lint = -1;
    EXPECT_EQ(Run("xmllint", {"--noout", path}, &lint).toStdString(), "");
    EXPECT_EQ(lint, 0);
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    host::workdata::Node top;
    ASSERT_TRUE(host::workdata::parse(file.readAll(), top));
    ASSERT_EQ(top.children.size(), 1u);
    const host::workdata::Node& root = *top.children[0];
    EXPECT_EQ(root.name, "ChartLayout");
    EXPECT_EQ(*root.attribute("Type"), "renko");
    ASSERT_EQ(root.children.size(), 1u);
    EXPECT_EQ(root.children[0]->name, "ChartWindow");
    ASSERT_EQ(root.children[0]->children.size(), 1u);
    EXPECT_EQ(root.children[0]->children[0]->name, "PFWidget");

    ChartType type = ChartType::PointAndFigure;
    EXPECT_TRUE(emulator->layouts().typeOf(path, &type));
    EXPECT_EQ(type, ChartType::Renko);
    void* loaded = emulator->layouts().load(ChartType::Kagi, path, &error);
    ASSERT_NE(loaded, nullptr) << error.toStdString();
    EXPECT_EQ(Charts().interfaceOf(loaded), emulator->core().componentObject("Kagi"));
    EXPECT_EQ(Charts().title(loaded), Charts().title(original));
}

TEST_F(ChartUse, LayoutsRefuseFilesThatAreNoLayoutAndLeaveThemAlone) {
    StartWith(1);
    const QString other = dir.filePath("other.xml");
    QFile file(other);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("<Skin Colour=\"1\"/>\n");
    file.close();
    void* pf = Window(ChartType::PointAndFigure, {"USDCHF"});
    QString error;
    EXPECT_FALSE(emulator->layouts().save(pf, other, &error));
    EXPECT_FALSE(emulator->layouts().save(reinterpret_cast<void*>(0x7300), dir.filePath("x.xml"), &error));
    EXPECT_EQ(emulator->layouts().load(ChartType::Renko, other, &error), nullptr);
    EXPECT_EQ(emulator->layouts().load(ChartType::Renko, dir.filePath("missing.xml"), &error), nullptr);
    EXPECT_EQ(Charts().widgets().size(), 1u);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("<Skin Colour=\"1\"/>\n"));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("missing.xml")));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("x.xml")));
}

TEST_F(ChartUse, OneAccountTradesStraightFromTheTradeMenu) {
    StartWith(1);
    void* pf = Window(ChartType::PointAndFigure, {"USDCHF"});
    EXPECT_EQ(Charts().contextMenuEntries(pf, Middle(pf), Path({"PF0019"})),
              Path({"Tr0038Deal", "Tr0131SetOrdr"}));
    std::string error;
    ASSERT_TRUE(Charts().chooseFromContextMenu(pf, Middle(pf), Path({"PF0019", "Tr0038Deal"}), &error)) << error;
    ASSERT_TRUE(Charts().chooseFromContextMenu(pf, Middle(pf), Path({"PF0019", "Tr0131SetOrdr"}), &error)) << error;
    // A path the menu does not hold fails and names what the menu offered; no menu stays open.
    EXPECT_FALSE(Charts().chooseFromContextMenu(pf, Middle(pf), Path({"PF0019"}) << "Close", &error));
    EXPECT_NE(error.find(emulator->moduleText("Tr0131SetOrdr").toStdString()), std::string::npos) << error;
    EXPECT_FALSE(Charts().chooseFromContextMenu(pf, Middle(pf), Path({"Tr0038Deal"}), &error));
    EXPECT_EQ(QApplication::activePopupWidget(), nullptr);
    ASSERT_EQ(Deals().blotter().size(), 2u);
    const DealingService::Trade& deal = Deals().blotter()[0];
    EXPECT_EQ(std::make_tuple(deal.dealing, deal.accountId, deal.instrument, deal.kind, deal.price),
              std::make_tuple(dealings[0], 1001, std::string("USDCHF"), DealingService::TradeKind::Deal, 0.0));
    const DealingService::Trade& order = Deals().blotter()[1];
    EXPECT_EQ(order.kind, DealingService::TradeKind::Order);
    // The price at the middle of the only area: within USD/CHF's range over the years.
    EXPECT_GT(order.price, 1.1);
    EXPECT_LT(order.price, 1.9);
}

TEST_F(ChartUse, SeveralAccountsTradeThroughTheAccountWhoseMenuWasChosen) {
    StartWith(3);  // 1001 and 1003 at the first dealing, 1002 at the second
    void* kagi = Window(ChartType::Kagi, {"TTRC"});
    const QStringList accounts = Charts().contextMenuEntries(kagi, Middle(kagi), Path({"PF0019"}));
    EXPECT_EQ(accounts.size(), 3);
    EXPECT_TRUE(accounts.contains(DealingService::demoAccountName(2) + " >"));
    std::string error;
    ASSERT_TRUE(Charts().chooseFromContextMenu(kagi, Middle(kagi),
                                               Path({"PF0019", "Tr0131SetOrdr"}, DealingService::demoAccountName(2)),
                                               &error))
        << error;
    ASSERT_TRUE(Charts().chooseFromContextMenu(kagi, Middle(kagi),
                                               Path({"PF0019", "Tr0038Deal"}, DealingService::demoAccountName(3)),
                                               &error))
        << error;
    ASSERT_EQ(Deals().blotter().size(), 2u);
    EXPECT_EQ(std::make_pair(Deals().blotter()[0].dealing, Deals().blotter()[0].accountId),
              std::make_pair(dealings[1], 1002));
    EXPECT_EQ(std::make_pair(Deals().blotter()[1].dealing, Deals().blotter()[1].accountId),
              std::make_pair(dealings[0], 1003));
    EXPECT_EQ(Deals().blotter()[1].instrument, "TTRC");
}

TEST_F(ChartUse, DroppedInstrumentsAskBeforeReplacingTheOneShown) {
    StartWith(1);
    void* pf = Charts().create(ChartType::PointAndFigure);
    const QPoint at(300, 300);
    ASSERT_TRUE(Charts().dragDrop(pf, host::drag::instrumentDrag("USDCHF").get(), at));
    EXPECT_TRUE(Dialogs().answers().empty());  // nothing to replace yet
    EXPECT_EQ(H().journal().find(MSG_DESCRIBE_DRAG).back().result, 0);
    EXPECT_NE(Charts().title(pf).indexOf("USDCHF"), -1);

    ASSERT_TRUE(Charts().dragDrop(pf, host::drag::instrumentDrag("TTRC").get(), at));  // No: added
    ASSERT_EQ(Dialogs().answers().size(), 1u);
    const DialogAnswerer::Answer& question = Dialogs().answers()[0];
    EXPECT_EQ(question.text, emulator->moduleText("C0111Message"));
    EXPECT_EQ(question.buttons, QStringList({emulator->moduleText("C0078"), emulator->moduleText("C0077")}));
    EXPECT_EQ(question.answer, emulator->moduleText("C0077"));
    EXPECT_NE(Charts().title(pf).indexOf("USDCHF"), -1);
    EXPECT_NE(Charts().title(pf).indexOf("TTRC"), -1);

    Dialogs().setReply(DialogAnswerer::Reply::Yes);
    ASSERT_TRUE(Charts().dragDrop(pf, host::drag::instrumentDrag("USDCHF").get(), at));
    EXPECT_EQ(Charts().title(pf).indexOf("TTRC"), -1);

    // The host does not know the instrument: nothing is added.
    const QString title = Charts().title(pf);
    EXPECT_FALSE(Charts().dragDrop(pf, host::drag::instrumentDrag("EURUSD").get(), at));
    EXPECT_EQ(Charts().title(pf), title);
}

TEST_F(ChartUse, PrimitiveDragsAreTurnedAwayWhileDragging) {
    StartWith(1);
    void* pf = Charts().create(ChartType::PointAndFigure);
    EXPECT_FALSE(Charts().dragDrop(pf, host::drag::primitiveDrag("USDCHF", ChartType::Renko).get(), QPoint(50, 50)));
    EXPECT_TRUE(H().journal().find(MSG_DESCRIBE_PRIMITIVE).empty());
}

TEST_F(ChartUse, PrintingWritesAPageWithOnlyTheFooter) {
    StartWith(1);
    void* renko = Window(ChartType::Renko, {"USDCHF"});
    const QString pdf = dir.filePath("page.pdf");
    Dialogs().setPrinting(DialogAnswerer::Printing::Accept, pdf);
    const QSize size = Charts().chartWidget(renko)->size();
    ASSERT_EQ(Charts().print(renko), 0);
    EXPECT_EQ(Charts().chartWidget(renko)->size(), size) << "laid out for the page and back";
    ASSERT_EQ(Dialogs().answers().size(), 1u);
    EXPECT_EQ(Dialogs().answers()[0].kind, DialogAnswerer::Answer::Print);
    ASSERT_TRUE(QFileInfo(pdf).isFile());
    EXPECT_EQ(Run("pdftotext", {pdf, "-"}).trimmed().toStdString(), "Printing by KOVAR");
    const QRegularExpressionMatch page =
        QRegularExpression(QStringLiteral("Page size:\\s+([\\d.]+) x ([\\d.]+)")).match(Run("pdfinfo", {pdf}));
    ASSERT_TRUE(page.hasMatch());
    EXPECT_GT(page.captured(1).toDouble(), page.captured(2).toDouble()) << "landscape";

    Dialogs().setPrinting(DialogAnswerer::Printing::Reject);
    EXPECT_EQ(Charts().print(renko), 0);
    EXPECT_EQ(Dialogs().answers().back().answer, "rejected");
    EXPECT_EQ(Charts().print(reinterpret_cast<void*>(0x7300)), -1);
}

TEST_F(ChartUse, OwnerCaptionAndPanelStatusOfAWindow) {
    StartWith(1);
    void* pf = Window(ChartType::PointAndFigure, {"USDCHF"});
    const host::ChartWindows::Owner owner = Charts().owner(ChartType::PointAndFigure, pf);
    EXPECT_EQ(owner.answer, 0);
    EXPECT_EQ(owner.widget, pf);
    EXPECT_NE(owner.iface, nullptr);
    // No owner: the record's result words stay as the host left them. (The answer is the
    // module switch's 0: an interface's own answer does not reach the host.)
    for (const host::ChartWindows::Owner& none : {Charts().owner(ChartType::PointAndFigure, reinterpret_cast<void*>(0x7300)),
                                                  Charts().owner(ChartType::Kagi, pf)})
        EXPECT_EQ(std::make_pair(none.widget, none.iface),
                  std::make_pair(static_cast<void*>(nullptr), static_cast<void*>(nullptr)));

    const host::ChartWindows::Caption caption = Charts().caption(pf);
    EXPECT_EQ(caption.text, Charts().title(pf));
    EXPECT_TRUE(caption.terminated && !caption.overrun);

    EXPECT_EQ(Charts().panelStatus(pf, 1, 2), 0);
    ASSERT_FALSE(emulator->mainWindow().notices().empty());
    EXPECT_EQ(emulator->mainWindow().notices().back().text, "TimeFrame Changed");

    // Windows the host does not have are never asked about.
    void* stranger = reinterpret_cast<void*>(0x7300);
    for (int answer : {Charts().caption(stranger).answer, Charts().panelStatus(stranger, 1, 1),
                       Charts().applyProperty(stranger, nullptr, 1)})
        EXPECT_EQ(answer, -1);
}
