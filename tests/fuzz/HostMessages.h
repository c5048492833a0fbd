// The messages a careless terminal sends to the module, shared by the fuzz targets that play
// the host: every number of the module's switch and of the chart type interfaces' table, to
// the module, to any of the three interfaces, to a chart widget or to an address nobody owns.
// Records are random bytes placed inside an arena this program owns; the pointers inside
// them point into the arena or are null, and widget handles are live, already destroyed or
// invented.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <iterator>
#include <optional>

#include "FuzzTerminal.h"
#include "host/PropertyDialog.h"

namespace fuzz {

constexpr std::size_t kArenaSize = 1 << 17;
alignas(16) inline unsigned char g_arena[kArenaSize];

// ---- the pieces of a message ----

// A place in the arena with room for `size` bytes, filled from the input.
inline unsigned char* Record(FuzzedDataProvider& in, std::size_t size) {
    size = std::min(size, kArenaSize);
    const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, kArenaSize - size);
    unsigned char* p = g_arena + at;
    const std::vector<unsigned char> bytes = in.ConsumeBytes<unsigned char>(in.ConsumeIntegralInRange<std::size_t>(0, size));
    std::memset(p, in.ConsumeIntegral<unsigned char>(), size);
    if (!bytes.empty()) std::memcpy(p, bytes.data(), bytes.size());
    return p;
}

// A pointer into the arena with `extent` bytes behind it, or null.
inline void* ArenaPointer(FuzzedDataProvider& in, std::size_t extent) {
    if (in.ConsumeIntegralInRange<int>(0, 7) == 0) return nullptr;
    return Record(in, extent);
}

inline std::size_t Room(const void* p) {
    return p ? kArenaSize - std::size_t(static_cast<const unsigned char*>(p) - g_arena) : 0;
}

// A widget handle: live, destroyed, invented, an interface, or null.
inline void* WidgetHandle(FuzzedDataProvider& in) {
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
inline std::uintptr_t HostHandle(FuzzedDataProvider& in) {
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

inline std::intptr_t P(const void* p) { return reinterpret_cast<std::intptr_t>(p); }

// A record of `size` bytes or null; nothing inside it is a pointer.
template <std::size_t size>
inline void PlainRecord(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = in.ConsumeIntegralInRange<int>(0, 7) ? P(Record(in, size)) : 0;
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

inline void Values(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = in.ConsumeIntegral<std::int32_t>();
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

inline void WidgetParam(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = P(WidgetHandle(in));
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

inline void UnicodeName(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcNameCompUnicode)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    void* icon = ArenaPointer(in, 256);
    Put(r, offsetof(fxwcNameCompUnicode, iconBuffer), icon);
    const std::int32_t room = std::int32_t(std::min<std::size_t>(Room(icon), 1 << 16));
    Put(r, offsetof(fxwcNameCompUnicode, iconSize), in.ConsumeIntegralInRange<std::int32_t>(-8, room));
}

inline void Create(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
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

inline void PanelStatus(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcPanelTarget)) : nullptr;
    if (r) Put(r, offsetof(fxwcPanelTarget, widget), WidgetHandle(in));
    *p1 = P(r);
    *p2 = in.ConsumeIntegralInRange<int>(0, 7) ? P(Record(in, sizeof(fxwcPanelStatus))) : 0;
}

inline void SaveLoad(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    *p1 = P(WidgetHandle(in));
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreSzNode)) : nullptr;
    if (r) {
        Put(r, offsetof(coreSzNode, document), std::uint32_t(HostHandle(in)));
        Put(r, offsetof(coreSzNode, document2), std::uint32_t(HostHandle(in)));
        Put(r, offsetof(coreSzNode, node), std::uint32_t(HostHandle(in)));
    }
    *p2 = P(r);
}

inline void DataUpdated(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreCoreUpdateDpaData)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    Put(r, offsetof(coreCoreUpdateDpaData, provider), reinterpret_cast<void*>(HostHandle(in)));
    Put(r, offsetof(coreCoreUpdateDpaData, handle), reinterpret_cast<void*>(HostHandle(in)));
    Put(r, offsetof(coreCoreUpdateDpaData, subscriber), WidgetHandle(in));
}

inline void Drop(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
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

inline void Owner(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcGetOwnerForObj)) : nullptr;
    if (r) Put(r, offsetof(fxwcGetOwnerForObj, object), in.ConsumeBool() ? WidgetHandle(in) : reinterpret_cast<void*>(HostHandle(in)));
    *p1 = P(r);
    *p2 = 0;
}

inline void Caption(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(fxwcGetCaption)) : nullptr;
    // The terminal's title buffer holds FXWC_CAPTION_UNITS units.
    void* reply = ArenaPointer(in, 2 * FXWC_CAPTION_UNITS);
    if (r) Put(r, offsetof(fxwcGetCaption, widget), WidgetHandle(in));
    *p1 = P(r);
    *p2 = P(reply);
}

inline void Property(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(PROPERTY_CHANGE)) : nullptr;
    if (r) {
        // The page: none, the window's own (as the terminal's dialog sends it), or one of the
        // host's with any bytes but no group list: the groups are pointers into the host's
        // memory, which a record of random bytes cannot give.
        void* const widget = WidgetHandle(in);
        void* page = nullptr;
        host::PropertyDialog* open = in.ConsumeBool() ? g_emulator->properties().dialogFor(widget) : nullptr;
        if (open) {
            page = open->page();
        } else if (in.ConsumeBool()) {
            // Apart from the arena, so that the change record cannot overlap it.
            static PROPERTY_PAGE own;
            const std::vector<unsigned char> bytes = in.ConsumeBytes<unsigned char>(sizeof own);
            std::memset(&own, in.ConsumeIntegral<unsigned char>(), sizeof own);
            if (!bytes.empty()) std::memcpy(&own, bytes.data(), bytes.size());
            own.groups = nullptr;
            page = &own;
        }
        Put(r, offsetof(PROPERTY_CHANGE, page), page);
        Put(r, offsetof(PROPERTY_CHANGE, widget), widget);
    }
    *p1 = P(r);
    *p2 = in.ConsumeIntegral<std::int32_t>();
}

inline void Event(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
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

inline void Undo(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreUndoStart)) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    if (!r) return;
    Put(r, offsetof(coreUndoStart, document), std::uint32_t(HostHandle(in)));
    Put(r, offsetof(coreUndoStart, node), std::uint32_t(HostHandle(in)));
    Put(r, offsetof(coreUndoStart, widget), WidgetHandle(in));
}

inline void ConvertList(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, 4 + 8 * 64) : nullptr;
    *p1 = P(r);
    *p2 = 0;
    // The list has room for its entries and one more.
    if (r) Put(r, 0, in.ConsumeIntegralInRange<std::int32_t>(-3, 63));
}

inline void LsUpdate(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
    unsigned char* r = in.ConsumeIntegralInRange<int>(0, 7) ? Record(in, sizeof(coreUpdateLs)) : nullptr;
    if (r) Put(r, offsetof(coreUpdateLs, dataArray), reinterpret_cast<void*>(HostHandle(in)));
    *p1 = P(r);
    *p2 = P(WidgetHandle(in));
}

// The path of a skin document, NUL-terminated UTF-16: the example skin, an empty path, a file
// that is no skin, a missing one, random units, or a text without a terminator. SendOne
// hands it to the LoadSkin entry point, or sends it with 3560, a number some terminals use
// for a skin message of their own and the module must ignore.
const unsigned int kForeignSkinMessage = 3560;

inline void SkinPath(FuzzedDataProvider& in, std::intptr_t* p1, std::intptr_t* p2) {
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
inline const Message kMessages[] = {
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
    {kForeignSkinMessage, SkinPath},
};

inline void* Target(FuzzedDataProvider& in) {
    switch (in.ConsumeIntegralInRange<int>(0, 5)) {
        case 0: return nullptr;
        case 1: return g_emulator->host().coreHandle();
        case 2: return WidgetHandle(in);
        default: return Iface(in.ConsumeIntegralInRange<int>(0, 2));
    }
}

inline void SendOne(FuzzedDataProvider& in) {
    std::intptr_t p1 = 0, p2 = 0;
    unsigned int number;
    bool skinPath = false;
    if (in.ConsumeIntegralInRange<int>(0, 15) == 0) {
        // A number neither side knows.
        number = in.ConsumeIntegral<std::uint16_t>();
        p1 = P(ArenaPointer(in, 4096));
        p2 = P(ArenaPointer(in, 4096));
    } else {
        const Message& m = kMessages[in.ConsumeIntegralInRange<std::size_t>(0, std::size(kMessages) - 1)];
        number = m.number;
        m.make(in, &p1, &p2);
        skinPath = number == kForeignSkinMessage;
    }
    if (skinPath && in.ConsumeBool()) {
        g_emulator->host().loadSkin(reinterpret_cast<const std::uint16_t*>(p1));
        return;
    }
    void* const target = Target(in);
    // Destroying makes the widget's address a stale one; windows it makes are tracked.
    const std::vector<void*> before = LiveWidgets();
    // The terminal closes what it shows of a window before it destroys it (ChartWindows does
    // so on its own way there).
    if (number == MSG_WC_DESTROY) g_emulator->properties().close(reinterpret_cast<void*>(p1));
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

}  // namespace fuzz
