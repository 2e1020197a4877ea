// A choice between values in memory, lane by lane.
#pragma once

#include "zimcore/frame/simd/operators.h"

namespace zimsr {

// One of three values for each lane: the first, or the second where beyondFirst is set, or the third where
// beyondSecond is set as well. The values stand in memory, four places aligned to their size.
template <class V>
class OneOfThree {
    using Lane = typename V::Lane;
    using Mask = typename V::Mask;

public:
#if defined(__AVX2__)
    // Index of a lane's value. The processor picks 32-bit words by it, so that a double takes two of them.
    ZIM_INLINE OneOfThree(Mask beyondFirst, Mask beyondSecond)
    {
        using Words = Vec<int32_t, V::bytes / 4>;
        const Words down = std::bit_cast<Words>(beyondFirst) + std::bit_cast<Words>(beyondSecond);
        if constexpr (sizeof(Lane) == 4)
            index_ = -down;
        else
            index_ = std::bit_cast<Words>(splat<Mask>(int64_t{1} << 32)) - (down + down);
    }

    ZIM_INLINE V operator()(const Lane* values) const
    {
        return simd_detail::eachPart<V>(
            [values](auto index) {
                if constexpr (sizeof(Lane) == 4 && V::partBytes == 16)
                    return (typename V::Part)_mm_permutevar_ps(_mm_load_ps(values), (__m128i)index);
                else if constexpr (sizeof(Lane) == 4)
                    return (typename V::Part)_mm256_permutevar_ps(
                        _mm256_broadcast_ps(reinterpret_cast<const __m128*>(values)), (__m256i)index);
                else if constexpr (V::partBytes == 16)
                    return (typename V::Part)_mm256_castps256_ps128(
                        _mm256_permutevar8x32_ps(_mm256_castpd_ps(_mm256_load_pd(values)),
                                                 _mm256_castsi128_si256((__m128i)index)));
                else
                    return (typename V::Part)_mm256_permutevar8x32_ps(_mm256_castpd_ps(_mm256_load_pd(values)),
                                                                      (__m256i)index);
            },
            index_);
    }

private:
    Vec<int32_t, V::bytes / 4> index_;
#else
    ZIM_INLINE OneOfThree(Mask beyondFirst, Mask beyondSecond) : beyondFirst_(beyondFirst), beyondSecond_(beyondSecond)
    {
    }

    ZIM_INLINE V operator()(const Lane* values) const
    {
        return select(beyondSecond_, splat<V>(values[2]), select(beyondFirst_, splat<V>(values[1]), splat<V>(values[0])));
    }

private:
    Mask beyondFirst_, beyondSecond_;
#endif
};

}  // namespace zimsr
