// Mahalanobis distances and moments, beside the plain loops.
#include <benchmark/benchmark.h>

#include <zimsr/mahalanobis.h>

#include "feature_data.h"
#include "mahalanobis_peer.h"

namespace {

template <class Distances>
void frames(benchmark::State& state, Distances distances)
{
    const int width = static_cast<int>(state.range(0)), height = 512;
    const Floats mat = features(width * height), mean = features(width), invVar = features(width);
    Floats dst(static_cast<std::size_t>(height));
    for (auto _ : state) {
        distances(mat.data(), width, mean.data(), invVar.data(), width, dst.data(), height);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * height);
}

template <class Distances>
void gaussians(benchmark::State& state, Distances distances)
{
    const int width = static_cast<int>(state.range(0)), height = 64;
    const Floats mean = features(width * height), invVar = features(width * height), x = features(width);
    Floats dst(static_cast<std::size_t>(height));
    for (auto _ : state) {
        distances(mean.data(), invVar.data(), width, x.data(), width, dst.data(), height);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * height);
}

template <class Accumulate>
void moments(benchmark::State& state, Accumulate accumulate)
{
    const int len = static_cast<int>(state.range(0));
    const Floats x = features(len), mean = features(len);
    Floats first(x.size()), second(x.size());
    for (auto _ : state) {
        accumulate(x.data(), mean.data(), first.data(), second.data(), len, 0.25f);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * len);
}

const bool registered = [] {
    for (int width : {13, 26, 36, 39, 40, 64}) {
        benchmark::RegisterBenchmark("frames/ours", frames<decltype(zimsMahDist_32f_D2)*>, zimsMahDist_32f_D2)
            ->Arg(width);
        benchmark::RegisterBenchmark("frames/plain loop", frames<decltype(peerMahDist)*>, peerMahDist)->Arg(width);
        benchmark::RegisterBenchmark("gaussians/ours", gaussians<decltype(zimsMahDistMultiMix_32f_D2)*>,
                                     zimsMahDistMultiMix_32f_D2)
            ->Arg(width);
        benchmark::RegisterBenchmark("gaussians/plain loop", gaussians<decltype(peerMahDistMultiMix)*>,
                                     peerMahDistMultiMix)
            ->Arg(width);
    }
    for (int len : {13, 39, 40, 1000}) {
        benchmark::RegisterBenchmark("moments/ours", moments<decltype(zimsMeanVarAcc_32f)*>, zimsMeanVarAcc_32f)
            ->Arg(len);
        benchmark::RegisterBenchmark("moments/plain loop", moments<decltype(peerMeanVarAcc)*>, peerMeanVarAcc)
            ->Arg(len);
    }
    return true;
}();

}  // namespace
