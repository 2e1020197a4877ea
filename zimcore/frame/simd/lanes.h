// Moving lanes: within a vector, between two, and into halves.
#pragma once

#include <concepts>

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

// The lower half of low and the upper half of high.
template <std::floating_point T, int N>
ZIM_INLINE Vec<T, N> outerHalves(Vec<T, N> low, Vec<T, N> high)
{
#if defined(__AVX2__)
    // The compiler would make a shuffle across both halves, which takes longer than a blend.
    using V = Vec<T, N>;
    if constexpr (V::bytes == 32)
        return {(typename V::Part)_mm256_blend_ps((__m256)low.part[0], (__m256)high.part[0], 0xF0)};
    else
#endif
        return join(lowHalf(low), highHalf(high));
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

// Eight lanes in each group of eight: the same from one place, or, of two groups, those of a place for each. Loads that
// repeat cost the processor no more than others, and a blend less than an insertion.
template <int N, class T>
ZIM_INLINE Vec<T, N> loadInEachEight(const T* source)
{
    using Eight = Vec<T, 8>;
    if constexpr (N == 8)
        return load<Eight>(source);
#if defined(__AVX2__)
    else if constexpr (N == 16 && Eight::bytes == 16)
        return {(typename Vec<T, N>::Part)_mm256_broadcastsi128_si256((__m128i)load<Eight>(source).part[0])};
#endif
    else
        return join(loadInEachEight<N / 2>(source), loadInEachEight<N / 2>(source));
}

template <class T>
ZIM_INLINE Vec<T, 16> loadEights(const T* low, const T* high)
{
    using Eight = Vec<T, 8>;
#if defined(__AVX2__)
    if constexpr (Eight::bytes == 16)
        return {(typename Vec<T, 16>::Part)_mm256_blend_epi32(_mm256_castsi128_si256((__m128i)load<Eight>(low).part[0]),
                                                              (__m256i)loadInEachEight<16>(high).part[0], 0xF0)};
    else
#endif
        return join(load<Eight>(low), load<Eight>(high));
}

// Within each group of eight lanes: count lanes from lane first on, and zeros behind them; first + count <= 8.
template <int N>
ZIM_INLINE Vec<int16_t, N> lanesInFront(Vec<int16_t, N> v, int first, int count)
{
    alignas(32) static constexpr int16_t masks[16] = {-1, -1, -1, -1, -1, -1, -1, -1};
    using V = Vec<int16_t, N>;
#if defined(__AVX2__)
    alignas(32) static constexpr int16_t picks[16] = {0x0100, 0x0302, 0x0504, 0x0706, 0x0908, 0x0B0A, 0x0D0C, 0x0F0E};
    const V moved = simd_detail::eachPart<V>(
        [](auto x, auto pick) {
            if constexpr (sizeof(x) == 16)
                return (decltype(x))_mm_shuffle_epi8((__m128i)x, (__m128i)pick);
            else
                return (decltype(x))_mm256_shuffle_epi8((__m256i)x, (__m256i)pick);
        },
        v, loadInEachEight<N>(picks + first));
#else
    const V moved = simd_detail::eachPart<V>(
        [=](auto part) {
            const __m128i x = (__m128i)part, upper = _mm_srli_si128(x, 8);
            return (decltype(part))(first < 4 ? _mm_or_si128(_mm_srl_epi64(x, _mm_cvtsi32_si128(16 * first)),
                                                             _mm_sll_epi64(upper, _mm_cvtsi32_si128(16 * (4 - first))))
                                              : _mm_srl_epi64(upper, _mm_cvtsi32_si128(16 * (first - 4))));
        },
        v);
#endif
    return moved & loadInEachEight<N>(masks + 8 - count);
}

}  // namespace zimsr
