// Elementwise arithmetic.
#pragma once

#include <cstddef>
#include <limits>

#include <zimsr/types.h>
#include <zimsr/version.h>

#include "base/kernels/elementwise.h"
#include "base/kernels/fill.h"
#include "base/kernels/integer_scaling.h"
#include "zimcore/frame/scaling.h"

namespace zimsr {

template <class Float>
ZIM_INLINE void absoluteBlock(const Float* src, Float* dst, std::size_t len)
{
    using V = FloatVector<Float>;
    const auto signBits = std::bit_cast<typename V::Mask>(splat<V>(Float(-0.0)));
    mapElements<V::lanes>(
        dst, len, [=](V v) { return keep(~signBits, v); }, src);
}

template <class Float>
ZIM_INLINE void addInPlace(const Float* src, Float* srcDst, std::size_t len)
{
    using V = FloatVector<Float>;
    mapElements<V::lanes>(
        srcDst, len, [](V sum, V v) { return sum + v; }, srcDst, src);
}

template <class Float>
ZIM_INLINE void subtractInPlace(const Float* src, Float* srcDst, std::size_t len)
{
    using V = FloatVector<Float>;
    mapElements<V::lanes>(
        srcDst, len, [](V difference, V v) { return difference - v; }, srcDst, src);
}

template <class Float>
ZIM_INLINE void multiplyElements(const Float* src1, const Float* src2, Float* dst, std::size_t len)
{
    using V = FloatVector<Float>;
    mapElements<V::lanes>(
        dst, len, [](V a, V b) { return a * b; }, src1, src2);
}

// Adding exactly 0 is a copy, to the bit.
template <class Float>
ZIM_INLINE void addConstant(const Float* src, Float val, Float* dst, std::size_t len)
{
    using V = FloatVector<Float>;
    if (val == 0)
        copyBlock(src, dst, len);
    else
        mapElements<V::lanes>(
            dst, len, [=](V v) { return v + splat<V>(val); }, src);
}

// Multiplying by exactly 1 is a copy, by 0 of either sign a zero fill, whatever the source holds.
template <class Float>
ZIM_INLINE void multiplyByConstant(const Float* src, Float val, Float* dst, std::size_t len)
{
    using V = FloatVector<Float>;
    const auto product = [=](V v) { return v * splat<V>(val); };
    if (val == 1)
        copyBlock(src, dst, len);
    else if (val == 0)
        zeroBlock(dst, len);
    else if (sizeof(Float) == 4 && len / 8 > 16384)
        streamElements<V::lanes>(dst, len, product, src);
    else
        mapElements<V::lanes>(dst, len, product, src);
}

template <class Float>
ZIM_INLINE void multiplyByConstantInPlace(Float val, Float* srcDst, std::size_t len)
{
    using V = FloatVector<Float>;
    constexpr std::size_t prefetchAbove = 1048576 / sizeof(Float);
    constexpr std::size_t distance = 1024 / sizeof(Float);
    const auto product = [=](V v) { return v * splat<V>(val); };
    if (val == 1)
        return;
    if (val == 0)
        zeroBlock(srcDst, len);
    else if (len > prefetchAbove)
        mapElements<V::lanes>(
            srcDst, len,
            [=, ahead = reinterpret_cast<std::uintptr_t>(srcDst + distance)](V v) mutable {
                prefetchOnce(reinterpret_cast<const void*>(ahead));
                ahead += sizeof(V);
                return product(v);
            },
            srcDst);
    else
        mapElements<V::lanes>(srcDst, len, product, srcDst);
}

// dst = dividend / divisor; true if some divisor is 0, where the element is an infinity of the dividend's sign, or NaN
// for a dividend of 0 or NaN. The destination may be one of the sources.
template <class Float>
ZIM_INLINE bool divideElements(const Float* divisor, const Float* dividend, Float* dst, std::size_t len)
{
    using V = FloatVector<Float>;
    using Limits = std::numeric_limits<Float>;
    const V zero = splat<V>(0);
    const V nan = splat<V>(sizeof(Float) == 4 ? Float(zimConstantOfNAN_32f) : Float(zimConstantOfNAN_64f));
    bool anyZero = false;
    const auto quotient = [&](V a, V b) {
        V result = b / a;
        const auto isZero = a == zero;
        if (anySet(isZero)) [[unlikely]] {
            anyZero = true;
            const V negative = select(b < zero, splat<V>(-Limits::infinity()), nan);
            result = select(isZero, select(b > zero, splat<V>(Limits::infinity()), negative), result);
        }
        return result;
    };
    // The zeros that fill up a short row would count as divisors.
    if (len < V::lanes)
        for (std::size_t i = 0; i < len; ++i)
            dst[i] = quotient(splat<V>(divisor[i]), splat<V>(dividend[i]))[0];
    else
        mapElements<V::lanes>(dst, len, quotient, divisor, dividend);
    return anyZero;
}

// True if some element is negative; it becomes NaN.
ZIM_INLINE bool squareRootInPlace(Zim64f* srcDst, std::size_t len)
{
    const D4 zero = splat<D4>(0);
    auto negatives = splat<D4::Mask>(0);
    const auto root = [&](D4 v) {
        const auto isNegative = v < zero;
        negatives = negatives | isNegative;
        return select(isNegative, splat<D4>(zimConstantOfNAN_64f), sqrt(v));
    };
    mapElements<4>(srcDst, len, root, srcDst);
    return anySet(negatives);
}

// saturate(round(src1 * src2 * 2^-scaleFactor)) for -15 <= scaleFactor <= 30. At -15 every product but 0 saturates.
ZIM_INLINE void multiplyScaled(const Zim16s* src1, const Zim16s* src2, Zim16s* dst, std::size_t len, int scaleFactor)
{
    if (scaleFactor == 0)
        mapElements<8>(
            dst, len, [](S8 a, S8 b) { return narrowSaturated(multiplyWide(a, b)); }, src1, src2);
    else if (scaleFactor > 0)
        mapElements<8>(
            dst, len, [=](S8 a, S8 b) { return narrowSaturated(shiftRightHalfEven(multiplyWide(a, b), scaleFactor)); },
            src1, src2);
    else
        mapElements<8>(
            dst, len, [=](S8 a, S8 b) { return shiftLeftSaturate(multiplyWide(a, b), -scaleFactor); }, src1, src2);
}

// Halves 2 * x - doubleMean away from zero, and keeps it within -32767 .. 32767.
ZIM_INLINE void subtractDoubleMean(Zim16s* srcDst, std::size_t len, Zim32s doubleMean)
{
    const I8 zero = splat<I8>(0), least = splat<I8>(-32767);
    const auto centred = [=](S8 x) {
        const I8 wide = widen(x);
        const I8 difference = wide + wide - splat<I8>(doubleMean);
        const I8 half = (difference + (difference < zero) - (difference > zero)) >> 1;
        return narrowSaturated(select(half < least, least, half));
    };
    mapElements<8>(srcDst, len, centred, srcDst);
}

inline void multiplyColumn(Rows<Zim64f> rows, int col, int firstRow, int height, Zim64f val)
{
    for (int r = firstRow; r < height; ++r)
        rows[r][col] *= val;
}

}  // namespace zimsr
