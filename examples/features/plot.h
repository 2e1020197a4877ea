// A picture of a recording and its features.
#pragma once

#include <string>

#include "common/frontend.h"
#include "common/matrix.h"
#include "common/wav.h"

// Draws over the same time the waveform, the mel spectrogram, the cepstra and their deltas. features holds statics,
// deltas and accelerations side by side; last names the last static.
void plotFeatures(const std::string& svgFile, const Recording& recording, const FrontEndSettings& settings,
                  const Matrix& melSpectrum, const Matrix& features, const std::string& last);
