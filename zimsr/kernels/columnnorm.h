// Mean and variance normalisation: sums and sums of squares down the columns of a matrix, and what they are for, the
// removal of a mean and a deviation.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "base/kernels/integer_scaling.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/columns.h"

namespace zimsr::columnnorm {

// ---- Sums

// Adds rows 0 .. height - 1 to the sums, row after row. A strip stepped back runs over columns that are done; their
// sums stay.
template <class T>
[[gnu::noinline]] void addRows(Rows<const T> rows, std::ptrdiff_t height, Zim32f* sum, Zim32f* sumSq, int width)
{
    std::ptrdiff_t done = 0;
    forEachColumnStrip<T, Zim32f>(width, [&](auto strip, std::ptrdiff_t column) {
        const auto element = [=](std::ptrdiff_t r) ZIM_INLINE_LAMBDA {
            return asFloat(summand(strip.load(rows[r] + column)));
        };
        using V = decltype(element(0));
        const V oldSum = loadFirst<V>(sum + column, strip.count), oldSumSq = loadFirst<V>(sumSq + column, strip.count);
        V s = oldSum, q = oldSumSq;
        for (std::ptrdiff_t r = 0; r < height; ++r) {
            const V x = element(r);
            s += x;
            q += x * x;
        }
        const auto floats = floatsOf(strip);
        const auto before = firstLanes<V>(static_cast<int>(done - column));
        floats.store(sum + column, select(before, oldSum, s));
        floats.store(sumSq + column, select(before, oldSumSq, q));
        done = column + strip.count;
    });
}

// ---- Normalisation of one row

inline void normalise(Zim32f* row, const Zim32f* mean, const Zim32f* val, std::size_t width)
{
    mapElements<8>(
        row, width, [](F8 x, F8 m, F8 v) { return (x - m) * v; }, row, mean, val);
}

// A scale factor on products of 32 bits: shifted without rounding, saturated to 16 bits. Longer shifts give the same.
class Shift {
public:
    explicit Shift(int scaleFactor) : right_(std::clamp(scaleFactor, 0, 31)), left_(-std::clamp(scaleFactor, -15, 0)) {}

    ZIM_INLINE S8 operator()(I8 product) const
    {
        return left_ == 0 ? narrowSaturated(product >> right_) : shiftLeftSaturate(product, left_);
    }

private:
    int right_, left_;
};

// Exact differences, and products that still fit 32 bits.
inline void normaliseExact(Zim16s* row, const Zim16s* mean, const Zim16s* val, std::size_t width, Shift shift)
{
    mapElements<8>(
        row, width, [=](S8 x, S8 m, S8 v) { return shift((widen(x) - widen(m)) * widen(v)); }, row, mean, val);
}

inline void normaliseSaturated(Zim16s* row, const Zim16s* mean, const Zim16s* val, std::size_t width, Shift shift)
{
    mapElements<8>(
        row, width, [=](S8 x, S8 m, S8 v) { return shift(multiplyWide(subtractSaturated(x, m), v)); }, row, mean, val);
}

// In single precision; rounds in the processor's mode.
inline void normaliseRounded(Zim16s* row, const Zim16s* mean, const Zim16s* val, std::size_t width, Zim32f scale)
{
    const auto toFloats = [](S8 v) ZIM_INLINE_LAMBDA { return toFloat(widen(v)); };
    mapElements<8>(
        row, width,
        [=](S8 x, S8 m, S8 v) {
            return quantise((toFloats(x) - toFloats(m)) * toFloats(v) * splat<F8>(scale), RoundNearest{}, Zim16s{});
        },
        row, mean, val);
}

// The scale for that: from 2^-31 down no product is left, from 2^31 up every one saturates.
inline Zim32f floatScale(int scaleFactor)
{
    return GetScale_32s32f(std::clamp(scaleFactor, -31, 40));
}

// ---- All rows

inline void normaliseRows(Rows<Zim32f> rows, int height, const Zim32f* mean, const Zim32f* val, int width)
{
    for (std::ptrdiff_t r = 0; r < height; ++r)
        normalise(rows[r], mean, val, static_cast<std::size_t>(width));
}

inline void normaliseRows(Rows<Zim16s> rows, int height, const Zim16s* mean, const Zim16s* val, int width,
                          int scaleFactor)
{
    const Shift shift(scaleFactor);
    for (std::ptrdiff_t r = 0; r < height; ++r)
        normaliseExact(rows[r], mean, val, static_cast<std::size_t>(width), shift);
}

// Groups of eight columns with saturated differences, the columns behind them in single precision.
inline void normaliseAlignedRows(Rows<Zim16s> rows, int height, const Zim16s* mean, const Zim16s* val, int width,
                                 int scaleFactor)
{
    const RoundToNearest mode;
    const Shift shift(scaleFactor);
    const Zim32f scale = floatScale(scaleFactor);
    const std::size_t grouped = static_cast<std::size_t>(width) / 8 * 8, rest = static_cast<std::size_t>(width) % 8;
    for (std::ptrdiff_t r = 0; r < height; ++r) {
        normaliseSaturated(rows[r], mean, val, grouped, shift);
        normaliseRounded(rows[r] + grouped, mean + grouped, val + grouped, rest, scale);
    }
}

}  // namespace zimsr::columnnorm
