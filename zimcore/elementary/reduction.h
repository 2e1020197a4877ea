// Reduction of an angle: x = k pi/2 + r with |r| <= pi/4, r to twice the working precision, k modulo 4.
//
// Up to 2^20, by Cody & Waite (1980) with pi/2 in three parts of 33 bits, exact when multiplied by k, and a tail.
// Above, by Payne & Hanek (1983): x is an integer of 53 bits times a power of two, and of the bits of 2/pi only those
// matter that neither make whole turns nor lie below the precision wanted. No double comes closer to a multiple of pi/2
// than 2^-61 (Muller, Elementary Functions, 3rd ed., section 11.3), so 190 bits of fraction leave more than 120.
#pragma once

#include <limits>

#include "zimcore/elementary/exact.h"

namespace zimsr::elementary {

template <class V>
struct ReducedAngle {
    V value, error;
    Bits<V> quadrant;  // only the two lowest bits count
};

namespace reduction_detail {

inline constexpr double limit = 0x1p20;

// 2/pi behind two words of zeros.
inline constexpr std::array<uint32_t, 40> twoOverPi = {
    0,          0,          0xa2f9836e, 0x4e441529, 0xfc2757d1, 0xf534ddc0, 0xdb629599, 0x3c439041,
    0xfe5163ab, 0xdebbc561, 0xb7246e3a, 0x424dd2e0, 0x06492eea, 0x09d1921c, 0xfe1deb1c, 0xb129a73e,
    0xe88235f5, 0x2ebb4484, 0xe99c7026, 0xb45f7e41, 0x3991d639, 0x835339f4, 0x9c845f8b, 0xbdf9283b,
    0x1ff897ff, 0xde05980f, 0xef2f118b, 0x5a0a6d1f, 0x6d367ecf, 0x27cb09b7, 0x4f463f66, 0x9e5fea2d,
    0x7527bac7, 0xebe5f17b, 0x3d0739f7, 0x8a5292ea, 0x6bfb5fb1, 0x1f8d5d08, 0x56033046, 0xfc7b6bab};

struct ScalarAngle {
    double value, error;
    uint64_t quadrant;
};

// A non-negative finite x of at least 2^-30 or so, by Payne & Hanek.
inline ScalarAngle reduceByBits(double x)
{
    constexpr int words = 6;
    const uint64_t bits = std::bit_cast<uint64_t>(x);
    const uint64_t significand = (bits & ((uint64_t{1} << 52) - 1)) | uint64_t{1} << 52;
    // x = significand * 2^exponent. Bit 0 of the table stands for 2^63; bits above 2^1 / 2^exponent make whole turns.
    const int exponent = static_cast<int>(bits >> 52) - 1075;
    const unsigned start = static_cast<unsigned>(exponent - 2 + 64);

    // turns = significand * window modulo 2^192, with 2^192 for a turn; most significant word first.
    uint32_t turns[words];
    uint64_t lowCarry = 0, highCarry = 0;
    uint32_t below = 0;
    const uint32_t low = static_cast<uint32_t>(significand), high = static_cast<uint32_t>(significand >> 32);
    for (int i = words - 1; i >= 0; --i) {
        const unsigned word = start / 32 + static_cast<unsigned>(i), shift = start % 32;
        const uint64_t pair = uint64_t{twoOverPi[word]} << 32 | twoOverPi[word + 1];
        const uint32_t window = static_cast<uint32_t>(pair >> (32 - shift));
        // Each partial sum is at most (2^32 - 1)^2 + 2 (2^32 - 1), which fits.
        lowCarry += uint64_t{low} * window;
        highCarry += uint64_t{high} * below + static_cast<uint32_t>(lowCarry);
        turns[i] = static_cast<uint32_t>(highCarry);
        lowCarry >>= 32;
        highCarry >>= 32;
        below = window;
    }

    // The two leading bits are the quadrant; the rest, as a fraction of it, is taken from the nearer end.
    uint64_t quadrant = turns[0] >> 30;
    const bool fromAbove = (turns[0] >> 29 & 1) != 0;
    quadrant += fromAbove;
    const uint32_t flip = fromAbove ? ~uint32_t{0} : 0;
    for (uint32_t& word : turns)
        word ^= flip;  // the missing unit of 2^-190 is below the precision wanted
    turns[0] &= (uint32_t{1} << 30) - 1;
    double fraction = 0, fractionError = 0, unit = 0x1p-190;
    for (int i = words - 1; i >= 0; --i, unit *= 0x1p32) {
        const double word = turns[i] * unit;
        const double sum = word + fraction;
        fractionError += fraction - (sum - word);
        fraction = sum;
    }

    // Times pi/2; the products of the halves are exact.
    constexpr double halfPi = 0x1.921fb54442d18p+0, halfPiLow = 0x1.1a62633145c07p-54;
    constexpr double halfPiLead = 0x1.921fb50000000p+0, halfPiTrail = halfPi - halfPiLead;
    const double lead = std::bit_cast<double>(std::bit_cast<uint64_t>(fraction) & (~uint64_t{0} << 27));
    const double trail = fraction - lead;
    const double product = fraction * halfPi;
    const double productError = ((lead * halfPiLead - product) + lead * halfPiTrail + trail * halfPiLead) +
                                trail * halfPiTrail + (fraction * halfPiLow + fractionError * halfPi);
    const double value = product + productError, error = productError - (value - product);
    return fromAbove ? ScalarAngle{-value, -error, quadrant} : ScalarAngle{value, error, quadrant};
}

inline ScalarAngle reduceLarge(double x)
{
    if (!(__builtin_fabs(x) <= std::numeric_limits<double>::max()))
        return {x - x, 0, 0};  // NaN
    const ScalarAngle angle = reduceByBits(__builtin_fabs(x));
    return x < 0 ? ScalarAngle{-angle.value, -angle.error, 0 - angle.quadrant} : angle;
}

template <class V>
[[gnu::noinline]] void reduceLargeLanes(V x, ReducedAngle<V>& angle)
{
    for (int lane = 0; lane < V::lanes; ++lane) {
        if (__builtin_fabs(x[lane]) < limit)
            continue;
        const ScalarAngle reduced = reduceLarge(x[lane]);
        angle.value.set(lane, reduced.value);
        angle.error.set(lane, reduced.error);
        angle.quadrant.set(lane, reduced.quadrant);
    }
}

}  // namespace reduction_detail

template <class V>
ZIM_INLINE ReducedAngle<V> reduceAngle(V x)
{
    const V shifted = x * splat<V>(0x1.45f306dc9c883p-1) + splat<V>(integerShift);
    const V k = shifted - splat<V>(integerShift);
    // The first difference is exact, and an error of the second vanishes where the third cancels.
    const V first = x - k * splat<V>(0x1.921fb54400000p+0);
    const auto [second, secondError] = twoSum(first, -(k * splat<V>(0x1.0b4611a600000p-34)));
    const auto [third, thirdError] = twoSum(second, -(k * splat<V>(0x1.3198a2e000000p-69)));
    const V rest = (secondError + thirdError) - k * splat<V>(0x1.b839a252049c1p-104);
    const auto [value, error] = fastTwoSum(third, rest);
    ReducedAngle<V> angle = {value, error, bitsOf(shifted)};

    const V magnitude = keep(splat<typename V::Mask>(std::numeric_limits<int64_t>::max()), x);
    if (anySet(~(magnitude < splat<V>(reduction_detail::limit)))) [[unlikely]]
        reduction_detail::reduceLargeLanes(x, angle);
    return angle;
}

}  // namespace zimsr::elementary
