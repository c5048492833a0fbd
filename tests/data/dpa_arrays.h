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
    fxDataPointArray a{};
    std::vector<fxDataPointField> fields = std::vector<fxDataPointField>(FX_MAX_DATA_POINT_FIELDS);
    std::vector<unsigned char> block;

    HostArray(std::initializer_list<std::pair<int, const char*>> layout, int precision = 2) {
        for (const auto& f : layout) {
            fxDataPointField& d = fields[static_cast<std::size_t>(a.fieldCount++)];
            d.type = f.first;
            std::strncpy(d.name, f.second, sizeof d.name - 1);
            a.pointSize += CKVLineBase::GetFieldLen(static_cast<DATA_POINT_TYPES>(f.first));
        }
        a.fields = fields.data();
        a.precision = precision;
    }

    // Appends one point, one value per field, each stored as its field's type (little-endian
    // integers keep their low bytes).
    HostArray& Add(std::initializer_list<double> values) {
        std::size_t i = 0;
        for (const double x : values) {
            const DATA_POINT_TYPES type = static_cast<DATA_POINT_TYPES>(+fields[i++].type);
            const std::int64_t n = static_cast<std::int64_t>(x);
            const float f = static_cast<float>(x);
            const void* v = type == DPT_FLOAT    ? static_cast<const void*>(&f)
                            : type == DPT_DOUBLE ? static_cast<const void*>(&x)
                                                 : static_cast<const void*>(&n);
            const auto* b = static_cast<const unsigned char*>(v);
            block.insert(block.end(), b, b + CKVLineBase::GetFieldLen(type));
        }
        a.points = block.data();
        a.pointCount += 1;
        return *this;
    }

    void Name(const char16_t* name) {
        for (int i = 0; name[i] && i < 254; ++i) std::memcpy(reinterpret_cast<unsigned char*>(&a.name) + 2 * i, &name[i], 2);
    }
};

// A header made by Create() is freed by its line only once a data block was allocated; tests
// release the others themselves once the line is gone.
inline void FreeOwnedHeader(fxDataPointArray* header) {
    std::free(header->points);
    std::free(header->fields);
    std::free(header);
}
