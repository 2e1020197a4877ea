// How a bank holds its weights. The slopes are written once, on ratios of integers or of doubles; a policy forms them
// in a wide type, which the store narrows.
#pragma once

#include <algorithm>
#include <limits>

#include <zimsr/types.h>

#include "zimsr/kernels/melfbank_state.h"

namespace zimsr {

// Limited to 32 bits and truncated toward zero; a NaN goes to the low bound.
inline Zim32s truncateLimited(double value)
{
    return value > -2147483648.0 ? static_cast<Zim32s>(std::min(value, 2147483647.0))
                                 : std::numeric_limits<Zim32s>::min();
}

struct FloatWeights {
    using State = ZimsFBankState_32f;
    using Wide = double;
    static constexpr Wide one = 1.0;

    template <class Number>
    static Wide ratio(Number numerator, Number denominator)
    {
        return static_cast<double>(numerator) / static_cast<double>(denominator);
    }
};

// All quotients are truncated toward zero.
struct Q14Weights {
    using State = ZimsFBankState_16s;
    using Wide = Zim64s;
    static constexpr Wide one = 1 << q14;

    static Wide ratio(Zim64s numerator, Zim64s denominator) { return numerator * one / denominator; }
    static Wide ratio(double numerator, double denominator) { return truncateLimited(numerator * one / denominator); }
};

}  // namespace zimsr
