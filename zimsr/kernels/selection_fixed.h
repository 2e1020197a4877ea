// Scores of a list of pairs of a 16-bit frame and a 16-bit Gaussian, for a selection.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

#include "zimsr/kernels/loggauss_fixed.h"
#include "zimsr/kernels/selection.h"

namespace zimsr {

// In groups of rows.
template <class Term, class Finish>
struct FixedPairs {
    Term term;
    Finish finish;
    int width;

    template <class... Operand>
    void operator()(int count, const Zim32f* constants, StoreAt keepScores, Operand... operands) const
    {
        scoreFixedRows(term, finish, RowConstants{constants}, keepScores, width, count, operands...);
    }
};

// One by one, for a term whose sums are finished in extended precision.
template <class Term, class Finish>
struct FixedSingles {
    Term term;
    Finish finish;
    int width;

    template <class... Operand>
    [[gnu::noinline]] void operator()(int count, const Zim32f* constants, StoreAt keepScores, Operand... operands) const
    {
        for (std::ptrdiff_t i = 0; i < count; ++i)
            keepScores(i, scoreFixedVector(term, finish, constants[i], width, operands[i]...));
    }
};

}  // namespace zimsr
