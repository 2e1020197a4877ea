// The one loop of the elementwise functions: full vectors, and a last one stepped back to end with the row.
#pragma once

#include <cstddef>
#include <type_traits>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

// The vector that float kernels run on: one register at the higher levels.
template <class Float>
using FloatVector = std::conditional_t<sizeof(Float) == 4, F8, D4>;

// dst[i] = operation(sources[i]...), where operation takes and gives vectors of N lanes. The destination may be one of
// the sources: the last vector is computed before anything is written. For rows of at least one vector.
template <int N, class Result, class Operation, class... Source>
ZIM_INLINE void mapLongRow(Result* dst, std::size_t len, Operation operation, const Source*... sources)
{
    const std::size_t last = len - N;
    const auto lastResult = operation(load<Vec<Source, N>>(sources + last)...);
    const auto step = [&](std::size_t i) { store(dst + i, operation(load<Vec<Source, N>>(sources + i)...)); };
    std::size_t i = 0;
    for (; i + 4 * N <= len; i += 4 * N) {
        step(i);
        step(i + N);
        step(i + 2 * N);
        step(i + 3 * N);
    }
    for (; i < last; i += N)
        step(i);
    store(dst + last, lastResult);
}

// The same for every row. One shorter than a vector is filled up with zeros.
template <int N, class Result, class Operation, class... Source>
ZIM_INLINE void mapElements(Result* dst, std::size_t len, Operation operation, const Source*... sources)
{
    if (len < N) {
        const int count = static_cast<int>(len);
        storeFirst(dst, operation(loadFirst<Vec<Source, N>>(sources, count)...), count);
    } else {
        mapLongRow<N>(dst, len, operation, sources...);
    }
}

// The same, one element after the other, so that an element of the sources that has been overwritten counts as it is now:
// for a destination that overlaps them anyhow. The operation takes scalars.
template <class Result, class Operation, class... Source>
ZIM_INLINE void mapInTurn(Result* dst, std::size_t len, Operation operation, const Source*... sources)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = operation(sources[i]...);
}

// The same for a destination that is none of the sources; all vectors but the first and the last are put on boundaries
// of a register, which the destination must reach by whole elements.
template <int N, class Put, class Result, class Operation, class... Source>
ZIM_INLINE void mapOnBoundaries(Put put, Result* dst, std::size_t len, Operation operation, const Source*... sources)
{
    static_assert(N * sizeof(Result) % registerBytes == 0);
    const auto result = [&]([[maybe_unused]] std::size_t i) { return operation(load<Vec<Source, N>>(sources + i)...); };
    const std::size_t last = len - N;
    store(dst, result(0));
    std::size_t i = -ZIM_UINT_PTR(dst) % registerBytes / sizeof(Result);
    for (; i + 4 * N <= len; i += 4 * N) {
        put(dst + i, result(i));
        put(dst + i + N, result(i + N));
        put(dst + i + 2 * N, result(i + 2 * N));
        put(dst + i + 3 * N, result(i + 3 * N));
    }
    for (; i < last; i += N)
        put(dst + i, result(i));
    store(dst + last, result(last));
}

// The same, written past the cache, for a long row. Where whole elements do not lead to a boundary, the cache is used
// after all.
template <int N, class Result, class Operation, class... Source>
ZIM_INLINE void streamElements(Result* dst, std::size_t len, Operation operation, const Source*... sources)
{
    if (ZIM_UINT_PTR(dst) % sizeof(Result) != 0) {
        mapLongRow<N>(dst, len, operation, sources...);
        return;
    }
    mapOnBoundaries<N>([](Result* place, auto v) ZIM_INLINE_LAMBDA { storeStreaming(place, v); }, dst, len, operation,
                       sources...);
    fenceStores();
}

}  // namespace zimsr
