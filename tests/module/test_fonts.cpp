// Font managers by language and the replacement fonts of the operating system.
#include <gtest/gtest.h>

#include <QFont>
#include <memory>

#include "module/ChinaManager.h"
#include "module/DefaultManager.h"
#include "module/FontManager.h"
#include "module/FontOperationSystemFactory.h"

namespace {

TEST(FontManager, EachLanguageGetsItsFamiliesForAllTwentyTwoElements) {
    struct Case {
        const char* language;
        bool china;
    } cases[] = {{"Chinese (Simplified)", true}, {"English", false}, {"Chinese", false},
                 {"chinese (simplified)", false}, {"", false}};
    for (const Case& c : cases) {
        SCOPED_TRACE(c.language);
        std::unique_ptr<font::Manager> manager(font::CreateManager(QString::fromLatin1(c.language)));
        ASSERT_NE(manager, nullptr);
        EXPECT_EQ(dynamic_cast<font::ChinaManager*>(manager.get()) != nullptr, c.china);
        EXPECT_EQ(manager->Count(), 22);
        EXPECT_EQ(manager->getFontSize(8), c.china ? 10 : 8);
        EXPECT_EQ(manager->getFontSize(0), c.china ? 2 : 0);
        for (int code = font::ELEMENT_FIRST; code <= font::ELEMENT_LAST; ++code) {
            const font::Element* element = manager->GetElement(font::elementCode(code));
            ASSERT_NE(element, nullptr) << code;
            EXPECT_EQ(manager->GetFont(font::elementCode(code)), element->family);
            EXPECT_GT(element->size, 0);
            if (c.china) {
                EXPECT_EQ(element->family, QStringLiteral("SimSun"));
            }
        }
        // Codes outside 0 to 21 are "Arial".
        for (int code : {-1, 22, 1000}) {
            EXPECT_EQ(manager->GetFont(font::elementCode(code)), QStringLiteral("Arial"));
            EXPECT_EQ(manager->GetElement(font::elementCode(code)), nullptr);
        }
    }
    font::DefaultManager western;
    EXPECT_EQ(western.GetFont(font::efChartScale), QStringLiteral("Tahoma"));
    EXPECT_EQ(western.GetFont(font::efLegend), QStringLiteral("Arial"));
    EXPECT_EQ(western.GetFont(font::efQuotes), QStringLiteral("Courier New"));
}

TEST(FontOperationSystemFactory, FontsOfTheSameFamilyAndSizeTakeTheirReplacement) {
    font::FontOperationSystemFactory factory;
    factory.Insert(QFont(QStringLiteral("Tahoma"), 8), QFont(QStringLiteral("DejaVu Sans"), 9));
    QFont pixelSized(QStringLiteral("Courier New"));
    pixelSized.setPixelSize(12);  // point size -1: the replacement keeps the size asked for
    factory.Insert(QFont(QStringLiteral("Arial"), 10), pixelSized);

    QFont bold(QStringLiteral("Tahoma"), 8);
    bold.setBold(true);
    const QFont replaced = factory.GetFont(bold);
    EXPECT_EQ(replaced.family(), QStringLiteral("DejaVu Sans"));
    EXPECT_EQ(replaced.pointSize(), 9);
    EXPECT_TRUE(replaced.bold());  // the other attributes are the font's own
    const QFont kept = factory.GetFont(QFont(QStringLiteral("Arial"), 10));
    EXPECT_EQ(kept.family(), QStringLiteral("Courier New"));
    EXPECT_EQ(kept.pointSize(), 10);
    // Another size or family is not replaced.
    EXPECT_EQ(factory.GetFont(QFont(QStringLiteral("Tahoma"), 9)).family(), QStringLiteral("Tahoma"));
    EXPECT_EQ(factory.GetFont(QFont(QStringLiteral("Verdana"), 8)).family(), QStringLiteral("Verdana"));
    // A second replacement of the same font replaces the first.
    QFont liberation(QStringLiteral("Liberation Sans"));
    liberation.setPixelSize(10);
    factory.Insert(QFont(QStringLiteral("Tahoma"), 8), liberation);
    EXPECT_EQ(factory.Count(), 2);
    EXPECT_EQ(factory.GetFont(QFont(QStringLiteral("Tahoma"), 8)).family(), QStringLiteral("Liberation Sans"));
    EXPECT_EQ(factory.GetFont(QFont(QStringLiteral("Tahoma"), 8)).pointSize(), 8);

    // The module's own factory is what GetOperationSystemFont applies.
    font::FontOperationSystemFactory& shared = font::FontOperationSystemFactory::Instance();
    shared.Insert(QFont(QStringLiteral("Tahoma"), 8), QFont(QStringLiteral("DejaVu Sans"), 9));
    EXPECT_EQ(font::GetOperationSystemFont(QFont(QStringLiteral("Tahoma"), 8)).family(), QStringLiteral("DejaVu Sans"));
    shared.Clear();
    EXPECT_EQ(font::GetOperationSystemFont(QFont(QStringLiteral("Tahoma"), 8)).family(), QStringLiteral("Tahoma"));
}

}  // namespace
