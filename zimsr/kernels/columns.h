// Sums down the columns of a matrix: the loop below all statistics of columns. Each column is summed in one order,
// wherever it stands: rows are taken in fours, a group is added up as (a + b) + (c + d) and then added to the sum; of
// the rows left behind the last four, a pair, then a single one.
#pragma once

#include <algorithm>
#include <cstddef>

#include "base/kernels/elementwise.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/moments.h"
#include "zimsr/kernels/strips.h"

namespace zimsr {

// Calls body(strip, first column) for strips that cover all columns of a matrix of T, as wide as four registers of
// Float hold where `sums` sums are kept for each column.
template <class T, class Float, int sums = 1, class Body>
ZIM_INLINE void forEachColumnStrip(int width, Body body)
{
    constexpr int columns = FloatVector<Float>::lanes;
    forEachStrip<T, columns, std::max(columns, 4 / sums * Native<Float>::lanes)>(width, body);
}

// The same columns of the statistics: Zim64f for Zim64f, Zim32f for the other types.
template <class T, int columns>
constexpr auto floatsOf(Strip<T, columns>)
{
    return Strip<std::conditional_t<sizeof(T) == 8, Zim64f, Zim32f>, columns>{};
}

// What the rows of a group are added up as: samples of 16 bits as integers, whose sum is exact.
template <class V>
ZIM_INLINE V summand(V x)
{
    return x;
}

template <int N>
ZIM_INLINE Vec<int32_t, N> summand(Vec<int16_t, N> x)
{
    return widen(x);
}

template <class Sum>
ZIM_INLINE Sum asFloat(Sum sum)
{
    return sum;
}

template <int N>
ZIM_INLINE Vec<float, N> asFloat(Vec<int32_t, N> sum)
{
    return toFloat(sum);
}

// sum + term(0) + ... + term(height - 1), each term a summand of one row.
template <class Sum, class Term>
ZIM_INLINE Sum sumDown(int height, Sum sum, Term term)
{
    const auto add = [&sum](auto group) ZIM_INLINE_LAMBDA { sum = sum + asFloat(group); };
    std::ptrdiff_t r = 0;
    for (; height - r >= 4; r += 4)
        add((term(r) + term(r + 1)) + (term(r + 2) + term(r + 3)));
    if (height - r >= 2) {
        add(term(r) + term(r + 1));
        r += 2;
    }
    if (r < height)
        add(term(r));
    return sum;
}

}  // namespace zimsr
