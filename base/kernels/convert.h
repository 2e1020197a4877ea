// Conversions between element types, with scaling by a power of two.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"
#include "base/kernels/integer_scaling.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/scaling.h"

namespace zimsr {

// ---- To float

ZIM_INLINE void convertBlock(const Zim8u* src, Zim32f* dst, std::size_t len)
{
    const auto toFloats = [](B16 v) {
        const S16 wide = widen(v);
        return join(toFloat(widen(lowHalf(wide))), toFloat(widen(highHalf(wide))));
    };
    mapElements<16>(dst, len, toFloats, src);
}

ZIM_INLINE void convertBlock(const Zim16s* src, Zim32f* dst, std::size_t len)
{
    mapElements<8>(
        dst, len, [](S8 v) { return toFloat(widen(v)); }, src);
}

ZIM_INLINE void convertBlock(const Zim32s* src, Zim32f* dst, std::size_t len)
{
    mapElements<8>(
        dst, len, [](I8 v) { return toFloat(v); }, src);
}

ZIM_INLINE void convertBlock(const Zim64f* src, Zim32f* dst, std::size_t len)
{
    mapElements<4>(
        dst, len, [](D4 v) { return narrow(v); }, src);
}

ZIM_INLINE void convertScaled(const Zim16s* src, Zim32f* dst, std::size_t len, Zim32f scale)
{
    mapElements<8>(
        dst, len, [scale](S8 v) { return toFloat(widen(v)) * splat<F8>(scale); }, src);
}

ZIM_INLINE void convertScaled(const Zim32s* src, Zim32f* dst, std::size_t len, Zim32f scale)
{
    mapElements<8>(
        dst, len, [scale](I8 v) { return toFloat(v) * splat<F8>(scale); }, src);
}

ZIM_INLINE void convertScaled(const Zim16s* src, Zim64f* dst, std::size_t len, Zim64f scale)
{
    const auto toDoubles = [scale](S8 v) {
        const I8 wide = widen(v);
        return join(toDouble(lowHalf(wide)) * splat<D4>(scale), toDouble(highHalf(wide)) * splat<D4>(scale));
    };
    mapElements<8>(dst, len, toDoubles, src);
}

// ---- Float to integer. The processor's conversion gives INT_MIN for NaN and for what is out of range on either side:
// right for NaN and below, so only the upper side is limited.

struct RoundNearest {
    template <class V>
    ZIM_INLINE auto operator()(V v) const
    {
        return toIntRounded(v);
    }
};

struct Truncate {
    template <class V>
    ZIM_INLINE auto operator()(V v) const
    {
        return toIntTruncated(v);
    }
};

// A NaN passes through min as its second operand.
template <class Round>
ZIM_INLINE S8 quantise(F8 v, Round toInt, Zim16s)
{
    return narrowSaturated(toInt(min(splat<F8>(32767), v)));
}

// 2147483647 is no float: what reaches 2^31 converts to INT_MIN, and its bits are turned over.
template <int N, class Round>
ZIM_INLINE Vec<Zim32s, N> quantise(Vec<Zim32f, N> v, Round toInt, Zim32s)
{
    return toInt(v) ^ (v >= splat<Vec<Zim32f, N>>(2147483648.0f));
}

template <class Round>
ZIM_INLINE I4 quantise(D4 v, Round toInt, Zim32s)
{
    return toInt(min(splat<D4>(2147483647.0), v));
}

template <class Float, class Int, class Round>
ZIM_INLINE void quantiseBlock(const Float* src, Int* dst, std::size_t len, int scaleFactor, Round toInt)
{
    constexpr int N = sizeof(Float) == 4 ? 8 : 4;
    constexpr int least = std::numeric_limits<Float>::min_exponent - 1;
    constexpr int greatest = std::numeric_limits<Float>::max_exponent - 1;
    using V = Vec<Float, N>;
    const auto power = [](int factor) {
        if constexpr (sizeof(Float) == 4)
            return splat<V>(GetScale_32s32f(factor));
        else
            return splat<V>(GetScale_32s64f(factor));
    };
    if (scaleFactor >= -greatest && scaleFactor <= -least) [[likely]] {
        const V scale = power(scaleFactor);
        mapElements<N>(
            dst, len, [=](V v) { return quantise(v * scale, toInt, Int{}); }, src);
    } else {
        // Beyond the normal powers the scale is a product of two, so that zero stays zero, infinity stays infinity and
        // the smallest number is scaled exactly. Two of the greatest take every number but zero to saturation, two of
        // the least every finite number to zero.
        const int first = scaleFactor < 0 ? -greatest : -least;
        const V scale = power(first), rest = power(std::clamp(scaleFactor, -2 * greatest, -2 * least) - first);
        mapElements<N>(
            dst, len, [=](V v) { return quantise(v * scale * rest, toInt, Int{}); }, src);
    }
}

// dst = saturate(round(src * 2^-scaleFactor)); NaN gives the lower bound. rndMode 0 truncates, any other rounds to
// nearest even, in every rounding mode of the caller.
template <class Float, class Int>
ZIM_INLINE void quantiseBlock(const Float* src, Int* dst, std::size_t len, int rndMode, int scaleFactor)
{
    const RoundToNearest mode;
    if (rndMode == 0)
        quantiseBlock(src, dst, len, scaleFactor, Truncate{});
    else
        quantiseBlock(src, dst, len, scaleFactor, RoundNearest{});
}

// ---- Integer to shorter integer

ZIM_INLINE void shortenBlock(const Zim32s* src, Zim16s* dst, std::size_t len, int scaleFactor)
{
    if (scaleFactor == 0)
        mapElements<8>(
            dst, len, [](I8 v) { return narrowSaturated(v); }, src);
    else if (scaleFactor > 0)
        mapElements<8>(
            dst, len, [=](I8 v) { return narrowSaturated(shiftRightHalfEven(v, scaleFactor)); }, src);
    else
        mapElements<8>(
            dst, len, [=](I8 v) { return shiftLeftSaturate(v, -scaleFactor); }, src);
}

}  // namespace zimsr
