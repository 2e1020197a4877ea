// Interpolation of two parameter vectors.
#pragma once

#include <cstddef>
#include <limits>

#include <zimsr/types.h>
#include <zimsr/version.h>

#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "zimcore/frame/rounding.h"

namespace zimsr {

// a * ofA + b * ofB, of integers in Zim32f.
template <class Float>
struct Combination {
    using V = FloatVector<Float>;

    Float ofA, ofB;

    ZIM_INLINE V operator()(V a, V b) const { return a * splat<V>(ofA) + b * splat<V>(ofB); }
    ZIM_INLINE F8 operator()(S8 a, S8 b) const { return (*this)(toFloat(widen(a)), toFloat(widen(b))); }
};

// Its factors, from the weights and the reciprocal of their sum.
struct ShareOfEach {
    template <class Float>
    Combination<Float> operator()(Float wgtA, Float wgtB, Float reciprocal) const
    {
        return {wgtA * reciprocal, wgtB * reciprocal};
    }
};

// For a vector a that has its weight already.
struct ShareOfSecond {
    template <class Float>
    Combination<Float> operator()(Float, Float wgtB, Float reciprocal) const
    {
        return {reciprocal, wgtB * reciprocal};
    }
};

// The infinity of the value's sign; the substitute for zero and NaN.
template <class V>
ZIM_INLINE V infinityOfSign(V value, V substitute)
{
    constexpr auto infinity = std::numeric_limits<typename V::Lane>::infinity();
    const V zero = splat<V>(0);
    return select(value > zero, splat<V>(infinity), select(value < zero, splat<V>(-infinity), substitute));
}

// dst = deliver(combination of a and b). True if the weights have no sum to divide by: then deliver gets an infinity of
// the combination's sign, or the substitute where it has none.
template <class T, class Float, class Shares, class Deliver>
ZIM_INLINE bool combineElements(const T* a, const T* b, T* dst, std::size_t len, Float wgtA, Float wgtB, Shares shares,
                                Deliver deliver, Float substitute)
{
    using V = FloatVector<Float>;
    const Float sum = wgtA + wgtB;
    if (sum < 0 || sum > 0) [[likely]] {
        const auto combination = shares(wgtA, wgtB, 1 / sum);
        mapElements<V::lanes>(
            dst, len, [=](auto x, auto y) ZIM_INLINE_LAMBDA { return deliver(combination(x, y)); }, a, b);
        return false;
    }
    const Combination<Float> undivided{wgtA, wgtB};
    mapElements<V::lanes>(
        dst, len,
        [=](auto x, auto y)
            ZIM_INLINE_LAMBDA { return deliver(infinityOfSign(undivided(x, y), splat<V>(substitute))); },
        a, b);
    return true;
}

template <class Float, class Shares>
ZIM_INLINE bool weightedSum(const Float* a, const Float* b, Float* dst, std::size_t len, Float wgtA, Float wgtB,
                            Shares shares)
{
    const auto whole = [](auto v) ZIM_INLINE_LAMBDA { return v; };
    return combineElements(a, b, dst, len, wgtA, wgtB, shares, whole,
                           sizeof(Float) == 4 ? Float(zimConstantOfNAN_32f) : Float(zimConstantOfNAN_64f));
}

template <class Shares, class Round>
ZIM_INLINE bool weightedSum(const Zim16s* a, const Zim16s* b, Zim16s* dst, std::size_t len, Zim32f wgtA, Zim32f wgtB,
                            Shares shares, Round toInt)
{
    const RoundToNearest mode;
    const auto quantised = [=](F8 v) ZIM_INLINE_LAMBDA { return quantise(v, toInt, Zim16s{}); };
    return combineElements(a, b, dst, len, wgtA, wgtB, shares, quantised, Zim32f{0});
}

}  // namespace zimsr
