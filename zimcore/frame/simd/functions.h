// Functions of one instruction. min and max of floats are the processor's: the second operand where either is NaN or both
// are zeros.
#pragma once

#include "zimcore/frame/simd/operators.h"

namespace zimsr {

#if defined(__AVX2__)
#define ZIM_ON_PARTS(name, Lane, narrow, wide)                                    \
    template <int N, class... Vector>                                             \
    ZIM_INLINE Vec<Lane, N> name(Vec<Lane, N> first, Vector... rest)              \
    {                                                                             \
        using V = Vec<Lane, N>;                                                   \
        return simd_detail::eachPart<V>(                                          \
            [](auto... part) {                                                    \
                if constexpr (V::partBytes == 16)                                 \
                    return (typename V::Part)narrow(part...);                     \
                else                                                              \
                    return (typename V::Part)wide(part...);                       \
            },                                                                    \
            first, rest...);                                                      \
    }
#else
#define ZIM_ON_PARTS(name, Lane, narrow, wide)                                                                    \
    template <int N, class... Vector>                                                                             \
    ZIM_INLINE Vec<Lane, N> name(Vec<Lane, N> first, Vector... rest)                                              \
    {                                                                                                             \
        using V = Vec<Lane, N>;                                                                                   \
        return simd_detail::eachPart<V>([](auto... part) { return (typename V::Part)narrow(part...); }, first, rest...); \
    }
#endif

ZIM_ON_PARTS(sqrt, float, _mm_sqrt_ps, _mm256_sqrt_ps)
ZIM_ON_PARTS(sqrt, double, _mm_sqrt_pd, _mm256_sqrt_pd)
ZIM_ON_PARTS(min, float, _mm_min_ps, _mm256_min_ps)
ZIM_ON_PARTS(min, double, _mm_min_pd, _mm256_min_pd)
ZIM_ON_PARTS(max, float, _mm_max_ps, _mm256_max_ps)
ZIM_ON_PARTS(max, double, _mm_max_pd, _mm256_max_pd)
#undef ZIM_ON_PARTS

template <int N>
ZIM_INLINE Vec<int32_t, N> max(Vec<int32_t, N> a, Vec<int32_t, N> b)
{
    return select(a > b, a, b);
}

// The same of scalars.
template <class T>
requires std::is_arithmetic_v<T> ZIM_INLINE T max(T a, T b)
{
    return a > b ? a : b;
}

}  // namespace zimsr
