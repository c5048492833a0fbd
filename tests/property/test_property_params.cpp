// The typed value wrappers and the page that owns the values: what each kind accepts, the
// exact texts of its refusals, and pages handed over in bad shape.
#include <gtest/gtest.h>

#include <QColor>
#include <QDateTime>
#include <QFont>
#include <cstring>
#include <functional>
#include <memory>

#include "property/CPropertyHead.h"
#include "property/CPropertyParamBoolean.h"
#include "property/CPropertyParamColor.h"
#include "property/CPropertyParamDateTime.h"
#include "property/CPropertyParamDouble.h"
#include "property/CPropertyParamFont.h"
#include "property/CPropertyParamInt.h"
#include "property/CPropertyParamList.h"
#include "property/CPropertyParamString.h"
#include "property/CPropertyParamWidget.h"

namespace {

const unsigned short* U(const QString& s) { return s.utf16(); }

// The text of the PropertyException `f` throws; empty when it throws none.
std::string Thrown(const std::function<void()>& f) {
    try {
        f();
    } catch (const PropertyException& e) {
        return e.what();
    }
    return std::string();
}

struct Refusal {
    const char* kind;
    std::function<CPropertyParamItem*(void*)> make;
    QVariant right;      // a variant of the accepted kind
    QVariant wrong;      // one it refuses
    const char* noMemo;  // the text without a value buffer
    const char* noParam; // the text for the wrong variant
    int size;
};

}  // namespace

TEST(PropertyParams, EveryKindRefusesWithItsOwnText) {
    const Refusal all[] = {
        {"int", [](void* v) { return new CPropertyParamInt(v); }, QVariant(5), QVariant(QStringLiteral("5")),
         "Error memo in CPropertyParamInt", "Error param in CPropertyParamInt", 12},
        {"double", [](void* v) { return new CPropertyParamDouble(v); }, QVariant(1.5), QVariant(3),
         "Error memo in CPropertyParamDouble", "Error param in CPropertyParamDouble", 36},
        {"color", [](void* v) { return new CPropertyParamColor(v); }, QVariant(QColor(Qt::red)), QVariant(1.0),
         "Error memo in CPropertyParamColor", "Error param in CPropertyParamColor", 4},
        {"string", [](void* v) { return new CPropertyParamString(v); }, QVariant(QStringLiteral("x")), QVariant(1),
         "Error memo in CPropertyParamString", "Error param in CPropertyParamString", 2048},
        {"font", [](void* v) { return new CPropertyParamFont(v); }, QVariant(QFont("Arial")), QVariant(1),
         "Error memo in CPropertyParamFont", "Error param in CPropertyParamFont", 2056},
        {"bool", [](void* v) { return new CPropertyParamBoolean(v); }, QVariant(true), QVariant(1.0),
         "CPropertyParamBoolean error in GetPropertyItem", "CPropertyParamBoolean type in GetPropertyItem", 1},
        {"list", [](void* v) { return new CPropertyParamList(v); }, QVariant(0), QVariant(1.0),
         "CPropertyParamList error in GetPropertyItem", "CPropertyParamList type in GetPropertyItem",
         int(sizeof(PROPERTY_VALUE_LIST))},
        {"datetime", [](void* v) { return new CPropertyParamDateTime(v); }, QVariant(QDateTime::currentDateTimeUtc()),
         QVariant(1), "CPropertyParamDouble error in SetProperty", "CPropertyParamDouble error in CPropertyParamDateTime",
         4},
    };
    for (const Refusal& r : all) {
        SCOPED_TRACE(r.kind);
        std::unique_ptr<CPropertyParamItem> bare(r.make(nullptr));
        QVariant right = r.right, wrong = r.wrong;
        EXPECT_EQ(Thrown([&] { bare->SetProperty(right); }), r.noMemo);
        EXPECT_EQ(bare->GetLenItems(), r.size);
        alignas(8) unsigned char buffer[4096] = {};
        std::unique_ptr<CPropertyParamItem> item(r.make(buffer));
        EXPECT_EQ(Thrown([&] { item->SetProperty(wrong); }), r.noParam);
        EXPECT_EQ(Thrown([&] { item->SetProperty(right); }), "");
    }
    // Reading without a buffer: int gives 0, check, list and date-time refuse.
    EXPECT_EQ(CPropertyParamInt(static_cast<void*>(nullptr)).GetPropertyItem(), QVariant(0));
    EXPECT_EQ(Thrown([] { CPropertyParamBoolean(static_cast<void*>(nullptr)).GetPropertyItem(); }),
              "CPropertyParamBoolean error in GetPropertyItem");
    EXPECT_EQ(Thrown([] { CPropertyParamList(static_cast<void*>(nullptr)).GetPropertyItem(); }),
              "CPropertyParamList error in GetPropertyItem");
    EXPECT_EQ(Thrown([] { CPropertyParamDateTime(static_cast<void*>(nullptr)).GetPropertyItem(); }),
              "Error memo in CPropertyParamDateTime");
    // A wrapper made on a record of another type.
    PROPERTY p;
    std::memset(&p, 0, sizeof p);
    p.type = PROPERTY_TYPE_TEXT;
    EXPECT_EQ(Thrown([&] { CPropertyParamInt{&p}; }), "Error in CPropertyParamInt");
    EXPECT_EQ(Thrown([&] { CPropertyParamDateTime{&p}; }), "Error in CPropertyParamDateTime");
    EXPECT_EQ(Thrown([&] { CPropertyParamList{&p}; }), "Error in CPropertyParamList");
    EXPECT_EQ(CPropertyParamWidget(&p).GetValue(), nullptr);
}

TEST(PropertyParams, ValuesGoInAndComeOutAsTheKindsSay) {
    PROPERTY_VALUE_DOUBLE d = {2.25, 0, 1e308, 2, 0, 0};
    CPropertyParamDouble dbl(&d);
    QVariant single = QVariant::fromValue(1.5f);
    EXPECT_NO_THROW(dbl.SetProperty(single));
    EXPECT_EQ(dbl.GetPropertyItem().toDouble(), 2.25);  // a float is taken and not stored
    QVariant exact(7.125);
    dbl.SetProperty(exact);
    EXPECT_EQ(d.value, 7.125);

    std::uint32_t rgb = 0;
    CPropertyParamColor color(&rgb);
    QVariant asInt(0x123456);
    color.SetProperty(asInt);
    EXPECT_EQ(rgb, 0x123456u);
    QVariant asColor(QColor(10, 20, 30));
    color.SetProperty(asColor);
    EXPECT_EQ(rgb, QColor(10, 20, 30).rgb());
    EXPECT_EQ(color.GetPropertyItem().value<QColor>(), QColor(10, 20, 30));

    std::uint8_t flag = 0;
    CPropertyParamBoolean check(&flag);
    QVariant two(2);
    check.SetProperty(two);
    EXPECT_EQ(flag, 1);
    EXPECT_EQ(check.GetPropertyItem(), QVariant(true));

    // A text is cut to the field's 1024 units, which leaves no room for a terminator; the
    // text is read back to the field's end and nothing past it is touched.
    struct {
        PROPERTY_VALUE_TEXT text;
        coreWChar after;
    } guarded;
    std::memset(&guarded, 0xAB, sizeof guarded);
    CPropertyParamString str(&guarded.text);
    QVariant longText(QString(3000, QLatin1Char('q')));
    str.SetProperty(longText);
    EXPECT_EQ(guarded.text.text[1023], u'q');
    EXPECT_EQ(guarded.after, 0xABAB);
    EXPECT_EQ(str.GetPropertyItem().toString(), QString(1024, QLatin1Char('q')));
    // A shorter text ends at its terminator; the rest of the previous one is gone.
    QVariant shortText(QStringLiteral("abc"));
    str.SetProperty(shortText);
    EXPECT_EQ(str.GetPropertyItem().toString(), QStringLiteral("abc"));
    EXPECT_EQ(guarded.text.text[1023], 0);

    PROPERTY_VALUE_FONT fd;
    std::memset(&fd, 0, sizeof fd);
    CPropertyParamFont font(&fd);
    QFont f("DejaVu Sans", 11);
    f.setBold(true);
    QVariant fv(f);
    font.SetProperty(fv);
    EXPECT_EQ(fd.pointSize, 11);
    EXPECT_EQ(font.GetPropertyItem().value<QFont>().family(), QStringLiteral("DejaVu Sans"));
    EXPECT_TRUE(font.GetPropertyItem().value<QFont>().bold());

    std::int32_t secs = 0;
    CPropertyParamDateTime when(&secs);
    QVariant t(QDateTime::fromSecsSinceEpoch(1000000000, Qt::UTC));
    when.SetProperty(t);
    EXPECT_EQ(secs, 1000000000);
    EXPECT_EQ(when.GetPropertyItem().toDateTime().toSecsSinceEpoch(), 1000000000);
}

TEST(PropertyParams, AListKeepsItsSelectionForIndicesOutsideItsTexts) {
    CPropertyHead head;
    const int g = head.CreatePropertyGroup(QStringLiteral("G"))->id;
    const QStringList texts = {QStringLiteral("One"), QStringLiteral("Two"), QStringLiteral("Three")};
    const int i = head.AddPropertyListItem(g, U("List"), U(""), texts, 1);
    for (int index : {-1, 3, 100}) {
        EXPECT_EQ(head.SetProperty(g, i, QVariant(index)), 0);
        EXPECT_EQ(head.GetPropertyItem(g, i), QVariant(1)) << index;
    }
    head.SetProperty(g, i, QVariant(QStringLiteral("Three")));
    EXPECT_EQ(head.GetPropertyItem(g, i), QVariant(2));
    head.SetProperty(g, i, QVariant(QStringLiteral("Four")));
    EXPECT_EQ(head.GetPropertyItem(g, i), QVariant(2));
    head.SetProperty(g, i, QVariant(0));
    EXPECT_EQ(head.GetPropertyItem(g, i), QVariant(0));
}

TEST(PropertyHead, AddersRecordGroupAndIndexAndCopiesAreDeep) {
    CPropertyHead head;
    EXPECT_EQ(head.AddPropertyIntItem(0, U("x"), U(""), 1, 0, 9, false), -1);  // no group yet
    const int a = head.CreatePropertyGroup(QStringLiteral("A"))->id;
    const int b = head.CreatePropertyGroup(QStringLiteral("B"))->id;
    EXPECT_EQ(head.AddPropertyIntItem(b, U("Count"), U("how many"), 4, 1, 9, false), 0);
    EXPECT_EQ(head.AddPropertyColorItem(b, U("Colour"), U(""), QColor(1, 2, 3)), 1);
    EXPECT_EQ(head.AddPropertyListItem(a, U("Choice"), U(""), {QStringLiteral("p"), QStringLiteral("q")}, 1), 0);
    EXPECT_EQ(head.AddPropertyDoubleItem(a, U("Step"), U(""), 0.5, true, 3, false), 1);
    EXPECT_EQ(head.AddPropertyWidget(a, U("Own"), U(""), 7, 8), 2);
    EXPECT_EQ(head.AddPropertyIntItem(9, U("x"), U(""), 1, 0, 9, false), -1);
    EXPECT_EQ(head.getCountPropertyInGroup(a), 3);
    EXPECT_EQ(head.getCountPropertyInGroup(-1), 0);
    const PROPERTY* colour = head.getPropertyItem(b, 1);
    ASSERT_NE(colour, nullptr);
    EXPECT_EQ(colour->group, b);
    EXPECT_EQ(colour->index, 1);
    EXPECT_EQ(head.GetPage()->groupCount, 2);
    EXPECT_EQ(head.GetPage()->groups[1]->list.items[1], colour);
    EXPECT_EQ(head.GetPropertyItem(a, 2).toList(), (QVariantList{7, 8}));
    EXPECT_FALSE(head.GetPropertyItem(a, 3).isValid());
    EXPECT_EQ(head.SetProperty(a, 3, QVariant(1)), 1);

    CPropertyHead copy(head);
    copy.SetProperty(b, 0, QVariant(8));
    copy.SetProperty(a, 0, QVariant(0));
    EXPECT_EQ(head.GetPropertyItem(b, 0), QVariant(4));
    EXPECT_EQ(copy.GetPropertyItem(b, 0), QVariant(8));
    EXPECT_EQ(head.GetPropertyItem(a, 0), QVariant(1));
    const void* copied = copy.getPropertyItem(a, 0)->value;
    const void* original = head.getPropertyItem(a, 0)->value;
    EXPECT_NE(copied, original);
    // The dialog's copy hands its values back to the original.
    EXPECT_EQ(head.CopyWidgetParam(*copy.GetPage()), 5);
    EXPECT_EQ(head.GetPropertyItem(b, 0), QVariant(8));
    EXPECT_EQ(head.GetPropertyItem(a, 0), QVariant(0));
    copy = head;
    EXPECT_EQ(copy.getCountPropertyInGroup(a), 3);

    // The text adder keeps a text as the entry does: cut to 1024 units.
    const QString full(1500, QLatin1Char('w'));
    const int t = head.AddPropertyTextItem(a, U("Note"), U(""), U(full));
    EXPECT_EQ(head.GetPropertyItem(a, t).toString(), full.left(1024));
    const int empty = head.AddPropertyTextItem(a, U("Empty"), U(""), nullptr);
    EXPECT_EQ(head.GetPropertyItem(a, empty).toString(), QString());
}

TEST(PropertyHead, AHostilePageIsCopiedWithinBounds) {
    // Strings without a terminator, a null group, a null entry, an entry without a buffer,
    // one of an unknown type and a list claiming a million texts it does not have.
    PROPERTY noValue, unknown, list, nullEntry;
    for (PROPERTY* p : {&noValue, &unknown, &list, &nullEntry}) std::memset(p, 0x41, sizeof *p);
    noValue.type = PROPERTY_TYPE_INT;
    noValue.value = nullptr;
    unknown.type = 77;
    unknown.value = nullptr;
    PROPERTY_VALUE_LIST huge = {1000000, 5, nullptr};
    list.type = PROPERTY_TYPE_LIST;
    list.value = &huge;
    PROPERTY* entries[] = {&noValue, nullptr, &unknown, &list};
    PROPERTY_GROUP group;
    std::memset(&group, 0x42, sizeof group);
    group.list.count = 4;
    group.list.items = entries;
    PROPERTY_GROUP* groups[] = {&group, nullptr};
    PROPERTY_PAGE page;
    std::memset(&page, 0x43, sizeof page);
    page.groupCount = 2;
    page.groups = groups;

    CPropertyHead head(page);
    ASSERT_EQ(head.getCountGroups(), 1);
    ASSERT_EQ(head.getCountPropertyInGroup(0), 3);
    EXPECT_EQ(head.GetPage()->title[PROPERTY_NAME_UNITS - 1], 0);
    EXPECT_EQ(head.getPropertyGroup(0)->name[PROPERTY_NAME_UNITS - 1], 0);
    EXPECT_EQ(head.getPropertyItem(0, 0)->name[PROPERTY_NAME_UNITS - 1], 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(head.getPropertyItem(0, 0)->name)).size(), PROPERTY_NAME_UNITS - 1);
    // The int entry without a buffer reads 0 and refuses writes.
    EXPECT_EQ(head.GetPropertyItem(0, 0), QVariant(0));
    EXPECT_EQ(Thrown([&] { head.SetProperty(0, 0, QVariant(3)); }), "Error memo in CPropertyParamInt");
    EXPECT_FALSE(head.GetPropertyItem(0, 1).isValid());
    EXPECT_EQ(head.SetProperty(0, 1, QVariant(3)), 1);
    // The list has no texts, so no index selects anything.
    EXPECT_EQ(head.GetPropertyItem(0, 2), QVariant(0));
    head.SetProperty(0, 2, QVariant(4));
    EXPECT_EQ(head.GetPropertyItem(0, 2), QVariant(0));
    // Out-of-range groups and negative counts.
    EXPECT_FALSE(head.GetPropertyItem(5, 0).isValid());
    EXPECT_EQ(head.getPropertyGroup(-3), nullptr);
    page.groupCount = -5;
    EXPECT_EQ(CPropertyHead(page).getCountGroups(), 0);
    page.groupCount = 3;
    page.groups = nullptr;
    EXPECT_EQ(CPropertyHead(page).getCountGroups(), 0);
    group.list.count = -1;
    page.groups = groups;
    page.groupCount = 1;
    CPropertyHead empty(page);
    EXPECT_EQ(empty.getCountPropertyInGroup(0), 0);
    // Values of a page of another shape are taken only where the types agree.
    EXPECT_EQ(head.CopyWidgetParam(page), 0);
}

TEST(PropertyHead, StringCopiesStopAtTheLimitAndTerminate) {
    char small[4];
    std::memset(small, 'x', sizeof small);
    EXPECT_STREQ(CPropertyHead::eStrCpyP(small, 4, "abcdef"), "abc");
    EXPECT_STREQ(CPropertyHead::eStrCpyP(small, 4, nullptr), "");
    EXPECT_EQ(CPropertyHead::eStrCpyP(nullptr, 4, "a"), nullptr);
    small[0] = 'k';
    CPropertyHead::eStrCpyP(small, 0, "zz");
    EXPECT_EQ(small[0], 'k');
    unsigned short wide[3];
    CPropertyHead::eStrCpyUni(wide, 3, U(QStringLiteral("hello")));
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(wide)), QStringLiteral("he"));
    char mixed[] = "ab1-Cz\xe9";
    EXPECT_STREQ(CPropertyHead::StruprP(mixed), "AB1-CZ\xe9");
    EXPECT_EQ(CPropertyHead::StruprP(nullptr), nullptr);
}
