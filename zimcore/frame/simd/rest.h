// The rest of a row, when less than a vector is left: no byte outside the row is touched.
#pragma once

#include "zimcore/frame/simd/operators.h"

namespace zimsr {

namespace simd_detail {

// The first words of 32 bits from source, 0 in the others; all four when words is more.
ZIM_INLINE __m128i loadWords(const char* source, int words)
{
    int32_t single;
    switch (words) {
    case 1:
        std::memcpy(&single, source, 4);
        return _mm_cvtsi32_si128(single);
    case 2:
        return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(source));
    case 3:
        std::memcpy(&single, source + 8, 4);
        return _mm_unpacklo_epi64(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(source)), _mm_cvtsi32_si128(single));
    default:
        return words < 1 ? _mm_setzero_si128() : _mm_loadu_si128(reinterpret_cast<const __m128i*>(source));
    }
}

}  // namespace simd_detail

// The first count lanes from source, 0 in the others; 0 <= count <= N.
template <class V>
ZIM_INLINE V loadFirst(const typename V::Lane* source, int count)
{
    constexpr int laneBytes = sizeof(typename V::Lane);
#if defined(__AVX2__)
    if constexpr (V::parts == 1 && laneBytes == 4) {
        const auto inside = firstLanes<V>(count).part[0];
        if constexpr (V::bytes == 32)
            return {(typename V::Part)_mm256_maskload_epi32(reinterpret_cast<const int*>(source), (__m256i)inside)};
        else
            return {(typename V::Part)_mm_maskload_epi32(reinterpret_cast<const int*>(source), (__m128i)inside)};
    } else if constexpr (V::partBytes == 32 && laneBytes == 8 && V::parts == 1)
        return {(typename V::Part)_mm256_maskload_epi64(reinterpret_cast<const long long*>(source),
                                                        (__m256i)firstLanes<V>(count).part[0])};
    else
#endif
        if constexpr (V::partBytes == 16 && laneBytes >= 4) {
        V result;
#pragma GCC unroll 4
        for (int p = 0; p < V::parts; ++p)
            result.part[p] = (typename V::Part)simd_detail::loadWords(reinterpret_cast<const char*>(source) + 16 * p,
                                                                      count * (laneBytes / 4) - 4 * p);
        return result;
    } else if constexpr (laneBytes == 2 && V::lanes >= 8) {
        // In words of two lanes, and an odd one.
        using Words = Vec<int32_t, V::lanes / 2>;
        const V pairs = reinterpret<V>(loadFirst<Words>(reinterpret_cast<const int32_t*>(source), count / 2));
        const auto odd = firstLanes<V>(count) & ~firstLanes<V>(count & ~1);
        return count & 1 ? pairs | reinterpret<V>(odd & reinterpret<typename V::Mask>(splat<V>(source[count - 1])))
                         : pairs;
    } else {
        typename V::Lane lanes[V::lanes] = {};
        std::memcpy(lanes, source, static_cast<std::size_t>(count) * sizeof(typename V::Lane));
        return load<V>(lanes);
    }
}

template <class T, int N>
ZIM_INLINE void storeFirst(T* destination, Vec<T, N> v, int count)
{
    T lanes[N];
    store(lanes, v);
    std::memcpy(destination, lanes, static_cast<std::size_t>(count) * sizeof(T));
}

// The same for a count that the compiler knows, 8, 4 or 2 bytes of a 16-byte vector: no dearer than the whole vector.
template <int count, class V>
ZIM_INLINE V loadLow(const typename V::Lane* source)
{
    constexpr int bytes = count * static_cast<int>(sizeof(typename V::Lane));
    static_assert(V::bytes == 16 && (bytes == 8 || bytes == 4 || bytes == 2));
    if constexpr (bytes == 2)
        return {(typename V::Part)_mm_cvtsi32_si128(static_cast<uint16_t>(*source))};
    else
        return {(typename V::Part)simd_detail::loadWords(reinterpret_cast<const char*>(source), bytes / 4)};
}

template <int count, class T, int N>
ZIM_INLINE void storeLow(T* destination, Vec<T, N> v)
{
    constexpr int bytes = count * static_cast<int>(sizeof(T));
    static_assert(Vec<T, N>::bytes == 16 && (bytes == 8 || bytes == 4 || bytes == 2));
    const __m128i low = (__m128i)v.part[0];
    if constexpr (bytes == 8) {
        _mm_storel_epi64(reinterpret_cast<__m128i*>(destination), low);
    } else {
        const int word = _mm_cvtsi128_si32(low);
        std::memcpy(destination, &word, bytes);
    }
}

}  // namespace zimsr
