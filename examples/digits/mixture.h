// Mixtures of Gaussians with diagonal covariances.
#pragma once

#include <vector>

#include "common/matrix.h"

struct Mixture {
    Matrix means;  // a Gaussian a row
    Matrix inverseVariances;
    std::vector<float> weights;
    std::vector<float> constants;  // logarithms of the weighted densities at the means

    int size() const { return means.rows; }
    int width() const { return means.columns; }

    // To be called when variances or weights have changed.
    void updateConstants();
};

// One Gaussian with the mean 0 and the variance 1 in every feature.
Mixture standardGaussian(int width);

// Of every frame.
std::vector<float> logLikelihoods(const Mixture& mixture, const Matrix& features);

// Every Gaussian becomes two of half its weight, a little to either side of its mean.
Mixture split(const Mixture& mixture);
