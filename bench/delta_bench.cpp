// Dynamic features of whole utterances, beside the plain loop. Arguments: width of the statics, frames.
#include <benchmark/benchmark.h>

#include <vector>

#include <zimsr.h>

#include "delta_peer.h"

namespace {

template <class T>
struct Matrix {
    int width, height, step;
    std::vector<T> src, dst;

    Matrix(const benchmark::State& state, int srcWidth, int kinds)
        : width(static_cast<int>(state.range(0))),
          height(static_cast<int>(state.range(1))),
          step(kinds * width),
          src(static_cast<std::size_t>(srcWidth == 0 ? width : srcWidth) * height),
          dst(static_cast<std::size_t>(step) * height)
    {
        unsigned noise = 1;
        for (T& x : src)
            x = static_cast<T>(static_cast<int>((noise = noise * 1664525 + 1013904223) >> 20) - 2048);
    }
};

template <class T, class Compute>
void measure(benchmark::State& state, int kinds, Compute compute, int srcWidth = 0)
{
    Matrix<T> m(state, srcWidth, kinds);
    for (auto _ : state) {
        compute(m);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * m.height);
}

constexpr int whole = ZimDeltaBegin | ZimDeltaEnd;

void shapes(benchmark::internal::Benchmark* b)
{
    for (int width : {12, 13, 14, 24, 39})
        b->Args({width, 512});
}

void deltaWin1_32f(benchmark::State& state)
{
    measure<float>(state, 2, [](auto& m) {
        zimsDelta_Win1_32f_D2(m.src.data(), m.width, m.dst.data(), m.step, m.height, 0.5f, whole);
    });
}
void deltaWin1_32f_plain(benchmark::State& state)
{
    measure<float>(state, 2,
                   [](auto& m) { peer::deltaWin1(m.src.data(), m.width, m.dst.data(), m.step, m.height, 0.5f); });
}
BENCHMARK(deltaWin1_32f)->Apply(shapes);
BENCHMARK(deltaWin1_32f_plain)->Apply(shapes);

void deltaDeltaWin2_32f(benchmark::State& state)
{
    measure<float>(state, 3, [](auto& m) {
        zimsDeltaDelta_Win2_32f_D2(m.src.data(), m.width, m.dst.data(), m.step, m.height, 0.1f, 0.1f, whole);
    });
}
void deltaDeltaWin2_32f_plain(benchmark::State& state)
{
    measure<float>(state, 3, [](auto& m) {
        peer::deltaDeltaWin2(m.src.data(), m.width, m.dst.data(), m.step, m.height, 0.1f, 0.1f);
    });
}
BENCHMARK(deltaDeltaWin2_32f)->Apply(shapes);
BENCHMARK(deltaDeltaWin2_32f_plain)->Apply(shapes);

// Widths up to 13 saturate every sum, wider ones are summed in 32 bits.
void deltaDeltaWin2_16s(benchmark::State& state)
{
    measure<short>(state, 3, [](auto& m) {
        zimsDeltaDelta_Win2_16s_D2Sfs(m.src.data(), m.width, m.dst.data(), m.step, m.height, 3277, 3277, whole, 15);
    });
}
void deltaDeltaWin2_16s_plain(benchmark::State& state)
{
    measure<short>(state, 3, [](auto& m) {
        const auto compute = m.width < 14 ? static_cast<decltype(&peer::deltaDeltaWin2Wide)>(peer::deltaDeltaWin2)
                                          : peer::deltaDeltaWin2Wide;
        compute(m.src.data(), m.width, m.dst.data(), m.step, m.height, 3277, 3277, 15);
    });
}
BENCHMARK(deltaDeltaWin2_16s)->Apply(shapes);
BENCHMARK(deltaDeltaWin2_16s_plain)->Apply(shapes);

void aurora_32f(benchmark::State& state)
{
    measure<float>(
        state, 3, [](auto& m) { zimsDeltaDelta_Aurora_32f_D2(m.src.data(), m.dst.data(), m.step, m.height, whole); },
        14);
}
void aurora_32f_plain(benchmark::State& state)
{
    measure<float>(
        state, 3, [](auto& m) { peer::aurora(m.src.data(), m.dst.data(), m.step, m.height); }, 14);
}
BENCHMARK(aurora_32f)->Args({13, 512});
BENCHMARK(aurora_32f_plain)->Args({13, 512});

void aurora_16s(benchmark::State& state)
{
    measure<short>(
        state, 3,
        [](auto& m) { zimsDeltaDelta_Aurora_16s_D2Sfs(m.src.data(), m.dst.data(), m.step, m.height, whole, 1); }, 14);
}
void aurora_16s_plain(benchmark::State& state)
{
    measure<short>(
        state, 3, [](auto& m) { peer::aurora(m.src.data(), m.dst.data(), m.step, m.height, 1); }, 14);
}
BENCHMARK(aurora_16s)->Args({13, 512});
BENCHMARK(aurora_16s_plain)->Args({13, 512});

void evalDelta_32f(benchmark::State& state)
{
    measure<float>(state, 2,
                   [](auto& m) { zimsEvalDelta_32f_D2(m.dst.data(), m.height, m.step, m.width, 0, 2, 0.1f); });
}
void evalDelta_32f_plain(benchmark::State& state)
{
    measure<float>(state, 2, [](auto& m) { peer::evalDelta(m.dst.data(), m.height, m.step, m.width, 2, 0.1f); });
}
BENCHMARK(evalDelta_32f)->Apply(shapes);
BENCHMARK(evalDelta_32f_plain)->Apply(shapes);

void evalDelta_16s(benchmark::State& state)
{
    measure<short>(state, 2,
                   [](auto& m) { zimsEvalDelta_16s_D2Sfs(m.dst.data(), m.height, m.step, m.width, 0, 2, 3277, 15); });
}
void evalDelta_16s_plain(benchmark::State& state)
{
    measure<short>(state, 2, [](auto& m) { peer::evalDelta(m.dst.data(), m.height, m.step, m.width, 2, 3277, 15); });
}
BENCHMARK(evalDelta_16s)->Apply(shapes);
BENCHMARK(evalDelta_16s_plain)->Apply(shapes);

void copyColumn_32f(benchmark::State& state)
{
    measure<float>(state, 3,
                   [](auto& m) { zimsCopyColumn_32f_D2(m.src.data(), m.width, m.dst.data(), m.step, m.height); });
}
void copyColumn_32f_plain(benchmark::State& state)
{
    measure<float>(state, 3, [](auto& m) { peer::copyColumn(m.src.data(), m.width, m.dst.data(), m.step, m.height); });
}
BENCHMARK(copyColumn_32f)->Apply(shapes);
BENCHMARK(copyColumn_32f_plain)->Apply(shapes);

}  // namespace
