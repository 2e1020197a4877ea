// Log-Gaussian scores: blocks of frames beside the plain loop, and one frame on many Gaussians beside two matrix-vector
// products on parameters prepared beforehand: sum (x - m)^2 v = sum x^2 v - 2 x m v + m^2 v, with the last in the
// constant.
#include <benchmark/benchmark.h>
#include <cblas.h>

#include <zimsr/loggauss.h>
#include <zimsr/mixture.h>

#include "feature_data.h"
#include "loggauss_peer.h"

namespace {

template <class Score>
void frames(benchmark::State& state, Score score)
{
    const int width = static_cast<int>(state.range(0)), height = 512;
    const Floats mat = features(width * height), mean = features(width), invVar = features(width);
    Floats result(static_cast<std::size_t>(height));
    for (auto _ : state) {
        score(mat.data(), width, mean.data(), invVar.data(), width, result.data(), height, 1.0f);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * height);
}

void multiMix(benchmark::State& state)
{
    const int height = static_cast<int>(state.range(0)), width = static_cast<int>(state.range(1));
    const Floats mean = features(width * height), invVar = features(width * height), x = features(width);
    Floats scores(static_cast<std::size_t>(height));
    for (auto _ : state) {
        zimsLogGaussMultiMix_32f_D2(mean.data(), invVar.data(), width, x.data(), width, scores.data(), height);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * height);
}

void matrixVector(benchmark::State& state)
{
    const int height = static_cast<int>(state.range(0)), width = static_cast<int>(state.range(1));
    const Floats bySquare = features(width * height), byValue = features(width * height), x = features(width);
    Floats scores(static_cast<std::size_t>(height)), squares(x.size());
    openblas_set_num_threads(1);
    for (auto _ : state) {
        for (std::size_t j = 0; j < x.size(); ++j)
            squares[j] = x[j] * x[j];
        cblas_sgemv(CblasRowMajor, CblasNoTrans, height, width, -0.5f, bySquare.data(), width, squares.data(), 1, 1.0f,
                    scores.data(), 1);
        cblas_sgemv(CblasRowMajor, CblasNoTrans, height, width, 1.0f, byValue.data(), width, x.data(), 1, 1.0f,
                    scores.data(), 1);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * height);
}

const bool registered = [] {
    for (int width : {13, 26, 36, 39, 40, 64}) {
        benchmark::RegisterBenchmark("frames/ours", frames<decltype(zimsLogGauss_32f_D2)*>, zimsLogGauss_32f_D2)
            ->Arg(width);
        benchmark::RegisterBenchmark("frames/plain loop", frames<decltype(peerLogGauss)*>, peerLogGauss)->Arg(width);
    }
    for (int height : {8, 64, 2048})
        for (int width : {13, 39, 40}) {
            benchmark::RegisterBenchmark("gaussians/ours", multiMix)->Args({height, width});
            benchmark::RegisterBenchmark("gaussians/two sgemv", matrixVector)->Args({height, width});
        }
    return true;
}();

}  // namespace
