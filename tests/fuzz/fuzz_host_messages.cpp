// Plays a careless terminal against the real module, loaded with dlopen by the emulator.
//
// Each input opens chart windows and then sends a sequence of messages: every number of
// the module's switch and of the chart type interfaces' table, to the module, to any of
// the three interfaces, to a chart widget or to an address nobody owns. Records are random
// bytes placed inside an arena this program owns; the pointers inside them point into the
// arena or are null, and widget handles are live, already destroyed or invented. While the
// module works, its requests to the host are answered by the emulator, but each answer may
// be refused, or filled and then called "not handled", or carry a count of any size (the
// list asked for next holds what the host has), or carry random content: prices of the data
// point arrays (NaN, infinities, anything), work-data values and names, study titles, the
// handle of a document opened by path. Every reply keeps the record's form:
// buffers stay within their stated sizes and texts stay terminated.
//
// The module must neither crash nor trip a sanitizer. Messages that arrive with later work
// get one line in kMessages.
#include <fuzzer/FuzzedDataProvider.h>

#include <QApplication>
#include <QDir>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <deque>
#include <limits>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "host/ChartLayouts.h"
#include "host/ChartWindows.h"
#include "host/CoreServices.h"
#include "host/DataCore.h"
#include "host/DialogAnswerer.h"
#include "host/Emulator.h"
#include "host/UndoStack.h"

namespace {

constexpr std::size_t kArenaSize = 1 << 17;
alignas(16) unsigned char g_arena[kArenaSize];

host::Emulator* g_emulator = nullptr;
FuzzedDataProvider* g_input = nullptr;  // set while one input runs
std::vector<QWidget*> g_containers;     // parents the fuzzer offers to 5003
QString g_layoutPath;
const char* const kInstrument = "FZ";

struct Window {
    void* widget;
    void* iface;
};
std::vector<Window> g_ownWindows;        // made by 5003 from the fuzzer's records
std::vector<void*> g_destroyed;          // widget addresses that were live once

void* Iface(int type) { return g_emulator->core().componentObject(type == 0 ? "Points and Figures" : type == 1 ? "Renko" : "Kagi"); }

std::vector<void*> LiveWidgets() {
    std::vector<void*> out = g_emulator->charts().widgets();
    for (const Window& w : g_ownWindows) out.push_back(w.widget);
    return out;
}

// ---- the pieces of a message ----

// A place in the arena with room for `size` bytes, filled from the input.
unsigned char* Record(FuzzedDataProvider& in, std::size_t size) {
    size = std::min(size, kArenaSize);
    const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, kArenaSize - size);
    unsigned char* p = g_arena + at;
    const std::vector<unsigned char> bytes = in.ConsumeBytes<unsigned char>(in.ConsumeIntegralInRange<std::size_t>(0, size));
    std::memset(p, in.ConsumeIntegral<unsigned char>(), size);
    if (!bytes.empty()) std::memcpy(p, bytes.data(), bytes.size());
    return p;
}

// A pointer into the arena with `extent` bytes behind it, or null.
void* ArenaPointer(FuzzedDataProvider& in, std::size_t extent) {
    if (in.ConsumeIntegralInRange<int>(0, 7) == 0) return nullptr;
    return Record(in, extent);
}

std::size_t Room(const void* p) {
    return p ? kArenaSize - std::size_t(static_cast<const unsigned char*>(p) - g_arena) : 0;
}

// A widget handle: live, destroyed, invented, an interface, or null.
void* WidgetHandle(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 7)) {
        case 0: return nullptr;
        case 1:
            if (!g_destroyed.empty()) return g_destroyed[in.ConsumeIntegralInRange<std::size_t>(0, g_destroyed.size() - 1)];
            return nullptr;
        case 2: return reinterpret_cast<void*>(in.ConsumeIntegral<std::uintptr_t>());
        case 3: return Iface(in.ConsumeIntegralInRange<int>(0, 2));
        case 4: return g_arena + in.ConsumeIntegralInRange<std::size_t>(0, kArenaSize - 64);
        default: {
            const std::vector<void*> live = LiveWidgets();
            if (live.empty()) return nullptr;
            return live[in.ConsumeIntegralInRange<std::size_t>(0, live.size() - 1)];
        }
    }
}

// A handle of the host's: one of the small integers it hands out, or anything.
std::uintptr_t HostHandle(FuzzedDataProvider& in) {
    if (in.ConsumeBool()) return 0x1000 + in.ConsumeIntegralInRange<std::uintptr_t>(0, 0x400);
    return in.ConsumeIntegral<std::uint32_t>();
}

template <typename T>
void Put(unsigned char* record, std::size_t offset, T value) {
    std::memcpy(record + offset, &value, sizeof value);
}

// ---- the messages ----

// What one message carries: p1 and p2 are made by `make`, which may patch the record it
// placed (pointers into the arena, widget handles, counts that fit their buffers).
struct Message {
    unsigned int number;
    void (*make)(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2);
};

std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

// A record of `size` bytes or null; nothing inside it is a pointer.
template <std::size_t size>
void PlainRecord(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = in.ConsumeIntegralInRange<int>(0, 7) ? P(Record(in, size)) : 0;
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

void Values(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = in.ConsumeIntegral<std::int32_t>();
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

void WidgetParam(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = P(WidgetHandle(in));
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

void UnicodeName(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcNameCompUnicode)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    void* icon = ArenaPointer(in, 256);
    Put(r, offsetof(fxwcNameCompUnicode, iconBuffer), icon);
    const std::int32_t room = std::int32_t(std::min<std::size_t>(Room(icon), 1 << 16));
    Put(r, offsetof(fxwcNameCompUnicode, iconSize), in.ConsumeIntegralInRange<std::int32_t>(-8, room));
}

void Create(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(CREATEWINDOWCOMPONENT)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    // Parents are the fuzzer's own containers (or none): a window id the terminal gives is
    // always one of its live windows.
    const std::size_t pick = in.ConsumeIntegralInRange<std::size_t>(0, g_containers.size());
    const std::intptr_t id = pick ? std::intptr_t(g_containers[pick - 1]->winId()) : 0;
    Put(r, offsetof(CREATEWINDOWCOMPONENT, parentWindowId), static_cast<std::int32_t>(id));
    Put(r, offsetof(CREATEWINDOWCOMPONENT, secondWindowId), std::int32_t(0));
    Put(r, offsetof(CREATEWINDOWCOMPONENT, widget), static_cast<void*>(nullptr));
}

void PanelStatus(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcPanelTarget)) : nullptr;
    if (r) Put(r, offsetof(fxwcPanelTarget, widget), WidgetHandle(in));
    *p1 = P(r);
    *p2 = in.ConsumeIntegralInRange<int>(0, 7) ? P(Record(in, sizeof(fxwcPanelStatus))) : 0;
}

void SaveLoad(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = P(WidgetHandle(in));
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreSzNode)) : nullptr;
    if (r) {
        Put(r, offsetof(coreSzNode, document), std::uint32_t(HostHandle(in)));
        Put(r, offsetof(coreSzNode, document2), std::uint32_t(HostHandle(in)));
        Put(r, offsetof(coreSzNode, node), std::uint32_t(HostHandle(in)));
    }
    *p2 = P(r);
}

void DataUpdated(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreCoreUpdateDpaData)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    Put(r, offsetof(coreCoreUpdateDpaData, provider), reinterpret_cast<void*>(HostHandle(in)));
    Put(r, offsetof(coreCoreUpdateDpaData, handle), reinterpret_cast<void*>(HostHandle(in)));
    Put(r, offsetof(coreCoreUpdateDpaData, subscriber), WidgetHandle(in));
}

void Drop(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = P(WidgetHandle(in));
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcDropList)) : nullptr;
    *p2 = P(r);
    if (!r) return;
    const std::int32_t count = in.ConsumeIntegralInRange<std::int32_t>(-2, 66);
    const std::size_t records = std::size_t(std::max(count, 0));
    unsigned char* list = static_cast<unsigned char*>(ArenaPointer(in, std::max<std::size_t>(records, 1) * sizeof(fxwcDropInstrument)));
    for (std::size_t i = 0; list && i < records; ++i) {
        unsigned char* one = list + i * sizeof(fxwcDropInstrument);
        if (in.ConsumeBool()) {
            // An instrument the data core has, with a random period now and then.
            fxwcDropInstrument record;
            if (g_emulator->charts().dropRecord(kInstrument, std::nullopt, &record)) {
                if (in.ConsumeBool()) {
                    record.periodType = in.PickValueInArray({0, int('I'), int('D'), int('W'), int('M'), int('Y'), int('x')});
                    record.periodLength = in.ConsumeIntegralInRange<std::int32_t>(-2, 1500);
                }
                if (in.ConsumeBool()) record.style = in.ConsumeIntegralInRange<std::int32_t>(-1, 3);
                std::memcpy(one, &record, sizeof record);
            }
        } else {
            Put(one, offsetof(fxwcDropInstrument, baseHandle), reinterpret_cast<void*>(HostHandle(in)));
        }
    }
    Put(r, offsetof(fxwcDropList, count), count);
    Put(r, offsetof(fxwcDropList, records), static_cast<void*>(list));
}

void Owner(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcGetOwnerForObj)) : nullptr;
    if (r) Put(r, offsetof(fxwcGetOwnerForObj, object), in.ConsumeBool() ? WidgetHandle(in) : reinterpret_cast<void*>(HostHandle(in)));
    *p1 = P(r);
    *p2 = 0;
}

void Caption(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcGetCaption)) : nullptr;
    // The terminal's title buffer holds FXWC_CAPTION_UNITS units.
    void* reply = ArenaPointer(in, 2 * FXWC_CAPTION_UNITS);
    if (r) Put(r, offsetof(fxwcGetCaption, widget), WidgetHandle(in));
    *p1 = P(r);
    *p2 = P(reply);
}

void Property(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(PROPERTY_CHANGE)) : nullptr;
    if (r) {
        Put(r, offsetof(PROPERTY_CHANGE, page), ArenaPointer(in, 4096));
        Put(r, offsetof(PROPERTY_CHANGE, widget), WidgetHandle(in));
    }
    *p1 = P(r);
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

void Event(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(FXEvent)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    void* sender = in.ConsumeBool() ? Iface(in.ConsumeIntegralInRange<int>(0, 2)) : reinterpret_cast<void*>(HostHandle(in));
    Put(r, offsetof(FXEvent, sender), sender);
    Put(r, offsetof(FXEvent, code),
        in.ConsumeBool() ? in.PickValueInArray({16002, 16003, 16048}) : in.ConsumeIntegral<std::int32_t>());
    Put(r, offsetof(FXEvent, payloadCount), in.ConsumeIntegralInRange<std::int32_t>(-2, 4));
    unsigned char* payload = static_cast<unsigned char*>(ArenaPointer(in, sizeof(fxdDealAccount)));
    // The payload names a deal interface the host has, now and then.
    if (payload && in.ConsumeBool()) {
        const std::vector<host::Host::Interface> deals = g_emulator->host().findInterfaces("DEALING", "", "");
        if (!deals.empty()) Put(payload, 0, deals[in.ConsumeIntegralInRange<std::size_t>(0, deals.size() - 1)].handle);
    }
    Put(r, offsetof(FXEvent, payload), static_cast<void*>(payload));
}

void Undo(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreUndoStart)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    Put(r, offsetof(coreUndoStart, document), std::uint32_t(HostHandle(in)));
    Put(r, offsetof(coreUndoStart, node), std::uint32_t(HostHandle(in)));
    Put(r, offsetof(coreUndoStart, widget), WidgetHandle(in));
}

void ConvertList(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, 4 + 8 * 64) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    // The list has room for its entries and one more.
    if (r) Put(r, 0, in.ConsumeIntegralInRange<std::int32_t>(-3, 63));
}

void LsUpdate(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreUpdateLs)) : nullptr;
    if (r) Put(r, offsetof(coreUpdateLs, dataArray), reinterpret_cast<void*>(HostHandle(in)));
    *p1 = P(r);
    *p2 = P(WidgetHandle(in));
}

// 3560: the path of a skin document, NUL-terminated UTF-16: the example skin, an empty path,
// a file that is no skin, a missing one, random units, or a text without a terminator.
void SkinPath(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p2 = 0;
    *p1 = 0;
    const int kind = in.ConsumeIntegralInRange<int>(0, 6);
    if (kind == 0) return;
    // Room for the longest path the module reads, 255 units.
    unsigned char* r = Record(in, 2 * 256);
    *p1 = P(r);
    QString path;
    switch (kind) {
        case 1: path = QStringLiteral(PF_EXAMPLES_DIR "/skins/dark/dark.xml"); break;
        case 2: break;
        case 3: path = QStringLiteral(PF_EXAMPLES_DIR "/ttrc-daily.csv"); break;
        case 4: path = QStringLiteral(PF_EXAMPLES_DIR "/skins/none.xml"); break;
        case 5: {
            const std::size_t units = in.ConsumeIntegralInRange<std::size_t>(0, 254);
            for (std::size_t i = 0; i < units; ++i) path += QChar(in.ConsumeIntegralInRange<ushort>(1, 0xffff));
            break;
        }
        default:
            // 255 units and no terminator among them.
            for (std::size_t i = 0; i < 256; ++i) Put(r, 2 * i, in.ConsumeIntegralInRange<std::uint16_t>(1, 0xffff));
            return;
    }
    path.truncate(254);
    std::memcpy(r, path.utf16(), 2 * std::size_t(path.size()));
    Put(r, 2 * std::size_t(path.size()), std::uint16_t(0));
}

// Every message the terminal sends to the module or a chart type interface.
const Message kMessages[] = {
    {MSG_SETUP, Values},
    {MSG_REGISTER, Values},
    {MSG_DEALING_READY, Values},
    {MSG_LS_UPDATE, LsUpdate},
    {MSG_EVENT, Event},
    {MSG_UNDO_REQUEST, Undo},
    {MSG_CONVERT_TO_TYPE, Values},
    {MSG_NEED_TO_CONVERT, ConvertList},
    {MSG_WC_NAME, PlainRecord<sizeof(nameComponent)>},
    {MSG_WC_UNICODE_NAME, UnicodeName},
    {MSG_WC_QUERY, PlainRecord<4>},
    {MSG_WC_CREATE, Create},
    {MSG_WC_DESTROY, WidgetParam},
    {MSG_WC_RESIZE, WidgetParam},
    {MSG_WC_SHOW, WidgetParam},
    {MSG_WC_PRINT, WidgetParam},
    {MSG_PANEL_STATUS, PanelStatus},
    {MSG_LOAD_CHART, SaveLoad},
    {MSG_SAVE_CHART, SaveLoad},
    {MSG_DATA_UPDATED, DataUpdated},
    {MSG_WC_DROP_INSTRUMENTS, Drop},
    {MSG_WC_OWNER_FOR_OBJECT, Owner},
    {MSG_WC_CAPTION, Caption},
    {MSG_APPLY_PROPERTY, Property},
    {MSG_LOAD_SKIN, SkinPath},
};

void* Target(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0: return nullptr;
        case 1: return g_emulator->host().coreHandle();
        case 2: return WidgetHandle(in);
        default: return Iface(in.ConsumeIntegralInRange<int>(0, 2));
    }
}

void SendOne(FuzzedDataProvider& in) {
    std::intptr_t p1 = 0, p2 = 0;
    unsigned int number;
    if (in.ConsumeIntegralInRange<int>(0, 15) == 0) {
        // A number neither side knows.
        number = in.ConsumeIntegral<std::uint16_t>();
        p1 = P(ArenaPointer(in, 4096));
        p2 = P(ArenaPointer(in, 4096));
    } else {
        const Message& m = kMessages[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kMessages) - 1)];
        number = m.number;
        m.make(in, &p1, &p2);
    }
    void* const target = Target(in);
    // Destroying makes the widget's address a stale one; windows it makes are tracked.
    const std::vector<void*> before = LiveWidgets();
    g_emulator->host().send(target, number, p1, p2);
    if (number == MSG_WC_CREATE && p1) {
        void* made = nullptr;
        std::memcpy(&made, reinterpret_cast<unsigned char*>(p1) + offsetof(CREATEWINDOWCOMPONENT, widget), sizeof made);
        if (made && std::find(before.begin(), before.end(), made) == before.end()) g_ownWindows.push_back({made, target});
    }
    if (number == MSG_WC_DESTROY) {
        for (auto it = g_ownWindows.begin(); it != g_ownWindows.end(); ++it)
            if (it->widget == reinterpret_cast<void*>(p1) && it->iface == target) {
                g_destroyed.push_back(it->widget);
                g_ownWindows.erase(it);
                break;
            }
    }
}

// ---- the terminal's replies ----

// Messages whose answer carries a count, and where it is.
std::int32_t* CountOf(unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    switch (message) {
        case MSG_COUNT_INTERFACES:
        case MSG_DPA_COUNT:
            return reinterpret_cast<std::int32_t*>(p2);
        case MSG_DEAL_ACCOUNT_COUNT:
        case MSG_LANGUAGE_COUNT:
            return reinterpret_cast<std::int32_t*>(p1);
        case MSG_DEAL_DAYOFF_COUNT:
            return reinterpret_cast<std::int32_t*>(p2);
        default:
            return nullptr;
    }
}

// Copies of the host's data point arrays with random prices, handed out in place of the
// originals; they live until the input's windows are gone.
std::deque<std::pair<fxDataPointArray, std::vector<unsigned char>>> g_arrayCopies;
const std::size_t kMaxArrayCopies = 32;

float RandomPrice(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0: return std::numeric_limits<float>::quiet_NaN();
        case 1: return in.ConsumeBool() ? std::numeric_limits<float>::infinity() : -std::numeric_limits<float>::infinity();
        case 2: return 0.0f;
        case 3: return in.ConsumeFloatingPoint<float>();
        default: return in.ConsumeFloatingPointInRange<float>(-2.0f, 4.0f);
    }
}

// The array list of 3042 with its first array replaced by a copy whose points have random
// words (prices, times, types) here and there.
void RandomPrices(FuzzedDataProvider& in, std::intptr_t p2) {
    coreListCreateData* list = reinterpret_cast<coreListCreateData*>(p2);
    if (!list || list->count < 1 || !list->arrays || !list->arrays[0] || g_arrayCopies.size() >= kMaxArrayCopies) return;
    const fxDataPointArray& original = *list->arrays[0];
    if (original.pointSize < 4 || original.pointCount < 0 || !original.points) return;
    const std::size_t bytes = std::size_t(original.pointSize) * std::size_t(original.pointCount);
    if (bytes > (1u << 20)) return;
    g_arrayCopies.emplace_back(original, std::vector<unsigned char>(original.points, original.points + bytes));
    auto& copy = g_arrayCopies.back();
    const std::size_t words = bytes / 4;
    for (int i = in.ConsumeIntegralInRange<int>(1, 8); i > 0 && words; --i) {
        const std::size_t at = 4 * in.ConsumeIntegralInRange<std::size_t>(0, words - 1);
        if (in.ConsumeBool()) {
            const float price = RandomPrice(in);
            std::memcpy(copy.second.data() + at, &price, sizeof price);
        } else {
            const std::int32_t word = in.ConsumeIntegral<std::int32_t>();
            std::memcpy(copy.second.data() + at, &word, sizeof word);
        }
    }
    copy.first.points = copy.second.data();
    list->arrays[0] = &copy.first;
}

// `units` UTF-16 units at `text` made random, the last one the terminator.
void RandomText(FuzzedDataProvider& in, void* text, std::size_t units) {
    if (!text || units == 0) return;
    unsigned char* p = static_cast<unsigned char*>(text);
    const std::size_t length = in.ConsumeIntegralInRange<std::size_t>(0, units - 1);
    for (std::size_t i = 0; i < length; ++i) Put(p, 2 * i, in.ConsumeIntegral<std::uint16_t>());
    Put(p, 2 * length, std::uint16_t(0));
}

// The entries of a work-data node read by 3169 or 3167 with random lengths, names, values
// and kinds, each value kept within the buffer the module gave.
void RandomParams(FuzzedDataProvider& in, unsigned int message, std::intptr_t p2) {
    coreSzParamList* list = reinterpret_cast<coreSzParamList*>(p2);
    if (!list || !list->params || list->count < 1) return;
    const std::int32_t count = std::min<std::int32_t>(list->count, 64);
    for (std::int32_t i = 0; i < count; ++i) {
        if (!in.ConsumeBool()) continue;
        unsigned char* entry = reinterpret_cast<unsigned char*>(list->params) + std::size_t(i) * sizeof(coreSzParam);
        if (message == MSG_WD_PARAM_LENGTHS) {
            Put(entry, offsetof(coreSzParam, valueLength), in.ConsumeIntegralInRange<std::int32_t>(-2, 1 << 16));
            if (in.ConsumeBool()) Put(entry, offsetof(coreSzParam, kind), in.ConsumeIntegralInRange<std::int32_t>(-1, 2));
            continue;
        }
        coreWChar* value = nullptr;
        std::int32_t length = 0;
        std::memcpy(&value, entry + offsetof(coreSzParam, value), sizeof value);
        std::memcpy(&length, entry + offsetof(coreSzParam, valueLength), sizeof length);
        if (length > 0) RandomText(in, value, std::size_t(length));
        if (in.ConsumeBool()) {
            const std::string name = in.ConsumeRandomLengthString(254);
            std::memset(entry + offsetof(coreSzParam, name), 0, 255);
            std::memcpy(entry + offsetof(coreSzParam, name), name.data(), name.size());
        }
    }
}

// Random content in a reply the host filled.
void RandomContent(FuzzedDataProvider& in, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
    switch (message) {
        case MSG_DPA_LIST:
            RandomPrices(in, p2);
            break;
        case MSG_WD_PARAM_LENGTHS:
        case MSG_WD_READ_PARAMS:
            RandomParams(in, message, p2);
            break;
        case MSG_LS_TITLE:
            RandomText(in, reinterpret_cast<void*>(p2), LS_TITLE_CHARS);
            break;
        case MSG_WD_OPEN:
            // Another document's handle, or anything.
            if (p1) Put(reinterpret_cast<unsigned char*>(p1), offsetof(coreOpenWorkData, handle), reinterpret_cast<void*>(HostHandle(in)));
            break;
        default:
            break;
    }
}

void WrapReplies(host::Host& host) {
    for (unsigned int message : host.handledMessages()) {
        host::Host::Handler original = host.handler(message);
        host.on(message, [original, message](void* target, std::intptr_t p1, std::intptr_t p2, std::string& detail) {
            FuzzedDataProvider* in = g_input;
            if (!in || in->remaining_bytes() == 0) return original(target, p1, p2, detail);
            switch (in->ConsumeIntegralInRange<int>(0, 9)) {
                case 0:  // refused, the record untouched
                    return 1;
                case 1:  // filled, yet answered "not handled"
                    original(target, p1, p2, detail);
                    return 1;
                case 2: {  // a count of any size: the list that follows has what the host has
                    const int answer = original(target, p1, p2, detail);
                    std::int32_t* count = CountOf(message, p1, p2);
                    if (count) {
                        std::int32_t n;
                        std::memcpy(&n, count, sizeof n);
                        n = in->ConsumeBool() ? in->ConsumeIntegralInRange<std::int32_t>(std::min(n, -2), n)
                                              : in->ConsumeIntegral<std::int32_t>();
                        std::memcpy(count, &n, sizeof n);
                    }
                    return answer;
                }
                case 3:
                case 4: {  // filled, then its content made random
                    const int answer = original(target, p1, p2, detail);
                    RandomContent(*in, message, p1, p2);
                    return answer;
                }
                default:
                    return original(target, p1, p2, detail);
            }
        });
    }
}

// ---- what the person at the terminal does meanwhile ----

void Gesture(FuzzedDataProvider& in) {
    host::ChartWindows& charts = g_emulator->charts();
    const std::vector<void*> windows = charts.widgets();
    void* const w = windows.empty() ? nullptr : windows[in.ConsumeIntegralInRange<std::size_t>(0, windows.size() - 1)];
    switch (in.ConsumeIntegralInRange<int>(0, 9)) {
        case 0:
            if (windows.size() < 6) charts.create(host::data::ChartType(in.ConsumeIntegralInRange<int>(0, 2)));
            break;
        case 1:
            if (w) charts.drop(w, {kInstrument});
            break;
        case 2:
            g_emulator->data().replay(kInstrument, in.ConsumeIntegralInRange<std::size_t>(1, 20));
            break;
        case 3:
            if (w) charts.grab(w, QSize(in.ConsumeIntegralInRange<int>(1, 900), in.ConsumeIntegralInRange<int>(1, 700)));
            break;
        case 4:
            if (w) charts.click(w, QPoint(in.ConsumeIntegralInRange<int>(-5, 900), in.ConsumeIntegralInRange<int>(-5, 700)));
            break;
        case 5:
            if (w) charts.pressKey(w, in.PickValueInArray({Qt::Key_Delete, Qt::Key_Plus, Qt::Key_Minus, Qt::Key_Left,
                                                           Qt::Key_Right, Qt::Key_Home, Qt::Key_End, Qt::Key_Escape}));
            break;
        case 6:
            g_emulator->undo().undo();
            break;
        case 7:
            if (w && g_emulator->layouts().save(w, g_layoutPath)) {
                host::data::ChartType type;
                if (g_emulator->layouts().typeOf(g_layoutPath, &type)) g_emulator->layouts().load(type, g_layoutPath);
            }
            break;
        default:
            if (w && charts.destroy(w)) g_destroyed.push_back(w);
            break;
    }
}

void CleanUp() {
    g_input = nullptr;
    for (const Window& w : std::vector<Window>(g_ownWindows)) {
        g_emulator->host().send(w.iface, MSG_WC_DESTROY, P(w.widget), 0);
        g_destroyed.push_back(w.widget);
    }
    g_ownWindows.clear();
    for (void* w : g_emulator->charts().widgets()) g_destroyed.push_back(w);
    g_emulator->charts().destroyAll();
    // The arrays with random prices outlive every window that was shown them.
    g_arrayCopies.clear();
    // What is left on the undo stack goes back to interfaces whose windows are gone.
    for (int i = 0; i < 64 && g_emulator->undo().undo().sent; ++i) {
    }
    QApplication::processEvents();
    g_emulator->host().journal().clear();
    g_emulator->data().clearNotices();
    if (g_destroyed.size() > 256) g_destroyed.erase(g_destroyed.begin(), g_destroyed.end() - 128);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    new QApplication(*argc, *argv);
    g_emulator = new host::Emulator();
    if (!g_emulator->loadModule()) std::abort();
    g_emulator->startUp();
    g_emulator->dialogs().setPrinting(host::DialogAnswerer::Printing::Reject);
    host::InstrumentOptions options;
    options.name = kInstrument;
    options.live = 300;
    if (!g_emulator->data().loadInstrument(std::string(PF_EXAMPLES_DIR) + "/ttrc-daily.csv", options)) std::abort();
    for (int i = 0; i < 2; ++i) {
        QWidget* container = new QWidget;
        container->resize(640, 480);
        container->winId();
        g_containers.push_back(container);
    }
    g_layoutPath = QDir::temp().filePath(QStringLiteral("fuzz_host_messages_%1.xml").arg(QCoreApplication::applicationPid()));
    WrapReplies(g_emulator->host());
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    // A window of each type with the instrument, as a terminal restores its desktop.
    const int windows = in.ConsumeIntegralInRange<int>(0, 3);
    for (int i = 0; i < windows; ++i) {
        void* w = g_emulator->charts().create(host::data::ChartType(i));
        if (w && in.ConsumeBool()) g_emulator->charts().drop(w, {kInstrument});
    }
    g_input = &in;
    for (int step = 0; step < 64 && in.remaining_bytes() > 0; ++step) {
        if (in.ConsumeIntegralInRange<int>(0, 3) == 0)
            Gesture(in);
        else
            SendOne(in);
    }
    CleanUp();
    return 0;
}
