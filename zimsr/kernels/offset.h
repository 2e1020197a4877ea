// Offset removal: y[i] = x[i] - x[i-1] + val * y[i-1]. Each result waits for the one before, so that what counts is how
// long a step takes from result to result. In fixed point a step runs in the lowest lane of a vector, where multiplying
// and saturating take fewer cycles than in general registers.
#pragma once

#include <cstddef>
#include <cstdint>

#include <zimsr/types.h>

#include "zimcore/frame/scaling.h"
#include "zimcore/frame/simd.h"

namespace zimsr::offset {

// All kernels read a sample before they write its result: dst may be src. *srcPrev becomes the last sample.

inline void filterBlock(const Zim32f* src, Zim32f* dst, std::ptrdiff_t len, Zim32f* srcPrev, Zim32f dstPrev, Zim32f val)
{
    Zim32f x = src[0];
    Zim32f y = (val * dstPrev + x) - *srcPrev;
    dst[0] = y;
    for (std::ptrdiff_t i = 1; i < len; ++i) {
        const Zim32f before = x;
        x = src[i];
        y = val * y + (x - before);
        dst[i] = y;
    }
    *srcPrev = x;
}

// ---- Steps on 16-bit samples: from the difference of two samples to the next result

ZIM_INLINE I4 inLowestLane(Zim32s value)
{
    return loadLow<1, I4>(&value);
}

// sat(((y * q) >> 12) + sat(difference)), with q = trunc(4096 * val).
class Q12Step {
public:
    Q12Step(Zim16s dstPrev, Zim32f val) : Q12Step(dstPrev, static_cast<Zim16s>(val * 4096)) {}
    Q12Step(Zim16s dstPrev, Zim16s q) : factor_(loadLow<1, S8>(&q)), y_(loadLow<1, S8>(&dstPrev)) {}

    ZIM_INLINE Zim16s operator()(Zim32s difference)
    {
        const I4 fed = inLowestLane(saturate<Zim16s>(difference));
        y_ = narrowSaturated((multiplyAddPairs(y_, factor_) >> 12) + fed);
        return y_[0];
    }

private:
    S8 factor_, y_;
};

// The quotient of 2^15 * difference + val * y by 2^15, truncated toward zero and saturated. It lies between the
// quotients rounded down and up: where the one is above zero it is this one, where the other is below zero that one.
class Q15Step {
public:
    Q15Step(Zim16s dstPrev, Zim16s val) : factor_(loadLow<1, S8>(&val)), y_(loadLow<1, S8>(&dstPrev)) {}

    ZIM_INLINE Zim16s operator()(Zim32s difference)
    {
        const I4 fed = inLowestLane(difference);
        const I4 product = multiplyAddPairs(y_, factor_);
        const S8 down = narrowSaturated((product >> 15) + fed);
        const S8 up = narrowSaturated(((product + splat<I4>(32767)) >> 15) + fed);
        y_ = max(down, min(up, splat<S8>(0)));
        return y_[0];
    }

private:
    S8 factor_, y_;
};

// difference + y * val in single precision, rounded with ties away from zero and saturated; NaN gives -32768.
class RoundingStep {
public:
    RoundingStep(Zim16s dstPrev, Zim32f val) : factor_(splat<F4>(val)), y_(splat<F4>(dstPrev)) {}

    ZIM_INLINE Zim16s operator()(Zim32s difference)
    {
        const F4 v = toFloat(inLowestLane(difference)) + y_ * factor_;
        const F4 half = reinterpret<F4>((reinterpret<I4>(v) & splat<I4>(INT32_MIN)) | reinterpret<I4>(splat<F4>(0.5f)));
        // min gives its second operand where one is NaN, and so does max.
        const I4 rounded = toIntTruncated(max(min(splat<F4>(32767), v + half), splat<F4>(-32768)));
        y_ = toFloat(rounded);
        return static_cast<Zim16s>(rounded[0]);
    }

private:
    F4 factor_, y_;
};

// ---- Blocks of 16-bit samples

// The results from src[0] on; x is the sample before it.
template <class Step>
void runSteps(const Zim16s* src, Zim16s* dst, std::ptrdiff_t len, Zim32s x, Zim16s* srcPrev, Step step)
{
    for (std::ptrdiff_t i = 0; i < len; ++i) {
        const Zim32s before = x;
        x = src[i];
        dst[i] = step(x - before);
    }
    *srcPrev = static_cast<Zim16s>(x);
}

// The first result of a block, which is truncated.
inline Zim16s firstResult(Zim16s x, Zim16s srcPrev, Zim16s dstPrev, Zim32f val)
{
    const Zim32f v = (static_cast<Zim32f>(x) + static_cast<Zim32f>(dstPrev) * val) - static_cast<Zim32f>(srcPrev);
    if (v >= 32767)
        return 32767;
    return v > -32768 ? static_cast<Zim16s>(v) : Zim16s{-32768};
}

// That one, then Step.
template <class Step>
void filterBlock(const Zim16s* src, Zim16s* dst, std::ptrdiff_t len, Zim16s* srcPrev, Zim16s dstPrev, Zim32f val)
{
    const Zim16s x = src[0];
    const Zim16s y = firstResult(x, *srcPrev, dstPrev, val);
    dst[0] = y;
    runSteps(src + 1, dst + 1, len - 1, x, srcPrev, Step(y, val));
}

}  // namespace zimsr::offset
