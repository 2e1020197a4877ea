// Mixtures scored by a shortlist at several densities, beside all Gaussians scored; tables gathered from shortlists,
// beside the plain loop.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <zimsr/mixture.h>
#include <zimsr/selection.h>

#include "feature_data.h"
#include "selection_peer.h"

namespace {

constexpr int width = 39, frameCount = 200;

struct Problem {
    int gaussCount;
    Floats src, mean, invVar, val, dst;
    std::vector<Zim8u> table;

    Problem(int gaussians, int percent)
        : gaussCount(gaussians),
          src(features(width * frameCount)),
          mean(features(width * gaussians)),
          invVar(mean),
          val(features(gaussians)),
          dst(frameCount),
          table(static_cast<std::size_t>(gaussians / 8 * frameCount))
    {
        std::mt19937 random(1);
        for (Zim8u& byte : table)
            for (int bit = 0; bit < 8; ++bit)
                byte = static_cast<Zim8u>(byte << 1 | (static_cast<int>(random() % 100) < percent));
    }
};

void selected(benchmark::State& state)
{
    Problem p(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)));
    for (auto _ : state) {
        zimsLogGaussMixture_Select_32f_D2(p.src.data(), p.mean.data(), p.invVar.data(), width, width, p.val.data(),
                                          p.table.data(), p.gaussCount, p.dst.data(), frameCount, -4500000.0f);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * frameCount * p.gaussCount * state.range(1) / 100);
}

void all(benchmark::State& state)
{
    Problem p(static_cast<int>(state.range(0)), 100);
    for (auto _ : state) {
        for (int f = 0; f < frameCount; ++f)
            zimsLogGaussMixture_32f_D2(p.src.data() + f * width, p.mean.data(), p.invVar.data(), p.gaussCount, width,
                                       width, p.val.data(), p.dst.data() + f);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * frameCount * p.gaussCount);
}

template <class Build>
void gather(benchmark::State& state, Build build)
{
    constexpr int count = 4, height = 64, startBit = 21;
    const int bits = static_cast<int>(state.range(0)), rowBytes = bits / 8 + 8;
    std::mt19937 random(1);
    std::vector<Zim8u> bytes(static_cast<std::size_t>(rowBytes * height)),
        dst(static_cast<std::size_t>(bits / 8 * frameCount));
    std::vector<const Zim8u*> rows;
    for (int r = 0; r < height; ++r)
        rows.push_back(bytes.data() + r * rowBytes);
    std::vector<Zim32s> indices(count * frameCount);
    for (Zim32s& index : indices)
        index = static_cast<Zim32s>(random() % height);
    for (auto _ : state) {
        build(indices.data(), count, rows.data(), height, rowBytes, startBit, dst.data(), bits);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * frameCount);
}

void gatherOurs(benchmark::State& state)
{
    gather(state, [](auto indices, int count, auto rows, int height, int rowBytes, int startBit, auto dst, int bits) {
        zimsBuildSignTable_8u1u(indices, count, rows, height, rowBytes, startBit, dst, frameCount, bits);
    });
}

void gatherPeer(benchmark::State& state)
{
    gather(state, [](auto indices, int count, auto rows, int, int, int startBit, auto dst, int bits) {
        peerBuildSignTable(indices, count, rows, startBit, dst, frameCount, bits);
    });
}

const bool registered = [] {
    for (int gaussCount : {16, 64, 1024}) {
        benchmark::RegisterBenchmark("mixture/all", all)->Arg(gaussCount);
        for (int percent : {2, 5, 10, 25, 50, 100})
            benchmark::RegisterBenchmark("mixture/selected", selected)->Args({gaussCount, percent});
    }
    for (int bits : {16, 24, 64, 256, 1024}) {
        benchmark::RegisterBenchmark("gather/ours", gatherOurs)->Arg(bits);
        benchmark::RegisterBenchmark("gather/plain loop", gatherPeer)->Arg(bits);
    }
    return true;
}();

}  // namespace
