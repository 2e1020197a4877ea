// Parameter files in the format of the Hidden Markov Model Toolkit, which most speech tools read: a header of 12 bytes,
// then the frames, all big-endian (Young et al., The HTK Book).
#pragma once

#include <ostream>

#include "common/matrix.h"

// Writes mel-frequency cepstra with C0, deltas and accelerations, a frame every shiftSeconds.
void writeHtk(std::ostream& out, const Matrix& features, double shiftSeconds);
