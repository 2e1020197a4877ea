// Evaluation of the all-integer mel filter bank, beside the plain loop. Arguments: samples of a frame, filters.
#include <benchmark/benchmark.h>

#include <cmath>
#include <vector>

#include <zimsr.h>

#include "melfbank_fixed_peer.h"

namespace {

constexpr int sampleRate = 16000, lowFreq = 64, highFreq = 8000, scaleFactor = 4;
constexpr float melMul = 1127.01f, melDiv = 700;

Zim32s q15(float x)
{
    return static_cast<Zim32s>(x * 32768);
}

// A falling spectrum of 30 bits.
std::vector<int> spectrum(int bins)
{
    std::vector<int> src;
    unsigned noise = 1;
    for (int k = 0; k < bins; ++k)
        src.push_back(static_cast<int>((noise = noise * 1664525 + 1013904223) >> 2) / (1 + k / 8));
    return src;
}

void evalFBank_32s(benchmark::State& state)
{
    const int frameLen = static_cast<int>(state.range(0)), nFilter = static_cast<int>(state.range(1));
    int size, order;
    zimsMelFBankGetSize_32s(frameLen, nFilter, 2, &size);
    std::vector<char> block(static_cast<std::size_t>(size));
    auto* const bank = reinterpret_cast<ZimsFBankState_32s*>(block.data());
    zimsMelFBankInit_32s(bank, &order, frameLen, sampleRate, lowFreq, highFreq, nFilter, q15(melMul), q15(melDiv), 2);
    const std::vector<int> src = spectrum((1 << order) / 2 + 1);
    std::vector<int> dst(static_cast<std::size_t>(nFilter));
    for (auto _ : state) {
        zimsEvalFBank_32s_Sfs(src.data(), dst.data(), bank, scaleFactor);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * nFilter);
}

void evalFBank_32s_plain(benchmark::State& state)
{
    const int frameLen = static_cast<int>(state.range(0)), nFilter = static_cast<int>(state.range(1));
    int fftLen = 2;
    while (fftLen < frameLen)
        fftLen *= 2;
    const auto mel = [](float f) { return melMul * std::log(1 + f / melDiv); };
    std::vector<int> edges;
    for (int i = 0; i <= nFilter + 1; ++i) {
        const float m = mel(lowFreq) + (mel(highFreq) - mel(lowFreq)) * i / (nFilter + 1);
        edges.push_back(static_cast<int>(std::lround(melDiv * (std::exp(m / melMul) - 1) * fftLen / sampleRate)));
    }
    const peer::FilterBank bank = peer::triangles(edges);
    const std::vector<int> src = spectrum(fftLen / 2 + 1);
    std::vector<int> dst(static_cast<std::size_t>(nFilter));
    for (auto _ : state) {
        peer::evaluate(bank, src.data(), dst.data(), scaleFactor);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * nFilter);
}

void banks(benchmark::internal::Benchmark* b)
{
    b->Args({200, 23})->Args({400, 26})->Args({2048, 40});
}
BENCHMARK(evalFBank_32s)->Apply(banks);
BENCHMARK(evalFBank_32s_plain)->Apply(banks);

}  // namespace
