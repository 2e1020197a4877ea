// Compiled by itself, with all that the compiler offers for this machine.
#include "signchanges_peer.h"

#include <cmath>
#include <cstdlib>

namespace peer {
namespace {

template <class T>
int sgn(T x)
{
    return x > 0 ? 1 : x == 0 ? 0 : -1;
}

template <class T, class Count>
int countPairs(const T* src, int len, Count count)
{
    int sum = 0;
    for (int i = 0; i + 1 < len; ++i)
        sum += count(src[i], src[i + 1]);
    return sum;
}

}  // namespace

void signChanges(const float* src, int len, float* res)
{
    *res = static_cast<float>(countPairs(src, len, [](float a, float b) { return a * b < 0; }));
}

void signChanges(const short* src, int len, int* res)
{
    *res = countPairs(src, len, [](short a, short b) { return a * b < 0; });
}

void halfSteps(const float* src, int len, float* res)
{
    *res = 0.5f * static_cast<float>(countPairs(src, len, [](float a, float b) { return std::abs(sgn(b) - sgn(a)); }));
}

void halfSteps(const short* src, int len, int* res)
{
    *res = countPairs(src, len, [](short a, short b) { return std::abs(sgn(b) - sgn(a)); }) >> 1;
}

void signBitChanges(const float* src, int len, int* res)
{
    *res = countPairs(src, len, [](float a, float b) { return std::signbit(a) != std::signbit(b); });
}

}  // namespace peer
