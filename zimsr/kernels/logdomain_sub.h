// Differences of probabilities that are held as logarithms: ln(exp(a) - exp(b)) = a + ln(1 - exp(d)), d = b - a < 0.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "zimcore/elementary/elementary.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/logdomain.h"

namespace zimsr {

// ---- The operands' order: 1 if some b[i] - a[i] is not negative, else 0; a NaN is not.

inline int ParamErr16s(const Zim16s* a, const Zim16s* b, int len)
{
    int fault = 0;
    for (int i = 0; i < len; ++i)
        fault |= b[i] - a[i] >= 0;
    return fault;
}

// Here the difference wraps.
inline int ParamErr32s(const Zim32s* a, const Zim32s* b, int len)
{
    int fault = 0;
    for (int i = 0; i < len; ++i)
        fault |= static_cast<Zim32s>(static_cast<Zim32u>(b[i]) - static_cast<Zim32u>(a[i])) >= 0;
    return fault;
}

inline int ParamErr32f(const Zim32f* a, const Zim32f* b, int len)
{
    int fault = 0;
    for (int i = 0; i < len; ++i)
        fault |= b[i] - a[i] >= 0;
    return fault;
}

inline int ParamErr64f(const Zim64f* a, const Zim64f* b, int len)
{
    int fault = 0;
    for (int i = 0; i < len; ++i)
        fault |= b[i] - a[i] >= 0;
    return fault;
}

// ---- a + ln(1 - exp(difference))

// What is left of 1 when the subtrahend is taken from it must be above this.
template <class Level>
inline constexpr Zim64f vanishing = 1.0057e-37;
template <>
inline constexpr Zim64f vanishing<DoubleLevel> = 2.45e-308;

template <class Level, class V>
ZIM_INLINE V logSub(V a, V difference)
{
    const V zero = splat<V>(Level::zero), one = splat<V>(1);
    const V alone = select(a >= splat<V>(Level::small), a, zero);
    const auto near = difference >= splat<V>(Level::negligible);
    if (!anySet(near))
        return alone;
    const V rest = one - elementary::exp(difference);
    const auto remains = rest > splat<V>(vanishing<Level>);
    const V together = a + elementary::log(select(remains, rest, one));
    return select(near, select(remains, together, zero), alone);
}

inline void logSubBlock(const Zim32f* src, Zim32f* srcDst, std::size_t len)
{
    mapElements<8>(
        srcDst, len, [](F8 a, F8 b) { return narrow(logSub<FloatLevel>(widen(a), widen(b - a))); }, src, srcDst);
}

inline void logSubBlock(const Zim64f* src, Zim64f* srcDst, std::size_t len)
{
    mapElements<4>(
        srcDst, len, [](D4 a, D4 b) { return logSub<DoubleLevel>(a, b - a); }, src, srcDst);
}

// Of integers; a keeps its scale.
ZIM_INLINE I8 logSubTruncated(I8 a, I8 b, Zim32f scale)
{
    const D8 difference = widen((toFloat(b) - toFloat(a)) * splat<F8>(scale));
    const D8 result = logSub<FloatLevel>(join(toDouble(lowHalf(a)), toDouble(highHalf(a))), difference);
    return join(quantise(lowHalf(result), Truncate{}, Zim32s{}), quantise(highHalf(result), Truncate{}, Zim32s{}));
}

inline void logSubScaled(const Zim32s* src, Zim32s* srcDst, std::size_t len, Zim32f scale)
{
    mapElements<8>(
        srcDst, len, [scale](I8 a, I8 b) { return logSubTruncated(a, b, scale); }, src, srcDst);
}

inline void logSubScaled(const Zim16s* src, Zim16s* srcDst, std::size_t len, Zim32f scale)
{
    mapElements<8>(
        srcDst, len, [scale](S8 a, S8 b) { return narrowSaturated(logSubTruncated(widen(a), widen(b), scale)); }, src,
        srcDst);
}

}  // namespace zimsr
