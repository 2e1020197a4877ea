// Log-domain sums of scaled integers: x stands for x * 2^-scaleFactor. The sums are formed in floats, block by block.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/arithmetic.h"
#include "base/kernels/convert.h"
#include "zimcore/frame/scaling.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/logdomain.h"

namespace zimsr {

inline constexpr std::size_t logDomainBlock = 128;

inline Zim32f logDomainScale(int scaleFactor)
{
    return static_cast<Zim32f>(GetScale_32s64f(scaleFactor));
}

// srcDst[i] = the sum of src[i] and srcDst[i], formed by addBlock(src, srcDst, len) on floats.
template <class Int, class AddBlock>
inline void logAddScaled(const Int* src, Int* srcDst, std::size_t len, int scaleFactor, AddBlock addBlock)
{
    alignas(32) Zim32f added[logDomainBlock], sums[logDomainBlock];
    const Zim32f scale = logDomainScale(scaleFactor);
    const int backward = -std::clamp(scaleFactor, -1024, 1024);
    for (std::size_t done = 0; done < len; done += logDomainBlock) {
        const std::size_t count = std::min(logDomainBlock, len - done);
        convertScaled(src + done, added, count, scale);
        convertScaled(srcDst + done, sums, count, scale);
        addBlock(added, sums, count);
        quantiseBlock(sums, srcDst + done, count, 0, backward);
    }
}

// Up to six elements: each exact in Zim64f, the running value rounded to Zim32f.
template <class Int>
inline Zim32f logSumOfFew(const Int* src, std::size_t len, Zim64f scale)
{
    Zim32f sum = static_cast<Zim32f>(src[0] * scale);
    for (std::size_t i = 1; i < len; ++i)
        sum = logAddAccurate(src[i] * scale, sum);
    return sum;
}

// From the second block on, the sum so far stands in front of the block.
template <class Int>
inline Zim32f logSumByBlocks(const Int* src, std::size_t len, Zim32f scale)
{
    alignas(32) Zim32f values[1 + logDomainBlock];
    Zim32f* const block = values + 1;
    Zim32f sum = 0;
    for (std::size_t done = 0; done < len; done += logDomainBlock) {
        const std::size_t count = std::min(logDomainBlock, len - done);
        convertBlock(src + done, block, count);
        multiplyByConstantInPlace(scale, block, count);
        values[0] = sum;
        sum = done == 0 ? logSum(block, count) : logSum(values, 1 + count);
    }
    return sum;
}

// The logarithm of the sum of len elements, at least two.
template <class Int>
inline Int logSumScaled(const Int* src, std::size_t len, int scaleFactor)
{
    const Zim64f scale = logDomainScale(scaleFactor);
    const Zim32f sum = len < 7 ? logSumOfFew(src, len, scale) : logSumByBlocks(src, len, static_cast<Zim32f>(scale));
    return saturate<Int>(quantise(splat<D4>(sum / scale), Truncate{}, Zim32s{})[0]);
}

}  // namespace zimsr
