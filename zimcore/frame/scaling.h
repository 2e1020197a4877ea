// Powers of two for scale factors, and the integer rule behind every `Sfs`: round half to even, then saturate.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <limits>
#include <type_traits>

#include <zimsr/types.h>

namespace zimsr {

// 2^exponent, exactly, over the whole range of the type, infinite above it and 0 below.
template <class Float>
constexpr Float powerOfTwo(int exponent)
{
    Float power = 1;
    for (; exponent > 0; --exponent)
        power *= 2;
    for (; exponent < 0; ++exponent)
        power /= 2;
    return power;
}

template <class Float, int count, int first, int stride>
constexpr std::array<Float, count> powersDownFrom()
{
    std::array<Float, count> powers{};
    for (int i = 0; i < count; ++i)
        powers[static_cast<unsigned>(i)] = first - stride * i > std::numeric_limits<Float>::max_exponent - 1
                                               ? std::numeric_limits<Float>::infinity()
                                               : powerOfTwo<Float>(first - stride * i);
    return powers;
}

inline constexpr auto scales_32f = powersDownFrom<Zim32f, 279, 128, 1>();       // 2^128 (infinite) .. 2^-150 (0)
inline constexpr auto fineScales_64f = powersDownFrom<Zim32f, 64, 0, 1>();      // 2^0 .. 2^-63
inline constexpr auto coarseScales_64f = powersDownFrom<Zim64f, 34, 1087, 64>();  // 2^1087 (infinite) .. 2^-1025

// 2^-scaleFactor, exact; infinite at or below -128, 0 at or above 150.
inline Zim32f GetScale_32s32f(int scaleFactor)
{
    return scales_32f[static_cast<unsigned>(std::clamp(scaleFactor, -128, 150) + 128)];
}

// 2^-scaleFactor, exact; infinite at or below -1024, 0 at or above 1087.
inline Zim64f GetScale_32s64f(int scaleFactor)
{
    const unsigned place = static_cast<unsigned>(std::clamp(scaleFactor, -1024, 1087) + 1087);
    return static_cast<Zim64f>(fineScales_64f[place & 63]) * coarseScales_64f[place >> 6];
}

// Limits to the range of Int.
template <class Int, class Wide>
constexpr Int saturate(Wide value)
{
    static_assert(std::is_integral_v<Wide> && sizeof(Wide) >= sizeof(Int));
    return static_cast<Int>(std::clamp<Wide>(value, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

// round(v * 2^-factor), half to even, for 1 <= factor <= 62; exact for every v that leaves room for half a unit.
constexpr Zim64s shiftRightHalfEven(Zim64s v, int factor)
{
    return (v + ((Zim64s{1} << (factor - 1)) - 1) + ((v >> factor) & 1)) >> factor;
}

// saturate<Int>(v * 2^shift), for 0 <= shift < 63: the value is limited before it is shifted, so that it keeps its sign.
template <class Int>
constexpr Int shiftLeftSaturate(Zim64s v, int shift)
{
    const Zim64s limited = saturate<Int>(v);
    if (shift >= std::numeric_limits<Int>::digits)
        return limited == 0  ? Int{0}
               : limited < 0 ? std::numeric_limits<Int>::min()
                             : std::numeric_limits<Int>::max();
    return saturate<Int>(limited * (Zim64s{1} << shift));
}

// saturate<Int>(round(v * 2^-factor)) for every factor, where |v| is at most 2^62: the whole rule of `Sfs`.
template <class Int>
constexpr Int scaleHalfEven(Zim64s v, int factor)
{
    if (factor <= 0)
        return shiftLeftSaturate<Int>(v, -std::max(factor, -62));
    return factor > 62 ? Int{0} : saturate<Int>(shiftRightHalfEven(v, factor));
}

// saturate<Int>(v * 2^-factor) for every factor, rounded down: a bare shift.
template <class Int>
constexpr Int scaleFloor(Zim64s v, Zim64s factor)
{
    return factor < 0 ? shiftLeftSaturate<Int>(v, static_cast<int>(-std::max<Zim64s>(factor, -62)))
                      : saturate<Int>(v >> std::min<Zim64s>(factor, 63));
}

}  // namespace zimsr
