// Sign changes. The signs of a block of elements, or of their products, become the bits of a word; the bits are
// counted.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"

namespace zimsr::signchanges {

// An element at any address.
template <class T>
ZIM_INLINE T elementAt(const T* place)
{
    T x;
    std::memcpy(&x, place, sizeof x);
    return x;
}

// The baseline has no instruction for it, and the compiler's substitute is a call (Anderson, "Bit Twiddling Hacks").
ZIM_INLINE int countSet(std::uint64_t bits)
{
#if defined(__POPCNT__)
    return std::popcount(bits);
#else
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<int>(bits * 0x0101010101010101 >> 56);
#endif
}

inline constexpr std::uint64_t all = ~std::uint64_t{0};

// ---- Neighbours on different sides of a test: a block of 64 elements becomes a word for each test

template <std::size_t tests>
using Words = std::array<std::uint64_t, tests>;

// The wanted elements that differ in a test from the element before; before the first stands the last of another block.
template <std::size_t tests>
ZIM_INLINE int countChanges(Words<tests> before, Words<tests> words, std::uint64_t wanted)
{
    int count = 0;
    for (std::size_t t = 0; t < tests; ++t)
        count += countSet((words[t] ^ (words[t] << 1 | before[t] >> 63)) & wanted);
    return count;
}

// wordsOf(x) gives the words of the block from x on.
template <class T, class WordsOf>
ZIM_INLINE Zim64s sumOfChanges(const T* src, std::size_t len, WordsOf wordsOf)
{
    constexpr std::size_t block = 64;
    const auto changesWithin = [=](const T* x, std::size_t from) ZIM_INLINE_LAMBDA {
        const auto words = wordsOf(x);
        return countChanges(words, words, all << from);
    };
    if (len < block) {
        T padded[block];
        std::fill_n(padded, block, elementAt(src + len - 1));
        std::memcpy(padded, src, len * sizeof(T));
        return changesWithin(padded, 1);
    }
    auto before = wordsOf(src);
    Zim64s sum = countChanges(before, before, all << 1);
    std::size_t i = block;
    for (; i + block <= len; i += block) {
        const auto words = wordsOf(src + i);
        sum += countChanges(before, words, all);
        before = words;
    }
    // The last block, stepped back, without what is already counted.
    const std::size_t last = len - block;
    return i == len ? sum : sum + changesWithin(src + last, i - last);
}

ZIM_INLINE std::uint64_t join(std::uint32_t low, std::uint32_t high)
{
    return low | std::uint64_t{high} << 32;
}

// Bytes of the signs of what lanes(k) gives for eight elements from element k on.
template <class Lanes>
ZIM_INLINE C32 signsOfEights(Lanes lanes)
{
    return narrowSaturated(lanes(0), lanes(8), lanes(16), lanes(24));
}

ZIM_INLINE Words<1> negativeWord(const Zim32f* x)
{
    const auto half = [=](int first) ZIM_INLINE_LAMBDA {
        return signBits(
            signsOfEights([=](int k) ZIM_INLINE_LAMBDA { return reinterpret<I8>(load<F8>(x + first + k)); }));
    };
    return {join(half(0), half(32))};
}

inline Zim64s signBitChanges(const Zim32f* src, std::size_t len)
{
    return sumOfChanges(src, len, [](const Zim32f* x) ZIM_INLINE_LAMBDA { return negativeWord(x); });
}

// sgn of 32 elements by the signs of bytes.
ZIM_INLINE C32 sgn(const Zim16s* x)
{
    return narrowSaturated(load<S16>(x), load<S16>(x + 16));
}

// The bits of a float as an integer have its sign, but for -0.0, to which 0 is added, and NaN, for which max gives its
// second operand.
ZIM_INLINE C32 sgn(const Zim32f* x)
{
    constexpr Zim32f infinity = std::numeric_limits<Zim32f>::infinity();
    return signsOfEights([=](int k) ZIM_INLINE_LAMBDA {
        return reinterpret<I8>(max(load<F8>(x + k) + splat<F8>(0), splat<F8>(-infinity)));
    });
}

// The sum of |sgn(x[i + 1]) - sgn(x[i])|: a change between 0 and either sign shows in one of the tests for negative and
// for positive elements, a change between the signs in both.
template <class T>
Zim64s halfSteps(const T* src, std::size_t len)
{
    return sumOfChanges(src, len, [](const T* x) ZIM_INLINE_LAMBDA {
        const C32 low = sgn(x), high = sgn(x + 32), zero = splat<C32>(0);
        return Words<2>{join(signBits(low), signBits(high)), join(signBits(low > zero), signBits(high > zero))};
    });
}

// ---- Pairs with a negative product

// In whatever order, where only the number of negative ones matters.
struct InAnyOrder {
    template <class... V>
    ZIM_INLINE C32 operator()(V... v) const
    {
        return packSaturated(v...);
    }
};

struct InOrder {
    template <class... V>
    ZIM_INLINE C32 operator()(V... v) const
    {
        return narrowSaturated(v...);
    }
};

// The sign bits of the products of 32 neighbours.
template <class Order>
ZIM_INLINE std::uint32_t negativeOf32(const Zim16s* x, Order order)
{
    const auto products = [=](int k) ZIM_INLINE_LAMBDA { return multiplyHigh(load<S16>(x + k), load<S16>(x + k + 1)); };
    return signBits(order(products(0), products(16)));
}

template <class Order>
ZIM_INLINE std::uint32_t negativeOf32(const Zim32f* x, Order order)
{
    const auto products = [=](int k)
                              ZIM_INLINE_LAMBDA { return reinterpret<I8>(load<F8>(x + k) * load<F8>(x + k + 1)); };
    return signBits(order(products(0), products(8), products(16), products(24)));
}

template <class T>
Zim64s negativeSignBits(const T* src, std::size_t pairs)
{
    constexpr std::size_t block = 32;
    if (pairs < block) {
        T padded[block + 1] = {};
        std::memcpy(padded, src, (pairs + 1) * sizeof(T));
        return countSet(negativeOf32(padded, InOrder{}) & ~(all << pairs));
    }
    Zim64s sum = 0;
    std::size_t i = 0;
#pragma GCC unroll 2
    for (; i + block <= pairs; i += block)
        sum += countSet(negativeOf32(src + i, InAnyOrder{}));
    const std::size_t last = pairs - block;
    return sum + countSet(negativeOf32(src + last, InOrder{}) & all << (i - last));
}

inline Zim64s negativeProducts(const Zim16s* src, std::size_t len)
{
    return negativeSignBits(src, len - 1);
}

// By the sign bits of the products. A product that is a number has the sign that its factors' signs make, and they cost
// one load of an element where products cost two. The others come of NaN and infinity, which show in the sum of all
// elements; then the products are formed after all, as they are for a short signal, where the sum costs more than the
// loads.
inline Zim64s signedProducts(const Zim32f* src, std::size_t pairs)
{
    if (pairs < 512)
        return negativeSignBits(src, pairs);
    F8 sum[4] = {};
    const Zim64s changes = sumOfChanges(src, pairs + 1, [&sum](const Zim32f* x) ZIM_INLINE_LAMBDA {
#pragma GCC unroll 8
        for (int k = 0; k < 8; ++k)
            sum[k % 4] += load<F8>(x + 8 * k);
        return negativeWord(x);
    });
    const F8 total = (sum[0] + sum[1]) + (sum[2] + sum[3]);
    const bool allNumbers = allSet(total - total == splat<F8>(0));
    return allNumbers ? changes : negativeSignBits(src, pairs);
}

// By comparison, to which -0.0 is not negative, and NaN not at least 0. Seldom more than three pairs: kept apart, it
// costs the others nothing.
[[gnu::noinline]] inline Zim64s productsBelowZero(const Zim32f* src, std::size_t pairs)
{
    Zim64s sum = 0;
    for (std::size_t i = 0; i < pairs; ++i)
        sum += !(elementAt(src + i) * elementAt(src + i + 1) >= 0);
    return sum;
}

// Pairs before the first 16-byte boundary are compared, the others taken by sign bit; in an array that is not aligned
// to its elements all are compared.
inline Zim64s negativeProducts(const Zim32f* src, std::size_t len)
{
    const std::size_t pairs = len - 1;
    if (!allAligned(sizeof(Zim32f), src))
        return productsBelowZero(src, pairs);
    const std::size_t compared = std::min<std::size_t>(-ZIM_UINT_PTR(src) % 16 / sizeof(Zim32f), pairs);
    if (compared == 0)
        return signedProducts(src, pairs);
    return productsBelowZero(src, compared) + signedProducts(src + compared, pairs - compared);
}

}  // namespace zimsr::signchanges
