// Sums of logarithms, each the logarithm of a product of significands.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <limits>
#include <type_traits>

#include <zimsr/types.h>
#include <zimsr/version.h>

#include "base/kernels/logarithm.h"
#include "zimcore/elementary/log.h"

namespace zimsr {

struct SumOfLogs {
    Zim64f value;
    ZimStatus status;
};

namespace sum_of_logs {

inline constexpr std::size_t blockLength = 512;

ZIM_INLINE D8 toDouble(F8 v)
{
    return join(widen(lowHalf(v)), widen(highHalf(v)));
}

ZIM_INLINE D8 toDouble(D8 v)
{
    return v;
}

ZIM_INLINE Zim64f productOfLanes(D8 v)
{
    const D4 four = lowHalf(v) * highHalf(v);
    const D2 two = lowHalf(four) * highHalf(four);
    return two[0] * two[1];
}

// The product of a block's elements is product * 2^exponent, if all of them are positive and normal.
struct BlockProduct {
    Zim64f product;
    Zim64s exponent;
    bool ordinary;
};

template <class Float>
ZIM_INLINE BlockProduct multiplyBlock(const Float* src, std::size_t len)
{
    using V = Vec<Float, 8>;
    using Bits = Vec<std::make_unsigned_t<typename V::Mask::Lane>, 8>;
    using Limits = std::numeric_limits<Float>;
    constexpr int significandBits = Limits::digits - 1;
    const Bits significand = splat<Bits>((typename Bits::Lane{1} << significandBits) - 1);
    const Bits ofOne = reinterpret<Bits>(splat<V>(1));

    D8 product = splat<D8>(1);
    Bits exponents = splat<Bits>(0);
    typename V::Mask ordinary = ~splat<typename V::Mask>(0);
    forEachVector(src, len, [&](std::size_t, V x) ZIM_INLINE_LAMBDA {
        ordinary = ordinary & isNormalPositive(x);
        const Bits bits = reinterpret<Bits>(x);
        exponents += bits >> significandBits;
        product *= toDouble(reinterpret<V>((bits & significand) | ofOne));
    });

    const std::size_t vectors = (len + 7) / 8;
    Zim64s exponent = -static_cast<Zim64s>(8 * vectors) * (Limits::max_exponent - 1);
    exponent += static_cast<Zim64s>(sumLanes(exponents));
    return {productOfLanes(product), exponent, allSet(ordinary)};
}

// A block made ordinary: what its other elements do to the sum is taken out of it.
template <class Float>
struct OrdinaryBlock {
    Float elements[blockLength];
    Zim64s exponent = 0;    // taken out of subnormal elements
    bool infinite = false;  // some element is
    bool complete = true;   // no element ends the sum
    SumOfLogs end = {};

    OrdinaryBlock(const Float* src, std::size_t len)
    {
        using Limits = std::numeric_limits<Float>;
        constexpr int digits = Limits::digits;
        for (std::size_t i = 0; i < len; ++i) {
            elements[i] = src[i];
            if (!(src[i] > 0)) {
                complete = false;
                end = {src[i] == 0 ? zimConstantOfINF_64f : zimConstantOfNAN_64f, logFault(src[i])};
                return;
            }
            if (src[i] < Limits::min()) {
                elements[i] *= static_cast<Float>(Zim64s{1} << digits);
                exponent -= digits;
            } else if (src[i] > Limits::max()) {
                elements[i] = 1;
                infinite = true;
            }
        }
    }
};

}  // namespace sum_of_logs

template <class Float>
inline SumOfLogs sumOfLogs(const Float* src, std::size_t len)
{
    using namespace sum_of_logs;
    Zim64f sum = 0;
    bool infinite = false;
    for (std::size_t begin = 0; begin < len; begin += blockLength) {
        const std::size_t count = std::min(blockLength, len - begin);
        BlockProduct block = multiplyBlock(src + begin, count);
        if (!block.ordinary) [[unlikely]] {
            const OrdinaryBlock<Float> replaced(src + begin, count);
            if (!replaced.complete)
                return replaced.end;
            infinite = infinite || replaced.infinite;
            block = multiplyBlock(replaced.elements, count);
            block.exponent += replaced.exponent;
        }
        sum += elementary::logScaled(block.product, static_cast<Zim64f>(block.exponent));
    }
    return {infinite ? zimConstantOfINF_64f : sum, zimStsOk};
}

}  // namespace zimsr
