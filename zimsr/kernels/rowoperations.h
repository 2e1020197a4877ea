// A vector against all rows of a matrix.
#pragma once

#include <cstddef>

#include "base/kernels/elementwise.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/columns.h"

namespace zimsr {

// dst[c] = dst[c] + x[0][c] + x[1][c] + ..., added from left to right.
template <class T>
[[gnu::noinline]] void addAllRows(Rows<const T> rows, int height, T* dst, int width)
{
    std::ptrdiff_t done = 0;
    forEachColumnStrip<T, T>(width, [=, &done](auto strip, std::ptrdiff_t column) {
        const auto before = strip.load(dst + column);
        auto sum = before;
        for (std::ptrdiff_t r = 0; r < height; ++r)
            sum += strip.load(rows[r] + column);
        strip.store(dst + column, select(freshLanes(strip, column, done), sum, before));
        done = column + strip.count;
    });
}

// x[r][c] = operation(x[r][c], val[c]).
template <int lanes, class T, class Operation>
ZIM_INLINE void updateNarrowRows(const T* val, Rows<T> rows, int width, int height, Operation operation)
{
    // Rows of lanes .. 2 * lanes - 1 columns: a strip at either end, both read before one is written.
    if (width >= lanes) {
        constexpr Strip<T, lanes> strip;
        const std::ptrdiff_t last = width - lanes;
        const auto firstVal = strip.load(val), lastVal = strip.load(val + last);
        for (std::ptrdiff_t r = 0; r < height; ++r) {
            T* const row = rows[r];
            const auto firstResult = operation(strip.load(row), firstVal);
            const auto lastResult = operation(strip.load(row + last), lastVal);
            strip.store(row, firstResult);
            strip.store(row + last, lastResult);
        }
    } else if constexpr (lanes > 1) {
        updateNarrowRows<lanes / 2>(val, rows, width, height, operation);
    }
}

template <class T, class Operation>
[[gnu::noinline]] void updateRows(const T* val, Rows<T> rows, int width, int height, Operation operation)
{
    constexpr int lanes = Native<T>::lanes;
    if (width < 2 * lanes)
        updateNarrowRows<lanes>(val, rows, width, height, operation);
    else
        for (std::ptrdiff_t r = 0; r < height; ++r)
            mapLongRow<lanes>(rows[r], static_cast<std::size_t>(width), operation, rows[r], val);
}

struct Subtract {
    template <class V>
    ZIM_INLINE V operator()(V x, V val) const
    {
        return x - val;
    }
};

struct SubtractSaturated {
    template <class V>
    ZIM_INLINE V operator()(V x, V val) const
    {
        return subtractSaturated(x, val);
    }
};

}  // namespace zimsr
