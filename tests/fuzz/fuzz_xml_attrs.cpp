// Attribute values and host answers as a careless host could give them: random entry
// counts, value lengths, names without terminators, values that fill their buffers, then
// every typed read of CXMLWorkData on them. Writes of fuzzed numbers must read back equal.
#include <fuzzer/FuzzedDataProvider.h>

#include <QGuiApplication>
#include <cmath>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "xml/CXMLWorkData.h"

namespace {

const char* const kNames[] = {"Size", "Bold", "Family", "GridColor", "FreeStep", "BACK_COLOR",
                              "FInterface", "DpaInstrument", "DpaPeriodLen", "AreasFont"};

struct Entry {
    std::string name;
    std::u16string value;
    std::int32_t length;
    std::int32_t kind;
};

// The host's script for the current input: the same entries answer for every node.
struct Script {
    std::int32_t count = 0;
    std::vector<Entry> entries;
} g_script;

int Callback(void*, unsigned int message, std::intptr_t, std::intptr_t p2) {
    auto* list = reinterpret_cast<coreSzParamList*>(p2);
    switch (message) {
    case MSG_WD_PARAM_COUNT:
        *reinterpret_cast<std::int32_t*>(p2) = g_script.count;
        return 0;
    case MSG_WD_PARAM_LENGTHS:
        for (int i = 0; i < list->count && i < int(g_script.entries.size()); ++i)
            list->params[i].valueLength = g_script.entries[i].length;
        return 0;
    case MSG_WD_READ_PARAMS:
        for (int i = 0; i < list->count && i < int(g_script.entries.size()); ++i) {
            coreSzParam& p = list->params[i];
            const Entry& e = g_script.entries[i];
            std::memcpy(p.name, e.name.data(), std::min<std::size_t>(e.name.size(), sizeof p.name));
            const std::size_t n = std::min<std::size_t>(e.value.size(), std::size_t(p.valueLength));
            std::memcpy(p.value, e.value.data(), n * sizeof(coreWChar));
            p.kind = e.kind;
            p.node = reinterpret_cast<void*>(std::uintptr_t(0x20 + i));
        }
        return 0;
    default:
        return 1;
    }
}

std::string PickName(FuzzedDataProvider& in) {
    if (in.ConsumeBool()) return kNames[in.ConsumeIntegralInRange<int>(0, 9)];
    return in.ConsumeRandomLengthString(300);
}

void Check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* argc, char*** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    new QGuiApplication(*argc, *argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider in(data, size);
    g_script = Script();
    const int entries = in.ConsumeIntegralInRange(0, 12);
    for (int i = 0; i < entries; ++i) {
        Entry e;
        e.name = PickName(in);
        const std::string bytes = in.ConsumeRandomLengthString(64);
        e.value.assign(reinterpret_cast<const char16_t*>(bytes.data()), bytes.size() / 2);
        if (in.ConsumeBool()) e.value = QString::fromLocal8Bit(bytes.c_str()).toStdU16String();
        e.length = in.ConsumeBool() ? std::int32_t(e.value.size() + in.ConsumeIntegralInRange(-2, 2))
                                    : in.ConsumeIntegral<std::int32_t>();
        e.kind = in.ConsumeIntegralInRange(0, 2);
        g_script.entries.push_back(e);
    }
    g_script.count = in.ConsumeBool() ? entries : in.ConsumeIntegralInRange(-3, 20);

    CXMLWorkData node(nullptr, reinterpret_cast<void*>(0x10), reinterpret_cast<void*>(0x11), &Callback);
    const QColor fallback(1, 2, 3, 4);
    while (in.remaining_bytes() > 0) {
        const std::string name = PickName(in);
        const char* key = name.c_str();
        const QColor c = node.readColorString(key, fallback);
        Check(c == fallback || c.alpha() == 255);
        node.readInteger(key, 7);
        node.readInt64(key, 7);
        node.readFloat(key, 7.0f);
        node.readDouble(key, 7.0);
        node.readColor(key, fallback);
        node.readFont(key, QFont());
        char narrow[8];
        coreWChar wide[8];
        const int room = in.ConsumeIntegralInRange(-1, 8);
        node.readString(key, narrow, room);
        node.readString(key, wide, room);
        if (room > 0) Check(std::strlen(narrow) < std::size_t(room));
        coreDemandsIndicator origin;
        node.readDpaInfo(&origin);

        switch (in.ConsumeIntegralInRange(0, 3)) {
        case 0: {
            const int v = in.ConsumeIntegral<int>();
            node.writeInteger(key, v);
            Check(node.readInteger(key, v ^ 1) == v);
            break;
        }
        case 1: {
            const qint64 v = in.ConsumeIntegral<qint64>();
            node.writeInt64(key, v);
            Check(node.readInt64(key, v ^ 1) == v);
            break;
        }
        case 2: {
            const double v = in.ConsumeFloatingPoint<double>();
            node.writeDouble(key, v);
            const double back = node.readDouble(key, 0);
            Check(std::isnan(v) ? std::isnan(back) : back == v);
            break;
        }
        default:
            node.writeColor(key, QColor::fromRgba(in.ConsumeIntegral<std::uint32_t>()));
            break;
        }
    }
    return 0;
}
