// Products of spectra.
#pragma once

#include <bit>
#include <cstddef>
#include <limits>

#include "zimcore/frame/simd.h"

namespace zimsr {

// x * conj(y) of four complex numbers, real parts in the even lanes.
ZIM_INLINE F8 timesConjugate(F8 x, F8 y)
{
    constexpr int sign = std::numeric_limits<int>::min();
    constexpr int oddSigns[8] = {0, sign, 0, sign, 0, sign, 0, sign};
    const F8 byRe = x * shuffle<0, 0, 2, 2, 4, 4, 6, 6>(y);
    const F8 byIm = shuffle<1, 0, 3, 2, 5, 4, 7, 6>(x) * shuffle<1, 1, 3, 3, 5, 5, 7, 7>(y);
    return byRe + std::bit_cast<F8>(std::bit_cast<I8>(byIm) ^ load<I8>(oddSigns));
}

// product[k] = spectrum[k] * conj(product[k]) for every bin, in Pack form.
ZIM_INLINE void mulPackConj(const float* spectrum, float* product, std::size_t len)
{
    product[0] = spectrum[0] * product[0];
    if (len % 2 == 0)
        product[len - 1] = spectrum[len - 1] * product[len - 1];
    const std::size_t pairsEnd = len - 1 + len % 2;
    std::size_t i = 1;
    for (; i + 8 <= pairsEnd; i += 8)
        store(product + i, timesConjugate(load<F8>(spectrum + i), load<F8>(product + i)));
    const int rest = static_cast<int>(pairsEnd - i);
    storeFirst(product + i, timesConjugate(loadFirst<F8>(spectrum + i, rest), loadFirst<F8>(product + i, rest)), rest);
}

}  // namespace zimsr
