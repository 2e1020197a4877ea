// Log-domain addition beside loops over the compiler's vectorised exp and log1p.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <zimsr.h>

#include "logdomain_peer.h"

namespace {

// Scores of competing hypotheses: every segment of the correction occurs, and some pairs lie too far apart to add.
template <class T>
struct Operands {
    explicit Operands(int len) : src(draw(len, 1)), initial(draw(len, 2)), srcDst(initial) {}

    static std::vector<T> draw(int len, unsigned seed)
    {
        std::mt19937 engine(seed);
        std::uniform_real_distribution<T> score(-60, -40);
        std::vector<T> values(static_cast<std::size_t>(len) + 64 * seed);  // not at a multiple of 4096 from each other
        for (T& value : values)
            value = score(engine);
        return values;
    }

    // The sum is formed in place; this copy is part of both sides' time.
    T* restored(int len)
    {
        if constexpr (sizeof(T) == 4)
            zimsCopy_32f(initial.data(), srcDst.data(), len);
        else
            zimsCopy_64f(initial.data(), srcDst.data(), len);
        return srcDst.data();
    }

    std::vector<T> src, initial, srcDst;
};

template <class T, class Add>
void add(benchmark::State& state, Add addAll)
{
    const int len = static_cast<int>(state.range(0));
    Operands<T> operands(len);
    for (auto _ : state) {
        addAll(operands.src.data(), operands.restored(len), len);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * len);
}

template <class T, class Sum>
void sum(benchmark::State& state, Sum sumAll)
{
    const int len = static_cast<int>(state.range(0));
    const std::vector<T> src = Operands<T>::draw(len, 1);
    T result;
    for (auto _ : state) {
        sumAll(src.data(), &result, len);
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * len);
}

const bool registered = [] {
    for (int len : {128, 4096}) {
        const auto run = [len](const char* name, auto bench) { benchmark::RegisterBenchmark(name, bench)->Arg(len); };
        run("fast/ours", [](auto& state) {
            add<Zim32f>(state, [](const Zim32f* a, Zim32f* b, int n) { zimsLogAdd_32f(a, b, n, 1); });
        });
        run("accurate/ours", [](auto& state) {
            add<Zim32f>(state, [](const Zim32f* a, Zim32f* b, int n) { zimsLogAdd_32f(a, b, n, 0); });
        });
        run("float/peer", [](auto& state) { add<Zim32f>(state, peerLogAdd_32f); });
        run("in_double/peer", [](auto& state) { add<Zim32f>(state, peerLogAddInDouble_32f); });
        run("64f/ours", [](auto& state) {
            add<Zim64f>(state, [](const Zim64f* a, Zim64f* b, int n) { zimsLogAdd_64f(a, b, n, 0); });
        });
        run("64f/peer", [](auto& state) { add<Zim64f>(state, peerLogAdd_64f); });
    }
    for (int len : {32, 100}) {
        benchmark::RegisterBenchmark("sum_32f/ours", [](auto& state) { sum<Zim32f>(state, zimsLogSum_32f); })->Arg(len);
        benchmark::RegisterBenchmark("sum_64f/ours", [](auto& state) { sum<Zim64f>(state, zimsLogSum_64f); })->Arg(len);
    }
    return true;
}();

}  // namespace
