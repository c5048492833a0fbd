// Chart-type arrays of 24-byte records (TIME, STEP, VALUE, TYPE, END, SOLID) for renderer
// tests. The data block holds exactly the records, so the address sanitizer reports any
// read past it.
#pragma once

#include <QRgb>
#include <cstring>
#include <memory>
#include <vector>

#include "abi/records/dpa_records.h"

constexpr QRgb kColour0 = 0xff112233u;
constexpr QRgb kColour1 = 0xff445566u;

inline fxChartTypeRecord ChartRecord(float value, float end, float step, int type, float solid = 0.0f,
                                     int time = 0) {
    return fxChartTypeRecord{time, step, value, type, end, solid};
}

struct ChartRecordArray {
    std::unique_ptr<unsigned char[]> block;
    fxDataPointArray header;

    explicit ChartRecordArray(const std::vector<fxChartTypeRecord>& records, int precision = 4)
        : block(new unsigned char[records.size() * sizeof(fxChartTypeRecord) + (records.empty() ? 1 : 0)]) {
        std::memset(&header, 0, sizeof header);
        if (!records.empty()) std::memcpy(block.get(), records.data(), records.size() * sizeof(fxChartTypeRecord));
        header.points = block.get();
        header.pointCount = static_cast<std::int32_t>(records.size());
        header.pointSize = sizeof(fxChartTypeRecord);
        header.precision = precision;
        header.typeShow.color0 = static_cast<std::int32_t>(kColour0);
        header.typeShow.color1 = static_cast<std::int32_t>(kColour1);
    }
    fxDataPointArray* get() { return &header; }
};
