// What is gathered from aligned frames, and the parameters that make these frames more likely.
#pragma once

#include <vector>

#include "model.h"

// One step of expectation and maximisation: each frame is dealt to the Gaussians by their parts in its likelihood.
//
// Dempster, Laird, Rubin, "Maximum likelihood from incomplete data via the EM algorithm", Journal of the Royal
// Statistical Society B 39 (1977).
class MixtureStatistics {
public:
    explicit MixtureStatistics(const Mixture& mixture);

    void add(const float* frame);

    // A variance below its floor is raised to it. A Gaussian that no frame fell to stays as it was.
    Mixture estimate(const std::vector<float>& varianceFloor) const;

private:
    Mixture mixture_;
    Matrix deviations_;  // from the means, and their squares: sums over the frames
    Matrix squares_;
    std::vector<float> occupancies_;
};

class StateStatistics {
public:
    explicit StateStatistics(const State& state) : state_(state), mixture_(state.mixture) {}

    // A visit begins with a frame that the state was entered for.
    void add(const float* frame, bool entered);
    State estimate(const std::vector<float>& varianceFloor) const;

private:
    State state_;
    MixtureStatistics mixture_;
    int frames_ = 0;
    int visits_ = 0;
};
