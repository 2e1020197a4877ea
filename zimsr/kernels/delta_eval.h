// Deltas of a whole utterance in place, by a regression window of any size.
#pragma once

#include <bit>

#include "zimsr/kernels/delta.h"

namespace zimsr::delta {

// The sum of k * differenceAt(k) over k = 1 .. winSize.
template <class Sum>
struct RegressionSum;

// In single precision, from k = 1 upward.
template <int N>
struct RegressionSum<Vec<Zim32f, N>> {
    using Sum = Vec<Zim32f, N>;

    template <class Differences>
    static ZIM_INLINE Sum of(int winSize, const Differences& differenceAt)
    {
        Sum sum = splat<Sum>(0);
        for (int k = 1; k <= winSize; ++k)
            sum += splat<Sum>(static_cast<Zim32f>(k)) * differenceAt(k);
        return sum;
    }
};

// Modulo 2^32, without a product: the difference at k takes part in k of the partial sums from the outermost inward.
template <int N>
struct RegressionSum<Unpacked<N>> {
    using Sum = Unpacked<N>;

    template <class Differences>
    static ZIM_INLINE Sum of(int winSize, const Differences& differenceAt)
    {
        Sum partial = splatUnpacked<N>(0), sum = partial;
        for (int k = winSize; k >= 1; --k) {
            partial = addModulo(partial, differenceAt(k));
            sum = addModulo(sum, partial);
        }
        return sum;
    }

private:
    static ZIM_INLINE Sum addModulo(Sum a, Sum b)
    {
        using Unsigned = Vec<Zim32u, N / 2>;
        const auto add = [](auto x, auto y) {
            return std::bit_cast<typename Sum::Half>(std::bit_cast<Unsigned>(x) + std::bit_cast<Unsigned>(y));
        };
        return {add(a.low, b.low), add(a.high, b.high)};
    }
};

// Columns 0 .. width - 1 of out from those of in, for height >= 2 * winSize rows. Near the ends a whole side of the
// window stands still: in the first winSize rows every row before the centre is row 0, in the last winSize rows every
// row after it is the last.
template <class Rule, class Factors, class T = typename Rule::Element>
void evalDeltas(const Rule& rule, const T* in, T* out, int height, std::ptrdiff_t step, int width, int winSize,
                Factors factors)
{
    const Rows from(in, step);
    const Rows to(out, step);
    const RowIndex tile = rowsPerTile<T>(Zim64s{2} * width);
    for (RowIndex first = 0; first < height; first += tile) {
        const RowRange rows{first, std::min<RowIndex>(first + tile, height)};
        forEachStrip<T, Rule::lanes>(width, [=](auto strip, std::ptrdiff_t column) {
            const auto factor = factors.at(strip, column);
            for (RowIndex r = rows.first; r < rows.end; ++r) {
                const bool starts = r < winSize, ends = r >= RowIndex{height} - winSize;
                const Rows after(from[ends ? RowIndex{height} - 1 : r] + column, ends ? 0 : step);
                const Rows before(from[starts ? 0 : r] + column, starts ? 0 : step);
                const auto differenceAt = [=](int k) {
                    return difference(rule.hold(strip.load(after[k])), rule.hold(strip.load(before[-k])));
                };
                const auto sum = RegressionSum<decltype(differenceAt(1))>::of(winSize, differenceAt);
                strip.store(to[r] + column, rule.deliver(sum, factor));
            }
        });
    }
}

}  // namespace zimsr::delta
