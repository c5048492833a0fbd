// Skins through the real entry points: the terminal tells the module its skin (LoadSkin), the
// module has the work-data store open the document (3163, 3164 when done) and restyles
// every chart window and an open property dialog; windows made afterwards start in the
// skin's look. pfhost takes skins in the order given. 3560, a number some terminals use for
// their own skin message, is no message of the module's.
#include <gtest/gtest.h>

#include <QColor>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTemporaryDir>
#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "PfhostProcess.h"
#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/Emulator.h"
#include "host/PropertyDialog.h"
#include "host/PropertyService.h"

using host::data::ChartType;

namespace {

const QString kDarkSkin = QStringLiteral(PF_EXAMPLES_DIR "/skins/dark/dark.xml");
const QSize kSize(700, 450);

class SkinWindow : public ModuleHostTest {
protected:
    void SetUp() override { Start(); }
    host::ChartWindows& Charts() { return emulator->charts(); }
    void* Window(ChartType type) {
        void* widget = Charts().create(type);
        EXPECT_NE(widget, nullptr);
        EXPECT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
        return widget;
    }
    QImage Grab(void* widget) { return Charts().grab(widget, kSize); }
    // The colours of a part of the picture, the most frequent first.
    static std::vector<QRgb> Frequent(const QImage& image, const QRect& part) {
        std::map<QRgb, int> count;
        for (int y = part.top(); y <= part.bottom(); ++y)
            for (int x = part.left(); x <= part.right(); ++x) ++count[image.pixel(x, y) | 0xFF000000];
        std::vector<std::pair<int, QRgb> > order;
        for (const auto& c : count) order.push_back({-c.second, c.first});
        std::sort(order.begin(), order.end());
        std::vector<QRgb> out;
        for (const auto& o : order) out.push_back(o.second);
        return out;
    }
    static QRgb Most(const QImage& image, const QRect& part) { return Frequent(image, part).front(); }
    // The two most frequent colours of the data part: the area colour and the grid's.
    static std::set<QRgb> AreaColours(const QImage& image) {
        const std::vector<QRgb> f = Frequent(image, DataPart());
        return std::set<QRgb>(f.begin(), f.begin() + std::min<std::size_t>(2, f.size()));
    }
    static QRect DataPart() { return QRect(120, 100, 400, 200); }
    // Right of the tool bar's controls, where only its background shows.
    static QRect ToolBarEnd() { return QRect(kSize.width() - 60, 2, 50, 20); }
    // The time scale strip's left end, under the left price scale.
    static QRect TimeScaleStart() { return QRect(2, kSize.height() - 40, 10, 8); }
};

TEST_F(SkinWindow, DarkSkinRestylesOpenWindowsAndTheBuiltInLookComesBackPixelForPixel) {
    void* pf = Window(ChartType::PointAndFigure);
    const QImage before = Grab(pf);
    EXPECT_EQ(AreaColours(before), (std::set<QRgb>{qRgb(255, 255, 255), qRgb(236, 233, 216)}));

    ASSERT_EQ(emulator->loadSkin(kDarkSkin), 0);
    std::vector<unsigned int> sent;
    for (const auto& e : SentDuring(LastIndexOf(host::Journal::kEntryPointCall))) sent.push_back(e.message);
    ASSERT_FALSE(sent.empty());
    EXPECT_EQ(sent.front(), unsigned(MSG_WD_OPEN));
    EXPECT_EQ(sent.back(), unsigned(MSG_WD_SAVE));

    const QImage dark = Grab(pf);
    EXPECT_NE(dark, before);
    // BACK_COLOR and AREA_GRID_COLOR.
    EXPECT_EQ(AreaColours(dark), (std::set<QRgb>{qRgb(30, 33, 40), qRgb(58, 63, 74)}));
    EXPECT_EQ(Most(dark, TimeScaleStart()), qRgb(24, 26, 32));   // TIME_BACK_COLOR
    const QColor bar(Most(dark, ToolBarEnd()));                  // the tool bar's dark picture
    EXPECT_LT(bar.lightness(), 80);
    EXPECT_GT(QColor(Most(before, ToolBarEnd())).lightness(), 200);

    // A window made now starts in the skin's look: the same picture as the restyled one.
    void* second = Window(ChartType::PointAndFigure);
    EXPECT_EQ(Grab(second), dark);

    // An empty path is the built-in look again.
    ASSERT_EQ(emulator->loadSkin(QString()), 0);
    EXPECT_EQ(Grab(pf), before);
    EXPECT_EQ(Grab(second), before);
    // The skin file was only read.
    QFile file(kDarkSkin);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.readAll().contains("BACK_COLOR=\"30,33,40\""));
}

TEST_F(SkinWindow, PathsAndDocumentsThatAreNoSkinLeaveTheBuiltInLook) {
    void* kagi = Window(ChartType::Kagi);
    const QImage before = Grab(kagi);
    QTemporaryDir dir;

    // A path without a terminator within 255 units is refused before the host is asked.
    std::vector<ushort> unterminated(255, ushort('a'));
    const std::size_t opened = H().journal().find(MSG_WD_OPEN).size();
    EXPECT_EQ(H().loadSkin(unterminated.data()), 1);
    EXPECT_TRUE(emulator->core().logRecords().back().text.startsWith("Skin not read"));
    EXPECT_EQ(emulator->core().logRecords().back().level, 3);
    EXPECT_EQ(H().journal().find(MSG_WD_OPEN).size(), opened);
    EXPECT_EQ(H().loadSkin(nullptr), 0);  // null: the built-in look
    // A missing file, another document, a file that is not XML.
    EXPECT_EQ(emulator->loadSkin(dir.filePath(QStringLiteral("none.xml"))), 1);
    EXPECT_FALSE(QFile::exists(dir.filePath(QStringLiteral("none.xml"))));
    for (const QByteArray& text : {QByteArray("<ChartLayout Type=\"pf\"/>"), QByteArray("not xml at all")}) {
        const QString path = dir.filePath(QStringLiteral("doc%1.xml").arg(text.size()));
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(text);
        f.close();
        EXPECT_EQ(emulator->loadSkin(path), 1) << text.constData();
    }
    EXPECT_EQ(Grab(kagi), before);

    // A hostile skin is read with its bad parts left at their defaults: the window lives on,
    // with the tool bar showing the fallback picture over the time-scale font colour.
    const QString hostile = dir.filePath(QStringLiteral("hostile.xml"));
    QFile f(hostile);
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("<MainWindow><CHARTMODERN><FONT Family=\"\" Size=\"-5\"/><PICT BACK_COLOR=\"red\" "
            "AREA_GRID_COLOR=\"300,0,0,9\" ZOOM_IN_ICN=\"hostile.xml\" DEAL_ICN=\"/dev/null\"/>"
            "<COMMON><PICT TB_PIXMAP=\"missing.png\"/></COMMON></CHARTMODERN></MainWindow>");
    f.close();
    EXPECT_EQ(emulator->loadSkin(hostile), 0);
    const QImage restyled = Grab(kagi);
    EXPECT_EQ(AreaColours(restyled), AreaColours(before));
    EXPECT_NE(restyled, before);
}

TEST_F(SkinWindow, Number3560IsNoSkinMessageWhateverItsParameterAndTarget) {
    void* pf = Window(ChartType::PointAndFigure);
    const QImage before = Grab(pf);
    std::vector<ushort> path(kDarkSkin.utf16(), kDarkSkin.utf16() + kDarkSkin.size());
    path.push_back(0);
    // A skin's path, to the module and to each chart type interface: nothing is read, the
    // host is asked nothing, the window keeps its look.
    std::vector<void*> targets{nullptr, H().coreHandle()};
    for (ChartType type : {ChartType::PointAndFigure, ChartType::Renko, ChartType::Kagi})
        targets.push_back(Charts().interfaceOf(Window(type)));
    for (void* target : targets) {
        const std::size_t at = H().journal().entries().size();
        EXPECT_EQ(H().send(target, 3560, P(path.data())), 0);
        EXPECT_TRUE(SentDuring(at).empty()) << H().journal().dump();
    }
    EXPECT_EQ(Grab(pf), before);

    // A skin read through the entry point stays, whatever 3560 carries: no pointer at all,
    // or none.
    ASSERT_EQ(emulator->loadSkin(kDarkSkin), 0);
    const QImage dark = Grab(pf);
    ASSERT_NE(dark, before);
    for (std::intptr_t p1 : {std::intptr_t(0), std::intptr_t(0x5150), std::intptr_t(-1)}) {
        const std::size_t at = H().journal().entries().size();
        EXPECT_EQ(H().send(nullptr, 3560, p1, p1), 0);
        EXPECT_TRUE(SentDuring(at).empty());
    }
    EXPECT_EQ(Grab(pf), dark);
}

TEST_F(SkinWindow, TheBackgroundPictureShowsFaintlyWhereTheSkinPlacesIt) {
    void* pf = Window(ChartType::PointAndFigure);
    QTemporaryDir dir;
    QImage red(60, 60, QImage::Format_ARGB32);
    red.fill(Qt::red);
    ASSERT_TRUE(red.save(dir.filePath(QStringLiteral("red.png")), "PNG"));
    auto reddish = [](QRgb c) { return qRed(c) > qGreen(c) + 60 && qGreen(c) > 100; };  // red over white, faint
    const QRect centre(340, 190, 20, 20);
    const QRect corner(kSize.width() - 90, kSize.height() - 110, 20, 20);
    struct Case {
        const char* position;
        bool atCentre, atCorner;
    } cases[] = {{"0", true, false}, {"4", false, true}, {"17", true, false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.position);
        const QString path = dir.filePath(QStringLiteral("back%1.xml").arg(c.position));
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(QByteArray("<MainWindow><CHARTMODERN><PICT BACK_IMG=\"red.png\" BACK_POS=\"") + c.position +
                "\"/></CHARTMODERN></MainWindow>");
        f.close();
        ASSERT_EQ(emulator->loadSkin(path), 0);
        const QImage image = Grab(pf);
        EXPECT_EQ(reddish(Most(image, centre)), c.atCentre);
        EXPECT_EQ(reddish(Most(image, corner)), c.atCorner);
    }
}

TEST_F(SkinWindow, AnOpenPropertyDialogShowsTheSkinAndItsApplyKeepsIt) {
    void* pf = Window(ChartType::PointAndFigure);
    Grab(pf);
    std::string error;
    host::PropertyDialog* dialog = emulator->properties().open(pf, &error);
    ASSERT_NE(dialog, nullptr) << error;
    EXPECT_EQ(dialog->value("Chart window/Background color"), "255,255,255");
    const int refreshes = emulator->properties().refreshes();

    ASSERT_EQ(emulator->loadSkin(kDarkSkin), 0);
    EXPECT_GT(emulator->properties().refreshes(), refreshes);
    const std::pair<const char*, const char*> shown[] = {
        {"Chart window/Background color", "30,33,40"},           {"Grid color", "58,63,74"},
        {"Font color", "190,196,206"},  {"Time scale/Background color", "24,26,32"},
        {"Time scale/Grid color", "70,76,88"},
    };
    for (const auto& s : shown) EXPECT_EQ(dialog->value(s.first), s.second) << s.first;
    const QImage dark = Grab(pf);

    // Apply as it stands, and with an unrelated change: the skin's colours stay.
    EXPECT_EQ(dialog->apply(), 0);
    EXPECT_EQ(Grab(pf), dark);
    ASSERT_TRUE(emulator->properties().setAndApply(dialog, "Free space positions", "8", &error)) << error;
    EXPECT_EQ(AreaColours(Grab(pf)), (std::set<QRgb>{qRgb(30, 33, 40), qRgb(58, 63, 74)}));
    EXPECT_EQ(Most(Grab(pf), TimeScaleStart()), qRgb(24, 26, 32));

    // The built-in look comes back into the dialog as well.
    ASSERT_EQ(emulator->loadSkin(QString()), 0);
    EXPECT_EQ(dialog->value("Chart window/Background color"), "255,255,255");
    EXPECT_EQ(dialog->value("Time scale/Grid color"), "220,220,220");
}

TEST_F(SkinWindow, PfhostLoadsSkinsInTheOrderGivenAndTheLastOneIsTheLook) {
    const QString pfhost = PfhostBeside(QStringLiteral(PF_MODULE_PATH));
    if (pfhost.isEmpty()) GTEST_SKIP() << "pfhost is not built";
    QTemporaryDir dir;
    const QString olive = dir.filePath(QStringLiteral("olive.xml"));
    {
        QFile file(olive);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("<MainWindow><CHARTMODERN><PICT BACK_COLOR=\"90,110,20\" AREA_GRID_COLOR=\"120,140,40\"/>"
                   "</CHARTMODERN></MainWindow>");
    }
    const QString picture = dir.filePath(QStringLiteral("s.png"));
    auto run = [&](const QStringList& skins, int* status) {
        QStringList args{"chart", "--data", "USDCHF", "--type", "pf", "--size", "700x450", "--out", picture};
        for (const QString& s : skins) args << "--skin" << s;
        return RunPfhost(pfhost, args, status, 30000);
    };
    const std::set<QRgb> darkAreas{qRgb(30, 33, 40), qRgb(58, 63, 74)};
    const std::set<QRgb> oliveAreas{qRgb(90, 110, 20), qRgb(120, 140, 40)};
    int status = -1;
    QString out = run({kDarkSkin}, &status);
    ASSERT_EQ(status, 0) << out.toStdString();
    EXPECT_EQ(AreaColours(QImage(picture)), darkAreas);
    out = run({kDarkSkin, olive}, &status);
    ASSERT_EQ(status, 0) << out.toStdString();
    EXPECT_EQ(AreaColours(QImage(picture)), oliveAreas);
    out = run({olive, kDarkSkin}, &status);
    ASSERT_EQ(status, 0) << out.toStdString();
    EXPECT_EQ(AreaColours(QImage(picture)), darkAreas);
    // A skin that cannot be read stops the command, also after one that could.
    QFile::remove(picture);
    out = run({kDarkSkin, dir.filePath(QStringLiteral("missing.xml"))}, &status);
    EXPECT_EQ(status, 1);
    EXPECT_TRUE(out.contains("read no skin from")) << out.toStdString();
    EXPECT_FALSE(QFile::exists(picture));
}

}  // namespace
