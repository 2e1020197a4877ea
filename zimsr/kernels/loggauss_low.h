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

// v * 2^amount, in 32 bits: what is shifted out is lost, an amount of -32 or less leaves the sign, of 32 or more zero.
template <int N>
ZIM_INLINE Vec<Zim32s, N> shifted(Vec<Zim32s, N> v, int amount)
{
    return shifted(v, std::max(amount, 0), std::max(-amount, 0));
}

ZIM_INLINE I4 foldHalves(I8 v)
{
    return lowHalf(v) + highHalf(v);
}

// ---- Without variances: squares of neighbours together, shifted by themselves, and subtracted

struct AsShifted {
    using State = I8;
    using Sum = I4;
    int amount;

    ZIM_INLINE void add(State& state, I8 squares) const { state -= shifted(squares, amount); }
    ZIM_INLINE Sum sum(const State& state) const { return foldHalves(state); }
};

// ---- With them

struct LowScale {
    int scaleFactor;

    // (high * 2^15 + low) * 2^-scaleFactor, each of the two shifted by itself.
    template <class V>
    ZIM_INLINE V operator()(V high, V low) const
    {
        return shifted(high, 15 - scaleFactor) + shifted(low, -scaleFactor);
    }
};

struct HalfSquares {
    S16 high, low;

    explicit ZIM_INLINE HalfSquares(S16 difference)
        : high(multiplyHigh(difference, difference)),
          low(reinterpret<S16>(reinterpret<Unsigned>(multiplyLow(difference, difference)) >> 1))
    {
    }

private:
    using Unsigned = Vec<Zim16u, 16>;
};

// Products of pairs, or what is left when they are subtracted.
struct Products {
    I8 high, low;

    ZIM_INLINE Products& operator-=(const Products& more)
    {
        high -= more.high;
        low -= more.low;
        return *this;
    }
};

ZIM_INLINE Products productsOfPairs(S16 difference, S16 invVar)
{
    const HalfSquares halves(difference);
    return {multiplyAddPairs(halves.high, invVar), multiplyAddPairs(halves.low, invVar)};
}

// One row by itself: the sums of all full groups are shifted once; in the tail each group of four, of two and of one.
struct LowSingle {
    struct State {
        Products full;
        I4 tail;
    };
    using Sum = I4;
    LowScale scale;

    ZIM_INLINE void add(State& state, S16 x, S16 mean, S16 invVar) const
    {
        state.full -= productsOfPairs(subtractSaturated(x, mean), invVar);
    }
    ZIM_INLINE void addTail(State& state, int, S8 x, S8 mean, S8 invVar) const
    {
        addTailDifferences(state, subtractSaturated(x, mean), invVar);
    }
    ZIM_INLINE Sum sum(const State& state) const
    {
        return scale(foldHalves(state.full.high), foldHalves(state.full.low)) - state.tail;
    }

protected:
    // Groups do not meet in a lane, and the lanes are added in the end, so that all are shifted at once.
    ZIM_INLINE void addTailDifferences(State& state, S8 difference, S8 invVar) const
    {
        const Products products = productsOfPairs(withZeros(difference), withZeros(invVar));
        state.tail += scale(lowHalf(products.high), lowHalf(products.low));
    }
};

// The same for inverse variances of 1. The odd last difference is taken in 32 bits, of which the low 16 are squared;
// where the scale shifts left, its square is exact, and is halved and shifted by itself.
struct LowSingleIdVar : LowSingle {
    ZIM_INLINE void add(State& state, S16 x, S16 mean) const { LowSingle::add(state, x, mean, splat<S16>(1)); }
    ZIM_INLINE void addTail(State& state, int rest, S8 x, S8 mean) const
    {
        const S8 isLast = rest & 1 ? onlyLane<S8>(rest - 1) : splat<S8>(0);
        const S8 difference = subtractSaturated(x, mean);
        if (scale.scaleFactor >= 0) {
            addTailDifferences(state, select(isLast, x - mean, difference), splat<S8>(1));
        } else {
            addTailDifferences(state, keep(~isLast, difference), splat<S8>(1));
            const I8 half = keep(widen(isLast), exactSquares(x, mean) >> 1);
            state.tail += foldHalves(shifted(half, -scale.scaleFactor));
        }
    }
};

// The last row of an odd number of rows: each full group is shifted by itself, and each element of the tail.
struct LowOddLast {
    using State = I8;
    using Sum = I4;
    LowScale scale;

    ZIM_INLINE void add(State& state, S16 x, S16 mean, S16 invVar) const
    {
        const Products products = productsOfPairs(subtractSaturated(x, mean), invVar);
        state -= scale(products.high, products.low);
    }
    ZIM_INLINE void addTail(State& state, int, S8 x, S8 mean, S8 invVar) const
    {
        const HalfSquares halves(withZeros(subtractSaturated(x, mean)));
        state -= scale(multiplyWide(lowHalf(halves.high), invVar), multiplyWide(lowHalf(halves.low), invVar));
    }
    ZIM_INLINE Sum sum(const State& state) const { return foldHalves(state); }
};

// Rows in pairs: everything is summed, the tail's group of four in the first two lanes, its groups of two and of one in
// the first, and shifted once.
struct LowPaired {
    using State = Products;
    using Sum = I4;
    LowScale scale;

    ZIM_INLINE void add(State& state, S16 x, S16 mean, S16 invVar) const
    {
        state -= productsOfPairs(subtractSaturated(x, mean), invVar);
    }
    ZIM_INLINE void addTail(State& state, int rest, S8 x, S8 mean, S8 invVar) const
    {
        const S8 difference = subtractSaturated(x, mean);
        // The halves of a state meet in the end, so that the second and third group start in the upper one.
        const int first = rest < 4 ? 2 : 4;
        state -= productsOfPairs(
            join(difference, lanesDown(difference, first)),
            join(keep(firstLanes<S8>(first), invVar), keep(firstLanes<S8>(2), lanesDown(invVar, first))));
        if (rest == 7)
            state -= productsOfPairs(withZeros(lanesDown(difference, 6)), withZeros(lanesDown(invVar, 6)));
    }
    ZIM_INLINE Sum sum(const State& state) const { return scale(foldHalves(state.high), foldHalves(state.low)); }
    ZIM_INLINE LowOddLast oddLast() const { return {scale}; }
};

}  // namespace zimsr
