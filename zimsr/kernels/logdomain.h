// Sums of probabilities that are held as logarithms: ln(exp(a) + exp(b)) = hi + c(lo - hi), where the correction
// c(d) = ln(1 + exp(d)) is a polynomial on each of three segments. Lanes find their segment without a branch.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/arithmetic.h"
#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "zimcore/frame/scaling.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/logdomain_tables.h"

namespace zimsr {

// ---- The two levels of precision

struct FloatLevel {
    static constexpr Zim64f zero = ZIMSLOGZERO_F, small = ZIMSLOGSMALL_F, negligible = ZIMSMINLOGEXP_F;
    static constexpr std::array origins = {0.0, INT_S1_F, INT_S2_F};
    static constexpr std::array polynomials = {P1_F, P2_F, P3_F};
};

struct DoubleLevel {
    static constexpr Zim64f zero = LOGZERO, small = LOGSMALL, negligible = MINLOGEXP;
    static constexpr std::array origins = {0.0, INT_S1, INT_S2};
    static constexpr std::array polynomials = {P1, P2, P3};
};

template <class Level, class Lane>
inline constexpr ThreeValues<Lane> segmentOrigins{Lane(Level::origins[0]), Lane(Level::origins[1]),
                                                  Lane(Level::origins[2])};

// The three segments' values of each coefficient side by side, in the precision of the lanes.
template <class Level, class Lane>
inline constexpr auto segmentCoefficients = [] {
    constexpr auto& polynomials = Level::polynomials;
    std::array<ThreeValues<Lane>, polynomials[0].size()> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = {Lane(polynomials[0][i]), Lane(polynomials[1][i]), Lane(polynomials[2][i])};
    return table;
}();

// ---- ln(exp(a) + exp(b))

// Two operands, and what is known of their sum before the correction is.
template <class Level, class V>
struct LogOperands {
    using Lane = typename V::Lane;

    V greater, difference;
    typename V::Mask negligible;
    OneOfThree<V> segment;

    ZIM_INLINE LogOperands(V a, V b)
        : greater(max(a, b)),
          difference(min(a, b) - greater),
          negligible(difference < splat<V>(static_cast<Lane>(Level::negligible))),
          segment(difference <= splat<V>(static_cast<Lane>(Level::origins[1])),
                  difference <= splat<V>(static_cast<Lane>(Level::origins[2])))
    {
    }

    // What the segment's polynomial is in.
    ZIM_INLINE V t() const { return difference - segment(segmentOrigins<Level, Lane>); }

    // The sum where the smaller operand does not change it. The maximum is its second operand where that is NaN.
    ZIM_INLINE V alone() const
    {
        const V zero = splat<V>(static_cast<Lane>(Level::zero));
        if constexpr (Level::zero == Level::small)
            return max(zero, greater);
        else
            return select(greater < splat<V>(static_cast<Lane>(Level::small)), zero, greater);
    }

    // A lane far below is selected away: its polynomial may have overflowed.
    ZIM_INLINE V sum(V correction) const { return select(negligible, alone(), greater + correction); }
};

// The segment's polynomial in t, by Horner's rule, whose roundings grow least here. The loop stays a loop: unrolled,
// the compiler would evaluate one register after the other, and the processor would wait for each.
template <class Level, class V>
ZIM_INLINE V segmentPolynomial(const OneOfThree<V>& segment, V t)
{
    constexpr auto& coefficients = segmentCoefficients<Level, typename V::Lane>;
    V value = segment(coefficients[0]);
#pragma GCC unroll 1
    for (std::size_t i = 1; i < coefficients.size(); ++i)
        value = value * t + segment(coefficients[i]);
    return value;
}

template <class Level, class V>
ZIM_INLINE V logAdd(V a, V b)
{
    const LogOperands<Level, V> operands(a, b);
    if (allSet(operands.negligible))
        return operands.alone();
    return operands.sum(segmentPolynomial<Level>(operands.segment, operands.t()));
}

// ---- The same in a chain, where each addition waits for the one before it

// Polynomials from the highest power down: by Horner's rule, and by pairs of powers, which takes fewer steps
// (Estrin 1960).
template <std::size_t count, class V>
ZIM_INLINE V hornersRule(const V (&coefficients)[count], V t)
{
    V value = coefficients[0];
#pragma GCC unroll 32
    for (std::size_t i = 1; i < count; ++i)
        value = value * t + coefficients[i];
    return value;
}

template <std::size_t count, class V>
ZIM_INLINE V estrinsScheme(const V (&coefficients)[count], V t)
{
    if constexpr (count == 1) {
        return coefficients[0];
    } else {
        constexpr std::size_t odd = count % 2;
        V pairs[count / 2 + odd];
        pairs[0] = coefficients[0];
#pragma GCC unroll 32
        for (std::size_t i = odd; i < count / 2 + odd; ++i)
            pairs[i] = coefficients[2 * i - odd] * t + coefficients[2 * i - odd + 1];
        return estrinsScheme(pairs, t * t);
    }
}

// The quick sum nearly always has the bits of Horner's, which takes twice as long. By predicting the branch the
// processor goes on from the quick one, and checks it aside. Where registers are narrow, the choice of coefficients
// keeps it busy enough.
template <class Level, class V>
ZIM_INLINE V logAddToRunning(V a, V running)
{
    if constexpr (registerBytes < 32)
        return logAdd<Level>(a, running);
    constexpr auto& table = segmentCoefficients<Level, typename V::Lane>;
    const LogOperands<Level, V> operands(a, running);
    if (allSet(operands.negligible))
        return operands.alone();
    V coefficients[table.size()];
#pragma GCC unroll 32
    for (std::size_t i = 0; i < table.size(); ++i)
        coefficients[i] = operands.segment(table[i]);
    const V t = operands.t();
    const V quick = operands.sum(estrinsScheme(coefficients, t)), sum = operands.sum(hornersRule(coefficients, t));
    if (anySet(quick != sum)) [[unlikely]]
        return sum;
    return quick;
}

// One more element of a running sum, at float level but in Zim64f.
inline Zim32f logAddAccurate(Zim64f value, Zim32f sum)
{
    return static_cast<Zim32f>(logAddToRunning<FloatLevel>(splat<D2>(value), splat<D2>(sum))[0]);
}

// One pair in 80-bit extended precision, at float level.
inline Zim32f logAddExtended(Zim32f a, Zim32f b)
{
    const long double greater = std::max(b, a), difference = std::min(b, a) - greater;
    if (difference < ZIMSMINLOGEXP_F)
        return static_cast<Zim32f>(greater < ZIMSLOGSMALL_F ? ZIMSLOGZERO_F : greater);
    const Zim64f* p[3];
    GetLogAddConst_F(&p[0], &p[1], &p[2]);
    const std::size_t segment = std::size_t{difference <= INT_S1_F} + std::size_t{difference <= INT_S2_F};
    const Zim64f* c = p[segment];
    const long double t = difference - FloatLevel::origins[segment], square = t * t;
    long double even = c[0], odd = c[1];
    for (std::size_t i = 2; i < 10; i += 2) {
        even = even * square + c[i];
        odd = odd * square + c[i + 1];
    }
    even = even * square + c[10];
    return static_cast<Zim32f>(greater + (even + odd * t));
}

// ---- Vectors, element by element: srcDst[i] = logAdd(src[i], srcDst[i])

struct LogAddFast {
    template <int N>
    ZIM_INLINE Vec<Zim32f, N> operator()(Vec<Zim32f, N> a, Vec<Zim32f, N> b) const
    {
        return logAdd<FloatLevel>(a, b);
    }
};

struct LogAddAccurate {
    template <int N>
    ZIM_INLINE Vec<Zim32f, N> operator()(Vec<Zim32f, N> a, Vec<Zim32f, N> b) const
    {
        return narrow(logAdd<FloatLevel>(widen(a), widen(b)));
    }
};

struct LogAddDouble {
    template <int N>
    ZIM_INLINE Vec<Zim64f, N> operator()(Vec<Zim64f, N> a, Vec<Zim64f, N> b) const
    {
        return logAdd<DoubleLevel>(a, b);
    }
};

// Long vectors go by four registers of Lane, whose polynomials hide each other's waits.
template <class Lane, class Add, class T>
inline void addElements(Add add, const T* src, T* srcDst, std::size_t len)
{
    constexpr int lanes = 4 * registerBytes / static_cast<int>(sizeof(Lane));
    if (len < lanes)
        return mapElements<4>(srcDst, len, add, src, srcDst);
    const auto sums = [=](std::size_t i) ZIM_INLINE_LAMBDA {
        return add(load<Vec<T, lanes>>(src + i), load<Vec<T, lanes>>(srcDst + i));
    };
    // The last vector is stepped back, and so is computed before anything is written.
    const std::size_t last = len - lanes;
    const auto lastSums = sums(last);
    for (std::size_t i = 0; i < last; i += lanes)
        store(srcDst + i, sums(i));
    store(srcDst + last, lastSums);
}

inline void logAddFast(const Zim32f* src, Zim32f* srcDst, std::size_t len)
{
    addElements<Zim32f>(LogAddFast{}, src, srcDst, len);
}

inline void logAddAccurate(const Zim32f* src, Zim32f* srcDst, std::size_t len)
{
    addElements<Zim64f>(LogAddAccurate{}, src, srcDst, len);
}

inline void logAddExtended(const Zim32f* src, Zim32f* srcDst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        srcDst[i] = logAddExtended(src[i], srcDst[i]);
}

inline void logAddAccurate(const Zim64f* src, Zim64f* srcDst, std::size_t len)
{
    addElements<Zim64f>(LogAddDouble{}, src, srcDst, len);
}

// ---- The sum of a vector: as many running values as V has lanes, merged at the end; one for a short vector

template <class Level, class V>
inline typename V::Lane logSum(const typename V::Lane* src, std::size_t len)
{
    constexpr std::size_t lanes = V::lanes;
    V sum = splat<V>(src[0]);
    std::size_t i = 1;
    if (len >= 2 * lanes) {
        sum = load<V>(src);
        for (i = lanes; i + lanes <= len; i += lanes)
            sum = logAddToRunning<Level>(load<V>(src + i), sum);
        if constexpr (lanes == 4)
            sum = logAddToRunning<Level>(shuffle<2, 3, 2, 3>(sum), shuffle<0, 1, 0, 1>(sum));
        if constexpr (lanes == 4)
            sum = logAddToRunning<Level>(shuffle<1, 1, 1, 1>(sum), shuffle<0, 0, 0, 0>(sum));
        else
            sum = logAddToRunning<Level>(shuffle<1, 1>(sum), shuffle<0, 0>(sum));
    }
    for (; i < len; ++i)
        sum = logAddToRunning<Level>(splat<V>(src[i]), sum);
    return sum[0];
}

inline Zim32f logSum(const Zim32f* src, std::size_t len)
{
    return logSum<FloatLevel, F4>(src, len);
}

inline Zim64f logSum(const Zim64f* src, std::size_t len)
{
    return logSum<DoubleLevel, D2>(src, len);
}

}  // namespace zimsr
