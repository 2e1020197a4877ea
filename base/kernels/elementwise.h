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

// The same, written past the cache, for a long row and a destination that is none of the sources. Where whole elements
// do not lead to a register's boundary, the cache is used after all.
template <int N, class Result, class Operation, class... Source>
ZIM_INLINE void streamElements(Result* dst, std::size_t len, Operation operation, const Source*... sources)
{
    static_assert(N * sizeof(Result) % registerBytes == 0);
    const std::size_t leadBytes = -ZIM_UINT_PTR(dst) % registerBytes;
    if (leadBytes % sizeof(Result) != 0) {
        mapLongRow<N>(dst, len, operation, sources...);
        return;
    }
    store(dst, operation(load<Vec<Source, N>>(sources)...));
    const std::size_t last = len - N;
    for (std::size_t i = leadBytes / sizeof(Result); i < last; i += N)
        storeStreaming(dst + i, operation(load<Vec<Source, N>>(sources + i)...));
    fenceStores();
    store(dst + last, operation(load<Vec<Source, N>>(sources + last)...));
}

}  // namespace zimsr
