// Bindings of page entries to variables: what each takes back from the page and when that
// counts as a change; the list of bindings; the refresh message to the host.
#include <gtest/gtest.h>

#include <QColor>
#include <QFont>

#include "FakeHost.h"
#include "abi/messages.h"
#include "property/CCheckIntProperty.h"
#include "property/CColorProperty.h"
#include "property/CDefaultProperty.h"
#include "property/CFontProperty.h"
#include "property/CIntListToListProperty.h"
#include "property/CIntProperty.h"
#include "property/CListOnePropery.h"
#include "property/CPropertyWork.h"

namespace {

struct Bindings : ::testing::Test {
    CPropertyWork page;
    int group = page.CreatePropertyGroup(QStringLiteral("G"))->id;
};

// An object whose defaults are stored by "Save as default".
struct Owner : CPropertyHead {
    void setStartParam() override { ++saved; }
    int saved = 0;
};

}  // namespace

TEST_F(Bindings, IntReportsAChangeOnlyWhenItNotifies) {
    int quiet = 5, loud = 5;
    CIntProperty q(&page, 1, group, false, 0, 10, &quiet, "Quiet", "");
    CIntProperty l(&page, 2, group, true, 0, 10, &loud, "Loud", "");
    EXPECT_EQ(q.GetIndex(), -1);
    q.AddProperty();
    l.AddProperty();
    EXPECT_EQ(q.GetIndex(), 0);
    EXPECT_EQ(page.getPropertyItem(group, 1)->type, PROPERTY_TYPE_INT);
    stateChangeProperty state;
    state.changed = true;
    QVariant seven(7);
    q.changeValue(seven, state);
    EXPECT_EQ(quiet, 7);
    EXPECT_FALSE(state.changed);
    l.changeValue(seven, state);
    EXPECT_EQ(loud, 7);
    EXPECT_TRUE(state.changed);
    l.changeValue(seven, state);
    EXPECT_FALSE(state.changed);  // the same value again
}

TEST_F(Bindings, ACheckBoxNeverReportsAChange) {
    int v = 0;
    CCheckIntProperty check(&page, 1, group, true, &v, 9, 3, "Check", "");
    check.AddProperty();
    EXPECT_EQ(page.GetPropertyItem(group, 0), QVariant(false));
    stateChangeProperty state;
    QVariant on(true), off(false);
    check.changeValue(on, state);
    EXPECT_EQ(v, 9);
    EXPECT_FALSE(state.changed);
    EXPECT_TRUE(check.getBoolValue());
    check.changeValue(off, state);
    EXPECT_EQ(v, 3);
    EXPECT_FALSE(state.changed);
}

TEST_F(Bindings, AListTakesOnlyIndicesOfItsTexts) {
    QStringList texts = {QStringLiteral("Close"), QStringLiteral("High"), QStringLiteral("Low")};
    int codes[] = {10, 20, 30};
    int v = 20;
    CIntListToListProperty list(&page, 1, group, false, texts, &v, 3, codes, "Price", "");
    EXPECT_EQ(list.getStrForCode(), 1);
    list.AddProperty();
    EXPECT_EQ(page.GetPropertyItem(group, 0), QVariant(1));
    stateChangeProperty state;
    for (int bad : {-1, 3}) {
        QVariant index(bad);
        list.changeValue(index, state);
        EXPECT_EQ(v, 20);
        EXPECT_FALSE(state.changed);
    }
    QVariant same(1), other(2);
    list.changeValue(same, state);
    EXPECT_FALSE(state.changed);
    list.changeValue(other, state);  // a change even without notify
    EXPECT_EQ(v, 30);
    EXPECT_TRUE(state.changed);
    v = 99;
    EXPECT_EQ(list.getStrForCode(), 0);
    CIntListToListProperty none(&page, 2, group, false, texts, &v, 0, nullptr, "None", "");
    EXPECT_EQ(none.getStrForCode(), 0);
}

TEST_F(Bindings, ColourAndFontTakeWhatConvertsAndDefaultsOtherwise) {
    long rgb = 0x102030;
    QFont font("DejaVu Sans", 9);
    CColorProperty colour(&page, 1, group, true, &rgb, "Colour", "");
    CFontProperty f(&page, 2, group, true, &font, "Font", "");
    colour.AddProperty();
    f.AddProperty();
    EXPECT_EQ(page.GetPropertyItem(group, 0).value<QColor>(), QColor(0x10, 0x20, 0x30));
    stateChangeProperty state;
    QVariant red = QVariant(QColor(Qt::red));
    colour.changeValue(red, state);
    EXPECT_EQ(std::uint32_t(rgb) & 0xFFFFFF, 0xFF0000u);
    EXPECT_TRUE(state.changed);
    QVariant junk(QStringLiteral("not a colour at all"));
    colour.changeValue(junk, state);
    EXPECT_EQ(std::uint32_t(rgb), QColor().rgb());

    // Bound to the colour of a colour-points record: only its colour changes, stored as
    // QColor::rgb() gives it, and its neighbours in a packed array stay as they are.
    coreColorPoints looks[3] = {{0x111111, 1}, {0x0000FF, 2}, {0x333333, 3}};
    CColorProperty pen(&page, 3, group, true, &looks[1], QStringLiteral("Pen"), QString());
    CColorProperty quiet(&page, 4, group, false, &looks[1], QStringLiteral("Quiet pen"), QString());
    EXPECT_EQ(pen.AddProperty(), 2);
    EXPECT_EQ(page.GetPropertyItem(group, 2).value<QColor>(), QColor(0, 0, 255));
    state.changed = false;
    QVariant blue = QVariant(QColor(Qt::blue));
    pen.changeValue(blue, state);
    EXPECT_FALSE(state.changed);  // the same colour
    QVariant green = QVariant(QColor(0, 200, 0));
    pen.changeValue(green, state);
    EXPECT_TRUE(state.changed);
    EXPECT_EQ(looks[1].color, QColor(0, 200, 0).rgb());
    EXPECT_EQ(looks[1].color, 0xFF00C800u);
    EXPECT_EQ(looks[1].points, 2);
    EXPECT_EQ(looks[0].color, 0x111111u);
    EXPECT_EQ(looks[2].color, 0x333333u);
    state.changed = false;
    quiet.changeValue(red, state);  // taken, but not reported without the notify flag
    EXPECT_EQ(looks[1].color, 0xFFFF0000u);
    EXPECT_FALSE(state.changed);
    pen.changeValue(junk, state);
    EXPECT_EQ(looks[1].color, QColor().rgb());
    looks[1].color = 0x445566;
    pen.SetProperty();
    EXPECT_EQ(page.GetPropertyItem(group, 2).value<QColor>(), QColor(0x44, 0x55, 0x66));
    coreColorPoints* none = nullptr;
    CColorProperty unbound(&page, 5, group, true, none, QStringLiteral("None"), QString());
    unbound.changeValue(green, state);  // no record: nothing is written

    QVariant bigger(QFont("DejaVu Sans", 14));
    state.changed = false;
    f.changeValue(bigger, state);
    EXPECT_EQ(font.pointSize(), 14);
    EXPECT_TRUE(state.changed);
}

TEST_F(Bindings, SaveAsDefaultStoresTheDefaultsAndClearsItsBox) {
    Owner owner;
    CDefaultProperty save(&page, 1, group, static_cast<CPropertyHead*>(&owner));
    // It labels itself with the translation of its key (the key itself without a module).
    EXPECT_EQ(save.AddProperty(), 0);
    EXPECT_EQ(QString::fromUtf16(reinterpret_cast<const char16_t*>(page.getPropertyItem(group, 0)->name)), QStringLiteral("C0035SetAsDef"));
    page.SetProperty(group, 0, QVariant(true));
    stateChangeProperty state;
    QVariant no(false), yes(true);
    save.changeValue(no, state);
    EXPECT_EQ(owner.saved, 0);
    save.changeValue(yes, state);
    EXPECT_EQ(owner.saved, 1);
    EXPECT_FALSE(state.changed);
    EXPECT_EQ(page.GetPropertyItem(group, 0), QVariant(false));
    CDefaultProperty unbound(&page, 2, group, nullptr);
    unbound.changeValue(yes, state);  // no object: nothing happens
}

TEST_F(Bindings, TheListReadsEveryAddedEntryAndRefreshesTheHost) {
    FakeHost host;
    host.on(MSG_PROPERTY_REFRESH, [](void*, std::intptr_t, std::intptr_t) { return 0; });
    void* target = reinterpret_cast<void*>(std::intptr_t(0x4321));
    page.SetHost(host.callback(), target, target, nullptr);
    int a = 1, b = 2, notAdded = 3;
    CListOnePropery list(&page);
    list.addProperty(new CIntProperty(&page, 1, group, true, 0, 100, &a, "A", ""));
    list.addProperty(new CIntProperty(&page, 2, group, true, 0, 100, &b, "B", ""));
    list.addProperty(new CIntProperty(&page, 3, group, true, 0, 100, &notAdded, "C", ""));
    list.at(0)->AddProperty();
    list.at(1)->AddProperty();
    EXPECT_EQ(list.find(QStringLiteral("B")), list.at(1));
    page.SetProperty(group, 0, QVariant(40));
    page.SetProperty(group, 1, QVariant(50));
    stateChangeProperty state;
    list.checkParameters(state);
    EXPECT_EQ(a, 40);
    EXPECT_EQ(b, 50);
    EXPECT_EQ(notAdded, 3);
    a = 7;
    list.refreshParameters();
    EXPECT_EQ(page.GetPropertyItem(group, 0), QVariant(7));
    const std::vector<FakeHost::Call> refreshes = host.find(MSG_PROPERTY_REFRESH);
    ASSERT_EQ(refreshes.size(), 2u);  // the binding without an entry sends nothing
    EXPECT_EQ(refreshes[0].target, target);
    EXPECT_EQ(refreshes[0].p1, reinterpret_cast<std::intptr_t>(page.GetPage()));
    EXPECT_EQ(refreshes[0].p2, 0);
    // No callback: the page still takes the value.
    CPropertyWork alone;
    EXPECT_EQ(alone.SendRefresh(0), 1);
}
