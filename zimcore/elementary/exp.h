// The exponential function and its relatives.
//
// x = n ln2 + r with |r| <= ln2 / 2 (Cody & Waite 1980), n ln2 being subtracted in two parts, so that r is known to
// twice the precision. exp(r) = 1 + r + r^2/2 + r^3 Q(r): the first three terms are added without error, Q is a minimax
// polynomial by Remez's algorithm (relative error of the whole 2^-57.3).
#pragma once

#include "zimcore/elementary/exact.h"

namespace zimsr::elementary {

namespace exp_detail {

inline constexpr double ln2High = 0x1.62e42fefa4000p-1;  // 41 bits: exact when multiplied by an exponent
inline constexpr double ln2Low = -0x1.8432a1b0e2634p-43;
inline constexpr double log2e = 0x1.71547652b82fep+0;

inline constexpr std::array<double, 9> cubicTerms = {
    0x1.5555555555501p-3,  0x1.55555555531fap-5,  0x1.1111111128902p-7,  0x1.6c16c17cc7d6cp-10, 0x1.a01a011bff552p-13,
    0x1.a019ab1d2616ap-16, 0x1.71df5573c45efp-19, 0x1.289f9c2d31036p-22, 0x1.ad1ffc40d1142p-26};

// 2^n for an integral n in [-1022, 1023].
template <class V>
ZIM_INLINE V powerOfTwo(V n)
{
    return reinterpret<V>(bitsOf(n + splat<V>(integerShift + 1023)) << 52);
}

// v * 2^n for |n| up to 2046; by two factors, so that no intermediate power overflows or underflows.
template <class V>
ZIM_INLINE V scale(V v, V n)
{
    const V shift = splat<V>(integerShift);
    const V half = (n * splat<V>(0.5) + shift) - shift;
    return v * powerOfTwo(half) * powerOfTwo(n - half);
}

// exp(r + correction) for |r| <= ln2 / 2, correction being below half a unit of r.
template <class V>
ZIM_INLINE V expReduced(V r, V correction)
{
    const auto [square, squareError] = halfSquare(r);
    const auto [linear, linearError] = fastTwoSum(splat<V>(1), r);
    const auto [leading, leadingError] = fastTwoSum(linear, square);
    const V cubic = (r * r) * (r * polynomial(r, cubicTerms));
    return leading + ((linearError + leadingError) + (correction * linear + (squareError + cubic)));
}

}  // namespace exp_detail

template <int N>
ZIM_INLINE Vec<double, N> exp(Vec<double, N> x)
{
    using namespace exp_detail;
    using V = Vec<double, N>;
    // Beyond these limits the result has overflowed or underflowed. A NaN passes: it is the second operand.
    x = max(splat<V>(-746), min(splat<V>(710), x));
    const V shift = splat<V>(integerShift);
    const V n = (x * splat<V>(log2e) + shift) - shift;
    const auto [r, correction] = fastTwoSum(x - n * splat<V>(ln2High), -n * splat<V>(ln2Low));
    return scale(expReduced(r, correction), n);
}

ZIM_INLINE double exp(double x)
{
    return exp(splat<D2>(x))[0];
}

}  // namespace zimsr::elementary
