// Sums of rows, and scaled sums of one row or column.
#pragma once

#include <cmath>
#include <cstddef>
#include <limits>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"
#include "base/kernels/sums.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// ---- Sums of rows

// The elements themselves; samples reach their Zim32f lane exactly.
template <class T>
struct Itself {
    using Sum = FloatVector<T>;

    ZIM_INLINE Sum operator()(Sum x) const { return x; }
};

template <>
struct Itself<Zim16s> {
    using Sum = F8;

    ZIM_INLINE F8 operator()(S8 x) const { return toFloat(widen(x)); }
};

// dst[r] = sum over c of x[r][c].
template <class T, class Float>
[[gnu::noinline]] void sumsOfRows(Rows<const T> rows, int width, Float* dst, int height)
{
    const auto deliver = [=](std::ptrdiff_t r, auto sums) { store(dst + r, sums); };
    sumRows(Itself<T>{}, Groups<4, 1>{}, height, width, deliver, rows);
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
