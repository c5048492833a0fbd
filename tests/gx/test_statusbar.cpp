// The status-bar panes against a fake host: the registration record, the window-id requests,
// labels found by window id (only labels), labels the host deletes, clearing before the host
// has the panes.
#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>
#include <cstring>
#include <memory>
#include <string>

#include "FakeHost.h"
#include "gx/TextStatusBar.h"
#include "module/CModule.h"

namespace {

struct StatusBarTest : ::testing::Test {
    FakeHost host;
    CModule module{"Test module", 1, 1, 9, "TestLog", "TestContext"};
    gx::TextStatusBar bar{nullptr, nullptr, &module};
    void SetUp() override { host.attach(module); }

    // Answers `message` by writing the pane's window id, as the host does once the pane exists.
    void ServeIds(unsigned int message, QWidget* time, QWidget* price) {
        const std::int32_t ids[2] = {time ? std::int32_t(time->winId()) : 0, price ? std::int32_t(price->winId()) : 0};
        host.on(message, [ids](void*, std::intptr_t p1, std::intptr_t p2) {
            reinterpret_cast<coreStatusBarPanes*>(p1)->windowId[p2] = ids[p2];
            return 0;
        });
    }
};

}  // namespace

TEST_F(StatusBarTest, InitRegistersThePanesAndKeepsOnlyLabelsFoundByWindowId) {
    QLabel price;
    QPushButton button;
    ServeIds(MSG_STATUS_PANE_ID, &button, &price);
    std::string kind, provider, name;
    std::int32_t count = 0;
    void* result = nullptr;
    host.on(MSG_GET_INTERFACE, [&](void*, std::intptr_t p1, std::intptr_t) {
        const auto* r = reinterpret_cast<const coreInterfaceRequest*>(p1);
        kind.assign(r->kind, 255);
        provider.assign(r->provider, 255);
        name.assign(r->name, 255);
        count = r->count;
        result = r->result;
        return 0;
    });
    bar.InitTextStatusBar();

    ASSERT_EQ(host.messages(), (std::vector<unsigned>{MSG_GET_INTERFACE, MSG_STATUS_PANE_ID, MSG_STATUS_PANE_ID}));
    for (int i = 0; i < 3; ++i) EXPECT_EQ(host.calls()[i].target, host.handle());
    for (int pane : {0, 1}) {
        EXPECT_EQ(host.calls()[1 + pane].p1, reinterpret_cast<std::intptr_t>(&bar.GetPanes()));
        EXPECT_EQ(host.calls()[1 + pane].p2, pane);
    }
    EXPECT_EQ(kind, "STATUSBAR" + std::string(255 - 9, '\0'));
    EXPECT_EQ(provider, "TELVIX" + std::string(255 - 6, '\0'));
    EXPECT_EQ(name, "telvixStatusBar" + std::string(255 - 15, '\0'));
    EXPECT_EQ(count, 1);
    EXPECT_EQ(result, static_cast<const void*>(&bar.GetPanes()));
    EXPECT_EQ(bar.GetLabel(0), nullptr);  // a button is not a label
    EXPECT_EQ(bar.GetLabel(1), &price);

    // The known label is cleared without asking the host.
    price.setText("1.2345");
    host.clear();
    ServeIds(MSG_STATUS_PANE_ID_AGAIN, nullptr, nullptr);
    bar.ClearTextStatusBar();
    EXPECT_EQ(host.messages(), std::vector<unsigned>{MSG_STATUS_PANE_ID_AGAIN});
    EXPECT_TRUE(price.text().isEmpty());
}

TEST_F(StatusBarTest, ClearBeforeTheHostHasThePanesOnlyAsksAndDeletedLabelsAreForgotten) {
    bar.ClearTextStatusBar();  // the host answers 1 and writes nothing
    ASSERT_EQ(host.messages(), (std::vector<unsigned>{MSG_STATUS_PANE_ID_AGAIN, MSG_STATUS_PANE_ID_AGAIN}));
    EXPECT_EQ(host.calls()[1].p1, reinterpret_cast<std::intptr_t>(&bar.GetPanes()));
    EXPECT_EQ(host.calls()[1].p2, 1);

    // Found on the next clear and kept, not cleared; cleared on the one after.
    QLabel time("12:00");
    std::unique_ptr<QLabel> price(new QLabel("1.5"));
    ServeIds(MSG_STATUS_PANE_ID_AGAIN, &time, price.get());
    bar.ClearTextStatusBar();
    EXPECT_TRUE(bar.GetLabel(0) == &time && bar.GetLabel(1) == price.get());
    EXPECT_EQ(time.text(), "12:00");
    bar.ClearTextStatusBar();
    EXPECT_TRUE(time.text().isEmpty() && price->text().isEmpty());

    price.reset();  // the host deletes a label
    EXPECT_EQ(bar.GetLabel(1), nullptr);
    host.clear();
    bar.ClearTextStatusBar();
    EXPECT_EQ(host.messages(), std::vector<unsigned>{MSG_STATUS_PANE_ID_AGAIN});
}
