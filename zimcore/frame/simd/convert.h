// Conversions between lanes of different types and widths.
#pragma once

#include "zimcore/frame/simd/lanes.h"

namespace zimsr {

template <int N>
ZIM_INLINE Vec<float, N> toFloat(Vec<int32_t, N> v)
{
    return simd_detail::eachPart<Vec<float, N>>(
        [](auto x) { return __builtin_convertvector(x, typename Vec<float, N>::Part); }, v);
}

// Rounded by the processor's current mode; out of range and NaN give INT_MIN.
ZIM_INLINE I8 toIntRounded(F8 v)
{
#if defined(__AVX2__)
    return {(I8::Part)_mm256_cvtps_epi32(v.part[0])};
#else
    return {(I8::Part)_mm_cvtps_epi32(v.part[0]), (I8::Part)_mm_cvtps_epi32(v.part[1])};
#endif
}

// Truncated toward zero; out of range and NaN give INT_MIN.
ZIM_INLINE I8 toIntTruncated(F8 v)
{
#if defined(__AVX2__)
    return {(I8::Part)_mm256_cvttps_epi32(v.part[0])};
#else
    return {(I8::Part)_mm_cvttps_epi32(v.part[0]), (I8::Part)_mm_cvttps_epi32(v.part[1])};
#endif
}

ZIM_INLINE I4 toIntTruncated(F4 v)
{
    return {(I4::Part)_mm_cvttps_epi32(v.part[0])};
}

ZIM_INLINE D4 widen(F4 v)
{
#if defined(__AVX2__)
    return {_mm256_cvtps_pd(v.part[0])};
#else
    return {_mm_cvtps_pd(v.part[0]), _mm_cvtps_pd(_mm_movehl_ps(v.part[0], v.part[0]))};
#endif
}

ZIM_INLINE F4 narrow(D4 v)
{
#if defined(__AVX2__)
    return {_mm256_cvtpd_ps(v.part[0])};
#else
    return {_mm_movelh_ps(_mm_cvtpd_ps(v.part[0]), _mm_cvtpd_ps(v.part[1]))};
#endif
}

// Longer vectors, register by register.
template <int N>
requires(N > 4) ZIM_INLINE Vec<double, N> widen(Vec<float, N> v)
{
    Vec<double, N> result;
#pragma GCC unroll 4
    for (int p = 0; p < Vec<float, N>::parts; ++p) {
#if defined(__AVX2__)
        result.part[2 * p] = _mm256_cvtps_pd(_mm256_castps256_ps128(v.part[p]));
        result.part[2 * p + 1] = _mm256_cvtps_pd(_mm256_extractf128_ps(v.part[p], 1));
#else
        result.part[2 * p] = _mm_cvtps_pd(v.part[p]);
        result.part[2 * p + 1] = _mm_cvtps_pd(_mm_movehl_ps(v.part[p], v.part[p]));
#endif
    }
    return result;
}

template <int N>
requires(N > 4) ZIM_INLINE Vec<float, N> narrow(Vec<double, N> v)
{
    Vec<float, N> result;
#pragma GCC unroll 4
    for (int p = 0; p < Vec<float, N>::parts; ++p) {
#if defined(__AVX2__)
        result.part[p] = _mm256_insertf128_ps(_mm256_castps128_ps256(_mm256_cvtpd_ps(v.part[2 * p])),
                                              _mm256_cvtpd_ps(v.part[2 * p + 1]), 1);
#else
        result.part[p] = _mm_movelh_ps(_mm_cvtpd_ps(v.part[2 * p]), _mm_cvtpd_ps(v.part[2 * p + 1]));
#endif
    }
    return result;
}

ZIM_INLINE I8 widen(S8 v)
{
#if defined(__AVX2__)
    return {(I8::Part)_mm256_cvtepi16_epi32((__m128i)v.part[0])};
#else
    const __m128i x = (__m128i)v.part[0];
    return {(I8::Part)_mm_srai_epi32(_mm_unpacklo_epi16(x, x), 16), (I8::Part)_mm_srai_epi32(_mm_unpackhi_epi16(x, x), 16)};
#endif
}

// Longer vectors, by halves.
template <int N>
requires(N > 8) ZIM_INLINE Vec<int32_t, N> widen(Vec<int16_t, N> v)
{
    return join(widen(lowHalf(v)), widen(highHalf(v)));
}

ZIM_INLINE S16 widen(B16 v)
{
#if defined(__AVX2__)
    return {(S16::Part)_mm256_cvtepu8_epi16((__m128i)v.part[0])};
#else
    const __m128i x = (__m128i)v.part[0], zero = _mm_setzero_si128();
    return {(S16::Part)_mm_unpacklo_epi8(x, zero), (S16::Part)_mm_unpackhi_epi8(x, zero)};
#endif
}

ZIM_INLINE D4 toDouble(I4 v)
{
#if defined(__AVX2__)
    return {_mm256_cvtepi32_pd((__m128i)v.part[0])};
#else
    const __m128i x = (__m128i)v.part[0];
    return {_mm_cvtepi32_pd(x), _mm_cvtepi32_pd(_mm_unpackhi_epi64(x, x))};
#endif
}

ZIM_INLINE D8 toDouble(I8 v)
{
    return join(toDouble(lowHalf(v)), toDouble(highHalf(v)));
}

// Rounded by the processor's current mode; out of range and NaN give INT_MIN.
ZIM_INLINE I4 toIntRounded(D4 v)
{
#if defined(__AVX2__)
    return {(I4::Part)_mm256_cvtpd_epi32(v.part[0])};
#else
    return {(I4::Part)_mm_unpacklo_epi64(_mm_cvtpd_epi32(v.part[0]), _mm_cvtpd_epi32(v.part[1]))};
#endif
}

// Truncated toward zero; out of range and NaN give INT_MIN.
ZIM_INLINE I4 toIntTruncated(D4 v)
{
#if defined(__AVX2__)
    return {(I4::Part)_mm256_cvttpd_epi32(v.part[0])};
#else
    return {(I4::Part)_mm_unpacklo_epi64(_mm_cvttpd_epi32(v.part[0]), _mm_cvttpd_epi32(v.part[1]))};
#endif
}

ZIM_INLINE L4 widen(I4 v)
{
#if defined(__AVX2__)
    return {(L4::Part)_mm256_cvtepi32_epi64((__m128i)v.part[0])};
#else
    const __m128i x = (__m128i)v.part[0], sign = _mm_srai_epi32(x, 31);
    return {(L4::Part)_mm_unpacklo_epi32(x, sign), (L4::Part)_mm_unpackhi_epi32(x, sign)};
#endif
}

// Saturates each lane to 16 bits.
ZIM_INLINE S8 narrowSaturated(I8 v)
{
    return {(S8::Part)_mm_packs_epi32((__m128i)lowHalf(v).part[0], (__m128i)highHalf(v).part[0])};
}

// The same, twice over.
ZIM_INLINE S8 narrowSaturated(I4 v)
{
    return {(S8::Part)_mm_packs_epi32((__m128i)v.part[0], (__m128i)v.part[0])};
}

}  // namespace zimsr
