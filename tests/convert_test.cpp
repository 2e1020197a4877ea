// Conversions against exact values: long double holds every source scaled by every power of two that matters.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <zimsr/convert.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/random.h"
#include "support/rounding.h"
#include "support/shapes.h"
#include "support/specials.h"

namespace zimsr::test {
namespace {

const int factors[] = {0,    1,     -1,    3,     -4,   14,    -14,   15,      -15,    16,   -16, 30,
                       31,   32,    -31,   -95,   -96,  -97,   -111,  -112,    -113,   126,  127, -126,
                       -127, -128,  149,   150,   151,  -149,  -200,  -253,    -254,   -255, 252, 300,
                       1022, -1008, -1009, -1023, 1023, -1024, -1100, INT_MIN, INT_MAX};

// v * 2^-factor, exactly; the exponent is limited where all results are 0 or saturated.
long double scaled(long double v, int factor)
{
    return std::ldexp(v, -std::clamp(factor, -5000, 5000));
}

template <class Int>
Int quantised(long double v, bool truncates)
{
    using Limits = std::numeric_limits<Int>;
    if (std::isnan(v))
        return Limits::min();
    const long double whole = truncates ? std::trunc(v) : std::nearbyint(v);
    return static_cast<Int>(std::clamp<long double>(whole, Limits::min(), Limits::max()));
}

// Where rounding and limiting decide: halves, bounds and their neighbours, all magnitudes, specials.
template <class Float>
std::vector<Float> criticalValues()
{
    std::vector<Float> values = specialValues<Float>();
    values.insert(values.end(), {Float(1e-30), Float(-3e37)});
    for (double centre :
         {0.0, 1.0, 2.0, 32767.0, 32768.0, 32769.0, 40000.0, 2147483647.0, 2147483648.0, 2147483649.0, 3e9})
        for (double step : {-1.0, -0.5, 0.0, 0.25, 0.5, 1.0})
            for (double sign : {1.0, -1.0}) {
                const Float v = static_cast<Float>(sign * (centre + step));
                values.insert(values.end(),
                              {v, std::nextafter(v, infinity<float>), std::nextafter(v, -infinity<float>)});
            }
    Random random(11);
    for (int i = 0; i < 200; ++i)
        values.push_back(static_cast<Float>(random.between(-70000, 70000) / 2.0));
    return values;
}

template <class Float, class Int>
using Quantiser = ZimStatus (*)(const Float*, Int*, int, int, int);

template <class Float, class Int>
void expectQuantises(Quantiser<Float, Int> convert)
{
    const std::vector<Float> values = criticalValues<Float>();
    const int len = static_cast<int>(values.size());
    for (int factor : factors)
        for (int rndMode : {0, 1, 2, -1}) {
            std::vector<Int> wanted;
            for (Float v : values)
                wanted.push_back(quantised<Int>(scaled(v, factor), rndMode == 0));
            inEveryRoundingMode([&] {
                std::vector<Int> actual(values.size());
                const ZimStatus status = convert(values.data(), actual.data(), len, rndMode, factor);
                EXPECT_EQ(status, zimStsOk);
                EXPECT_TRUE(equalBits(actual, wanted)) << "factor " << factor << " rndMode " << rndMode;
            });
        }
}

TEST(Quantise, EveryFactorAndModeAgainstTheExactValue)
{
    expectQuantises<Zim32f, Zim16s>(zimsConvert_32f16s_Sfs);
    expectQuantises<Zim32f, Zim32s>(zimsConvert_32f32s_Sfs);
    expectQuantises<Zim64f, Zim32s>(zimsConvert_64f32s_Sfs);
}

TEST(Quantise, StatedExamples)
{
    const std::vector<Zim32f> src = {0.5f, 1.5f, 2.5f, 3.5f, 40000.0f, -40000.0f, -1.9f};
    std::vector<Zim16s> dst(src.size());
    zimsConvert_32f16s_Sfs(src.data(), dst.data(), 7, 1, 0);
    EXPECT_EQ(dst, (std::vector<Zim16s>{0, 2, 2, 4, 32767, -32768, -2}));
    zimsConvert_32f16s_Sfs(src.data(), dst.data(), 7, 0, 0);
    EXPECT_EQ(dst, (std::vector<Zim16s>{0, 1, 2, 3, 32767, -32768, -1}));
}

TEST(Conversions, EveryShape)
{
    Random random(12);
    const auto bytes = random.any<Zim8u>(300);
    const auto shorts = random.any<Zim16s>(300);
    const auto ints = random.any<Zim32s>(300);
    const auto floats = criticalValues<Zim32f>();
    const auto doubles = criticalValues<Zim64f>();
    const auto plain = [](auto v) { return static_cast<Zim32f>(v); };
    expectElementwise<Zim32f>(zimsConvert_8u32f, plain, bytes);
    expectElementwise<Zim32f>(zimsConvert_16s32f, plain, shorts);
    expectElementwise<Zim32f>(zimsConvert_32s32f, plain, ints);
    expectElementwise<Zim32f>(zimsConvert_64f32f, plain, doubles);
    expectElementwise<Zim32f>([](auto... call) { return zimsConvert_16s32f_Sfs(call..., 7); },
                              [](Zim16s v) { return v / 128.0f; }, shorts);
    expectElementwise<Zim64f>([](auto... call) { return zimsConvert_16s64f_Sfs(call..., -9); },
                              [](Zim16s v) { return v * 512.0; }, shorts);
    expectElementwise<Zim32f>([](auto... call) { return zimsConvert_32s32f_Sfs(call..., 31); },
                              [](Zim32s v) { return static_cast<Zim32f>(v) / 2147483648.0f; }, ints);
    expectElementwise<Zim16s>([](auto... call) { return zimsConvert_32s16s_Sfs(call..., 16); },
                              [](Zim32s v) { return quantised<Zim16s>(v / 65536.0L, false); }, ints);
    expectElementwise<Zim16s>([](auto... call) { return zimsConvert_32f16s_Sfs(call..., 1, 1); },
                              [](Zim32f v) { return quantised<Zim16s>(v / 2.0L, false); }, floats);
    expectElementwise<Zim32s>([](auto... call) { return zimsConvert_32f32s_Sfs(call..., 0, -1); },
                              [](Zim32f v) { return quantised<Zim32s>(v * 2.0L, true); }, floats);
    expectElementwise<Zim32s>([](auto... call) { return zimsConvert_64f32s_Sfs(call..., 1, -1); },
                              [](Zim64f v) { return quantised<Zim32s>(v * 2.0L, false); }, doubles);
}

TEST(Conversions, IntegersToFloatsRoundToNearestInEveryModeOfTheCaller)
{
    const std::vector<Zim32s> ints = {INT_MAX, INT_MIN, 16777217, 16777219, -16777217, 2147483584, 2147483583, 5};
    const std::vector<Zim64f> doubles = {1.1, -1.1, 1e-46, 1e39, 16777217.0, -3.3e38};
    std::vector<Zim32f> fromInts, scaledInts, fromDoubles;
    for (Zim32s v : ints) {
        fromInts.push_back(static_cast<Zim32f>(v));
        scaledInts.push_back(std::ldexp(static_cast<Zim32f>(v), -126));
    }
    for (Zim64f v : doubles)
        fromDoubles.push_back(static_cast<Zim32f>(v));
    inEveryRoundingMode([&] {
        std::vector<Zim32f> a(ints.size()), b(ints.size()), c(doubles.size());
        zimsConvert_32s32f(ints.data(), a.data(), static_cast<int>(a.size()));
        zimsConvert_32s32f_Sfs(ints.data(), b.data(), static_cast<int>(b.size()), 126);
        zimsConvert_64f32f(doubles.data(), c.data(), static_cast<int>(c.size()));
        EXPECT_TRUE(equalBits(a, fromInts));
        EXPECT_TRUE(equalBits(b, scaledInts));
        EXPECT_TRUE(equalBits(c, fromDoubles));
    });
}

TEST(Conversions, FactorsOfScaledFloatsAreLimited)
{
    const std::vector<Zim16s> shorts = {-32768, -1, 0, 1, 3, 32767};
    const std::vector<Zim32s> ints = {INT_MIN, -1, 0, 1, 3, INT_MAX};
    for (int factor : factors)
        for (std::size_t i = 0; i < shorts.size(); ++i) {
            Zim32f fromShort, fromInt;
            Zim64f wide;
            zimsConvert_16s32f_Sfs(&shorts[i], &fromShort, 1, factor);
            zimsConvert_16s64f_Sfs(&shorts[i], &wide, 1, factor);
            zimsConvert_32s32f_Sfs(&ints[i], &fromInt, 1, factor);
            EXPECT_EQ(fromShort, scaled(shorts[i], std::clamp(factor, -112, 126))) << factor;
            EXPECT_EQ(wide, scaled(shorts[i], std::clamp(factor, -1008, 1022))) << factor;
            EXPECT_EQ(fromInt, scaled(static_cast<Zim32f>(ints[i]), std::clamp(factor, -96, 126))) << factor;
        }
}

TEST(Conversions, IntegersShortenByTheIntegerRule)
{
    Random random(13);
    std::vector<Zim32s> values = {INT_MIN, INT_MIN + 1, -1, 0, 1, INT_MAX, INT_MAX - 1, 32767, 32768, -32768, -32769};
    for (int bit = 0; bit < 31; ++bit)
        for (int near : {-1, 0, 1})
            for (Zim64s v : {Zim64s{1} << bit, Zim64s{3} << bit, Zim64s{5} << bit})
                if (v + near <= INT_MAX)
                    values.insert(values.end(), {static_cast<Zim32s>(v + near), static_cast<Zim32s>(-v - near)});
    for (int factor : factors) {
        std::vector<Zim16s> actual(values.size()), wanted;
        for (Zim32s v : values)
            wanted.push_back(quantised<Zim16s>(scaled(v, std::clamp(factor, -15, 31)), false));
        EXPECT_EQ(zimsConvert_32s16s_Sfs(values.data(), actual.data(), static_cast<int>(values.size()), factor),
                  zimStsOk);
        EXPECT_TRUE(equalBits(actual, wanted)) << "factor " << factor;
    }
}

TEST(Conversions, ElementsOfOneSizeConvertInPlace)
{
    const std::vector<Zim32f> floats = Random(14).vector<Zim32f>(37, -1e6f, 1e6f);
    std::vector<Zim32f> shared = floats;
    std::vector<Zim32s> apart(floats.size());
    zimsConvert_32f32s_Sfs(floats.data(), apart.data(), 37, 1, 2);
    Zim32s* inPlace = reinterpret_cast<Zim32s*>(shared.data());
    zimsConvert_32f32s_Sfs(shared.data(), inPlace, 37, 1, 2);
    EXPECT_EQ(std::memcmp(inPlace, apart.data(), sizeof(Zim32s) * 37), 0);
}

TEST(Conversions, Checks)
{
    expectPointersThenLength(zimsConvert_8u32f, zimsConvert_16s32f, zimsConvert_32s32f, zimsConvert_64f32f,
                             zimsConvert_16s32f_Sfs, zimsConvert_16s64f_Sfs, zimsConvert_32s32f_Sfs,
                             zimsConvert_32s16s_Sfs, zimsConvert_32f16s_Sfs, zimsConvert_32f32s_Sfs,
                             zimsConvert_64f32s_Sfs);
}

}  // namespace
}  // namespace zimsr::test
