// Sums and inner products. The order of every float sum is a function of the length alone.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"

namespace zimsr {

// ---- Exact integer sums

// The sum over all lanes of words(sources...) - bias, where words makes eight unsigned 32-bit lanes of N elements. A
// term that may be negative is biased, since an unsigned lane widens to 64 bits by a mask and a shift. A row that does
// not end with a vector is filled up with zeros.
template <int N, class Words, class... Source>
ZIM_INLINE Zim64s sumOfWords(std::size_t len, std::uint32_t bias, Words words, const Source*... sources)
{
    UL4 sum = splat<UL4>(0);
    std::uint64_t totalBias = 0;
    const auto add = [&](U8 biased) {
        const UL4 pairs = std::bit_cast<UL4>(biased);
        sum += (pairs & splat<UL4>(0xFFFFFFFF)) + (pairs >> 32);
        totalBias += 8 * std::uint64_t{bias};
    };
    const auto biased = [bias](I8 v) { return std::bit_cast<U8>(v) + splat<U8>(bias); };
    std::size_t i = 0;
    for (; i + N <= len; i += N)
        add(biased(words(load<Vec<Source, N>>(sources + i)...)));
    if (i < len)
        add(biased(words(loadFirst<Vec<Source, N>>(sources + i, static_cast<int>(len - i))...)));
    return static_cast<Zim64s>(sum[0] + sum[1] + sum[2] + sum[3] - totalBias);
}

ZIM_INLINE Zim64s exactSum(const Zim32s* src, std::size_t len)
{
    return sumOfWords<8>(
        len, 0x80000000, [](I8 v) { return v; }, src);
}

ZIM_INLINE Zim64s exactSum(const Zim16s* src, std::size_t len)
{
    return sumOfWords<16>(
        len, 65536, [](S16 v) { return multiplyAddPairs(v, splat<S16>(1)); }, src);
}

// A pair of products lies between -0x7FFF0000 and 2^31, and the bias brings also the last into the unsigned lane.
ZIM_INLINE Zim64s exactDotProduct(const Zim16s* src1, const Zim16s* src2, std::size_t len)
{
    return sumOfWords<16>(
        len, 0x7FFF0000, [](S16 a, S16 b) { return multiplyAddPairs(a, b); }, src1, src2);
}

// ---- Float sums

// Eight numbers in extended precision, added up in pairs.
template <class Number>
ZIM_INLINE long double sumOfEight(const Number* x)
{
    using Wide = long double;
    return ((Wide{x[0]} + x[1]) + (Wide{x[2]} + x[3])) + ((Wide{x[4]} + x[5]) + (Wide{x[6]} + x[7]));
}

// Eight sums in extended precision, element i in sum i mod 8.
inline Zim32f accurateSum(const Zim32f* src, std::size_t len)
{
    long double sums[8] = {};
    const auto add = [&sums](const Zim32f* x) {
        for (std::size_t k = 0; k < 8; ++k)
            sums[k] += x[k];
    };
    std::size_t i = 0;
    for (; i + 8 <= len; i += 8)
        add(src + i);
    if (i < len) {
        Zim32f rest[8];
        store(rest, loadFirst<F8>(src + i, static_cast<int>(len - i)));
        add(rest);
    }
    return static_cast<Zim32f>(sumOfEight(sums));
}

// The sum over the row of term(sources...), which makes a vector V of as many elements, in four vectors in turn.
template <class V, class Term, class... Source>
ZIM_INLINE V sumVectors(std::size_t len, Term term, const Source*... sources)
{
    constexpr std::size_t N = V::lanes;
    if (len < N)
        return term(loadFirst<Vec<Source, V::lanes>>(sources, static_cast<int>(len))...);
    V a = splat<V>(0), b = a, c = a, d = a;
    const auto at = [&](std::size_t i) { return term(load<Vec<Source, V::lanes>>(sources + i)...); };
    std::size_t i = 0;
    for (; i + 4 * N <= len; i += 4 * N) {
        a += at(i);
        b += at(i + N);
        c += at(i + 2 * N);
        d += at(i + 3 * N);
    }
    if (i + 2 * N <= len) {
        a += at(i);
        b += at(i + N);
        i += 2 * N;
    }
    if (i + N <= len) {
        c += at(i);
        i += N;
    }
    // The last vector, stepped back, without the lanes that are already summed.
    if (i < len)
        d += keep(~firstLanes<V>(static_cast<int>(N - (len - i))), at(len - N));
    return (a + b) + (c + d);
}

// Lanes of Zim32f over stretches of the row, carried from one to the next in extended precision.
inline Zim32f fastSum(const Zim32f* src, std::size_t len)
{
    constexpr std::size_t stretch = 32768;
    long double sum = 0;
    for (std::size_t i = 0; i < len; i += stretch) {
        Zim32f lanes[8];
        store(lanes, sumVectors<F8>(
                         std::min(stretch, len - i), [](F8 v) { return v; }, src + i));
        sum += sumOfEight(lanes);
    }
    return static_cast<Zim32f>(sum);
}

ZIM_INLINE Zim32f dotProduct(const Zim32f* src1, const Zim32f* src2, std::size_t len)
{
    return sumLanes(sumVectors<F8>(
        len, [](F8 a, F8 b) { return a * b; }, src1, src2));
}

ZIM_INLINE Zim64f dotProduct(const Zim64f* src1, const Zim64f* src2, std::size_t len)
{
    return sumLanes(sumVectors<D4>(
        len, [](D4 a, D4 b) { return a * b; }, src1, src2));
}

ZIM_INLINE Zim64f wideDotProduct(const Zim32f* src1, const Zim32f* src2, std::size_t len)
{
    return sumLanes(sumVectors<D4>(
        len, [](F4 a, F4 b) { return widen(a) * widen(b); }, src1, src2));
}

}  // namespace zimsr
