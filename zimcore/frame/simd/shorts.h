// Arithmetic of 16-bit lanes: saturating sums, exact products.
#pragma once

#include "zimcore/frame/simd/lanes.h"

namespace zimsr {

// All 32 bits of each product.
ZIM_INLINE I8 multiplyWide(S8 a, S8 b)
{
    const __m128i low = _mm_mullo_epi16((__m128i)a.part[0], (__m128i)b.part[0]);
    const __m128i high = _mm_mulhi_epi16((__m128i)a.part[0], (__m128i)b.part[0]);
    return join(I4{(I4::Part)_mm_unpacklo_epi16(low, high)}, I4{(I4::Part)_mm_unpackhi_epi16(low, high)});
}

// ---- Rows of 16-bit lanes, in as many lanes as are wanted: saturating sums, exact products

namespace simd_detail {

#if defined(__AVX2__)
#define ZIM_ON_SHORTS(name, narrow, wide)                \
    template <class Part>                                \
    ZIM_INLINE Part name(Part x, Part y)                 \
    {                                                    \
        if constexpr (sizeof(Part) == 16)                \
            return (Part)narrow((__m128i)x, (__m128i)y); \
        else                                             \
            return (Part)wide((__m256i)x, (__m256i)y);   \
    }
#else
#define ZIM_ON_SHORTS(name, narrow, wide)            \
    template <class Part>                            \
    ZIM_INLINE Part name(Part x, Part y)             \
    {                                                \
        return (Part)narrow((__m128i)x, (__m128i)y); \
    }
#endif
ZIM_ON_SHORTS(adds, _mm_adds_epi16, _mm256_adds_epi16)
ZIM_ON_SHORTS(subs, _mm_subs_epi16, _mm256_subs_epi16)
ZIM_ON_SHORTS(mins, _mm_min_epi16, _mm256_min_epi16)
ZIM_ON_SHORTS(maxs, _mm_max_epi16, _mm256_max_epi16)
ZIM_ON_SHORTS(mullo, _mm_mullo_epi16, _mm256_mullo_epi16)
ZIM_ON_SHORTS(mulhi, _mm_mulhi_epi16, _mm256_mulhi_epi16)
ZIM_ON_SHORTS(madd, _mm_madd_epi16, _mm256_madd_epi16)
ZIM_ON_SHORTS(unpacklo, _mm_unpacklo_epi16, _mm256_unpacklo_epi16)
ZIM_ON_SHORTS(unpackhi, _mm_unpackhi_epi16, _mm256_unpackhi_epi16)
ZIM_ON_SHORTS(packs, _mm_packs_epi32, _mm256_packs_epi32)
#undef ZIM_ON_SHORTS

}  // namespace simd_detail

template <int N>
ZIM_INLINE Vec<int16_t, N> addSaturated(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return simd_detail::eachPart<Vec<int16_t, N>>([](auto x, auto y) { return simd_detail::adds(x, y); }, a, b);
}

template <int N>
ZIM_INLINE Vec<int16_t, N> subtractSaturated(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return simd_detail::eachPart<Vec<int16_t, N>>([](auto x, auto y) { return simd_detail::subs(x, y); }, a, b);
}

template <int N>
ZIM_INLINE Vec<int16_t, N> min(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return simd_detail::eachPart<Vec<int16_t, N>>([](auto x, auto y) { return simd_detail::mins(x, y); }, a, b);
}

template <int N>
ZIM_INLINE Vec<int16_t, N> max(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return simd_detail::eachPart<Vec<int16_t, N>>([](auto x, auto y) { return simd_detail::maxs(x, y); }, a, b);
}

// The lower and the upper 16 bits of each product.
template <int N>
ZIM_INLINE Vec<int16_t, N> multiplyLow(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return simd_detail::eachPart<Vec<int16_t, N>>([](auto x, auto y) { return simd_detail::mullo(x, y); }, a, b);
}

template <int N>
ZIM_INLINE Vec<int16_t, N> multiplyHigh(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return simd_detail::eachPart<Vec<int16_t, N>>([](auto x, auto y) { return simd_detail::mulhi(x, y); }, a, b);
}

// a[2i] * b[2i] + a[2i+1] * b[2i+1]. One sum does not fit: four times -32768 gives INT_MIN.
template <int N>
ZIM_INLINE Vec<int32_t, N / 2> multiplyAddPairs(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    using V = Vec<int32_t, N / 2>;
    return simd_detail::eachPart<V>([](auto x, auto y) { return (typename V::Part)simd_detail::madd(x, y); }, a, b);
}

// 32-bit lanes made of two 16-bit ones, in the order in which registers unpack; packSaturated restores the lanes' own.
template <int N>
struct Unpacked {
    using Half = Vec<int32_t, N / 2>;

    Half low, high;

    ZIM_INLINE Unpacked operator+(Unpacked b) const { return {low + b.low, high + b.high}; }
    ZIM_INLINE Unpacked operator&(Unpacked b) const { return {low & b.low, high & b.high}; }
    ZIM_INLINE Unpacked operator|(Unpacked b) const { return {low | b.low, high | b.high}; }
    ZIM_INLINE Unpacked operator<<(int count) const { return {low << count, high << count}; }
    ZIM_INLINE Unpacked operator>>(int count) const { return {low >> count, high >> count}; }
};

template <int N>
ZIM_INLINE Unpacked<N> splatUnpacked(int32_t value)
{
    const auto half = splat<Vec<int32_t, N / 2>>(value);
    return {half, half};
}

// 2^16 * upper + lower, lower without its sign.
template <int N>
ZIM_INLINE Unpacked<N> unpack(Vec<int16_t, N> lower, Vec<int16_t, N> upper)
{
    using Half = typename Unpacked<N>::Half;
    using Part = typename Half::Part;
    return {simd_detail::eachPart<Half>([](auto x, auto y) { return (Part)simd_detail::unpacklo(x, y); }, lower, upper),
            simd_detail::eachPart<Half>([](auto x, auto y) { return (Part)simd_detail::unpackhi(x, y); }, lower, upper)};
}

// All 32 bits of each product.
template <int N>
ZIM_INLINE Unpacked<N> multiplyUnpacked(Vec<int16_t, N> a, Vec<int16_t, N> b)
{
    return unpack(multiplyLow(a, b), multiplyHigh(a, b));
}

// Lower half times lower half plus upper half times upper half, as signed numbers.
template <int N>
ZIM_INLINE Unpacked<N> multiplyAddPairs(Unpacked<N> a, Unpacked<N> b)
{
    using Half = typename Unpacked<N>::Half;
    return {simd_detail::eachPart<Half>([](auto x, auto y) { return simd_detail::madd(x, y); }, a.low, b.low),
            simd_detail::eachPart<Half>([](auto x, auto y) { return simd_detail::madd(x, y); }, a.high, b.high)};
}

// Saturates each lane to 16 bits.
template <int N>
ZIM_INLINE Vec<int16_t, N> packSaturated(Unpacked<N> v)
{
    using V = Vec<int16_t, N>;
    return simd_detail::eachPart<V>([](auto x, auto y) { return (typename V::Part)simd_detail::packs(x, y); }, v.low,
                                    v.high);
}

}  // namespace zimsr
