// What conditions samples and features: optional steps of the front end.
#pragma once

#include <vector>

#include "common/matrix.h"

// Samples without the constant offset that a cheap converter adds: ETSI ES 201 108, offset compensation.
std::vector<float> withoutOffset(std::vector<float> samples);

// Brings the logarithms of the frames' energies to a maximum of 1, and raises silence to a floor.
void normaliseEnergies(std::vector<float>& logEnergies);

// Brings the first columns of the matrix to mean 0 and variance 1: what a microphone, a line and a loud voice add to
// cepstra is gone. A column that is constant becomes 0.
void normaliseMeanAndVariance(Matrix& features, int columns);
