// Moving lanes: within a vector, between two, and into halves.
#pragma once

#include "zimcore/frame/simd/operators.h"

namespace zimsr {

namespace simd_detail {

template <class V, int first, class Pick, std::size_t... lane>
ZIM_INLINE typename V::Part pickPart(const V& a, const V& b, Pick pick, std::index_sequence<lane...>)
{
    constexpr int sources = 2 * V::parts;
    if constexpr (sources == 2) {
        return __builtin_shufflevector(a.part[0], b.part[0], pick(first + static_cast<int>(lane))...);
    } else {
        // A register of the result draws on at most four source registers: two picks, then a blend.
        static_assert(sources == 4);
        constexpr int width = V::partLanes;
        auto low = __builtin_shufflevector(a.part[0], a.part[1], (pick(first + static_cast<int>(lane)) % (2 * width))...);
        auto high = __builtin_shufflevector(b.part[0], b.part[1], (pick(first + static_cast<int>(lane)) % (2 * width))...);
        constexpr bool allLow = ((pick(first + static_cast<int>(lane)) < 2 * width) && ...);
        constexpr bool allHigh = ((pick(first + static_cast<int>(lane)) >= 2 * width) && ...);
        if constexpr (allLow)
            return low;
        else if constexpr (allHigh)
            return high;
        else
            return __builtin_shufflevector(low, high,
                                           (static_cast<int>(lane) +
                                            (pick(first + static_cast<int>(lane)) < 2 * width ? 0 : width))...);
    }
}

}  // namespace simd_detail

// Lane i of the result is lane pick[i] of a followed by b.
template <int... pick, class T, int N>
ZIM_INLINE Vec<T, N> shuffle(Vec<T, N> a, Vec<T, N> b)
{
    using V = Vec<T, N>;
    static_assert(sizeof...(pick) == N);
    constexpr auto at = [](int i) constexpr {
        constexpr int picks[] = {pick...};
        return picks[i];
    };
    constexpr std::make_index_sequence<static_cast<std::size_t>(V::partLanes)> lanes;
    V result;
    result.part[0] = simd_detail::pickPart<V, 0>(a, b, at, lanes);
    if constexpr (V::parts == 2)
        result.part[1] = simd_detail::pickPart<V, V::partLanes>(a, b, at, lanes);
    return result;
}

template <int... pick, class T, int N>
ZIM_INLINE Vec<T, N> shuffle(Vec<T, N> a)
{
    return shuffle<pick...>(a, a);
}

// The same within each group of four lanes: lane i of a group is lane pick[i] of a's group followed by b's.
template <int first, int second, int third, int fourth, class T, int N>
ZIM_INLINE Vec<T, N> shuffleFours(Vec<T, N> a, Vec<T, N> b)
{
    using V = Vec<T, N>;
    return simd_detail::eachPart<V>(
        [](auto x, auto y) {
            constexpr auto wide = [](int pick) { return pick < 4 ? pick : pick + 4; };
            if constexpr (V::partLanes == 4)
                return __builtin_shufflevector(x, y, first, second, third, fourth);
            else
                return __builtin_shufflevector(x, y, wide(first), wide(second), wide(third), wide(fourth), wide(first) + 4,
                                               wide(second) + 4, wide(third) + 4, wide(fourth) + 4);
        },
        a, b);
}

template <class T, int N>
ZIM_INLINE Vec<T, N / 2> lowHalf(Vec<T, N> v)
{
    return simd_detail::halfFrom<0>(v);
}

template <class T, int N>
ZIM_INLINE Vec<T, N / 2> highHalf(Vec<T, N> v)
{
    return simd_detail::halfFrom<N / 2>(v);
}

// The first lanes of a vector, a power of two of them.
template <int lanes, class T, int N>
ZIM_INLINE Vec<T, lanes> lowLanes(Vec<T, N> v)
{
    if constexpr (lanes == N)
        return v;
    else
        return lowLanes<lanes>(lowHalf(v));
}

template <class T, int N>
ZIM_INLINE Vec<T, 2 * N> join(Vec<T, N> low, Vec<T, N> high)
{
    Vec<T, 2 * N> whole;
    if constexpr (whole.parts == 1)
        whole.part[0] = simd_detail::joinedLanes(low.part[0], high.part[0], std::make_index_sequence<2 * N>{});
    else
#pragma GCC unroll 4
        for (int p = 0; p < low.parts; ++p) {
            whole.part[p] = low.part[p];
            whole.part[low.parts + p] = high.part[p];
        }
    return whole;
}

// v in the lower half, zeros in the upper.
template <class T, int N>
ZIM_INLINE Vec<T, 2 * N> withZeros(Vec<T, N> v)
{
#if defined(__AVX2__)
    if constexpr (Vec<T, N>::bytes == 16)
        return {(typename Vec<T, 2 * N>::Part)_mm256_zextsi128_si256((__m128i)v.part[0])};
    else
#endif
        return join(v, splat<Vec<T, N>>(0));
}

// Lane i of the result is lane i + lanes of v, and zero behind the last; 0 <= lanes <= 8.
ZIM_INLINE S8 lanesDown(S8 v, int lanes)
{
    const __m128i x = (__m128i)v.part[0];
#if defined(__AVX2__)
    // Bytes are picked by number; a number of 128 or more picks zero.
    const __m128i first = _mm_set1_epi8(static_cast<char>(128 - 16 + 2 * lanes));
    return {(S8::Part)_mm_shuffle_epi8(x, _mm_add_epi8(first, (__m128i)laneIndex<B16>().part[0]))};
#else
    const __m128i upper = _mm_srli_si128(x, 8);
    if (lanes >= 4)
        return {(S8::Part)_mm_srl_epi64(upper, _mm_cvtsi32_si128(16 * (lanes - 4)))};
    return {(S8::Part)_mm_or_si128(_mm_srl_epi64(x, _mm_cvtsi32_si128(16 * lanes)),
                                   _mm_sll_epi64(upper, _mm_cvtsi32_si128(16 * (4 - lanes))))};
#endif
}

}  // namespace zimsr
