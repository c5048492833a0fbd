// The host's undo requests (3140) at the module switch, in-process: which windows may undo,
// the busy window, the host's own kinds of record, and the commands by code.
#include "ChartWindowFixture.h"

#include "module/ChartInterface.h"
#include "undo/CommandFactory.h"

namespace {

using UndoRequests = ChartWindowFixture;

TEST_F(UndoRequests, OnlyAListedIdleWindowUndoesAndAnswersWith3141) {
    Show(QStringLiteral("EURUSD"));
    module.GetRenkoInterface()->AddWidget(widget.get());
    coreUndoStart record{};
    record.document = 0x11;
    record.node = 0x33;
    record.widget = reinterpret_cast<void*>(std::intptr_t(0x5150));  // nobody's window
    record.kind = CORE_UNDO_KIND_HOST5;
    const auto send = [&](const void* p) {
        host.clear();
        return module.ReceiveMessageWrap(nullptr, MSG_UNDO_REQUEST, reinterpret_cast<std::intptr_t>(p), 0);
    };
    EXPECT_EQ(send(nullptr), 1);
    EXPECT_EQ(send(&record), 1);
    EXPECT_TRUE(host.find(MSG_UNDO_REPLY).empty());

    record.widget = widget.get();
    widget->SetBusy(true);
    EXPECT_EQ(send(&record), 1);
    EXPECT_TRUE(host.find(MSG_UNDO_REPLY).empty());
    widget->SetBusy(false);

    // A record of the host's own kind: the words come back, nothing else happens.
    coreUndoRefresh reply{};
    host.on(MSG_UNDO_REPLY, [&](void*, std::intptr_t p1, std::intptr_t) {
        reply = *reinterpret_cast<const coreUndoRefresh*>(p1);
        return 0;
    });
    EXPECT_EQ(send(&record), 0);
    ASSERT_EQ(host.find(MSG_UNDO_REPLY).size(), 1u);
    // Packed record: fields compared by value.
    const std::uint32_t first = reply.first, third = reply.third;
    void* const fourth = reply.fourth;
    EXPECT_EQ(first, 0x11u);
    EXPECT_EQ(third, 0x33u);
    EXPECT_EQ(fourth, widget.get());
    EXPECT_EQ(widget->GetChart()->GetAreaCount(), 1);
    // A module record without a host tree to read: each command finds nothing of its kind.
    record.kind = 0;
    EXPECT_EQ(send(&record), 0);
    EXPECT_EQ(widget->GetChart()->GetAreaCount(), 1);
    module.GetRenkoInterface()->DelWidget(widget.get());
}

TEST_F(UndoRequests, FactoryMakesTheFourCommandsAndNothingElse) {
    for (int code : {0, 2, 3, 4}) EXPECT_TRUE(CommandFactory::Instance().Create(code)) << code;
    for (int code : {-1, 1, 5, 1000}) EXPECT_FALSE(CommandFactory::Instance().Create(code)) << code;
    // Without a host that makes records, a command records nothing and changes nothing.
    Show(QStringLiteral("EURUSD"));
    host.clear();
    widget->RecordAreaDelete(0);
    widget->RecordScaleUndo(0);
    EXPECT_EQ(host.find(MSG_UNDO_COMMIT).size(), 0u);
    EXPECT_EQ(widget->GetChart()->GetAreaCount(), 1);
}

}  // namespace
