#include "host/data/DataPointArray.h"

#include <cstring>

#include "host/data/Instrument.h"

namespace host {
namespace data {

DataPointArray::DataPointArray() {
    std::memset(&header_, 0, sizeof header_);
    fields_.reserve(FX_MAX_DATA_POINT_FIELDS);
    header_.typeShow.penWeight = 1;
}

void DataPointArray::setName(const std::string& name, const std::string& secondName, namePeriod period) {
    putWide(header_.name.name, 255, name);
    std::memset(header_.name.secondName, 0, sizeof header_.name.secondName);
    std::strncpy(header_.name.secondName, secondName.c_str(), sizeof header_.name.secondName - 1);
    header_.name.period.type = period.type;
    header_.name.period.length = period.length;
}

int DataPointArray::fieldWidth(std::int32_t type) {
    static const int kWidths[] = {1, 2, 4, 8, 4, 8, 0};
    return type >= 0 && type <= DPT_NONE ? kWidths[type] : 0;
}

bool DataPointArray::addField(DATA_POINT_TYPES type, const char* name) {
    if (fields_.size() >= FX_MAX_DATA_POINT_FIELDS) return false;
    fxDataPointField field;
    std::memset(&field, 0, sizeof field);
    field.type = type;
    std::strncpy(field.name, name, sizeof field.name - 1);
    fields_.push_back(field);  // capacity reserved: the descriptor pointer stays valid
    header_.fields = fields_.data();
    header_.fieldCount = std::int32_t(fields_.size());
    header_.pointSize += fieldWidth(type);
    return true;
}

void DataPointArray::setColours(std::uint32_t colour0, std::uint32_t colour1) {
    header_.typeShow.color0 = std::int32_t(colour0);
    header_.typeShow.color1 = std::int32_t(colour1);
}

void DataPointArray::setPoints(const void* points, std::size_t count) {
    header_.points = count ? static_cast<unsigned char*>(const_cast<void*>(points)) : nullptr;
    header_.pointCount = std::int32_t(count);
}

}  // namespace data
}  // namespace host
