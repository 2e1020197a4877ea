// New parameters of Gaussian mixtures from the accumulators of a training pass, and the constants of their scores.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"
#include "base/kernels/logarithm_sum.h"
#include "zimcore/frame/rows.h"

namespace zimsr {

// ---- Means, variances, weights. The single-precision forms multiply by the reciprocal of an occupancy.

ZIM_INLINE void updateMean(const Zim32f* meanAcc, Zim32f* mean, std::size_t len, Zim32f meanWgt)
{
    const Zim32f share = 1 / meanWgt;
    mapElements<8>(
        mean, len, [=](F8 old, F8 acc) { return old + acc * splat<F8>(share); }, mean, meanAcc);
}

ZIM_INLINE void updateMean(const Zim64f* meanAcc, Zim64f* mean, std::size_t len, Zim64f meanWgt)
{
    const auto moved = [=](auto old, auto acc) { return old + acc / splat<decltype(acc)>(meanWgt); };
    if (overlap(meanAcc, mean, len))
        mapInTurn(mean, len, moved, mean, meanAcc);
    else
        mapElements<4>(mean, len, moved, mean, meanAcc);
}

// Raises values to their floors, and remembers whether one of them was above its own.
template <class V>
class Floors {
public:
    // The maximum takes its second operand where the first is a NaN.
    ZIM_INLINE V raise(V value, V floor)
    {
        kept_ = kept_ | (value > floor);
        return max(value, floor);
    }
    // Of a row of len elements; a shorter vector's other lanes do not count.
    ZIM_INLINE bool allTaken(std::size_t len) const
    {
        return !anySet(len < V::lanes ? kept_ & firstLanes<V>(static_cast<int>(len)) : kept_);
    }

private:
    typename V::Mask kept_ = splat<typename V::Mask>(0);
};

// These two tell whether all elements took the floor.
ZIM_INLINE bool updateVariance(const Zim32f* meanAcc, const Zim32f* varAcc, const Zim32f* varFloor, Zim32f* var,
                               std::size_t len, Zim32f meanWgt, Zim32f varWgt)
{
    const Zim32f meanShare = 1 / meanWgt, varShare = 1 / varWgt;
    Floors<F8> floors;
    const auto variance = [&](F8 first, F8 second, F8 floor) ZIM_INLINE_LAMBDA {
        const F8 shift = first * splat<F8>(meanShare);
        return floors.raise(second * splat<F8>(varShare) - shift * shift, floor);
    };
    mapElements<8>(var, len, variance, meanAcc, varAcc, varFloor);
    return floors.allTaken(len);
}

ZIM_INLINE bool updateVariance(const Zim64f* meanAcc, const Zim64f* varAcc, const Zim64f* varFloor, Zim64f* var,
                               std::size_t len, Zim64f meanWgt, Zim64f varWgt)
{
    Floors<D4> floors;
    const auto variance = [&](D4 first, D4 second, D4 floor) ZIM_INLINE_LAMBDA {
        const D4 shift = first / splat<D4>(meanWgt);
        return floors.raise(second / splat<D4>(varWgt) - shift * shift, floor);
    };
    mapElements<4>(var, len, variance, meanAcc, varAcc, varFloor);
    return floors.allTaken(len);
}

// *sum is that of the weights as they are written. They may overwrite the accumulators: the last vector of a row,
// stepped back to end with it, is made before anything is written.
template <class Float>
ZIM_INLINE bool updateWeights(const Float* wgtAcc, Float* weight, std::size_t len, Float* sum, Float wgtSum,
                              Float wgtFloor)
{
    using V = FloatVector<Float>;
    constexpr std::size_t N = V::lanes;
    const Float share = 1 / wgtSum;
    Floors<V> floors;
    const auto floored = [&](V acc)
                             ZIM_INLINE_LAMBDA { return floors.raise(acc * splat<V>(share), splat<V>(wgtFloor)); };
    const int rest = static_cast<int>(len % N);
    if (len < N) {
        const V weights = floored(loadFirst<V>(wgtAcc, rest));
        storeFirst(weight, weights, rest);
        *sum = sumLanes(keep(firstLanes<V>(rest), weights));
        return floors.allTaken(len);
    }
    const V last = floored(load<V>(wgtAcc + len - N));
    V sums = keep(lastLanes<V>(rest), last);
    for (std::size_t i = 0; i + N <= len; i += N) {
        const V weights = floored(load<V>(wgtAcc + i));
        store(weight + i, weights);
        sums += weights;
    }
    store(weight + len - N, last);
    *sum = sumLanes(sums);
    return floors.allTaken(len);
}

// ---- Constants of Gaussians

// len ln(2 pi) + sign * (sum of ln(src[i])): sign is 1 for variances, -1 for their inverses. Where the sum ends at an
// element that has no logarithm, its substitute is the result, whatever the sign.
template <class Float>
inline ZimStatus gaussianConstant(const Float* src, int len, Float sign, Float* gconst)
{
    constexpr Zim64f lnOfTwoPi = 1.8378770664093;  // contract: these digits
    const SumOfLogs sum = sumOfLogs(src, static_cast<std::size_t>(len));
    const Float ofLogs = static_cast<Float>(sum.value);
    *gconst = sum.status == zimStsOk ? static_cast<Float>(len * lnOfTwoPi) + sign * ofLogs : ofLogs;
    return sum.status;
}

// ---- Constants of a mixture's scores: val = logWeight - gconst / 2. val may be one of the sources.

template <class Float>
ZIM_INLINE void scoreConstants(const Float* logWeight, const Float* gconst, Float* val, std::size_t len)
{
    using V = FloatVector<Float>;
    mapElements<V::lanes>(
        val, len, [](V weight, V constant) { return weight - constant * splat<V>(Float(0.5)); }, logWeight, gconst);
}

// The difference wraps. Halves are rounded down below index roundedUp, and up from it on.
ZIM_INLINE void scoreConstants(const Zim32s* logWeight, const Zim32s* gconst, Zim32s* val, std::size_t len,
                               std::size_t roundedUp)
{
    mapElements<8>(
        val, roundedUp, [](I8 weight, I8 constant) { return weight - (constant >> 1); }, logWeight, gconst);
    for (std::size_t i = roundedUp; i < len; ++i) {
        const auto next = static_cast<Zim32s>(static_cast<Zim32u>(gconst[i]) + 1);
        val[i] = static_cast<Zim32s>(static_cast<Zim32u>(logWeight[i]) - static_cast<Zim32u>(next >> 1));
    }
}

}  // namespace zimsr
