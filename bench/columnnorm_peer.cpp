// Compiled by itself, with all that the compiler offers for this machine.
#include "columnnorm_peer.h"

#include <algorithm>
#include <cstddef>

namespace peer {
namespace {

template <class T>
void sums(const T* src, int step, int height, float* __restrict sum, float* __restrict sumSq, int width)
{
    std::fill_n(sum, width, 0.0f);
    std::fill_n(sumSq, width, 0.0f);
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c) {
            const float x = src[static_cast<std::size_t>(r) * step + c];
            sum[c] += x;
            sumSq[c] += x * x;
        }
}

}  // namespace

void sumMeanVar(const float* src, int step, int height, float* sum, float* sumSq, int width)
{
    sums(src, step, height, sum, sumSq, width);
}

void sumMeanVar(const short* src, int step, int height, float* sum, float* sumSq, int width)
{
    sums(src, step, height, sum, sumSq, width);
}

void normalise(float* srcDst, int step, int height, const float* mean, const float* val, int width)
{
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c) {
            float& x = srcDst[static_cast<std::size_t>(r) * step + c];
            x = (x - mean[c]) * val[c];
        }
}

void normalise(short* srcDst, int step, int height, const short* mean, const short* val, int width, int right)
{
    for (int r = 0; r < height; ++r)
        for (int c = 0; c < width; ++c) {
            short& x = srcDst[static_cast<std::size_t>(r) * step + c];
            x = static_cast<short>(std::clamp(((x - mean[c]) * val[c]) >> right, -32768, 32767));
        }
}

}  // namespace peer
