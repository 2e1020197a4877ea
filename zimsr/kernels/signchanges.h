// Sign changes, counted in blocks of 64 neighbouring pairs: a block becomes a word with a bit set for each change.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <type_traits>

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

// The sum over all pairs of what count(x, wanted) gives for the pairs x[k], x[k + 1] of a block whose bit k is wanted.
template <class T, class Count>
ZIM_INLINE Zim64s sumOverPairs(const T* src, std::size_t pairs, Count count)
{
    constexpr std::size_t block = 64;
    constexpr std::uint64_t all = ~std::uint64_t{0};
    if (pairs == 0)
        return 0;
    if (pairs < block) {
        T padded[block + 1] = {};
        std::memcpy(padded, src, (pairs + 1) * sizeof(T));
        return count(padded, all >> (block - pairs));
    }
    const std::size_t last = pairs - block;
    Zim64s sum = 0;
    std::size_t i = 0;
    for (; i < last; i += block)
        sum += count(src + i, all);
    // The last block, stepped back, without the pairs that are already counted.
    return sum + count(src + last, all << (i - last));
}

// ---- Neighbours on different sides of a test

// The bits of both halves of a block, half(k) being those from element k on.
template <class Half>
ZIM_INLINE std::uint64_t wholeBlock(Half half)
{
    return std::uint64_t{half(0)} | std::uint64_t{half(32)} << 32;
}

// The sign bits of what vector(k) gives for eight elements from element k on.
template <class Vector>
ZIM_INLINE std::uint64_t signBitsOfEights(Vector vector)
{
    return wholeBlock(
        [=](int k) ZIM_INLINE_LAMBDA { return signBits(vector(k), vector(k + 8), vector(k + 16), vector(k + 24)); });
}

// A bit for each element of a block.
template <class Test>
ZIM_INLINE std::uint64_t testBlock(const Zim32f* x, Test test)
{
    return signBitsOfEights([=](int k) ZIM_INLINE_LAMBDA { return test(load<F8>(x + k)); });
}

template <class Test>
ZIM_INLINE std::uint64_t testBlock(const Zim16s* x, Test test)
{
    return wholeBlock([=](int k)
                          ZIM_INLINE_LAMBDA { return signBits(test(load<S16>(x + k)), test(load<S16>(x + k + 16))); });
}

template <class T, class Test>
ZIM_INLINE int countChanges(const T* x, std::uint64_t wanted, Test test)
{
    const std::uint64_t bits = testBlock(x, test);
    const std::uint64_t behind = bits >> 1 | std::uint64_t{test(elementAt(x + 64))} << 63;
    return countSet((bits ^ behind) & wanted);
}

struct Negative {
    ZIM_INLINE I8 operator()(F8 x) const { return reinterpret<I8>(x); }
    ZIM_INLINE S16 operator()(S16 x) const { return x; }
    ZIM_INLINE bool operator()(Zim32f x) const { return std::bit_cast<std::int32_t>(x) < 0; }
    ZIM_INLINE bool operator()(Zim16s x) const { return x < 0; }
};

struct Positive {
    template <class V>
    ZIM_INLINE auto operator()(V x) const
    {
        return x > splat<V>(0);
    }
};

// To which a NaN is negative, and no zero.
struct NotNegative {
    template <class V>
    ZIM_INLINE auto operator()(V x) const
    {
        return x >= splat<V>(0);
    }
};

inline Zim64s signBitChanges(const Zim32f* src, std::size_t len)
{
    return sumOverPairs(src, len - 1, [](const Zim32f* x, std::uint64_t wanted) ZIM_INLINE_LAMBDA {
        return countChanges(x, wanted, Negative{});
    });
}

// The sum of |sgn(x[i + 1]) - sgn(x[i])|: a change between 0 and either sign shows in one of the tests, a change
// between the signs in both.
template <class T>
Zim64s halfSteps(const T* src, std::size_t len)
{
    using AtLeastZero = std::conditional_t<std::is_integral_v<T>, Negative, NotNegative>;
    return sumOverPairs(src, len - 1, [](const T* x, std::uint64_t wanted) ZIM_INLINE_LAMBDA {
        return countChanges(x, wanted, Positive{}) + countChanges(x, wanted, AtLeastZero{});
    });
}

// ---- Pairs with a negative product

// A counter in each lane. The last vector is stepped back, and counts only what is left.
ZIM_INLINE S16 countNegative(const Zim16s* x, std::size_t pairs)
{
    const auto negative = [](S16 a, S16 b) ZIM_INLINE_LAMBDA { return multiplyHigh(a, b) >> 15; };
    const auto negativeAt = [=](std::size_t i)
                                ZIM_INLINE_LAMBDA { return negative(load<S16>(x + i), load<S16>(x + i + 1)); };
    if (pairs < 16)
        return -negative(loadFirst<S16>(x, static_cast<int>(pairs)), loadFirst<S16>(x + 1, static_cast<int>(pairs)));
    S16 even = splat<S16>(0), odd = even;
    std::size_t i = 0;
    for (; i + 32 <= pairs; i += 32) {
        even -= negativeAt(i);
        odd -= negativeAt(i + 16);
    }
    if (i + 16 <= pairs) {
        even -= negativeAt(i);
        i += 16;
    }
    return even + odd - keep(lastLanes<S16>(static_cast<int>(pairs - i)), negativeAt(pairs - 16));
}

// Counters are added up before one can overflow.
inline Zim64s negativeProducts(const Zim16s* src, std::size_t len)
{
    constexpr std::size_t stretch = 32767 * 16;
    Zim64s sum = 0;
    for (std::size_t first = 0; first < len - 1; first += stretch) {
        const S16 count = countNegative(src + first, std::min(stretch, len - 1 - first));
        sum += sumLanes(multiplyAddPairs(count, splat<S16>(1)));
    }
    return sum;
}

inline Zim64s negativeSignBits(const Zim32f* src, std::size_t pairs)
{
    return sumOverPairs(src, pairs, [](const Zim32f* x, std::uint64_t wanted) ZIM_INLINE_LAMBDA {
        const std::uint64_t bits = signBitsOfEights(
            [=](int k) ZIM_INLINE_LAMBDA { return reinterpret<I8>(load<F8>(x + k) * load<F8>(x + k + 1)); });
        return countSet(bits & wanted);
    });
}

// By the sign bits of the products. A product that is a number has the sign that its factors' signs make, and they cost
// one load of an element where products cost two. The others come of NaN and infinity, which show in the sum of all
// elements; then the products are formed after all, as they are for a short signal, where the sum costs more than the
// loads.
inline Zim64s signedProducts(const Zim32f* src, std::size_t pairs)
{
    if (pairs < 256)
        return negativeSignBits(src, pairs);
    F8 sum[4] = {};
    const Zim64s changes = sumOverPairs(src, pairs, [&sum](const Zim32f* x, std::uint64_t wanted) ZIM_INLINE_LAMBDA {
#pragma GCC unroll 8
        for (int k = 0; k < 8; ++k)
            sum[k % 4] += load<F8>(x + 8 * k);
        return countChanges(x, wanted, Negative{});
    });
    const F8 total = (sum[0] + sum[1]) + (sum[2] + sum[3]) + splat<F8>(src[pairs]);
    const bool allNumbers = allSet(total - total == splat<F8>(0));
    return allNumbers ? changes : negativeSignBits(src, pairs);
}

// By comparison, to which -0.0 is not negative, and NaN not at least 0.
inline Zim64s productsBelowZero(const Zim32f* src, std::size_t pairs)
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
    return productsBelowZero(src, compared) + signedProducts(src + compared, pairs - compared);
}

}  // namespace zimsr::signchanges
