// What the tests of dynamic features share: scaled products, data, and the comparison of whole matrices.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <type_traits>
#include <vector>

#include <zimsr/types.h>

#include "support/compare.h"
#include "support/random.h"

namespace zimsr::test {

using Elements = testing::Types<Zim32f, Zim16s>;

inline long long limited(long long v)
{
    return std::clamp<long long>(v, -32768, 32767);
}

// A product scaled by 2^-scaleFactor without rounding, then limited.
inline Zim16s scaled(long long product, long long scaleFactor)
{
    if (scaleFactor >= 0)
        return static_cast<Zim16s>(limited(product >> std::min(scaleFactor, 63LL)));
    // Beyond 16 doublings nothing but 0 stays within the limits, and the product has less than 48 bits.
    const long double value =
        std::ldexp(static_cast<long double>(product), static_cast<int>(std::min(-scaleFactor, 16LL)));
    return static_cast<Zim16s>(std::clamp(value, -32768.0L, 32767.0L));
}

// What stands where a call must neither read nor write.
template <class T>
T untouched()
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return std::bit_cast<Zim32f>(0x7FC5A5A5u);
    else
        return static_cast<T>(0x5AA5);
}

// Equal in every bit, those of a NaN included.
template <class T>
testing::AssertionResult identical(const std::vector<T>& left, const std::vector<T>& right, int step)
{
    for (std::size_t i = 0; i < left.size(); ++i)
        if (bitsOf(left[i]) != bitsOf(right[i]))
            return testing::AssertionFailure()
                   << "row " << i / step << ", column " << i % step << ": " << +left[i] << " and " << +right[i];
    return testing::AssertionSuccess();
}

template <class T>
std::vector<T> randomValues(Random& random, std::size_t count)
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return random.vector<Zim32f>(count, -10, 10);
    else
        return random.any<Zim16s>(count);
}

// Ends of the range and small numbers, mixed with any.
inline std::vector<Zim16s> extremes(Random& random, std::size_t count)
{
    constexpr Zim16s chosen[] = {-32768, -32767, -16384, -2, -1, 0, 1, 2, 16384, 32766, 32767};
    std::vector<Zim16s> values = random.any<Zim16s>(count);
    for (Zim16s& value : values)
        if (random.between(0, 3) != 0)
            value = chosen[random.between(0, 10)];
    return values;
}

}  // namespace zimsr::test
