// Sine and cosine.
//
// After the reduction to |r| <= pi/4, sin(r) = r - r^3/6 + r^5 S(r^2) and cos(r) = 1 - r^2/2 + r^4 C(r^2). The terms
// before the polynomials are formed without error to well below a unit of the result; S and C are minimax polynomials
// by Remez's algorithm (relative errors of the whole 2^-57 and 2^-64).
#pragma once

#include "zimcore/elementary/reduction.h"

namespace zimsr::elementary {

template <class V>
struct SinCos {
    V sin, cos;
};

namespace sincos_detail {

inline constexpr std::array<double, 6> sinTerms = {0x1.111111111110fp-7,  -0x1.a01a01a019392p-13,
                                                   0x1.71de3a53d18e7p-19, -0x1.ae6453449b499p-26,
                                                   0x1.6120f43dc7f99p-33, -0x1.aad0ea6cd3a37p-41};
inline constexpr std::array<double, 6> cosTerms = {0x1.555555555554cp-5,  -0x1.6c16c16c1517cp-10,
                                                   0x1.a01a019cb18ccp-16, -0x1.27e4f809cbb46p-22,
                                                   0x1.1ee9ebcf168e9p-29, -0x1.8fae8e782226fp-37};

template <class V>
ZIM_INLINE V sinReduced(V r, V error)
{
    // r^3/6 = lead^3 sixth + rest: the first product is exact, 3 * 8 + 29 bits, and the rest is smaller by 2^-7.
    constexpr double sixth = 0x1.5555555p-3, sixthRest = 0x1.5555555555555p-33;
    const V square = r * r;
    const V lead = leadingBits<8>(r);
    const V leadSquare = lead * lead, leadCube = leadSquare * lead;
    const V rest =
        leadCube * splat<V>(sixthRest) + (r - lead) * ((square + r * lead + leadSquare) * splat<V>(sixth + sixthRest));
    const auto [leading, leadingError] = fastTwoSum(r, -(leadCube * splat<V>(sixth)));
    const V fifth = (square * r) * (square * polynomial(square, sinTerms));
    const V ofError = error - error * (splat<V>(0.5) * square);
    return leading + (leadingError + ((fifth - rest) + ofError));
}

template <class V>
ZIM_INLINE V cosReduced(V r, V error)
{
    const V square = r * r;
    const auto [half, halfError] = halfSquare(r);
    const auto [leading, leadingError] = fastTwoSum(splat<V>(1), -half);
    const V fourth = square * (square * polynomial(square, cosTerms));
    return leading + (leadingError + ((fourth - halfError) - r * error));
}

// Sine or cosine of the reduced angle by the quadrant's lowest bit, negative by its second.
template <class V>
ZIM_INLINE V byQuadrant(Bits<V> quadrant, V ofEven, V ofOdd)
{
    const auto odd = reinterpret<typename V::Mask>(splat<Bits<V>>(0) - (quadrant & splat<Bits<V>>(1)));
    const Bits<V> sign = (quadrant >> 1) << 63;
    return reinterpret<V>(bitsOf(select(odd, ofOdd, ofEven)) ^ sign);
}

}  // namespace sincos_detail

// Both at little more than the price of one.
template <int N>
ZIM_INLINE SinCos<Vec<double, N>> sincos(Vec<double, N> x)
{
    using namespace sincos_detail;
    using V = Vec<double, N>;
    const ReducedAngle<V> angle = reduceAngle(x);
    const V ofSin = sinReduced(angle.value, angle.error), ofCos = cosReduced(angle.value, angle.error);
    const V sine = byQuadrant(angle.quadrant, ofSin, ofCos);
    const V cosine = byQuadrant(angle.quadrant + splat<Bits<V>>(1), ofSin, ofCos);
    return {select(x == splat<V>(0), x, sine), cosine};  // a zero keeps its sign
}

template <int N>
ZIM_INLINE Vec<double, N> sin(Vec<double, N> x)
{
    return sincos(x).sin;
}

template <int N>
ZIM_INLINE Vec<double, N> cos(Vec<double, N> x)
{
    return sincos(x).cos;
}

ZIM_INLINE SinCos<double> sincos(double x)
{
    const SinCos<D2> both = sincos(splat<D2>(x));
    return {both.sin[0], both.cos[0]};
}

ZIM_INLINE double sin(double x)
{
    return sincos(x).sin;
}

ZIM_INLINE double cos(double x)
{
    return sincos(x).cos;
}

}  // namespace zimsr::elementary
