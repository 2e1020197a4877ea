// One spoken word as the recogniser sees it.
#pragma once

#include <string>
#include <vector>

#include "common/matrix.h"
#include "common/wav.h"

// Frames first .. last - 1.
struct Span {
    int first = 0;
    int last = 0;

    int length() const { return last - first; }
};

struct Utterance {
    Matrix melSpectrum;  // all frames of the recording
    Span kept;           // the frames that are recognised: the speech and a little silence on both sides
    Span speech;         // the speech, counted from kept.first
    Matrix features;     // of the frames kept
};

// Finds the speech in the recordings of one voice and forms its features: cepstra with dynamics, less the mean of the
// cepstra over all speech of the voice, and so without the colour of the channel.
std::vector<Utterance> analyse(const std::vector<Recording>& voice, double formantScale);
