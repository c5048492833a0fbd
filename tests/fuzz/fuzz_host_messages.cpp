// Plays a careless terminal against the real module, loaded with dlopen by the emulator.
//
// Each input sends a sequence of messages (HostMessages.h) to the kept chart windows of the
// three types and to windows it opens, mixed with what a person does meanwhile: windows
// opened, dropped on, resized, clicked, keyed, undone, saved and loaded, closed. While the
// module works, its requests to the host are answered by the emulator, carelessly
// (HostReplies.h).
//
// The module must neither crash nor trip a sanitizer. Messages that arrive with later work
// get one line in kMessages.
#include <iterator>

#include "HostReplies.h"

namespace {

using namespace fuzz;

// ---- what the person at the terminal does meanwhile ----

// The dear gestures (a window made or destroyed, which the next input makes again) lie
// inside the range, so that runs of 0x00 or 0xFF bytes, which pick its ends, choose cheap ones.
enum class Move { Key, Undo, Click, Create, Grab, Layout, Destroy, Drop, Replay };
const Move kMoves[] = {Move::Key,    Move::Undo,    Move::Click, Move::Create, Move::Grab,
                       Move::Layout, Move::Destroy, Move::Drop,  Move::Replay, Move::Undo};

void Gesture(FuzzedDataProvider& in) {
    host::ChartWindows& charts = g_emulator->charts();
    const std::vector<void*> windows = charts.widgets();
    void* const w = windows.empty() ? nullptr : windows[in.ConsumeIntegralInRange<std::size_t>(0, windows.size() - 1)];
    switch (kMoves[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kMoves) - 1)]) {
        case Move::Create:
            if (windows.size() < 6) charts.create(host::data::ChartType(in.ConsumeIntegralInRange<int>(0, 2)));
            break;
        case Move::Drop:
            if (w) charts.drop(w, {kInstrument});
            break;
        case Move::Replay:
            g_emulator->data().replay(kInstrument, in.ConsumeIntegralInRange<std::size_t>(1, 6));
            break;
        case Move::Grab:
            if (w) charts.grab(w, QSize(in.ConsumeIntegralInRange<int>(1, 900), in.ConsumeIntegralInRange<int>(1, 700)));
            break;
        case Move::Click:
            if (w) charts.click(w, QPoint(in.ConsumeIntegralInRange<int>(-5, 900), in.ConsumeIntegralInRange<int>(-5, 700)));
            break;
        case Move::Key:
            if (w) charts.pressKey(w, in.PickValueInArray({Qt::Key_Delete, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Left,
                                                           Qt::Key_Right, Qt::Key_Home, Qt::Key_End, Qt::Key_Escape}));
            break;
        case Move::Undo:
            g_emulator->undo().undo();
            break;
        case Move::Layout:
            if (w && g_emulator->layouts().save(w, g_layoutPath)) {
                host::data::ChartType type;
                if (g_emulator->layouts().typeOf(g_layoutPath, &type)) g_emulator->layouts().load(type, g_layoutPath);
            }
            break;
        case Move::Destroy:
            if (w && charts.destroy(w)) g_destroyed.push_back(w);
            break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    SetUp(argc, argv, "fuzz_host_messages");
    WrapReplies(g_emulator->host());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    Begin(in);
    for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
        if (in.ConsumeIntegralInRange<int>(0, 3) == 0)
            Unescaped("a gesture", [&] { Gesture(in); });
        else
            SendOne(in);
    }
    End();
    return 0;
}
