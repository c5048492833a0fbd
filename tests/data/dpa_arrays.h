// Host-side data point arrays built by hand for the line tests: a header, its descriptors and
// a data block the test owns, laid out as the host lays them out.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <utility>
#include <vector>

#include "abi/records/dpa_records.h"
#include "data/KVLineBase.h"

struct HostArray {
    fxDataPointArray a;
    std::vector<fxDataPointField> fields = std::vector<fxDataPointField>(FX_MAX_DATA_POINT_FIELDS);
    std::vector<unsigned char> block;

    HostArray(std::initializer_list<std::pair<int, const char*>> layout, int precision = 2) {
        std::memset(&a, 0, sizeof a);
        std::memset(fields.data(), 0, fields.size() * sizeof(fxDataPointField));
        for (const auto& f : layout) {
            fxDataPointField& d = fields[static_cast<std::size_t>(a.fieldCount++)];
            d.type = f.first;
            std::strncpy(d.name, f.second, sizeof d.name - 1);
            a.pointSize += CKVLineBase::GetFieldLen(static_cast<DATA_POINT_TYPES>(f.first));
        }
        a.fields = fields.data();
        a.precision = precision;
    }

    // Appends one point, one value per field, each stored as its field's type.
    HostArray& Add(std::initializer_list<double> values) {
        const double* v = values.begin();
        for (int i = 0; i < a.fieldCount; ++i, ++v) {
            unsigned char bytes[8] = {};
            const double x = v < values.end() ? *v : 0;
            switch (fields[static_cast<std::size_t>(i)].type) {
            case DPT_UINT8: bytes[0] = static_cast<unsigned char>(x); break;
            case DPT_UINT16: Put(bytes, static_cast<std::uint16_t>(x)); break;
            case DPT_INT32: Put(bytes, static_cast<std::int32_t>(x)); break;
            case DPT_BYTES8: Put(bytes, static_cast<std::int64_t>(x)); break;
            case DPT_FLOAT: Put(bytes, static_cast<float>(x)); break;
            case DPT_DOUBLE: Put(bytes, x); break;
            default: break;
            }
            const int width = CKVLineBase::GetFieldLen(static_cast<DATA_POINT_TYPES>(fields[static_cast<std::size_t>(i)].type));
            block.insert(block.end(), bytes, bytes + width);
        }
        a.points = block.data();
        a.pointCount += 1;
        return *this;
    }

    void Name(const char16_t* name) {
        for (int i = 0; name[i] && i < 254; ++i) std::memcpy(reinterpret_cast<unsigned char*>(&a.name) + 2 * i, &name[i], 2);
    }

    template <typename T>
    static void Put(unsigned char* bytes, T v) { std::memcpy(bytes, &v, sizeof v); }
};

// A header made by Create() is freed by its line only once a data block was allocated; tests
// release the others themselves once the line is gone.
inline void FreeOwnedHeader(fxDataPointArray* header) {
    std::free(header->points);
    std::free(header->fields);
    std::free(header);
}
