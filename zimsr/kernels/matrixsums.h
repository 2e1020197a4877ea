// Sums of rows, and scaled sums of one row or column.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>
#include <type_traits>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"
#include "base/kernels/sums.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// ---- Sums of rows

// The elements themselves; samples as integers.
template <class T>
struct Itself {
    using Sum = FloatVector<T>;

    ZIM_INLINE Sum operator()(Sum x) const { return x; }
};

template <>
struct Itself<Zim16s> {
    using Sum = I8;

    ZIM_INLINE I8 operator()(S8 x) const { return widen(x); }
};

// dst[r] = sum over c of x[r][c]. A sum starts from 0, so that one of negative zeros is a positive zero.
template <class Float>
[[gnu::noinline]] void sumsOfRows(Rows<const Float> rows, int width, Float* dst, int height)
{
    const auto deliver = [=](std::ptrdiff_t r, auto sums) { store(dst + r, sums + decltype(sums){}); };
    sumRows(Itself<Float>{}, Groups<4, 1>{}, height, width, deliver, rows);
}

// The sums of samples are exact until they are rounded to Zim32f: its own partial sums could leave the range that is
// exact in it where the whole sum is small.
[[gnu::noinline]] inline void sumsOfRows(Rows<const Zim16s> rows, int width, Zim32f* dst, int height)
{
    constexpr int widest = 65536;  // elements whose sum fits 32 bits
    if (width > widest) {
        for (std::ptrdiff_t r = 0; r < height; ++r)
            dst[r] = static_cast<Zim32f>(exactSum(rows[r], static_cast<std::size_t>(width)));
        return;
    }
    const auto deliver = [=](std::ptrdiff_t r, auto sums) {
        if constexpr (std::is_same_v<decltype(sums), Zim32s>)
            dst[r] = static_cast<Zim32f>(sums);
        else
            store(dst + r, toFloat(sums));
    };
    sumRows(Itself<Zim16s>{}, Groups<4, 1>{}, height, width, deliver, rows);
}

// ---- One vector, which may be a column

ZIM_INLINE Zim64f sumOfMagnitudes(const Zim64f* src, std::size_t len)
{
    return sumLanes(sumVectors<D4>(
        len, [](D4 v) { return keep(splat<L4>(std::numeric_limits<Zim64s>::max()), v); }, src));
}

// srcDst *= val; gives the sum of the new values' squares.
ZIM_INLINE Zim64f scaleAndSumSquares(Zim64f* srcDst, std::size_t len, Zim64f val)
{
    mapElements<4>(
        srcDst, len, [=](D4 v) { return v * splat<D4>(val); }, srcDst);
    return dotProduct(srcDst, srcDst, len);
}

// Of rows first .. end - 1 of a column, from top to bottom.
inline Zim64f sumColumnMagnitudes(Rows<const Zim64f> rows, int col, int first, int end)
{
    Zim64f sum = 0;
    for (int r = first; r < end; ++r)
        sum += std::fabs(rows[r][col]);
    return sum;
}

inline Zim64f scaleColumnAndSumSquares(Rows<Zim64f> rows, int col, int first, int end, Zim64f val)
{
    Zim64f sum = 0;
    for (int r = first; r < end; ++r) {
        const Zim64f scaled = rows[r][col] *= val;
        sum += scaled * scaled;
    }
    return sum;
}

}  // namespace zimsr
