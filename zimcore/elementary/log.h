// The natural logarithm.
//
// x = 2^e (1 + f) with 1 + f in [43/64, 43/32). With s = f / (2 + f), so that ln(1 + f) = 2 artanh(s),
// ln(1 + f) = f - f^2/2 + s (f^2/2 + R(s^2)) (the arrangement of Ng, 1993). e ln2, f and f^2/2 are added without error;
// R is a minimax polynomial by Remez's algorithm (relative error of the whole 2^-63).
#pragma once

#include <limits>

#include "zimcore/elementary/exact.h"

namespace zimsr::elementary {

namespace log_detail {

inline constexpr double ln2High = 0x1.62e42fefa4000p-1;  // 41 bits: exact when multiplied by an exponent
inline constexpr double ln2Low = -0x1.8432a1b0e2634p-43;

inline constexpr std::array<double, 8> artanhTerms = {0x1.5555555555551p-1, 0x1.999999999b7cep-2, 0x1.2492492276376p-2,
                                                      0x1.c71c740e56a7bp-3, 0x1.745c6955525aep-3, 0x1.3b31d5198d60dp-3,
                                                      0x1.0e0e2a5ccfe5dp-3, 0x1.19b9a3ad3448fp-3};

}  // namespace log_detail

// ln(x 2^exponent) for a positive normal x and an integral exponent. Above 2^12 in magnitude, the product of exponent
// and ln2 is no longer exact; then its rounding is the largest error.
template <int N>
ZIM_INLINE Vec<double, N> logScaled(Vec<double, N> x, Vec<double, N> exponent)
{
    using namespace log_detail;
    using V = Vec<double, N>;
    constexpr uint64_t lowest = 0x3fe5800000000000, bias = uint64_t{1023} << 52;
    const Bits<V> bits = bitsOf(x);
    const Bits<V> fromLowest = bits - splat<Bits<V>>(lowest - bias);  // its exponent field is e + 1023
    const V e =
        (reinterpret<V>((fromLowest >> 52) | splat<Bits<V>>(0x4330000000000000)) - splat<V>(0x1p52 + 1023)) + exponent;
    const V f =
        reinterpret<V>(bits - (fromLowest & splat<Bits<V>>(~uint64_t{0} << 52)) + splat<Bits<V>>(bias)) - splat<V>(1);

    const V s = f / (splat<V>(2) + f);
    const V z = s * s;
    const auto [square, squareError] = halfSquare(f);
    const auto [linear, linearError] = fastTwoSum(e * splat<V>(ln2High), f);
    const auto [leading, leadingError] = fastTwoSum(linear, -square);
    const V rest = s * (square + squareError + z * polynomial(z, artanhTerms)) - squareError;
    return leading + ((linearError + leadingError) + (e * splat<V>(ln2Low) + rest));
}

namespace log_detail {

// The lanes that are not positive and normal, in the company of those that are.
template <class V>
[[gnu::noinline]] V logOfAny(V x)
{
    using Limits = std::numeric_limits<double>;
    const V zero = splat<V>(0), infinity = splat<V>(Limits::infinity());
    const auto subnormal = x < splat<V>(Limits::min());
    const V scaled = select(subnormal, x * splat<V>(0x1p54), x);
    const V ln = logScaled(scaled, keep(subnormal, splat<V>(-54)));
    const V ofFinite = select(x == zero, -infinity, select(x < zero, splat<V>(Limits::quiet_NaN()), ln));
    return select(x < infinity, ofFinite, x + x);  // plus infinity and NaN
}

}  // namespace log_detail

template <int N>
ZIM_INLINE Vec<double, N> log(Vec<double, N> x)
{
    using V = Vec<double, N>;
    using Limits = std::numeric_limits<double>;
    const auto normal = (x >= splat<V>(Limits::min())) & (x <= splat<V>(Limits::max()));
    if (anySet(~normal)) [[unlikely]]
        return log_detail::logOfAny(x);
    return logScaled(x, splat<V>(0));
}

ZIM_INLINE double log(double x)
{
    return log(splat<D2>(x))[0];
}

ZIM_INLINE double logScaled(double x, double exponent)
{
    return logScaled(splat<D2>(x), splat<D2>(exponent))[0];
}

}  // namespace zimsr::elementary
