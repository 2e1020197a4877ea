#include "viterbi.h"

#include <algorithm>
#include <limits>

Path bestPath(const Word& word, const State& silence, const Matrix& features,
              const std::vector<float>& silenceLikelihoods)
{
    constexpr float never = -std::numeric_limits<float>::infinity();
    const int frames = features.rows;
    const int last = static_cast<int>(word.size());  // of the word; one silence more follows

    std::vector<const State*> states = {&silence};
    std::vector<std::vector<float>> likelihoods = {silenceLikelihoods};
    for (const State& state : word) {
        states.push_back(&state);
        likelihoods.push_back(logLikelihoods(state.mixture, features));
    }
    states.push_back(&silence);
    likelihoods.push_back(silenceLikelihoods);

    // best[s] is the log-likelihood of the best way that stands in state s at frame t, and entered tells whether it
    // stood in the state before at the frame before. Either silence may be left out.
    std::vector<float> best(last + 2, never);
    std::vector<std::vector<bool>> entered(frames, std::vector<bool>(last + 2));
    best[0] = likelihoods[0][0];
    best[1] = likelihoods[1][0];
    for (int t = 1; t < frames; ++t) {
        for (int s = last + 1; s >= 0; --s) {
            const float stay = best[s] + states[s]->logStay;
            const float enter = s > 0 ? best[s - 1] + states[s - 1]->logLeave : never;
            entered[t][s] = enter > stay;
            best[s] = std::max(stay, enter) + likelihoods[s][t];
        }
    }

    int s = best[last] > best[last + 1] ? last : last + 1;
    Path path{last, best[s], std::vector<int>(frames)};
    for (int t = frames - 1; t >= 0; --t) {
        path.states[t] = s;
        s -= entered[t][s];
    }
    return path;
}
