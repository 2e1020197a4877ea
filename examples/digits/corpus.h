// The training speech.
#pragma once

#include <string>
#include <vector>

#include "utterance.h"

// One voice of one speaker, and what it says.
struct Voice {
    std::string speaker;
    std::vector<Recording> recordings;
    std::vector<int> words;
};

// One spoken word to learn from.
struct Example {
    int word = 0;
    Span speech;
    Matrix features;
};

// Reads a folder of voices, each a folder SPEAKER-VARIANT of files WORD-n.wav.
std::vector<Voice> readVoices(const std::string& folder);

// Every recording of the voice, and what it would be of a larger and of a smaller speaker.
std::vector<Example> examplesOf(const Voice& voice);
