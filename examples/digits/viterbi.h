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

// The states that a path may take, in their order, and the log-likelihoods of all frames in each.
class Trellis {
public:
    template <class Mixture>
    void add(const StateOf<Mixture>& state, std::vector<float> logLikelihoods)
    {
        columns_.push_back({state.logStay, state.logLeave, std::move(logLikelihoods)});
    }

    // Either of the outer states, which are silences, may be left out.
    Path bestPath() const;

private:
    struct Column {
        float logStay, logLeave;
        std::vector<float> logLikelihoods;
    };
    std::vector<Column> columns_;
};

// The log-likelihoods of the frames in the silence state are the same for every word, and so are given.
template <class Mixture, class Features>
Path bestPath(const WordOf<Mixture>& word, const StateOf<Mixture>& silence, const Features& features,
              const std::vector<float>& silenceLikelihoods)
{
    Trellis trellis;
    trellis.add(silence, silenceLikelihoods);
    for (const StateOf<Mixture>& state : word)
        trellis.add(state, logLikelihoods(state.mixture, features));
    trellis.add(silence, silenceLikelihoods);
    return trellis.bestPath();
}
