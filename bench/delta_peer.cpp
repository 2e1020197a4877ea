// Compiled by itself, with all that the compiler offers for this machine.
#include "delta_peer.h"

#include <algorithm>
#include <cstddef>

namespace peer {
namespace {

short sat(long long v)
{
    return static_cast<short>(std::clamp<long long>(v, -32768, 32767));
}

short sat(int v)
{
    return static_cast<short>(std::clamp(v, -32768, 32767));
}

template <class T>
void copyRows(const T* src, int srcWidth, int width, T* dst, int step, int height)
{
    for (int t = 0; t < height; ++t)
        for (int c = 0; c < width; ++c)
            dst[static_cast<std::size_t>(t) * step + c] = src[static_cast<std::size_t>(t) * srcWidth + c];
}

// out[t][c] = result of column c, given the rows around t.
template <int radius, class T, class Result>
void slide(const T* in, T* out, int step, int width, int height, Result result)
{
    for (int t = 0; t < height; ++t) {
        const T* rows[2 * radius + 1];
        for (int k = -radius; k <= radius; ++k)
            rows[k + radius] = in + static_cast<std::size_t>(std::clamp(t + k, 0, height - 1)) * step;
        T* to = out + static_cast<std::size_t>(t) * step;
        for (int c = 0; c < width; ++c)
            to[c] = result([&](int k) { return rows[k + radius][c]; });
    }
}

constexpr float deltaTaps[] = {-1.0f, -0.75f, -0.5f, -0.25f, -0.0f, 0.25f, 0.5f, 0.75f, 1.0f};
constexpr float deltaDeltaTaps[] = {1.0f,       0.25f,      -0.285714f, -0.607143f, -0.714286f,
                                    -0.607143f, -0.285714f, 0.25f,      1.0f};

template <class Rows>
float tapSum(const Rows& x, const float (&taps)[9])
{
    float sum = 0;
    for (int k = -4; k <= 4; ++k)
        sum += x(k) * taps[k + 4];
    return sum;
}

}  // namespace

void deltaWin1(const float* src, int width, float* dst, int step, int height, float val)
{
    copyRows(src, width, width, dst, step, height);
    slide<1>(dst, dst + width, step, width, height, [=](auto x) { return (x(1) - x(-1)) * val; });
}

void deltaDeltaWin2(const float* src, int width, float* dst, int step, int height, float val1, float val2)
{
    copyRows(src, width, width, dst, step, height);
    const auto window = [](auto x, float val) { return ((x(1) - x(-1)) + 2 * (x(2) - x(-2))) * val; };
    slide<2>(dst, dst + width, step, width, height, [=](auto x) { return window(x, val1); });
    slide<2>(dst + width, dst + 2 * width, step, width, height, [=](auto x) { return window(x, val2); });
}

void deltaDeltaWin2(const short* src, int width, short* dst, int step, int height, short val1, short val2, int right)
{
    copyRows(src, width, width, dst, step, height);
    const auto window = [right](auto x, short val) {
        const short e = sat(x(2) - x(-2));
        return sat((sat(sat(x(1) - x(-1)) + sat(e + e)) * val) >> right);
    };
    slide<2>(dst, dst + width, step, width, height, [=](auto x) { return window(x, val1); });
    slide<2>(dst + width, dst + 2 * width, step, width, height, [=](auto x) { return window(x, val2); });
}

void deltaDeltaWin2Wide(const short* src, int width, short* dst, int step, int height, short val1, short val2,
                        int right)
{
    copyRows(src, width, width, dst, step, height);
    const auto window = [right](auto x, long long val) {
        return sat(((x(1) - x(-1)) + 2 * (x(2) - x(-2))) * val >> right);
    };
    slide<2>(dst, dst + width, step, width, height, [=](auto x) { return window(x, val1); });
    slide<2>(dst + width, dst + 2 * width, step, width, height, [=](auto x) { return window(x, val2); });
}

void aurora(const float* src, float* dst, int step, int height)
{
    copyRows(src, 14, 12, dst, step, height);
    for (int t = 0; t < height; ++t)
        dst[static_cast<std::size_t>(t) * step + 12] = src[t * 14 + 12] * 0.6f / 23.0f + src[t * 14 + 13] * 0.4f;
    slide<4>(dst, dst + 13, step, 13, height, [](auto x) { return tapSum(x, deltaTaps); });
    slide<4>(dst, dst + 26, step, 13, height, [](auto x) { return tapSum(x, deltaDeltaTaps); });
}

void aurora(const short* src, short* dst, int step, int height, int right)
{
    for (int t = 0; t < height; ++t) {
        for (int c = 0; c < 12; ++c)
            dst[static_cast<std::size_t>(t) * step + c] = static_cast<short>(src[t * 14 + c] >> right);
        const float energy = src[t * 14 + 12] * 0.6f / 23.0f + src[t * 14 + 13] * 0.4f;
        dst[static_cast<std::size_t>(t) * step + 12] = sat(static_cast<int>(energy) >> right);
    }
    slide<4>(dst, dst + 13, step, 13, height, [right](auto x) {
        int sum = 0;
        for (int k = 1; k <= 4; ++k)
            sum += k * (x(k) - x(-k));
        return sat(sum >> (right + 2));
    });
    slide<4>(dst, dst + 26, step, 13, height,
             [right](auto x) { return sat(static_cast<int>(tapSum(x, deltaDeltaTaps)) >> right); });
}

namespace {

template <class T, class Sum, class Result>
void evaluate(T* srcDst, int height, int step, int width, int winSize, Result result)
{
    const auto row = [=](int t) { return srcDst + static_cast<std::size_t>(t) * step; };
    for (int t = 0; t < height; ++t)
        for (int c = 0; c < width; ++c) {
            Sum sum = 0;
            for (int k = 1; k <= winSize; ++k)
                sum += static_cast<Sum>(k) *
                       (row(t >= height - winSize ? height - 1 : t + k)[c] - row(t < winSize ? 0 : t - k)[c]);
            row(t)[width + c] = result(sum);
        }
}

}  // namespace

void evalDelta(float* srcDst, int height, int step, int width, int winSize, float val)
{
    evaluate<float, float>(srcDst, height, step, width, winSize, [val](float sum) { return val * sum; });
}

void evalDelta(short* srcDst, int height, int step, int width, int winSize, short val, int right)
{
    evaluate<short, int>(srcDst, height, step, width, winSize,
                         [=](int sum) { return sat(static_cast<long long>(sum) * val >> right); });
}

void copyColumn(const float* src, int width, float* dst, int step, int height)
{
    copyRows(src, width, width, dst, step, height);
}

}  // namespace peer
