// Normalisation of log-energies, beside the plain loop. Arguments: energies, and the elements from one to the next.
#include <benchmark/benchmark.h>

#include <vector>

#include <zimsr.h>

#include "energy_peer.h"

namespace {

// A scale of 1 and a target that is given keep the energies in their range, call after call.
template <class T, class Normalise>
void measure(benchmark::State& state, Normalise normalise)
{
    const int height = static_cast<int>(state.range(0)), step = static_cast<int>(state.range(1));
    std::vector<T> energies(static_cast<std::size_t>(height) * static_cast<std::size_t>(step));
    unsigned noise = 1;
    for (T& e : energies)
        e = static_cast<T>((noise = noise * 1664525 + 1013904223) >> 20);
    for (auto _ : state) {
        normalise(energies.data(), step, height);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * height);
}

void shapes(benchmark::internal::Benchmark* b)
{
    for (int height : {100, 1000})
        for (int step : {1, 39})
            b->Args({height, step});
}

#define ZIM_MEASURE(name, T, ours, plain, ...)                                                           \
    void name(benchmark::State& state)                                                                   \
    {                                                                                                    \
        measure<T>(state, [](T* e, int step, int height) { (void)ours(e, step, height, __VA_ARGS__); }); \
    }                                                                                                    \
    void name##_plain(benchmark::State& state)                                                           \
    {                                                                                                    \
        measure<T>(state, [](T* e, int step, int height) { plain(e, step, height, __VA_ARGS__); });      \
    }                                                                                                    \
    BENCHMARK(name)->Apply(shapes);                                                                      \
    BENCHMARK(name##_plain)->Apply(shapes)

ZIM_MEASURE(normEnergy_32f, float, zimsNormEnergy_32f, peer::normEnergy, 50, 1);
ZIM_MEASURE(normEnergy_RT_32f, float, zimsNormEnergy_RT_32f, peer::normEnergyRT, 50, 1, 1);
ZIM_MEASURE(normEnergy_16s, short, zimsNormEnergy_16s, peer::normEnergy, 5000, 4095, 1);
ZIM_MEASURE(normEnergy_RT_16s, short, zimsNormEnergy_RT_16s, peer::normEnergyRT, 5000, 4095, 4095, 1);
ZIM_MEASURE(normEnergy_16s_truncated, short, zimsNormEnergy_16s, peer::normEnergyTruncated, 5000, 4095, 1.25f);

}  // namespace
