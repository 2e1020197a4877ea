// The models and the features in 16 bits: integers in units of their own for each feature, so that a weak feature is as
// finely graded as a strong one.
#pragma once

#include <zimsr.h>

#include <vector>

#include "model.h"

using FixedMatrix = MatrixOf<Zim16s>;

struct FixedMixture {
    FixedMatrix means;
    FixedMatrix inverseVariances;
    std::vector<float> constants;
};

// Of every frame.
std::vector<float> logLikelihoods(const FixedMixture& mixture, const FixedMatrix& features);

struct FixedModels : ModelsOf<FixedMixture> {
    std::vector<float> units;  // of a feature: the smallest standard deviation that a Gaussian has in it
};

FixedModels quantise(const Models& models);

// In the units of the models.
FixedMatrix quantise(const Matrix& features, const std::vector<float>& units);
