// Logarithms beside the compiler's vectorised logf and log.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <zimsr/arithmetic.h>
#include <zimsr/logarithm.h>

#include "logarithm_peer.h"

namespace {

template <class T>
std::vector<T> spectrum(int len)
{
    std::mt19937 random(1);
    std::vector<T> values(static_cast<std::size_t>(len));
    for (T& value : values)
        value = static_cast<T>(1 + random() % 1000000);
    return values;
}

// The logarithm works in place, so each run begins with ln(1 + x)'s sum; its time, told by "sum", is in the figures of
// both.
template <class Ln>
void lnOfSums(benchmark::State& state, Ln ln)
{
    const int len = static_cast<int>(state.range(0));
    const auto source = spectrum<Zim32f>(len);
    std::vector<Zim32f> values(source.size());
    for (auto _ : state) {
        zimsAddC_32f(source.data(), 1, values.data(), len);
        ln(values.data(), len);
        benchmark::DoNotOptimize(values.data());
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * len);
}

template <class T, class SumLn>
void sums(benchmark::State& state, SumLn sumLn)
{
    const int len = static_cast<int>(state.range(0));
    const auto values = spectrum<T>(len);
    for (auto _ : state)
        benchmark::DoNotOptimize(sumLn(values.data(), len));
    state.SetItemsProcessed(state.iterations() * len);
}

template <class Ln>
void integers(benchmark::State& state, Ln ln)
{
    const int len = static_cast<int>(state.range(0));
    const auto values = spectrum<Zim32s>(len);
    std::vector<Zim32s> logarithms(values.size());
    for (auto _ : state) {
        ln(values.data(), logarithms.data(), len);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * len);
}

const int lengths[] = {26, 256, 4096};

const bool registered = [] {
    for (int len : lengths) {
        const auto add = [len](const char* name, auto run) { benchmark::RegisterBenchmark(name, run)->Arg(len); };
        add("sum", [](auto& state) { lnOfSums(state, [](Zim32f*, int) {}); });
        add("ln_32f/ours", [](auto& state) { lnOfSums(state, zimsLn_32f_I); });
        add("ln_32f/peer", [](auto& state) { lnOfSums(state, peerLn_32f); });
        add("sumln_32f/ours", [](auto& state) {
            sums<Zim32f>(state, [](const Zim32f* src, int n) {
                Zim32f sum;
                zimsSumLn_32f(src, n, &sum);
                return sum;
            });
        });
        add("sumln_32f/peer", [](auto& state) { sums<Zim32f>(state, peerSumLn_32f); });
        add("sumln_64f/ours", [](auto& state) {
            sums<Zim64f>(state, [](const Zim64f* src, int n) {
                Zim64f sum;
                zimsSumLn_64f(src, n, &sum);
                return sum;
            });
        });
        add("sumln_64f/peer", [](auto& state) { sums<Zim64f>(state, peerSumLn_64f); });
        add("ln_32s/ours", [](auto& state) {
            integers(state, [](const Zim32s* src, Zim32s* dst, int n) { zimsLn_32s_Sfs(src, dst, n, 0); });
        });
        add("ln_32s/peer", [](auto& state) {
            integers(state, [](const Zim32s* src, Zim32s* dst, int n) { peerLn_32s(src, dst, n, 1.0f); });
        });
        add("ln_32s_up/ours", [](auto& state) {
            integers(state, [](const Zim32s* src, Zim32s* dst, int n) { zimsLn_32s_Sfs(src, dst, n, -10); });
        });
        add("ln_32s_up/peer", [](auto& state) {
            integers(state, [](const Zim32s* src, Zim32s* dst, int n) { peerLn_32s(src, dst, n, 1024.0f); });
        });
    }
    return true;
}();

}  // namespace
