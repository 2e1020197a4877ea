// The core: one complex transform per lane, down a block of rows. A row is a vector of real parts followed by one of
// imaginary parts; the rows come in bit-reversed order and leave in order (decimation in time, J. W. Cooley and
// J. W. Tukey 1965), by a first pass of 4 or 8 rows without twiddles and radix-4 passes over spans of 16, 64, ... or
// 32, 128, ... rows.
#pragma once

#include <zimsr/types.h>

#include "base/kernels/fft_complex.h"

namespace zimsr::fft {

// The twiddles of a span S = 16, 32, 64, ...: W^k, W^2k, W^3k with W = exp(-2*pi*i/S), for k = 0 .. S/4 - 1. The spans
// follow each other.
inline constexpr std::size_t twiddleFloats = 6;

constexpr std::size_t spanTwiddles(std::size_t span)
{
    return twiddleFloats * (span / 4 - 4);
}

// Enough for every span of so many rows.
constexpr std::size_t spanTwiddlesUpTo(std::size_t rows)
{
    return twiddleFloats / 2 * rows;
}

template <class V>
inline constexpr std::size_t rowFloats = 2 * lanesOf<V>;

template <class V>
ZIM_INLINE void firstPass4(float* rows)
{
    constexpr std::size_t step = rowFloats<V>;
    Complex<V> z0 = loadParts<V>(rows), z2 = loadParts<V>(rows + step);
    Complex<V> z1 = loadParts<V>(rows + 2 * step), z3 = loadParts<V>(rows + 3 * step);
    butterfly4(z0, z1, z2, z3);
    storeParts(rows, z0);
    storeParts(rows + step, z1);
    storeParts(rows + 2 * step, z2);
    storeParts(rows + 3 * step, z3);
}

template <class V>
ZIM_INLINE void firstPass8(float* rows)
{
    constexpr std::size_t step = rowFloats<V>;
    constexpr std::size_t bitReversed[] = {0, 4, 2, 6, 1, 5, 3, 7};
    Complex<V> z[8];
#pragma GCC unroll 8
    for (std::size_t i = 0; i < 8; ++i)
        z[bitReversed[i]] = loadParts<V>(rows + i * step);
    butterfly8(z);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < 8; ++i)
        storeParts(rows + i * step, z[i]);
}

// Joins four transforms of span/4 rows to one of span rows. Bit-reversed order has the second and third exchanged.
template <class V>
ZIM_INLINE void joinFour(float* rows, std::size_t span, const float* twiddles)
{
    const std::size_t quarter = span / 4 * rowFloats<V>;
    const auto butterflyAt = [=](float* p, auto twiddled) {
        Complex<V> z0 = loadParts<V>(p), z2 = loadParts<V>(p + quarter);
        Complex<V> z1 = loadParts<V>(p + 2 * quarter), z3 = loadParts<V>(p + 3 * quarter);
        twiddled(z1, z2, z3);
        butterfly4(z0, z1, z2, z3);
        storeParts(p, z0);
        storeParts(p + quarter, z1);
        storeParts(p + 2 * quarter, z2);
        storeParts(p + 3 * quarter, z3);
    };
    butterflyAt(rows, [](auto&...) {});
    for (std::size_t k = 1; k < span / 4; ++k) {
        const float* w = twiddles + k * twiddleFloats;
        butterflyAt(rows + k * rowFloats<V>, [w](Complex<V>& z1, Complex<V>& z2, Complex<V>& z3) {
            z1 = z1 * loadForAll<V>(w);
            z2 = z2 * loadForAll<V>(w + 2);
            z3 = z3 * loadForAll<V>(w + 4);
        });
    }
}

// Where row r of bit-reversed order stands, for any count of rows up to the table's.
class BitReversal {
public:
    BitReversal(const Zim32u* table, int tableBits, int bits) : table_(table), shift_(tableBits - bits) {}
    std::size_t operator()(std::size_t r) const { return table_[r] >> shift_; }

private:
    const Zim32u* table_;
    int shift_;
};

// 2^log2Length rows, at least 4.
template <class V>
inline void transformRows(float* rows, int log2Length, const float* twiddles)
{
    const bool odd = log2Length % 2;
    const std::size_t length = std::size_t{1} << log2Length;
    // Blocks that stay in the first-level cache are finished one by one.
    const std::size_t block = std::min(length, std::size_t{256} << odd);
    const auto pass = [=](float* first, std::size_t count, std::size_t span) {
        for (std::size_t r = 0; r < count; r += span)
            joinFour<V>(first + r * rowFloats<V>, span, twiddles + spanTwiddles(span));
    };
    std::size_t span = 0;
    for (std::size_t first = 0; first < length; first += block) {
        float* rowsOfBlock = rows + first * rowFloats<V>;
        for (std::size_t r = 0; r < block; r += odd ? 8 : 4) {
            if (odd)
                firstPass8<V>(rowsOfBlock + r * rowFloats<V>);
            else
                firstPass4<V>(rowsOfBlock + r * rowFloats<V>);
        }
        for (span = odd ? 32 : 16; span <= block; span *= 4)
            pass(rowsOfBlock, block, span);
    }
    for (; span <= length; span *= 4)
        pass(rows, length, span);
}

}  // namespace zimsr::fft
