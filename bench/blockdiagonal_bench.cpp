// Scores under block-diagonal Gaussians of three blocks, such as cepstra and their two derivatives, beside the plain
// loop.
#include <benchmark/benchmark.h>

#include <vector>

#include <zimsr/blockdiagonal.h>

#include "blockdiagonal_peer.h"
#include "feature_data.h"

namespace {

struct Problem {
    int sizes[3], total;
    Floats elements, x, mean;
    std::vector<const Zim32f*> rows;

    explicit Problem(int size)
        : sizes{size, size, size}, total(3 * size), elements(features(total * size)), x(features(total)), mean(x)
    {
        for (int r = 0; r < total; ++r)
            rows.push_back(elements.data() + r * size);
        for (Zim32f& value : mean)
            value *= 0.5f;
    }
};

void ours(benchmark::State& state)
{
    const Problem p(static_cast<int>(state.range(0)));
    ZimsBlockDMatrix_32f* matrix = nullptr;
    zimsBlockDMatrixInitAlloc_32f(&matrix, p.rows.data(), p.sizes, 3);
    Zim32f score;
    for (auto _ : state) {
        zimsLogGaussSingle_BlockDVar_32f(p.x.data(), p.mean.data(), matrix, p.total, &score, -1);
        benchmark::DoNotOptimize(score);
    }
    zimsBlockDMatrixFree_32f(matrix);
}

void plainLoop(benchmark::State& state)
{
    const Problem p(static_cast<int>(state.range(0)));
    for (auto _ : state)
        benchmark::DoNotOptimize(peerBlockScore(p.x.data(), p.mean.data(), p.rows.data(), p.sizes, 3, -1));
}

const bool registered = [] {
    for (int size : {4, 13, 26, 64}) {
        benchmark::RegisterBenchmark("score/ours", ours)->Arg(size);
        benchmark::RegisterBenchmark("score/plain loop", plainLoop)->Arg(size);
    }
    return true;
}();

}  // namespace
