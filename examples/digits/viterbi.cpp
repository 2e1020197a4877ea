#include "viterbi.h"

#include <algorithm>
#include <limits>

Path Trellis::bestPath() const
{
    constexpr float never = -std::numeric_limits<float>::infinity();
    const int frames = static_cast<int>(columns_.front().logLikelihoods.size());
    const int last = static_cast<int>(columns_.size()) - 2;  // of the word; one silence more follows

    // best[s] is the log-likelihood of the best way that stands in state s at frame t, and entered tells whether it
    // stood in the state before at the frame before.
    std::vector<float> best(last + 2, never);
    std::vector<std::vector<bool>> entered(frames, std::vector<bool>(last + 2));
    best[0] = columns_[0].logLikelihoods[0];
    best[1] = columns_[1].logLikelihoods[0];
    for (int t = 1; t < frames; ++t) {
        for (int s = last + 1; s >= 0; --s) {
            const float stay = best[s] + columns_[s].logStay;
            const float enter = s > 0 ? best[s - 1] + columns_[s - 1].logLeave : never;
            entered[t][s] = enter > stay;
            best[s] = std::max(stay, enter) + columns_[s].logLikelihoods[t];
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
