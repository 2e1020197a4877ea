// A picture of a recording and how it was recognised.
#pragma once

#include <string>

#include "recogniser.h"

// Draws the first recording that was heard: over the same time the waveform, the mel spectrogram, and the way through
// the states of the word.
void plotFirst(const std::string& svgFile, const Recording& recording, const Hearing& hearing);
