// Means and variances of columns of 16-bit samples, from exact sums.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/columnstats.h"

namespace zimsr {

// Sums of the samples and of their squares, of eight columns.
struct ExactSums {
    Zim64s sum[8], square[8];
};

// The exact sums of a strip of columns; those behind the strip are 0.
template <int columns>
ZIM_INLINE ExactSums exactSums(Strip<Zim16s, columns> strip, Rows<const Zim16s> rows, std::ptrdiff_t column, int height)
{
    using Pairs = Unpacked<8>;
    using Words = Vec<uint64_t, 2>;
    constexpr std::ptrdiff_t block = 65536;  // rows whose sum fits 32 bits
    L4 low = splat<L4>(0), high = low;
    Words squares[4] = {};  // of columns 0 and 2, 1 and 3, 4 and 6, 5 and 7
    for (std::ptrdiff_t r = 0; r < height;) {
        Pairs sum = splatUnpacked<8>(0);
        const auto add = [&](S8 x, S8 y) ZIM_INLINE_LAMBDA {
            const Pairs pairs = unpack(x, y);
            sum = sum + multiplyAddPairs(pairs, splatUnpacked<8>(0x00010001));
            // At most 2^31, so that a sum of two squares is an unsigned number.
            const Pairs square = multiplyAddPairs(pairs, pairs);
            const auto spread = [](I4 v, Words* to) ZIM_INLINE_LAMBDA {
                const Words words = reinterpret<Words>(v);
                to[0] += words & splat<Words>(0xFFFFFFFF);
                to[1] += words >> 32;
            };
            spread(square.low, squares);
            spread(square.high, squares + 2);
        };
        const std::ptrdiff_t end = std::min<std::ptrdiff_t>(r + block, height);
        for (; end - r >= 2; r += 2)
            add(strip.load(rows[r] + column), strip.load(rows[r + 1] + column));
        if (r < end) {
            add(strip.load(rows[r] + column), splat<S8>(0));
            ++r;
        }
        low += widen(sum.low);
        high += widen(sum.high);
    }
    ExactSums result;
    store(result.sum, low);
    store(result.sum + 4, high);
#pragma GCC unroll 8
    for (int k = 0; k < 8; ++k)
        result.square[k] = static_cast<Zim64s>(squares[k / 4 * 2 + k % 2][k % 4 / 2]);
    return result;
}

// ---- Rounded to nearest, from sums in Zim64f

// mean[c] and var[c] * 2^-scaleFactor, rounded and saturated. A variance of 0 stays 0 at every scale.
template <class Mean>
[[gnu::noinline]] void roundedMomentsOfColumns(Rows<const Zim16s> rows, int height, Mean* mean, Zim32s* var, int width,
                                               Zim64f invH, Zim64f varScale)
{
    const RoundToNearest mode;
    forEachStrip<Zim16s, 8>(width, [=](auto strip, std::ptrdiff_t column) {
        const ExactSums sums = exactSums(strip, rows, column, height);
        Zim64f s[8], q[8];
        for (int k = 0; k < 8; ++k) {
            s[k] = static_cast<Zim64f>(sums.sum[k]);
            q[k] = static_cast<Zim64f>(sums.square[k]);
        }
        const D8 m = load<D8>(s) * splat<D8>(invH);
        const D8 deviation = load<D8>(q) - m * m * splat<D8>(static_cast<Zim64f>(height));
        const D8 v = select(deviation == splat<D8>(0), deviation, deviation * splat<D8>(varScale));
        const auto rounded = [](D8 x) ZIM_INLINE_LAMBDA {
            return join(quantise(lowHalf(x), RoundNearest{}, Zim32s{}),
                        quantise(highHalf(x), RoundNearest{}, Zim32s{}));
        };
        const Strip<Zim32s, strip.count> integers;
        if constexpr (sizeof(Mean) == 2)
            strip.store(mean + column, narrowSaturated(rounded(m)));
        else
            integers.store(mean + column, rounded(m));
        integers.store(var + column, rounded(v));
    });
}

// ---- Truncated

// Calls finish(column, sum, sum of squares) for every column.
template <class Finish>
ZIM_INLINE void forEachExactSum(Rows<const Zim16s> rows, int height, int width, Finish finish)
{
    forEachStrip<Zim16s, 8>(width, [=](auto strip, std::ptrdiff_t column) {
        const ExactSums sums = exactSums(strip, rows, column, height);
        for (int k = 0; k < strip.count; ++k)
            finish(column + k, sums.sum[k], sums.square[k]);
    });
}

inline void truncatedMeanOfColumns(Rows<const Zim16s> rows, int height, Zim16s* mean, int width)
{
    const Zim32f invH = HeightFactors<Zim32f, Zim32f>(height).invH;
    forEachExactSum(rows, height, width, [=](std::ptrdiff_t c, Zim64s sum, Zim64s) {
        mean[c] = static_cast<Zim16s>(static_cast<Zim32f>(sum) * invH);
    });
}

inline void truncatedVarianceOfColumns(Rows<const Zim16s> rows, int height, const Zim16s* mean, Zim16s* var, int width,
                                       int scaleFactor)
{
    const Zim32f invH1 = HeightFactors<Zim32f, Zim32f>(height).invH1;
    forEachExactSum(rows, height, width, [=](std::ptrdiff_t c, Zim64s, Zim64s squares) {
        const Zim64s deviation = squares - Zim64s{height} * mean[c] * mean[c];
        var[c] = scaleFloor<Zim16s>(static_cast<Zim64s>(static_cast<Zim32f>(deviation) * invH1), scaleFactor);
    });
}

// Here the squares are added in Zim32f, row after row.
inline void truncatedMomentsOfColumns(Rows<const Zim16s> rows, int height, Zim16s* mean, Zim16s* var, int width,
                                      int scaleFactor)
{
    const HeightFactors<Zim32f, Zim32f> factors(height);
    forEachStrip<Zim16s, 8>(width, [=](auto strip, std::ptrdiff_t column) {
        const ExactSums sums = exactSums(strip, rows, column, height);
        F8 squares = splat<F8>(0);
        for (std::ptrdiff_t r = 0; r < height; ++r) {
            const S8 x = strip.load(rows[r] + column);
            squares += toFloat(multiplyWide(x, x));
        }
        for (int k = 0; k < strip.count; ++k) {
            const Zim32f m = static_cast<Zim32f>(sums.sum[k]) * factors.invH;
            const Zim32f deviation = squares[k] + m * m * -factors.height;
            mean[column + k] = static_cast<Zim16s>(std::clamp(m, -32768.0f, 32767.0f));
            var[column + k] = scaleFloor<Zim16s>(static_cast<Zim64s>(deviation * factors.invH1), scaleFactor);
        }
    });
}

}  // namespace zimsr
