#include "fixed.h"

#include <algorithm>
#include <cmath>

#include "common/library.h"

namespace {

// A unit has 1024 steps, so differences saturate at 32 units. An inverse variance is at most 1, and has 15 bits.
constexpr int featureBits = 10;
constexpr int inverseVarianceBits = 15;

// Each row times the factors, in 2^-bits, to the nearest.
FixedMatrix scaled(const Matrix& matrix, const std::vector<float>& factors, int bits)
{
    FixedMatrix result(matrix.rows, matrix.columns);
    std::vector<float> row(matrix.columns);
    for (int r = 0; r < matrix.rows; ++r) {
        require(zimsMul_32f(matrix.row(r), factors.data(), row.data(), matrix.columns));
        require(zimsConvert_32f16s_Sfs(row.data(), result.row(r), matrix.columns, 1, -bits));
    }
    return result;
}

std::vector<float> smallestDeviations(const Models& models)
{
    std::vector<float> result(models.silence.mixture.width());  // the largest inverse variances first
    const auto regard = [&](const State& state) {
        for (int g = 0; g < state.mixture.size(); ++g)
            require(zimsMaxEvery_32f_I(state.mixture.inverseVariances.row(g), result.data(), state.mixture.width()));
    };
    regard(models.silence);
    for (const Word& word : models.words)
        std::for_each(word.begin(), word.end(), regard);
    for (float& value : result)
        value = 1 / std::sqrt(value);
    return result;
}

StateOf<FixedMixture> quantise(const State& state, const std::vector<float>& units)
{
    std::vector<float> variances;
    for (const float unit : units)
        variances.push_back(unit * unit);
    const Mixture& mixture = state.mixture;
    return {{quantise(mixture.means, units), scaled(mixture.inverseVariances, variances, inverseVarianceBits),
             mixture.constants},
            state.logStay,
            state.logLeave};
}

}  // namespace

std::vector<float> logLikelihoods(const FixedMixture& mixture, const FixedMatrix& features)
{
    constexpr int scaleFactor = 2 * featureBits + inverseVarianceBits;  // of a squared difference over a variance
    std::vector<float> result(features.rows);
    for (int t = 0; t < features.rows; ++t)
        require(zimsLogGaussMixture_Scaled_16s32f_D2(
            features.row(t), mixture.means.row(0), mixture.inverseVariances.row(0), mixture.means.rows,
            features.columns, features.columns, mixture.constants.data(), &result[t], scaleFactor));
    return result;
}

FixedModels quantise(const Models& models)
{
    FixedModels result;
    result.units = smallestDeviations(models);
    result.silence = quantise(models.silence, result.units);
    for (const Word& word : models.words) {
        result.words.emplace_back();
        for (const State& state : word)
            result.words.back().push_back(quantise(state, result.units));
    }
    return result;
}

FixedMatrix quantise(const Matrix& features, const std::vector<float>& units)
{
    std::vector<float> perUnit;
    for (const float unit : units)
        perUnit.push_back(1 / unit);
    return scaled(features, perUnit, featureBits);
}
