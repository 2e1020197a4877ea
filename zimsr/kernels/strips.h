// Rows cut into strips of columns, for kernels that go down the rows: what belongs to a column stays in registers.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"

namespace zimsr {

// So many columns, in a vector that may have more lanes.
template <class T, int columns>
struct Strip {
    using Vector = Vec<T, std::max(columns, 16 / static_cast<int>(sizeof(T)))>;
    static constexpr int count = columns;
    static constexpr bool whole = Vector::lanes == columns;

    ZIM_INLINE Vector load(const T* source) const
    {
        if constexpr (whole)
            return zimsr::load<Vector>(source);
        else
            return loadLow<columns, Vector>(source);
    }

    ZIM_INLINE void store(T* destination, Vector v) const
    {
        if constexpr (whole)
            zimsr::store(destination, v);
        else
            storeLow<columns>(destination, v);
    }

    // Of a longer vector, the lanes that belong to the columns.
    template <int N>
    ZIM_INLINE void store(T* destination, Vec<T, N> v) const
    {
        store(destination, lowLanes<Vector::lanes>(v));
    }
};

// Calls body(strip, first column) for strips that cover columns 0 .. width - 1 and nothing else. The last one is
// stepped back over columns that were done before, so a body must give the same when it is repeated.
template <class T, int columns, class Body>
ZIM_INLINE void forEachStrip(int width, Body body)
{
    if (columns == 1 || width >= columns)
        for (std::ptrdiff_t first = 0; first < width; first += columns)
            body(Strip<T, columns>{}, std::min<std::ptrdiff_t>(first, width - columns));
    else if constexpr (columns > 1)
        forEachStrip<T, columns / 2>(width, body);
}

// The same, beginning with strips of `widest` columns and going on to narrower ones: only those of `columns` columns
// are stepped back. Wide strips keep more sums under way at once, and read a row in fewer passes.
template <class T, int columns, int widest, class Body>
ZIM_INLINE void forEachStrip(int width, Body body)
{
    std::ptrdiff_t first = 0;
    const auto takeWhole = [&](auto strip) ZIM_INLINE_LAMBDA {
        for (; width - first >= strip.count; first += strip.count)
            body(strip, first);
    };
    if constexpr (widest >= 4 * columns)
        takeWhole(Strip<T, 4 * columns>{});
    if constexpr (widest >= 2 * columns)
        takeWhole(Strip<T, 2 * columns>{});
    if (width < columns)
        forEachStrip<T, columns / 2>(width, body);
    else
        for (; first < width; first += columns)
            body(Strip<T, columns>{}, std::min<std::ptrdiff_t>(first, width - columns));
}

// The lanes of a strip from column `done` on: those of a strip stepped back that were not done before it.
template <class T, int columns>
ZIM_INLINE auto freshLanes(Strip<T, columns>, std::ptrdiff_t column, std::ptrdiff_t done)
{
    return ~firstLanes<typename Strip<T, columns>::Vector>(static_cast<int>(done - column));
}

// How many rows of so many columns stay in the nearest cache while their strips are done one after the other.
template <class T>
std::ptrdiff_t rowsPerTile(Zim64s columns)
{
    constexpr Zim64s tileBytes = 16384, fewest = 32;
    return static_cast<std::ptrdiff_t>(std::max(fewest, tileBytes / static_cast<Zim64s>(sizeof(T)) / columns));
}

}  // namespace zimsr
