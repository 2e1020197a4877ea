// Means and variances of columns whose rows carry weights. The weights are used as they are.
#pragma once

#include <cstddef>

#include "zimsr/kernels/columns.h"

namespace zimsr {

// mean[c] = sum over r of weights[r] * x[r][c].
template <class T>
[[gnu::noinline]] void weightedMeanOfColumns(Rows<const T> rows, const T* weights, int height, T* mean, int width)
{
    forEachColumnStrip<T, T>(width, [=](auto strip, std::ptrdiff_t column) {
        using V = typename decltype(strip)::Vector;
        strip.store(mean + column, sumDown(height, splat<V>(0), [=](std::ptrdiff_t r) {
                        return splat<V>(weights[r]) * strip.load(rows[r] + column);
                    }));
    });
}

// var[c] = sum over r of weights[r] * x[r][c]^2, less mean[c]^2.
template <class T>
[[gnu::noinline]] void weightedVarianceOfColumns(Rows<const T> rows, const T* weights, int height, const T* mean,
                                                 T* var, int width)
{
    forEachColumnStrip<T, T>(width, [=](auto strip, std::ptrdiff_t column) {
        using V = typename decltype(strip)::Vector;
        const V m = strip.load(mean + column);
        const V sum = sumDown(height, splat<V>(0), [=](std::ptrdiff_t r) {
            const V x = strip.load(rows[r] + column);
            return splat<V>(weights[r]) * (x * x);
        });
        strip.store(var + column, sum - m * m);
    });
}

// Both in one pass.
template <class T>
[[gnu::noinline]] void weightedMomentsOfColumns(Rows<const T> rows, const T* weights, int height, T* mean, T* var,
                                                int width)
{
    forEachColumnStrip<T, T, 2>(width, [=](auto strip, std::ptrdiff_t column) {
        using V = typename decltype(strip)::Vector;
        const auto sums = sumDown(height, Moments<V>{splat<V>(0), splat<V>(0)}, [=](std::ptrdiff_t r) {
            const V x = strip.load(rows[r] + column), weight = splat<V>(weights[r]);
            return Moments<V>{weight * x, weight * (x * x)};
        });
        strip.store(mean + column, sums.first);
        strip.store(var + column, sums.second - sums.first * sums.first);
    });
}

}  // namespace zimsr
