#include "loggauss_peer.h"

void peerLogGauss(const float* mat, int step, const float* mean, const float* invVar, int width, float* result,
                  int height, float gconst)
{
    for (int i = 0; i < height; ++i) {
        float sum = 0;
        for (int j = 0; j < width; ++j) {
            const float difference = mat[i * step + j] - mean[j];
            sum += difference * difference * invVar[j];
        }
        result[i] = gconst - 0.5f * sum;
    }
}
