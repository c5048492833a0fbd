// A person at a careless terminal, with the real module loaded (dlopen) by the emulator.
//
// Each input drives the chart windows (a kept window of each type with the instrument, and
// any the input opens) with what a person does: mouse presses, moves, drags and releases
// with any buttons and modifiers, double clicks, wheel turns, keys, tool tips, choices from
// the context menu and its submenus, drags of instruments, primitives and line studies
// dropped on the window (or of bytes that are none of them), study tools chosen in the
// terminal (3500), the tool bar's buttons and the time scroll bar, property pages edited
// and applied. Meanwhile the terminal sends the messages the message fuzzer sends
// (HostMessages.h), undoes, replays quotes, resizes, prints, saves and loads layouts, opens
// and closes windows; and every request of the module may fail or be answered with random
// but well-formed content (HostReplies.h).
//
// The mouse goes anywhere over the window, or back near where it pressed before (a study's
// control point, a figure), so that what one press placed the next can grab.
//
// The module must neither crash, trip a sanitizer nor let an exception reach the event loop.
#include <QAbstractSlider>
#include <QContextMenuEvent>
#include <QMenu>
#include <QPointer>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QToolButton>
#include <QWheelEvent>
#include <iterator>

#include "HostReplies.h"
#include "host/DragData.h"
#include "host/PropertyDialog.h"
#include "host/ls/StudyGeometry.h"

namespace {

using namespace fuzz;

// Places the mouse pressed or released at lately, in the chart widget's coordinates.
std::vector<QPoint> g_recent;

void Remember(const QPoint& p) {
    if (g_recent.size() >= 8) g_recent.erase(g_recent.begin());
    g_recent.push_back(p);
}

void* AnyWindow(FuzzedDataProvider& in) {
    const std::vector<void*> windows = g_emulator->charts().widgets();
    return windows.empty() ? nullptr : windows[in.ConsumeIntegralInRange<std::size_t>(0, windows.size() - 1)];
}

QPoint Where(FuzzedDataProvider& in, const QWidget* chart) {
    if (!g_recent.empty() && in.ConsumeBool()) {
        const QPoint near = g_recent[in.ConsumeIntegralInRange<std::size_t>(0, g_recent.size() - 1)];
        return near + QPoint(in.ConsumeIntegralInRange<int>(-4, 4), in.ConsumeIntegralInRange<int>(-4, 4));
    }
    return QPoint(in.ConsumeIntegralInRange<int>(-8, chart->width() + 8), in.ConsumeIntegralInRange<int>(-8, chart->height() + 8));
}

Qt::KeyboardModifiers Modifiers(FuzzedDataProvider& in) {
    if (in.ConsumeBool()) return Qt::NoModifier;
    // Shift, Control, Alt, Meta and Keypad in any combination.
    return Qt::KeyboardModifiers(int(in.ConsumeIntegral<std::uint8_t>() & 0x1f) << 25);
}

Qt::MouseButton Button(FuzzedDataProvider& in) {
    return in.PickValueInArray({Qt::LeftButton, Qt::LeftButton, Qt::LeftButton, Qt::RightButton, Qt::MiddleButton,
                                Qt::BackButton});
}

// The events of one press, its moves and its release, delivered as Qt delivers them: the
// press to the deepest widget under the mouse, the moves and the release to the widget that
// took the press.
class Mouse {
public:
    Mouse(QWidget* chart, const QPoint& at) : chart_(chart), target_(chart->childAt(at) ? chart->childAt(at) : chart) {}

    bool Send(QEvent::Type type, const QPoint& at, Qt::MouseButton button, Qt::MouseButtons buttons,
              Qt::KeyboardModifiers modifiers) {
        if (!chart_ || !target_) return false;
        QMouseEvent event(type, target_->mapFrom(chart_, at), chart_->mapToGlobal(at), button, buttons, modifiers);
        QApplication::sendEvent(target_, &event);
        return chart_ && target_;
    }

private:
    QPointer<QWidget> chart_;
    QPointer<QWidget> target_;
};

// A press, a few moves with the button held (a drag), a release.
void PressDragRelease(FuzzedDataProvider& in, QWidget* chart) {
    const QPoint from = Where(in, chart);
    const Qt::MouseButton button = Button(in);
    const Qt::KeyboardModifiers modifiers = Modifiers(in);
    Mouse mouse(chart, from);
    Remember(from);
    if (!mouse.Send(QEvent::MouseButtonPress, from, button, button, modifiers)) return;
    QPoint at = from;
    for (int i = in.ConsumeIntegralInRange<int>(0, 6); i > 0; --i) {
        at = in.ConsumeBool() ? Where(in, chart)
                              : at + QPoint(in.ConsumeIntegralInRange<int>(-40, 40), in.ConsumeIntegralInRange<int>(-40, 40));
        if (!mouse.Send(QEvent::MouseMove, at, Qt::NoButton, button, modifiers)) return;
    }
    Remember(at);
    mouse.Send(QEvent::MouseButtonRelease, at, button, Qt::NoButton, modifiers);
}

// Qt's order for a double click: press, release, double click, release.
void DoubleClick(FuzzedDataProvider& in, QWidget* chart) {
    const QPoint at = Where(in, chart);
    const Qt::MouseButton button = in.ConsumeBool() ? Qt::LeftButton : Button(in);
    const Qt::KeyboardModifiers modifiers = Modifiers(in);
    Mouse mouse(chart, at);
    Remember(at);
    mouse.Send(QEvent::MouseButtonPress, at, button, button, modifiers) &&
        mouse.Send(QEvent::MouseButtonRelease, at, button, Qt::NoButton, modifiers) &&
        mouse.Send(QEvent::MouseButtonDblClick, at, button, button, modifiers) &&
        mouse.Send(QEvent::MouseButtonRelease, at, button, Qt::NoButton, modifiers);
}

// The mouse moved over the window with no button held (the rubber band of a study being
// placed follows it).
void Hover(FuzzedDataProvider& in, QWidget* chart) {
    for (int i = in.ConsumeIntegralInRange<int>(1, 4); i > 0 && chart; --i) {
        const QPoint at = Where(in, chart);
        Mouse(chart, at).Send(QEvent::MouseMove, at, Qt::NoButton, Qt::NoButton, Modifiers(in));
    }
}

void Wheel(FuzzedDataProvider& in, QWidget* chart) {
    const QPoint at = Where(in, chart);
    QWidget* target = chart->childAt(at) ? chart->childAt(at) : chart;
    const int delta = in.ConsumeBool() ? 120 * in.ConsumeIntegralInRange<int>(-3, 3) : in.ConsumeIntegral<std::int32_t>();
    const QPoint angle = in.ConsumeBool() ? QPoint(0, delta) : QPoint(delta, in.ConsumeIntegralInRange<int>(-240, 240));
    QWheelEvent event(QPointF(target->mapFrom(chart, at)), QPointF(chart->mapToGlobal(at)), QPoint(), angle,
                      Qt::NoButton, Modifiers(in), Qt::NoScrollPhase, false);
    QApplication::sendEvent(target, &event);
}

void Key(FuzzedDataProvider& in, void* w) {
    const int key = in.ConsumeIntegralInRange<int>(0, 15) == 0
                        ? in.ConsumeIntegral<std::int32_t>()
                        : in.PickValueInArray({int(Qt::Key_Delete), int(Qt::Key_Escape), int(Qt::Key_Left), int(Qt::Key_Right),
                                               int(Qt::Key_Up), int(Qt::Key_Down), int(Qt::Key_Home), int(Qt::Key_End),
                                               int(Qt::Key_PageUp), int(Qt::Key_PageDown), int(Qt::Key_Plus),
                                               int(Qt::Key_Minus), int(Qt::Key_Equal), int(Qt::Key_Return),
                                               int(Qt::Key_Backspace), int(Qt::Key_Space), int(Qt::Key_Tab),
                                               int(Qt::Key_Z), int(Qt::Key_A), int(Qt::Key_F1)});
    g_emulator->charts().pressKey(w, key, Modifiers(in));
}

// Every popup closed (a popup that refuses is hidden).
void ClosePopups() {
    for (int i = 0; i < 16 && QApplication::activePopupWidget(); ++i) {
        QWidget* popup = QApplication::activePopupWidget();
        if (!popup->close()) popup->hide();
    }
}

// A right click at a point opens the context menu (on the release, as on the terminal);
// a walk through it, its submenus hovered open, ends at an action chosen with Return.
void MenuChoice(FuzzedDataProvider& in, QWidget* chart) {
    const QPoint at = Where(in, chart);
    Mouse mouse(chart, at);
    const Qt::KeyboardModifiers modifiers = Modifiers(in);
    if (!mouse.Send(QEvent::MouseButtonPress, at, Qt::RightButton, Qt::RightButton, modifiers) ||
        !mouse.Send(QEvent::MouseButtonRelease, at, Qt::RightButton, Qt::NoButton, modifiers))
        return;
    if (!QApplication::activePopupWidget()) {
        QWidget* target = chart->childAt(at) ? chart->childAt(at) : chart;
        QContextMenuEvent event(QContextMenuEvent::Mouse, target->mapFrom(chart, at), chart->mapToGlobal(at), modifiers);
        QApplication::sendEvent(target, &event);
    }
    QPointer<QMenu> menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    for (int depth = 0; menu && depth < 4; ++depth) {
        QList<QAction*> actions;
        for (QAction* a : menu->actions())
            if (!a->isSeparator() && a->isVisible()) actions << a;
        if (actions.isEmpty()) break;
        QAction* a = actions[int(in.ConsumeIntegralInRange<std::size_t>(0, std::size_t(actions.size()) - 1))];
        menu->setActiveAction(a);
        if (!menu) break;
        if (a->menu()) {
            // Hovering opens the submenu when it can open (a disabled one stays shut); the
            // mouse cannot go into a menu that is not shown.
            if (!a->menu()->isVisible()) break;
            menu = a->menu();
            continue;
        }
        QKeyEvent key(QEvent::KeyPress, Qt::Key_Return, Qt::NoModifier);
        QApplication::sendEvent(menu, &key);
        break;
    }
    ClosePopups();
}

// What a drag from the terminal carries: an instrument, a primitive, a study tool, or bytes.
std::unique_ptr<QMimeData> DragData(FuzzedDataProvider& in) {
    const std::vector<std::string> studies = host::ls::studyNames();
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0: return host::drag::instrumentDrag(in.ConsumeBool() ? kInstrument : "NOPE");
        case 1: return host::drag::primitiveDrag(kInstrument, host::data::ChartType(in.ConsumeIntegralInRange<int>(0, 2)));
        case 2:
        case 3: return host::drag::studyDrag(studies[in.ConsumeIntegralInRange<std::size_t>(0, studies.size() - 1)]);
        default: {
            std::unique_ptr<QMimeData> mime(new QMimeData);
            const std::string bytes = in.ConsumeRandomLengthString(64);
            mime->setData(QLatin1String(in.ConsumeBool() ? host::drag::kInstrumentType : host::drag::kPrimitiveType),
                          QByteArray(bytes.data(), int(bytes.size())));
            return mime;
        }
    }
}

void Drop(FuzzedDataProvider& in, void* w, QWidget* chart) {
    const std::unique_ptr<QMimeData> mime = DragData(in);
    const QPoint at = Where(in, chart);
    Remember(at);
    g_emulator->charts().dragDrop(w, mime.get(), at,
                                  in.PickValueInArray({Qt::CopyAction, Qt::MoveAction, Qt::LinkAction}));
}

// A study tool chosen in the terminal (the chart hears of it with 3500), or put down.
void Tool(FuzzedDataProvider& in) {
    if (in.ConsumeIntegralInRange<int>(0, 3) == 0) {
        g_emulator->studies().clearTool();
        return;
    }
    const std::vector<std::string> studies = host::ls::studyNames();
    g_emulator->studies().chooseTool(studies[in.ConsumeIntegralInRange<std::size_t>(0, studies.size() - 1)],
                                     in.ConsumeIntegral<std::uint32_t>());
}

// An entry of the open property dialog set to some text and applied, or the dialog closed.
void PropertyPage(FuzzedDataProvider& in) {
    host::PropertyDialog* dialog = g_emulator->properties().current();
    if (!dialog) return;
    if (in.ConsumeIntegralInRange<int>(0, 7) == 0) {
        dialog->close();
        return;
    }
    const QStringList entries = dialog->entries();
    for (int i = in.ConsumeIntegralInRange<int>(1, 3); i > 0 && !entries.isEmpty(); --i) {
        const QString& entry = entries[int(in.ConsumeIntegralInRange<std::size_t>(0, std::size_t(entries.size()) - 1))];
        const QString text = in.ConsumeBool()
                                 ? QString::fromLatin1(in.PickValueInArray({"0", "1", "-1", "8", "2", "100000", "0.001",
                                                                            "1e308", "yes", "no", "red", "#ff0000",
                                                                            "Sans,12,bold", "2030-01-01T00:00:00Z", ""}))
                                 : QString::fromStdString(in.ConsumeRandomLengthString(16));
        dialog->setValue(entry, text);
    }
    dialog->apply();
}

// The tool bar's buttons clicked, the time scroll bar and the zoom slider moved.
void Controls(FuzzedDataProvider& in, void* w, QWidget* chart) {
    if (in.ConsumeBool()) {
        const QList<QToolButton*> buttons = g_emulator->charts().toolButtons(w);
        if (!buttons.isEmpty()) buttons[int(in.ConsumeIntegralInRange<std::size_t>(0, std::size_t(buttons.size()) - 1))]->click();
        return;
    }
    const QList<QAbstractSlider*> sliders = chart->findChildren<QAbstractSlider*>();
    if (sliders.isEmpty()) return;
    QAbstractSlider* s = sliders[int(in.ConsumeIntegralInRange<std::size_t>(0, std::size_t(sliders.size()) - 1))];
    if (in.ConsumeBool())
        s->triggerAction(in.PickValueInArray({QAbstractSlider::SliderSingleStepAdd, QAbstractSlider::SliderSingleStepSub,
                                              QAbstractSlider::SliderPageStepAdd, QAbstractSlider::SliderPageStepSub,
                                              QAbstractSlider::SliderToMinimum, QAbstractSlider::SliderToMaximum}));
    else
        s->setValue(in.ConsumeIntegralInRange<int>(s->minimum() - 2, s->maximum() + 2));
}

// What the terminal does meanwhile, the cheap things more often than the dear ones. The
// dear ones lie inside the range, so that runs of 0x00 or 0xFF bytes, which mutations make
// often and which pick an end of every range, choose cheap ones.
enum class Job { Undo, Replay, ToolTip, Grab, Drop, Destroy, Create, Layout, Print };
const Job kJobs[] = {Job::Undo,    Job::Undo,    Job::Undo,   Job::Undo,    Job::Undo,    Job::Replay,  Job::Replay,
                     Job::Replay,  Job::ToolTip, Job::ToolTip, Job::Grab,   Job::Grab,    Job::Grab,    Job::Destroy,
                     Job::Destroy, Job::Print,   Job::Layout,  Job::Layout, Job::Create,  Job::Create,  Job::Drop,
                     Job::Drop,    Job::ToolTip, Job::ToolTip, Job::Replay, Job::Replay,  Job::Replay,  Job::Undo,
                     Job::Undo,    Job::Undo,    Job::Undo,    Job::Undo};

void Terminal(FuzzedDataProvider& in, void* w) {
    host::ChartWindows& charts = g_emulator->charts();
    const Job job = kJobs[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kJobs) - 1)];
    switch (job) {
        case Job::Undo:
            g_emulator->undo().undo();
            break;
        case Job::Replay:
            g_emulator->data().replay(kInstrument, in.ConsumeIntegralInRange<std::size_t>(1, 6));
            break;
        case Job::ToolTip:
            if (QWidget* chart = charts.chartWidget(w)) charts.toolTipAt(w, Where(in, chart));
            break;
        case Job::Grab:
            charts.grab(w, QSize(in.ConsumeIntegralInRange<int>(1, 900), in.ConsumeIntegralInRange<int>(1, 700)));
            break;
        case Job::Drop:
            charts.drop(w, {kInstrument});
            break;
        case Job::Destroy:
            if (charts.destroy(w)) g_destroyed.push_back(w);
            break;
        case Job::Create:
            if (charts.widgets().size() < 6) {
                void* made = charts.create(host::data::ChartType(in.ConsumeIntegralInRange<int>(0, 2)));
                if (made && in.ConsumeBool()) charts.drop(made, {kInstrument});
            }
            break;
        case Job::Layout:
            if (g_emulator->layouts().save(w, g_layoutPath)) {
                host::data::ChartType type;
                if (g_emulator->layouts().typeOf(g_layoutPath, &type)) g_emulator->layouts().load(type, g_layoutPath);
            }
            break;
        case Job::Print:
            charts.print(w);
            break;
    }
}

// What a step does, by weight: the mouse most of the time; the terminal's heavier work
// (layouts, printing, new windows) now and then, so that an input stays cheap.
// The heavier acts lie inside the range, as above; the first and the last are cheap.
enum class Act { Press, DoubleClick, Hover, Wheel, Key, Menu, Drop, Controls, Property, Tool, Message, Terminal };
const std::pair<Act, int> kActs[] = {{Act::Press, 20},   {Act::Wheel, 4},   {Act::Key, 5},      {Act::DoubleClick, 4},
                                     {Act::Menu, 2},     {Act::Drop, 4},    {Act::Terminal, 3}, {Act::Controls, 4},
                                     {Act::Property, 3}, {Act::Message, 5}, {Act::Tool, 4},     {Act::Hover, 6}};

Act Pick(FuzzedDataProvider& in) {
    int total = 0;
    for (const auto& a : kActs) total += a.second;
    int at = in.ConsumeIntegralInRange<int>(0, total - 1);
    for (const auto& a : kActs) {
        if (at < a.second) return a.first;
        at -= a.second;
    }
    return Act::Press;
}


void Step(FuzzedDataProvider& in) {
    const Act act = Pick(in);
    if (act == Act::Message) return SendOne(in);
    if (act == Act::Tool) return Tool(in);
    if (act == Act::Property) return PropertyPage(in);
    void* const w = AnyWindow(in);
    QWidget* const chart = w ? g_emulator->charts().chartWidget(w) : nullptr;
    if (!chart) return;
    switch (act) {
        case Act::Press: PressDragRelease(in, chart); break;
        case Act::DoubleClick: DoubleClick(in, chart); break;
        case Act::Hover: Hover(in, chart); break;
        case Act::Wheel: Wheel(in, chart); break;
        case Act::Key: Key(in, w); break;
        case Act::Menu: MenuChoice(in, chart); break;
        case Act::Drop: Drop(in, w, chart); break;
        case Act::Controls: Controls(in, w, chart); break;
        default: Terminal(in, w); break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    SetUp(argc, argv, "fuzz_chart_input");
    WrapReplies(g_emulator->host());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    Begin(in);
    g_recent.clear();
    // Sixteen steps at most: the kept windows carry what an input did into the next, so
    // longer sequences form across inputs, and short inputs reach as much in a minute as
    // twice as long ones (measured: cov 16.7-17.0k against 16.1-16.9k in 60 s).
    for (int step = 0; step < 16 && in.remaining_bytes() > 0; ++step) {
        Unescaped("a step", [&] { Step(in); });
        // What the steps posted (repaints, deferred deletes, timers due) runs as the event
        // loop would run it between a person's actions.
        if (in.ConsumeIntegralInRange<int>(0, 7) == 0) Unescaped("the event loop", [] { QApplication::processEvents(); });
    }
    End();
    return 0;
}
