// The base vector operations beside memcpy, OpenBLAS on one thread, and the compiler's loops.
#include <benchmark/benchmark.h>
#include <cblas.h>

#include <cstring>
#include <string>
#include <vector>

#include <zimsr.h>

#include "vectors_peer.h"

namespace {

constexpr std::size_t longest = 1000000;

// Arrays of every type that a case needs, small positive numbers in all of them.
template <class T>
T* numbers(int which)
{
    static std::vector<T> arrays[3] = {std::vector<T>(longest, T(3)), std::vector<T>(longest, T(5)),
                                       std::vector<T>(longest, T(7))};
    return arrays[which].data();
}

// One call on two sources and a destination of the same length.
template <class From, class To, class Call>
void run(benchmark::State& state, Call call)
{
    openblas_set_num_threads(1);
    const int len = static_cast<int>(state.range(0));
    From *x = numbers<From>(0), *y = numbers<From>(1);
    To* dst = numbers<To>(2);
    for (int i = 0; i < len; ++i)
        x[i] = static_cast<From>(i % 100 + 1);
    for (auto _ : state) {
        call(x, y, dst, len);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * len);
}

template <class From, class To, class Ours, class Peer>
void compare(const char* name, Ours ours, Peer peer, std::vector<int> lengths = {64, 512, 4096, 65536, 1000000})
{
    const auto add = [&](const char* side, auto call) {
        auto* entry = benchmark::RegisterBenchmark((std::string(name) + side).c_str(),
                                                   [call](benchmark::State& state) { run<From, To>(state, call); });
        for (int len : lengths)
            entry->Arg(len);
    };
    add("/ours", ours);
    add("/peer", peer);
}

using std::size_t;

[[maybe_unused]] const bool registered = [] {
    using F = float;
    compare<F, F>(
        "copy_32f", [](F* x, F*, F* dst, int n) { zimsCopy_32f(x, dst, n); },
        [](F* x, F*, F* dst, int n) { std::memcpy(dst, x, sizeof(F) * size_t(n)); });
    compare<F, F>(
        "zero_32f", [](F*, F*, F* dst, int n) { zimsZero_32f(dst, n); },
        [](F*, F*, F* dst, int n) { std::memset(dst, 0, sizeof(F) * size_t(n)); });
    compare<F, F>(
        "set_32f", [](F*, F*, F* dst, int n) { zimsSet_32f(2.5f, dst, n); },
        [](F*, F*, F* dst, int n) { peer::set(2.5f, dst, size_t(n)); });
    compare<F, F>(
        "add_32f_I", [](F* x, F*, F* dst, int n) { zimsAdd_32f_I(x, dst, n); },
        [](F* x, F*, F* dst, int n) { peer::add(x, dst, size_t(n)); });
    compare<F, F>(
        "mul_32f", [](F* x, F* y, F* dst, int n) { zimsMul_32f(x, y, dst, n); },
        [](F* x, F* y, F* dst, int n) { peer::multiply(x, y, dst, size_t(n)); });
    compare<F, F>(
        "mulC_32f", [](F* x, F*, F* dst, int n) { zimsMulC_32f(x, 0.5f, dst, n); },
        [](F* x, F*, F* dst, int n) { peer::scale(x, 0.5f, dst, size_t(n)); });
    compare<F, F>(
        "mulC_32f_I", [](F*, F*, F* dst, int n) { zimsMulC_32f_I(-1.0f, dst, n); },
        [](F*, F*, F* dst, int n) { cblas_sscal(n, -1.0f, dst, 1); });
    compare<F, F>(
        "div_32f", [](F* x, F* y, F* dst, int n) { zimsDiv_32f(x, y, dst, n); },
        [](F* x, F* y, F* dst, int n) { peer::divide(x, y, dst, size_t(n)); });
    compare<F, F>(
        "magnitude_32fc",
        [](F* x, F*, F* dst, int n) { zimsMagnitude_32fc(reinterpret_cast<Zim32fc*>(x), dst, n / 2); },
        [](F* x, F*, F* dst, int n) { peer::magnitude(x, dst, size_t(n / 2)); });

    compare<Zim8u, F>(
        "convert_8u32f", [](Zim8u* x, Zim8u*, F* dst, int n) { zimsConvert_8u32f(x, dst, n); },
        [](Zim8u* x, Zim8u*, F* dst, int n) { peer::bytesToFloats(x, dst, size_t(n)); });
    compare<Zim16s, F>(
        "convert_16s32f", [](Zim16s* x, Zim16s*, F* dst, int n) { zimsConvert_16s32f(x, dst, n); },
        [](Zim16s* x, Zim16s*, F* dst, int n) { peer::shortsToFloats(x, dst, size_t(n)); });
    compare<Zim32s, F>(
        "convert_32s32f", [](Zim32s* x, Zim32s*, F* dst, int n) { zimsConvert_32s32f(x, dst, n); },
        [](Zim32s* x, Zim32s*, F* dst, int n) { peer::intsToFloats(x, dst, size_t(n)); });
    compare<Zim64f, F>(
        "convert_64f32f", [](Zim64f* x, Zim64f*, F* dst, int n) { zimsConvert_64f32f(x, dst, n); },
        [](Zim64f* x, Zim64f*, F* dst, int n) { peer::doublesToFloats(x, dst, size_t(n)); });
    compare<F, Zim16s>(
        "convert_32f16s_Sfs", [](F* x, F*, Zim16s* dst, int n) { zimsConvert_32f16s_Sfs(x, dst, n, 1, 1); },
        [](F* x, F*, Zim16s* dst, int n) { peer::floatsToShorts(x, dst, size_t(n), 0.5f); });
    compare<F, Zim32s>(
        "convert_32f32s_Sfs", [](F* x, F*, Zim32s* dst, int n) { zimsConvert_32f32s_Sfs(x, dst, n, 1, 1); },
        [](F* x, F*, Zim32s* dst, int n) { peer::floatsToInts(x, dst, size_t(n), 0.5f); });

    compare<F, F>(
        "dotProd_32f", [](F* x, F* y, F* dst, int n) { zimsDotProd_32f(x, y, n, dst); },
        [](F* x, F* y, F* dst, int n) { *dst = cblas_sdot(n, x, 1, y, 1); },
        {16, 32, 39, 64, 128, 512, 4096, 65536, 1000000});
    compare<Zim64f, Zim64f>(
        "dotProd_64f", [](Zim64f* x, Zim64f* y, Zim64f* dst, int n) { zimsDotProd_64f(x, y, n, dst); },
        [](Zim64f* x, Zim64f* y, Zim64f* dst, int n) { *dst = cblas_ddot(n, x, 1, y, 1); });
    compare<F, Zim64f>(
        "dotProd_32f64f", [](F* x, F* y, Zim64f* dst, int n) { zimsDotProd_32f64f(x, y, n, dst); },
        [](F* x, F* y, Zim64f* dst, int n) { *dst = peer::wideDot(x, y, size_t(n)); });
    compare<Zim16s, Zim64s>(
        "dotProd_16s64s", [](Zim16s* x, Zim16s* y, Zim64s* dst, int n) { zimsDotProd_16s64s(x, y, n, dst); },
        [](Zim16s* x, Zim16s* y, Zim64s* dst, int n) { *dst = peer::exactDot(x, y, size_t(n)); });
    compare<F, F>(
        "sum_32f_fast", [](F* x, F*, F* dst, int n) { zimsSum_32f(x, n, dst, 1); },
        [](F* x, F*, F* dst, int n) { *dst = peer::sum(x, size_t(n)); });
    compare<F, F>(
        "sum_32f_accurate", [](F* x, F*, F* dst, int n) { zimsSum_32f(x, n, dst, 0); },
        [](F* x, F*, F* dst, int n) { *dst = peer::sum(x, size_t(n)); });
    compare<F, F>(
        "max_32f", [](F* x, F*, F* dst, int n) { zimsMax_32f(x, n, dst); },
        [](F* x, F*, F* dst, int n) { *dst = peer::greatest(x, size_t(n)); });
    compare<F, Zim32s>(
        "maxIndx_32f",
        [](F* x, F*, Zim32s* dst, int n) {
            F max;
            zimsMaxIndx_32f(x, n, &max, dst);
        },
        [](F* x, F*, Zim32s* dst, int n) { *dst = int(peer::greatestPlace(x, size_t(n))); });
    return true;
}();

}  // namespace
