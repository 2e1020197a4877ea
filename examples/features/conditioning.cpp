#include "conditioning.h"

#include <cmath>

#include "common/library.h"

std::vector<float> withoutOffset(std::vector<float> samples)
{
    constexpr float pole = 0.999f;
    // As if the first sample had lasted for ever: the filter has nothing to settle.
    float previous = samples.front();
    require(zimsCompensateOffset_32f_I(samples.data(), static_cast<int>(samples.size()), &previous, 0, pole));
    return samples;
}

void normaliseEnergies(std::vector<float>& logEnergies)
{
    // As the Hidden Markov Model Toolkit has them.
    constexpr float silenceFloor = 50, scale = 0.1f;
    require(zimsNormEnergy_32f(logEnergies.data(), 1, static_cast<int>(logEnergies.size()), silenceFloor, scale));
}

void normaliseMeanAndVariance(Matrix& features, int columns)
{
    std::vector<float> mean(columns), variance(columns), inverse(columns);
    require(zimsMeanVarColumn_32f_D2(features.values.data(), features.rows, features.columns, mean.data(),
                                     variance.data(), columns));
    for (int c = 0; c < columns; ++c)
        inverse[c] = variance[c] > 0 ? 1 / std::sqrt(variance[c]) : 0;
    require(zimsNormalizeColumn_32f_D2(features.values.data(), features.columns, features.rows, mean.data(),
                                       inverse.data(), columns));
}
