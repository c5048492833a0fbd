// Data point arrays: the extremes and the column counts over a million columns, and the text
// form at three sizes so that its linear growth shows.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "data/KVDataLine.h"
#include "data/KVPFLine.h"

namespace {

// A host column array of n 24-byte records: TIME, STEP, VALUE, TYPE, END, SOLID.
struct Columns {
    fxDataPointArray a;
    std::vector<fxDataPointField> fields = std::vector<fxDataPointField>(6);
    std::vector<fxChartTypeRecord> records;

    explicit Columns(int n) : records(static_cast<std::size_t>(n)) {
        std::memset(&a, 0, sizeof a);
        const char* names[] = {"TIME", "STEP", "VALUE", "TYPE", "END", "SOLID"};
        const int types[] = {DPT_INT32, DPT_FLOAT, DPT_FLOAT, DPT_INT32, DPT_FLOAT, DPT_FLOAT};
        for (int i = 0; i < 6; ++i) {
            std::memset(&fields[static_cast<std::size_t>(i)], 0, sizeof(fxDataPointField));
            fields[static_cast<std::size_t>(i)].type = types[i];
            std::strcpy(fields[static_cast<std::size_t>(i)].name, names[i]);
        }
        for (int i = 0; i < n; ++i) {
            const float v = 1.1f + 0.0001f * static_cast<float>(i % 977);
            records[static_cast<std::size_t>(i)] = {1262304000 + 60 * i, 0.0005f, v, i % 2, v + 0.002f, 0};
        }
        a.fields = fields.data();
        a.fieldCount = 6;
        a.precision = 4;
        a.pointSize = sizeof(fxChartTypeRecord);
        a.points = reinterpret_cast<unsigned char*>(records.data());
        a.pointCount = n;
    }
};

constexpr int kMillion = 1000000;

void BM_FindMinElement(benchmark::State& state) {
    Columns c(kMillion);
    CKVDataLine line(&c.a);
    for (auto _ : state) benchmark::DoNotOptimize(line.FindMinElement("VALUE"));
    state.SetItemsProcessed(state.iterations() * kMillion);
}
BENCHMARK(BM_FindMinElement)->Unit(benchmark::kMillisecond);

void BM_FindMaxElement(benchmark::State& state) {
    Columns c(kMillion);
    CKVPFLine line(&c.a);  // with the margin step of the column line
    for (auto _ : state) benchmark::DoNotOptimize(line.FindMaxElement("END"));
    state.SetItemsProcessed(state.iterations() * kMillion);
}
BENCHMARK(BM_FindMaxElement)->Unit(benchmark::kMillisecond);

void BM_GetColCount(benchmark::State& state) {
    Columns c(kMillion);
    CKVPFLine line(&c.a);
    for (auto _ : state) {
        long long boxes = 0;
        for (int i = 0; i < kMillion; ++i) boxes += line.GetColCount(i);
        benchmark::DoNotOptimize(boxes);
    }
    state.SetItemsProcessed(state.iterations() * kMillion);
}
BENCHMARK(BM_GetColCount)->Unit(benchmark::kMillisecond);

void BM_GetStringRepresentation(benchmark::State& state) {
    const int n = static_cast<int>(state.range(0));
    Columns c(n);
    CKVDataLine line(&c.a);  // TIME and VALUE are printed
    for (auto _ : state) {
        QString out;
        line.GetStringRepresentation(out);
        benchmark::DoNotOptimize(out.constData());
    }
    state.SetItemsProcessed(state.iterations() * n);
    state.SetComplexityN(n);
}
BENCHMARK(BM_GetStringRepresentation)->Arg(10000)->Arg(100000)->Arg(200000)->Complexity(benchmark::oN)
    ->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
