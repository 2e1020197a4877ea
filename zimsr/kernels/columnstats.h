// Sums, means and variances of columns in floating point. Those of 16-bit samples are formed in Zim32f.
#pragma once

#include <zimsr/types.h>

#include "zimsr/kernels/columns.h"

namespace zimsr {

// What a statistic needs of the height: itself, and the divisors of mean and variance as factors, divided in Quotient.
template <class Float, class Quotient>
struct HeightFactors {
    Float height, invH, invH1;

    explicit HeightFactors(int rows)
        : height(static_cast<Float>(rows)),
          invH(static_cast<Float>(1 / static_cast<Quotient>(rows))),
          invH1(static_cast<Float>(1 / static_cast<Quotient>(rows - 1)))
    {
    }
};

// dst[c] = factor * sum over r of x[r][c].
template <class T, class Float>
[[gnu::noinline]] void sumColumns(Rows<const T> rows, int height, Float* dst, int width, Float factor)
{
    forEachColumnStrip<T, Float>(width, [=](auto strip, std::ptrdiff_t column) {
        const auto row = [=](std::ptrdiff_t r) { return summand(strip.load(rows[r] + column)); };
        using Sum = decltype(asFloat(row(0)));
        const Sum sum = sumDown(height, splat<Sum>(0), row);
        floatsOf(strip).store(dst + column, sum * splat<Sum>(factor));
    });
}

template <class Strip, class T>
ZIM_INLINE auto loadFloats(Strip strip, const T* source)
{
    return asFloat(summand(strip.load(source)));
}

// start + sum over r of x[r][c]^2, for a strip of columns.
template <class Sum, class Strip, class T>
ZIM_INLINE Sum sumSquares(Sum start, Strip strip, Rows<const T> rows, std::ptrdiff_t column, int height)
{
    return sumDown(height, start, [=](std::ptrdiff_t r) {
        const Sum x = loadFloats(strip, rows[r] + column);
        return x * x;
    });
}

// The variance about given means: the squares are added onto -height * mean^2.
[[gnu::noinline]] inline void varianceOfColumns(Rows<const Zim32f> rows, int height, const Zim32f* mean, Zim32f* var,
                                                int width, HeightFactors<Zim32f, Zim64f> factors)
{
    forEachColumnStrip<Zim32f, Zim32f>(width, [=](auto strip, std::ptrdiff_t column) {
        using V = typename decltype(strip)::Vector;
        const V m = strip.load(mean + column);
        const V sum = sumSquares(splat<V>(-factors.height) * m * m, strip, rows, column, height);
        strip.store(var + column, sum * splat<V>(factors.invH1));
    });
}

// The same for samples: -height * mean^2 is added to the sum of the squares.
[[gnu::noinline]] inline void varianceOfColumns(Rows<const Zim16s> rows, int height, const Zim16s* mean, Zim32f* var,
                                                int width, HeightFactors<Zim32f, Zim32f> factors)
{
    forEachColumnStrip<Zim16s, Zim32f>(width, [=](auto strip, std::ptrdiff_t column) {
        using V = decltype(loadFloats(strip, mean));
        const V m = loadFloats(strip, mean + column);
        const V sum = sumSquares(splat<V>(0), strip, rows, column, height);
        floatsOf(strip).store(var + column, (sum + splat<V>(-factors.height) * m * m) * splat<V>(factors.invH1));
    });
}

// Means, and variances about them, in one pass.
template <class T, class Quotient>
[[gnu::noinline]] void momentsOfColumns(Rows<const T> rows, int height, Zim32f* mean, Zim32f* var, int width,
                                        HeightFactors<Zim32f, Quotient> factors)
{
    forEachColumnStrip<T, Zim32f, 2>(width, [=](auto strip, std::ptrdiff_t column) {
        using V = decltype(loadFloats(strip, rows[0]));
        const auto sums = sumDown(height, Moments<V>{splat<V>(0), splat<V>(0)}, [=](std::ptrdiff_t r) {
            const V x = loadFloats(strip, rows[r] + column);
            return Moments<V>{x, x * x};
        });
        const V m = sums.first * splat<V>(factors.invH);
        floatsOf(strip).store(mean + column, m);
        floatsOf(strip).store(var + column, (sums.second - splat<V>(factors.height) * m * m) * splat<V>(factors.invH1));
    });
}

}  // namespace zimsr
