// Log-likelihood of 16-bit features under 16-bit diagonal Gaussians. As in floating point, a function is a term, a
// finish and a shape, and here the shape decides a little of the term too: what is rounded or shifted by itself.
//
// Elements are taken by sixteen, then by eight, then the tail of one to seven. The difference of features and means
// saturates in full groups of eight; each term says how it is in the tail.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// ---- Elements and squares

// Of the exact differences, as signed 32-bit products, which wrap around.
ZIM_INLINE I8 exactSquares(S8 x, S8 mean)
{
    const I8 difference = widen(x) - widen(mean);
    return difference * difference;
}

template <class V>
ZIM_INLINE typename V::Mask onlyLane(int lane)
{
    return firstLanes<V>(lane + 1) & ~firstLanes<V>(lane);
}

// ---- Gathering. Of a row, a term fills a State, which comes to a Sum: lanes still to be added. It takes elements by
// sixteen or by eight, and those of the tail either from the first lane on, or wherever they stand in a vector.

template <class Term, class... V>
ZIM_INLINE void addEight(Term term, typename Term::State& state, V... elements)
{
    if constexpr (requires { term.add(state, elements...); })
        term.add(state, elements...);
    else
        term.add(state, withZeros(elements)...);
}

// Where the last elements of a row are among those that are loaded: at the end of a whole vector, or, of a row that has
// no whole vector, at the start.
template <bool whole>
struct Tail {
    int width, rest;

    template <class T>
    ZIM_INLINE Vec<T, 8> load(const T* row) const
    {
        if constexpr (whole)
            return zimsr::load<Vec<T, 8>>(row + (width - 8));
        else
            return loadFirst<Vec<T, 8>>(row, rest);
    }
    // From the first lane on, with zeros behind them.
    ZIM_INLINE S8 inFront(S8 loaded) const { return whole ? lanesDown(loaded, 8 - rest) : loaded; }
    ZIM_INLINE I8 where() const { return whole ? lastLanes<I8>(rest) : firstLanes<I8>(rest); }
};

template <bool whole, class Term, int count, class... Row>
ZIM_INLINE void addTails(Term term, typename Term::State (&state)[count], int width, const Row&... rows)
{
    const Tail<whole> tail{width, width & 7};
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i)
        if constexpr (requires { term.addSingles(state[i], I8{}, tail.load(rows[i])...); })
            term.addSingles(state[i], tail.where(), tail.load(rows[i])...);
        else
            term.addTail(state[i], tail.rest, tail.inFront(tail.load(rows[i]))...);
}

template <class Term, int count, class... Row>
requires requires
{
    typename Term::State;
}
ZIM_INLINE void sumTerms(Term term, typename Term::Sum (&sum)[count], int width, const Row&... rows)
{
    typename Term::State state[count] = {};
    std::ptrdiff_t j = 0;
    for (; j + 16 <= width; j += 16) {
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            term.add(state[i], loadLanes<16>(rows[i] + j)...);
    }
    if (width & 8) {
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            addEight(term, state[i], loadLanes<8>(rows[i] + j)...);
    }
    if (width < 8)
        addTails<false>(term, state, width, rows...);
    else if (width & 7)
        addTails<true>(term, state, width, rows...);
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i)
        sum[i] = term.sum(state[i]);
}

// ---- Terms that are summed as floats or exactly. Those of the integer arithmetic are in loggauss_low.h.

// Each square a float, times the inverse variance where there is one, which is a 16-bit number or a float. Differences
// in the tail are exact. Floats are made from lanes raised to the upper half of 32 bits, as the processor unpacks them,
// so that all is larger by a power of two until the end: nothing is rounded otherwise for it.
template <class... InvVar>
struct FloatSquares {
    using State = F8;
    using Sum = F8;

    ZIM_INLINE void add(State& state, S16 x, S16 mean, Vec<InvVar, 16>... invVar) const
    {
        const auto difference = raised(subtractSaturated(x, mean));
        state += ((difference.low * difference.low) * ... * raised(invVar).low);
        state += ((difference.high * difference.high) * ... * raised(invVar).high);
    }
    ZIM_INLINE void add(State& state, S8 x, S8 mean, Vec<InvVar, 8>... invVar) const
    {
        const F8 difference = toFloat(widen(subtractSaturated(x, mean)));
        state += raisedProduct(difference * difference, toFloats(invVar)...);
    }
    ZIM_INLINE void addSingles(State& state, I8 these, S8 x, S8 mean, Vec<InvVar, 8>... invVar) const
    {
        state += keep(these, raisedProduct(toFloat(exactSquares(x, mean)), toFloats(invVar)...));
    }
    ZIM_INLINE Sum sum(const State& state) const { return state * splat<F8>(unit); }

private:
    struct Halves {
        F8 low, high;
    };

    static ZIM_INLINE Halves raised(S16 v)
    {
        const Unpacked<16> wide = unpack(splat<S16>(0), v);
        return {toFloat(wide.low), toFloat(wide.high)};
    }
    // Floats are as they are, in the order in which shorts unpack.
    static ZIM_INLINE Halves raised(Vec<Zim32f, 16> v)
    {
        return {shuffle<0, 1, 2, 3, 8, 9, 10, 11>(lowHalf(v), highHalf(v)),
                shuffle<4, 5, 6, 7, 12, 13, 14, 15>(lowHalf(v), highHalf(v))};
    }
    static ZIM_INLINE F8 toFloats(S8 v) { return toFloat(widen(v)); }
    static ZIM_INLINE F8 toFloats(F8 v) { return v; }

    // Rather the inverse variances are raised, which several rows may share.
    static ZIM_INLINE F8 raisedProduct(F8 squares) { return squares * splat<F8>(1 / unit); }
    static ZIM_INLINE F8 raisedProduct(F8 squares, F8 invVar) { return squares * (invVar * splat<F8>(1 / unit)); }

    // What a term must be multiplied with to lower it again.
    static constexpr Zim32f unit = (0x1p-32f * ... * (sizeof(InvVar) == 2 ? 0x1p-16f : 1.0f));
};

// Without variances, the squares of two neighbours are added as one signed 32-bit integer, which may wrap around. Each
// of these integers becomes a float, or what else Squares makes of it.
struct AsFloats {
    using State = F8;
    using Sum = F8;

    ZIM_INLINE void add(State& state, I8 squares) const { state += toFloat(squares); }
    ZIM_INLINE Sum sum(const State& state) const { return state; }
};

// In the tail every square stands by itself, of an exact difference.
template <class Squares>
struct PairsAndSingles {
    using State = typename Squares::State;
    using Sum = typename Squares::Sum;
    [[no_unique_address]] Squares squares;

    ZIM_INLINE void add(State& state, S16 x, S16 mean) const
    {
        const S16 difference = subtractSaturated(x, mean);
        squares.add(state, multiplyAddPairs(difference, difference));
    }
    ZIM_INLINE void addSingles(State& state, I8 these, S8 x, S8 mean) const
    {
        squares.add(state, keep(these, exactSquares(x, mean)));
    }
    ZIM_INLINE Sum sum(const State& state) const { return squares.sum(state); }
};

// In the tail too neighbours go together and saturate; only an odd last element is exact and by itself. The last row of
// an odd number of rows has singles.
template <class Squares>
struct Pairs {
    using State = typename Squares::State;
    using Sum = typename Squares::Sum;
    [[no_unique_address]] Squares squares;

    ZIM_INLINE void add(State& state, S16 x, S16 mean) const { oddLast().add(state, x, mean); }
    ZIM_INLINE void addTail(State& state, int rest, S8 x, S8 mean) const
    {
        const S8 inPairs = keep(firstLanes<S8>(rest & ~1), subtractSaturated(x, mean));
        I8 terms = withZeros(multiplyAddPairs(inPairs, inPairs));
        if (rest & 1)  // its lane is not among those of the pairs
            terms |= keep(onlyLane<I8>(rest - 1), exactSquares(x, mean));
        squares.add(state, terms);
    }
    ZIM_INLINE Sum sum(const State& state) const { return squares.sum(state); }
    ZIM_INLINE PairsAndSingles<Squares> oddLast() const { return {squares}; }
};

// Squares of saturating differences, in the tail too, summed exactly.
struct ExactSquareSum {
    using State = UL4[2];
    using Sum = L4;

    ZIM_INLINE void add(State& state, S16 x, S16 mean) const
    {
        const S16 difference = subtractSaturated(x, mean);
        // A pair of squares is at most 2^31, and is taken as unsigned.
        const UL4 pairs = reinterpret<UL4>(multiplyAddPairs(difference, difference));
        state[0] += pairs & splat<UL4>(0xFFFFFFFF);
        state[1] += pairs >> 32;
    }
    ZIM_INLINE void addTail(State& state, int, S8 x, S8 mean) const { add(state, withZeros(x), withZeros(mean)); }
    ZIM_INLINE Sum sum(const State& state) const { return reinterpret<L4>(state[0] + state[1]); }
};

// ---- Finishes: from a constant and a sum, or vectors of both, to the score

// Zero stays zero where the scale is infinite.
template <class Sums>
ZIM_INLINE Sums scaledSum(Sums sum, Zim32f scale)
{
    const Sums scaled = sum * splat<Sums>(scale);
    if constexpr (std::is_arithmetic_v<Sums>)
        return sum == 0 ? sum : scaled;
    else
        return keep(sum != splat<Sums>(0), scaled);
}

// Two orders of the same operations, which differ where the scale is not a normal number.
struct MinusScaledSum {
    Zim32f scale;

    template <class Score>
    ZIM_INLINE Score operator()(Score constant, Score sum) const
    {
        return constant - scaledSum(sum, scale);
    }
};

struct MinusHalvedSum {
    Zim32f scale;

    template <class Score>
    ZIM_INLINE Score operator()(Score constant, Score sum) const
    {
        return constant - scaledSum(sum * splat<Score>(0.5f), scale);
    }
};

ZIM_INLINE Zim32f toFloat(Zim32s v)
{
    return static_cast<Zim32f>(v);
}

// From an integer constant, a float score.
template <class FloatFinish>
struct FloatScore {
    FloatFinish finish;

    template <class Constant, class Sum>
    ZIM_INLINE Sum operator()(Constant constant, Sum sum) const
    {
        return finish(toFloat(constant), sum);
    }
};

// The same as an integer: out of the 32-bit range, -2147483648.
template <class FloatFinish>
struct Truncated {
    FloatScore<FloatFinish> score;

    ZIM_INLINE I4 operator()(I4 constant, F4 sum) const { return toIntTruncated(score(constant, sum)); }
    ZIM_INLINE Zim32s operator()(Zim32s constant, Zim32f sum) const
    {
        return toIntTruncated(splat<F4>(score(constant, sum)))[0];
    }
};

template <class FloatFinish>
struct RoundedSaturated {
    FloatScore<FloatFinish> score;

    ZIM_INLINE Zim32s operator()(Zim32s constant, Zim32f sum) const
    {
        return quantise(splat<F8>(score(constant, sum)), RoundNearest{}, Zim32s{})[0];
    }
};

// From a sum of squares in integers, in extended precision.
struct MinusExactSum {
    Zim64f scale;

    Zim32f operator()(Zim32f constant, Zim64s sum) const
    {
        return static_cast<Zim32f>(constant - static_cast<long double>(sum) * scale);
    }
};

// From a sum that is complete: in integers, wrapping around, or in floats.
struct PlusSum {
    ZIM_INLINE I4 operator()(I4 constant, I4 sum) const { return constant + sum; }
    ZIM_INLINE Zim32s operator()(Zim32s constant, Zim32s sum) const
    {
        return static_cast<Zim32s>(static_cast<Zim32u>(constant) + static_cast<Zim32u>(sum));
    }
    ZIM_INLINE F4 operator()(F4 constant, I4 sum) const { return toFloat(sum) + constant; }
    ZIM_INLINE Zim32f operator()(Zim32f constant, Zim32s sum) const { return toFloat(sum) + constant; }
};

// The same, an integer score as a float.
struct PlusSumAsFloat {
    template <class Constant, class Sum>
    ZIM_INLINE auto operator()(Constant constant, Sum sum) const
    {
        return toFloat(PlusSum{}(constant, sum));
    }
};

// ---- Shapes

// As many scores of type T as there are sums.
template <class T, class Sums>
struct ScoresLikeSums {
    using type = T;
};

template <class T, class Lane, int N>
struct ScoresLikeSums<T, Vec<Lane, N>> {
    using type = Vec<T, N>;
};

// The constant of all rows, and one for each.
template <class T>
struct CommonConstant {
    using Score = T;
    T constant;

    template <class Scores>
    ZIM_INLINE Scores from(std::ptrdiff_t) const
    {
        return splat<Scores>(constant);
    }
};

template <class T>
CommonConstant(T) -> CommonConstant<T>;

template <class T>
struct RowConstants {
    using Score = T;
    const T* constants;

    template <class Scores>
    ZIM_INLINE Scores from(std::ptrdiff_t r) const
    {
        return load<Scores>(constants + r);
    }
};

template <class T>
RowConstants(const T*) -> RowConstants<T>;

// One vector against one Gaussian: operands are the vector, the mean and, where the term has them, inverse variances.
template <class Term, class Finish, class Score, class... Operand>
ZIM_INLINE Score scoreFixedVector(Term term, Finish finish, Score gconst, int len, const Operand*... operands)
{
    return finish(gconst, sumRow(term, len, operands...));
}

// The same for every row, where any operand may be a matrix or shared by all rows. Rows go in pairs, and a term may
// have another arithmetic for the last of an odd number.
template <class Term, class Finish, class Constants, class Keep, class... Operand>
[[gnu::noinline]] void scoreFixedRows(Term term, Finish finish, Constants constants, Keep keepScores, int width,
                                      int height, Operand... operands)
{
    const auto deliver = [=](std::ptrdiff_t r, auto sums) {
        using Scores = typename ScoresLikeSums<typename Constants::Score, decltype(sums)>::type;
        keepScores(r, finish(constants.template from<Scores>(r), sums));
    };
    if constexpr (requires { term.oddLast(); }) {
        const int inPairs = height - height % 2;
        sumRows(term, Groups<4, 1>{}, inPairs, width, deliver, operands...);
        sumGroups<1>(term.oddLast(), inPairs, height, width, deliver, operands...);
    } else {
        sumRows(term, Groups<4, 1>{}, height, width, deliver, operands...);
    }
}

}  // namespace zimsr
