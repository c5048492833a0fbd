// The three chart-type providers: closing prices per second over the USD/CHF series and
// over ten million synthetic quotes, and the data core's quote-by-quote replay (provider,
// records and array header) over USD/CHF.
#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <memory>
#include <random>
#include <vector>

#include "host/DataCore.h"
#include "host/data/ChartObject.h"
#include "host/data/ChartTypeProvider.h"
#include "host/data/CsvPriceReader.h"
#include "host/data/PriceGrid.h"

using host::data::ChartType;

namespace {

struct Series {
    std::vector<std::int32_t> times;
    std::vector<std::int64_t> ticks;
    std::int64_t box;
};

// USD/CHF closes in ticks of 0.0001, box 0.0010.
const Series& UsdChf() {
    static const Series s = [] {
        Series out;
        std::string error;
        auto instrument = host::data::CsvPriceReader::readFile(std::string(PF_EXAMPLES_DIR) + "/usdchf-30min.csv",
                                                               "", &error);
        if (!instrument) std::abort();
        const host::data::PriceGrid grid(instrument->precision());
        for (const auto& q : instrument->quotes()) {
            out.times.push_back(q.time);
            out.ticks.push_back(grid.ticks(q.close));
        }
        out.box = 10;
        return out;
    }();
    return s;
}

// Ten million quotes of a random walk around 1.0000 (steps of up to 4 ticks), box 10 ticks.
const Series& Synthetic() {
    static const Series s = [] {
        Series out;
        const std::size_t n = 10000000;
        out.times.reserve(n);
        out.ticks.reserve(n);
        std::mt19937 random(20240601);
        std::uniform_int_distribution<int> step(-4, 4);
        std::int64_t price = 10000;
        for (std::size_t i = 0; i < n; ++i) {
            price += step(random);
            if (price < 1000) price = 1000;
            out.times.push_back(std::int32_t(i));
            out.ticks.push_back(price);
        }
        out.box = 10;
        return out;
    }();
    return s;
}

void RunProvider(benchmark::State& state, const Series& series, ChartType type) {
    host::data::ProviderSettings settings;
    settings.box = series.box;
    settings.reversal = 3;
    std::size_t figures = 0;
    for (auto _ : state) {
        auto provider = host::data::makeProvider(type, settings);
        for (std::size_t i = 0; i < series.ticks.size(); ++i) provider->add(series.times[i], series.ticks[i]);
        figures = provider->figures().size();
        benchmark::DoNotOptimize(figures);
    }
    state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(series.ticks.size()));
    state.counters["figures"] = double(figures);
}

void BM_UsdChf(benchmark::State& state) { RunProvider(state, UsdChf(), ChartType(state.range(0))); }
void BM_Synthetic10M(benchmark::State& state) { RunProvider(state, Synthetic(), ChartType(state.range(0))); }

// Replay through the data core: every quote goes to the base series and the chart object,
// which updates its records and array header.
void BM_ReplayUsdChf(benchmark::State& state) {
    const ChartType type = ChartType(state.range(0));
    struct Setup {
        host::Host host;
        host::DataCore core{host};
        void* chart = nullptr;
    };
    std::size_t quotes = 0;
    for (auto _ : state) {
        state.PauseTiming();
        std::unique_ptr<Setup> s(new Setup);
        host::InstrumentOptions options;
        options.live = 0;
        s->core.loadInstrument(host::DataCore::builtInPath("USDCHF"), options);
        host::data::ChartSettings settings;
        settings.box = 0.0010;
        s->chart = s->core.createChart("USDCHF", type, settings);
        state.ResumeTiming();
        quotes = s->core.replay("USDCHF", 1u << 30);
        benchmark::DoNotOptimize(s->core.chart(s->chart)->records().data());
        state.PauseTiming();
        s.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(std::int64_t(state.iterations()) * std::int64_t(quotes));
}

}  // namespace

BENCHMARK(BM_UsdChf)->ArgName("type")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Synthetic10M)->ArgName("type")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_ReplayUsdChf)->ArgName("type")->DenseRange(0, 2)->Unit(benchmark::kMillisecond);

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
