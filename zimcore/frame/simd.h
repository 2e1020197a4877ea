// Fixed-width vectors. A kernel is written on 8 floats, 4 doubles, 16 shorts at every instruction level; where the
// processor's registers are narrower, a vector is held in two of them. So the order of every sum, and with it every
// bit of a result, is the same at all levels. Intrinsics occur in this header only.
//
//     F8 sum = splat<F8>(0);
//     for (; j + 8 <= width; j += 8)
//         sum += load<F8>(x + j) * load<F8>(y + j);
//     return sumLanes(sum);
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

// ---- Making vectors

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

// ---- Arithmetic, lane by lane, with the operators of the scalar formula

#define ZIM_BINARY(op)                                                                                   \
    template <class T, int N>                                                                            \
    ZIM_INLINE Vec<T, N> operator op(Vec<T, N> a, Vec<T, N> b)                                           \
    {                                                                                                    \
        return simd_detail::eachPart<Vec<T, N>>([](auto x, auto y) { return x op y; }, a, b);            \
    }                                                                                                    \
    template <class T, int N>                                                                            \
    ZIM_INLINE Vec<T, N>& operator op##=(Vec<T, N>& a, Vec<T, N> b)                                      \
    {                                                                                                    \
        return a = a op b;                                                                               \
    }
ZIM_BINARY(+)
ZIM_BINARY(-)
ZIM_BINARY(*)
ZIM_BINARY(/)
ZIM_BINARY(&)
ZIM_BINARY(|)
ZIM_BINARY(^)
#undef ZIM_BINARY

template <class T, int N>
ZIM_INLINE Vec<T, N> operator-(Vec<T, N> a)
{
    return simd_detail::eachPart<Vec<T, N>>([](auto x) { return -x; }, a);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> operator~(Vec<T, N> a)
{
    return simd_detail::eachPart<Vec<T, N>>([](auto x) { return ~x; }, a);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> operator<<(Vec<T, N> a, int count)
{
    return simd_detail::eachPart<Vec<T, N>>([count](auto x) { return x << count; }, a);
}

template <class T, int N>
ZIM_INLINE Vec<T, N> operator>>(Vec<T, N> a, int count)
{
    return simd_detail::eachPart<Vec<T, N>>([count](auto x) { return x >> count; }, a);
}

// ---- Comparisons (a mask has all bits of a lane set, or none) and selection

#define ZIM_COMPARE(op)                                                                                             \
    template <class T, int N>                                                                                       \
    ZIM_INLINE typename Vec<T, N>::Mask operator op(Vec<T, N> a, Vec<T, N> b)                                       \
    {                                                                                                               \
        using PartMask = simd_detail::PartMask<Vec<T, N>>;                                                          \
        return simd_detail::eachPart<typename Vec<T, N>::Mask>([](auto x, auto y) { return (PartMask)(x op y); }, a, b); \
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

// ---- The rest of a row, when less than a vector is left: no byte outside the row is touched

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
    if constexpr (V::partBytes == 32 && laneBytes == 4 && V::parts == 1)
        return {(typename V::Part)_mm256_maskload_epi32(reinterpret_cast<const int*>(source),
                                                        (__m256i)firstLanes<V>(count).part[0])};
    else if constexpr (V::partBytes == 32 && laneBytes == 8 && V::parts == 1)
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

// ---- Memory past the cache, for vectors longer than the cache is worth

// Stores to a multiple of registerBytes; fenceStores() ends a run of them.
template <class T, int N>
ZIM_INLINE void storeStreaming(T* destination, Vec<T, N> v)
{
    using V = Vec<T, N>;
#pragma GCC unroll 4
    for (int p = 0; p < V::parts; ++p) {
        if constexpr (V::partBytes == 16)
            _mm_stream_si128(reinterpret_cast<__m128i*>(destination + p * V::partLanes), (__m128i)v.part[p]);
#if defined(__AVX2__)
        else
            _mm256_stream_si256(reinterpret_cast<__m256i*>(destination + p * V::partLanes), (__m256i)v.part[p]);
#endif
    }
}

ZIM_INLINE void fenceStores()
{
    _mm_sfence();
}

// Brings the line of an address near; any address will do.
ZIM_INLINE void prefetch(const void* address)
{
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_T0);
}

// The same for one use.
ZIM_INLINE void prefetchOnce(const void* address)
{
    _mm_prefetch(static_cast<const char*>(address), _MM_HINT_NTA);
}

// ---- Moving lanes

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

// ---- One of three values for each lane: the first, or the second where beyondFirst is set, or the third where
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

// ---- Sums across lanes: the library's one tree. The upper half is added to the lower until four lanes are left for
// floats (two for doubles), then neighbours are added.

ZIM_INLINE float sumLanes(F4 v)
{
    return (v[0] + v[1]) + (v[2] + v[3]);
}

ZIM_INLINE float sumLanes(F8 v)
{
    return sumLanes(lowHalf(v) + highHalf(v));
}

ZIM_INLINE double sumLanes(D2 v)
{
    return v[0] + v[1];
}

ZIM_INLINE double sumLanes(D4 v)
{
    return sumLanes(lowHalf(v) + highHalf(v));
}

// Of integers; the sum must fit.
template <class T, int N>
    requires std::is_integral_v<T>
ZIM_INLINE T sumLanes(Vec<T, N> v)
{
    if constexpr (N == 2)
        return v[0] + v[1];
    else
        return sumLanes(lowHalf(v) + highHalf(v));
}

// ---- The sums of a group of vectors at once, each by the tree of sumLanes: foldLanes, then sumFolded. The two are
// apart so that a kernel can put other work between them, which hides the long wait of the last steps.

namespace simd_detail {

// The halves of a in the lower half, those of b in the upper.
ZIM_INLINE F8 addHalves(F8 a, F8 b)
{
    return shuffle<0, 1, 2, 3, 12, 13, 14, 15>(a, b) + shuffle<4, 5, 6, 7, 8, 9, 10, 11>(a, b);
}

ZIM_INLINE D4 addHalves(D4 a, D4 b)
{
    return shuffle<0, 1, 6, 7>(a, b) + shuffle<2, 3, 4, 5>(a, b);
}

// Neighbours of a, then of b, within each half.
ZIM_INLINE F4 addNeighbours(F4 a, F4 b)
{
    return shuffle<0, 2, 4, 6>(a, b) + shuffle<1, 3, 5, 7>(a, b);
}

ZIM_INLINE F8 addNeighbours(F8 a, F8 b)
{
    return shuffle<0, 2, 8, 10, 4, 6, 12, 14>(a, b) + shuffle<1, 3, 9, 11, 5, 7, 13, 15>(a, b);
}

ZIM_INLINE D4 addNeighbours(D4 a, D4 b)
{
    return shuffle<0, 4, 2, 6>(a, b) + shuffle<1, 5, 3, 7>(a, b);
}

}  // namespace simd_detail

// Partial sums of count vectors.
template <class V, int count>
struct Folded {
    V part[count * 2 / V::lanes];
};

template <class V>
struct Folded<V, 1> {
    V part[1];
};

template <class V>
ZIM_INLINE Folded<V, 1> foldLanes(const V (&v)[1])
{
    return {{v[0]}};
}

template <class V>
ZIM_INLINE typename V::Lane sumFolded(Folded<V, 1> v)
{
    return sumLanes(v.part[0]);
}

ZIM_INLINE Folded<F8, 4> foldLanes(const F8 (&v)[4])
{
    using namespace simd_detail;
    return {{addNeighbours(addHalves(v[0], v[2]), addHalves(v[1], v[3]))}};
}

ZIM_INLINE F4 sumFolded(Folded<F8, 4> v)
{
    return simd_detail::addNeighbours(lowHalf(v.part[0]), highHalf(v.part[0]));
}

ZIM_INLINE Folded<F8, 8> foldLanes(const F8 (&v)[8])
{
    using namespace simd_detail;
    return {{addNeighbours(addHalves(v[0], v[4]), addHalves(v[1], v[5])),
             addNeighbours(addHalves(v[2], v[6]), addHalves(v[3], v[7]))}};
}

ZIM_INLINE F8 sumFolded(Folded<F8, 8> v)
{
    return simd_detail::addNeighbours(v.part[0], v.part[1]);
}

ZIM_INLINE Folded<D4, 4> foldLanes(const D4 (&v)[4])
{
    using namespace simd_detail;
    return {{addHalves(v[0], v[2]), addHalves(v[1], v[3])}};
}

ZIM_INLINE D4 sumFolded(Folded<D4, 4> v)
{
    return simd_detail::addNeighbours(v.part[0], v.part[1]);
}

ZIM_INLINE F4 sumLanesOfFour(F8 a, F8 b, F8 c, F8 d)
{
    return sumFolded(foldLanes({a, b, c, d}));
}

ZIM_INLINE D2 sumLanesOfTwo(D4 a, D4 b)
{
    return {_mm_hadd_pd((lowHalf(a) + highHalf(a)).part[0], (lowHalf(b) + highHalf(b)).part[0])};
}

// ---- Functions of one instruction. min and max are the processor's: the second operand where either is NaN or both
// are zeros.

#if defined(__AVX2__)
#define ZIM_ON_PARTS(name, Lane, narrow, wide)                                    \
    template <int N, class... Vector>                                             \
    ZIM_INLINE Vec<Lane, N> name(Vec<Lane, N> first, Vector... rest)              \
    {                                                                             \
        using V = Vec<Lane, N>;                                                   \
        return simd_detail::eachPart<V>(                                          \
            [](auto... part) {                                                    \
                if constexpr (V::partBytes == 16)                                 \
                    return (typename V::Part)narrow(part...);                     \
                else                                                              \
                    return (typename V::Part)wide(part...);                       \
            },                                                                    \
            first, rest...);                                                      \
    }
#else
#define ZIM_ON_PARTS(name, Lane, narrow, wide)                                                                    \
    template <int N, class... Vector>                                                                             \
    ZIM_INLINE Vec<Lane, N> name(Vec<Lane, N> first, Vector... rest)                                              \
    {                                                                                                             \
        using V = Vec<Lane, N>;                                                                                   \
        return simd_detail::eachPart<V>([](auto... part) { return (typename V::Part)narrow(part...); }, first, rest...); \
    }
#endif

ZIM_ON_PARTS(sqrt, float, _mm_sqrt_ps, _mm256_sqrt_ps)
ZIM_ON_PARTS(sqrt, double, _mm_sqrt_pd, _mm256_sqrt_pd)
ZIM_ON_PARTS(min, float, _mm_min_ps, _mm256_min_ps)
ZIM_ON_PARTS(min, double, _mm_min_pd, _mm256_min_pd)
ZIM_ON_PARTS(max, float, _mm_max_ps, _mm256_max_ps)
ZIM_ON_PARTS(max, double, _mm_max_pd, _mm256_max_pd)
#undef ZIM_ON_PARTS

// ---- Conversions

ZIM_INLINE F8 toFloat(I8 v)
{
    return simd_detail::eachPart<F8>([](auto x) { return __builtin_convertvector(x, F8::Part); }, v);
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

// The low 32 bits of each product.
ZIM_INLINE I8 multiplyWrapped(I8 a, I8 b)
{
    using Unsigned = typename simd_detail::Register<uint32_t, I8::partBytes>::type;
    return simd_detail::eachPart<I8>([](auto x, auto y) { return (I8::Part)((Unsigned)x * (Unsigned)y); }, a, b);
}

// Saturates each lane to 16 bits.
ZIM_INLINE S8 narrowSaturated(I8 v)
{
    return {(S8::Part)_mm_packs_epi32((__m128i)lowHalf(v).part[0], (__m128i)highHalf(v).part[0])};
}

// ---- Products of 16-bit lanes

// All 32 bits of each product.
ZIM_INLINE I8 multiplyWide(S8 a, S8 b)
{
    const __m128i low = _mm_mullo_epi16((__m128i)a.part[0], (__m128i)b.part[0]);
    const __m128i high = _mm_mulhi_epi16((__m128i)a.part[0], (__m128i)b.part[0]);
    return join(I4{(I4::Part)_mm_unpacklo_epi16(low, high)}, I4{(I4::Part)_mm_unpackhi_epi16(low, high)});
}

// a[2i] * b[2i] + a[2i+1] * b[2i+1]. One sum does not fit: four times -32768 gives INT_MIN.
ZIM_INLINE I8 multiplyAddPairs(S16 a, S16 b)
{
#if defined(__AVX2__)
    return {(I8::Part)_mm256_madd_epi16((__m256i)a.part[0], (__m256i)b.part[0])};
#else
    return {(I8::Part)_mm_madd_epi16((__m128i)a.part[0], (__m128i)b.part[0]),
            (I8::Part)_mm_madd_epi16((__m128i)a.part[1], (__m128i)b.part[1])};
#endif
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
    using V = Vec<int16_t, N>;
    return unpack(simd_detail::eachPart<V>([](auto x, auto y) { return simd_detail::mullo(x, y); }, a, b),
                  simd_detail::eachPart<V>([](auto x, auto y) { return simd_detail::mulhi(x, y); }, a, b));
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
