// Pages of text and date-time entries shown in the terminal's property dialog: the dialog
// shows what the adders put into the page, writes edited values back in place, and the
// page reads them as the entries' wrappers say.
#include <gtest/gtest.h>

#include <QDateTime>

#include "host/PropertyDialog.h"
#include "property/CPropertyHead.h"

namespace {

const unsigned short* U(const QString& s) { return s.utf16(); }

struct TextAndTime : ::testing::Test {
    CPropertyHead head;
    int group = head.CreatePropertyGroup(QStringLiteral("Study"))->id;
    const QDateTime start = QDateTime(QDate(2009, 3, 2), QTime(14, 30, 5), Qt::UTC);
    int note = head.AddPropertyTextItem(group, U("Note"), U("shown beside the line"), U(QStringLiteral("Support")));
    int when = head.AddPropertyDateTimeItem(group, U("Start"), U("the first point"), start);
    int applies = 0;
};

}  // namespace

TEST_F(TextAndTime, TheDialogShowsEditsAndWritesBackTextAndDateTime) {
    host::PropertyDialog dialog(head.GetPage(), nullptr, [this] {
        ++applies;
        return 0;
    });
    EXPECT_EQ(dialog.entries(), (QStringList{"Note", "Start"}));
    EXPECT_EQ(dialog.typeOf("Note"), PROPERTY_TYPE_TEXT);
    EXPECT_EQ(dialog.typeOf("Start"), PROPERTY_TYPE_DATETIME);
    EXPECT_EQ(dialog.value("Note"), "Support");
    EXPECT_EQ(dialog.value("Start"), "2009-03-02T14:30:05Z");

    // Edited values reach the page in place.
    ASSERT_TRUE(dialog.setValue("Note", QStringLiteral("Résistance ≥ 1.2")));
    ASSERT_TRUE(dialog.setValue("Start", QStringLiteral("2038-01-19T03:14:07")));
    EXPECT_EQ(dialog.apply(), 0);
    EXPECT_EQ(applies, 1);
    EXPECT_EQ(head.GetPropertyItem(group, note).toString(), QStringLiteral("Résistance ≥ 1.2"));
    EXPECT_EQ(head.GetPropertyItem(group, when).toDateTime(),
              QDateTime(QDate(2038, 1, 19), QTime(3, 14, 7), Qt::UTC));  // the last second a 32-bit time holds
    QString why;
    EXPECT_FALSE(dialog.setValue("Start", QStringLiteral("tomorrow"), &why));

    // A text as long as the field comes back whole; a longer one is cut to it.
    const QString full(1024, QLatin1Char('x'));
    ASSERT_TRUE(dialog.setValue("Note", full + QStringLiteral("yz")));
    dialog.apply();
    EXPECT_EQ(head.GetPropertyItem(group, note).toString(), full);
    EXPECT_EQ(dialog.value("Note"), full);

    // Values the page changes show in the dialog again on a refresh.
    head.SetProperty(group, note, QVariant(QStringLiteral("Moved")));
    head.SetProperty(group, when, QVariant(start.addDays(1)));
    EXPECT_TRUE(dialog.refresh());
    EXPECT_EQ(dialog.value("Note"), "Moved");
    EXPECT_EQ(dialog.value("Start"), "2009-03-03T14:30:05Z");
}
