// Sums and inner products.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"

namespace zimsr {

ZIM_INLINE Zim32s sumOfLanes(I8 v)
{
    Zim32s sum = 0;
    for (int lane = 0; lane < 8; ++lane)
        sum += v[lane];
    return sum;
}

// Pairs are added in 32 bits, stretch by stretch, and stretches in 64.
inline Zim64s exactSum(const Zim16s* src, std::size_t len)
{
    const S16 ones = splat<S16>(1);
    // A lane grows by at most 65536 with each vector; eight lanes are added in 32 bits.
    constexpr std::size_t stretch = 16 * 4095;
    Zim64s sum = 0;
    for (std::size_t begin = 0; begin < len; begin += stretch) {
        const std::size_t end = std::min(len, begin + stretch);
        I8 lanes = splat<I8>(0);
        std::size_t i = begin;
        for (; i + 16 <= end; i += 16)
            lanes += multiplyAddPairs(load<S16>(src + i), ones);
        lanes += multiplyAddPairs(loadFirst<S16>(src + i, static_cast<int>(end - i)), ones);
        sum += sumOfLanes(lanes);
    }
    return sum;
}

}  // namespace zimsr
