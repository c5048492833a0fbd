// Attribute encodings of CXMLWorkData on its local cache (no host: writes stay local).
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "xml/CXMLWorkData.h"

namespace {

struct Detached : ::testing::Test {
    CXMLWorkData data{nullptr, nullptr, static_cast<void*>(nullptr), nullptr};
    QString text(const char* name) const { return data.readString(name, QStringLiteral("<absent>")); }
};

TEST_F(Detached, NumbersAreStoredAsTheirDecimalText) {
    data.writeInteger("min", INT_MIN);
    data.writeInteger("max", INT_MAX);
    data.writeInt64("big", -9223372036854775807LL - 1);
    data.writeBool("yes", true);
    data.writeBool("no", false);
    data.writeFloat("f", 1.23456789f, 8);
    data.writeDouble("d", 0.1);
    EXPECT_EQ(text("min"), "-2147483648");
    EXPECT_EQ(text("max"), "2147483647");
    EXPECT_EQ(text("big"), "-9223372036854775808");
    EXPECT_EQ(text("yes"), "1");
    EXPECT_EQ(text("no"), "0");
    EXPECT_EQ(text("f"), "1.2345679");
    EXPECT_EQ(data.readDouble("d"), 0.1);
    EXPECT_EQ(data.readInt64("big"), -9223372036854775807LL - 1);
}

TEST_F(Detached, ReadsFollowTheTextConversions) {
    data.writeString("word", "abc");
    data.writeString("spaced", " 42 ");
    EXPECT_EQ(data.readInteger("word", 7), 0) << "non-numeric text converts to 0";
    EXPECT_EQ(data.readInteger("absent", 7), 7);
    EXPECT_EQ(data.readInteger("spaced", 7), 42);
    EXPECT_FALSE(data.readBool("word", true));
    EXPECT_TRUE(data.readBool("absent", true));
    EXPECT_EQ(data.readFloat("word", 3.5f), 0.0f);
    EXPECT_EQ(data.readFloat("absent", 3.5f), 3.5f);
}

TEST_F(Detached, WritingANameTwiceKeepsOneEntryWithTheLastValue) {
    data.writeInteger("k", 1);
    data.writeString("k", QStringLiteral("two"));
    ASSERT_EQ(data.attributeCount(), 1);
    EXPECT_EQ(text("k"), "two");
}

TEST_F(Detached, TypicalPricesSurviveFloatPrecision8) {
    for (float v : {1.2345f, 0.1f, 123.456f, 1.0e-6f, 98765.43f, -0.00042f, 3.4e38f}) {
        data.writeFloat("v", v, 8);
        EXPECT_EQ(data.readFloat("v"), v) << v;
    }
}

TEST_F(Detached, ColoursAreOpaqueRgbAsSignedDecimal) {
    data.writeColor("c", QColor(0x12, 0x34, 0x56, 0x80));
    EXPECT_EQ(text("c"), QString::number(static_cast<int>(0xFF123456u)));
    EXPECT_EQ(data.readColor("c", Qt::black), QColor(0x12, 0x34, 0x56, 0xFF));
    EXPECT_EQ(data.readColor("absent", Qt::green), QColor(Qt::green));
}

TEST_F(Detached, ColourStringsNeedThreeDecimalsInRange) {
    const QColor fallback(1, 2, 3);
    const struct {
        const char* text;
        QColor expected;
    } cases[] = {{"255,0,0", QColor(255, 0, 0, 255)}, {"0,128,255", QColor(0, 128, 255)},
                 {"red", fallback},  {"255,0", fallback},  {"255,0,0,0", fallback},
                 {"256,0,0", fallback}, {"-1,0,0", fallback}, {"", fallback}, {"1,,2", fallback}};
    for (const auto& c : cases) {
        data.writeString("c", c.text);
        EXPECT_EQ(data.readColorString("c", fallback), c.expected) << c.text;
    }
    EXPECT_EQ(data.readColorString("absent", fallback), fallback);
}

TEST_F(Detached, StringBuffersAreBoundedAndTerminated) {
    data.writeString("s", QString::fromUtf8("h\xc3\xa9llo"));
    char narrow[4];
    std::memset(narrow, 'x', sizeof narrow);
    EXPECT_TRUE(data.readString("s", narrow, 4));
    EXPECT_STREQ(narrow, "h\xc3\xa9");
    coreWChar wide[3] = {9, 9, 9};
    EXPECT_TRUE(data.readString("s", wide, 3));
    EXPECT_EQ(wide[0], 'h');
    EXPECT_EQ(wide[1], 0xE9);
    EXPECT_EQ(wide[2], 0);
    char untouched = 'x';
    data.readString("s", &untouched, 0);
    EXPECT_EQ(untouched, 'x');
    EXPECT_FALSE(data.readString("absent", narrow, 4, "default"));
    EXPECT_STREQ(narrow, "def");

    const coreWChar unterminated[] = {'a', 'b', 'c'};
    data.writeString("w", unterminated, 2);
    EXPECT_EQ(text("w"), "ab");
}

TEST_F(Detached, WithoutAHostNothingIsSentAndNavigationGivesNull) {
    data.writeInteger("k", 1);
    EXPECT_EQ(data.writeParameters(), 1);
    EXPECT_EQ(data.createNode("child"), nullptr);
    EXPECT_EQ(data.getFirstNode("child"), nullptr);
    EXPECT_EQ(data.getCountParamsInTag(), 0);
    data.writeFont("font", QFont("Arial", 9));
    EXPECT_EQ(data.readFont("font", QFont("Courier", 5)).family(), "Courier");
    CXMLWorkData byName(nullptr, nullptr, "Root", nullptr);
    EXPECT_FALSE(byName.isValid());
}

}  // namespace
