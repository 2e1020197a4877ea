#include "statistics.h"

#include <algorithm>
#include <cmath>

#include "common/library.h"

namespace {

// No Gaussian is given up for good.
constexpr float leastWeight = 1e-4f;

}  // namespace

MixtureStatistics::MixtureStatistics(const Mixture& mixture)
    : mixture_(mixture),
      deviations_(mixture.size(), mixture.width()),
      squares_(mixture.size(), mixture.width()),
      occupancies_(mixture.size())
{
}

void MixtureStatistics::add(const float* frame)
{
    const int size = mixture_.size(), width = mixture_.width();
    std::vector<float> scores = mixture_.constants;
    require(zimsLogGaussMultiMix_32f_D2(mixture_.means.row(0), mixture_.inverseVariances.row(0), width, frame, width,
                                        scores.data(), size));
    float logLikelihood;
    require(zimsLogSum_32f(scores.data(), &logLikelihood, size));
    for (int g = 0; g < size; ++g) {
        const float share = std::exp(scores[g] - logLikelihood);
        occupancies_[g] += share;
        require(zimsMeanVarAcc_32f(frame, mixture_.means.row(g), deviations_.row(g), squares_.row(g), width, share));
    }
}

Mixture MixtureStatistics::estimate(const std::vector<float>& varianceFloor) const
{
    const int size = mixture_.size(), width = mixture_.width();
    Mixture next = mixture_;
    std::vector<float> variance(width);
    for (int g = 0; g < size; ++g) {
        const float occupancy = occupancies_[g];
        const ZimStatus status = zimsUpdateVar_32f(deviations_.row(g), squares_.row(g), varianceFloor.data(),
                                                   variance.data(), width, occupancy, occupancy);
        require(status);
        if (status == zimStsZeroOccupancy)
            continue;
        std::transform(variance.begin(), variance.end(), next.inverseVariances.row(g), [](float v) { return 1 / v; });
        require(zimsUpdateMean_32f(deviations_.row(g), next.means.row(g), width, occupancy));
    }

    float frames, sum = 1;
    require(zimsSum_32f(occupancies_.data(), size, &frames, 1));
    require(zimsUpdateWeight_32f(occupancies_.data(), next.weights.data(), size, &sum, frames, leastWeight));
    require(zimsMulC_32f_I(1 / sum, next.weights.data(), size));
    next.updateConstants();
    return next;
}

void StateStatistics::add(const float* frame, bool entered)
{
    mixture_.add(frame);
    ++frames_;
    visits_ += entered;
}

State StateStatistics::estimate(const std::vector<float>& varianceFloor) const
{
    if (frames_ == 0)
        return state_;
    // The last frame of each visit leaves. No way is ever closed for good.
    const double leave = std::clamp(static_cast<double>(visits_) / frames_, 0.01, 0.99);
    return {mixture_.estimate(varianceFloor), static_cast<float>(std::log(1 - leave)),
            static_cast<float>(std::log(leave))};
}
