// Covariance of frames, beside OpenBLAS's symmetric product of centred data in double precision. Arguments: frames,
// features.
#include <benchmark/benchmark.h>
#include <cblas.h>

#include <random>
#include <vector>

#include <zimsr.h>

namespace {

template <class T>
struct Frames {
    int height, width;
    std::vector<T> mat, mean;
    std::vector<double> dst;

    explicit Frames(const benchmark::State& state)
        : height(static_cast<int>(state.range(0))),
          width(static_cast<int>(state.range(1))),
          mat(static_cast<std::size_t>(height) * static_cast<std::size_t>(width)),
          mean(static_cast<std::size_t>(width)),
          dst(mean.size() * mean.size())
    {
        std::mt19937 random(1);
        for (T& value : mat)
            value = static_cast<T>(static_cast<int>(random() >> 20) - 2048);
    }
};

template <class T, class Accumulate>
void measure(benchmark::State& state, Accumulate accumulate)
{
    Frames<T> frames(state);
    openblas_set_num_threads(1);
    for (auto _ : state) {
        accumulate(frames);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * frames.height);
}

void shapes(benchmark::internal::Benchmark* b)
{
    for (int width : {13, 39, 40})
        b->Args({2000, width});
    b->Args({4000, 40});  // frame after frame, if the arrays happen to be aligned
}

void covariance_32f64f(benchmark::State& state)
{
    measure<Zim32f>(state, [](auto& f) {
        zimsAccCovarianceMatrix_32f64f_D2(f.mat.data(), f.width, f.height, f.mean.data(), f.dst.data(), f.width,
                                          f.width, 1e-3);
    });
}
BENCHMARK(covariance_32f64f)->Apply(shapes);

void covariance_16s64f(benchmark::State& state)
{
    measure<Zim16s>(state, [](auto& f) {
        zimsAccCovarianceMatrix_16s64f_D2(f.mat.data(), f.width, f.height, f.mean.data(), f.dst.data(), f.width,
                                          f.width, 1e-3);
    });
}
BENCHMARK(covariance_16s64f)->Apply(shapes);

void dsyrk(benchmark::State& state)
{
    measure<double>(state, [](auto& f) {
        cblas_dsyrk(CblasRowMajor, CblasUpper, CblasTrans, f.width, f.height, 1e-3, f.mat.data(), f.width, 1.0,
                    f.dst.data(), f.width);
    });
}
BENCHMARK(dsyrk)->Apply(shapes);

}  // namespace
