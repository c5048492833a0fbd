// Chart-type arrays (24-byte TIME, STEP, VALUE, TYPE, END, SOLID records) for renderer tests.
// The data block is a heap block of exactly pointCount x pointSize bytes, so the address
// sanitizer reports any read past it.
#pragma once

#include <QRgb>
#include <cstring>
#include <memory>
#include <vector>

#include "abi/records/dpa_records.h"

inline fxChartTypeRecord ChartRecord(float value, float end, float step, int type,
                                     float solid = 0.0f, int time = 0) {
    fxChartTypeRecord r;
    r.time = time;
    r.step = step;
    r.value = value;
    r.type = type;
    r.end = end;
    r.solid = solid;
    return r;
}

class ChartRecordArray {
public:
    explicit ChartRecordArray(const std::vector<fxChartTypeRecord>& records, int precision = 4,
                              QRgb colour0 = 0xff112233u, QRgb colour1 = 0xff445566u)
        : block_(new unsigned char[records.empty() ? 1 : records.size() * sizeof(fxChartTypeRecord)]) {
        std::memset(&header_, 0, sizeof header_);
        if (!records.empty())
            std::memcpy(block_.get(), records.data(), records.size() * sizeof(fxChartTypeRecord));
        header_.points = records.empty() ? nullptr : block_.get();
        header_.pointCount = static_cast<std::int32_t>(records.size());
        header_.pointSize = sizeof(fxChartTypeRecord);
        header_.precision = precision;
        header_.typeShow.color0 = static_cast<std::int32_t>(colour0);
        header_.typeShow.color1 = static_cast<std::int32_t>(colour1);
    }

    fxDataPointArray* get() { return &header_; }
    fxDataPointArray& header() { return header_; }

private:
    std::unique_ptr<unsigned char[]> block_;
    fxDataPointArray header_;
};
