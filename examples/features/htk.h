// Parameter files in the format of the Hidden Markov Model Toolkit, which most speech tools read: a header of 12 bytes,
// then the frames, all big-endian (Young et al., The HTK Book).
#pragma once

#include <ostream>

#include "common/matrix.h"

// What stands behind the cepstra, and whether their mean has been taken off.
struct HtkKind {
    bool energy;  // a log-energy instead of C0
    bool zeroMean;
};

// Writes mel-frequency cepstra with C0 or energy, deltas and accelerations, a frame every shiftSeconds.
void writeHtk(std::ostream& out, const Matrix& features, HtkKind kind, double shiftSeconds);
