// The skin read from skin documents that the emulator's work-data store serves from disk:
// defaults, the documented exceptions, and documents a person or a broken tool may have
// written (missing nodes, malformed colours, pictures that are missing or not pictures).
#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QTemporaryDir>
#include <memory>

#include "gui/CSkin.h"
#include "host/Emulator.h"
#include "module/PFChartModule.h"

namespace {

QColor Rgb(int r, int g, int b) { return QColor(r, g, b); }

struct Skin : ::testing::Test {
    QTemporaryDir dir;
    std::unique_ptr<host::Emulator> emulator;
    std::unique_ptr<PFChartModule> module;
    int documents = 0;

    void SetUp() override {
        emulator.reset(new host::Emulator);
        module.reset(new PFChartModule);
        module->InitializeWrap(&host::Host::callback, &host::Host::callback, emulator->host().coreHandle(), nullptr);
    }
    void TearDown() override {
        module.reset();
        emulator.reset();
    }
    CSkin& S() { return *module->GetSkin(); }
    QString Write(const QString& name, const QByteArray& bytes) {
        const QString path = dir.filePath(name);
        QFile f(path);
        EXPECT_TRUE(f.open(QIODevice::WriteOnly));
        f.write(bytes);
        return path;
    }
    // A picture of `size` in a colour of its own, saved as PNG in the skin's folder.
    QImage Picture(const QString& name, QSize size = QSize(8, 8), QColor color = Qt::magenta) {
        QImage image(size, QImage::Format_ARGB32);
        image.fill(color);
        EXPECT_TRUE(image.save(dir.filePath(name), "PNG"));
        return QImage(dir.filePath(name));
    }
    // The store keeps a document it has opened, so every document gets a file of its own.
    QString Document(const QByteArray& pict, const QByteArray& common = QByteArray()) {
        return Write(QStringLiteral("skin%1.xml").arg(++documents), "<MainWindow><CHARTMODERN><PICT " + pict + "/><COMMON><PICT " +
                                                     common + "/></COMMON></CHARTMODERN></MainWindow>");
    }
    // Every field as the built-in skin has it, except the tool bar background, given.
    void ExpectDefaults(const QColor& toolBarBack) {
        EXPECT_EQ(S().GetFont().family(), QStringLiteral("Arial"));
        EXPECT_EQ(S().GetFont().pointSize(), 8);
        EXPECT_EQ(S().GetBackColor(), Rgb(255, 255, 255));
        EXPECT_EQ(S().GetAreaGridColor(), Rgb(236, 233, 216));
        EXPECT_EQ(S().GetFontColor(), Rgb(124, 123, 104));
        EXPECT_EQ(S().GetTimeBackColor(), Rgb(255, 255, 255));
        EXPECT_EQ(S().GetTimeGridColor(), Rgb(236, 233, 216));
        EXPECT_EQ(S().GetTimeFontColor(), Rgb(124, 123, 104));
        EXPECT_EQ(S().GetToolBarBackColor(), toolBarBack);
        EXPECT_EQ(S().GetToolBarFrontColor(), Rgb(0, 0, 0));
        EXPECT_EQ(S().GetTradeBuyColor(), Rgb(132, 185, 231));
        EXPECT_EQ(S().GetTradeSellColor(), Rgb(157, 225, 145));
        EXPECT_FALSE(S().GetAutoScroll());
        EXPECT_EQ(S().GetBackPos(), 0);
        const std::pair<const QImage*, const char*> pictures[] = {
            {&S().GetAddIcon(), ":/addgraph.png"},   {&S().GetPropIcon(), ":/prop.png"},
            {&S().GetZoomInIcon(), ":/zm1.png"},     {&S().GetZoomOutIcon(), ":/zm2.png"},
            {&S().GetTradeAutoIcon(), ":/tradein.png"}, {&S().GetDealIcon(), ":/b_g_deal.png"},
            {&S().GetUpDeal(), ":/up_deal.png"},     {&S().GetDownDeal(), ":/down_deal.png"},
            {&S().GetUpLimit(), ":/up_limit.png"},   {&S().GetDownLimit(), ":/down_limit.png"},
            {&S().GetBadSmile(), ":/smile1.png"},    {&S().GetGoodSmile(), ":/smile2.png"},
        };
        for (const auto& p : pictures) {
            SCOPED_TRACE(p.second);
            const QImage resource(QString::fromLatin1(p.second));
            ASSERT_FALSE(resource.isNull());  // every named picture is compiled in
            EXPECT_EQ(*p.first, resource);
        }
        EXPECT_TRUE(S().GetBackImage().isNull());
        EXPECT_TRUE(S().GetToolBarImage().isNull());
    }
};

TEST_F(Skin, BuiltInAndEmptyDocumentsGiveTheDefaultsWithTheToolBarTakingTheTimeFontColour) {
    EXPECT_FALSE(S().IsLoaded());
    ExpectDefaults(Rgb(246, 246, 246));

    // An empty document, and one whose nodes are there but empty: the tool bar background
    // becomes the time-scale font colour, everything else stays.
    for (const QByteArray& text : {QByteArray("<MainWindow/>"),
                                   QByteArray("<MainWindow><CHARTMODERN><PICT/><COMMON><PICT/></COMMON>"
                                              "</CHARTMODERN></MainWindow>")}) {
        SCOPED_TRACE(text.constData());
        const QString path = Write(QStringLiteral("empty%1.xml").arg(++documents), text);
        EXPECT_EQ(S().Load(path), 1);
        EXPECT_TRUE(S().IsLoaded());
        EXPECT_EQ(S().GetSkinFolder(), QFileInfo(path).path());
        ExpectDefaults(Rgb(124, 123, 104));
        // Only read: the host never rewrites a skin.
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::ReadOnly));
        EXPECT_EQ(f.readAll(), text);
    }
    // An empty path goes back to the built-in skin.
    EXPECT_EQ(S().LoadSkin(QString()), 0);
    EXPECT_FALSE(S().IsLoaded());
    ExpectDefaults(Rgb(246, 246, 246));
}

TEST_F(Skin, TheSampleDarkSkinSetsEveryField) {
    const QString path = QStringLiteral(PF_SOURCE_DIR "/examples/skins/dark/dark.xml");
    const QByteArray before = [&] {
        QFile f(path);
        return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
    }();
    ASSERT_FALSE(before.isEmpty());
    ASSERT_EQ(S().Load(path), 1);
    EXPECT_EQ(S().GetFont().family(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(S().GetBackColor(), Rgb(30, 33, 40));
    EXPECT_EQ(S().GetAreaGridColor(), Rgb(58, 63, 74));
    EXPECT_EQ(S().GetFontColor(), Rgb(190, 196, 206));
    EXPECT_EQ(S().GetTimeBackColor(), Rgb(24, 26, 32));
    EXPECT_EQ(S().GetTimeGridColor(), Rgb(70, 76, 88));
    EXPECT_EQ(S().GetTimeFontColor(), Rgb(170, 178, 190));
    EXPECT_EQ(S().GetToolBarBackColor(), Rgb(40, 44, 52));
    EXPECT_EQ(S().GetToolBarFrontColor(), Rgb(220, 224, 232));
    EXPECT_EQ(S().GetTradeBuyColor(), Rgb(70, 150, 255));
    EXPECT_EQ(S().GetTradeSellColor(), Rgb(255, 110, 90));
    EXPECT_TRUE(S().GetAutoScroll());
    const QString folder = QFileInfo(path).path() + QLatin1Char('/');
    EXPECT_EQ(S().GetBadSmile(), QImage(folder + "bad.png"));
    EXPECT_EQ(S().GetZoomInIcon(), QImage(folder + "zoom_in.png"));
    EXPECT_EQ(S().GetToolBarImage(), QImage(folder + "toolbar.png"));
    EXPECT_NE(S().GetUpDeal(), QImage(QStringLiteral(":/up_deal.png")));
    EXPECT_TRUE(S().GetBackImage().isNull());  // the dark skin names none

    // A second skin starts from the defaults again, not from the first one's values.
    ASSERT_EQ(S().Load(Document("BACK_COLOR=\"1,2,3\"")), 1);
    EXPECT_EQ(S().GetBackColor(), Rgb(1, 2, 3));
    EXPECT_EQ(S().GetTimeBackColor(), Rgb(255, 255, 255));
    EXPECT_EQ(S().GetBadSmile(), QImage(QStringLiteral(":/smile1.png")));
    EXPECT_FALSE(S().GetAutoScroll());
}

TEST_F(Skin, PicturesThatCannotBeLoadedFallBackToTheirCompiledInOnes) {
    const QImage mine = Picture(QStringLiteral("mine.png"));
    Write(QStringLiteral("notes.png"), "this is not a picture");
    Picture(QStringLiteral("huge.png"), QSize(CSkin::kMaxPictureSide + 1, 2));
    ASSERT_EQ(S().Load(Document("BAD_SMILE=\"missing.png\" GOOD_SMILE=\"notes.png\" UP_DEAL=\"\" "
                                "DOWN_DEAL=\"huge.png\" BACK_IMG=\"missing.png\" ADD_ICN=\"mine.png\" "
                                "PROP_ICN=\"../../no/such/dir/x.png\"",
                                "TB_PIXMAP=\"missing.png\"")),
              1);
    EXPECT_EQ(S().GetBadSmile(), QImage(QStringLiteral(":/smile1.png")));
    EXPECT_EQ(S().GetGoodSmile(), QImage(QStringLiteral(":/smile2.png")));
    EXPECT_EQ(S().GetUpDeal(), QImage(QStringLiteral(":/up_deal.png")));
    EXPECT_EQ(S().GetDownDeal(), QImage(QStringLiteral(":/down_deal.png")));
    EXPECT_EQ(S().GetPropIcon(), QImage(QStringLiteral(":/prop.png")));
    EXPECT_TRUE(S().GetBackImage().isNull());  // no compiled-in background
    EXPECT_EQ(S().GetAddIcon(), mine);
    // The tool bar image falls back to the down-limit mark.
    EXPECT_EQ(S().GetToolBarImage(), QImage(QStringLiteral(":/down_limit.png")));

    ASSERT_EQ(S().Load(Document("", "TB_PIXMAP=\"mine.png\"")), 1);
    EXPECT_EQ(S().GetToolBarImage(), mine);
}

TEST_F(Skin, MalformedColoursAndValuesKeepTheirDefaults) {
    struct Case {
        const char* value;
        QColor expected;  // of BACK_COLOR
    } cases[] = {
        {"red", Rgb(255, 255, 255)},       {"300,0,0", Rgb(255, 255, 255)}, {"300,0,0,9", Rgb(255, 255, 255)},
        {"1,2", Rgb(255, 255, 255)},       {"-1,0,0", Rgb(255, 255, 255)},  {"", Rgb(255, 255, 255)},
        {"1,,2", Rgb(255, 255, 255)},      {"0,128,255", Rgb(0, 128, 255)},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.value);
        const QByteArray v(c.value);
        ASSERT_EQ(S().Load(Document("BACK_COLOR=\"" + v + "\" TIME_FONT_COLOR=\"" + v +
                                        "\" AUTOSCROLL=\"yes please\" BACK_POS=\"x\"",
                                    "TB_FRONT_COLOR=\"" + v + "\"")),
                  1);
        EXPECT_EQ(S().GetBackColor(), c.expected);
        EXPECT_EQ(S().GetToolBarFrontColor(), c.expected == Rgb(255, 255, 255) ? Rgb(0, 0, 0) : c.expected);
        // A bad time-scale font colour keeps its default, which the tool bar then takes.
        const QColor time = c.expected == Rgb(255, 255, 255) ? Rgb(124, 123, 104) : c.expected;
        EXPECT_EQ(S().GetTimeFontColor(), time);
        EXPECT_EQ(S().GetToolBarBackColor(), time);
        EXPECT_EQ(S().GetBackPos(), 0);
    }
}

TEST_F(Skin, DocumentsThatAreNoSkinReadNothingAndLeaveTheDefaults) {
    // Keys outside their nodes, another root, a file that is not XML, a missing file, a
    // path too long for the request, and a module without a host.
    const QByteArray misplaced =
        "<MainWindow><PICT BACK_COLOR=\"1,2,3\"/><COMMON><PICT TB_FRONT_COLOR=\"1,2,3\"/></COMMON>"
        "<CHARTMODERN><FONT/><COMMON TB_FRONT_COLOR=\"4,5,6\"/></CHARTMODERN></MainWindow>";
    ASSERT_EQ(S().Load(Write(QStringLiteral("misplaced.xml"), misplaced)), 1);
    ExpectDefaults(Rgb(124, 123, 104));

    ASSERT_EQ(S().Load(Write(QStringLiteral("layout.xml"), "<ChartLayout><CHARTMODERN><PICT BACK_COLOR=\"1,2,3\"/>"
                                                           "</CHARTMODERN></ChartLayout>")),
              0);
    ExpectDefaults(Rgb(246, 246, 246));
    EXPECT_EQ(S().Load(Write(QStringLiteral("broken.xml"), "<MainWindow><CHARTMODERN>")), 0);
    ExpectDefaults(Rgb(246, 246, 246));
    const QString missing = dir.filePath(QStringLiteral("missing.xml"));
    EXPECT_EQ(S().Load(missing), 0);
    EXPECT_FALSE(QFile::exists(missing));  // nothing is created for a skin that is not there
    EXPECT_EQ(S().Load(QString(300, QLatin1Char('a')) + ".xml"), 0);
    ExpectDefaults(Rgb(246, 246, 246));

    CSkin alone(nullptr);
    EXPECT_EQ(alone.Load(QStringLiteral(PF_SOURCE_DIR "/examples/skins/dark/dark.xml")), 0);
    EXPECT_EQ(alone.GetBackColor(), Rgb(255, 255, 255));
    EXPECT_EQ(alone.ReadSkinData(nullptr), 0);
}

}  // namespace
