// The emulator's undo stack on its own: the test plays the module's side of 3138, 3139,
// 3147, 3142 and 3141 through the host callback, and the stand-in module answers the host's
// 3140 for its windows.
#include <gtest/gtest.h>

#include <QString>
#include <cstring>
#include <memory>
#include <vector>

#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/Emulator.h"
#include "host/UndoStack.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

using host::data::ChartType;

namespace {

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }
void* H(std::uint32_t word) { return reinterpret_cast<void*>(std::uintptr_t(word)); }

class UndoStack : public ::testing::Test {
protected:
    void SetUp() override {
        host::EmulatorOptions options;
        options.modulePath = PF_STANDIN_MODULE_PATH;
        emulator.reset(new host::Emulator(options));
        std::string error;
        ASSERT_TRUE(emulator->loadModule(&error)) << error;
        emulator->startUp();
        window = emulator->charts().create(ChartType::PointAndFigure);
        ASSERT_NE(window, nullptr);
    }
    host::UndoStack& Stack() { return emulator->undo(); }
    host::WorkDataStore& Store() { return emulator->workData(); }
    int Send(unsigned int message, std::intptr_t p1, std::intptr_t p2 = 0, void* target = nullptr) {
        return host::Host::callback(target ? target : emulator->host().coreHandle(), message, p1, p2);
    }
    // 3138 as the module fills it.
    static coreUndoBegin Record(const QString& title, void* widget) {
        coreUndoBegin r;
        std::memset(&r, 0, sizeof r);
        std::memcpy(r.title, title.utf16(), std::size_t(title.size()) * sizeof(coreWChar));
        r.widget = widget;
        r.recordId = -1;
        return r;
    }
    // Begins and commits a record; its root node.
    std::uint32_t Step(const QString& title, void* widget) {
        coreUndoBegin r = Record(title, widget);
        EXPECT_EQ(Send(MSG_UNDO_BEGIN, P(&r)), 0);
        EXPECT_EQ(Send(MSG_UNDO_COMMIT, r.recordId), 0);
        return r.root.node;
    }
    int NodeIndex(std::uint32_t node) {
        const coreSzNode n{0, 0, node};
        return Send(MSG_UNDO_NODE_INDEX, P(&n));
    }

    std::unique_ptr<host::Emulator> emulator;
    void* window = nullptr;
};

TEST_F(UndoStack, BeginGivesARootUnderWhichNodesAreIndexedAndCommitPutsTheRecordOnTop) {
    coreUndoBegin r = Record(QStringLiteral("Delete Area"), window);
    ASSERT_EQ(Send(MSG_UNDO_BEGIN, P(&r)), 0);
    const std::int32_t id = r.recordId;  // fields of packed records are read into locals
    ASSERT_NE(id, 0);
    const host::workdata::Node* root = Store().node(H(r.root.node));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->name, QStringLiteral("UndoRecord"));
    EXPECT_EQ(H(r.root.document), Store().node(H(r.root.node))->parent->handle);
    EXPECT_TRUE(Stack().titles().isEmpty()) << "not committed yet";

    // The module writes its nodes with the usual work-data messages; 3147 numbers them.
    coreCreateNode create{};
    create.parent = H(r.root.node);
    std::strcpy(create.name, "Node");
    ASSERT_EQ(Send(MSG_WD_CREATE_NODE, P(&create)), 0);
    const std::uint32_t first = std::uint32_t(std::uintptr_t(create.result));
    ASSERT_EQ(Send(MSG_WD_CREATE_NODE, P(&create)), 0);
    const std::uint32_t second = std::uint32_t(std::uintptr_t(create.result));
    EXPECT_EQ(NodeIndex(first), 0);
    EXPECT_EQ(NodeIndex(second), 1);
    EXPECT_EQ(NodeIndex(r.root.node), 0);
    EXPECT_EQ(NodeIndex(r.root.document), -1) << "a document has no parent";
    EXPECT_EQ(NodeIndex(0x7ff0), -1);
    EXPECT_EQ(Send(MSG_UNDO_NODE_INDEX, 0), -1);

    ASSERT_EQ(Send(MSG_UNDO_COMMIT, id), 0);
    EXPECT_EQ(Stack().titles(), QStringList{QStringLiteral("Delete Area")});
    EXPECT_EQ(Send(MSG_UNDO_COMMIT, id), 1) << "committed once only";

    // A record begun and never committed goes when the next one begins.
    coreUndoBegin dropped = Record(QStringLiteral("Dropped"), window);
    ASSERT_EQ(Send(MSG_UNDO_BEGIN, P(&dropped)), 0);
    const std::uint32_t next = Step(QStringLiteral("Change Scale"), window);
    EXPECT_EQ(Store().node(H(dropped.root.node)), nullptr);
    EXPECT_EQ(Send(MSG_UNDO_COMMIT, dropped.recordId), 1);
    EXPECT_NE(next, std::uint32_t(r.root.node));
    EXPECT_EQ(Stack().titles(), (QStringList{QStringLiteral("Delete Area"), QStringLiteral("Change Scale")}));
}

TEST_F(UndoStack, HostileMessagesAnswerFailureAndChangeNothing) {
    coreUndoBegin good = Record(QStringLiteral("Move Line"), window);
    ASSERT_EQ(Send(MSG_UNDO_BEGIN, P(&good)), 0);

    EXPECT_EQ(Send(MSG_UNDO_BEGIN, 0), 1);
    coreUndoBegin bad = Record(QStringLiteral("x"), window);
    EXPECT_EQ(Send(MSG_UNDO_BEGIN, P(&bad), 0, window), 1) << "not sent to the core";
    const std::vector<coreWChar> unterminated(sizeof bad.title / sizeof(coreWChar), coreWChar('A'));
    std::memcpy(bad.title, unterminated.data(), sizeof bad.title);
    EXPECT_EQ(Send(MSG_UNDO_BEGIN, P(&bad)), 1);
    EXPECT_EQ(std::int32_t(bad.recordId), 0);
    for (void* widget : {static_cast<void*>(nullptr), reinterpret_cast<void*>(0x5150)}) {
        coreUndoBegin stranger = Record(QStringLiteral("x"), widget);
        EXPECT_EQ(Send(MSG_UNDO_BEGIN, P(&stranger)), 1);
        EXPECT_EQ(std::int32_t(stranger.recordId), 0);
    }
    for (std::intptr_t id : {std::intptr_t(0), std::intptr_t(-1), std::intptr_t(good.recordId + 1)})
        EXPECT_EQ(Send(MSG_UNDO_COMMIT, id), 1) << id;
    if (sizeof(std::intptr_t) > 4) {  // a word whose low half is the id
        const std::uint64_t word = std::uint64_t(std::int32_t(good.recordId)) | std::uint64_t(1) << 32;
        EXPECT_EQ(Send(MSG_UNDO_COMMIT, static_cast<std::intptr_t>(word)), 1);
    }

    // The record begun before is still the one to commit, with its tree.
    ASSERT_NE(Stack().pending(), nullptr);
    EXPECT_NE(Store().node(H(good.root.node)), nullptr);
    EXPECT_EQ(Send(MSG_UNDO_COMMIT, good.recordId), 0);
    EXPECT_EQ(Stack().titles(), QStringList{QStringLiteral("Move Line")});

    // The longest title that fits: 255 units and the terminator.
    coreUndoBegin longest = Record(QString(255, QLatin1Char('T')), window);
    EXPECT_EQ(Send(MSG_UNDO_BEGIN, P(&longest)), 0);

    // Rebuilt notices for windows only, with a count; replies outside an undo are kept but refused.
    EXPECT_EQ(Send(MSG_UNDO_REFRESHED, P(window), 3), 0);
    EXPECT_EQ(Send(MSG_UNDO_REFRESHED, 0x5150, 1), 1);
    EXPECT_EQ(Send(MSG_UNDO_REFRESHED, P(window), -1), 1);
    ASSERT_EQ(Stack().refreshes().size(), 1u);
    EXPECT_EQ(Stack().refreshes()[0].second, 3);
    EXPECT_EQ(Send(MSG_UNDO_REPLY, 0), 1);
    coreUndoRefresh stray{1, 2, window};
    EXPECT_EQ(Send(MSG_UNDO_REPLY, P(&stray), 0), 1);
    ASSERT_EQ(Stack().replies().size(), 1u);
    EXPECT_FALSE(Stack().replies()[0].expected);
    EXPECT_EQ(Stack().titles().size(), 1);
}

TEST_F(UndoStack, UndoHandsTheTopRecordToItsWindowsInterfaceAndDropsItsTree) {
    void* renko = emulator->charts().create(ChartType::Renko);
    ASSERT_NE(renko, nullptr);
    const std::uint32_t pfRoot = Step(QStringLiteral("A"), window);
    const std::uint32_t renkoRoot = Step(QStringLiteral("B"), renko);
    ASSERT_TRUE(Stack().pushHostRecord(CORE_UNDO_KIND_HOST7, window));
    EXPECT_FALSE(Stack().pushHostRecord(3, window));
    EXPECT_FALSE(Stack().pushHostRecord(CORE_UNDO_KIND_HOST5, reinterpret_cast<void*>(0x5150)));
    ASSERT_EQ(Stack().records().size(), 3u);

    host::UndoStack::Undo u = Stack().undo();
    EXPECT_TRUE(u.sent);
    EXPECT_EQ(u.record.kind, CORE_UNDO_KIND_HOST7);
    EXPECT_TRUE(u.replied);

    u = Stack().undo();
    EXPECT_EQ(u.record.title, QStringLiteral("B"));
    EXPECT_EQ(u.answer, 0);
    ASSERT_TRUE(u.replied);
    EXPECT_EQ(u.result, 0);
    const host::Journal::Entry sent = emulator->host().journal().find(MSG_UNDO_REQUEST).back();
    EXPECT_EQ(sent.target, std::uintptr_t(emulator->core().componentObject("Renko")));
    // The stand-in echoes the record's document, root and widget.
    EXPECT_EQ(std::uint32_t(u.refresh.third), renkoRoot);
    EXPECT_EQ(static_cast<void*>(u.refresh.fourth), renko);
    EXPECT_NE(std::uint32_t(u.refresh.first), 0u);
    EXPECT_EQ(Store().node(H(renkoRoot)), nullptr) << "the tree goes once undone";
    EXPECT_NE(Store().node(H(pfRoot)), nullptr);

    u = Stack().undo();
    EXPECT_EQ(static_cast<void*>(u.refresh.fourth), window);
    EXPECT_EQ(u.record.kind, 0);
    EXPECT_TRUE(Stack().records().empty());
    EXPECT_FALSE(Stack().undo().sent);
}

TEST_F(UndoStack, ABusyWindowKeepsItsStepAndAWindowThatIsGoneLosesIt) {
    const std::uint32_t root = Step(QStringLiteral("Busy step"), window);
    ASSERT_TRUE(Store().setAttribute(H(root), QStringLiteral("Busy"), QStringLiteral("1")));
    host::UndoStack::Undo u = Stack().undo();
    EXPECT_EQ(u.answer, 1);
    EXPECT_FALSE(u.replied);
    EXPECT_EQ(Stack().titles(), QStringList{QStringLiteral("Busy step")});
    EXPECT_NE(Store().node(H(root)), nullptr);
    ASSERT_TRUE(Store().removeAttribute(H(root), QStringLiteral("Busy")));
    EXPECT_TRUE(Stack().undo().replied);
    EXPECT_TRUE(Stack().records().empty());

    void* gone = emulator->charts().create(ChartType::Kagi);
    const std::uint32_t goneRoot = Step(QStringLiteral("Kagi step"), gone);
    ASSERT_TRUE(emulator->charts().destroy(gone));
    u = Stack().undo();
    EXPECT_TRUE(u.sent);
    EXPECT_FALSE(u.replied);
    EXPECT_TRUE(Stack().records().empty());
    EXPECT_EQ(Store().node(H(goneRoot)), nullptr);
}

}  // namespace
