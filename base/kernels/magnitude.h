// Magnitudes of complex numbers. An element travels through the loop as one lane of 64 bits.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/scaling.h"

namespace zimsr {

ZIM_INLINE void magnitudeBlock(const Zim32fc* src, Zim32f* dst, std::size_t len)
{
    using Complex8 = Vec<Zim64s, 8>;
    const auto magnitude = [](Complex8 v) {
        const auto parts = std::bit_cast<Vec<Zim32f, 16>>(v);
        const F8 low = lowHalf(parts), high = highHalf(parts);
        const F8 lowSquares = low * low, highSquares = high * high;
        return sqrt(shuffle<0, 2, 4, 6, 8, 10, 12, 14>(lowSquares, highSquares) +
                    shuffle<1, 3, 5, 7, 9, 11, 13, 15>(lowSquares, highSquares));
    };
    mapElements<8>(dst, len, magnitude, reinterpret_cast<const Zim64s*>(src));
}

// round(|src| * 2^-scaleFactor), limited to INT_MAX, in double and to nearest even in every rounding mode of the
// caller.
ZIM_INLINE void magnitudeBlock(const Zim32sc* src, Zim32s* dst, std::size_t len, int scaleFactor)
{
    const RoundToNearest mode;
    // A magnitude is 0 or from 1 to 2^32: beyond a factor of 64 nothing changes, and the scale stays finite.
    const D4 scale = splat<D4>(GetScale_32s64f(std::clamp(scaleFactor, -64, 64)));
    using Complex4 = Vec<Zim64s, 4>;
    const auto magnitude = [scale](Complex4 v) {
        const I8 parts = std::bit_cast<I8>(v);
        const I8 apart = shuffle<0, 2, 4, 6, 1, 3, 5, 7>(parts);
        const D4 re = toDouble(lowHalf(apart)), im = toDouble(highHalf(apart));
        return toIntRounded(min(splat<D4>(2147483647.0), sqrt(re * re + im * im) * scale));
    };
    mapElements<4>(dst, len, magnitude, reinterpret_cast<const Zim64s*>(src));
}

}  // namespace zimsr
