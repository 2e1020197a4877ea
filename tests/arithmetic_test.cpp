// Elementwise arithmetic against the scalar formula in the type of the elements, which rounds each operation once.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr/arithmetic.h>
#include <zimsr/version.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"
#include "support/rounding.h"
#include "support/shapes.h"
#include "support/specials.h"

namespace zimsr::test {
namespace {

// Numbers of all magnitudes with specials strewn in.
template <class Float>
std::vector<Float> mixedValues(unsigned seed)
{
    Random random(seed);
    std::vector<Float> values = specialValues<Float>();
    for (int i = 0; i < 300; ++i)
        values.push_back(std::ldexp(random.between<Float>(-1, 1), random.between(-40, 40)));
    std::rotate(values.begin(), values.begin() + seed % 7, values.end());
    return values;
}

template <class Float>
std::vector<Float> withoutZeros(std::vector<Float> values)
{
    std::replace(values.begin(), values.end(), Float(0), Float(1));
    return values;
}

const auto x32 = mixedValues<Zim32f>(1), y32 = mixedValues<Zim32f>(2);
const auto x64 = mixedValues<Zim64f>(3), y64 = mixedValues<Zim64f>(4);

TEST(Arithmetic, EveryShape)
{
    const auto add = [](auto old, auto v) { return old + v; };
    const auto subtract = [](auto old, auto v) { return old - v; };
    expectInPlace(zimsAdd_32f_I, add, x32, y32);
    expectInPlace(zimsAdd_64f_I, add, x64, y64);
    expectInPlace(zimsSub_32f_I, subtract, x32, y32);
    expectInPlace(zimsSub_64f_I, subtract, x64, y64);
    expectElementwise<Zim64f>(
        zimsAbs_64f, [](Zim64f v) { return std::fabs(v); }, x64);
    expectElementwise<Zim32f>(
        zimsMul_32f, [](Zim32f a, Zim32f b) { return a * b; }, x32, y32);
    expectElementwise<Zim32f>(
        [](const Zim32f* src, Zim32f* dst, int len) { return zimsAddC_32f(src, -1.5f, dst, len); },
        [](Zim32f v) { return v - 1.5f; }, x32);
}

TEST(Arithmetic, AbsClearsTheSignOfANaN)
{
    const Zim64f src[3] = {zimConstantOfNAN_64f, -0.0, zimConstantOfINF_NEG_64f};
    Zim64f dst[3];
    zimsAbs_64f(src, dst, 3);
    EXPECT_EQ(bitsOf(dst[0]), 0x7FF8000000000000u);
    EXPECT_EQ(bitsOf(dst[1]), 0u);
    EXPECT_EQ(dst[2], zimConstantOfINF_64f);
}

// ---- Constants

template <class Float>
struct ConstantForms {
    ZimStatus (*apart)(const Float*, Float, Float*, int);
    ZimStatus (*inPlace)(Float, Float*, int);
};
constexpr ConstantForms<Zim32f> mulC32 = {zimsMulC_32f, zimsMulC_32f_I}, divC32 = {zimsDivC_32f, zimsDivC_32f_I};
constexpr ConstantForms<Zim64f> mulC64 = {zimsMulC_64f, zimsMulC_64f_I}, divC64 = {zimsDivC_64f, zimsDivC_64f_I};

template <class Float, class Element>
void expectConstant(ConstantForms<Float> forms, const std::vector<Float>& values, Float val, Element element)
{
    expectElementwise<Float>([&](const Float* src, Float* dst, int len) { return forms.apart(src, val, dst, len); },
                             element, values);
    expectInPlace([&](Float* srcDst, int len) { return forms.inPlace(val, srcDst, len); }, element, values);
}

template <class Float>
void expectConstants(ConstantForms<Float> product, ConstantForms<Float> quotient, const std::vector<Float>& values)
{
    for (Float val : {Float(3.7), infinity<Float>, nan<Float>})
        expectConstant(product, values, val, [=](Float v) { return v * val; });
    for (Float val : {Float(0), Float(-0.0)})
        expectConstant(product, values, val, [](Float) { return Float(0); });
    expectConstant(product, values, Float(1), [](Float v) { return v; });
    // The reciprocal is rounded before it is multiplied by; that of an infinity is 0, and fills.
    for (Float val : {Float(3), Float(-0.7), smallest<Float>})
        expectConstant(quotient, values, val, [=](Float v) { return v * (1 / val); });
    expectConstant(quotient, values, -infinity<Float>, [](Float) { return Float(0); });
}

TEST(Constants, ProductsAndQuotients)
{
    expectConstants(mulC32, divC32, x32);
    expectConstants(mulC64, divC64, x64);
}

// Where the long forms begin: written past the cache, fetched ahead.
TEST(Constants, LongRows)
{
    for (int len : {131072, 131080, 131081, 262145, 300007})
        for (std::size_t offset : {0, 4, 20}) {
            const std::vector<Zim32f> values = Random(5).vector<Zim32f>(len, -9, 9);
            std::vector<Zim32f> wanted = values;
            for (Zim32f& v : wanted)
                v *= 0.3f;
            const Guarded<Zim32f> src(values), dst(values.size(), atOffset(offset)), srcDst(values);
            EXPECT_EQ(zimsMulC_32f(src, 0.3f, dst, len), zimStsOk);
            EXPECT_EQ(zimsMulC_32f_I(0.3f, srcDst, len), zimStsOk);
            EXPECT_TRUE(equalBits(dst.values(), wanted));
            EXPECT_TRUE(equalBits(srcDst.values(), wanted));
        }
    const Guarded<Zim64f> srcDst(std::vector<Zim64f>(150001, 7.0));
    EXPECT_EQ(zimsMulC_64f_I(0.5, srcDst, 150001), zimStsOk);
    EXPECT_EQ(srcDst.values(), std::vector<Zim64f>(150001, 3.5));
}

// Bits that an addition of 0 or a multiplication by 1 would lose.
TEST(Constants, CopiesKeepEveryBit)
{
    const std::vector<Zim32u> bits = {0x80000000u, 0x7FA00001u, 0xFFA00001u, 0x00000001u, 0xFFC00000u};
    const auto* src = reinterpret_cast<const Zim32f*>(bits.data());
    std::vector<Zim32u> copied(bits.size());
    auto* dst = reinterpret_cast<Zim32f*>(copied.data());
    for (Zim32f zero : {0.0f, -0.0f}) {
        std::fill(copied.begin(), copied.end(), 0);
        EXPECT_EQ(zimsAddC_32f(src, zero, dst, 5), zimStsOk);
        EXPECT_EQ(copied, bits);
    }
    std::fill(copied.begin(), copied.end(), 0);
    EXPECT_EQ(zimsMulC_32f(src, 1, dst, 5), zimStsOk);
    EXPECT_EQ(copied, bits);
    EXPECT_EQ(zimsMulC_32f_I(1, dst, 5), zimStsOk);
    EXPECT_EQ(copied, bits);
}

// ---- Quotients

// The quotient, or its substitute.
template <class Float>
Float quotientOf(Float divisor, Float dividend)
{
    if (divisor != 0)
        return dividend / divisor;
    if (dividend > 0)
        return infinity<Float>;
    return dividend < 0 ? -infinity<Float> : nan<Float>;
}

TEST(Quotients, ExactAtEveryShape)
{
    const auto divisors32 = withoutZeros(x32);
    const auto divisors64 = withoutZeros(x64);
    expectElementwise<Zim32f>(zimsDiv_32f, quotientOf<Zim32f>, divisors32, y32);
    expectElementwise<Zim64f>(zimsDiv_64f, quotientOf<Zim64f>, divisors64, y64);
    expectInPlace(
        zimsDiv_32f_I, [](Zim32f old, Zim32f divisor) { return old / divisor; }, y32, divisors32);
}

template <class Float>
void expectZeroDivisors(ZimStatus (*divide)(const Float*, const Float*, Float*, int), Float notANumber)
{
    auto dividends = specialValues<Float>();
    dividends.insert(dividends.end(), {3, -3});
    for (Float zero : {Float(0), Float(-0.0)})
        for (int len : {1, 2, 7, 8, 9, 15, 17})
            for (int at = 0; at < len; ++at)
                for (Float dividend : dividends) {
                    std::vector<Float> divisors(len, 2), values(divisors.size(), 5);
                    divisors[at] = zero;
                    values[at] = dividend;
                    const Guarded<Float> dst(divisors.size());
                    EXPECT_EQ(divide(Guarded<Float>(divisors), Guarded<Float>(values), dst, len), zimStsDivByZeroWarn);
                    const Float substitute = quotientOf(zero, dividend);
                    for (int i = 0; i < len; ++i)
                        if (i != at)
                            EXPECT_EQ(dst[i], 2.5);
                        else
                            EXPECT_EQ(bitsOf(dst[i]), bitsOf(std::isnan(substitute) ? notANumber : substitute))
                                << dividend;
                }
}

TEST(Quotients, ZeroDivisorsAreSubstitutedWhereverTheyStand)
{
    expectZeroDivisors(zimsDiv_32f, zimConstantOfNAN_32f);
    expectZeroDivisors(zimsDiv_64f, zimConstantOfNAN_64f);
}

TEST(Quotients, AConstantOfZeroIsRefused)
{
    Zim32f dst32[1] = {77};
    Zim64f dst64[1] = {77};
    const Zim32f src32[1] = {1};
    const Zim64f src64[1] = {1};
    for (float zero : {0.0f, -0.0f})
        expectStatuses({{"32f", zimsDivC_32f(src32, zero, dst32, 1), zimStsDivideByZero},
                        {"64f", zimsDivC_64f(src64, zero, dst64, 1), zimStsDivideByZero},
                        {"32f in place", zimsDivC_32f_I(zero, dst32, 1), zimStsDivideByZero},
                        {"64f in place", zimsDivC_64f_I(zero, dst64, 1), zimStsDivideByZero},
                        {"null first", zimsDivC_32f(nullptr, zero, dst32, 1), zimStsNullPointer},
                        {"size first", zimsDivC_32f(src32, zero, dst32, 0), zimStsBadSize},
                        {"size first, in place", zimsDivC_64f_I(zero, dst64, 0), zimStsBadSize}});
    EXPECT_EQ(dst32[0], 77);
    EXPECT_EQ(dst64[0], 77);
}

// ---- Integers

Zim16s scaledProduct(Zim16s a, Zim16s b, int scaleFactor)
{
    const int limited = std::clamp(scaleFactor, -100, 100);
    const long double exact = std::ldexp(static_cast<long double>(a) * b, -limited);
    return static_cast<Zim16s>(std::clamp(std::nearbyint(exact), -32768.0L, 32767.0L));
}

TEST(Integers, ScaledProductsByTheWholeTable)
{
    Random random(6);
    std::vector<Zim16s> a = {-32768, -32768, 32767, -1, 1, 0, 0, 1, 3, 5, 7, -3, -5, 3},
                        b = {-32768, 32767, 32767, 1, 1, -5, 0, 1, 1, 1, 1, 1, 1, 2};
    for (int i = 0; i < 400; ++i) {
        // Products near halves of every factor.
        a.push_back(static_cast<Zim16s>(random.between(-9, 9) * (1 << random.between(0, 11))));
        b.push_back(static_cast<Zim16s>(random.between(-9, 9) * (1 << random.between(0, 11)) + random.between(-1, 1)));
    }
    const int len = static_cast<int>(a.size());
    std::vector<int> scaleFactors = {INT_MIN, INT_MIN + 1, -100, 63, 64, INT_MAX};
    for (int factor = -34; factor <= 34; ++factor)
        scaleFactors.push_back(factor);
    for (int factor : scaleFactors) {
        std::vector<Zim16s> dst(a.size()), wanted;
        for (std::size_t i = 0; i < a.size(); ++i)
            wanted.push_back(factor > 30 ? Zim16s{0} : scaledProduct(a[i], b[i], factor));
        EXPECT_EQ(zimsMul_16s_Sfs(a.data(), b.data(), dst.data(), len, factor), zimStsOk);
        EXPECT_TRUE(equalBits(dst, wanted)) << "factor " << factor;
    }
    for (int factor : {-2, 0, 9, 40})
        expectElementwise<Zim16s>(
            [&](auto... call) { return zimsMul_16s_Sfs(call..., factor); },
            [&](Zim16s x, Zim16s y) { return factor > 30 ? Zim16s{0} : scaledProduct(x, y, factor); }, a, b);
}

std::vector<Zim16s> withoutMean(const std::vector<Zim16s>& values)
{
    long long sum = 0;
    for (Zim16s v : values)
        sum += v;
    const long long m = 2 * sum / static_cast<long long>(values.size());
    std::vector<Zim16s> result;
    for (Zim16s x : values) {
        long long v = 2LL * x - m;
        v += v > 0 ? 1 : v < 0 ? -1 : 0;
        result.push_back(static_cast<Zim16s>(std::clamp(v >> 1, -32767LL, 32767LL)));
    }
    return result;
}

TEST(Integers, ZeroMean)
{
    Random random(7);
    for (auto [low, high] :
         {std::pair(-32768, 32767), std::pair(-32768, -32760), std::pair(32000, 32767), std::pair(-3, 2)})
        forEachShape([&, low = low, high = high](Shape shape) {
            auto values = random.vector(shape.len, Zim16s(low), Zim16s(high));
            values.back() = Zim16s(-32768);
            const Guarded<Zim16s> srcDst(values, shape.place<Zim16s>());
            EXPECT_EQ(zimsZeroMean_16s(srcDst, shape.len), zimStsOk);
            EXPECT_TRUE(equalBits(srcDst.values(), withoutMean(values))) << shape;
        });
    // The sum does not fit 32 bits.
    std::vector<Zim16s> many(200001, 32767);
    many[5] = -32768;
    const auto wanted = withoutMean(many);
    EXPECT_EQ(zimsZeroMean_16s(many.data(), 200001), zimStsOk);
    EXPECT_TRUE(equalBits(many, wanted));
}

// ---- Magnitudes and roots

TEST(Magnitudes, FloatsRoundEachOperation)
{
    std::vector<Zim32fc> values;
    for (std::size_t i = 0; i < x32.size(); ++i)
        values.push_back({x32[i], y32[i]});
    expectElementwise<Zim32f>(
        zimsMagnitude_32fc, [](Zim32fc z) { return std::sqrt(z.re * z.re + z.im * z.im); }, values);
}

TEST(Magnitudes, ScaledIntegersInEveryModeOfTheCaller)
{
    Random random(8);
    std::vector<Zim32sc> values = {{INT_MIN, INT_MIN}, {INT_MAX, INT_MIN}, {0, 0}, {0, -1}, {3, 4}, {5, 0}, {0, 7},
                                   {-20, 21}};
    for (int i = 0; i < 100; ++i) {
        const int limit = 1 << random.between(1, 30);
        values.push_back({random.between(-limit, limit), random.between(-limit, limit)});
    }
    const int len = static_cast<int>(values.size());
    for (int factor : {0, 1, 2, -1, 5, 31, 33, 34, -20, 64, 65, -64, -65, -1024, 1087, INT_MIN, INT_MAX}) {
        std::vector<Zim32s> wanted;
        for (Zim32sc z : values) {
            const double re = z.re, im = z.im;
            const long double magnitude = std::sqrt(re * re + im * im);
            const long double scaled = std::ldexp(magnitude, -std::clamp(factor, -2000, 2000));
            wanted.push_back(static_cast<Zim32s>(std::min(std::nearbyint(scaled), 2147483647.0L)));
        }
        inEveryRoundingMode([&] {
            std::vector<Zim32s> dst(values.size());
            EXPECT_EQ(zimsMagnitude_32sc_Sfs(values.data(), dst.data(), len, factor), zimStsOk);
            EXPECT_TRUE(equalBits(dst, wanted)) << "factor " << factor;
        });
    }
    expectElementwise<Zim32s>([](auto... call) { return zimsMagnitude_32sc_Sfs(call..., 3); },
                              [](Zim32sc z) {
                                  const double re = z.re, im = z.im;
                                  return static_cast<Zim32s>(std::nearbyint(std::sqrt(re * re + im * im) / 8));
                              },
                              values);
}

TEST(Roots, NegativeElementsBecomeNaNAndWarn)
{
    std::vector<Zim64f> values;
    for (Zim64f v : x64)
        values.push_back(std::fabs(v));
    values.push_back(-0.0);
    expectInPlace(
        zimsSqrt_64f_I, [](Zim64f v) { return std::sqrt(v); }, values);
    for (int len = 1; len <= 12; ++len)
        for (int at = 0; at < len; ++at)
            for (Zim64f negative : {-4.0, zimConstantOfINF_NEG_64f, -5e-324}) {
                Guarded<Zim64f> srcDst(std::vector<Zim64f>(len, 9));
                srcDst[at] = negative;
                EXPECT_EQ(zimsSqrt_64f_I(srcDst, len), zimStsSqrtOfNegative);
                for (int i = 0; i < len; ++i)
                    EXPECT_EQ(bitsOf(srcDst[i]), bitsOf(i == at ? zimConstantOfNAN_64f : 3.0));
            }
}

// ---- Columns

TEST(Columns, ProductWithAConstant)
{
    const auto values = Random(9).vector<Zim64f>(7 * 5, -9, 9);
    for (auto multiply : {zimsMulColumn_64f_D2L, zimsMulCol_64f_D2L})
        for (int col = 0; col < 5; ++col)
            for (int firstRow = 0; firstRow < 7; ++firstRow) {
                const RowMatrix<Zim64f> matrix(values, 7, 5);
                auto wanted = values;
                for (int r = firstRow; r < 7; ++r)
                    wanted[5 * r + col] *= 1.7;
                EXPECT_EQ(multiply(matrix.writable(), 5, 7, col, firstRow, 1.7), zimStsOk);
                EXPECT_TRUE(equalBits(matrix.values(), wanted));
            }
    const RowMatrix<Zim64f> matrix(values, 7, 5);
    Zim64f* const* rows = matrix.writable();
    expectStatuses({{"null first", zimsMulColumn_64f_D2L(nullptr, 0, 0, -1, -1, 2), zimStsNullPointer},
                    {"width", zimsMulColumn_64f_D2L(rows, 0, 7, 0, 0, 2), zimStsBadSize},
                    {"height", zimsMulColumn_64f_D2L(rows, 5, 0, 0, 0, 2), zimStsBadSize},
                    {"col below", zimsMulColumn_64f_D2L(rows, 5, 7, -1, 0, 2), zimStsBadSize},
                    {"col above", zimsMulColumn_64f_D2L(rows, 5, 7, 5, 0, 2), zimStsBadSize},
                    {"firstRow below", zimsMulColumn_64f_D2L(rows, 5, 7, 0, -1, 2), zimStsBadSize},
                    {"firstRow above", zimsMulCol_64f_D2L(rows, 5, 7, 0, 7, 2), zimStsBadSize}});
    EXPECT_TRUE(equalBits(matrix.values(), values));
}

TEST(Arithmetic, Checks)
{
    expectPointersThenLength(zimsAbs_64f, zimsAdd_32f_I, zimsAdd_64f_I, zimsSub_32f_I, zimsSub_64f_I, zimsAddC_32f,
                             zimsMul_32f, zimsMulC_32f, zimsMulC_64f, zimsMulC_32f_I, zimsMulC_64f_I, zimsDiv_32f,
                             zimsDiv_64f, zimsDiv_32f_I, zimsDivC_32f, zimsDivC_64f, zimsDivC_32f_I, zimsDivC_64f_I,
                             zimsMul_16s_Sfs, zimsMagnitude_32fc, zimsMagnitude_32sc_Sfs, zimsSqrt_64f_I);
    Zim16s x[1] = {5};
    expectStatuses({{"size before null", zimsZeroMean_16s(nullptr, 0), zimStsBadSize},
                    {"size", zimsZeroMean_16s(x, -1), zimStsBadSize},
                    {"null", zimsZeroMean_16s(nullptr, 1), zimStsNullPointer}});
}

}  // namespace
}  // namespace zimsr::test
