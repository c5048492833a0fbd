// The time questions of a line: its period as a step, the time of a position and the
// position of a time, also beyond the data, where positions go on in steps of the period.
#include <QDate>
#include <QDateTime>
#include <algorithm>
#include <climits>

#include "data/KVPFLine.h"
#include "gx/Line.h"
#include "gx/TimeScale.h"

namespace gx {

namespace {

// Times are 32-bit seconds since 1970; a step that would leave that range stops at its edge.
const std::int64_t kTimeMin = INT32_MIN;
const std::int64_t kTimeMax = INT32_MAX;

std::int64_t ClampTime(std::int64_t t) { return std::max(kTimeMin, std::min(kTimeMax, t)); }

// Seconds of one unit of the fixed-length kinds; 0 for the calendar kinds and unknown ones.
std::int64_t FixedUnit(int kind) {
    switch (kind) {
    case Line::kMinutes: return 60;
    case Line::kDays: return 86400;
    case Line::kWeeks: return 604800;
    default: return 0;
    }
}

// The calendar date of t; the terminal runs with TZ=GST0, so its local date is the UTC one.
QDate DateOf(std::int64_t t) { return QDateTime::fromSecsSinceEpoch(t, Qt::UTC).date(); }

// |k| month steps. Forward goes to the same time of day on the first of the next month.
// Backward goes back by the same number of days, counted from the current date (days in the
// month - day of the month + 1), so it does not undo a forward step: one step back from
// 15 March lands on 26 February (27 in a leap year), not on 15 February.
// Every step moves at least one day, and the walk stops once it leaves 32-bit time, so even
// an absurd k ends after a few thousand steps.
std::int64_t StepMonths(std::int64_t t, std::int64_t k) {
    const bool forward = k > 0;
    const std::int64_t n = forward ? k : -k;
    for (std::int64_t i = 0; i < n && t >= kTimeMin && t <= kTimeMax; ++i) {
        const QDate d = DateOf(t);
        const std::int64_t days = d.daysInMonth() - d.day() + 1;
        t += (forward ? days : -days) * 86400;
    }
    return t;
}

// |k| year steps, each by the number of days in the year of the current date.
std::int64_t StepYears(std::int64_t t, std::int64_t k) {
    const bool forward = k > 0;
    const std::int64_t n = forward ? k : -k;
    for (std::int64_t i = 0; i < n && t >= kTimeMin && t <= kTimeMax; ++i) {
        const std::int64_t days = DateOf(t).daysInYear();
        t += (forward ? days : -days) * 86400;
    }
    return t;
}

// Step counts beyond this give a clamped time in every kind; limiting them keeps the
// products below in 64 bits.
std::int64_t LimitSteps(std::int64_t k) { return std::max(-kTimeMax, std::min(kTimeMax, k)); }

}  // namespace

std::int64_t Line::GetTimeStep() const {
    switch (GetPeriodType()) {
    case 'D': return 86400;
    case 'I': {
        const std::int64_t seconds = std::int64_t(GetPeriodLength()) * 60;
        return seconds != 0 ? seconds : 1;
    }
    case 'W': return 604800;
    case 'M': return 2592000;
    case 'Y': return 31536000;
    default: return 1;
    }
}

int Line::GetTimeInterval(int& count) const {
    const char type = GetPeriodType();
    if (type == 'I') {
        count = GetPeriodLength();
        if (count == 0) count = 1;  // ticks step like one-minute data
        return kMinutes;
    }
    if (count == 0) count = 1;
    switch (type) {
    case 'D': return kDays;
    case 'W': return kWeeks;
    case 'M': return kMonths;
    case 'Y': return kYears;
    default: return kNone;
    }
}

void Line::UpdateTimes(TimeScale* scale, int from) const {
    if (!scale) return;
    // The records' own TIME, as the renderers read them.
    const int size = Size();
    for (int i = std::max(from, 0); i < size; ++i) scale->AddTime(GetTime(i));
    scale->SetFormat(GetPeriodType());
}

long Line::StepTime(long t, int kind, long k) {
    if (t < 0) return -1;
    const std::int64_t base = std::min<std::int64_t>(t, kTimeMax);
    const std::int64_t steps = LimitSteps(k);
    std::int64_t result;
    switch (kind) {
    case kMinutes:
    case kDays:
    case kWeeks: result = base + steps * FixedUnit(kind); break;
    case kMonths: result = StepMonths(base, steps); break;
    case kYears: result = StepYears(base, steps); break;
    default: return 0;
    }
    return static_cast<long>(ClampTime(result));
}

long Line::GetIndexVirtualTime(int index) const {
    const CKVPFLine view(GetArray());
    const int size = view.Size();
    if (size == 0) return 0;
    if (index >= 0 && index < size) return view.GetTime(index);

    int count = 0;
    const int kind = GetTimeInterval(count);
    if (index < 0) return StepTime(view.GetTime(0), kind, static_cast<long>(LimitSteps(std::int64_t(index) * count)));
    const std::int64_t beyond = std::int64_t(index) - size + 1;
    return StepTime(view.GetTime(size - 1), kind, static_cast<long>(LimitSteps(beyond * count)));
}

int Line::GetTimeVirtualIndex(long time) const {
    const CKVPFLine view(GetArray());
    const int size = view.Size();
    if (size == 0) return 0;

    // The first position whose time is not below `time`, by halving. The probe is rounded up;
    // on a range one position wide that would be its end, so it is kept on the range's last
    // position, which also guarantees that every round shrinks the range.
    int lo = 0;
    int hi = size;
    while (lo < hi) {
        int mid = lo + static_cast<int>((double(hi) - lo) * 0.5 + 0.5);
        if (mid >= hi) mid = hi - 1;
        if (view.GetTime(mid) >= time)
            hi = mid;
        else
            lo = mid + 1;
    }
    const int found = lo == size ? size - 1 : lo;
    const std::int64_t last = view.GetTime(size - 1);
    if (found < size - 1 || time <= last) return found;

    // After the last time: one position per period step from the last time, up to the first
    // stepped time at or past `time` (a time between two steps belongs to the later one,
    // as inside the data).
    int count = 0;
    const int kind = GetTimeInterval(count);
    if (count <= 0 || last < 0) return size - 1;
    const std::int64_t target = std::min<std::int64_t>(time, kTimeMax);
    std::int64_t steps = 0;
    if (const std::int64_t unit = FixedUnit(kind)) {
        const std::int64_t stride = unit * count;
        steps = (target - last + stride - 1) / stride;
    } else if (kind == kMonths || kind == kYears) {
        // Calendar steps: walked one at a time; 32-bit time holds fewer than 1700 months.
        std::int64_t t = last;
        while (t < target) {
            const std::int64_t next = StepTime(static_cast<long>(t), kind, count);
            if (next <= t) break;
            t = next;
            ++steps;
        }
    } else {
        return size - 1;  // no period to step by
    }
    return static_cast<int>(std::min<std::int64_t>(size - 1 + steps, INT_MAX));
}

}  // namespace gx
