// Word models: hidden Markov models that run from left to right, each state with a mixture of Gaussians.
//
// Rabiner, "A tutorial on hidden Markov models and selected applications in speech recognition", Proc. IEEE 77 (1989).
#pragma once

#include <vector>

#include "mixture.h"

// Mixtures are in floating point or in 16 bits.
template <class Mixture>
struct StateOf {
    Mixture mixture;
    float logStay = 0;   // logarithm of the probability that the next frame is in this state too
    float logLeave = 0;  // and of that it is in the next state
};

template <class Mixture>
using WordOf = std::vector<StateOf<Mixture>>;

// Every word stands between two silences, which may be left out.
template <class Mixture>
struct ModelsOf {
    StateOf<Mixture> silence;
    std::vector<WordOf<Mixture>> words;
};

using State = StateOf<Mixture>;
using Word = WordOf<Mixture>;
using Models = ModelsOf<Mixture>;
