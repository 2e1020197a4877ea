// Statistics of the rows and columns of a feature matrix, beside Eigen's reductions. Arguments: frames, features.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <zimsr.h>

#include "statistics_peer.h"

namespace {

template <class T>
struct Matrix {
    int height, width;
    std::vector<T> values;

    explicit Matrix(const benchmark::State& state)
        : height(static_cast<int>(state.range(0))),
          width(static_cast<int>(state.range(1))),
          values(static_cast<std::size_t>(height) * static_cast<std::size_t>(width))
    {
        std::mt19937 random(1);
        for (T& value : values)
            value = static_cast<T>(static_cast<int>(random() >> 20) - 2048);
    }
};

template <class T, class Result = T, class Compute>
void measure(benchmark::State& state, Compute compute)
{
    const Matrix<T> m(state);
    const auto count = static_cast<std::size_t>(m.height > m.width ? m.height : m.width);
    std::vector<Result> first(count), second(count);
    for (auto _ : state) {
        compute(m, first.data(), second.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * m.height * m.width);
}

void shapes(benchmark::internal::Benchmark* b)
{
    for (int width : {13, 39, 40})
        b->Args({1000, width});
}

void columnMeanVar(benchmark::State& state)
{
    measure<float>(state, [](const auto& m, float* mean, float* var) {
        zimsMeanVarColumn_32f_D2(m.values.data(), m.height, m.width, mean, var, m.width);
    });
}
BENCHMARK(columnMeanVar)->Apply(shapes);

void columnMeanVar_eigen(benchmark::State& state)
{
    measure<float>(state, [](const auto& m, float* mean, float* var) {
        peerMeanVarColumn(m.values.data(), m.height, m.width, mean, var);
    });
}
BENCHMARK(columnMeanVar_eigen)->Apply(shapes);

void columnSum(benchmark::State& state)
{
    measure<float>(state, [](const auto& m, float* dst, float*) {
        zimsSumColumn_32f_D2(m.values.data(), m.width, m.height, dst, m.width);
    });
}
BENCHMARK(columnSum)->Apply(shapes);

void columnSum_eigen(benchmark::State& state)
{
    measure<float>(state,
                   [](const auto& m, float* dst, float*) { peerSumColumn(m.values.data(), m.height, m.width, dst); });
}
BENCHMARK(columnSum_eigen)->Apply(shapes);

void rowSum(benchmark::State& state)
{
    measure<float>(state, [](const auto& m, float* dst, float*) {
        zimsSumRow_32f_D2(m.values.data(), m.width, m.width, dst, m.height);
    });
}
BENCHMARK(rowSum)->Apply(shapes);

void rowSum_eigen(benchmark::State& state)
{
    measure<float>(state,
                   [](const auto& m, float* dst, float*) { peerSumRow(m.values.data(), m.height, m.width, dst); });
}
BENCHMARK(rowSum_eigen)->Apply(shapes);

void sampleMeanVar_16s(benchmark::State& state)
{
    measure<Zim16s>(state, [](const auto& m, Zim16s* mean, Zim16s* var) {
        zimsMeanVarColumn_16s_D2Sfs(m.values.data(), m.height, m.width, mean, var, m.width, 8);
    });
}
BENCHMARK(sampleMeanVar_16s)->Apply(shapes);

void sampleMeanVar_16s32s(benchmark::State& state)
{
    measure<Zim16s, Zim32s>(state, [](const auto& m, Zim32s* mean, Zim32s* var) {
        zimsMeanVarColumn_16s32s_D2Sfs(m.values.data(), m.height, m.width, mean, var, m.width, 0);
    });
}
BENCHMARK(sampleMeanVar_16s32s)->Apply(shapes);

}  // namespace
