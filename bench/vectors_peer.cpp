#include "vectors_peer.h"

#include <algorithm>
#include <cmath>

namespace peer {

void set(float value, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = value;
}

void add(const float* __restrict src, float* __restrict srcDst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        srcDst[i] += src[i];
}

void multiply(const float* __restrict src1, const float* __restrict src2, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = src1[i] * src2[i];
}

void scale(const float* __restrict src, float value, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = src[i] * value;
}

void divide(const float* __restrict src1, const float* __restrict src2, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = src2[i] / src1[i];
}

void magnitude(const float* __restrict src, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = std::sqrt(src[2 * i] * src[2 * i] + src[2 * i + 1] * src[2 * i + 1]);
}

void bytesToFloats(const std::uint8_t* __restrict src, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = src[i];
}

void shortsToFloats(const std::int16_t* __restrict src, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = src[i];
}

void intsToFloats(const std::int32_t* __restrict src, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void doublesToFloats(const double* __restrict src, float* __restrict dst, std::size_t len)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = static_cast<float>(src[i]);
}

void floatsToShorts(const float* __restrict src, std::int16_t* __restrict dst, std::size_t len, float factor)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = static_cast<std::int16_t>(std::nearbyint(std::clamp(src[i] * factor, -32768.0f, 32767.0f)));
}

void floatsToInts(const float* __restrict src, std::int32_t* __restrict dst, std::size_t len, float factor)
{
    for (std::size_t i = 0; i < len; ++i)
        dst[i] = static_cast<std::int32_t>(std::nearbyint(std::clamp(src[i] * factor, -2147483648.0f, 2147483520.0f)));
}

float sum(const float* src, std::size_t len)
{
    float total = 0;
    for (std::size_t i = 0; i < len; ++i)
        total += src[i];
    return total;
}

float greatest(const float* src, std::size_t len)
{
    float best = src[0];
    for (std::size_t i = 1; i < len; ++i)
        best = std::max(best, src[i]);
    return best;
}

std::size_t greatestPlace(const float* src, std::size_t len)
{
    std::size_t best = 0;
    for (std::size_t i = 1; i < len; ++i)
        if (src[i] > src[best])
            best = i;
    return best;
}

double wideDot(const float* src1, const float* src2, std::size_t len)
{
    double total = 0;
    for (std::size_t i = 0; i < len; ++i)
        total += static_cast<double>(src1[i]) * src2[i];
    return total;
}

std::int64_t exactDot(const std::int16_t* src1, const std::int16_t* src2, std::size_t len)
{
    std::int64_t total = 0;
    for (std::size_t i = 0; i < len; ++i)
        total += std::int64_t{src1[i]} * src2[i];
    return total;
}

}  // namespace peer
