#include "model.h"

#include "common/library.h"

std::vector<float> logLikelihoods(const State& state, const Matrix& features)
{
    const Gaussian& gaussian = state.gaussian;
    std::vector<float> result(features.rows);
    require(zimsLogGauss_32f_D2(features.values.data(), features.columns, gaussian.mean.data(),
                                gaussian.inverseVariance.data(), features.columns, result.data(), features.rows,
                                gaussian.constant));
    return result;
}
