// Fixed-point scores beside the float form of the same shape: blocks of frames on one Gaussian, one frame on many
// Gaussians; and a whole mixture beside its scores alone.
#include <benchmark/benchmark.h>

#include <random>
#include <string>
#include <vector>

#include <zimsr/loggauss.h>
#include <zimsr/loggauss_fixed.h>
#include <zimsr/mixture.h>
#include <zimsr/mixture_fixed.h>

namespace {

template <class T>
std::vector<T> features(int count, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<T> x(static_cast<std::size_t>(count));
    for (T& value : x)
        value = static_cast<T>(static_cast<int>(random() % 2000) - 1000);
    return x;
}

// A block of vectors, with weights for each, and one vector.
template <class T, class Score>
struct Arrays {
    int height, width;
    std::vector<T> mat = features<T>(width * height, 1), weights = features<T>(width * height, 2),
                   x = features<T>(width, 3);
    std::vector<Score> constants = std::vector<Score>(static_cast<std::size_t>(height)), scores = constants;
};

template <class T, class Score, class Call>
void measure(const std::string& name, int height, int width, Call call)
{
    benchmark::RegisterBenchmark(name.c_str(), [=](benchmark::State& state) {
        Arrays<T, Score> a{height, width};
        for (auto _ : state) {
            call(a);
            benchmark::ClobberMemory();
        }
        state.SetItemsProcessed(state.iterations() * height);
    })->Args({height, width});
}

constexpr int factor = 9;

template <class T, class Score, class... Factor>
void frames(const char* name, int width,
            ZimStatus (*door)(const T*, int, const T*, const T*, int, Score*, int, Score, Factor...), Factor... f)
{
    measure<T, Score>(std::string("frames/") + name, 512, width, [=](auto& a) {
        door(a.mat.data(), width, a.x.data(), a.weights.data(), width, a.scores.data(), a.height, 1, f...);
    });
}

template <class T, class Score, class... Factor>
void frames(const char* name, int width, ZimStatus (*door)(const T*, int, const T*, int, Score*, int, Score, Factor...),
            Factor... f)
{
    measure<T, Score>(std::string("frames/") + name, 512, width, [=](auto& a) {
        door(a.mat.data(), width, a.x.data(), width, a.scores.data(), a.height, 1, f...);
    });
}

template <class T, class Score, class... Factor>
void gaussians(const char* name, int height, int width,
               ZimStatus (*door)(const T*, const T*, int, const T*, int, Score*, int, Factor...), Factor... f)
{
    measure<T, Score>(std::string("gaussians/") + name, height, width, [=](auto& a) {
        door(a.mat.data(), a.weights.data(), width, a.x.data(), width, a.scores.data(), height, f...);
    });
}

const bool registered = [] {
    for (int width : {13, 26, 39, 40, 64}) {
        frames("32f", width, zimsLogGauss_32f_D2);
        frames("Scaled_16s32f", width, zimsLogGauss_Scaled_16s32f_D2, factor);
        frames("16s32s", width, zimsLogGauss_16s32s_D2Sfs, factor);
        frames("Low_16s32s", width, zimsLogGauss_Low_16s32s_D2Sfs, factor);
        frames("IdVar_32f", width, zimsLogGauss_IdVar_32f_D2);
        frames("IdVarScaled_16s32f", width, zimsLogGauss_IdVarScaled_16s32f_D2, factor);
        frames("IdVarLow_16s32s", width, zimsLogGauss_IdVarLow_16s32s_D2Sfs, factor);
    }
    for (int height : {64, 2048, 20000})
        for (int width : {13, 39, 40}) {
            gaussians("32f", height, width, zimsLogGaussMultiMix_32f_D2);
            gaussians("Scaled_16s32f", height, width, zimsLogGaussMultiMix_Scaled_16s32f_D2, factor);
            gaussians("16s32s", height, width, zimsLogGaussMultiMix_16s32s_D2Sfs, factor);
            gaussians("Low_16s32s", height, width, zimsLogGaussMultiMix_Low_16s32s_D2Sfs, factor);
        }
    for (int width : {13, 39, 40}) {
        gaussians("Scaled_16s32f", 32, width, zimsLogGaussMultiMix_Scaled_16s32f_D2, factor);
        measure<Zim16s, Zim32f>("mixture/Scaled_16s32f", 32, width, [=](auto& a) {
            zimsLogGaussMixture_Scaled_16s32f_D2(a.x.data(), a.mat.data(), a.weights.data(), a.height, width, width,
                                                 a.constants.data(), a.scores.data(), factor);
        });
    }
    return true;
}();

}  // namespace
