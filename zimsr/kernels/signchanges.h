// Sign changes, counted in blocks of 32 neighbouring pairs: a block becomes a word with a bit set for each change.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"

namespace zimsr::signchanges {

// An element at any address.
ZIM_INLINE Zim32f elementAt(const Zim32f* place)
{
    Zim32f x;
    std::memcpy(&x, place, sizeof x);
    return x;
}

// The baseline has no instruction for it, and the compiler's substitute is a call (Anderson, "Bit Twiddling Hacks").
ZIM_INLINE int countSet(std::uint32_t bits)
{
#if defined(__POPCNT__)
    return std::popcount(bits);
#else
    bits -= bits >> 1 & 0x55555555;
    bits = (bits & 0x33333333) + (bits >> 2 & 0x33333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F;
    return static_cast<int>(bits * 0x01010101 >> 24);
#endif
}

// The sum over all pairs of what count(x, wanted) gives for the pairs x[k], x[k + 1] of a block whose bit k is wanted.
template <class T, class Count>
ZIM_INLINE Zim64s sumOverPairs(const T* src, std::size_t pairs, Count count)
{
    constexpr std::size_t block = 32;
    constexpr std::uint32_t all = ~std::uint32_t{0};
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

// ---- Pairs with a negative product

inline Zim64s negativeProducts(const Zim16s* src, std::size_t len)
{
    return sumOverPairs(src, len - 1, [](const Zim16s* x, std::uint32_t wanted) {
        const auto product = [x](int k) { return multiplyHigh(load<S16>(x + k), load<S16>(x + k + 1)); };
        return countSet(signBits(product(0), product(16)) & wanted);
    });
}

// By the sign bits of the products.
ZIM_INLINE Zim64s signedProducts(const Zim32f* src, std::size_t pairs)
{
    return sumOverPairs(src, pairs, [](const Zim32f* x, std::uint32_t wanted) {
        const auto product = [x](int k) { return reinterpret<I8>(load<F8>(x + k) * load<F8>(x + k + 1)); };
        return countSet(signBits(product(0), product(8), product(16), product(24)) & wanted);
    });
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

// ---- Neighbours on different sides of a test: a bit for each of 32 elements, and one for the element behind them

ZIM_INLINE int countChanges(std::uint32_t bits, bool next, std::uint32_t wanted)
{
    return countSet((bits ^ (bits >> 1 | std::uint32_t{next} << 31)) & wanted);
}

struct Negative {
    ZIM_INLINE I8 operator()(F8 x) const { return reinterpret<I8>(x); }
    ZIM_INLINE bool operator()(Zim32f x) const { return std::bit_cast<std::int32_t>(x) < 0; }
};

struct Positive {
    template <class V>
    ZIM_INLINE auto operator()(V x) const
    {
        return x > splat<V>(0);
    }
};

struct NotNegative {
    template <class V>
    ZIM_INLINE auto operator()(V x) const
    {
        return x >= splat<V>(0);
    }
};

template <class Test>
ZIM_INLINE int changesOf(const Zim32f* x, std::uint32_t wanted, Test test)
{
    const auto tested = [=](int k) { return test(load<F8>(x + k)); };
    return countChanges(signBits(tested(0), tested(8), tested(16), tested(24)), test(elementAt(x + 32)), wanted);
}

template <class Test>
ZIM_INLINE int changesOf(const Zim16s* x, std::uint32_t wanted, Test test)
{
    const auto tested = [=](int k) { return test(load<S16>(x + k)); };
    return countChanges(signBits(tested(0), tested(16)), test(x[32]), wanted);
}

inline Zim64s signBitChanges(const Zim32f* src, std::size_t len)
{
    return sumOverPairs(src, len - 1,
                        [](const Zim32f* x, std::uint32_t wanted) { return changesOf(x, wanted, Negative{}); });
}

// The sum of |sgn(x[i + 1]) - sgn(x[i])|: a change between 0 and either sign shows in one of the tests, a change
// between the signs in both.
template <class T>
Zim64s halfSteps(const T* src, std::size_t len)
{
    return sumOverPairs(src, len - 1, [](const T* x, std::uint32_t wanted) {
        return changesOf(x, wanted, Positive{}) + changesOf(x, wanted, NotNegative{});
    });
}

}  // namespace zimsr::signchanges
