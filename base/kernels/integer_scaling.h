// The integer rule of the `Sfs` functions on vectors of 32-bit lanes.
#pragma once

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"

namespace zimsr {

// round(v * 2^-factor), half to even, for 1 <= factor <= 31 and every v: the rounding is decided on the remainder,
// where the sum v + 2^(factor - 1) might not fit.
ZIM_INLINE I8 shiftRightHalfEven(I8 v, int factor)
{
    const int half = 1 << (factor - 1);
    const I8 quotient = v >> factor;
    const I8 remainder = v & splat<I8>((half - 1) | half);
    const I8 roundsUp = remainder - splat<I8>(half) + (quotient & splat<I8>(1)) > splat<I8>(0);
    return quotient - roundsUp;
}

// saturate16(v * 2^shift), for 0 <= shift <= 15: limited before it is shifted, so that it keeps its sign.
ZIM_INLINE S8 shiftLeftSaturate(I8 v, int shift)
{
    return narrowSaturated(widen(narrowSaturated(v)) << shift);
}

}  // namespace zimsr
