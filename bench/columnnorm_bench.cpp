// Mean and variance normalisation, beside the plain loop. Arguments: width, frames.
#include <benchmark/benchmark.h>

#include <vector>

#include <zimsr.h>

#include "columnnorm_peer.h"

namespace {

template <class T>
struct Matrix {
    int width, height;
    std::vector<T> values, mean, val;
    std::vector<float> sum, sumSq;

    explicit Matrix(const benchmark::State& state)
        : width(static_cast<int>(state.range(0))),
          height(static_cast<int>(state.range(1))),
          values(static_cast<std::size_t>(width) * height),
          mean(static_cast<std::size_t>(width)),
          val(mean.size(), 1),
          sum(mean.size()),
          sumSq(mean.size())
    {
        unsigned noise = 1;
        for (T& x : values)
            x = static_cast<T>(static_cast<int>((noise = noise * 1664525 + 1013904223) >> 20) - 2048);
    }
};

template <class T, class Compute>
void measure(benchmark::State& state, Compute compute)
{
    Matrix<T> m(state);
    for (auto _ : state) {
        compute(m);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * m.height);
}

void shapes(benchmark::internal::Benchmark* b)
{
    for (int width : {13, 39})
        b->Args({width, 1000});
}

#define ZIM_SUMS(name, T, ours)                                                                                       \
    void name(benchmark::State& state)                                                                                \
    {                                                                                                                 \
        measure<T>(state,                                                                                             \
                   [](auto& m) { ours(m.values.data(), m.width, m.height, m.sum.data(), m.sumSq.data(), m.width); }); \
    }                                                                                                                 \
    BENCHMARK(name)->Apply(shapes)

ZIM_SUMS(sumMeanVar_32f, float, zimsSumMeanVar_32f);
ZIM_SUMS(sumMeanVar_32f_plain, float, peer::sumMeanVar);
ZIM_SUMS(sumMeanVar_16s32f, short, zimsSumMeanVar_16s32f);
ZIM_SUMS(sumMeanVar_16s32f_plain, short, peer::sumMeanVar);

void normalize_32f(benchmark::State& state)
{
    measure<float>(state, [](auto& m) {
        zimsNormalizeColumn_32f_D2(m.values.data(), m.width, m.height, m.mean.data(), m.val.data(), m.width);
    });
}
void normalize_32f_plain(benchmark::State& state)
{
    measure<float>(state, [](auto& m) {
        peer::normalise(m.values.data(), m.width, m.height, m.mean.data(), m.val.data(), m.width);
    });
}
BENCHMARK(normalize_32f)->Apply(shapes);
BENCHMARK(normalize_32f_plain)->Apply(shapes);

void normalize_16s(benchmark::State& state)
{
    measure<short>(state, [](auto& m) {
        zimsNormalizeColumn_16s_D2Sfs(m.values.data(), m.width, m.height, m.mean.data(), m.val.data(), m.width, 0);
    });
}
void normalize_16s_plain(benchmark::State& state)
{
    measure<short>(state, [](auto& m) {
        peer::normalise(m.values.data(), m.width, m.height, m.mean.data(), m.val.data(), m.width, 0);
    });
}
BENCHMARK(normalize_16s)->Apply(shapes);
BENCHMARK(normalize_16s_plain)->Apply(shapes);

}  // namespace
