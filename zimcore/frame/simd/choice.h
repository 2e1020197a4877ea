// A choice between values in memory, lane by lane.
#pragma once

#include "zimcore/frame/simd/operators.h"

namespace zimsr {

// Three values to choose from.
template <class Lane>
struct alignas(4 * sizeof(Lane)) ThreeValues {
    constexpr ThreeValues() = default;
    constexpr ThreeValues(Lane first, Lane second, Lane third) : places{first, 0, third, second} {}

    Lane places[4];
};

// One of three values for each lane: the first, or the second where beyondFirst is set, or the third where
// beyondSecond is set as well.
template <class V>
class OneOfThree {
    using Lane = typename V::Lane;
    using Mask = typename V::Mask;
    using Words = Vec<int32_t, V::bytes / 4>;

public:
#if defined(__AVX2__)
    ZIM_INLINE OneOfThree(Mask beyondFirst, Mask beyondSecond)
        : index_(index(reinterpret<Words>(beyondFirst), reinterpret<Words>(beyondSecond)))
    {
    }

    ZIM_INLINE V operator()(const ThreeValues<Lane>& values) const
    {
        return simd_detail::eachPart<V>(
            [places = values.places](auto index) {
                if constexpr (sizeof(Lane) == 4 && V::partBytes == 16)
                    return (typename V::Part)_mm_permutevar_ps(_mm_load_ps(places), (__m128i)index);
                else if constexpr (sizeof(Lane) == 4)
                    return (typename V::Part)_mm256_permutevar_ps(
                        _mm256_broadcast_ps(reinterpret_cast<const __m128*>(places)), (__m256i)index);
                else if constexpr (V::partBytes == 16)
                    return (typename V::Part)_mm256_castps256_ps128(
                        _mm256_permutevar8x32_ps(_mm256_castpd_ps(_mm256_load_pd(places)),
                                                 _mm256_castsi128_si256((__m128i)index)));
                else
                    return (typename V::Part)_mm256_permutevar8x32_ps(_mm256_castpd_ps(_mm256_load_pd(places)),
                                                                      (__m256i)index);
            },
            index_);
    }

private:
    // A mask that is set is -1: a lane's place is the sum of its masks, modulo four. The processor picks 32-bit words, so
    // that a double takes two of them.
    static ZIM_INLINE Words index(Words beyondFirst, Words beyondSecond)
    {
        const Words place = beyondFirst + beyondSecond;
        if constexpr (sizeof(Lane) == 4)
            return place;
        else
            return reinterpret<Words>(splat<Mask>(int64_t{1} << 32)) + (place + place);
    }

    Words index_;
#else
    ZIM_INLINE OneOfThree(Mask beyondFirst, Mask beyondSecond) : beyondFirst_(beyondFirst), beyondSecond_(beyondSecond)
    {
    }

    ZIM_INLINE V operator()(const ThreeValues<Lane>& values) const
    {
        const auto [first, unused, third, second] = values.places;
        return select(beyondSecond_, splat<V>(third), select(beyondFirst_, splat<V>(second), splat<V>(first)));
    }

private:
    Mask beyondFirst_, beyondSecond_;
#endif
};

}  // namespace zimsr
