// The real transform beside FFTW's, both with a plan made beforehand, out of place on aligned arrays.
#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <cstddef>
#include <memory>
#include <random>

#include <zimsr.h>

namespace {

struct Release {
    void operator()(void* block) const { zimsFree(block); }
};
using Floats = std::unique_ptr<Zim32f, Release>;

Floats makeSignal(int length)
{
    Floats signal(zimsMalloc_32f(length + 2));
    std::mt19937 engine(1);
    for (int i = 0; i < length + 2; ++i)
        signal.get()[i] = static_cast<Zim32f>(engine() % 2001) / 1000 - 1;
    return signal;
}

void countOperations(benchmark::State& state)
{
    const double order = static_cast<double>(state.range(0)), length = static_cast<double>(1ll << state.range(0));
    state.counters["flops"] = benchmark::Counter(2.5 * length * order, benchmark::Counter::kIsIterationInvariantRate,
                                                 benchmark::Counter::kIs1000);
}

using Transform = ZimStatus (*)(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f*, Zim8u*);

template <Transform transform>
void ours(benchmark::State& state)
{
    const int order = static_cast<int>(state.range(0)), length = 1 << order;
    const Floats src = makeSignal(length), dst = makeSignal(length);
    ZimsFFTPlan_R_32f* plan;
    int bytes;
    if (zimsFFTInitAlloc_R_32f(&plan, order, 8, 0) != zimStsOk || zimsFFTGetBufSize_R_32f(plan, &bytes) != zimStsOk)
        return state.SkipWithError("no plan");
    const std::unique_ptr<Zim8u, Release> buffer(zimsMalloc_8u(bytes));
    for (auto _ : state) {
        transform(src.get(), dst.get(), plan, buffer.get());
        benchmark::ClobberMemory();
    }
    countOperations(state);
    zimsFFTFree_R_32f(plan);
}

void measure(benchmark::State& state, fftwf_plan plan)
{
    for (auto _ : state) {
        fftwf_execute(plan);
        benchmark::ClobberMemory();
    }
    countOperations(state);
    fftwf_destroy_plan(plan);
}

void fftwForward(benchmark::State& state)
{
    const int length = 1 << state.range(0);
    const Floats src = makeSignal(length), dst = makeSignal(length);
    measure(state, fftwf_plan_dft_r2c_1d(length, src.get(), reinterpret_cast<fftwf_complex*>(dst.get()), FFTW_MEASURE));
}

void fftwInverse(benchmark::State& state)
{
    const int length = 1 << state.range(0);
    const Floats src = makeSignal(length), dst = makeSignal(length);
    measure(state, fftwf_plan_dft_c2r_1d(length, reinterpret_cast<fftwf_complex*>(src.get()), dst.get(), FFTW_MEASURE));
}

void planning(benchmark::State& state)
{
    for (auto _ : state) {
        ZimsFFTPlan_R_32f* plan = nullptr;
        zimsFFTInitAlloc_R_32f(&plan, static_cast<int>(state.range(0)), 8, 0);
        zimsFFTFree_R_32f(plan);
    }
}

BENCHMARK(ours<zimsFFTFwd_RToCCS_32f>)->DenseRange(5, 20)->Name("forward/ccs");
BENCHMARK(ours<zimsFFTFwd_RToPack_32f>)->DenseRange(5, 20)->Name("forward/pack");
BENCHMARK(fftwForward)->DenseRange(5, 20)->Name("forward/fftw");
BENCHMARK(ours<zimsFFTInv_PackToR_32f>)->DenseRange(5, 20)->Name("inverse/pack");
BENCHMARK(fftwInverse)->DenseRange(5, 20)->Name("inverse/fftw");
BENCHMARK(planning)->DenseRange(4, 20, 4)->Name("plan");

}  // namespace
