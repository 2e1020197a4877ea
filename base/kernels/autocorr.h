// Autocorrelation summed directly. A lag is summed in eight lanes, element i in lane i mod 8, whatever lags are
// computed beside it and wherever the array stands.
#pragma once

#include <algorithm>

#include "zimcore/frame/simd.h"

namespace zimsr {

// The lags first, ..., first + count - 1, all below srcLen: each element is loaded once for all of them.
template <int count>
inline void correlateLags(const float* src, int srcLen, int first, float* dst)
{
    F8 sums[count];
    std::fill_n(sums, count, splat<F8>(0));
    int i = 0;
    for (; i + 8 <= srcLen - first - (count - 1); i += 8) {
        const F8 x = load<F8>(src + i);
#pragma GCC unroll 8
        for (int lag = 0; lag < count; ++lag)
            sums[lag] += x * load<F8>(src + i + first + lag);
    }
#pragma GCC unroll 8
    for (int lag = 0; lag < count; ++lag)
        for (int rest = i; rest < srcLen - first - lag; rest += 8) {
            const int lanes = std::min(srcLen - first - lag - rest, 8);
            sums[lag] += loadFirst<F8>(src + rest, lanes) * loadFirst<F8>(src + rest + first + lag, lanes);
        }
    if constexpr (count % 4 == 0) {
        for (int lag = 0; lag < count; lag += 4)
            store(dst + first + lag, sumLanesOfFour(sums[lag], sums[lag + 1], sums[lag + 2], sums[lag + 3]));
    } else {
        for (int lag = 0; lag < count; ++lag)
            dst[first + lag] = sumLanes(sums[lag]);
    }
}

// The last block of lags is stepped back over lags that are done.
inline void ownAutoCorr_32f(const float* src, int srcLen, float* dst, int lags)
{
    int lag = 0;
    for (; lag + 8 <= lags; lag += 8)
        correlateLags<8>(src, srcLen, lag, dst);
    const int rest = lags - lag;
    if (rest > 4 && lags >= 8)
        correlateLags<8>(src, srcLen, lags - 8, dst);
    else if (rest > 0 && lags >= 4) {
        if (rest > 4)
            correlateLags<4>(src, srcLen, lag, dst);
        correlateLags<4>(src, srcLen, lags - 4, dst);
    } else {
        for (; lag < lags; ++lag)
            correlateLags<1>(src, srcLen, lag, dst);
    }
}

}  // namespace zimsr
