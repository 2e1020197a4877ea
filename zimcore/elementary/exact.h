// Error-free transformations (Dekker 1971; Muller et al., Handbook of Floating-Point Arithmetic, 2nd ed., chapter 4),
// and polynomials: what the elementary functions are made of.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "zimcore/frame/simd.h"

namespace zimsr::elementary {

// value + error is the exact result, value the rounded one.
template <class V>
struct Exact {
    V value, error;
};

// a + b, where a is 0 or not smaller than b in magnitude.
template <class V>
ZIM_INLINE Exact<V> fastTwoSum(V a, V b)
{
    const V sum = a + b;
    return {sum, b - (sum - a)};
}

// a + b for any a and b.
template <class V>
ZIM_INLINE Exact<V> twoSum(V a, V b)
{
    const V sum = a + b;
    const V ofB = sum - a;
    return {sum, (a - (sum - ofB)) + (b - ofB)};
}

// The leading bits of the significand; the rest is cleared.
template <int bits, class V>
ZIM_INLINE V leadingBits(V v)
{
    return keep(splat<typename V::Mask>(-(int64_t{1} << (53 - bits))), v);
}

// v * v / 2: the square of the leading half is exact.
template <class V>
ZIM_INLINE Exact<V> halfSquare(V v)
{
    const V half = splat<V>(0.5), lead = leadingBits<26>(v);
    return {half * (lead * lead), half * ((v - lead) * (v + lead))};
}

// c[first] + c[first + 1] x + ... of count terms by Estrin's scheme: halves are joined by x^(2^k). Powers come from
// `power`, x^1, x^2, x^4, ...
template <std::size_t first, std::size_t count, class V, std::size_t terms, std::size_t powers>
ZIM_INLINE V estrin(const std::array<double, terms>& c, const std::array<V, powers>& power)
{
    if constexpr (count == 1) {
        return splat<V>(c[first]);
    } else {
        constexpr std::size_t level = std::bit_width(count - 1) - 1, low = std::size_t{1} << level;
        return estrin<first, low>(c, power) + power[level] * estrin<first + low, count - low>(c, power);
    }
}

// c[0] + c[1] x + c[2] x^2 + ...
template <class V, std::size_t terms>
ZIM_INLINE V polynomial(V x, const std::array<double, terms>& c)
{
    std::array<V, std::bit_width(terms - 1)> power;
    power[0] = x;
    for (std::size_t k = 1; k < power.size(); ++k)
        power[k] = power[k - 1] * power[k - 1];
    return estrin<0, terms>(c, power);
}

// A double of this size has a unit of 1 in its last place: adding it rounds to an integer, to nearest even, and leaves
// the integer in the low bits of the sum, modulo 2^51.
inline constexpr double integerShift = 0x1.8p52;

template <class V>
using Bits = Vec<uint64_t, V::lanes>;

template <class V>
ZIM_INLINE Bits<V> bitsOf(V v)
{
    return reinterpret<Bits<V>>(v);
}

}  // namespace zimsr::elementary
