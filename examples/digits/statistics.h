// What is gathered from aligned frames, and the parameters that make these frames most likely.
#pragma once

#include <vector>

#include "model.h"

class GaussianStatistics {
public:
    explicit GaussianStatistics(int width) : sum_(width), sumOfSquares_(width) {}

    void add(const float* frame);
    int frames() const { return frames_; }
    std::vector<double> variance() const;

    // A variance below its floor is raised to it.
    Gaussian estimate(const std::vector<double>& varianceFloor) const;

private:
    std::vector<double> sum_;
    std::vector<double> sumOfSquares_;
    int frames_ = 0;
};

struct StateStatistics {
    explicit StateStatistics(int width) : gaussian(width) {}

    State estimate(const std::vector<double>& varianceFloor) const;

    GaussianStatistics gaussian;
    int visits = 0;  // how often a path came through the state, for however many frames
};
