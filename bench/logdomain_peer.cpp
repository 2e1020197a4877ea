// Plain loops over exp and log1p, which the compiler vectorises.
#include "logdomain_peer.h"

#include <algorithm>
#include <cmath>

namespace {

template <class Float, class T>
inline void addAll(const T* __restrict src, T* __restrict srcDst, int len)
{
    for (int i = 0; i < len; ++i) {
        const Float a = src[i], b = srcDst[i];
        const Float greater = std::max(a, b), smaller = std::min(a, b);
        srcDst[i] = static_cast<T>(greater + std::log1p(std::exp(smaller - greater)));
    }
}

}  // namespace

void peerLogAdd_32f(const float* src, float* srcDst, int len)
{
    addAll<float>(src, srcDst, len);
}

void peerLogAddInDouble_32f(const float* src, float* srcDst, int len)
{
    addAll<double>(src, srcDst, len);
}

void peerLogAdd_64f(const double* src, double* srcDst, int len)
{
    addAll<double>(src, srcDst, len);
}
