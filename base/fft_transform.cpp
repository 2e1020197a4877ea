// Tables and transforms of order 4 and above.
#include "base/fft_transform.h"

#include <cmath>
#include <cstddef>
#include <cstring>

#include "base/allocator.h"

namespace zimsr {
namespace {

Zim32f get(const Zim32f* p, std::size_t i)
{
    Zim32f v;
    std::memcpy(&v, reinterpret_cast<const char*>(p) + i * sizeof v, sizeof v);
    return v;
}

void put(Zim32f* p, std::size_t i, Zim32f v)
{
    std::memcpy(reinterpret_cast<char*>(p) + i * sizeof v, &v, sizeof v);
}

std::size_t reversed(std::size_t i, int bits)
{
    std::size_t r = 0;
    for (int b = 0; b < bits; ++b)
        r |= (i >> b & 1) << (bits - 1 - b);
    return r;
}

// In place, input in bit-reversed order; sign -1 is the inverse.
void butterflies(Zim32f* z, std::size_t count, const Zim32f* twiddle, float sign)
{
    for (std::size_t span = 2; span <= count; span *= 2)
        for (std::size_t k = 0; k < span / 2; ++k) {
            const float c = twiddle[2 * k * (count / span)], s = sign * twiddle[2 * k * (count / span) + 1];
            for (std::size_t i = k; i < count; i += span) {
                const std::size_t j = i + span / 2;
                const float re = get(z, 2 * j) * c - get(z, 2 * j + 1) * s;
                const float im = get(z, 2 * j) * s + get(z, 2 * j + 1) * c;
                const float a = get(z, 2 * i), b = get(z, 2 * i + 1);
                put(z, 2 * i, a + re);
                put(z, 2 * i + 1, b + im);
                put(z, 2 * j, a - re);
                put(z, 2 * j + 1, b - im);
            }
        }
}

void permute(const Zim32f* src, Zim32f* dst, int bits)
{
    const std::size_t count = std::size_t{1} << bits;
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t r = reversed(i, bits);
        if (src == dst && r <= i)
            continue;
        const float a = get(src, 2 * i), b = get(src, 2 * i + 1);
        if (src == dst) {
            put(dst, 2 * i, get(dst, 2 * r));
            put(dst, 2 * i + 1, get(dst, 2 * r + 1));
        }
        put(dst, 2 * r, a);
        put(dst, 2 * r + 1, b);
    }
}

}  // namespace

bool createTablesCFFT(ZimsFFTPlan_R_32f& plan)
{
    const std::size_t quarter = std::size_t{1} << (plan.order - 2);
    constexpr int bufOrders[] = {9, 10, 10, 10, 13, 15};
    plan.bufferSize = plan.order < 18 ? (8 << (plan.order - 1)) + 16
                                      : (8 << bufOrders[plan.order > 22 ? 5 : plan.order - 18]) + 0x80010;
    plan.twiddleL1 = static_cast<Zim32f*>(allocate(quarter * 2, sizeof(Zim32f)));
    plan.realRecTable = static_cast<Zim32f*>(allocate(quarter * 2, sizeof(Zim32f)));
    if (!plan.twiddleL1 || !plan.realRecTable)
        return false;
    const double step = 6.283185307179586 / static_cast<double>(4 * quarter);
    for (std::size_t k = 0; k < quarter; ++k) {
        plan.twiddleL1[2 * k] = static_cast<float>(std::cos(2 * step * static_cast<double>(k)));
        plan.twiddleL1[2 * k + 1] = -static_cast<float>(std::sin(2 * step * static_cast<double>(k)));
        plan.realRecTable[2 * k] = static_cast<float>(std::cos(step * static_cast<double>(k)));
        plan.realRecTable[2 * k + 1] = static_cast<float>(std::sin(step * static_cast<double>(k)));
    }
    return true;
}

void deleteFftCtx(ZimsFFTPlan_R_32f* plan)
{
    plan->identity = 0;
    release(plan->bitRevTable);
    release(plan->twiddleL1);
    release(plan->realRecTable);
    release(plan->ccsRecTable);
    for (Zim32f* table : plan->blockTwiddles)
        release(table);
    release(plan);
}

template <SpectrumFormat format>
void forwardTransform(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan, Zim8u*)
{
    const std::size_t half = std::size_t{1} << (plan.order - 1);
    permute(src, dst, plan.order - 1);
    butterflies(dst, half, plan.twiddleL1, 1);
    if (plan.scaleForward)
        for (std::size_t i = 0; i < 2 * half; ++i)
            put(dst, i, get(dst, i) * plan.factor);
    const float a0 = get(dst, 0), b0 = get(dst, 1);
    put(dst, 0, a0 + b0);
    put(dst, 1, a0 - b0);
    for (std::size_t k = 1; k < half / 2; ++k) {
        const float a = 0.5f * plan.realRecTable[2 * k];
        const float b = static_cast<float>(0.5 - 0.5 * static_cast<double>(plan.realRecTable[2 * k + 1]));
        const std::size_t m = half - k;
        const float rk = get(dst, 2 * k), ik = get(dst, 2 * k + 1), rm = get(dst, 2 * m), im = get(dst, 2 * m + 1);
        const float dRe = rk - rm, sIm = ik + im;
        const float q = a * sIm + b * dRe, p = b * sIm - a * dRe;
        put(dst, 2 * k, rm + q);
        put(dst, 2 * k + 1, p - im);
        put(dst, 2 * m, rk - q);
        put(dst, 2 * m + 1, p - ik);
    }
    put(dst, half + 1, -get(dst, half + 1));
    const float last = get(dst, 1);
    if (format == SpectrumFormat::ccs) {
        put(dst, 2 * half, last);
        put(dst, 2 * half + 1, 0);
        put(dst, 1, 0);
    } else {
        std::memmove(dst + 1, dst + 2, (2 * half - 2) * sizeof(float));
        put(dst, 2 * half - 1, last);
    }
}

template void forwardTransform<SpectrumFormat::ccs>(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f&, Zim8u*);
template void forwardTransform<SpectrumFormat::pack>(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f&, Zim8u*);

void inverseTransform(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan, Zim8u*)
{
    const std::size_t half = std::size_t{1} << (plan.order - 1);
    const float first = get(src, 0), last = get(src, 2 * half - 1);
    std::memmove(dst + 2, src + 1, (2 * half - 2) * sizeof(float));
    put(dst, 0, first + last);
    put(dst, 1, first - last);
    put(dst, half, 2 * get(dst, half));
    put(dst, half + 1, -2 * get(dst, half + 1));
    for (std::size_t k = 1; k < half / 2; ++k) {
        const float c = plan.realRecTable[2 * k], d = -plan.realRecTable[2 * k + 1];
        const std::size_t m = half - k;
        const float rk = get(dst, 2 * k), ik = get(dst, 2 * k + 1), rm = get(dst, 2 * m), im = get(dst, 2 * m + 1);
        const float sRe = rk + rm, dRe = rk - rm, sIm = ik + im, dIm = ik - im;
        const float u = d * sIm + c * dRe, v = d * dRe - c * sIm;
        put(dst, 2 * k, sRe + v);
        put(dst, 2 * k + 1, dIm + u);
        put(dst, 2 * m, sRe - v);
        put(dst, 2 * m + 1, u - dIm);
    }
    permute(dst, dst, plan.order - 1);
    butterflies(dst, half, plan.twiddleL1, -1);
    if (plan.scaleInverse)
        for (std::size_t i = 0; i < 2 * half; ++i)
            put(dst, i, get(dst, i) * plan.factor);
}

}  // namespace zimsr
