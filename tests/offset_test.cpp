// Offset removal in every type, out of place and in place, against the recursion written out step by step.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

Zim16s sat16(long long v)
{
    return static_cast<Zim16s>(std::clamp<long long>(v, -32768, 32767));
}

Zim16s limited(float v, float rounding)
{
    return v >= 32767 ? Zim16s{32767} : !(v > -32768) ? Zim16s{-32768} : static_cast<Zim16s>(std::trunc(v + rounding));
}

// ---- The steps: from x[i], x[i-1], y[i-1] to y[i]

float floatStep(float x, float before, float y, float val)
{
    return val * y + (x - before);
}

Zim16s roundingStep(Zim16s x, Zim16s before, Zim16s y, float val)
{
    const float v = static_cast<float>(x - before) + static_cast<float>(y) * val;
    return limited(v, v >= 0 ? 0.5f : -0.5f);
}

Zim16s q12Step(Zim16s x, Zim16s before, Zim16s y, float val)
{
    const int q = static_cast<int>(val * 1024.0f * 4.0f);
    return sat16(((y * q) >> 12) + sat16(x - before));
}

Zim16s q15Step(Zim16s x, Zim16s before, Zim16s y, Zim16s val)
{
    const long long sum = (x - before) * 32768LL + y * val;
    return sat16(sum / 32768);
}

float firstOf(float x, float srcPrev, float dstPrev, float val)
{
    return dstPrev * val + x - srcPrev;
}

Zim16s firstOf(Zim16s x, Zim16s srcPrev, Zim16s dstPrev, float val)
{
    return limited(static_cast<float>(x) + static_cast<float>(dstPrev) * val - static_cast<float>(srcPrev), 0);
}

template <class T, class Val, class First>
std::vector<T> filtered(const std::vector<T>& x, T srcPrev, T dstPrev, Val val, T (*step)(T, T, T, Val), First first)
{
    std::vector<T> y = {first(x[0], srcPrev, dstPrev, val)};
    for (std::size_t i = 1; i < x.size(); ++i)
        y.push_back(step(x[i], x[i - 1], y.back(), val));
    return y;
}

// ---- A function out of place, on src itself, and in place

template <class T, class Val>
struct Filter {
    ZimStatus (*apart)(const T*, T*, int, T*, T, Val);
    ZimStatus (*inPlace)(T*, int, T*, T, Val);
};

template <class T, class Val>
void expectApart(Filter<T, Val> filter, const std::vector<T>& x, T srcPrev, T dstPrev, Val val,
                 const std::vector<T>& expected)
{
    const int len = static_cast<int>(x.size());
    for (bool onSource : {false, true}) {
        const Guarded<T> src(x), dst(x.size()), previous{srcPrev};
        T* const result = onSource ? src.data() : dst.data();
        EXPECT_EQ(filter.apart(src, result, len, previous, dstPrev, val), zimStsOk);
        EXPECT_TRUE(equalBits(std::vector<T>(result, result + len), expected)) << len << ' ' << +val;
        EXPECT_TRUE(sameBits(previous[0], x.back()));
    }
}

template <class T, class Val>
void expectInPlace(Filter<T, Val> filter, const std::vector<T>& x, T srcPrev, T dstPrev, Val val,
                   const std::vector<T>& expected)
{
    const Guarded<T> srcDst(x), previous{srcPrev};
    EXPECT_EQ(filter.inPlace(srcDst, static_cast<int>(x.size()), previous, dstPrev, val), zimStsOk);
    EXPECT_TRUE(equalBits(srcDst.values(), expected)) << x.size() << ' ' << +val;
    EXPECT_TRUE(sameBits(previous[0], x.back()));
}

constexpr Filter<float, float> floats{zimsCompensateOffset_32f, zimsCompensateOffset_32f_I};
constexpr Filter<Zim16s, float> samples{zimsCompensateOffset_16s, zimsCompensateOffset_16s_I};
constexpr Filter<Zim16s, Zim16s> q15{zimsCompensateOffsetQ15_16s, zimsCompensateOffsetQ15_16s_I};
const std::vector<int> lengths = {1, 2, 3, 4, 5, 8, 31, 160, 1000};

TEST(CompensateOffset, SinglePrecision)
{
    Random random(1);
    for (int len : lengths)
        for (float val : {0.999f, -0.5f, 1.0f, 1.01f, 0.0f}) {
            const auto x = random.vector<float>(len, -30000, 30000);
            const float srcPrev = random.between<float>(-100, 100), dstPrev = random.between<float>(-100, 100);
            const auto expected =
                filtered(x, srcPrev, dstPrev, val, floatStep, [](auto... a) { return firstOf(a...); });
            expectApart(floats, x, srcPrev, dstPrev, val, expected);
            expectInPlace(floats, x, srcPrev, dstPrev, val, expected);
        }
}

// Loud samples saturate every second result, quiet ones show the rounding.
TEST(CompensateOffset, Samples)
{
    Random random(2);
    const float infinity = std::numeric_limits<float>::infinity();
    for (int len : lengths)
        for (int loudness : {20, 3000, 32767})
            for (float val :
                 {0.999f, 0.5f, -0.999f, 1.0f, -1.0f, 0.0f, 1.0000001f, 1.5f, -3.0f, 1e30f, -infinity, std::nanf("")}) {
                const auto low = static_cast<Zim16s>(-loudness - 1), high = static_cast<Zim16s>(loudness);
                const auto x = random.vector<Zim16s>(len, low, high);
                const auto srcPrev = random.between(low, high), dstPrev = random.between(low, high);
                const auto first = [](auto... a) { return firstOf(a...); };
                const auto rounded = filtered(x, srcPrev, dstPrev, val, roundingStep, first);
                const bool fixed = val >= -1 && val <= 1;
                expectApart(samples, x, srcPrev, dstPrev, val,
                            fixed ? filtered(x, srcPrev, dstPrev, val, q12Step, first) : rounded);
                expectInPlace(samples, x, srcPrev, dstPrev, val, rounded);
            }
}

TEST(CompensateOffset, TheFirstResultIsTruncatedAndLaterOnesAreRounded)
{
    Zim16s x[] = {0, 0}, previous = 0;
    EXPECT_EQ(zimsCompensateOffset_16s_I(x, 1, &previous, 2, 0.85f), zimStsOk);
    EXPECT_EQ(x[0], 1) << "of 1.7";
    Zim16s z[] = {2, 2};
    previous = 0;
    EXPECT_EQ(zimsCompensateOffset_16s_I(z, 2, &previous, 0, 0.85f), zimStsOk);
    EXPECT_EQ(z[1], 2) << "of 1.7";
    // -0.5 goes away from zero, and in fixed point down.
    Zim16s down[] = {-1, -1}, dst[2];
    previous = 0;
    zimsCompensateOffset_16s(down, dst, 2, &previous, 0, 0.25f);
    EXPECT_EQ(dst[1], -1);
    previous = 0;
    zimsCompensateOffset_16s_I(down, 2, &previous, 0, 0.5f);
    EXPECT_EQ(down[1], -1);
}

TEST(CompensateOffset, Q15)
{
    Random random(3);
    for (int len : lengths)
        for (int loudness : {2, 20, 3000, 32767})
            for (int val : {32767, 32735, 16384, 1, 0}) {
                const auto low = static_cast<Zim16s>(-loudness - 1), high = static_cast<Zim16s>(loudness);
                const auto x = random.vector<Zim16s>(len, low, high);
                const auto srcPrev = random.between(low, high), dstPrev = random.between(low, high);
                const auto q = static_cast<Zim16s>(val);
                const auto expected =
                    filtered(x, srcPrev, dstPrev, q, q15Step,
                             [](Zim16s x0, Zim16s before, Zim16s y, Zim16s v) { return q15Step(x0, before, y, v); });
                expectApart(q15, x, srcPrev, dstPrev, q, expected);
                expectInPlace(q15, x, srcPrev, dstPrev, q, expected);
            }
}

TEST(CompensateOffset, AStreamInBlocks)
{
    Random random(4);
    const auto x = random.vector<Zim16s>(1000, -3000, 3000);
    std::vector<Zim16s> whole(x.size()), blocks(x.size());
    Zim16s previous = 0, last = 0;
    zimsCompensateOffsetQ15_16s(x.data(), whole.data(), 1000, &previous, 0, 32735);
    previous = 0;
    for (int first = 0, len = 1; first < 1000; first += len, len = std::min(2 * len, 1000 - first)) {
        zimsCompensateOffsetQ15_16s(&x[first], &blocks[first], len, &previous, last, 32735);
        last = blocks[first + len - 1];
    }
    EXPECT_TRUE(equalBits(blocks, whole));
}

TEST(CompensateOffset, AConstantOffsetGoes)
{
    std::vector<float> x(20000, 1234);
    float previous = 0;
    zimsCompensateOffset_32f_I(x.data(), 20000, &previous, 0, 0.999f);
    EXPECT_EQ(x[0], 1234);
    EXPECT_LT(std::fabs(x.back()), 1e-5f);
}

TEST(CompensateOffset, ChecksComeInTheirOrder)
{
    expectPointersThenLength(zimsCompensateOffset_32f, zimsCompensateOffset_32f_I, zimsCompensateOffset_16s,
                             zimsCompensateOffset_16s_I, zimsCompensateOffsetQ15_16s, zimsCompensateOffsetQ15_16s_I);
    std::vector<Zim16s> x(65536, 1);
    Zim16s previous = 7;
    Zim16s* const v = x.data();
    expectStatuses({
        {"the length before val", zimsCompensateOffsetQ15_16s(v, v, 65536, &previous, 0, -1), zimStsBadSize},
        {"val", zimsCompensateOffsetQ15_16s(v, v, 65535, &previous, 0, -1), zimStsBadArgument},
        {"the length before val, in place", zimsCompensateOffsetQ15_16s_I(v, 65536, &previous, 0, -1), zimStsBadSize},
        {"val, in place", zimsCompensateOffsetQ15_16s_I(v, 65535, &previous, 0, -1), zimStsBadArgument},
    });
    EXPECT_EQ(previous, 7);
    EXPECT_EQ(x, std::vector<Zim16s>(65536, 1));
    EXPECT_EQ(zimsCompensateOffsetQ15_16s(v, v, 65535, &previous, 0, 0), zimStsOk);
}

}  // namespace
}  // namespace zimsr::test
