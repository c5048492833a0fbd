// The careless terminal's answers to the module's requests, shared by the fuzz targets that
// play the host. Every handler of the emulator is wrapped: while an input runs, each answer
// may be refused, or filled and then called "not handled", or carry a count of any size (the
// list asked for next holds what the host has), or carry random content: prices of the data
// point arrays (NaN, infinities, anything), work-data values and names, study titles, the
// handle of a document opened by path, the line-study provider's ids, counts, sizes,
// control points and shapes, the drawing tool. Every reply keeps the record's form: buffers
// stay within their stated sizes and texts stay terminated.
#pragma once

#include <cmath>
#include <limits>

#include "host/ls/StudyGeometry.h"
#include "HostMessages.h"

namespace fuzz {

// Messages whose answer carries a count, and where it is.
inline std::int32_t* CountOf(unsigned int message, std::intptr_t p1, std::intptr_t p2) {
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

inline float RandomPrice(FuzzedDataProvider& in) {
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
inline void RandomPrices(FuzzedDataProvider& in, std::intptr_t p2) {
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
inline void RandomText(FuzzedDataProvider& in, void* text, std::size_t units) {
    if (!text || units == 0) return;
    unsigned char* p = static_cast<unsigned char*>(text);
    const std::size_t length = in.ConsumeIntegralInRange<std::size_t>(0, units - 1);
    for (std::size_t i = 0; i < length; ++i) Put(p, 2 * i, in.ConsumeIntegral<std::uint16_t>());
    Put(p, 2 * length, std::uint16_t(0));
}

// The entries of a work-data node read by 3169 or 3167 with random lengths, names, values
// and kinds, each value kept within the buffer the module gave.
inline void RandomParams(FuzzedDataProvider& in, unsigned int message, std::intptr_t p2) {
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

// ---- the line-study provider's answers ----
// The counts of 4500 and the sizes of 4505 stay the provider's own: it writes by them later
// (4505, 4510), so a reply that changed them would make the host, not the module, write past
// the module's arrays.

// 8-bit text of at most `bytes` - 1 characters, terminated, at `text`.
inline void RandomBytesText(FuzzedDataProvider& in, char* text, std::size_t bytes) {
    const std::string s = in.ConsumeRandomLengthString(bytes - 1);
    std::memcpy(text, s.c_str(), s.size() + 1);
}

// 4500: the id: none, or one the provider never gave (negative or far beyond its own). Not
// another live study's: the provider would then size that study's arrays by its own counts.
inline void RandomCreate(FuzzedDataProvider& in, std::intptr_t p1) {
    if (!p1) return;
    std::int32_t id = 0;
    switch (in.ConsumeIntegralInRange<int>(0, 2)) {
        case 0: break;
        case 1: id = in.ConsumeIntegralInRange<std::int32_t>(std::numeric_limits<std::int32_t>::min(), -1); break;
        default: id = in.ConsumeIntegralInRange<std::int32_t>(1 << 24, std::numeric_limits<std::int32_t>::max()); break;
    }
    Put(reinterpret_cast<unsigned char*>(p1), offsetof(lsCreateObject, id), id);
}

// 4510: the flags, the corrected points and the shapes, within the arrays the record names
// and the data block sizes the provider reported (4505).
inline void RandomExchange(FuzzedDataProvider& in, std::intptr_t p1, std::intptr_t p2) {
    lsControlPointsShapes* r = reinterpret_cast<lsControlPointsShapes*>(p2);
    if (!r) return;
    // The data blocks are written only where the provider wrote its own data just now.
    const bool filled = r->error == 0;
    if (in.ConsumeBool()) r->error = in.ConsumeIntegralInRange<std::int32_t>(-1, 2);
    if (in.ConsumeBool()) r->finished = in.ConsumeIntegralInRange<std::int32_t>(-1, 2);
    unsigned char* out = reinterpret_cast<unsigned char*>(r->out);
    for (std::int32_t i = 0; out && i < r->outCount && i < 64; ++i) {
        if (!in.ConsumeBool()) continue;
        unsigned char* point = out + std::size_t(i) * sizeof(lsPointShape);
        switch (in.ConsumeIntegralInRange<int>(0, 4)) {
            case 0: Put(point, offsetof(lsPointShape, m_typePoint), in.ConsumeIntegralInRange<std::int32_t>(-1, 3)); break;
            case 1: Put(point, offsetof(lsPointShape, m_xTime), in.ConsumeIntegral<std::int32_t>()); break;
            case 2: Put(point, offsetof(lsPointShape, index), in.ConsumeIntegral<std::int32_t>()); break;
            case 3: Put(point, offsetof(lsPointShape, value), RandomPrice(in)); break;
            default: Put(point, offsetof(lsPointShape, indexType), in.ConsumeIntegralInRange<std::int32_t>(-1, 2)); break;
        }
    }
    const host::LineStudies::Study* study = g_emulator->studies().study(std::int32_t(p1));
    unsigned char* shapes = reinterpret_cast<unsigned char*>(r->shapes);
    for (std::int32_t k = 0; shapes && k < r->shapeCount && k < 64; ++k) {
        if (!in.ConsumeBool()) continue;
        unsigned char* shape = shapes + std::size_t(k) * sizeof(lsShape);
        switch (in.ConsumeIntegralInRange<int>(0, 6)) {
            case 0: Put(shape, offsetof(lsShape, type), in.ConsumeIntegralInRange<std::int32_t>(-1, 6)); break;
            case 1: RandomBytesText(in, reinterpret_cast<char*>(shape + offsetof(lsShape, title)), LS_SHAPE_TITLE_BYTES); break;
            case 2:
                Put(shape, offsetof(lsShape, titlePosition), in.ConsumeIntegralInRange<std::int32_t>(-1, 7));
                Put(shape, offsetof(lsShape, titleAlignment), in.ConsumeIntegral<std::int32_t>());
                break;
            case 3:
                Put(shape, offsetof(lsShape, penStyle), in.ConsumeIntegralInRange<std::int32_t>(-1, 8));
                Put(shape, offsetof(lsShape, penWidth), in.ConsumeBool() ? in.ConsumeIntegralInRange<std::int32_t>(-2, 64)
                                                                         : in.ConsumeIntegral<std::int32_t>());
                break;
            case 4:
                Put(shape, offsetof(lsShape, visible), in.ConsumeIntegralInRange<std::int32_t>(0, 1));
                Put(shape, offsetof(lsShape, color), in.ConsumeIntegral<std::uint32_t>());
                break;
            default: {
                // Random bytes inside the shape's data block.
                void* data = nullptr;
                std::memcpy(&data, shape + offsetof(lsShape, data), sizeof data);
                const std::int32_t size = study && std::size_t(k) < study->sizes.size() ? study->sizes[std::size_t(k)] : 0;
                if (!filled || !data || size <= 0) break;
                const std::vector<unsigned char> bytes = in.ConsumeBytes<unsigned char>(
                    in.ConsumeIntegralInRange<std::size_t>(1, std::min<std::size_t>(std::size_t(size), 64)));
                if (bytes.empty()) break;
                const std::size_t at = in.ConsumeIntegralInRange<std::size_t>(0, std::size_t(size) - bytes.size());
                std::memcpy(static_cast<unsigned char*>(data) + at, bytes.data(), bytes.size());
                break;
            }
        }
    }
}

// 3500: the tool chosen: a study type, a name no study has, another provider, any colour.
inline void RandomTool(FuzzedDataProvider& in, std::intptr_t p1) {
    unsigned char* r = reinterpret_cast<unsigned char*>(p1);
    if (!r) return;
    if (in.ConsumeBool()) {
        const std::vector<std::string> names = host::ls::studyNames();
        char* name = reinterpret_cast<char*>(r + offsetof(lsDrawingMode, name));
        if (in.ConsumeBool()) {
            const std::string& n = names[in.ConsumeIntegralInRange<std::size_t>(0, names.size() - 1)];
            std::memcpy(name, n.c_str(), n.size() + 1);
        } else {
            RandomBytesText(in, name, LS_NAME_BYTES);
        }
    }
    if (in.ConsumeBool()) Put(r, offsetof(lsDrawingMode, provider), reinterpret_cast<void*>(HostHandle(in)));
    if (in.ConsumeBool()) Put(r, offsetof(lsDrawingMode, color), in.ConsumeIntegral<std::uint32_t>());
}

// Random content in a reply the host filled.
inline void RandomContent(FuzzedDataProvider& in, unsigned int message, std::intptr_t p1, std::intptr_t p2) {
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
        case MSG_LS_CREATE_OBJECT:
            RandomCreate(in, p1);
            break;
        case MSG_LS_GET_LIST_CONTROLPOINTER:
            RandomExchange(in, p1, p2);
            break;
        case MSG_LS_DRAWING_MODE:
            RandomTool(in, p1);
            break;
        default:
            break;
    }
}

inline void WrapReplies(host::Host& host) {
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

}  // namespace fuzz
