#include "blockdiagonal_peer.h"

float peerBlockScore(const float* src, const float* mean, const float* const* rows, const int* blockSizes,
                     int blockCount, float gconst)
{
    float form = 0;
    for (int b = 0; b < blockCount; ++b) {
        const int size = blockSizes[b];
        for (int i = 0; i < size; ++i) {
            float sum = 0;
            for (int j = 0; j < size; ++j)
                sum += rows[i][j] * (src[j] - mean[j]);
            form += (src[i] - mean[i]) * sum;
        }
        src += size, mean += size, rows += size;
    }
    return gconst - 0.5f * form;
}
