// The MFCC front end: a whole frame, and its parts beside plain loops.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstring>
#include <vector>

#include <zimsr.h>

#include "frontend_peer.h"

namespace {

constexpr int frameLen = 400, fftLen = 512, bins = fftLen / 2 + 1, nFilter = 26, nCepstrum = 13;

std::vector<float> samples()
{
    std::vector<float> x(frameLen);
    unsigned state = 1;
    for (float& sample : x) {
        state = state * 1664525 + 1013904223;
        sample = static_cast<float>(state >> 16) - 32768;
    }
    return x;
}

ZimsFBankState_32f* makeBank(int flags)
{
    ZimsFBankState_32f* bank;
    int order;
    zimsMelFBankInitAlloc_32f(&bank, &order, frameLen, 16000, 64, 8000, nFilter, 1127.01048f, 700, flags);
    return bank;
}

void release(ZimsFBankState_32f* bank)
{
    zimsFBankFree_32f(bank);
    zimsFree(bank);
}

void release(ZimsDCTLifterState_32f* lifter)
{
    zimsDCTLifterFree_32f(lifter);
    zimsFree(lifter);
}

ZimsDCTLifterState_32f* makeLifter(int inputs, int cepstra)
{
    ZimsDCTLifterState_32f* lifter;
    zimsDCTLifterInitAlloc_32f(&lifter, inputs, cepstra, 22, 0.27735f);
    return lifter;
}

// Padding, transform, magnitude, filter bank, logarithm, cosine transform.
void MfccFrame(benchmark::State& run)
{
    ZimsFBankState_32f* bank = makeBank(ZimFBankBinSlopes | ZimFBankFrameInput);
    ZimsDCTLifterState_32f* lifter = makeLifter(nFilter, nCepstrum);
    const auto signal = samples();
    std::vector<float> frame(fftLen), energies(nFilter), cepstra(nCepstrum);
    for (auto _ : run) {
        zimsCopyWithPadding_32f(signal.data(), frameLen, frame.data(), fftLen);
        zimsEvalFBank_32f(frame.data(), energies.data(), bank);
        zimsLn_32f_I(energies.data(), nFilter);
        zimsDCTLifter_32f(energies.data(), cepstra.data(), lifter);
        benchmark::DoNotOptimize(cepstra.data());
        benchmark::ClobberMemory();
    }
    release(bank);
    release(lifter);
}
BENCHMARK(MfccFrame);

void Transform(benchmark::State& run)
{
    ZimsFFTPlan_R_32f* plan;
    zimsFFTInitAlloc_R_32f(&plan, 9, 8, 2);
    int size;
    zimsFFTGetBufSize_R_32f(plan, &size);
    std::vector<Zim8u> buffer(static_cast<std::size_t>(size));
    std::vector<float> frame = samples(), spectrum(fftLen + 2);
    frame.resize(fftLen);
    for (auto _ : run) {
        zimsFFTFwd_RToCCS_32f(frame.data(), spectrum.data(), plan, buffer.data());
        benchmark::ClobberMemory();
    }
    zimsFFTFree_R_32f(plan);
}
BENCHMARK(Transform);

std::vector<float> spectrumOf(int count)
{
    std::vector<float> x = samples();
    x.resize(static_cast<std::size_t>(count), 1.0f);
    return x;
}

void Magnitude(benchmark::State& run)
{
    auto spectrum = spectrumOf(2 * bins);
    std::vector<float> dst(bins);
    for (auto _ : run) {
        zimsMagnitude_32fc(reinterpret_cast<const Zim32fc*>(spectrum.data()), dst.data(), bins);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Magnitude);

void MagnitudePeer(benchmark::State& run)
{
    auto spectrum = spectrumOf(2 * bins);
    std::vector<float> dst(bins);
    for (auto _ : run) {
        peer::magnitude(spectrum.data(), dst.data(), bins);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(MagnitudePeer);

void FilterBank(benchmark::State& run)
{
    ZimsFBankState_32f* bank = makeBank(ZimFBankBinSlopes);
    const auto spectrum = spectrumOf(bins);
    std::vector<float> energies(nFilter);
    for (auto _ : run) {
        zimsEvalFBank_32f(spectrum.data(), energies.data(), bank);
        benchmark::ClobberMemory();
    }
    release(bank);
}
BENCHMARK(FilterBank);

void FilterBankPeer(benchmark::State& run)
{
    ZimsFBankState_32f* bank = makeBank(ZimFBankBinSlopes);
    std::vector<int> c(nFilter + 2);
    zimsFBankGetCenters_32f(bank, c.data());
    std::vector<std::vector<float>> filters(nFilter);
    std::vector<const float*> lower, upper;
    for (int i = 0; i < nFilter; ++i) {
        auto& filter = filters[static_cast<std::size_t>(i)];
        const std::size_t edge = static_cast<std::size_t>(i);
        filter.resize(static_cast<std::size_t>(c[edge + 2] - c[edge] + 1));
        zimsFBankGetCoeffs_32f(bank, i + 1, filter.data());
        lower.push_back(filter.data());
        upper.push_back(filter.data() + (c[edge + 1] - c[edge] + 1));
    }
    const auto spectrum = spectrumOf(bins);
    std::vector<float> energies(nFilter);
    for (auto _ : run) {
        peer::filterBank(spectrum.data(), c.data(), lower.data(), upper.data(), nFilter, energies.data());
        benchmark::ClobberMemory();
    }
    release(bank);
}
BENCHMARK(FilterBankPeer);

void FilterBank16s(benchmark::State& run)
{
    ZimsFBankState_16s* bank;
    int order;
    zimsMelFBankInitAlloc_16s(&bank, &order, frameLen, 16000, 64, 8000, nFilter, 1127.01048f, 700, ZimFBankBinSlopes);
    std::vector<Zim16s> spectrum(bins, 1000), energies(nFilter);
    for (auto _ : run) {
        zimsEvalFBank_16s_Sfs(spectrum.data(), energies.data(), bank, 2);
        benchmark::ClobberMemory();
    }
    zimsFBankFree_16s(bank);
    zimsFree(bank);
}
BENCHMARK(FilterBank16s);

void Logarithm(benchmark::State& run)
{
    const std::vector<float> energies(nFilter, 1e6f);
    std::vector<float> x(nFilter);
    for (auto _ : run) {
        std::memcpy(x.data(), energies.data(), nFilter * sizeof(float));
        zimsLn_32f_I(x.data(), nFilter);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(Logarithm);

void CosineTransform(benchmark::State& run)
{
    const int inputs = static_cast<int>(run.range(0)), cepstra = static_cast<int>(run.range(1));
    ZimsDCTLifterState_32f* lifter = makeLifter(inputs, cepstra);
    const auto src = spectrumOf(inputs);
    std::vector<float> dst(static_cast<std::size_t>(cepstra));
    for (auto _ : run) {
        zimsDCTLifter_32f(src.data(), dst.data(), lifter);
        benchmark::ClobberMemory();
    }
    release(lifter);
}
BENCHMARK(CosineTransform)->Args({26, 13})->Args({23, 12})->Args({40, 20});

void CosineTransformPeer(benchmark::State& run)
{
    const int inputs = static_cast<int>(run.range(0)), cepstra = static_cast<int>(run.range(1));
    std::vector<float> matrix, factor(static_cast<std::size_t>(cepstra), 1.5f), dst(factor.size());
    for (int i = 1; i <= cepstra; ++i)
        for (int j = 0; j < inputs; ++j)
            matrix.push_back(static_cast<float>(std::cos(i * M_PI * (j + 0.5) / inputs)));
    const auto src = spectrumOf(inputs);
    for (auto _ : run) {
        peer::scaledMatrixVector(matrix.data(), factor.data(), src.data(), cepstra, inputs, dst.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(CosineTransformPeer)->Args({26, 13})->Args({23, 12})->Args({40, 20});

}  // namespace
