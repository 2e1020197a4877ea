// Autocorrelation beside the plain loop: frames of linear prediction, and lags on either side of the threshold to the
// transform.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <zimsr.h>

#include "autocorr_peer.h"

namespace {

std::vector<float> makeSignal(std::int64_t length)
{
    std::vector<float> signal(static_cast<std::size_t>(length));
    std::mt19937 engine(1);
    for (float& value : signal)
        value = static_cast<float>(engine() % 2001) / 1000 - 1;
    return signal;
}

template <class AutoCorr>
void run(benchmark::State& state, AutoCorr autoCorr)
{
    const std::vector<float> src = makeSignal(state.range(0));
    std::vector<float> dst(static_cast<std::size_t>(state.range(1)));
    for (auto _ : state) {
        autoCorr(src.data(), static_cast<int>(src.size()), dst.data(), static_cast<int>(dst.size()));
        benchmark::ClobberMemory();
    }
}

void shapes(benchmark::internal::Benchmark* b)
{
    for (const auto& shape :
         {std::pair{160, 11}, {240, 11}, {240, 13}, {400, 17}, {400, 400}, {855, 855}, {856, 856}, {4096, 4096}})
        b->Args({shape.first, shape.second});
}

BENCHMARK_CAPTURE(run, zimsr, zimsAutoCorr_32f)->Apply(shapes);
BENCHMARK_CAPTURE(run, plain, plainAutoCorr)->Apply(shapes);

}  // namespace
