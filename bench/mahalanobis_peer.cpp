#include "mahalanobis_peer.h"

namespace {

float distance(const float* x, const float* mean, const float* invVar, int width)
{
    float sum = 0;
    for (int j = 0; j < width; ++j) {
        const float difference = x[j] - mean[j];
        sum += difference * difference * invVar[j];
    }
    return sum;
}

}  // namespace

void peerMahDist(const float* mat, int step, const float* mean, const float* invVar, int width, float* dst, int height)
{
    for (int i = 0; i < height; ++i)
        dst[i] = distance(mat + i * step, mean, invVar, width);
}

void peerMahDistMultiMix(const float* mean, const float* invVar, int step, const float* src, int width, float* dst,
                         int height)
{
    for (int i = 0; i < height; ++i)
        dst[i] = distance(src, mean + i * step, invVar + i * step, width);
}

int peerMeanVarAcc(const float* src, const float* mean, float* meanAcc, float* varAcc, int len, float val)
{
    for (int j = 0; j < len; ++j) {
        const float difference = src[j] - mean[j], weighted = difference * val;
        meanAcc[j] += weighted;
        varAcc[j] += difference * weighted;
    }
    return 0;
}
