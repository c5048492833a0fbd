// A data point array header as the host builds it: the 850-byte fxDataPointArray, its
// field descriptors and a pointer to a block of points that someone else keeps. The
// header's address never changes; the points pointer and count follow setPoints().
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "abi/records/dpa_records.h"

namespace host {
namespace data {

class DataPointArray {
public:
    DataPointArray();
    DataPointArray(const DataPointArray&) = delete;
    DataPointArray& operator=(const DataPointArray&) = delete;

    // UTF-16 name, 8-bit second name and the period of the series.
    void setName(const std::string& name, const std::string& secondName, namePeriod period);
    // Declares the next field of a point; returns false when the array has 100 already.
    bool addField(DATA_POINT_TYPES type, const char* name);
    void setPrecision(int precision) { header_.precision = precision; }
    void setColours(std::uint32_t colour0, std::uint32_t colour1);
    void setOwner(void* owner) { header_.owner = owner; }
    // The block of `count` points of pointSize() bytes each.
    void setPoints(const void* points, std::size_t count);

    std::int32_t pointSize() const { return header_.pointSize; }
    fxDataPointArray* header() { return &header_; }
    const fxDataPointArray* header() const { return &header_; }

    // Width in bytes of a field of `type`; 0 for types without a width or not valid.
    static int fieldWidth(std::int32_t type);

private:
    fxDataPointArray header_;
    std::vector<fxDataPointField> fields_;
};

}  // namespace data
}  // namespace host
