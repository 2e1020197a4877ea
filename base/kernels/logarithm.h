// Natural logarithms in single precision: of floats, of integers, rounded and scaled.
#pragma once

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <limits>

#include <zimsr/types.h>
#include <zimsr/version.h>

#include "zimcore/frame/scaling.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

// What an argument without a logarithm makes of the status.
template <class T>
constexpr ZimStatus logFault(T x)
{
    return x == 0 ? zimStsLogOfZero : x < 0 ? zimStsLogOfNegative : zimStsOk;
}

// The first fault of all lanes decides the status, and keeps it.
template <class V>
[[gnu::noinline]] void noteFirstFault(V x, ZimStatus& status)
{
    for (int lane = 0; lane < V::lanes && status == zimStsOk; ++lane)
        status = logFault(x[lane]);
}

// The count < 8 elements of src, filled up with ones.
template <class V>
ZIM_INLINE V loadFilledUp(const typename V::Lane* src, std::size_t count)
{
    const int lanes = static_cast<int>(count);
    return select(firstLanes<V>(lanes), loadFirst<V>(src, lanes), splat<V>(1));
}

// Calls visit(i, x) with the vectors of a row, i = 0, 8, ...; the last one is filled up with ones.
template <class T, class Visit>
ZIM_INLINE void forEachVector(const T* src, std::size_t len, Visit visit)
{
    using V = Vec<T, 8>;
    std::size_t i = 0;
    for (; i + 8 <= len; i += 8)
        visit(i, load<V>(src + i));
    if (i < len)
        visit(i, loadFilledUp<V>(src + i, len - i));
}

// dst[i] = operation(src[i]), each element once and in order.
template <class T, class Operation>
ZIM_INLINE void mapInOrder(const T* src, T* dst, std::size_t len, Operation operation)
{
    forEachVector(src, len, [=](std::size_t i, auto x) ZIM_INLINE_LAMBDA {
        if (len - i >= 8)
            store(dst + i, operation(x));
        else
            storeFirst(dst + i, operation(x), static_cast<int>(len - i));
    });
}

// ---- The logarithm of a positive normal x = m 2^e, sqrt(1/2) <= m < sqrt(2), in two steps. Contract: these
// operations, in this order, in Zim32f.

struct SplitFloat {
    F8 m;
    I8 e;
};

ZIM_INLINE SplitFloat splitFloat(F8 x)
{
    constexpr Zim32s sqrtHalf = 0x3F3504F3;
    const I8 bits = reinterpret<I8>(x);
    const I8 e = (bits - splat<I8>(sqrtHalf)) >> 23;
    return {reinterpret<F8>(bits - (e << 23)), e};
}

struct ReducedLn {
    F8 z;     // (m - 1) / (m + 1)
    F8 eLn2;  // e ln2
};

ZIM_INLINE ReducedLn reduceLn(F8 x, I8 exponentOffset = splat<I8>(0))
{
    const auto [m, e] = splitFloat(x);
    const F8 one = splat<F8>(1);
    return {(m - one) / (m + one), toFloat(e + exponentOffset) * splat<F8>(0.6931472f)};
}

ZIM_INLINE F8 lnOfReduced(ReducedLn x)
{
    constexpr auto coefficient = [](Zim32u bits) { return splat<F8>(std::bit_cast<Zim32f>(bits)); };
    const F8 w = x.z * x.z;
    const F8 p = coefficient(0x40000000) +
                 w * (coefficient(0x3F2AAAAA) +
                      w * (coefficient(0x3ECCCD95) + w * (coefficient(0x3E920CCA) + w * coefficient(0x3E7353DA))));
    return x.eLn2 + x.z * p;
}

template <class V>
ZIM_INLINE typename V::Mask isNormalPositive(V x)
{
    using Limits = std::numeric_limits<typename V::Lane>;
    return (x >= splat<V>(Limits::min())) & (x <= splat<V>(Limits::max()));
}

// dst[i] = second(first(src[i])), block by block. A block for which first has cleared a lane of `ordinary` is made by
// ofAny(src[i]) instead: between the two loops, src is still whole if it is also dst. Two loops with a short chain of
// operations each have more elements under way at once than one with a long chain.
template <class T, class First, class Second, class OfAny>
ZIM_INLINE void mapBlocks(const T* src, T* dst, std::size_t len, First first, Second second, OfAny ofAny)
{
    using V = Vec<T, 8>;
    constexpr std::size_t blockLength = 256;
    I8 ordinary;
    decltype(first(V{}, ordinary)) steps[blockLength / 8];
    while (len > 0) {
        const std::size_t count = std::min(blockLength, len), vectors = count / 8;
        const bool uneven = count % 8 != 0;
        ordinary = ~splat<I8>(0);
        for (std::size_t i = 0; i < vectors; ++i)
            steps[i] = first(load<V>(src + 8 * i), ordinary);
        // What is left is the last vector, stepped back to end with the block.
        if (uneven)
            steps[vectors] = first(vectors > 0 ? load<V>(src + count - 8) : loadFilledUp<V>(src, count), ordinary);
        if (allSet(ordinary)) [[likely]] {
            for (std::size_t i = 0; i < vectors; ++i)
                store(dst + 8 * i, second(steps[i]));
            if (vectors == 0)
                storeFirst(dst, second(steps[0]), static_cast<int>(count));
            else if (uneven)
                store(dst + count - 8, second(steps[vectors]));
        } else {
            mapInOrder(src, dst, count, ofAny);
        }
        src += count;
        dst += count;
        len -= count;
    }
}

// ---- Of floats

[[gnu::noinline]] inline F8 lnOfAny(F8 x, ZimStatus& status)
{
    using Limits = std::numeric_limits<Zim32f>;
    noteFirstFault(x, status);
    const F8 zero = splat<F8>(0);
    const auto subnormal = x < splat<F8>(Limits::min());
    const F8 scaled = select(subnormal, x * splat<F8>(0x1p23f), x);
    const F8 ln = lnOfReduced(reduceLn(scaled, keep(subnormal, splat<I8>(-23))));
    const F8 substitute = select(x == zero, splat<F8>(zimConstantOfINF_NEG_32f), splat<F8>(zimConstantOfNAN_32f));
    const auto hasLogarithm = (x > zero) & (x <= splat<F8>(Limits::max()));
    return select(hasLogarithm, ln, select(x <= zero, substitute, x));  // plus infinity and NaN stay
}

inline ZimStatus lnInPlace(Zim32f* srcDst, std::size_t len)
{
    ZimStatus status = zimStsOk;
    const auto reduce = [](F8 x, I8& ordinary) ZIM_INLINE_LAMBDA {
        ordinary &= isNormalPositive(x);
        return reduceLn(x);
    };
    mapBlocks(srcDst, srcDst, len, reduce, lnOfReduced, [&](F8 x) { return lnOfAny(x, status); });
    return status;
}

// ---- Of integers

// The greatest integers whose logarithms round to 0, 1, 2, ..., that is floor(e^(k + 1/2)); all above have 21.
inline constexpr std::array<Zim32s, 21> roundedLnBounds = {
    1,     4,      12,     33,      90,      244,      665,      1808,      4914,      13359,    36315,
    98715, 268337, 729416, 1982759, 5389698, 14650719, 39824784, 108254987, 294267566, 799902177};

ZIM_INLINE I8 roundedLnByBounds(I8 x)
{
    I8 passed = splat<I8>(0);
    for (const Zim32s bound : roundedLnBounds)
        passed += x > splat<I8>(bound);
    return -passed;
}

// An approximation within 0.00007 (minimax, by Remez's algorithm) rounds to the same integer, except near a half.
ZIM_INLINE I8 roundedLn(I8 x, I8& certain)
{
    const auto [m, e] = splitFloat(toFloat(x));
    const F8 f = m - splat<F8>(1), f2 = f * f;
    const F8 lnOfM = (splat<F8>(3.3017770e-5f) + splat<F8>(0.99926774f) * f) +
                     f2 * ((splat<F8>(-0.50316601f) + splat<F8>(0.35966394f) * f) + splat<F8>(-0.22628744f) * f2);
    const F8 ln = toFloat(e) * splat<F8>(0.6931472f) + lnOfM;
    const I8 rounded = toIntRounded(ln);
    const F8 off = ln - toFloat(rounded), near = splat<F8>(0.4999f);
    certain &= (off < near) & (off > -near);
    return rounded;
}

ZIM_INLINE I8 isPositive(I8 x)
{
    return x > splat<I8>(0);
}

// Elements of 0 and below become the least integer.
ZIM_INLINE I8 substituteFaults(I8 x, I8 ln, ZimStatus& status)
{
    noteFirstFault(x, status);
    return select(isPositive(x), ln, splat<I8>(std::numeric_limits<Zim32s>::min()));
}

inline ZimStatus lnShiftedRight(const Zim32s* src, Zim32s* dst, std::size_t len, int scaleFactor)
{
    const int shift = std::min(scaleFactor, 31);
    ZimStatus status = zimStsOk;
    const auto rounded = [](I8 x, I8& ordinary) ZIM_INLINE_LAMBDA {
        ordinary &= isPositive(x);
        return roundedLn(x, ordinary);
    };
    const auto shifted = [=](I8 ln) ZIM_INLINE_LAMBDA { return ln >> shift; };
    mapBlocks(src, dst, len, rounded, shifted, [&](I8 x) {
        I8 certain = ~splat<I8>(0);
        const I8 ln = roundedLn(x, certain);
        return substituteFaults(x, shifted(allSet(certain) ? ln : roundedLnByBounds(x)), status);
    });
    return status;
}

inline ZimStatus lnScaledUp(const Zim32s* src, Zim32s* dst, std::size_t len, int scaleFactor)
{
    const F8 scale = splat<F8>(GetScale_32s32f(std::max(scaleFactor, -127)));
    const F8 limit = splat<F8>(2147483520.0f);
    ZimStatus status = zimStsOk;
    const auto reduce = [](I8 x, I8& ordinary) ZIM_INLINE_LAMBDA {
        ordinary &= isPositive(x);
        return reduceLn(toFloat(x));
    };
    const auto quantised = [=](ReducedLn x)
                               ZIM_INLINE_LAMBDA { return toIntRounded(min(lnOfReduced(x) * scale, limit)); };
    mapBlocks(src, dst, len, reduce, quantised,
              [&](I8 x) { return substituteFaults(x, quantised(reduceLn(toFloat(x))), status); });
    return status;
}

}  // namespace zimsr
