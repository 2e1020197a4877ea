// Arithmetic lane by lane, with the operators of the scalar formula; comparisons (a mask has all bits of a lane set, or
// none) and selection. Lanes of integers wrap around.
#pragma once

#include <concepts>
#include <type_traits>

#include "zimcore/frame/simd/vector.h"

namespace zimsr {

namespace simd_detail {

template <class T>
struct UnsignedOf {
    using type = T;
};
template <std::signed_integral T>
struct UnsignedOf<T> {
    using type = std::make_unsigned_t<T>;
};

// What an operator is given: the lanes as they are, or signed ones as unsigned, so that overflow is defined.
template <class V>
using AsIs = typename V::Part;
template <class V>
using Unsigned = typename Register<typename UnsignedOf<typename V::Lane>::type, V::partBytes>::type;

}  // namespace simd_detail

#define ZIM_BINARY(op, Operand)                                                                                 \
    template <class T, int N>                                                                                   \
    ZIM_INLINE Vec<T, N> operator op(Vec<T, N> a, Vec<T, N> b)                                                  \
    {                                                                                                           \
        using V = Vec<T, N>;                                                                                    \
        using O = simd_detail::Operand<V>;                                                                      \
        return simd_detail::eachPart<V>([](auto x, auto y) { return (typename V::Part)((O)x op(O) y); }, a, b); \
    }                                                                                                           \
    template <class T, int N>                                                                                   \
    ZIM_INLINE Vec<T, N>& operator op##=(Vec<T, N>& a, Vec<T, N> b)                                             \
    {                                                                                                           \
        return a = a op b;                                                                                      \
    }
ZIM_BINARY(+, Unsigned)
ZIM_BINARY(-, Unsigned)
ZIM_BINARY(*, Unsigned)
ZIM_BINARY(/, AsIs)
ZIM_BINARY(&, AsIs)
ZIM_BINARY(|, AsIs)
ZIM_BINARY(^, AsIs)
#undef ZIM_BINARY

template <class T, int N>
ZIM_INLINE Vec<T, N> operator-(Vec<T, N> a)
{
    using V = Vec<T, N>;
    using O = simd_detail::Unsigned<V>;
    return simd_detail::eachPart<V>([](auto x) { return (typename V::Part)(-(O)x); }, a);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> operator~(Vec<T, N> a)
{
    return simd_detail::eachPart<Vec<T, N>>([](auto x) { return ~x; }, a);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> operator<<(Vec<T, N> a, int count)
{
    using V = Vec<T, N>;
    using O = simd_detail::Unsigned<V>;
    return simd_detail::eachPart<V>([count](auto x) { return (typename V::Part)((O)x << count); }, a);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> operator>>(Vec<T, N> a, int count)
{
    return simd_detail::eachPart<Vec<T, N>>([count](auto x) { return x >> count; }, a);
}

// Multiplication of 32-bit lanes with 2^amount, for any amount: what is shifted out is lost, and the sign comes in from
// the left. Made once for many vectors.
class Shift {
public:
    explicit ZIM_INLINE Shift(int amount)
        : left(_mm_cvtsi32_si128(amount > 0 ? amount : 0)), right(_mm_cvtsi32_si128(amount < 0 ? -amount : 0))
    {
    }

    template <int N>
    ZIM_INLINE Vec<int32_t, N> operator()(Vec<int32_t, N> v) const
    {
        using V = Vec<int32_t, N>;
        return simd_detail::eachPart<V>(
            [this](auto x) ZIM_INLINE_LAMBDA {
                if constexpr (V::partBytes == 16)
                    return (typename V::Part)_mm_sra_epi32(_mm_sll_epi32((__m128i)x, left), right);
#if defined(__AVX2__)
                else
                    return (typename V::Part)_mm256_sra_epi32(_mm256_sll_epi32((__m256i)x, left), right);
#endif
            },
            v);
    }

private:
    __m128i left, right;
};

#define ZIM_COMPARE(op)                                                                                              \
    template <class T, int N>                                                                                        \
    ZIM_INLINE typename Vec<T, N>::Mask operator op(Vec<T, N> a, Vec<T, N> b)                                        \
    {                                                                                                                \
        using PartMask = simd_detail::PartMask<Vec<T, N>>;                                                           \
        return simd_detail::eachPart<typename Vec<T, N>::Mask>([](auto x, auto y) { return (PartMask)(x op y); }, a, \
                                                               b);                                                   \
    }
ZIM_COMPARE(<)
ZIM_COMPARE(<=)
ZIM_COMPARE(>)
ZIM_COMPARE(>=)
ZIM_COMPARE(==)
ZIM_COMPARE(!=)
#undef ZIM_COMPARE

template <class T, int N>
ZIM_INLINE Vec<T, N> select(typename Vec<T, N>::Mask mask, Vec<T, N> ifSet, Vec<T, N> ifClear)
{
    return simd_detail::eachPart<Vec<T, N>>([](auto m, auto x, auto y) { return m ? x : y; }, mask, ifSet, ifClear);
}

// The lanes below count; all of them when count is at least N.
template <class V>
ZIM_INLINE typename V::Mask firstLanes(int count)
{
    using Mask = typename V::Mask;
    return laneIndex<Mask>() < splat<Mask>(static_cast<typename Mask::Lane>(count));
}

// The lanes above those, count of them.
template <class V>
ZIM_INLINE typename V::Mask lastLanes(int count)
{
    return ~firstLanes<V>(V::lanes - count);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> keep(typename Vec<T, N>::Mask mask, Vec<T, N> v)
{
    return reinterpret<Vec<T, N>>(mask & reinterpret<typename Vec<T, N>::Mask>(v));
}

template <class T, int N>
ZIM_INLINE bool anySet(Vec<T, N> mask)
{
    auto any = mask.part[0];
#pragma GCC unroll 4
    for (int p = 1; p < mask.parts; ++p)
        any |= mask.part[p];
    return simd_detail::byteSigns(any) != 0;
}

template <class T, int N>
ZIM_INLINE bool allSet(Vec<T, N> mask)
{
    auto all = mask.part[0];
#pragma GCC unroll 4
    for (int p = 1; p < mask.parts; ++p)
        all &= mask.part[p];
    return simd_detail::byteSigns(all) == static_cast<int>((std::uint64_t{1} << mask.partBytes) - 1);
}

// The place of the first lane that is set, N if none is.
template <class T, int N>
ZIM_INLINE int firstSet(Vec<T, N> mask)
{
    using V = Vec<T, N>;
    static_assert(V::bytes <= 64);
    uint64_t bits = 0;
#pragma GCC unroll 4
    for (int p = 0; p < V::parts; ++p)
        bits |= uint64_t{static_cast<uint32_t>(simd_detail::byteSigns(mask.part[p]))} << (p * V::partBytes);
    return bits == 0 ? N : std::countr_zero(bits) / static_cast<int>(sizeof(T));
}

}  // namespace zimsr
