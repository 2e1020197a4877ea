// Between the spectrum Z of the complex signal x[2n] + i x[2n+1], of length M = N/2, and the bins X of the real one.
// Bins k and M - k are made from the two of the other side.
#pragma once

#include "base/fft_plan.h"
#include "base/kernels/fft_complex.h"

namespace zimsr::fft {

// Where in the spectrum bin 0 would begin if it were complex: bin k begins 2k elements on, for every other k.
template <SpectrumFormat format>
inline constexpr std::ptrdiff_t firstBinAt = format == SpectrumFormat::ccs ? 0 : -1;

template <class V>
struct BinPair {
    Complex<V> low, high;  // k and M - k
};

// X from Z; the table's pairs are a = cos(2*pi*k/N)/2 and b = (1 - sin(2*pi*k/N))/2.
template <class V>
ZIM_INLINE BinPair<V> zims_cRealRecombine_32f(Complex<V> low, Complex<V> high, Complex<V> ab)
{
    const V differenceRe = low.re - high.re, sumIm = low.im + high.im;
    const V q = ab.re * sumIm + ab.im * differenceRe;
    const V p = ab.im * sumIm - ab.re * differenceRe;
    return {{high.re + q, p - high.im}, {low.re - q, p - low.im}};
}

// 2 Z from X; the table's pairs are c = cos(2*pi*k/N) and d = -sin(2*pi*k/N).
template <class V>
ZIM_INLINE BinPair<V> zims_cCcsRecombine_32f(Complex<V> low, Complex<V> high, Complex<V> cd)
{
    const Complex<V> sum = low + high, difference = low - high;
    const V u = cd.im * sum.im + cd.re * difference.re;
    const V v = cd.im * difference.re - cd.re * sum.im;
    return {{sum.re + v, difference.im + u}, {sum.re - v, u - difference.im}};
}

}  // namespace zimsr::fft
