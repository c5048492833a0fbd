#include "data/KVPFLine.h"

#include <climits>
#include <cmath>

namespace {
enum : unsigned { kTime = 1u << CKVPFLine::TIME, kValue = 1u << CKVPFLine::VALUE, kEnd = 1u << CKVPFLine::END };
}

const KVLineFields CKVPFLine::kFields = {
    6, {"TIME", "STEP", "VALUE", "TYPE", "END", "SOLID", nullptr}, kTime | kValue | kEnd, kTime | kValue};

CKVPFLine::CKVPFLine() : CKVLineBase(kFields) {}

CKVPFLine::CKVPFLine(fxDataPointArray* array) : CKVLineBase(kFields) { Create(array); }

CKVPFLine& CKVPFLine::operator=(fxDataPointArray* array) {
    Create(array);
    return *this;
}

// The record must end inside the block of count x size bytes.
bool CKVPFLine::ReadRecord(int index, fxChartTypeRecord& record) const {
    const unsigned char* block = Block();
    if (!block || index < 0 || index >= PointCount()) return false;
    const long long end = (static_cast<long long>(index) + 1) * static_cast<long long>(sizeof record);
    if (end > static_cast<long long>(PointCount()) * PointSize()) return false;
    std::memcpy(&record, block + (end - static_cast<long long>(sizeof record)), sizeof record);
    return true;
}

float CKVPFLine::GetStepData(int index) const {
    fxChartTypeRecord record;
    return ReadRecord(index, record) ? record.step : 0.0f;
}

int CKVPFLine::GetColCount(int index) const {
    fxChartTypeRecord record;
    if (!ReadRecord(index, record)) return 0;
    const long double boxes =
        std::floor(std::fabs(static_cast<long double>(record.value) - record.end) / record.step + 0.5L);
    // A zero or non-finite box size gives no count (NaN) or an endless one: NaN counts 0 and
    // the rest saturates, so the conversion and the sign change stay defined.
    int n = 0;
    if (!std::isnan(boxes)) n = boxes >= INT_MAX ? INT_MAX : boxes <= -INT_MAX ? -INT_MAX : static_cast<int>(boxes);
    return record.type == 1 ? n : -n;
}

bool CKVPFLine::SmallBoxMargin(double& margin) const {
    const fxDataPointArray* header = GetHeader();
    const double s = GetStepData(0);
    const double e = header ? 1.0 - static_cast<double>(header->precision) : 2.0;
    const double p = std::pow(10.0, e);
    if (!(p / 10 > s)) return false;
    const bool intraday = header && header->name.period.type == 'I';
    margin = intraday ? p : 10 * p;
    return true;
}

double CKVPFLine::FindMinElement(const QString& name, int from, int to) const {
    const double m = CKVLineBase::FindMinElement(name, from, to);
    double margin = 0;
    return SmallBoxMargin(margin) ? m - margin : m;
}

double CKVPFLine::FindMaxElement(const QString& name, int from, int to) const {
    const double m = CKVLineBase::FindMaxElement(name, from, to);
    double margin = 0;
    if (SmallBoxMargin(margin)) return m + margin;
    return GetName() == QLatin1String("Point and Figure") ? m + GetStepData(0) : m;
}
