// Memory past the cache, for vectors longer than the cache is worth, and memory brought near before its use.
#pragma once

#include "zimcore/frame/simd/vector.h"

namespace zimsr {

// Stores to a multiple of registerBytes; fenceStores() ends a run of them.
template <class T, int N>
ZIM_INLINE void storeStreaming(T* destination, Vec<T, N> v)
{
    using V = Vec<T, N>;
#pragma GCC unroll 4
    for (int p = 0; p < V::parts; ++p) {
        if constexpr (V::partBytes == 16)
            _mm_stream_si128(reinterpret_cast<__m128i*>(destination + p * V::partLanes), (__m128i)v.part[p]);
#if defined(__AVX2__)
        else
            _mm256_stream_si256(reinterpret_cast<__m256i*>(destination + p * V::partLanes), (__m256i)v.part[p]);
#endif
    }
}

ZIM_INLINE void fenceStores()
{
    _mm_sfence();
}

// Brings the line of an address near; any address will do.
ZIM_INLINE void prefetch(const void* address)
{
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
}

// The same for one use.
ZIM_INLINE void prefetchOnce(const void* address)
{
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_NTA);
}

}  // namespace zimsr
