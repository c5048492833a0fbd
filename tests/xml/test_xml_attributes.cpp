// Attribute encodings of CXMLWorkData on its local cache (no host: writes stay local). The
// text each typed write leaves in the file is checked by the round trip through the store.
#include <gtest/gtest.h>

#include <cstring>

#include "xml/CXMLWorkData.h"

namespace {

struct Detached : ::testing::Test {
    CXMLWorkData data{nullptr, nullptr, static_cast<void*>(nullptr), nullptr};
    QString text(const char* name) const { return data.readString(name, QStringLiteral("<absent>")); }
};

TEST_F(Detached, TypicalPricesSurviveFloatPrecision8AndANameWrittenTwiceIsOneEntry) {
    for (float v : {1.2345f, 0.1f, 123.456f, 1.0e-6f, 98765.43f, -0.00042f, 3.4e38f}) {
        data.writeFloat("v", v, 8);
        EXPECT_EQ(data.readFloat("v"), v) << v;
    }
    data.writeString("v", QStringLiteral("two"));
    ASSERT_EQ(data.attributeCount(), 1);
    EXPECT_EQ(text("v"), "two");
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
