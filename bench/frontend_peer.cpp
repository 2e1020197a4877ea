#include "frontend_peer.h"

#include <cmath>

namespace peer {

void filterBank(const float* spectrum, const int* c, const float* const* lower, const float* const* upper, int nFilter,
                float* energies)
{
    for (int i = 0; i < nFilter; ++i) {
        const float *rising = spectrum + c[i], *falling = spectrum + c[i + 1] + 1;
        float sum = 0;
        for (int j = 0; j <= c[i + 1] - c[i]; ++j)
            sum += lower[i][j] * rising[j];
        for (int j = 0; j < c[i + 2] - c[i + 1]; ++j)
            sum += upper[i][j] * falling[j];
        energies[i] = sum;
    }
}

void scaledMatrixVector(const float* matrix, const float* factor, const float* src, int height, int width, float* dst)
{
    for (int i = 0; i < height; ++i) {
        float sum = 0;
        for (int j = 0; j < width; ++j)
            sum += matrix[i * width + j] * src[j];
        dst[i] = factor[i] * sum;
    }
}

void magnitude(const float* spectrum, float* dst, int len)
{
    for (int k = 0; k < len; ++k)
        dst[k] = std::sqrt(spectrum[2 * k] * spectrum[2 * k] + spectrum[2 * k + 1] * spectrum[2 * k + 1]);
}

}  // namespace peer
