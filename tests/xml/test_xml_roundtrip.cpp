// CXMLWorkData against the emulator's work-data store: written through the host callback,
// saved to a real file, read by a fresh emulator.
#include <QDir>
#include <QProcess>
#include <climits>
#include <tuple>

#include "WorkDataFile.h"
#include "host/WorkDataStore.h"
#include "xml/CXMLWorkData.h"

namespace {

using Tree = std::unique_ptr<CXMLWorkData>;

const char kRoot[] = "DefaultParametersPFChart";

struct RoundTrip : WorkDataFile {
    void SetUp() override {
        ASSERT_TRUE(QDir().mkpath(dir.filePath("etc")));
        path = dir.filePath("etc/PFChartModule.rdd");
    }
    host::Host& host() { return emulator->host(); }
    Tree openRoot(const char* name = kRoot) {
        return Tree(new CXMLWorkData(host().coreHandle(), openDocument(), name, &host::Host::callback));
    }
    int save(const CXMLWorkData& tree) {
        coreSzNode node;
        tree.fillNodeData(node);
        return send(MSG_WD_SAVE, &node);
    }
};

// Markup, entities, CDATA ends, 2- to 4-byte characters, line ends and outer blanks.
const QString kAwkward = QString::fromUtf8(
    "  <tag a=\"1\" b='2'> & &amp; &#10; ]]> \xc3\xa9\xe2\x82\xac\xf0\x9f\x98\x80\n\tline\r\n\r  ");

TEST_F(RoundTrip, EveryTypedAttributeSurvivesTheFileAndAFreshHost) {
    {
        Tree root = openRoot();
        ASSERT_TRUE(root->isValid());
        Tree node(root->createNode("PointFigure"));
        ASSERT_NE(node, nullptr);
        node->writeInteger("IntMin", INT_MIN);
        node->writeInteger("IntMax", INT_MAX);
        node->writeInt64("Int64", -9223372036854775807LL - 1);
        node->writeBool("On", true);
        node->writeBool("Off", false);
        node->writeFloat("Float", 1.3579246f, 8);
        node->writeDouble("Double", -2.718281828459045);
        node->writeString("Text", kAwkward);
        node->writeString("Empty", QString());
        node->writeColor("Colour", QColor(10, 20, 30, 40));
        node->writeFont("AreasFont", QFont("DejaVu Sans", 11, QFont::Bold, true));
        EXPECT_EQ(node->writeParameters(), 0);
        Tree inner(node->createNode("Nested"));
        inner->writeInteger("Depth", 2);
        EXPECT_EQ(inner->writeParameters(), 0);
        EXPECT_EQ(save(*root), 0);
    }
    EXPECT_EQ(QProcess::execute("xmllint", {"--noout", path}), 0);
    // The text the terminal reads: decimal numbers, colours as opaque RGB in a signed int.
    const QByteArray xml = readFile();
    for (const char* text : {"IntMin=\"-2147483648\"", "IntMax=\"2147483647\"", "Int64=\"-9223372036854775808\"",
                             "On=\"1\"", "Off=\"0\"", "Float=\"1.3579246\"", "Colour=\"-16116706\""})
        EXPECT_TRUE(xml.contains(text)) << text;
    restart();

    Tree root = openRoot();
    Tree node(root->getFirstNode("PointFigure"));
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->readInteger("IntMin"), INT_MIN);
    EXPECT_EQ(node->readInteger("IntMax"), INT_MAX);
    EXPECT_EQ(node->readInt64("Int64"), -9223372036854775807LL - 1);
    EXPECT_TRUE(node->readBool("On"));
    EXPECT_FALSE(node->readBool("Off", true));
    EXPECT_EQ(node->readFloat("Float"), 1.3579246f);
    EXPECT_EQ(node->readDouble("Double"), -2.718281828459045);
    EXPECT_EQ(node->readString("Text"), kAwkward);
    EXPECT_EQ(node->readString("Empty", "default"), "");
    EXPECT_EQ(node->readColor("Colour", Qt::black), QColor(10, 20, 30));
    const QFont font = node->readFont("AreasFont", QFont());
    EXPECT_EQ(std::make_tuple(font.family(), font.pointSize(), font.bold(), font.italic(), font.underline()),
              std::make_tuple(QString("DejaVu Sans"), 11, true, true, false));
    Tree inner(node->getFirstNode("Nested"));
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(inner->readInteger("Depth"), 2);
}

TEST_F(RoundTrip, AHandEditedDocumentReadsWithTheDefaults) {
    writeFile("<?xml version=\"1.0\"?>\n<DefaultParametersPFChart>\n"
              "  <Renko FreeStep=\"many\" Spaced=\" 42 \" GridColor=\"-16777216\" Note=\"a&#10;b\">\n"
              "    <AreasFont Family=\"Arial\" Size=\"9\"/>\n"
              "  </Renko>\n</DefaultParametersPFChart>\n");
    Tree root = openRoot();
    Tree renko(root->getFirstNode("Renko"));
    ASSERT_NE(renko, nullptr);
    // Non-numeric text reads as 0 (false), an absent attribute as the default.
    EXPECT_EQ(renko->readInteger("FreeStep", 15), 0);
    EXPECT_FALSE(renko->readBool("FreeStep", true));
    EXPECT_EQ(renko->readFloat("FreeStep", 3.5f), 0.0f);
    EXPECT_EQ(renko->readInteger("Spaced", 7), 42);
    EXPECT_EQ(renko->readInteger("GridShow", 1), 1);
    EXPECT_TRUE(renko->readBool("GridShow", true));
    EXPECT_EQ(renko->readFloat("GridShow", 3.5f), 3.5f);
    EXPECT_EQ(renko->readColor("GridColor", Qt::red), QColor(Qt::black));
    EXPECT_EQ(renko->readColor("AreaColor", Qt::green), QColor(Qt::green));
    EXPECT_EQ(renko->readString("Note"), "a\nb");
    // A missing flag takes the default font's.
    const QFont font = renko->readFont("AreasFont", QFont("Courier", 5, QFont::Bold, true));
    EXPECT_EQ(std::make_tuple(font.family(), font.pointSize(), font.bold(), font.italic()),
              std::make_tuple(QString("Arial"), 9, true, true));
}

TEST_F(RoundTrip, ChildrenAreWalkedByNameInDocumentOrder) {
    Tree root = openRoot();
    for (int i = 0; i < 3; ++i) {
        Tree area(root->createNode(i == 1 ? "Other" : "PFArea"));
        area->writeInteger("Index", i);
        area->writeParameters();
    }
    root->writeFont("Font", QFont("Arial", 8));
    root->writeFont("Font", QFont("Arial", 12));
    root = openRoot();
    Tree area(root->getFirstNode("PFArea"));
    std::vector<int> seen;
    for (; area; area.reset(root->getNextNode())) seen.push_back(area->readInteger("Index", -1));
    EXPECT_EQ(seen, (std::vector<int>{0, 2}));
    EXPECT_EQ(root->getNextNode(), nullptr);
    EXPECT_EQ(root->getCountParamsInTag(), 4) << "the font child was reused";
    EXPECT_EQ(root->readFont("Font", QFont()).pointSize(), 12);

    EXPECT_EQ(root->clearNode(), 0);
    EXPECT_EQ(root->getFirstNode("PFArea"), nullptr);
    EXPECT_EQ(root->getCountParamsInTag(), 0);
}

TEST_F(RoundTrip, TheRootIsFoundByNameMessagesKeepTheirOrderStaleNodesFail) {
    Tree root = openRoot();
    ASSERT_TRUE(root->isValid());
    EXPECT_EQ(openRoot()->node(), root->node()) << "the same document and root again";
    EXPECT_FALSE(openRoot("MainWindow")->isValid()) << "a document has one root";

    root->writeInteger("A", 1);
    host().journal().clear();
    EXPECT_EQ(root->writeParameters(), 0);
    root->readParameters();
    EXPECT_EQ(host().journal().messages(), (std::vector<unsigned int>{MSG_WD_WRITE_PARAMS, MSG_WD_PARAM_COUNT,
                                                                      MSG_WD_PARAM_LENGTHS, MSG_WD_READ_PARAMS}));
    // A store that answers the entry count as the result answers 3170 with the count.
    for (const auto& e : host().journal().entries())
        EXPECT_EQ(e.result, e.message == MSG_WD_PARAM_COUNT && emulator->workData().countAsResult() ? 1 : 0) << e.message;
    EXPECT_EQ(root->readInteger("A"), 1);

    CXMLWorkData stale(host().coreHandle(), nullptr, reinterpret_cast<void*>(0x7ff0), &host::Host::callback);
    EXPECT_EQ(stale.writeParameters(), 1);
    EXPECT_EQ(stale.createNode("X"), nullptr);
    EXPECT_EQ(stale.clearNode(), 1);
}

TEST_F(RoundTrip, TheSampleDefaultParametersFileReads) {
    ASSERT_TRUE(QFile::copy(PF_EXAMPLES_DIR "/layouts/PFChartModule.rdd", path));
    Tree root = openRoot();
    Tree kagi(root->getFirstNode("Kagi"));
    ASSERT_NE(kagi, nullptr);
    EXPECT_EQ(kagi->readInteger("FreeStep", 0), 15);
    EXPECT_EQ(kagi->readColor("GridColor", Qt::black), QColor(236, 233, 216));
    EXPECT_EQ(kagi->readFont("AreasFont", QFont()).pointSize(), 9);
}

}  // namespace
