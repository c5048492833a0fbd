// Point and Figure and Renko renderers, and what the three renderers share: the column walk
// and its clamping, pens, the factory and the tooltip text.
#include <QCoreApplication>
#include <QDateTime>
#include <QTranslator>
#include <cstdlib>
#include <ctime>
#include <stdexcept>

#include "data/PFData.h"
#include "data/PointDataFactory.h"
#include "data/RenkoData.h"
#include "module/CModule.h"
#include "renderer_fixture.h"

namespace {

const unsigned short kPF[] = {'P', 'o', 'i', 'n', 't', ' ', 'a', 'n', 'd', ' ', 'F', 'i', 'g', 'u', 'r', 'e', 0};
const unsigned short kRenko[] = {'R', 'e', 'n', 'k', 'o', 0};
const unsigned short kKagi[] = {'K', 'a', 'g', 'i', 0};

QVector<QLine> Lines(std::initializer_list<QLine> lines) { return QVector<QLine>(lines); }

}  // namespace

using Prim = RecordingPaintDevice::Primitive;

TEST_F(RendererTest, PFRisingColumnIsCrossedBoxesStackedUpFromValue) {
    ChartRecordArray a({ChartRecord(2, 4, 1, 1)});  // 2.5 boxes of difference: 3 boxes
    pf::PFData pfData(&line, engine);
    Paint(pfData, a.get());
    // Boxes from rows 80, 70, 60 up to 50; x from 0 to 0 + 1 + 10.
    EXPECT_EQ(device.lines(), Lines({QLine(0, 80, 11, 70), QLine(0, 70, 11, 80), QLine(0, 70, 11, 60),
                                     QLine(0, 60, 11, 70), QLine(0, 60, 11, 50), QLine(0, 50, 11, 60)}));
    for (const Prim& p : device.primitives())
        EXPECT_TRUE(SamePen(p.pen, kColour0, 1.0, Qt::SolidLine)) << describePen(p.pen).toStdString();
    EXPECT_EQ(pfData.GetStepX(), 10.0f);
    EXPECT_EQ(pfData.GetXPos(), 10.0f);
}

TEST_F(RendererTest, PFFallingColumnIsEllipsesOnePixelNarrowerThanTheXBox) {
    ChartRecordArray a({ChartRecord(2, 3, 1, 0), ChartRecord(2, 2, 1, 1)});
    pf::PFData pfData(&line, engine);
    Paint(pfData, a.get());
    const std::vector<Prim> ellipses = device.of(Prim::Ellipse);
    ASSERT_EQ(ellipses.size(), 2u);
    // Each O is inscribed between the corners (x, lower row) and (x + 10, upper row - 1).
    EXPECT_EQ(ellipses[0].rects.at(0), QRect(QPoint(0, 69), QPoint(10, 80)));
    EXPECT_EQ(ellipses[1].rects.at(0), QRect(QPoint(0, 59), QPoint(10, 70)));
    EXPECT_TRUE(SamePen(ellipses[0].pen, kColour1, 1.0, Qt::SolidLine));
    // VALUE equal to END still makes one box; the X box reaches x + 11.
    EXPECT_EQ(device.lines(), Lines({QLine(10, 80, 21, 70), QLine(10, 70, 21, 80)}));
}

TEST_F(RendererTest, PFBoxCountRoundsAndAddsOne) {
    Frame(10, 0, 9.0f, 200, 1.19f, 1.21f);
    ChartRecordArray a({ChartRecord(1.2f, 1.203f, 0.001f, 0), ChartRecord(1.2f, 1.2f, 0.001f, 0),
                        ChartRecord(1.0f, 1.0024f, 0.001f, 0)});
    pf::PFData pfData(&line, engine);
    Paint(pfData, a.get());
    const std::vector<Prim> ellipses = device.of(Prim::Ellipse);
    ASSERT_EQ(ellipses.size(), 4u + 1u + 3u);
    // The first column spans 1.2000 to 1.2040.
    EXPECT_EQ(ellipses[0].rects.at(0).bottom(), engine->TranslateY(1.2f));
    EXPECT_EQ(ellipses[3].rects.at(0).top(), engine->TranslateY(1.204f) - 1);
}

TEST_F(RendererTest, FractionalColumnWidthsTruncateEachEdge) {
    Frame(8, 0, 7.0f, 100, 0.0f, 10.0f, 100);  // 12.5 pixels per column
    ChartRecordArray a({ChartRecord(2, 2, 1, 1), ChartRecord(2, 2, 1, 0), ChartRecord(2, 2, 1, 1)});
    pf::PFData pfData(&line, engine);
    Paint(pfData, a.get());
    // x 0, 12.5, 25: px 0, 13, 25; the X box ends at px + 1 + 12.5 truncated, the O at px + 12.
    EXPECT_EQ(device.lines(), Lines({QLine(0, 80, 13, 70), QLine(0, 70, 13, 80), QLine(25, 80, 38, 70),
                                     QLine(25, 70, 38, 80)}));
    EXPECT_EQ(device.of(Prim::Ellipse).at(0).rects.at(0), QRect(QPoint(13, 69), QPoint(25, 80)));
    EXPECT_EQ(pfData.GetXPos(), 37.5f);

    device.clear();
    ChartRecordArray bricks({ChartRecord(2, 9, 1, 1), ChartRecord(2, 9, 1, 1)});
    pf::RenkoData renko(&line, engine);
    Paint(renko, bricks.get());
    // The brick's right side is x + step + 0.5 truncated: 13 and 25 for the second brick.
    EXPECT_EQ(device.lines().mid(4), Lines({QLine(13, 80, 13, 70), QLine(13, 80, 25, 80),
                                            QLine(13, 70, 25, 70), QLine(25, 80, 25, 70)}));
}

TEST_F(RendererTest, RenkoDrawsOneHollowBrickPerRecordWhateverItsEnd) {
    ChartRecordArray a({ChartRecord(2, 7, 1, 1), ChartRecord(2, 2, 1, 0)});
    pf::RenkoData renko(&line, engine);
    Paint(renko, a.get());
    ASSERT_EQ(device.primitives().size(), 8u);
    for (const Prim& p : device.primitives()) EXPECT_EQ(p.kind, Prim::Lines);
    EXPECT_EQ(device.lines(), Lines({QLine(0, 80, 0, 70), QLine(0, 80, 10, 80), QLine(0, 70, 10, 70),
                                     QLine(10, 80, 10, 70), QLine(10, 80, 10, 70), QLine(10, 80, 20, 80),
                                     QLine(10, 70, 20, 70), QLine(20, 80, 20, 70)}));
    EXPECT_TRUE(SamePen(device.primitives()[0].pen, kColour0, 1.0, Qt::SolidLine));
    EXPECT_TRUE(SamePen(device.primitives()[4].pen, kColour1, 1.0, Qt::SolidLine));
}

TEST_F(RendererTest, SelectedLinesAlternateDashPatternsBetweenDraws) {
    ChartRecordArray a({ChartRecord(2, 4, 1, 1, 3)});
    for (const unsigned short* name : {kPF, kRenko, kKagi}) {
        auto renderer = pf::PointDataFactory::Instance().Create(name, engine, &line);
        line.Select(true);
        const Qt::PenStyle expected[] = {Qt::DotLine, Qt::DashDotLine, Qt::DotLine};
        for (Qt::PenStyle style : expected) {
            device.clear();
            Paint(*renderer, a.get());
            ASSERT_FALSE(device.primitives().empty());
            for (const Prim& p : device.primitives()) EXPECT_EQ(p.pen.style(), style);
        }
        line.Select(false);
        device.clear();
        Paint(*renderer, a.get());
        EXPECT_EQ(device.primitives().at(0).pen.style(), Qt::SolidLine);
        EXPECT_EQ(renderer->GetPenStyle(), 1);
    }
}

TEST_F(RendererTest, ColumnWalkIsClampedToEngineAndArray) {
    ChartRecordArray three({ChartRecord(2, 2, 1, 1), ChartRecord(3, 3, 1, 1), ChartRecord(4, 4, 1, 1)});
    pf::PFData pfData(&line, engine);
    const auto columns = [&] {
        device.clear();
        Paint(pfData, three.get());
        return int(device.primitives().size()) / 2;
    };
    EXPECT_EQ(columns(), 3);  // 10 visible, the array has 3
    EXPECT_EQ(pfData.GetXPos(), 30.0f);

    Frame(10, 0, 1.9f, 100, 0, 10);  // last drawable index 1
    EXPECT_EQ(columns(), 2);
    Frame(10, 2, 9.0f, 100, 0, 10);  // record 2 drawn in the first column
    EXPECT_EQ(columns(), 1);
    EXPECT_EQ(device.lines().at(0), QLine(0, 60, 11, 50));
    Frame(2, 0, 9.0f, 100, 0, 10);
    EXPECT_EQ(columns(), 2);

    for (int first : {3, 50, -1}) {
        Frame(10, first, 60.0f, 100, 0, 10);
        EXPECT_EQ(columns(), 0) << "first " << first;
    }
    Frame(10, 2, 1.0f, 100, 0, 10);  // first past the last drawable
    EXPECT_EQ(columns(), 0);
    Frame(0, 0, 9.0f, 100, 0, 10);
    EXPECT_EQ(columns(), 0);

    Frame(10, 0, 9.0f, 100, 0, 10);
    three.header().pointSize = 20;
    EXPECT_EQ(columns(), 0);
    three.header().pointSize = 24;
    three.header().pointCount = -4;
    EXPECT_EQ(columns(), 0);
    three.header().pointCount = 3;
    three.header().points = nullptr;
    EXPECT_EQ(columns(), 0);
    QPainter painter(&device);
    pfData.Draw(painter, nullptr);
    EXPECT_TRUE(device.primitives().empty());
}

TEST_F(RendererTest, PFHitRectangleEndsOneRowAboveValue) {
    ChartRecordArray a({ChartRecord(2, 4, 1, 1), ChartRecord(6, 7, 1, 0)}, 2);
    pf::PFData pfData(&line, engine);
    QString text;
    // Column 0 covers x 0..9 and rows TranslateY(5) = 50 down to TranslateY(2) - 1 = 79.
    EXPECT_TRUE(pfData.IsUnderMouse(QPoint(5, 79), a.get(), "L", text));
    EXPECT_TRUE(text.startsWith("L\n"));
    EXPECT_TRUE(pfData.IsUnderMouse(QPoint(9, 50), a.get(), "L", text));
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(5, 80), a.get(), "L", text));
    EXPECT_TRUE(text.isEmpty());
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(5, 49), a.get(), "L", text));
    // Column 1 (x 10..19, rows 20..39) answers with its own values.
    EXPECT_TRUE(pfData.IsUnderMouse(QPoint(10, 20), a.get(), "L", text));
    EXPECT_TRUE(text.contains(": 6.00\n")) << text.toStdString();
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(10, 40), a.get(), "L", text));

    // Columns past the array, no columns, a negative first column: never hit.
    Frame(10, 1, 9.0f, 100, 0, 10);
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(15, 70), a.get(), "L", text));
    Frame(0, 0, 9.0f, 100, 0, 10);
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(5, 70), a.get(), "L", text));
    Frame(10, -1, 9.0f, 100, 0, 10);
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(15, 30), a.get(), "L", text));
    EXPECT_FALSE(pfData.IsUnderMouse(QPoint(5, 70), nullptr, "L", text));
}

TEST_F(RendererTest, RenkoHitsOnlyTheLowerHalfOfTheSpan) {
    Frame(10, 0, 9.0f, 200, 0.0f, 20.0f);
    // Rows: END + STEP = 10 on row 100, VALUE 6.9 on row 131: the lower half is rows 115..129.
    ChartRecordArray a({ChartRecord(6.9f, 9, 1, 1), ChartRecord(11, 10, 1, 0)});
    pf::RenkoData renko(&line, engine);
    QString text;
    EXPECT_TRUE(renko.IsUnderMouse(QPoint(0, 115), a.get(), "R", text));
    EXPECT_TRUE(renko.IsUnderMouse(QPoint(9, 129), a.get(), "R", text));
    EXPECT_FALSE(renko.IsUnderMouse(QPoint(5, 114), a.get(), "R", text));
    EXPECT_FALSE(renko.IsUnderMouse(QPoint(5, 130), a.get(), "R", text));
    EXPECT_FALSE(renko.IsUnderMouse(QPoint(10, 115), a.get(), "R", text));
    // VALUE equal to END + STEP: an empty rectangle.
    for (int y = 85; y <= 95; ++y) EXPECT_FALSE(renko.IsUnderMouse(QPoint(15, y), a.get(), "R", text));
}

TEST(PointDataFactory, MakesTheRendererOfEachExactName) {
    const boost::shared_ptr<pf::ScaleEngine> engine(new pf::ScaleEngine);
    gx::Line line;
    pf::PointDataFactory& factory = pf::PointDataFactory::Instance();
    EXPECT_EQ(&factory, &pf::PointDataFactory::Instance());
    auto pfData = factory.Create(kPF, engine, &line);
    EXPECT_NE(dynamic_cast<pf::PFData*>(pfData.get()), nullptr);
    EXPECT_EQ(pfData->GetEngine(), engine);
    EXPECT_EQ(pfData->GetLine(), &line);
    EXPECT_EQ(pfData->GetXPos(), 0.0f);
    EXPECT_EQ(pfData->GetPenStyle(), 1);
    EXPECT_NE(dynamic_cast<pf::RenkoData*>(factory.Create(kRenko, engine, &line).get()), nullptr);

    const unsigned short lower[] = {'p', 'o', 'i', 'n', 't', ' ', 'a', 'n', 'd', ' ', 'f', 'i', 'g', 'u', 'r', 'e', 0};
    const unsigned short prefix[] = {'R', 'e', 'n', 0};
    const unsigned short longer[] = {'K', 'a', 'g', 'i', 's', 0};
    for (const unsigned short* bad : {lower, prefix, longer, static_cast<const unsigned short*>(nullptr)}) {
        try {
            factory.Create(bad, engine, &line);
            ADD_FAILURE() << "no exception";
        } catch (const std::runtime_error& e) {
            EXPECT_STREQ(e.what(), "Unexpected name of data point");
        }
    }
}

namespace {

// Gives the two tooltip keys their English texts, in the module's translation context only.
class TooltipTranslator : public QTranslator {
public:
    QString translate(const char* context, const char* source, const char*, int) const override {
        if (qstrcmp(context, "CTranslatePFgraph") != 0) return QString();
        if (qstrcmp(source, "PF0017") == 0) return QStringLiteral("First value");
        if (qstrcmp(source, "PF0018") == 0) return QStringLiteral("Last value");
        return QString();
    }
    bool isEmpty() const override { return false; }
};

class TestModule : public CModule {
public:
    TestModule() : CModule("Test module", 1, 1, 9, "TestLog", "CTranslatePFgraph") {}
};

// Runs the test in the zone the module sets for itself (GMT, no offset).
struct ZoneGuard {
    QByteArray saved = qgetenv("TZ");
    bool had = qEnvironmentVariableIsSet("TZ");
    ZoneGuard() { qputenv("TZ", "GST0"); tzset(); }
    ~ZoneGuard() {
        if (had) qputenv("TZ", saved); else qunsetenv("TZ");
        tzset();
    }
};

}  // namespace

TEST(PointDataTooltip, NameValuesAndLocalTimeThroughTheModuleTranslation) {
    ZoneGuard zone;
    TooltipTranslator translator;
    QCoreApplication::installTranslator(&translator);
    const fxChartTypeRecord r = ChartRecord(1.2f, 1.205f, 0.0005f, 1, 0, 1700000000);
    const QString expected = "EURUSD\nFirst value: 1.2000\nLast value: 1.2050\n14.11.2023 22:13:20";
    EXPECT_EQ(pf::PointData::ToolTipText("EURUSD", r, 4), expected);  // no module alive
    {
        TestModule module;
        ASSERT_EQ(CModule::Current(), &module);
        EXPECT_EQ(pf::PointData::ToolTipText("EURUSD", r, 4), expected);
    }
    QCoreApplication::removeTranslator(&translator);

    EXPECT_EQ(pf::PointData::ToolTipText("X", r, 5), "X\nPF0017: 1.20000\nPF0018: 1.20500\n14.11.2023 22:13:20");
    EXPECT_EQ(pf::PointData::ToolTipText("X", r, 0), "X\nPF0017: 1\nPF0018: 1\n14.11.2023 22:13:20");
    EXPECT_TRUE(pf::PointData::ToolTipText("X", r, -3).startsWith("X\nPF0017: 1\n"));
}
