// Logarithms: of floats against the stated operations one by one, of integers against the exact logarithm, sums against
// long double.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr/logarithm.h>
#include <zimsr/version.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/specials.h"

namespace zimsr::test {
namespace {

// ln(x) of a positive finite x by the contract's operations.
float statedLn(float x)
{
    int e;
    float m = std::frexp(x, &e);  // in [1/2, 1)
    if (bitsOf(m) < 0x3F3504F3) {
        m *= 2;
        --e;
    }
    const float z = (m - 1.0f) / (m + 1.0f);
    const float w = z * z;
    float p = std::bit_cast<float>(0x3E7353DAu);
    for (unsigned bits : {0x3E920CCAu, 0x3ECCCD95u, 0x3F2AAAAAu, 0x40000000u})
        p = std::bit_cast<float>(bits) + w * p;
    return static_cast<float>(e) * 0.6931472f + z * p;
}

float statedLnOfAny(float x)
{
    if (x == 0)
        return -infinity<float>;
    if (x < 0)
        return zimConstantOfNAN_32f;
    return std::isfinite(x) ? statedLn(x) : x;
}

template <class T>
ZimStatus firstFaultOf(const std::vector<T>& x)
{
    for (T value : x)
        if (value <= 0)
            return value == 0 ? zimStsLogOfZero : zimStsLogOfNegative;
    return zimStsOk;
}

// Positive floats of every magnitude.
template <class Float>
std::vector<Float> positives(unsigned seed, std::size_t count)
{
    using Limits = std::numeric_limits<Float>;
    Random random(seed);
    std::vector<Float> x(count);
    for (Float& value : x)
        value = std::ldexp(random.between(Float(1), Float(2)),
                           random.between(Limits::min_exponent - Limits::digits, Limits::max_exponent - 2));
    return x;
}

TEST(Ln_32f, HasTheBitsOfTheStatedOperations)
{
    auto x = positives<float>(1, 200000);
    for (int e = -149; e < 128; ++e)
        for (float m : {1.0f, std::bit_cast<float>(0x3FB504F2u), std::bit_cast<float>(0x3FB504F3u),
                        std::bit_cast<float>(0x3FB504F4u), std::bit_cast<float>(0x3FFFFFFFu)})
            x.push_back(std::ldexp(m, e));
    std::vector<float> wanted;
    for (float value : x)
        wanted.push_back(statedLn(value));
    auto y = x;
    EXPECT_EQ(zimsLn_32f_I(y.data(), static_cast<int>(y.size())), zimStsOk);
    EXPECT_TRUE(equalBits(y, wanted));

    // What this arithmetic reaches, subnormal arguments included.
    long double worst = 0;
    for (std::size_t i = 0; i < x.size(); ++i)
        worst = std::max(worst, ulpError<float>(y[i], std::log(static_cast<long double>(x[i]))));
    EXPECT_LT(worst, 3.0L);
}

TEST(Ln_32f, EveryShapeWithFaultsAnywhere)
{
    auto unusual = specialValues<float>();
    unusual.insert(unusual.end(), {-1.0f, 0.9f * smallestNormal<float>});
    const auto ordinary = positives<float>(2, 5000);
    Random random(2);
    for (int oneIn : {1, 4, 30, 1000})
        forEachShape([&](Shape shape) {
            auto x = shape.take(ordinary);
            for (float& value : x)
                if (random.between(1, oneIn) == 1)
                    value = unusual[random.between<std::size_t>(0, unusual.size() - 1)];
            std::vector<float> wanted;
            for (float value : x)
                wanted.push_back(statedLnOfAny(value));
            const Guarded<float> y(x, shape.place<float>());
            EXPECT_EQ(zimsLn_32f_I(y.data(), shape.len), firstFaultOf(x)) << shape;
            EXPECT_TRUE(equalBits(y.values(), wanted)) << shape;
        });
}

TEST(Ln_32f, SubstitutesAreTheSpecialValues)
{
    const float silentNaN = std::bit_cast<float>(0x7FC12345u);
    std::vector<float> x = {-2, 0, silentNaN};
    EXPECT_EQ(zimsLn_32f_I(x.data(), 3), zimStsLogOfNegative);
    EXPECT_EQ(bitsOf(x[0]), bitsOf(zimConstantOfNAN_32f));
    EXPECT_EQ(bitsOf(x[1]), bitsOf(zimConstantOfINF_NEG_32f));
    EXPECT_EQ(bitsOf(x[2]), bitsOf(silentNaN));
}

// The place of a fault among the vectors and lanes must not change which one is first.
TEST(Ln, TheFirstFaultDecides)
{
    for (int first = 0; first < 40; ++first)
        for (int second = first + 1; second < 40; ++second)
            for (bool zeroFirst : {true, false}) {
                std::vector<float> x(40, 1.0f);
                x[zeroFirst ? first : second] = 0;
                x[zeroFirst ? second : first] = -1;
                std::vector<int> whole(x.begin(), x.end());
                const ZimStatus wanted = zeroFirst ? zimStsLogOfZero : zimStsLogOfNegative;
                float sum;
                EXPECT_EQ(zimsSumLn_32f(x.data(), 40, &sum), wanted);
                EXPECT_EQ(zimsLn_32f_I(x.data(), 40), wanted);
                EXPECT_EQ(zimsLn_32s_ISfs(whole.data(), 40, first - second), wanted);
            }
}

// ---- Integers

Zim32s exactLn(Zim32s x, int scaleFactor)
{
    if (x <= 0)
        return INT_MIN;
    if (scaleFactor >= 0)
        return static_cast<Zim32s>(std::nearbyint(std::log(static_cast<long double>(x)))) >> std::min(scaleFactor, 31);
    const float scaled = statedLn(static_cast<float>(x)) * std::ldexp(1.0f, -std::max(scaleFactor, -127));
    return static_cast<Zim32s>(std::nearbyint(std::min(scaled, 2147483520.0f)));
}

TEST(Ln_32s, EveryFactorAndThreshold)
{
    std::vector<Zim32s> x = {0, -1, INT_MIN, 1, 2, 16777215, 16777217, INT_MAX - 1, INT_MAX};
    for (int k = 0; k < 21; ++k) {
        const auto threshold = static_cast<Zim32s>(std::exp(k + 0.5L));
        x.insert(x.end(), {threshold - 1, threshold, threshold + 1});
    }
    Random random(3);
    for (int i = 0; i < 2000; ++i)
        x.push_back(random.between(1, INT_MAX) >> random.between(0, 30));
    for (int factor :
         {0, 1, 2, 4, 5, 30, 31, 32, INT_MAX, -1, -3, -16, -26, -27, -28, -31, -100, -126, -127, -128, INT_MIN}) {
        std::vector<Zim32s> wanted, y(x.size());
        for (Zim32s value : x)
            wanted.push_back(exactLn(value, factor));
        EXPECT_EQ(zimsLn_32s_Sfs(x.data(), y.data(), static_cast<int>(x.size()), factor), zimStsLogOfZero);
        EXPECT_TRUE(equalBits(y, wanted)) << "factor " << factor;
    }
}

TEST(Ln_32s, EveryShapeInPlaceAndOut)
{
    const auto any = Random(4).any<Zim32s>(5000);
    for (int factor : {1, -20})
        forEachShape([&](Shape shape) {
            const int len = shape.len;
            const Placement place = shape.place<Zim32s>();
            auto x = shape.take(any);
            if (len % 2 != 0)
                for (Zim32s& value : x)
                    value = (value & INT_MAX) | 1;
            std::vector<Zim32s> wanted;
            for (Zim32s value : x)
                wanted.push_back(exactLn(value, factor));
            const Guarded<Zim32s> src(x, place), dst(x.size(), place), srcDst(x, place);
            EXPECT_EQ(zimsLn_32s_Sfs(src.data(), dst.data(), len, factor), firstFaultOf(x)) << shape;
            EXPECT_EQ(zimsLn_32s_ISfs(srcDst.data(), len, factor), firstFaultOf(x)) << shape;
            EXPECT_TRUE(equalBits(dst.values(), wanted)) << shape;
            EXPECT_TRUE(equalBits(srcDst.values(), wanted)) << shape;
        });
}

// ---- Sums

ZimStatus sumLn(const Zim32f* src, int len, Zim32f* dst)
{
    return zimsSumLn_32f(src, len, dst);
}

ZimStatus sumLn(const Zim64f* src, int len, Zim64f* dst)
{
    return zimsSumLn_64f(src, len, dst);
}

template <class Float>
class SumLn : public testing::Test {
};
using FloatTypes = testing::Types<Zim32f, Zim64f>;
TYPED_TEST_SUITE(SumLn, FloatTypes);

template <class Float>
void expectSum(const std::vector<Float>& x, Placement placement)
{
    long double exact = 0, bound = static_cast<long double>(x.size()) * 0x1p-53L;
    for (std::size_t begin = 0; begin < x.size(); begin += 512) {
        long double block = 0;
        for (std::size_t i = begin; i < std::min(begin + 512, x.size()); ++i)
            block += std::log(static_cast<long double>(x[i]));
        exact += block;
        bound += 0x1p-51L * std::fabs(block) + 0x1p-53L * std::fabs(exact);
    }
    bound += std::fabs(exact) * std::numeric_limits<Float>::epsilon() / 2;
    const Guarded<Float> src(x, placement);
    const Guarded<Float> dst(1);
    EXPECT_EQ(sumLn(src.data(), static_cast<int>(x.size()), dst.data()), zimStsOk);
    EXPECT_LE(std::fabs(dst.data()[0] - exact), bound) << x.size();
}

TYPED_TEST(SumLn, EveryShapeAgainstTheSumOfLogarithms)
{
    using Float = TypeParam;
    const auto spread = positives<Float>(5, 5000);
    // Exponents that cancel the product of the significands, all but a little.
    const auto near = Random(6).vector<Float>(5000, Float(0.999), Float(1));
    forEachShape([&](Shape shape) {
        expectSum(shape.take(spread), shape.place<Float>());
        expectSum(shape.take(near), shape.place<Float>());
    });
}

// All lanes multiply the same significands, each of which is the one of many that the product is rounded up by most,
// while the exponents keep the sum near zero: the errors of the lanes add up.
TEST(SumLn64f, RoundingsThatAllGoUpward)
{
    Random random(8);
    std::vector<Zim64f> x;
    Zim64f product = 1;
    long double sum = 0;
    while (x.size() < 512) {
        const auto candidates = random.vector<Zim64f>(200, 1, 2);
        const auto roundedUp = [product](Zim64f value) {
            return product * value / (static_cast<long double>(product) * value);
        };
        const Zim64f significand = *std::max_element(candidates.begin(), candidates.end(),
                                                     [=](Zim64f a, Zim64f b) { return roundedUp(a) < roundedUp(b); });
        product *= significand;
        x.insert(x.end(), 8, sum > 0 ? significand / 2 : significand);
        sum += std::log(static_cast<long double>(x.back()));
    }
    expectSum(x, {});
}

TYPED_TEST(SumLn, ExtremesNeitherOverflowNorVanish)
{
    using Float = TypeParam;
    for (Float x :
         {smallest<Float>, smallestNormal<Float>, largest<Float>, std::nextafter(Float(2), Float(0)), Float(1)})
        expectSum(std::vector<Float>(1500, x), {});
}

TYPED_TEST(SumLn, TheFirstElementWithoutLogarithmEndsTheCall)
{
    using Float = TypeParam;
    const Float inf = infinity<Float>;
    const struct {
        std::vector<Float> planted;
        Float sum;
        ZimStatus status;
    } cases[] = {
        {{0}, inf, zimStsLogOfZero},
        {{Float(-0.0), -1}, inf, zimStsLogOfZero},
        {{-smallest<Float>, 0}, nan<Float>, zimStsLogOfNegative},
        {{-inf, nan<Float>}, nan<Float>, zimStsLogOfNegative},
        {{nan<Float>, 0, -1}, nan<Float>, zimStsOk},
        {{inf}, inf, zimStsOk},
        {{inf, 0}, inf, zimStsLogOfZero},
        {{inf, -1}, nan<Float>, zimStsLogOfNegative},
        {{inf, smallest<Float>, nan<Float>, 0}, nan<Float>, zimStsOk},
    };
    for (const auto& c : cases)
        for (int place : {0, 3, 8, 500, 511, 512, 600, 1100})
            for (int distance : {1, 7, 100}) {
                std::vector<Float> x(1500, Float(0.5));
                for (std::size_t i = 0; i < c.planted.size(); ++i)
                    x[place + i * distance] = c.planted[i];
                Float sum = 1;
                EXPECT_EQ(sumLn(x.data(), 1500, &sum), c.status);
                EXPECT_TRUE(sameBits(sum, c.sum)) << sum << " at " << place;
            }
    Float sum;
    const Float negative = -1;
    sumLn(&negative, 1, &sum);
    EXPECT_TRUE(std::signbit(sum)) << "the NaN is the library's constant";
}

TEST(Logarithms, CheckPointersThenLength)
{
    expectPointersThenLength(zimsLn_32f_I, zimsLn_32s_Sfs, zimsLn_32s_ISfs, zimsSumLn_32f, zimsSumLn_64f);
}

}  // namespace
}  // namespace zimsr::test
