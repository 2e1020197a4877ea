#include "mixture.h"

#include <algorithm>
#include <cmath>

#include "common/library.h"

void Mixture::updateConstants()
{
    std::vector<float> logWeights = weights, gaussians(size());
    require(zimsLn_32f_I(logWeights.data(), size()));
    for (int g = 0; g < size(); ++g)
        require(zimsUpdateGConst_32f(inverseVariances.row(g), width(), &gaussians[g]));
    constants.resize(size());
    require(zimsOutProbPreCalc_32f(logWeights.data(), gaussians.data(), constants.data(), size()));
}

Mixture standardGaussian(int width)
{
    Mixture gaussian{Matrix(1, width), Matrix(1, width, 1), {1}, {}};
    gaussian.updateConstants();
    return gaussian;
}

std::vector<float> logLikelihoods(const Mixture& mixture, const Matrix& features)
{
    std::vector<float> result(features.rows);
    for (int t = 0; t < features.rows; ++t)
        require(zimsLogGaussMixture_32f_D2(features.row(t), mixture.means.row(0), mixture.inverseVariances.row(0),
                                           mixture.size(), mixture.width(), mixture.width(), mixture.constants.data(),
                                           &result[t]));
    return result;
}

Mixture split(const Mixture& mixture)
{
    constexpr float step = 0.2f;  // standard deviations
    Mixture result{Matrix(2 * mixture.size(), mixture.width()), Matrix(2 * mixture.size(), mixture.width()), {}, {}};
    for (int g = 0; g < result.size(); ++g) {
        const float *mean = mixture.means.row(g / 2), *inverseVariance = mixture.inverseVariances.row(g / 2);
        std::copy_n(inverseVariance, mixture.width(), result.inverseVariances.row(g));
        for (int j = 0; j < mixture.width(); ++j)
            result.means.row(g)[j] = mean[j] + (g % 2 == 0 ? step : -step) / std::sqrt(inverseVariance[j]);
        result.weights.push_back(mixture.weights[g / 2] / 2);
    }
    result.updateConstants();
    return result;
}
