#include "autocorr_peer.h"

void plainAutoCorr(const float* src, int srcLen, float* dst, int dstLen)
{
    for (int k = 0; k < dstLen; ++k) {
        float sum = 0;
        for (int i = 0; i < srcLen - k; ++i)
            sum += src[i] * src[i + k];
        dst[k] = sum;
    }
}
