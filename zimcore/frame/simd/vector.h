// The fixed-width vector itself: lanes in as few registers as they fit, made, loaded and stored.
#pragma once

#include <immintrin.h>

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

namespace zimsr {

#if defined(__AVX2__)
inline constexpr int registerBytes = 32;
#else
inline constexpr int registerBytes = 16;
#endif

#define ZIM_INLINE inline __attribute__((always_inline))
// Behind the parameters of a lambda: vectors of several registers would be passed through memory.
#define ZIM_INLINE_LAMBDA __attribute__((always_inline))

namespace simd_detail {

template <int size> struct IntOf;
template <> struct IntOf<1> { using type = int8_t; };
template <> struct IntOf<2> { using type = int16_t; };
template <> struct IntOf<4> { using type = int32_t; };
template <> struct IntOf<8> { using type = int64_t; };

template <class T, int bytes>
struct Register {
    typedef T type __attribute__((vector_size(bytes)));
    typedef T unaligned __attribute__((vector_size(bytes), aligned(alignof(T)), may_alias));
};

}  // namespace simd_detail

// N lanes of T, in as few registers as they fit.
template <class T, int N>
struct Vec {
    using Lane = T;
    static constexpr int lanes = N;
    static constexpr int bytes = N * static_cast<int>(sizeof(T));
    static constexpr int partBytes = bytes < registerBytes ? bytes : registerBytes;
    static constexpr int parts = bytes / partBytes;
    static constexpr int partLanes = N / parts;
    using Part = typename simd_detail::Register<T, partBytes>::type;
    using Mask = Vec<typename simd_detail::IntOf<sizeof(T)>::type, N>;

    Part part[parts];

    ZIM_INLINE T operator[](int lane) const { return part[lane / partLanes][lane % partLanes]; }
    ZIM_INLINE void set(int lane, T value) { part[lane / partLanes][lane % partLanes] = value; }
};

using F4 = Vec<float, 4>;
using F8 = Vec<float, 8>;
using D2 = Vec<double, 2>;
using D4 = Vec<double, 4>;
using D8 = Vec<double, 8>;
using I4 = Vec<int32_t, 4>;
using I8 = Vec<int32_t, 8>;
using L4 = Vec<int64_t, 4>;
using S8 = Vec<int16_t, 8>;
using S16 = Vec<int16_t, 16>;
using U8 = Vec<uint32_t, 8>;
using UL4 = Vec<uint64_t, 4>;
using B16 = Vec<uint8_t, 16>;
using C32 = Vec<int8_t, 32>;

// As many lanes as one register holds: for work in which no lane meets another, so that their number shows in no result.
template <class T>
using Native = Vec<T, registerBytes / static_cast<int>(sizeof(T))>;

namespace simd_detail {

// Applies a function of registers to each part of the operands.
template <class Result, class Function, class... Vector>
ZIM_INLINE Result eachPart(Function function, const Vector&... operands)
{
    Result result;
#pragma GCC unroll 4
    for (int p = 0; p < Result::parts; ++p)
        result.part[p] = function(operands.part[p]...);
    return result;
}

template <class V>
using PartMask = typename V::Mask::Part;

// One bit for each byte of a register.
template <class Part>
ZIM_INLINE int byteSigns(Part part)
{
    if constexpr (sizeof(Part) == 16)
        return _mm_movemask_epi8((__m128i)part);
#if defined(__AVX2__)
    else
        return _mm256_movemask_epi8((__m256i)part);
#endif
}

template <int first, class Part, std::size_t... lane>
ZIM_INLINE auto lanesFrom(Part part, std::index_sequence<lane...>)
{
    return __builtin_shufflevector(part, part, (first + static_cast<int>(lane))...);
}

template <int first, class T, int N>
ZIM_INLINE Vec<T, N / 2> halfFrom(Vec<T, N> v)
{
    Vec<T, N / 2> half;
    if constexpr (Vec<T, N>::parts == 1)
        half.part[0] = lanesFrom<first>(v.part[0], std::make_index_sequence<N / 2>{});
    else
#pragma GCC unroll 4
        for (int p = 0; p < half.parts; ++p)
            half.part[p] = v.part[first / v.partLanes + p];
    return half;
}

template <class Part, std::size_t... lane>
ZIM_INLINE auto joinedLanes(Part low, Part high, std::index_sequence<lane...>)
{
    return __builtin_shufflevector(low, high, static_cast<int>(lane)...);
}

}  // namespace simd_detail

// The same bits as lanes of another type. (std::bit_cast takes a vector of several registers through memory.)
template <class To, class T, int N>
ZIM_INLINE To reinterpret(Vec<T, N> v)
{
    static_assert(To::bytes == Vec<T, N>::bytes);
    return simd_detail::eachPart<To>([](auto x) { return (typename To::Part)x; }, v);
}

template <class V>
ZIM_INLINE V splat(typename V::Lane value)
{
    V result;
#pragma GCC unroll 4
    for (int p = 0; p < V::parts; ++p)
        result.part[p] = value - typename V::Part{};  // x - 0 is x for every x, -0.0 included
    return result;
}

template <class V>
ZIM_INLINE V load(const typename V::Lane* source)
{
    V result;
#pragma GCC unroll 4
    for (int p = 0; p < V::parts; ++p)
        result.part[p] = *reinterpret_cast<const typename simd_detail::Register<typename V::Lane, V::partBytes>::unaligned*>(
            source + p * V::partLanes);
    return result;
}

template <class T, int N>
ZIM_INLINE void store(T* destination, Vec<T, N> v)
{
    using V = Vec<T, N>;
#pragma GCC unroll 4
    for (int p = 0; p < V::parts; ++p)
        *reinterpret_cast<typename simd_detail::Register<T, V::partBytes>::unaligned*>(destination + p * V::partLanes) =
            v.part[p];
}

// A scalar is a vector of one lane: what a kernel does with the results of a group of rows serves a single row too.
template <class T>
requires std::is_arithmetic_v<T> ZIM_INLINE T splat(T value)
{
    return value;
}

template <class T>
requires std::is_arithmetic_v<T> ZIM_INLINE T load(const T* source)
{
    return *source;
}

template <class T>
requires std::is_arithmetic_v<T> ZIM_INLINE void store(T* destination, T value)
{
    *destination = value;
}

// 0, 1, 2, ...
template <class V>
ZIM_INLINE V laneIndex()
{
    V result;
#pragma GCC unroll 16
    for (int lane = 0; lane < V::lanes; ++lane)
        result.set(lane, static_cast<typename V::Lane>(lane));
    return result;
}

}  // namespace zimsr
