// What `pfhost chart` does to a drawn window before grabbing it: zooming with the tool bar,
// scrolling, closing areas, deleting lines, undoing. Every step is a gesture of the person at
// the terminal (ChartGestures.cpp) or the terminal's own undo; the module is reached only
// through its window and its entry points.
#include <QAbstractSlider>
#include <QToolButton>

#include "host/ChartWindows.h"
#include "host/Emulator.h"
#include "host/PropertyDialog.h"
#include "host/PropertyService.h"
#include "host/UndoStack.h"
#include "host/cli/ChartPicture.h"

namespace host {
namespace cli {

namespace {

using Action = ChartPicture::Action;

bool fail(std::string* error, const std::string& why) {
    *error = why;
    return false;
}

bool zoom(ChartWindows& charts, void* widget, bool in, std::string* error) {
    const QList<QToolButton*> buttons = charts.toolButtons(widget);
    if (buttons.size() < 2) return fail(error, "the window has no zoom buttons");
    buttons[in ? 0 : 1]->click();
    return true;
}

bool undo(Emulator& emulator, std::string* error) {
    const UndoStack::Undo u = emulator.undo().undo();
    if (!u.sent) return fail(error, "nothing to undo");
    const std::string what = "undo of \"" + u.record.title.toStdString() + "\": ";
    if (!u.replied)
        return fail(error, what + "the module answered 3140 with " + std::to_string(u.answer) + " and sent no 3141");
    if (u.result != 0) return fail(error, what + "the module answered 3141 with " + std::to_string(u.result));
    return true;
}

bool play(Emulator& emulator, void* widget, const Action& a, std::string* error) {
    ChartWindows& charts = emulator.charts();
    switch (a.kind) {
        case Action::ZoomIn:
        case Action::ZoomOut:
            return zoom(charts, widget, a.kind == Action::ZoomIn, error);
        case Action::Scroll: {
            QAbstractSlider* bar = charts.timeScrollBar(widget);
            if (!bar) return fail(error, "the window has no time scroll bar");
            bar->setValue(a.value);
            return true;
        }
        case Action::CloseArea:
            return charts.closeArea(widget, a.value, error);
        case Action::DeleteLine:
            return charts.deleteLine(widget, a.value, error);
        case Action::Undo:
            return undo(emulator, error);
    }
    return fail(error, "unknown action");
}

}  // namespace

bool ParseActions(const QStringList& args, std::vector<Action>* actions) {
    actions->clear();
    for (int i = 0; i < args.size(); ++i) {
        const QString& name = args[i];
        if (name == QLatin1String("--undo")) {
            actions->push_back(Action{Action::Undo, 0});
            continue;
        }
        const bool zoom = name == QLatin1String("--zoom");
        const bool scroll = name == QLatin1String("--scroll");
        const bool close = name == QLatin1String("--close-area");
        const bool remove = name == QLatin1String("--delete-line");
        if (!zoom && !scroll && !close && !remove) continue;
        if (i + 1 >= args.size()) return false;
        const QString value = args[++i];
        if (zoom) {
            if (value != QLatin1String("in") && value != QLatin1String("out")) return false;
            actions->push_back(Action{value == QLatin1String("in") ? Action::ZoomIn : Action::ZoomOut, 0});
            continue;
        }
        bool ok = false;
        const int number = value.toInt(&ok);
        if (!ok || number < 0) return false;
        actions->push_back(Action{scroll ? Action::Scroll : close ? Action::CloseArea : Action::DeleteLine, number});
    }
    return true;
}

bool PlayActions(Emulator& emulator, void* widget, const std::vector<Action>& actions, std::string* error) {
    static const char* const names[] = {"--zoom in", "--zoom out", "--scroll", "--close-area", "--delete-line",
                                        "--undo"};
    for (std::size_t i = 0; i < actions.size(); ++i) {
        if (play(emulator, widget, actions[i], error)) continue;
        *error = std::string(names[actions[i].kind]) + " (action " + std::to_string(i + 1) + "): " + *error;
        return false;
    }
    return true;
}

bool SetProperties(Emulator& emulator, void* widget, const ChartPicture& picture, std::string* error) {
    // The window takes its size first, so that empty chart space is where the picture has it.
    emulator.charts().grab(widget, picture.size);
    PropertyService& service = emulator.properties();
    PropertyDialog* dialog = service.open(widget, error);
    if (!dialog) {
        *error = "--property: " + *error;
        return false;
    }
    for (const auto& p : picture.properties) {
        if (service.setAndApply(dialog, p.first, p.second, error)) continue;
        *error = "--property \"" + (p.first + QLatin1Char('=') + p.second).toStdString() + "\": " + *error;
        dialog->close();
        return false;
    }
    dialog->close();
    return true;
}

std::string DescribeUndoStack(Emulator& emulator) {
    const QStringList titles = emulator.undo().titles();
    std::string out = "undo stack: " + std::to_string(titles.size()) + (titles.size() == 1 ? " step\n" : " steps\n");
    for (int i = titles.size(); i-- > 0;) out += "  " + titles[i].toStdString() + "\n";
    return out;
}

}  // namespace cli
}  // namespace host
