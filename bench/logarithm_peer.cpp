#include "logarithm_peer.h"

#include <cmath>

void peerLn_32f(float* srcDst, int len)
{
    for (int i = 0; i < len; ++i)
        srcDst[i] = std::log(srcDst[i]);
}

void peerLn_32s(const int* src, int* dst, int len, float scale)
{
    for (int i = 0; i < len; ++i)
        dst[i] = static_cast<int>(std::rint(std::log(static_cast<float>(src[i])) * scale));
}

float peerSumLn_32f(const float* src, int len)
{
    float sum = 0;
    for (int i = 0; i < len; ++i)
        sum += std::log(src[i]);
    return sum;
}

double peerSumLn_64f(const double* src, int len)
{
    double sum = 0;
    for (int i = 0; i < len; ++i)
        sum += std::log(src[i]);
    return sum;
}
