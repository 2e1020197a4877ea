#include "statistics.h"

#include <algorithm>
#include <cmath>
#include <numbers>

void GaussianStatistics::add(const float* frame)
{
    for (std::size_t j = 0; j < sum_.size(); ++j) {
        const double value = frame[j];
        sum_[j] += value;
        sumOfSquares_[j] += value * value;
    }
    ++frames_;
}

std::vector<double> GaussianStatistics::variance() const
{
    std::vector<double> result(sum_.size());
    for (std::size_t j = 0; j < result.size(); ++j) {
        const double mean = sum_[j] / frames_;
        result[j] = sumOfSquares_[j] / frames_ - mean * mean;
    }
    return result;
}

Gaussian GaussianStatistics::estimate(const std::vector<double>& varianceFloor) const
{
    Gaussian gaussian;
    const std::vector<double> ownVariance = variance();
    double logDeterminant = 0;
    for (std::size_t j = 0; j < sum_.size(); ++j) {
        const double variance = std::max(ownVariance[j], varianceFloor[j]);
        gaussian.mean.push_back(static_cast<float>(sum_[j] / frames_));
        gaussian.inverseVariance.push_back(static_cast<float>(1 / variance));
        logDeterminant += std::log(2 * std::numbers::pi * variance);
    }
    gaussian.constant = static_cast<float>(-0.5 * logDeterminant);
    return gaussian;
}

State StateStatistics::estimate(const std::vector<double>& varianceFloor) const
{
    // The last frame of each visit leaves. No way is ever closed for good.
    const double leave = std::clamp(static_cast<double>(visits) / gaussian.frames(), 0.01, 0.99);
    return {gaussian.estimate(varianceFloor), static_cast<float>(std::log(1 - leave)),
            static_cast<float>(std::log(leave))};
}
