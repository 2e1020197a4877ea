// The search for the most likely way through the states of a word.
//
// Viterbi, "Error bounds for convolutional codes and an asymptotically optimum decoding algorithm", IEEE Transactions
// on Information Theory 13 (1967).
#pragma once

#include <vector>

#include "model.h"

// The states of a word are numbered from 1 to wordStates. State 0 is the silence before it, the one after the last the
// silence behind it.
struct Path {
    int wordStates = 0;
    float logLikelihood = 0;  // minus infinity where there are fewer frames than states
    std::vector<int> states;  // one a frame
};

// The log-likelihoods of the frames in the silence state are the same for every word, and so are given.
Path bestPath(const Word& word, const State& silence, const Matrix& features,
              const std::vector<float>& silenceLikelihoods);
