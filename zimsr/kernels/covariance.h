// The scatter of frames about a mean, added to the upper triangle of a full covariance accumulator and mirrored:
//
//     dst[i][j] += val * sum over r of (x[r][i] - mean[j]) * (x[r][j] - mean[j])
//
// Two choices make a variant: how differences are formed, and how a frame's product joins the accumulator.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/strips.h"

namespace zimsr::covariance {

// The columns of a strip in Zim64f.
template <int columns>
using Doubles = typename Strip<Zim64f, columns>::Vector;

template <int columns, int N>
ZIM_INLINE Doubles<columns> widened(Vec<float, N> v)
{
    return lowLanes<Doubles<columns>::lanes>(widen(v));
}

template <int columns>
ZIM_INLINE Doubles<columns> widened(S8 v)
{
    return lowLanes<Doubles<columns>::lanes>(toDouble(widen(v)));
}

// ---- Differences between frames and the means of a strip of columns: of a row's own columns, and of one element

struct InDoubles {
    template <class T, int columns>
    class Of {
        using D = Doubles<columns>;

    public:
        ZIM_INLINE explicit Of(const T* mean) : mean_(load(mean)) {}
        ZIM_INLINE D row(const T* x) const { return load(x) - mean_; }
        ZIM_INLINE D element(T x) const { return splat<D>(static_cast<Zim64f>(x)) - mean_; }

    private:
        static ZIM_INLINE D load(const T* x) { return widened<columns>(Strip<T, columns>{}.load(x)); }
        D mean_;
    };
};

struct InFloats {
    template <class T, int columns>
    class Of {
        using V = typename Strip<T, columns>::Vector;

    public:
        ZIM_INLINE explicit Of(const T* mean) : mean_(Strip<T, columns>{}.load(mean)) {}
        ZIM_INLINE auto row(const T* x) const { return widened<columns>(Strip<T, columns>{}.load(x) - mean_); }
        ZIM_INLINE auto element(T x) const { return widened<columns>(splat<V>(x) - mean_); }

    private:
        V mean_;
    };
};

// Limited to 16 bits: the row's as x - mean, the element's as mean - x.
struct Saturated {
    template <class T, int columns>
    class Of {
    public:
        ZIM_INLINE explicit Of(const T* mean) : mean_(Strip<T, columns>{}.load(mean)) {}
        ZIM_INLINE auto row(const T* x) const
        {
            return widened<columns>(subtractSaturated(Strip<T, columns>{}.load(x), mean_));
        }
        ZIM_INLINE auto element(T x) const { return -widened<columns>(subtractSaturated(mean_, splat<S8>(x))); }

    private:
        S8 mean_;
    };
};

// ---- How products join the accumulator

// The sum over all frames is finished before it is multiplied and added.
struct WholeSum {
    Zim64f val;

    template <class D>
    ZIM_INLINE D start(D) const
    {
        return splat<D>(0);
    }
    template <class D>
    ZIM_INLINE D term(D first, D second) const
    {
        return first * second;
    }
    template <class D>
    ZIM_INLINE D finish(D before, D sum) const
    {
        return before + splat<D>(val) * sum;
    }
};

// Frame after frame is added to the accumulator.
struct FrameByFrame {
    Zim64f val;

    template <class D>
    ZIM_INLINE D start(D before) const
    {
        return before;
    }
    template <class D>
    ZIM_INLINE D term(D first, D second) const
    {
        return splat<D>(val) * first * second;
    }
    template <class D>
    ZIM_INLINE D finish(D, D sum) const
    {
        return sum;
    }
};

// ---- Loops

template <class T>
struct Frames {
    Rows<const T> rows;
    int height, width;
    const T* mean;
};

// Columns begin .. end - 1 of rows i .. i + count - 1 of the accumulator.
template <int count, class Differences, int columns = 2 * Native<Zim64f>::lanes, class Join, class T>
ZIM_INLINE void accumulateRows(Join join, const Frames<T>& frames, Rows<Zim64f> dst, std::ptrdiff_t i,
                               std::ptrdiff_t begin, std::ptrdiff_t end)
{
    if (end >= columns) {
        constexpr Strip<Zim64f, columns> strip;
        std::ptrdiff_t done = begin;
        for (; done < end; done += columns) {
            const std::ptrdiff_t column = std::min<std::ptrdiff_t>(done, end - columns);
            const typename Differences::template Of<T, columns> differences(frames.mean + column);
            Doubles<columns> sum[count];
#pragma GCC unroll 4
            for (int k = 0; k < count; ++k)
                sum[k] = join.start(strip.load(dst[i + k] + column));
            for (std::ptrdiff_t r = 0; r < frames.height; ++r) {
                const T* const x = frames.rows[r];
                const auto second = differences.row(x + column);
#pragma GCC unroll 4
                for (int k = 0; k < count; ++k)
                    sum[k] += join.term(differences.element(x[i + k]), second);
            }
            const auto fresh = freshLanes(strip, column, done);
#pragma GCC unroll 4
            for (int k = 0; k < count; ++k) {
                const auto before = strip.load(dst[i + k] + column);
                strip.store(dst[i + k] + column, select(fresh, join.finish(before, sum[k]), before));
            }
        }
    } else if constexpr (columns > 1) {
        accumulateRows<count, Differences, columns / 2>(join, frames, dst, i, begin, end);
    }
}

inline void mirrorUpperTriangle(Rows<Zim64f> dst, int width)
{
    for (std::ptrdiff_t i = 0; i < width; ++i) {
        const Zim64f* const row = dst[i];
        for (std::ptrdiff_t j = i + 1; j < width; ++j)
            dst[j][i] = row[j];
    }
}

// Rows of the accumulator go four at a time, which writes a few elements below the diagonal too; the mirror follows.
template <class Differences, class Join, class T>
[[gnu::noinline]] void accumulate(Join join, const Frames<T>& frames, Rows<Zim64f> dst)
{
    std::ptrdiff_t i = 0;
    for (; frames.width - i >= 4; i += 4)
        accumulateRows<4, Differences>(join, frames, dst, i, i, frames.width);
    for (; i < frames.width; ++i)
        accumulateRows<1, Differences>(join, frames, dst, i, i, frames.width);
    mirrorUpperTriangle(dst, frames.width);
}

// From the diagonal on, differences saturate in whole groups of four columns and are exact behind them.
[[gnu::noinline]] inline void accumulateSaturated(FrameByFrame join, const Frames<Zim16s>& frames, Rows<Zim64f> dst)
{
    for (std::ptrdiff_t i = 0; i < frames.width; ++i) {
        const std::ptrdiff_t endOfGroups = frames.width - (frames.width - i) % 4;
        accumulateRows<1, Saturated>(join, frames, dst, i, i, endOfGroups);
        accumulateRows<1, InDoubles>(join, frames, dst, i, endOfGroups, frames.width);
    }
    mirrorUpperTriangle(dst, frames.width);
}

}  // namespace zimsr::covariance
