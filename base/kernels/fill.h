// Fill and copy, by bits. Blocks of half a megabyte and more are written past the cache.
#pragma once

#include <bit>
#include <cstddef>
#include <cstring>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"

namespace zimsr {

inline constexpr std::size_t streamingBytes = 524288;

template <class T>
ZIM_INLINE void fillBlock(T value, T* dst, std::size_t len)
{
    // Floats are filled as integers, so that every bit of a signalling NaN survives.
    using Bits = typename Vec<T, 1>::Mask::Lane;
    constexpr int lanes = 32 / static_cast<int>(sizeof(T));
    const auto filled = splat<Vec<Bits, lanes>>(std::bit_cast<Bits>(value));
    const auto produce = [filled] { return filled; };
    Bits* bits = reinterpret_cast<Bits*>(dst);
    if (len * sizeof(T) >= streamingBytes)
        streamElements<lanes>(bits, len, produce);
    else
        mapElements<lanes>(bits, len, produce);
}

// A block that takes less time than the C library takes to choose a way.
ZIM_INLINE bool isSmallBlock(std::size_t bytes)
{
    return bytes >= 32 && bytes <= 512;
}

template <class T>
ZIM_INLINE void zeroBlock(T* dst, std::size_t len)
{
    const std::size_t bytes = len * sizeof(T);
    if (bytes >= streamingBytes || isSmallBlock(bytes))
        fillBlock(Zim8u{0}, reinterpret_cast<Zim8u*>(dst), bytes);
    else
        std::memset(dst, 0, bytes);
}

// The blocks do not overlap. The C library's copy takes a string instruction from about 2 KB on, which on some
// processors is slower than a plain loop, up to thirty times where the low bits of the two addresses are unlucky.
template <class T>
ZIM_INLINE void copyBlock(const T* src, T* dst, std::size_t len)
{
    const std::size_t bytes = len * sizeof(T);
    const auto copy = [](Vec<Zim8u, 32> v) { return v; };
    const Zim8u* from = reinterpret_cast<const Zim8u*>(src);
    Zim8u* to = reinterpret_cast<Zim8u*>(dst);
    if (isSmallBlock(bytes))
        mapLongRow<32>(to, bytes, copy, from);
    else if (bytes >= streamingBytes)
        streamElements<32>(to, bytes, copy, from);
    else if (bytes >= 32)
        mapOnBoundaries<32>([](Zim8u* place, auto v) { store(place, v); }, to, bytes, copy, from);
    else
        std::memcpy(dst, src, bytes);
}

}  // namespace zimsr
