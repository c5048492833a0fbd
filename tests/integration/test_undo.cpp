// Undo through the terminal's undo stack with the real module: a step the person takes in a
// chart window (closing an area, deleting a line, zooming) is recorded by the module (3138,
// work-data nodes, 3139); the terminal's undo hands the record back (3140) and the module
// rebuilds what the step changed and answers (3141). Also the terminal's side of the records
// (3138, 3139, 3147) played through the host callback, and undo records and messages a careless
// or hostile party may send.
//
// A busy window answers 3140 with 1 and sends no 3141; a window cannot be made busy from
// outside, so that case is tested inside the module.
#include <gtest/gtest.h>

#include <QAbstractSlider>
#include <QApplication>
#include <QImage>
#include <QMouseEvent>
#include <QToolButton>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "ModuleHostTest.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/Emulator.h"
#include "host/UndoStack.h"
#include "host/WorkDataStore.h"
#include "host/workdata/WorkTree.h"

using host::data::ChartType;

namespace {

const QSize kPictureSize(900, 600);

class Undo : public ModuleHostTest {
protected:
    void SetUp() override { Start(); }
    host::ChartWindows& Charts() { return emulator->charts(); }
    host::UndoStack& Stack() { return emulator->undo(); }
    host::WorkDataStore& Store() { return emulator->workData(); }

    void* Window(const std::vector<std::string>& instruments) {
        void* widget = Charts().create(ChartType::PointAndFigure);
        EXPECT_NE(widget, nullptr);
        for (const std::string& name : instruments) EXPECT_EQ(Charts().drop(widget, {name}), 0) << name;
        Picture(widget);  // laid out at the size the pictures are taken at
        return widget;
    }
    QImage Picture(void* widget) { return Charts().grab(widget, kPictureSize); }
    // The titles on the undo stack, bottom first, joined by "|".
    std::string Titles() { return Stack().titles().join(QLatin1Char('|')).toStdString(); }
    std::string Text(const char* key) { return emulator->moduleText(key).toStdString(); }

    // The undo messages (3138 to 3141) in the journal from `from` on, in order.
    std::vector<unsigned int> UndoMessages(std::size_t from) {
        std::vector<unsigned int> out;
        const auto& all = H().journal().entries();
        for (std::size_t i = from; i < all.size(); ++i) {
            const unsigned int m = all[i].message;
            if (m != MSG_UNDO_BEGIN && m != MSG_UNDO_COMMIT && m != MSG_UNDO_REQUEST && m != MSG_UNDO_REPLY) continue;
            EXPECT_EQ(all[i].result, 0) << "message " << m;
            out.push_back(m);
        }
        return out;
    }
    // The top record undone; it must have been taken back as a whole.
    void UndoTop() {
        const host::UndoStack::Undo u = Stack().undo();
        ASSERT_TRUE(u.sent) << "nothing on the stack";
        EXPECT_EQ(u.answer, 0);
        ASSERT_TRUE(u.replied) << "no 3141";
        EXPECT_EQ(u.result, 0);
    }
    // A left drag across the chart from x1 to x2 at height y.
    void Drag(void* widget, int x1, int x2, int y) {
        QWidget* chart = Charts().chartWidget(widget);
        auto send = [&](QEvent::Type type, int x, Qt::MouseButton button, Qt::MouseButtons buttons) {
            const QPoint at(x, y);
            QMouseEvent event(type, at, chart->mapToGlobal(at), button, buttons, Qt::NoModifier);
            QApplication::sendEvent(chart, &event);
        };
        send(QEvent::MouseButtonPress, x1, Qt::LeftButton, Qt::LeftButton);
        for (int x = x1; x < x2; x += 10) send(QEvent::MouseMove, x, Qt::NoButton, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, x2, Qt::LeftButton, Qt::NoButton);
    }
    // A message from the module's side, through the host callback (to the core unless told).
    int Send(unsigned int message, std::intptr_t p1, std::intptr_t p2 = 0, void* target = nullptr) {
        return host::Host::callback(target ? target : H().coreHandle(), message, p1, p2);
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
    static void* W(std::uint32_t word) { return reinterpret_cast<void*>(std::uintptr_t(word)); }
    // Calls `edit` for every node of the top record's tree with the node's handle.
    void EditTopRecord(const std::function<void(void*, const host::workdata::Node&)>& edit) {
        ASSERT_FALSE(Stack().records().empty());
        std::vector<void*> open{Stack().records().back().root};
        while (!open.empty()) {
            void* handle = open.back();
            open.pop_back();
            const host::workdata::Node* node = Store().node(handle);
            ASSERT_NE(node, nullptr);
            for (const auto& child : node->children) open.push_back(child->handle);
            edit(handle, *node);
        }
    }
};

TEST_F(Undo, ClosingAnAreaIsOneStepAndItsUndoRestoresThePicture) {
    void* widget = Window({"USDCHF", "TTRC"});
    const QImage before = Picture(widget);
    const std::size_t from = H().journal().entries().size();
    std::string error;
    ASSERT_TRUE(Charts().closeArea(widget, 1, &error)) << error;
    EXPECT_NE(Picture(widget), before);
    ASSERT_EQ(Titles(), Text("G0135"));

    UndoTop();
    EXPECT_TRUE(Stack().records().empty());
    EXPECT_EQ(Picture(widget), before);
    EXPECT_EQ(Charts().closeButtons(widget).size(), 2u);
    const std::vector<unsigned int> expected{MSG_UNDO_BEGIN, MSG_UNDO_COMMIT, MSG_UNDO_REQUEST, MSG_UNDO_REPLY};
    EXPECT_EQ(UndoMessages(from), expected);
    // The end of the undo is told once (3142), with everything it rebuilt: the area.
    const std::vector<host::Journal::Entry> ended = SentDuring(LastIndexOf(MSG_UNDO_REQUEST));
    std::vector<std::intptr_t> counts;
    for (const auto& e : ended)
        if (e.message == MSG_UNDO_REFRESHED) counts.push_back(e.param2);
    ASSERT_EQ(counts.size(), 1u);
    EXPECT_GE(counts[0], 1);
}

TEST_F(Undo, PlacesInRecordsAreIndexRuleValuesAndComeBackExactly) {
    void* widget = Window({"USDCHF", "TTRC", "USDCHF"});
    const QImage before = Picture(widget);
    // The values of every place the top record names ("nArea", "nLayer", "nodeIndex").
    auto places = [&](const char* key) {
        std::vector<QString> out;
        EditTopRecord([&](void*, const host::workdata::Node& node) {
            if (const QString* v = node.attribute(QString::fromLatin1(key))) out.push_back(*v);
        });
        return out;
    };
    std::string error;
    ASSERT_TRUE(Charts().closeArea(widget, 2, &error)) << error;
    ASSERT_FALSE(places("nArea").empty());
    for (const QString& v : places("nArea")) EXPECT_EQ(v, QStringLiteral("-2"));
    UndoTop();
    EXPECT_EQ(Picture(widget), before);

    ASSERT_TRUE(Charts().deleteLine(widget, 1, &error)) << error;
    ASSERT_FALSE(places("nArea").empty());
    for (const QString& v : places("nArea")) EXPECT_EQ(v, QStringLiteral("-1"));
    for (const QString& v : places("nLayer")) EXPECT_EQ(v, QStringLiteral("0"));
    for (const QString& v : places("nodeIndex")) EXPECT_EQ(v, QStringLiteral("0"));
    UndoTop();
    EXPECT_EQ(Picture(widget), before);
}

TEST_F(Undo, ALineDeleteRecordHoldsAnIndicatorAndLinePairPerLineInTheLayoutsKeys) {
    void* widget = Window({"USDCHF", "TTRC", "USDCHF"});
    const QImage before = Picture(widget);
    std::string error;
    ASSERT_TRUE(Charts().deleteLine(widget, 1, &error)) << error;
    const QStringList indicatorKeys{"InstrumentName", "InstrumentType", "NameProvider", "InstrumentPeriodChar",
                                    "InstrumentPeriodLen", "InstrumentPeriodStartTime", "PrimitiveStyle",
                                    "StartPosition", "VisibleFigures", "nArea", "nLayer", "ObjectType", "FInterface",
                                    "FProvider", "FName", "nodeIndex", "nLineCount", "IndicatorCount", "LayerCount"};
    int indicators = 0;
    EditTopRecord([&](void*, const host::workdata::Node& node) {
        if (node.name != QLatin1String("PFIndicator")) return;
        ++indicators;
        for (const auto& a : node.attributes) EXPECT_TRUE(indicatorKeys.contains(a.first)) << a.first.toStdString();
        ASSERT_EQ(node.children.size(), 1u);
        EXPECT_EQ(node.children[0]->name, QStringLiteral("PFLine"));
        // The area had one layer of one indicator of one line: all of it went.
        for (const char* key : {"nLineCount", "IndicatorCount", "LayerCount"}) {
            const QString* v = node.attribute(QString::fromLatin1(key));
            ASSERT_NE(v, nullptr) << key;
            EXPECT_EQ(*v, QStringLiteral("1")) << key;
        }
    });
    EXPECT_EQ(indicators, 1);
    UndoTop();
    EXPECT_EQ(Picture(widget), before);
}

TEST_F(Undo, DeletingTheLastLineOfAnIndicatorIsUndoneToTheSamePicture) {
    void* widget = Window({"USDCHF"});
    const QImage before = Picture(widget);
    std::string error;
    ASSERT_TRUE(Charts().deleteLine(widget, 0, &error)) << error;
    EXPECT_NE(Picture(widget), before);
    ASSERT_EQ(Titles(), Text("G0134"));

    UndoTop();
    EXPECT_EQ(Picture(widget), before);
    QPoint at;
    EXPECT_TRUE(Charts().figureIn(widget, 0, &at)) << "the figures answer tool tips again";
}

TEST_F(Undo, ZoomByALeftDragIsUndoneToTheSamePicture) {
    void* widget = Window({"USDCHF"});
    QAbstractSlider* bar = Charts().timeScrollBar(widget);
    ASSERT_NE(bar, nullptr);
    const int range = bar->maximum();
    const QImage before = Picture(widget);
    QWidget* chart = Charts().chartWidget(widget);
    // About sixty of the 300 columns shown.
    const std::size_t from = H().journal().entries().size();
    Drag(widget, chart->width() / 3, chart->width() / 3 + chart->width() / 5, chart->height() / 2);
    ASSERT_GT(bar->maximum(), range) << "the drag did not zoom";
    EXPECT_EQ(Titles(), Text("G0138"));
    // The record is written in one pass: its root read once (when opened), its one "Node"
    // made (and, new, found empty) and written once.
    std::vector<unsigned int> written;
    bool begun = false;
    for (std::size_t i = from; i < H().journal().entries().size(); ++i) {
        const unsigned int m = H().journal().entries()[i].message;
        begun = begun || m == MSG_UNDO_BEGIN;
        if (begun && m >= MSG_WD_CLEAR_NODE && m <= MSG_WD_PARAM_COUNT) written.push_back(m);
        if (m == MSG_UNDO_COMMIT) break;
    }
    EXPECT_EQ(written, (std::vector<unsigned int>{MSG_WD_PARAM_COUNT, MSG_WD_CREATE_NODE, MSG_WD_PARAM_COUNT,
                                                  MSG_WD_WRITE_PARAMS}));

    UndoTop();
    EXPECT_EQ(bar->maximum(), range);
    EXPECT_EQ(Picture(widget), before);
}

TEST_F(Undo, ToolBarZoomInIsOneStepUndoneAsAZoomOut) {
    // Undoing a zoom in zooms out again: the same picture as pressing Zoom In and Zoom Out.
    void* zoomedOut = Window({"USDCHF"});
    QList<QToolButton*> buttons = Charts().toolButtons(zoomedOut);
    ASSERT_GE(buttons.size(), 2);
    buttons[0]->click();
    buttons[1]->click();
    const QImage expected = Picture(zoomedOut);
    ASSERT_TRUE(Charts().destroy(zoomedOut));
    for (int i = 0; i < 8 && !Stack().records().empty(); ++i) Stack().undo();  // the other window's steps

    void* widget = Window({"USDCHF"});
    const QImage before = Picture(widget);
    const std::size_t begun = H().journal().find(MSG_UNDO_BEGIN).size();
    Charts().toolButtons(widget)[0]->click();
    EXPECT_NE(Picture(widget), before);
    EXPECT_EQ(H().journal().find(MSG_UNDO_BEGIN).size(), begun + 1) << "the zoom slider moved too, unrecorded";
    ASSERT_EQ(Titles(), Text("G0138"));

    UndoTop();
    EXPECT_TRUE(Stack().records().empty());
    EXPECT_EQ(Picture(widget), expected);
}

TEST_F(Undo, HostileUndoRecordsChangeNothing) {
    void* widget = Window({"USDCHF", "TTRC"});
    void* pf = emulator->core().componentObject("Points and Figures");
    const QImage before = Picture(widget);
    const std::size_t replies = H().journal().find(MSG_UNDO_REPLY).size();

    // No record, and a record of a widget the module never made.
    H().send(pf, MSG_UNDO_REQUEST, 0);
    coreUndoStart stranger;
    std::memset(&stranger, 0, sizeof stranger);
    stranger.widget = reinterpret_cast<void*>(0x5150);
    H().send(pf, MSG_UNDO_REQUEST, P(&stranger));
    H().send(nullptr, MSG_UNDO_REQUEST, P(&stranger));
    EXPECT_EQ(H().journal().find(MSG_UNDO_REPLY).size(), replies);
    EXPECT_EQ(Picture(widget), before);

    // A step of a window destroyed since: sent, unanswered, and its tree is gone.
    void* other = Window({"USDCHF"});
    Charts().toolButtons(other)[0]->click();
    ASSERT_EQ(Stack().records().size(), 1u);
    void* otherRoot = Stack().records().back().root;
    ASSERT_TRUE(Charts().destroy(other));
    const host::UndoStack::Undo gone = Stack().undo();
    EXPECT_TRUE(gone.sent);
    EXPECT_FALSE(gone.replied);
    EXPECT_TRUE(Stack().records().empty());
    EXPECT_EQ(Store().node(otherRoot), nullptr);
    EXPECT_EQ(Picture(widget), before);

    // A closed area whose record lost every ObjectType.
    std::string error;
    ASSERT_TRUE(Charts().closeArea(widget, 1, &error)) << error;
    const QImage closed = Picture(widget);
    EditTopRecord([this](void* handle, const host::workdata::Node&) {
        Store().removeAttribute(handle, QStringLiteral("ObjectType"));
    });
    Stack().undo();
    EXPECT_EQ(Picture(widget), closed);

    // A deleted line whose record points at places that do not exist.
    ASSERT_TRUE(Charts().deleteLine(widget, 0, &error)) << error;
    const QImage deleted = Picture(widget);
    EditTopRecord([this](void* handle, const host::workdata::Node& node) {
        for (const char* name : {"nodeIndex", "nArea", "nLayer", "nIndicator", "nLine", "nLineStudy", "Index"})
            if (node.attribute(QString::fromLatin1(name)))
                Store().setAttribute(handle, QString::fromLatin1(name), QStringLiteral("1000000"));
    });
    Stack().undo();
    EXPECT_EQ(Picture(widget), deleted);
    EXPECT_TRUE(Stack().records().empty());
}

// The terminal's side of the records: 3138 gives a root under which 3147 numbers the nodes,
// 3139 puts the record on top, and a record begun and never committed goes when the next
// one begins.
TEST_F(Undo, BeginGivesARootUnderWhichNodesAreIndexedAndCommitPutsTheRecordOnTop) {
    void* window = Window({});
    coreUndoBegin r = Record(QStringLiteral("Delete Area"), window);
    ASSERT_EQ(Send(MSG_UNDO_BEGIN, P(&r)), 0);
    const std::int32_t id = r.recordId;  // fields of packed records are read into locals
    ASSERT_NE(id, 0);
    const host::workdata::Node* root = Store().node(W(r.root.node));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(root->name, QStringLiteral("UndoRecord"));
    EXPECT_EQ(W(r.root.document), root->parent->handle);
    EXPECT_TRUE(Stack().titles().isEmpty()) << "not committed yet";

    coreCreateNode create{};
    create.parent = W(r.root.node);
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

    coreUndoBegin dropped = Record(QStringLiteral("Dropped"), window);
    ASSERT_EQ(Send(MSG_UNDO_BEGIN, P(&dropped)), 0);
    const std::uint32_t next = Step(QStringLiteral("Change Scale"), window);
    EXPECT_EQ(Store().node(W(dropped.root.node)), nullptr);
    EXPECT_EQ(Send(MSG_UNDO_COMMIT, dropped.recordId), 1);
    EXPECT_NE(next, std::uint32_t(r.root.node));
    EXPECT_EQ(Stack().titles(), (QStringList{QStringLiteral("Delete Area"), QStringLiteral("Change Scale")}));

    // Undo takes the top record to its window's interface and drops its tree.
    void* renko = Charts().create(ChartType::Renko);
    ASSERT_NE(renko, nullptr);
    const std::uint32_t renkoRoot = Step(QStringLiteral("B"), renko);
    const host::UndoStack::Undo u = Stack().undo();
    EXPECT_TRUE(u.sent);
    EXPECT_EQ(u.record.title, QStringLiteral("B"));
    EXPECT_EQ(H().journal().find(MSG_UNDO_REQUEST).back().target,
              std::uintptr_t(emulator->core().componentObject("Renko")));
    EXPECT_EQ(Store().node(W(renkoRoot)), nullptr) << "the tree goes once undone";
    EXPECT_NE(Store().node(W(next)), nullptr);

    // The host's own record kinds, for windows it has.
    EXPECT_TRUE(Stack().pushHostRecord(CORE_UNDO_KIND_HOST7, window));
    EXPECT_FALSE(Stack().pushHostRecord(3, window));
    EXPECT_FALSE(Stack().pushHostRecord(CORE_UNDO_KIND_HOST5, reinterpret_cast<void*>(0x5150)));
    EXPECT_EQ(Stack().records().size(), 3u);
    EXPECT_EQ(Stack().undo().record.kind, CORE_UNDO_KIND_HOST7);
}

TEST_F(Undo, HostileUndoMessagesAnswerFailureAndChangeNothing) {
    void* window = Window({});
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
    EXPECT_NE(Store().node(W(good.root.node)), nullptr);
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

}  // namespace
