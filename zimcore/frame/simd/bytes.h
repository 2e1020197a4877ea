// Wider lanes as saturated bytes, which keep the sign of each and whether it is 0, and the signs of bytes as bits.
#pragma once

#include "zimcore/frame/simd/operators.h"

namespace zimsr {

// The lanes of all operands, in the order in which registers pack them.
ZIM_INLINE C32 packSaturated(S16 a, S16 b)
{
#if defined(__AVX2__)
    return {(C32::Part)_mm256_packs_epi16((__m256i)a.part[0], (__m256i)b.part[0])};
#else
    return {(C32::Part)_mm_packs_epi16((__m128i)a.part[0], (__m128i)a.part[1]),
            (C32::Part)_mm_packs_epi16((__m128i)b.part[0], (__m128i)b.part[1])};
#endif
}

ZIM_INLINE C32 packSaturated(I8 a, I8 b, I8 c, I8 d)
{
    const auto shorts = [](I8 low, I8 high) {
#if defined(__AVX2__)
        return S16{(S16::Part)_mm256_packs_epi32((__m256i)low.part[0], (__m256i)high.part[0])};
#else
        return S16{(S16::Part)_mm_packs_epi32((__m128i)low.part[0], (__m128i)low.part[1]),
                   (S16::Part)_mm_packs_epi32((__m128i)high.part[0], (__m128i)high.part[1])};
#endif
    };
    return packSaturated(shorts(a, b), shorts(c, d));
}

// The lanes of a, then those of b and so on.
ZIM_INLINE C32 narrowSaturated(S16 a, S16 b)
{
    const C32 packed = packSaturated(a, b);
#if defined(__AVX2__)
    return {(C32::Part)_mm256_permute4x64_epi64((__m256i)packed.part[0], 0b11'01'10'00)};
#else
    return packed;
#endif
}

ZIM_INLINE C32 narrowSaturated(I8 a, I8 b, I8 c, I8 d)
{
    const C32 packed = packSaturated(a, b, c, d);
#if defined(__AVX2__)
    // Groups of four lanes, the lower halves of all four vectors before the upper ones.
    const __m256i inOrder = _mm256_setr_epi32(0, 4, 1, 5, 2, 6, 3, 7);
    return {(C32::Part)_mm256_permutevar8x32_epi32((__m256i)packed.part[0], inOrder)};
#else
    return packed;
#endif
}

// One bit a lane, from bit 0 on.
ZIM_INLINE uint32_t signBits(C32 v)
{
#if defined(__AVX2__)
    return static_cast<uint32_t>(simd_detail::byteSigns(v.part[0]));
#else
    return static_cast<uint32_t>(simd_detail::byteSigns(v.part[0]) | simd_detail::byteSigns(v.part[1]) << 16);
#endif
}

}  // namespace zimsr
