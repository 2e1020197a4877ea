// Offset removal, beside the plain loop. Argument: samples.
#include <benchmark/benchmark.h>

#include <vector>

#include <zimsr.h>

#include "offset_peer.h"

namespace {

// A noise of half the range.
template <class T, class Compute>
void measure(benchmark::State& state, Compute compute)
{
    const int len = static_cast<int>(state.range(0));
    std::vector<T> src(static_cast<std::size_t>(len)), dst(src.size());
    unsigned noise = 1;
    for (T& x : src)
        x = static_cast<T>(static_cast<int>((noise = noise * 1664525 + 1013904223) >> 17) - 16384);
    for (auto _ : state) {
        T previous = 0;
        compute(src.data(), dst.data(), len, &previous);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * len);
}

void lengths(benchmark::internal::Benchmark* b)
{
    for (int len : {160, 400, 16000})
        b->Arg(len);
}

void offset_32f(benchmark::State& state)
{
    measure<float>(state, [](auto src, auto dst, int len, auto previous) {
        zimsCompensateOffset_32f(src, dst, len, previous, 0, 0.999f);
    });
}
void offset_32f_plain(benchmark::State& state)
{
    measure<float>(
        state, [](auto src, auto dst, int len, auto previous) { peer::offset(src, dst, len, previous, 0, 0.999f); });
}
BENCHMARK(offset_32f)->Apply(lengths);
BENCHMARK(offset_32f_plain)->Apply(lengths);

void offset_16s(benchmark::State& state)
{
    measure<short>(state, [](auto src, auto dst, int len, auto previous) {
        zimsCompensateOffset_16s(src, dst, len, previous, 0, 0.999f);
    });
}
void offset_16s_plain(benchmark::State& state)
{
    measure<short>(state,
                   [](auto src, auto dst, int len, auto previous) { peer::offset(src, dst, len, previous, 0, 4091); });
}
BENCHMARK(offset_16s)->Apply(lengths);
BENCHMARK(offset_16s_plain)->Apply(lengths);

void offsetQ15_16s(benchmark::State& state)
{
    measure<short>(state, [](auto src, auto dst, int len, auto previous) {
        zimsCompensateOffsetQ15_16s(src, dst, len, previous, 0, 32735);
    });
}
void offsetQ15_16s_plain(benchmark::State& state)
{
    measure<short>(
        state, [](auto src, auto dst, int len, auto previous) { peer::offsetQ15(src, dst, len, previous, 0, 32735); });
}
BENCHMARK(offsetQ15_16s)->Apply(lengths);
BENCHMARK(offsetQ15_16s_plain)->Apply(lengths);

void offset_16s_I(benchmark::State& state)
{
    measure<short>(state, [](auto src, auto, int len, auto previous) {
        zimsCompensateOffset_16s_I(src, len, previous, 0, 0.999f);
    });
}
void offset_16s_I_plain(benchmark::State& state)
{
    measure<short>(state,
                   [](auto src, auto, int len, auto previous) { peer::offsetRounded(src, len, previous, 0, 0.999f); });
}
BENCHMARK(offset_16s_I)->Apply(lengths);
BENCHMARK(offset_16s_I_plain)->Apply(lengths);

}  // namespace
