// Autocorrelation summed directly.
#pragma once

#include "zimcore/frame/simd.h"

namespace zimsr {

// The sum over i of x[i] * y[i], i < count, in eight lanes: element i goes to lane i mod 8.
inline float laggedProduct(const float* x, const float* y, int count)
{
    F8 sum = splat<F8>(0);
    int i = 0;
    for (; i + 8 <= count; i += 8)
        sum += load<F8>(x + i) * load<F8>(y + i);
    sum += loadFirst<F8>(x + i, count - i) * loadFirst<F8>(y + i, count - i);
    return sumLanes(sum);
}

inline void ownAutoCorr_32f(const float* src, int srcLen, float* dst, int lags)
{
    for (int k = 0; k < lags; ++k)
        dst[k] = laggedProduct(src, src + k, srcLen - k);
}

}  // namespace zimsr
