// Variances from raw sums and interpolated vectors: every form against its formula one operation after the other, on
// the paths that alignment, length and overlap choose.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <vector>

#include <zimsr/update.h>
#include <zimsr/version.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/rounding.h"
#include "support/shapes.h"
#include "support/specials.h"
#include "zimcore/frame/rows.h"

namespace zimsr::test {
namespace {

template <class Float>
std::vector<Float> numbers(unsigned seed, Float bound = 100)
{
    return Random(seed).vector<Float>(5003, -bound, bound);
}

// ---- Variances from raw sums

float rawVariance(float mean, float varAcc, float wgt1, float wgt2)
{
    const float square = mean * mean, weighted = square * wgt1, difference = varAcc - weighted;
    return difference * wgt2;
}

float rawVarianceInDouble(float mean, float varAcc, float wgt1, float wgt2)
{
    const double square = static_cast<double>(mean) * mean;
    return static_cast<float>((varAcc + (0.0 - square) * wgt1) * wgt2);
}

TEST(NewVar_32f, PrecisionByPlaceInTheVector)
{
    const float wgt1 = 12.7f, wgt2 = 1 / 12.9f;
    auto means = numbers<float>(14), sums = numbers<float>(15, 200000);
    means[5] = means[6] = 0;
    sums[6] = -0.0f;
    forEachShape([&](Shape shape) {
        const auto m = shape.take(means), acc = shape.take(sums);
        const Guarded<float> mean(m, shape.place<float>()), varAcc(acc, shape.place<float>()), var(m.size());
        const std::size_t lead = -reinterpret_cast<std::uintptr_t>(mean.data()) / 4 % 4, len = m.size();
        const std::size_t end = len < 11 ? 0 : lead + (len - lead) / 8 * 8;
        std::vector<float> wanted, allSingle, allDouble;
        for (std::size_t i = 0; i < len; ++i) {
            allSingle.push_back(rawVariance(m[i], acc[i], wgt1, wgt2));
            allDouble.push_back(rawVarianceInDouble(m[i], acc[i], wgt1, wgt2));
            wanted.push_back(i >= lead && i < end ? allSingle[i] : allDouble[i]);
        }
        EXPECT_EQ(zimsNewVar_32f(mean, varAcc, var, shape.len, wgt1, wgt2), zimStsOk);
        EXPECT_TRUE(equalBits(var.values(), wanted)) << shape;
        const Guarded<float> overSum(acc), overMean(m), inPlace(acc, shape.place<float>());
        zimsNewVar_32f(mean, overSum, overSum, shape.len, wgt1, wgt2);
        EXPECT_TRUE(equalBits(overSum.values(), allDouble)) << shape;
        zimsNewVar_32f(overMean, varAcc, overMean, shape.len, wgt1, wgt2);
        EXPECT_TRUE(equalBits(overMean.values(), allDouble)) << shape;
        EXPECT_EQ(zimsNewVar_32f_I(mean, inPlace, shape.len, wgt1, wgt2), zimStsOk);
        EXPECT_TRUE(equalBits(inPlace.values(), allSingle)) << shape;
    });

    // A destination one element behind a source; and a mean that no float begins at.
    std::vector<float> chain = numbers<float>(16, 0.1f), inTurn = chain;
    for (std::size_t i = 0; i + 1 < chain.size(); ++i)
        inTurn[i + 1] = rawVarianceInDouble(means[i], inTurn[i], wgt1, wgt2);
    zimsNewVar_32f(means.data(), chain.data(), chain.data() + 1, static_cast<int>(chain.size()) - 1, wgt1, wgt2);
    EXPECT_TRUE(equalBits(chain, inTurn));
    const Guarded<float> odd(means, atOffset(2));
    std::vector<float> var(means.size()), allDouble;
    for (std::size_t i = 0; i < means.size(); ++i)
        allDouble.push_back(rawVarianceInDouble(means[i], sums[i], wgt1, wgt2));
    zimsNewVar_32f(odd.data(), sums.data(), var.data(), static_cast<int>(var.size()), wgt1, wgt2);
    EXPECT_TRUE(equalBits(var, allDouble));
}

template <class Int>
Int quantised(long double value, bool nearest)
{
    using Limits = std::numeric_limits<Int>;
    if (!(value >= Limits::min()))
        return Limits::min();
    return static_cast<Int>(std::min<long double>(nearest ? std::nearbyint(value) : std::trunc(value), Limits::max()));
}

TEST(NewVar_32s, RoundsOnTheBoundaryAndTruncatesOffIt)
{
    auto means = Random(17).vector<Zim32s>(5003, -300, 300), sums = Random(18).any<Zim32s>(5003);
    std::fill(means.begin() + 20, means.begin() + 24, 0);
    std::fill(sums.begin() + 20, sums.begin() + 24, 0);  // zero stays zero, whatever the scale
    for (int factor : {0, 1, 13, 40, -1, -20, -127, -128, INT_MIN, 149, 150, INT_MAX})
        for (const float wgt2 : {1.0f, 0.37f, infinity<float>}) {
            const auto valueAt = [&](Zim32s mean, Zim32s sum) {
                const float v = rawVariance(static_cast<float>(mean), static_cast<float>(sum), 1.7f, wgt2);
                return v == 0 || (factor >= 150 && std::isfinite(v))
                           ? 0.0L
                           : std::ldexp(static_cast<long double>(v), -std::clamp(factor, -999, 999));
            };
            for (Shape shape :
                 {Shape{1, 0}, Shape{7, 0}, Shape{70, 0}, Shape{133, 0}, Shape{70, 1}, Shape{133, 2}, Shape{31}}) {
                const auto m = shape.take(means), acc = shape.take(sums);
                const Guarded<Zim32s> mean(m, shape.place<Zim32s>()), varAcc(acc, shape.place<Zim32s>());
                const Guarded<Zim32s> var(m.size(), atOffset(8));
                const bool nearest = allAligned(16, mean.data(), varAcc.data());
                if (factor >= 150 && wgt2 == infinity<float> && !nearest)
                    continue;  // infinity times zero
                std::vector<Zim32s> wanted;
                for (std::size_t i = 0; i < m.size(); ++i)
                    wanted.push_back(quantised<Zim32s>(valueAt(m[i], acc[i]), nearest));
                EXPECT_EQ(zimsNewVar_32s_Sfs(mean, varAcc, var, shape.len, 1.7f, wgt2, factor), zimStsOk);
                EXPECT_TRUE(equalBits(var.values(), wanted)) << shape << " factor " << factor << " weight " << wgt2;
                EXPECT_EQ(zimsNewVar_32s_ISfs(mean, varAcc, shape.len, 1.7f, wgt2, factor), zimStsOk);
                EXPECT_TRUE(equalBits(varAcc.values(), wanted)) << shape << " in place";
            }
        }
}

// ---- Interpolation

template <class Float>
using Interpolate = ZimStatus (*)(const Float*, const Float*, Float*, int, Float, Float);

template <class Float>
void expectWeightedSums(Interpolate<Float> weightedSum, Interpolate<Float> weightedSumHalf)
{
    const Float wgtA = Float(3.7), wgtB = Float(-1.1), s = 1 / (wgtA + wgtB);
    const auto a = numbers<Float>(19), b = numbers<Float>(20);
    expectElementwise<Float>([=](auto x, auto y, auto dst, int len) { return weightedSum(x, y, dst, len, wgtA, wgtB); },
                             [=](Float x, Float y) { return x * (wgtA * s) + y * (wgtB * s); }, a, b);
    expectElementwise<Float>(
        [=](auto x, auto y, auto dst, int len) { return weightedSumHalf(x, y, dst, len, wgtA, wgtB); },
        [=](Float x, Float y) { return x * s + y * (wgtB * s); }, a, b);

    const bool isDouble = sizeof(Float) == 8;
    const Float up = isDouble ? zimConstantOfINF_64f : Float(zimConstantOfINF_32f), down = -up,
                neither = isDouble ? zimConstantOfNAN_64f : Float(zimConstantOfNAN_32f);
    const std::vector<Float> x = {5, 3, 4, 4, nan<Float>, 1, 0, -2, 9, 9}, y = {3, 5, 4, -4, 0, 1, -0.0, 2, -9, 9};
    const std::vector<Float> opposed = {up, down, neither, up, neither, neither, neither, down, up, neither};
    const std::vector<Float> nothing(x.size(), neither);
    for (const auto call : {weightedSum, weightedSumHalf})
        for (int len = 1; len <= static_cast<int>(x.size()); ++len)
            for (const auto& [wgt, wanted] : {std::pair(Float(1), &opposed), std::pair(nan<Float>, &nothing)}) {
                std::vector<Float> dst(wanted->begin(), wanted->end());
                std::fill_n(dst.begin(), len, Float(1));
                EXPECT_EQ(call(x.data(), y.data(), dst.data(), len, wgt, Float(-1)), zimStsDivByZeroWarn);
                for (std::size_t i = 0; i < dst.size(); ++i)
                    EXPECT_EQ(bitsOf(dst[i]), bitsOf((*wanted)[i])) << i << " of " << len;
            }
}

TEST(WeightedSum, OfFloatsInTheirType)
{
    expectWeightedSums(zimsWeightedSum_32f, zimsWeightedSumHalf_32f);
    expectWeightedSums(zimsWeightedSum_64f, zimsWeightedSumHalf_64f);
}

TEST(WeightedSum_16s, RoundsOnTheBoundaryAndTruncatesOffIt)
{
    const auto a = Random(21).any<Zim16s>(5003), b = Random(22).any<Zim16s>(5003);
    for (const auto& [wgtA, wgtB] : {std::pair(3.0f, 1.0f), std::pair(1.3f, -0.9f), std::pair(1e-3f, -2e-3f),
                                     std::pair(infinity<float>, 1.0f), std::pair(1.0f, -0.9999999f)})
        for (bool half : {false, true})
            for (int moved = 0; moved < 8; ++moved)
                for (int len : {1, 2, 7, 8, 9, 15, 16, 37, 64, 133}) {
                    const Shape shape{len};
                    const auto place = [moved](int bit) { return atOffset(moved & bit ? 2 : 0); };
                    const auto x = shape.take(a), y = shape.take(b);
                    const Guarded<Zim16s> first(x, place(1)), second(y, place(2)), dst(x.size(), place(4));
                    const float s = 1 / (wgtA + wgtB), p = half ? s : wgtA * s, q = wgtB * s;
                    std::vector<Zim16s> wanted;
                    for (std::size_t i = 0; i < x.size(); ++i) {
                        const float product = x[i] * p, other = y[i] * q;
                        wanted.push_back(quantised<Zim16s>(product + other, moved == 0 && len >= 8));
                    }
                    const auto call = half ? zimsWeightedSumHalf_16s : zimsWeightedSum_16s;
                    EXPECT_EQ(call(first, second, dst, len, wgtA, wgtB), zimStsOk);
                    EXPECT_TRUE(equalBits(dst.values(), wanted)) << len << ", " << moved << ", " << wgtA;
                }
    for (const auto call : {zimsWeightedSum_16s, zimsWeightedSumHalf_16s})
        for (const auto& [weight, x, y, wanted] : {std::tuple(1.0f, 5, 3, 32767), std::tuple(1.0f, 3, 5, -32768),
                                                   std::tuple(1.0f, 4, 4, 0), std::tuple(nan<float>, 5, 3, 0)}) {
            const std::vector<Zim16s> first(21, static_cast<Zim16s>(x)), second(21, static_cast<Zim16s>(y));
            std::vector<Zim16s> dst(21);
            EXPECT_EQ(call(first.data(), second.data(), dst.data(), 21, weight, -1), zimStsDivByZeroWarn);
            EXPECT_TRUE(equalBits(dst, std::vector<Zim16s>(21, static_cast<Zim16s>(wanted))));
        }
}

TEST(WeightedSum, IntegersAreTheSameInEveryRoundingMode)
{
    alignas(16) const Zim32s mean[8] = {1, 2, 3, 4, 5, 6, 7, 8};
    alignas(16) const Zim32s acc[8] = {16777217, 16777219, 7, -33554435, 1001, -1003, 5, 2000000001};
    alignas(16) const Zim16s a[8] = {5, -5, 7, 1, 32767, -32768, 0, 3}, b[8] = {0, 0, 0, 2, 32767, -32767, 1, -8};
    const auto results = [&] {
        std::vector<Zim32s> all;
        for (int first : {0, 1}) {  // on the boundary and off it
            Zim32s var[8] = {};
            alignas(16) Zim16s sum[8] = {};
            zimsNewVar_32s_Sfs(mean + first, acc + first, var, 8 - first, 1.3f, 0.7f, 1);
            zimsWeightedSum_16s(a + first, b + first, sum, 8 - first, 1.1f, 0.9f);
            all.insert(all.end(), var, var + 8);
            all.insert(all.end(), sum, sum + 8);
        }
        return all;
    };
    const auto wanted = results();
    inEveryRoundingMode([&] { EXPECT_TRUE(equalBits(results(), wanted)); });
}

TEST(WeightedSum, PointersThenLength)
{
    expectPointersThenLength(zimsNewVar_32f, zimsNewVar_32f_I, zimsNewVar_32s_Sfs, zimsNewVar_32s_ISfs,
                             zimsWeightedSum_32f, zimsWeightedSum_64f, zimsWeightedSum_16s, zimsWeightedSumHalf_32f,
                             zimsWeightedSumHalf_64f, zimsWeightedSumHalf_16s);
}

}  // namespace
}  // namespace zimsr::test
