// The fault matrix: every user action on a real chart window, run once for each request
// it makes of the terminal with that request failing.
//
// An action is found out first on a healthy terminal: every message the module sends the
// host while the action runs is a request of that action. Then, for each of those
// requests in turn, a fresh window runs the action with the host failing that request
// every time it comes (the handler answers 1 and fills nothing: an id stays 0, a handle
// null, a count 0; the control-point exchange and study creation also fail their own way,
// with the error flag set and an id of 0). Each run must leave:
//   - nothing escaping the module (the event handlers and slots end at its barrier);
//   - no request after the failure of a kind the healthy action does not make, beyond
//     giving a study back (4501, 3071, 3501) or a data subscription (3014);
//   - nothing of what the window held (its lines and studies) lost beyond what the healthy
//     action deletes;
//   - a window whose layout, saved afterwards, loads into a new window that holds every
//     line and study of it;
//   - a window where the same action, repeated on a healthy host, succeeds.
#include <gtest/gtest.h>

#include <QApplication>
#include <QFile>
#include <QXmlStreamReader>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QAbstractSlider>
#include <QTemporaryDir>
#include <QToolButton>
#include <QWidget>
#include <cstdio>
#include <algorithm>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "ModuleHostTest.h"
#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/DataCore.h"
#include "host/DealingService.h"
#include "host/DialogAnswerer.h"
#include "host/DragData.h"
#include "host/Emulator.h"
#include "host/LineStudies.h"
#include "host/PropertyService.h"
#include "host/StudyGestures.h"
#include "host/UndoStack.h"
#include "host/data/ChartObject.h"

using host::StudyPoint;
using host::data::ChartType;

namespace {

// Requests that may follow a failure although the healthy action makes none of them: a
// study given back to the host, a data subscription ended, and the window's properties
// (a double click meant for a study the host did not let be made lands on empty space).
const std::set<unsigned int> kCleanUp = {MSG_LS_DELETE, MSG_LS_DETACH, MSG_LS_END_DRAWING, MSG_DPA_UNSUBSCRIBE,
                                         MSG_SHOW_PROPERTY_PAGE};

// Puts itself between the module and every service of the emulated host: it records the
// requests the module makes while armed, and fails those of one message number.
class FaultInjector {
public:
    explicit FaultInjector(host::Host& h) : host_(h) {
        for (unsigned int message : h.handledMessages()) {
            real_[message] = h.handler(message);
            h.on(message, [this, message](void* target, std::intptr_t p1, std::intptr_t p2, std::string& detail) {
                return Answer(message, target, p1, p2, detail);
            });
        }
    }
    ~FaultInjector() {
        for (const auto& r : real_) host_.on(r.first, r.second);
    }
    // Starts recording; `failing` (0: none) fails from now on.
    void Arm(unsigned int failing) {
        armed_ = true;
        failing_ = failing;
        requests_.clear();
        firstFailure_ = -1;
    }
    void Disarm() {
        armed_ = false;
        failing_ = 0;
    }
    const std::vector<unsigned int>& Requests() const { return requests_; }
    // Requests after the first failure; empty when none failed.
    std::vector<unsigned int> AfterFailure() const {
        if (firstFailure_ < 0) return {};
        return std::vector<unsigned int>(requests_.begin() + firstFailure_ + 1, requests_.end());
    }
    bool Failed() const { return firstFailure_ >= 0; }

private:
    int Answer(unsigned int message, void* target, std::intptr_t p1, std::intptr_t p2, std::string& detail) {
        if (armed_) requests_.push_back(message);
        if (!armed_ || message != failing_) return real_[message](target, p1, p2, detail);
        if (firstFailure_ < 0) firstFailure_ = int(requests_.size()) - 1;
        detail = "failed by the fault matrix";
        // Where the answer is a value, the failure is the empty one: no tool chosen, a node of
        // no entries, no index. Everything else answers 1.
        const bool value = message == MSG_LS_DRAWING_MODE || message == MSG_WD_PARAM_COUNT ||
                           message == MSG_LINE_INDEX || message == MSG_UNDO_NODE_INDEX;
        return value ? 0 : 1;
    }

    host::Host& host_;
    std::map<unsigned int, host::Host::Handler> real_;
    bool armed_ = false;
    unsigned int failing_ = 0;
    std::vector<unsigned int> requests_;
    int firstFailure_ = -1;
};

// What a window holds that a person made: one entry per line ("line USDCHF") and per study
// ("study Line on USDCHF"), read from a layout document. Studies are named by their type,
// not their points: a move changes the points, not the study.
using Holdings = std::multiset<std::string>;

Holdings ReadHoldings(const QString& path) {
    Holdings out;
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) return out;
    QXmlStreamReader xml(&file);
    std::string instrument;
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement) continue;
        const QXmlStreamAttributes attributes = xml.attributes();
        if (xml.name() == QLatin1String("PFIndicator"))
            instrument = attributes.value(QLatin1String("InstrumentName")).toString().toStdString();
        else if (xml.name() == QLatin1String("PFLine"))
            out.insert("line " + instrument);
        else if (xml.name() == QLatin1String("LineStudy"))
            out.insert("study " + attributes.value(QLatin1String("ObjectName")).toString().toStdString() + " on " +
                       instrument);
    }
    return out;
}

// What `from` holds and `to` does not.
Holdings Missing(const Holdings& from, const Holdings& to) {
    Holdings out;
    std::set_difference(from.begin(), from.end(), to.begin(), to.end(), std::inserter(out, out.begin()));
    return out;
}

std::string Join(const Holdings& items) {
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : ", ") + item;
    return out;
}

// The number of actions below; each is a test of its own, so that they run side by side.
const int kActions = 29;

class FaultMatrix : public ModuleHostTest, public ::testing::WithParamInterface<int> {
protected:
    // One user action: `prepare` brings a fresh window to where the action can be done
    // (healthy host), `act` does it (the host may fail), `done` tells whether it did what
    // the person wanted.
    struct Action {
        std::string name;
        std::function<void()> prepare;
        std::function<void()> act;
        std::function<bool()> done;
    };

    void SetUp() override {
        Load();
        emulator->dealing().addDemoAccounts(1);
        emulator->startUp();
    }
    void TearDown() override {
        injector.reset();
        if (emulator) emulator->charts().destroyAll();
    }

    host::ChartWindows& Charts() { return emulator->charts(); }
    host::LineStudies& LS() { return emulator->studies(); }

    // A new Point and Figure window of USD/CHF with the newest columns in view; more
    // instruments below it for the actions that take one away.
    void Fresh(const std::vector<std::string>& extra = {}) {
        Charts().destroyAll();
        widget = Charts().create(ChartType::PointAndFigure);
        ASSERT_NE(widget, nullptr);
        ASSERT_EQ(Charts().drop(widget, {"USDCHF"}), 0);
        for (const std::string& name : extra) ASSERT_EQ(Charts().drop(widget, {name}), 0);
        ASSERT_FALSE(Picture().isNull());
        chart = Charts().chartWidget(widget);
        ASSERT_NE(chart, nullptr);
        Charts().pressKey(widget, Qt::Key_End);
        const auto objects = emulator->data().chartObjects();
        ASSERT_FALSE(objects.empty());
        records = objects[0]->records();
        ASSERT_GT(records.size(), 300u);
        price = double(records[records.size() - 150].value);
    }
    QImage Picture() { return Charts().grab(widget, QSize(1000, 700)); }
    StudyPoint Column(int back, double p) { return StudyPoint{records[records.size() - 1 - std::size_t(back)].time, p}; }
    QPoint Pixel(const StudyPoint& p) {
        QPoint at;
        std::string error;
        EXPECT_TRUE(host::StudyPixel(*emulator, widget, p, &at, &error)) << error;
        return at;
    }
    void Mouse(QEvent::Type type, const QPoint& at, Qt::MouseButton button, Qt::MouseButtons buttons) {
        QMouseEvent event(type, at, chart->mapToGlobal(at), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(chart, &event);
    }
    void Drag(const QPoint& from, const QPoint& to) {
        Mouse(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
        for (int s = 0; s <= 5; ++s) Mouse(QEvent::MouseMove, from + (to - from) * s / 5, Qt::NoButton, Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
    }
    // A drop handed to the window by the terminal's own drag code. The window takes only
    // instruments while dragging, and Qt delivers a drop only to the widget that took the
    // drag, so primitives and studies are given to the window's event handler directly.
    void DropAt(const QMimeData& mime, const QPoint& at) {
        QDropEvent drop(at, Qt::CopyAction, &mime, Qt::LeftButton, Qt::NoModifier);
        static_cast<QObject*>(chart)->event(&drop);
    }
    void Click(const QPoint& at) {
        Mouse(QEvent::MouseButtonPress, at, Qt::LeftButton, Qt::LeftButton);
        Mouse(QEvent::MouseButtonRelease, at, Qt::LeftButton, Qt::NoButton);
    }
    // Places a study with the mouse; its id, 0 when the chart made none.
    std::int32_t Place(const std::string& name, const std::vector<StudyPoint>& points) {
        std::int32_t id = 0;
        std::string error;
        host::PlaceStudy(*emulator, widget, name, points, &id, &error);
        return id;
    }
    // The trend line the study actions work on, its ends and its middle (a press there
    // takes the whole line).
    void PlaceLine() {
        a = Column(200, price);
        b = Column(150, price + 0.01);
        study = Place("Line", {a, b});
        ASSERT_NE(study, 0);
        pa = Pixel(a);
        middle = (pa + Pixel(b)) / 2;
    }
    std::vector<lsPointShape> PointsOf(std::int32_t id) {
        const host::LineStudies::Study* s = LS().study(id);
        return s ? s->in : std::vector<lsPointShape>();
    }
    bool Has(std::int32_t id) {
        for (std::int32_t i : LS().ids())
            if (i == id) return true;
        return false;
    }
    int Visible() { return Charts().timeScrollBar(widget)->pageStep(); }
    int ScrollValue() { return Charts().timeScrollBar(widget)->value(); }
    int Areas() { return int(Charts().closeButtons(widget).size()); }
    QStringList Path(std::initializer_list<const char*> keys) {
        QStringList path;
        for (const char* key : keys) path << emulator->moduleText(key);
        return path;
    }
    bool Undo() {
        const host::UndoStack::Undo u = emulator->undo().undo();
        return u.sent && u.replied && u.result == 0;
    }
    // The lines and studies of `w` as a layout saved now holds them (the host healthy).
    Holdings HoldingsOf(void* w, const char* file) {
        QString why;
        const QString path = folder.filePath(QString::fromLatin1(file));
        EXPECT_TRUE(emulator->layouts().save(w, path, &why)) << why.toStdString();
        return ReadHoldings(path);
    }

    // The actions a person takes on a chart window.
    std::vector<Action> Actions();

    // Runs `action` under every failure it can meet; the number of cells run.
    int RunMatrix(const Action& action);

    void* widget = nullptr;
    QWidget* chart = nullptr;
    std::vector<fxChartTypeRecord> records;
    double price = 0;
    StudyPoint a{}, b{};
    QPoint pa, middle;
    std::int32_t study = 0;
    int placements = 0;
    std::unique_ptr<FaultInjector> injector;
    QTemporaryDir folder;
    // Per action: what `done` compares with.
    int before = 0;
    std::vector<lsPointShape> pointsBefore;
};

std::vector<FaultMatrix::Action> FaultMatrix::Actions() {
    std::vector<Action> all;
    const struct {
        const char* name;
        std::vector<std::pair<int, double> > points;  // columns back, price offset
    } studies[] = {{"HLine", {{120, 0}}},
                   {"VLine", {{120, 0}}},
                   {"Line", {{140, 0}, {110, 0.01}}},
                   {"Text", {{120, 0}}},
                   {"Arc", {{140, -0.01}, {110, 0}}},
                   {"Chanel", {{140, 0}, {110, 0.01}, {125, 0.02}}},
                   {"Andrews Pitchfork", {{140, 0}, {120, 0.02}, {110, -0.01}}},
                   {"PolyLine", {{140, 0}, {130, 0.01}, {120, -0.005}}}};
    for (const auto& s : studies) {
        const std::string name = s.name;
        const auto points = s.points;
        all.push_back({"place " + name, [] {},
                       [this, name, points] {
                           // Every other placement lies further left, clear of the last one.
                           const int left = placements++ % 2 ? 60 : 0;
                           std::vector<StudyPoint> at;
                           for (const auto& p : points) at.push_back(Column(p.first + left, price + p.second));
                           study = Place(name, at);
                           // What a person does when a placement did not go through.
                           Charts().pressKey(widget, Qt::Key_Escape);
                           LS().clearTool();
                       },
                       [this] { return study != 0 && Has(study); }});
    }
    all.push_back({"drag a study point", [this] { PlaceLine(); Click(middle); pointsBefore = PointsOf(study); },
                   [this] { Drag(pa, pa + QPoint(0, 40)); },
                   [this] { return Has(study) && PointsOf(study)[0].value != pointsBefore[0].value; }});
    all.push_back({"drag a whole study", [this] { PlaceLine(); Click(middle); pointsBefore = PointsOf(study); },
                   [this] { Drag(middle, middle + QPoint(0, 40)); },
                   [this] { return Has(study) && PointsOf(study)[1].value != pointsBefore[1].value; }});
    all.push_back({"delete a study", [this] { PlaceLine(); Click(middle); },
                   [this] { Charts().pressKey(widget, Qt::Key_Delete); }, [this] { return !Has(study); }});
    all.push_back({"delete a line", [this] { before = Areas(); },
                   [this] { Charts().deleteLine(widget, 0); }, [this] { return Areas() < before; }});
    all.push_back({"close an area", [this] { before = Areas(); },
                   [this] { Charts().closeArea(widget, before - 1); }, [this] { return Areas() == before - 1; }});
    all.push_back({"zoom by a drag", [this] { before = Visible(); },
                   [this] {
                       // Across the middle two-fifths of the first area.
                       const int y = chart->height() / 6, w = chart->width();
                       Drag(QPoint(w * 3 / 10, y), QPoint(w * 7 / 10, y));
                   },
                   [this] { return Visible() < before; }});
    all.push_back({"zoom by the button", [this] { before = Visible(); },
                   [this] { Charts().toolButtons(widget)[0]->click(); }, [this] { return Visible() < before; }});
    all.push_back({"scroll",
                   [this] {
                       Charts().pressKey(widget, Qt::Key_End);
                       before = ScrollValue();
                   },
                   [this] { Charts().pressKey(widget, Qt::Key_Home); }, [this] { return ScrollValue() < before; }});
    all.push_back({"drop an instrument", [this] { before = Areas(); },
                   [this] { Charts().dragDrop(widget, host::drag::instrumentDrag("TTRC").get(), chart->rect().center()); },
                   [this] { return Areas() == before + 1; }});
    all.push_back({"drop a primitive", [this] { before = Areas(); },
                   [this] {
                       DropAt(*host::drag::primitiveDrag("TTRC", ChartType::PointAndFigure), chart->rect().center());
                   },
                   [this] { return Areas() == before + 1; }});
    all.push_back({"drop a study", [this] { before = int(LS().ids().size()); },
                   [this] {
                       DropAt(*host::drag::studyDrag("HLine"), Pixel(Column(100, price)));
                       LS().clearTool();
                   },
                   [this] { return int(LS().ids().size()) == before + 1; }});
    for (const char* kind : {"Tr0038Deal", "Tr0131SetOrdr"}) {
        all.push_back({std::string("trade: ") + kind, [this] { before = int(emulator->dealing().blotter().size()); },
                       [this, kind] {
                           std::string error;
                           Charts().chooseFromContextMenu(widget, Pixel(Column(100, price)), Path({"PF0019", kind}),
                                                          &error);
                       },
                       [this] { return int(emulator->dealing().blotter().size()) == before + 1; }});
    }
    all.push_back({"apply the property page", [this] { before = 0; },
                   [this] {
                       std::string error;
                       host::PropertyDialog* dialog = emulator->properties().open(widget, &error);
                       if (dialog) before = emulator->properties().setAndApply(dialog, "Free space positions", "9", &error);
                       emulator->properties().closeAll();
                   },
                   [this] { return before == 1; }});
    // Undo of each undoable step: the step is taken on a healthy host.
    const struct {
        const char* name;
        std::function<void()> step;
    } steps[] = {{"undo a line deletion",
                  [this] {
                      // The lowest area that shows figures (one restored while the host
                      // listed no data for it shows none).
                      QPoint at;
                      for (int i = Areas() - 1; i >= 0; --i)
                          if (Charts().figureIn(widget, i, &at)) {
                              Charts().deleteLine(widget, i);
                              break;
                          }
                  }},
                 {"undo an area close", [this] { Charts().closeArea(widget, 1); }},
                 {"undo a study move", [this] { PlaceLine(); Click(middle); Drag(middle, middle + QPoint(0, 40)); }},
                 {"undo a zoom", [this] { Charts().toolButtons(widget)[0]->click(); }}};
    for (const auto& s : steps) {
        const std::function<void()> step = s.step;
        all.push_back({s.name,
                       [this, step] {
                           step();
                           before = int(emulator->undo().records().size());
                       },
                       [this] { before = Undo() ? -1 : before; }, [this] { return before == -1; }});
    }
    all.push_back({"save a layout", [] {},
                   [this] {
                       QString why;
                       before = emulator->layouts().save(widget, folder.filePath("saved.xml"), &why) ? 1 : 0;
                   },
                   [this] { return before == 1; }});
    all.push_back({"load a layout",
                   [this] {
                       QString why;
                       PlaceLine();
                       ASSERT_TRUE(emulator->layouts().save(widget, folder.filePath("load.xml"), &why));
                   },
                   [this] {
                       QString why;
                       void* loaded = emulator->layouts().load(ChartType::PointAndFigure, folder.filePath("load.xml"), &why);
                       before = loaded ? 1 : 0;
                       if (loaded) Charts().destroy(loaded);
                   },
                   [this] { return before == 1; }});
    all.push_back({"print", [this] { emulator->dialogs().setPrinting(host::DialogAnswerer::Printing::Accept, folder.filePath("page.pdf")); },
                   [this] { before = Charts().print(widget); }, [this] { return before == 0; }});
    return all;
}

int FaultMatrix::RunMatrix(const Action& action) {
    SCOPED_TRACE(action.name);
    injector.reset(new FaultInjector(H()));
    const std::vector<std::string> extra = {"TTRC", "TTRC"};

    // The healthy action, the requests it makes and what it deletes.
    Fresh(extra);
    action.prepare();
    const Holdings held = HoldingsOf(widget, "before.xml");
    injector->Arm(0);
    action.act();
    injector->Disarm();
    EXPECT_TRUE(action.done()) << "the action does nothing on a healthy host";
    const Holdings deletes = Missing(held, HoldingsOf(widget, "healthy.xml"));
    const std::vector<unsigned int> healthy = injector->Requests();
    std::set<unsigned int> allowed(healthy.begin(), healthy.end());
    allowed.insert(kCleanUp.begin(), kCleanUp.end());
    // A work-data node the module could not read or open is made and written instead.
    const std::set<unsigned int> workData = {MSG_WD_OPEN, MSG_WD_SAVE, MSG_WD_CLEAR_NODE, MSG_WD_CREATE_NODE,
                                             MSG_WD_READ_PARAMS, MSG_WD_WRITE_PARAMS, MSG_WD_PARAM_LENGTHS,
                                             MSG_WD_PARAM_COUNT};
    const std::set<unsigned int> requests(healthy.begin(), healthy.end());

    // Each request failing, in the ways the host fails it.
    struct Fault {
        unsigned int message;
        int way;  // 0: answer 1 and fill nothing; 1: the provider's own failure
    };
    std::vector<Fault> faults;
    for (unsigned int m : requests) {
        faults.push_back({m, 0});
        if (m == MSG_LS_GET_LIST_CONTROLPOINTER || m == MSG_LS_CREATE_OBJECT) faults.push_back({m, 1});
    }
    for (const Fault& fault : faults) {
        SCOPED_TRACE("request " + std::to_string(fault.message) + (fault.way ? " (provider's failure)" : ""));
        Fresh(extra);
        action.prepare();
        const Holdings before = HoldingsOf(widget, "before.xml");
        if (fault.way == 1) {
            host::LineStudies::Faults f;
            f.errorFlag = fault.message == MSG_LS_GET_LIST_CONTROLPOINTER;
            f.zeroId = fault.message == MSG_LS_CREATE_OBJECT;
            LS().setFaults(f);
        }
        injector->Arm(fault.way == 0 ? fault.message : 0);
        try {
            action.act();
        } catch (...) {
            ADD_FAILURE() << "an exception left the module";
        }
        injector->Disarm();
        LS().setFaults(host::LineStudies::Faults());
        const bool workDataFailed = workData.count(fault.message) || fault.message == MSG_MAIN_WORK_FOLDER;
        for (unsigned int later : injector->AfterFailure())
            EXPECT_TRUE(allowed.count(later) || (workDataFailed && workData.count(later)))
                << "request " << later << " after the failure";
        // Nothing the action does not delete is gone.
        const Holdings lost = Missing(Missing(before, deletes), HoldingsOf(widget, "failed.xml"));
        EXPECT_TRUE(lost.empty()) << "lost: " << Join(lost);

        // The same action succeeds on a healthy host. (Before the layout check: the emulator's
        // submenus do not open in a window once another window has come and gone.)
        action.prepare();
        action.act();
        EXPECT_TRUE(action.done()) << "the window does not do the action again";

        // A layout saved now loads, with every line and study it holds.
        QString why;
        const Holdings saved = HoldingsOf(widget, "after.xml");
        void* loaded = emulator->layouts().load(ChartType::PointAndFigure, folder.filePath("after.xml"), &why);
        EXPECT_NE(loaded, nullptr) << why.toStdString();
        if (loaded) {
            // (The loaded window may hold more: data the host failed to give comes now.)
            const Holdings missing = Missing(saved, HoldingsOf(loaded, "loaded.xml"));
            EXPECT_TRUE(missing.empty()) << "not loaded: " << Join(missing);
            Charts().destroy(loaded);
        }
    }
    injector.reset();
    return int(faults.size());
}

}  // namespace

TEST_P(FaultMatrix, TheActionSurvivesEveryFailingRequest) {
    const std::vector<Action> actions = Actions();
    ASSERT_EQ(int(actions.size()), kActions);
    const Action& action = actions[std::size_t(GetParam())];
    const int cells = RunMatrix(action);
    std::printf("fault matrix: %s, %d cells\n", action.name.c_str(), cells);
}

INSTANTIATE_TEST_SUITE_P(Actions, FaultMatrix, ::testing::Range(0, kActions));
