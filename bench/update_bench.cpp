// Model parameter updates beside the compiler's plain loops, for the lengths of a Gaussian and of a mixture, and a long
// one.
#include <benchmark/benchmark.h>

#include <string>
#include <vector>

#include <zimsr/update.h>

#include "update_peer.h"

namespace {

// Vectors of one type, on a register's boundary, positive numbers in all.
template <class T>
T* vector(int which)
{
    constexpr std::size_t longest = 4096;
    alignas(64) static T vectors[4][longest];
    for (std::size_t i = 0; i < longest; ++i)
        vectors[which][i] = static_cast<T>((i * 7 + static_cast<std::size_t>(which)) % 97 + 1);
    return vectors[which];
}

template <class T, class Call>
void add(const std::string& name, Call call)
{
    auto* entry = benchmark::RegisterBenchmark(name.c_str(), [call](benchmark::State& state) {
        T *a = vector<T>(0), *b = vector<T>(1), *c = vector<T>(2), *dst = vector<T>(3);
        const int len = static_cast<int>(state.range(0));
        for (auto _ : state) {
            call(a, b, c, dst, len);
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * len);
    });
    for (int len : {13, 39, 64, 4096})
        entry->Arg(len);
}

template <class T, class Ours, class Peer>
void compare(const std::string& name, Ours ours, Peer theirs)
{
    add<T>(name + "/ours", ours);
    add<T>(name + "/peer", theirs);
}

[[maybe_unused]] const bool registered = [] {
    using F = float;
    compare<F>(
        "mean", [](F* a, F*, F*, F* dst, int len) { zimsUpdateMean_32f(a, dst, len, 1e9f); },
        [](F* a, F*, F*, F* dst, int len) { peer::updateMean(a, dst, len, 1e9f); });
    compare<F>(
        "variance", [](F* a, F* b, F* c, F* dst, int len) { zimsUpdateVar_32f(a, b, c, dst, len, 9, 7); },
        [](F* a, F* b, F* c, F* dst, int len) { peer::updateVar(a, b, c, dst, len, 9, 7); });
    compare<F>(
        "weight", [](F* a, F*, F* c, F* dst, int len) { zimsUpdateWeight_32f(a, dst, len, c, 999, 0.01f); },
        [](F* a, F*, F* c, F* dst, int len) { *c = peer::updateWeight(a, dst, len, 999, 0.01f); });
    compare<F>(
        "gconst", [](F* a, F*, F*, F* dst, int len) { zimsUpdateGConst_32f(a, len, dst); },
        [](F* a, F*, F*, F* dst, int len) { *dst = peer::updateGConst(a, len); });
    compare<F>(
        "precalc", [](F* a, F* b, F*, F* dst, int len) { zimsOutProbPreCalc_32f(a, b, dst, len); },
        [](F* a, F* b, F*, F* dst, int len) { peer::outProbPreCalc(a, b, dst, len); });
    compare<F>(
        "newvar", [](F* a, F* b, F*, F* dst, int len) { zimsNewVar_32f(a, b, dst, len, 9, 0.1f); },
        [](F* a, F* b, F*, F* dst, int len) { peer::newVar(a, b, dst, len, 9, 0.1f); });
    compare<F>(
        "weightedsum_32f", [](F* a, F* b, F*, F* dst, int len) { zimsWeightedSum_32f(a, b, dst, len, 3, 1); },
        [](F* a, F* b, F*, F* dst, int len) { peer::weightedSum(a, b, dst, len, 3, 1); });
    using S = short;
    compare<S>(
        "weightedsum_16s", [](S* a, S* b, S*, S* dst, int len) { zimsWeightedSum_16s(a, b, dst, len, 3, 1); },
        [](S* a, S* b, S*, S* dst, int len) { peer::weightedSum(a, b, dst, len, 3, 1); });
    return true;
}();

}  // namespace
