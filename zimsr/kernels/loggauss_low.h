// Terms of the integer arithmetic of fixed-point scoring. All sums are 32-bit lanes that wrap around.
//
// With inverse variances, half a square is high * 2^15 + low, and the products of both with the inverse variances are
// summed in four lanes each, neighbours together. A scale shifts both sums before they are added; since it drops bits,
// each shape has its own places for it.
#pragma once

#include <algorithm>

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"
#include "zimsr/kernels/loggauss_fixed.h"

namespace zimsr {

// ---- Without variances: squares of neighbours together, shifted by themselves, and subtracted

struct AsShifted {
    template <int lanes>
    using State = Vec<Zim32s, lanes>;
    Shift shift;

    template <int lanes>
    ZIM_INLINE void add(State<lanes>& state, Vec<Zim32s, lanes> squares) const
    {
        state -= shift(squares);
    }
    template <int lanes>
    ZIM_INLINE State<lanes> sum(State<lanes> state) const
    {
        return state;
    }
};

// ---- With them

// (high * 2^15 + low) * 2^-scaleFactor, each of the two shifted by itself.
struct LowScale {
    Shift forHigh, forLow;

    explicit ZIM_INLINE LowScale(int scaleFactor) : forHigh(15 - scaleFactor), forLow(-scaleFactor) {}

    template <class V>
    ZIM_INLINE V operator()(V high, V low) const
    {
        return forHigh(high) + forLow(low);
    }
};

template <int N>
struct HalfSquares {
    Vec<Zim16s, N> high, low;

    explicit ZIM_INLINE HalfSquares(Vec<Zim16s, N> difference)
        : high(multiplyHigh(difference, difference)),
          low(reinterpret<Vec<Zim16s, N>>(reinterpret<Vec<Zim16u, N>>(multiplyLow(difference, difference)) >> 1))
    {
    }
};

// Products of neighbours with their inverse variances, or what is left when they are subtracted.
template <int lanes>
struct Products {
    Vec<Zim32s, lanes> high, low;

    ZIM_INLINE Products& operator-=(const Products& more)
    {
        high -= more.high;
        low -= more.low;
        return *this;
    }
};

template <int N>
ZIM_INLINE Products<N / 2> productsOfPairs(Vec<Zim16s, N> difference, Vec<Zim16s, N> invVar)
{
    const HalfSquares<N> halves(difference);
    return {multiplyAddPairs(halves.high, invVar), multiplyAddPairs(halves.low, invVar)};
}

ZIM_INLINE Products<4> foldHalves(const Products<8>& v)
{
    return {foldHalves(v.high), foldHalves(v.low)};
}

ZIM_INLINE Products<8> addHalves(const Products<8>& a, const Products<8>& b)
{
    return {addHalves(a.high, b.high), addHalves(a.low, b.low)};
}

// One row by itself: the sums of all full groups are shifted once; in the tail each group of four, of two and of one.
struct LowSingle {
    template <int lanes>
    struct State {
        Products<lanes> full;
        Vec<Zim32s, lanes> tail;
    };
    LowScale scale;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean, Vec<Zim16s, N> invVar) const
    {
        state.full -= productsOfPairs(subtractSaturated(x, mean), invVar);
    }
    ZIM_INLINE void addTail(State<4>& state, Tail tail, S8 x, S8 mean, S8 invVar) const
    {
        tail.inGroups([&, this](S8 difference, S8 weights) ZIM_INLINE_LAMBDA { addGroup(state, difference, weights); },
                      subtractSaturated(x, mean), invVar);
    }
    ZIM_INLINE I4 sum(const State<4>& state) const { return scale(state.full.high, state.full.low) - state.tail; }

protected:
    ZIM_INLINE void addGroup(State<4>& state, S8 difference, S8 invVar) const
    {
        const Products<4> products = productsOfPairs(difference, invVar);
        state.tail += scale(products.high, products.low);
    }
};

ZIM_INLINE LowSingle::State<4> foldHalves(const LowSingle::State<8>& state)
{
    return {foldHalves(state.full), foldHalves(state.tail)};
}

// The same for inverse variances of 1. The odd last difference is taken in 32 bits, of which the low 16 are squared;
// where the scale shifts left, its square is exact, and is halved and shifted by itself.
struct LowSingleIdVar : LowSingle {
    bool isLastExact;

    explicit ZIM_INLINE LowSingleIdVar(int scaleFactor) : LowSingle{LowScale(scaleFactor)}, isLastExact(scaleFactor < 0)
    {
    }

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean) const
    {
        LowSingle::add(state, x, mean, splat<Vec<Zim16s, N>>(1));
    }
    ZIM_INLINE void addTail(State<4>& state, Tail tail, S8 x, S8 mean) const
    {
        const int even = tail.rest & ~1;
        LowSingle::addTail(state, {tail.start, even}, x, mean, splat<S8>(1));
        if (even == tail.rest)
            return;
        const S8 last = tail.inFront(even, 1, x), lastMean = tail.inFront(even, 1, mean);
        if (isLastExact)
            state.tail += scale.forLow(exactSquaresInFront(last, lastMean) >> 1);
        else
            addGroup(state, last - lastMean, splat<S8>(1));
    }
};

// The last row of an odd number of rows: each full group is shifted by itself, and each element of the tail.
struct LowOddLast {
    template <int lanes>
    using State = Vec<Zim32s, lanes>;
    LowScale scale;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean, Vec<Zim16s, N> invVar) const
    {
        const auto products = productsOfPairs(subtractSaturated(x, mean), invVar);
        state -= scale(products.high, products.low);
    }
    ZIM_INLINE void addTail(State<4>& state, Tail tail, S8 x, S8 mean, S8 invVar) const
    {
        const HalfSquares<8> halves(tail.inFront(0, tail.rest, subtractSaturated(x, mean)));
        invVar = tail.inFront(0, tail.rest, invVar);
        const Unpacked<8> high = multiplyUnpacked(halves.high, invVar), low = multiplyUnpacked(halves.low, invVar);
        state -= scale(high.low, low.low) + scale(high.high, low.high);
    }
    ZIM_INLINE I4 sum(I4 state) const { return state; }
};

// Rows in pairs: everything is summed, the groups of the tail from the first lane on, and shifted once.
struct LowPaired {
    template <int lanes>
    using State = Products<lanes>;
    LowScale scale;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean, Vec<Zim16s, N> invVar) const
    {
        state -= productsOfPairs(subtractSaturated(x, mean), invVar);
    }
    template <int N>
    ZIM_INLINE void addTail(State<N / 2>& state, Tail tail, Vec<Zim16s, N> x, Vec<Zim16s, N> mean,
                            Vec<Zim16s, N> invVar) const
    {
        tail.inGroups([&](auto difference, auto weights)
                          ZIM_INLINE_LAMBDA { state -= productsOfPairs(difference, weights); },
                      subtractSaturated(x, mean), invVar);
    }
    template <int lanes>
    ZIM_INLINE Vec<Zim32s, lanes> sum(const State<lanes>& state) const
    {
        return scale(state.high, state.low);
    }
    ZIM_INLINE LowOddLast oddLast() const { return {scale}; }
};

}  // namespace zimsr
