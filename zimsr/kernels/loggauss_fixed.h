// Log-likelihood of 16-bit features under 16-bit diagonal Gaussians. As in floating point, a function is a term, a
// finish and a shape, and here the shape decides a little of the term too: what is rounded or shifted by itself.
//
// Elements are taken by sixteen, then by eight, then the tail of one to seven. The difference of features and means
// saturates in full groups of eight; each term says how it is in the tail.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// ---- Gathering. Of a row, a term fills a State, which comes to a vector of sums: lanes still to be added. It takes
// elements by sixteen; from there on two rows share the lanes of a state, and of each it takes eight at once, and the
// tail. A row by itself has half the lanes. N elements taken at once are for N / 2 lanes of a state.

// Of the exact differences, as signed 32-bit products, which wrap around.
ZIM_INLINE I8 exactSquares(S8 x, S8 mean)
{
    const I8 difference = widen(x) - widen(mean);
    return difference * difference;
}

// The same of the first four elements of each eight.
template <int N>
ZIM_INLINE Vec<Zim32s, N / 2> exactSquaresInFront(Vec<Zim16s, N> x, Vec<Zim16s, N> mean)
{
    constexpr int plusMinus = 1 - (1 << 16);  // 1 in the lower half, -1 in the upper
    const auto difference = multiplyAddPairs(unpack(x, mean), splatUnpacked<N>(plusMinus)).low;
    return difference * difference;
}

// The last elements of a row, among eight that are loaded: at their end, or, of a row that has no more, at their start.
struct Tail {
    int start, rest;

    // count of them from number first on.
    template <int N>
    ZIM_INLINE Vec<Zim16s, N> inFront(int first, int count, Vec<Zim16s, N> v) const
    {
        return lanesInFront(v, start + first, count);
    }
    // Calls take with the group of four, the group of two and the single element that there are.
    template <class Take, class... V>
    ZIM_INLINE void inGroups(Take take, V... v) const
    {
        if (rest & 4)
            take(inFront(0, 4, v)...);
        if (rest & 2)
            take(inFront(rest & 4, 2, v)...);
        if (rest & 1)
            take(inFront(rest & 6, 1, v)...);
    }
};

// Eight elements of row i, or of the two rows that share a state.
template <int rows, class T>
ZIM_INLINE auto loadEight(Shared<T> shared, int, std::ptrdiff_t j)
{
    return loadInEachEight<8 * rows>(shared.vector + j);
}

template <int rows, class T, int count>
ZIM_INLINE auto loadEight(const RowPointers<T, count>& row, int i, std::ptrdiff_t j)
{
    if constexpr (rows == 1)
        return loadLanes<8>(row[i] + j);
    else
        return loadEights(row[i] + j, row[i + 2] + j);
}

template <int rows, class Row>
ZIM_INLINE auto loadFew(const Row& row, int i, int count)
{
    if constexpr (rows == 1)
        return loadFirstLanes<8>(row[i], count);
    else
        return join(loadFirstLanes<8>(row[i], count), loadFirstLanes<8>(row[i + 2], count));
}

template <int rows, class Term, class State, class... Row>
ZIM_INLINE void addTail(Term term, State& state, int i, int width, const Row&... row)
{
    const int rest = width & 7;
    if (width < 8)
        term.addTail(state, Tail{0, rest}, loadFew<rows>(row, i, rest)...);
    else if (rest)
        term.addTail(state, Tail{8 - rest, rest}, loadEight<rows>(row, i, width - 8)...);
}

// Each element of the tail by itself.
template <class Term, int count, class State, class... Row>
ZIM_INLINE void addSingles(Term term, State (&state)[count], int width, const Row&... rows)
{
    const int rest = width & 7;
    if (width < 8) {
#pragma GCC unroll 4
        for (int i = 0; i < count; ++i)
            term.addSingles(state[i], firstLanes<I8>(rest), loadFirstLanes<8>(rows[i], rest)...);
    } else if (rest) {
#pragma GCC unroll 4
        for (int i = 0; i < count; ++i)
            term.addSingles(state[i], lastLanes<I8>(rest), loadLanes<8>(rows[i] + (width - 8))...);
    }
}

template <int count, class Term, class... Row>
requires requires
{
    typename Term::template State<8>;
}
ZIM_INLINE auto foldedTerms(Term term, int width, const Row&... rows)
{
    typename Term::template State<8> state[count] = {};
    for (std::ptrdiff_t j = 0; j + 16 <= width; j += 16) {
#pragma GCC unroll 4
        for (int i = 0; i < count; ++i)
            term.add(state[i], loadLanes<16>(rows[i] + j)...);
    }
    constexpr bool singles = requires
    {
        term.addSingles(state[0], I8{}, loadLanes<8>(rows[0])...);
    };
    if constexpr (singles)
        addSingles(term, state, width, rows...);
    const auto sumRest = [&]<int together>(auto folded, int i) ZIM_INLINE_LAMBDA {
        if (width & 8)
            term.add(folded, loadEight<together>(rows, i, width & ~15)...);
        if constexpr (!singles)
            addTail<together>(term, folded, i, width, rows...);
        return term.sum(folded);
    };
    if constexpr (count == 1) {
        const auto sum = sumRest.template operator()<1>(foldHalves(state[0]), 0);
        return Folded<std::remove_const_t<decltype(sum)>, 1>{{sum}};
    } else {
        static_assert(count == 4);
        return foldPairs(sumRest.template operator()<2>(addHalves(state[0], state[2]), 0),
                         sumRest.template operator()<2>(addHalves(state[1], state[3]), 1));
    }
}

// ---- Terms that are summed as floats or exactly. Those of the integer arithmetic are in loggauss_low.h.

// Each square a float, times the inverse variance where there is one, which is a 16-bit number or a float. Differences
// in the tail are exact. Floats are made from lanes raised to the upper half of 32 bits, as the processor unpacks them,
// so that all is larger by a power of two until the end: nothing is rounded otherwise for it.
template <class... InvVar>
struct FloatSquares {
    template <int lanes>
    using State = Vec<Zim32f, lanes>;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean, Vec<InvVar, N>... invVar) const
    {
        const auto difference = raised(subtractSaturated(x, mean));
        state += ((difference.low * difference.low) * ... * raised(invVar).low);
        state += ((difference.high * difference.high) * ... * raised(invVar).high);
    }
    ZIM_INLINE void addSingles(F8& state, I8 these, S8 x, S8 mean, Vec<InvVar, 8>... invVar) const
    {
        state += raisedProduct(these, toFloat(exactSquares(x, mean)), toFloats(invVar)...);
    }
    template <int lanes>
    ZIM_INLINE State<lanes> sum(State<lanes> state) const
    {
        return state * splat<State<lanes>>(unit);
    }

private:
    template <int lanes>
    struct Halves {
        State<lanes> low, high;
    };

    template <int N>
    static ZIM_INLINE Halves<N / 2> raised(Vec<Zim16s, N> v)
    {
        const Unpacked<N> wide = unpack(splat<Vec<Zim16s, N>>(0), v);
        return {toFloat(wide.low), toFloat(wide.high)};
    }
    // Floats are as they are, in the order in which shorts unpack.
    static ZIM_INLINE Halves<8> raised(Vec<Zim32f, 16> v)
    {
        return {shuffle<0, 1, 2, 3, 8, 9, 10, 11>(lowHalf(v), highHalf(v)),
                shuffle<4, 5, 6, 7, 12, 13, 14, 15>(lowHalf(v), highHalf(v))};
    }
    static ZIM_INLINE Halves<4> raised(Vec<Zim32f, 8> v) { return {lowHalf(v), highHalf(v)}; }

    static ZIM_INLINE F8 toFloats(S8 v) { return toFloat(widen(v)); }
    static ZIM_INLINE F8 toFloats(F8 v) { return v; }

    // Rather the inverse variances are raised and selected, which several rows may share.
    static ZIM_INLINE F8 raisedProduct(I8 these, F8 squares) { return keep(these, squares) * splat<F8>(1 / unit); }
    static ZIM_INLINE F8 raisedProduct(I8 these, F8 squares, F8 invVar)
    {
        return squares * keep(these, invVar * splat<F8>(1 / unit));
    }

    // What a term must be multiplied with to lower it again.
    static constexpr Zim32f unit = (0x1p-32f * ... * (sizeof(InvVar) == 2 ? 0x1p-16f : 1.0f));
};

// Without variances, the squares of two neighbours are added as one signed 32-bit integer, which may wrap around. Each
// of these integers becomes a float, or what else Squares makes of it.
struct AsFloats {
    template <int lanes>
    using State = Vec<Zim32f, lanes>;

    template <int lanes>
    ZIM_INLINE void add(State<lanes>& state, Vec<Zim32s, lanes> squares) const
    {
        state += toFloat(squares);
    }
    template <int lanes>
    ZIM_INLINE State<lanes> sum(State<lanes> state) const
    {
        return state;
    }
};

// In the tail every square stands by itself, of an exact difference.
template <class Squares>
struct PairsAndSingles {
    template <int lanes>
    using State = typename Squares::template State<lanes>;
    [[no_unique_address]] Squares squares;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean) const
    {
        const auto difference = subtractSaturated(x, mean);
        squares.add(state, multiplyAddPairs(difference, difference));
    }
    ZIM_INLINE void addSingles(State<8>& state, I8 these, S8 x, S8 mean) const
    {
        squares.add(state, keep(these, exactSquares(x, mean)));
    }
    template <class S>
    ZIM_INLINE auto sum(S state) const
    {
        return squares.sum(state);
    }
};

// In the tail too neighbours go together and saturate; only an odd last element is exact and by itself. The last row of
// an odd number of rows has singles.
template <class Squares>
struct Pairs {
    template <int lanes>
    using State = typename Squares::template State<lanes>;
    [[no_unique_address]] Squares squares;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean) const
    {
        oddLast().add(state, x, mean);
    }
    template <int N>
    ZIM_INLINE void addTail(State<N / 2>& state, Tail tail, Vec<Zim16s, N> x, Vec<Zim16s, N> mean) const
    {
        const int inPairs = tail.rest & ~1;
        if (inPairs)
            add(state, tail.inFront(0, inPairs, x), tail.inFront(0, inPairs, mean));
        if (tail.rest & 1)
            squares.add(state, exactSquaresInFront(tail.inFront(inPairs, 1, x), tail.inFront(inPairs, 1, mean)));
    }
    template <class S>
    ZIM_INLINE auto sum(S state) const
    {
        return squares.sum(state);
    }
    ZIM_INLINE PairsAndSingles<Squares> oddLast() const { return {squares}; }
};

// Squares of saturating differences, in the tail too, summed exactly.
struct ExactSquareSum {
    template <int lanes>
    using State = Vec<std::uint64_t, lanes / 2>;

    template <int N>
    ZIM_INLINE void add(State<N / 2>& state, Vec<Zim16s, N> x, Vec<Zim16s, N> mean) const
    {
        const auto difference = subtractSaturated(x, mean);
        // A pair of squares is at most 2^31, and is taken as unsigned.
        const auto pairs = reinterpret<State<N / 2>>(multiplyAddPairs(difference, difference));
        state += (pairs & splat<State<N / 2>>(0xFFFFFFFF)) + (pairs >> 32);
    }
    template <int N>
    ZIM_INLINE void addTail(State<N / 2>& state, Tail tail, Vec<Zim16s, N> x, Vec<Zim16s, N> mean) const
    {
        add(state, tail.inFront(0, tail.rest, x), tail.inFront(0, tail.rest, mean));
    }
    ZIM_INLINE Vec<std::int64_t, 2> sum(State<4> state) const { return reinterpret<Vec<std::int64_t, 2>>(state); }
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
