// Counts of sign changes, beside the plain loop. Argument: samples.
#include <benchmark/benchmark.h>

#include <vector>

#include <zimsr.h>

#include "signchanges_peer.h"

namespace {

template <class T, class Result>
void measure(benchmark::State& state, Result, void (*count)(const T*, int, Result*))
{
    const int len = static_cast<int>(state.range(0));
    std::vector<T> src(static_cast<std::size_t>(len));
    unsigned noise = 1;
    for (T& x : src)
        x = static_cast<T>(static_cast<int>((noise = noise * 1664525 + 1013904223) >> 20) - 2048);
    for (auto _ : state) {
        Result res;
        count(src.data(), len, &res);
        benchmark::DoNotOptimize(res);
    }
    state.SetItemsProcessed(state.iterations() * len);
}

void lengths(benchmark::internal::Benchmark* b)
{
    for (int len : {160, 400, 4096})
        b->Arg(len);
}

#define ZIM_MEASURE(name, T, Result, ours, plain)                                                     \
    void name(benchmark::State& state)                                                                \
    {                                                                                                 \
        measure<T>(                                                                                   \
            state, Result{}, +[](const T* src, int len, Result* res) { (void)ours(src, len, res); }); \
    }                                                                                                 \
    void name##_plain(benchmark::State& state)                                                        \
    {                                                                                                 \
        measure<T>(                                                                                   \
            state, Result{}, +[](const T* src, int len, Result* res) { plain(src, len, res); });      \
    }                                                                                                 \
    BENCHMARK(name)->Apply(lengths);                                                                  \
    BENCHMARK(name##_plain)->Apply(lengths)

ZIM_MEASURE(signChanges_32f, float, float, zimsSignChangeRate_32f, peer::signChanges);
ZIM_MEASURE(signChanges_16s, short, int, zimsSignChangeRate_16s, peer::signChanges);
ZIM_MEASURE(halfSteps_32f, float, float, zimsSignChangeRate_Count0_32f, peer::halfSteps);
ZIM_MEASURE(halfSteps_16s, short, int, zimsSignChangeRate_Count0_16s, peer::halfSteps);
ZIM_MEASURE(signBitChanges_32f, float, int, zimsSignChangeRateXor_32f, peer::signBitChanges);

}  // namespace
