// The element arithmetic of the dynamic features. A rule takes stored elements into a window (hold) and turns the
// window's sum into a stored element (deliver); difference and plusTwice are what a window does in between.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"

namespace zimsr::delta {

// ---- a - b and a + 2 * e on what a window holds: in single precision with the additions one by one, in 16 bits with
// every step saturated, or exactly in 32 bits

template <int N>
ZIM_INLINE Vec<Zim32f, N> difference(Vec<Zim32f, N> a, Vec<Zim32f, N> b)
{
    return a - b;
}

template <int N>
ZIM_INLINE Vec<Zim32f, N> plusTwice(Vec<Zim32f, N> a, Vec<Zim32f, N> e)
{
    return (a + e) + e;
}

template <int N>
ZIM_INLINE Vec<Zim16s, N> difference(Vec<Zim16s, N> a, Vec<Zim16s, N> b)
{
    return subtractSaturated(a, b);
}

template <int N>
ZIM_INLINE Vec<Zim16s, N> plusTwice(Vec<Zim16s, N> a, Vec<Zim16s, N> e)
{
    return addSaturated(a, addSaturated(e, e));
}

// Elements of 16 bits with sums of 32.
template <int N>
struct Exact {
    Vec<Zim16s, N> elements;
};

// weight * (a - b), for weights of 16 bits.
template <int N>
ZIM_INLINE Unpacked<N> weightedDifference(int weight, Exact<N> a, Exact<N> b)
{
    const Unpacked<N> weightAndNegative = splatUnpacked<N>((weight & 0xFFFF) - weight * 65536);
    return multiplyAddPairs(unpack(a.elements, b.elements), weightAndNegative);
}

template <int N>
ZIM_INLINE Unpacked<N> difference(Exact<N> a, Exact<N> b)
{
    return weightedDifference(1, a, b);
}

template <int N>
ZIM_INLINE Unpacked<N> plusTwice(Unpacked<N> a, Unpacked<N> e)
{
    return a + e + e;
}

// ---- What multiplies the results of one kind: at(strip, column) for a strip, of(column) for one column

// One factor for all columns.
template <class T>
struct Uniform {
    T val;

    T of(std::ptrdiff_t) const { return val; }

    template <class AnyStrip>
    ZIM_INLINE auto at(AnyStrip, std::ptrdiff_t) const
    {
        return splat<typename AnyStrip::Vector>(val);
    }
};

// A factor per column.
template <class T>
struct PerColumn {
    const T* val;

    T of(std::ptrdiff_t column) const { return val[column]; }

    template <class AnyStrip>
    ZIM_INLINE auto at(AnyStrip strip, std::ptrdiff_t column) const
    {
        return strip.load(val + column);
    }
};

// Elements are copied.
struct Unscaled {
    Zim32f of(std::ptrdiff_t) const { return 1; }
};

// ---- What multiplies the kinds of a row: kind 0 are the statics, 1 the deltas, 2 the delta-deltas

// The statics are copied, and each kind of deltas has one factor.
template <class T>
struct ByKind {
    T val[2];

    explicit ByKind(T ofDelta, T ofDeltaDelta = {}) : val{ofDelta, ofDeltaDelta} {}

    Unscaled statics() const { return {}; }
    Uniform<T> deltas(int kind, int) const { return {val[kind - 1]}; }
};

// Every column of a row has its factor.
template <class T>
struct ByColumn {
    const T* val;

    explicit ByColumn(const T* ofRow) : val(ofRow) {}

    PerColumn<T> statics() const { return {val}; }
    PerColumn<T> deltas(int kind, int width) const { return {val + static_cast<std::ptrdiff_t>(kind) * width}; }
};

// ---- The rules

struct FloatRule {
    using Element = Zim32f;
    static constexpr int lanes = Native<Zim32f>::lanes;

    template <class V>
    ZIM_INLINE V hold(V stored) const
    {
        return stored;
    }

    template <class V>
    ZIM_INLINE V deliver(V sum, V factor) const
    {
        return sum * factor;
    }
};

// A scale factor as shift counts, one of which is 0. Longer shifts give the same: 48 bits have no more to lose, and 16
// no more to take.
struct Shift {
    int right, left;

    explicit Shift(int scaleFactor) : right(std::clamp(scaleFactor, 0, 47)), left(-std::clamp(scaleFactor, -15, 0)) {}

    template <int N>
    ZIM_INLINE Vec<Zim16s, N> scale(Unpacked<N> product) const
    {
        return scaleUp(packSaturated(product >> std::min(right, 31)));
    }

    // The product is 2^16 * upper + lower, with 0 <= lower < 2^16.
    template <int N>
    ZIM_INLINE Vec<Zim16s, N> scale(Unpacked<N> upper, Unpacked<N> lower) const
    {
        if (right >= 16)
            return packSaturated(upper >> (right - 16));
        // A product of more than 32 bits stays so large in 32 that it saturates after the shift too.
        const Unpacked<N> limited = unpack(splat<Vec<Zim16s, N>>(0), packSaturated(upper)) | lower;
        return scaleUp(packSaturated(limited >> right));
    }

private:
    template <int N>
    ZIM_INLINE Vec<Zim16s, N> scaleUp(Vec<Zim16s, N> v) const
    {
        return left == 0 ? v : packSaturated(multiplyUnpacked(v, splat<Vec<Zim16s, N>>(1)) << left);
    }
};

// Sums that saturate to 16 bits at every step, products of 32 bits.
struct SaturatingRule {
    using Element = Zim16s;
    static constexpr int lanes = Native<Zim16s>::lanes;

    Shift shift;

    explicit SaturatingRule(int scaleFactor) : shift(scaleFactor) {}

    template <int N>
    ZIM_INLINE Vec<Zim16s, N> hold(Vec<Zim16s, N> stored) const
    {
        return stored;
    }

    template <int N>
    ZIM_INLINE Vec<Zim16s, N> deliver(Vec<Zim16s, N> sum, Vec<Zim16s, N> factor) const
    {
        return shift.scale(multiplyUnpacked(sum, factor));
    }
};

// Exact sums of 32 bits, exact products of 48.
struct WideRule {
    using Element = Zim16s;
    static constexpr int lanes = Native<Zim16s>::lanes;

    Shift shift;

    explicit WideRule(int scaleFactor) : shift(scaleFactor) {}

    template <int N>
    ZIM_INLINE Exact<N> hold(Vec<Zim16s, N> stored) const
    {
        return {stored};
    }

    template <int N>
    ZIM_INLINE Vec<Zim16s, N> deliver(Exact<N> held, Vec<Zim16s, N> factor) const
    {
        return shift.scale(multiplyUnpacked(held.elements, factor));
    }

    template <int N>
    ZIM_INLINE Vec<Zim16s, N> deliver(Unpacked<N> sum, Vec<Zim16s, N> factor) const
    {
        const Vec<Zim16s, N> zero = splat<Vec<Zim16s, N>>(0);
        const Unpacked<N> ofLower = multiplyAddPairs(sum, unpack(factor, zero));
        const Unpacked<N> ofUpper = multiplyAddPairs(sum, unpack(zero, factor));
        // The lower half of a sum has no sign, but was multiplied as if it had: by 2^16 too small where its top bit is
        // set.
        const Unpacked<N> correction = (sum << 16 >> 31) & (unpack(zero, factor) >> 16);
        return shift.scale(ofUpper + (ofLower >> 16) + correction, ofLower & splatUnpacked<N>(0xFFFF));
    }
};

}  // namespace zimsr::delta
