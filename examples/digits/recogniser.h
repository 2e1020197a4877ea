// Recognition: the word whose model explains a recording best.
#pragma once

#include <vector>

#include "fixed.h"
#include "model.h"
#include "utterance.h"
#include "viterbi.h"

struct Answer {
    int word = 0;
    int runnerUp = 0;
    double margin = 0;  // by how much more likely the word is than the runner-up: nats a frame
    Path path;          // through the states of the word
};

// What recordings of one voice were heard as, one utterance and one answer each.
struct Hearing {
    double formantScale = 1;  // that fits the voice best
    std::vector<Utterance> utterances;
    std::vector<Answer> answers;
};

// Hears the voice as that of speakers of several sizes, and believes the most likely. Throws BadRecording on a
// recording that is shorter than every word.
Hearing recognise(const Models& models, const std::vector<Recording>& voice);

// The same in 16 bits.
Hearing recognise(const FixedModels& models, const std::vector<Recording>& voice);
