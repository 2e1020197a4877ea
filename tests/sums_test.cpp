// Sums and inner products: the exact ones against wide integers, the float ones against a sum in higher precision.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr/sums.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/shapes.h"

namespace zimsr::test {
namespace {

const int scaleFactors[] = {0,  1,    2,       7,  15, 31,  40,  47,  61,  62,  63,
                            64, 1000, INT_MAX, -1, -5, -30, -31, -32, -63, -64, INT_MIN};

// round(v * 2^-factor), half to even, saturated.
Zim32s scaledSum(long double v, int factor)
{
    const long double rounded = std::nearbyint(std::ldexp(v, -std::clamp(factor, -200, 200)));
    return static_cast<Zim32s>(std::clamp<long double>(rounded, INT_MIN, INT_MAX));
}

template <class T>
void expectIntegerSums(ZimStatus (*sumOf)(const T*, int, Zim32s*, int), const std::vector<T>& values)
{
    forEachShape([&](Shape shape) {
        const auto taken = shape.take(values);
        const Guarded<T> src(taken, shape.place<T>());
        Zim64s exact = 0;
        for (T v : taken)
            exact += v;
        for (int factor : scaleFactors) {
            Zim32s dst = 0;
            EXPECT_EQ(sumOf(src, shape.len, &dst, factor), zimStsOk);
            EXPECT_EQ(dst, scaledSum(exact, factor)) << shape << " factor " << factor;
        }
    });
}

TEST(IntegerSums, ExactThenScaledByTheIntegerRule)
{
    Random random(1);
    expectIntegerSums(zimsSum_32s_Sfs, random.any<Zim32s>(500));
    expectIntegerSums(zimsSum_32s_Sfs, random.vector<Zim32s>(500, -3, 3));
    expectIntegerSums(zimsSum_32s_Sfs, {INT_MIN});
    expectIntegerSums(zimsSum_16s32s_Sfs, random.any<Zim16s>(500));
    expectIntegerSums(zimsSum_16s32s_Sfs, {Zim16s{-32768}});
    expectIntegerSums(zimsSum_16s32s_Sfs, {Zim16s{1}, Zim16s{2}, Zim16s{-3}});
}

TEST(IntegerSums, BeyondThirtyTwoBits)
{
    const std::vector<Zim16s> shorts(300000, -32768);
    const std::vector<Zim32s> ints(300000, INT_MAX);
    Zim32s sum;
    zimsSum_16s32s_Sfs(shorts.data(), 300000, &sum, 3);
    EXPECT_EQ(sum, scaledSum(-32768.0L * 300000, 3));
    zimsSum_32s_Sfs(ints.data(), 300000, &sum, 18);
    EXPECT_EQ(sum, scaledSum(2147483647.0L * 300000, 18));
}

TEST(IntegerProducts, ExactAlsoWherePairsOverflow)
{
    Random random(2);
    for (const auto& values :
         {random.any<Zim16s>(400), std::vector<Zim16s>{-32768}, std::vector<Zim16s>{-32768, 32767, 32767}})
        forEachShape([&](Shape shape) {
            const auto a = shape.take(values);
            auto b = a;
            std::rotate(b.begin(), b.begin() + shape.len / 3, b.end());
            Zim64s exact = 0;
            for (std::size_t i = 0; i < a.size(); ++i)
                exact += Zim64s{a[i]} * b[i];
            const Guarded<Zim16s> src1(a, shape.place<Zim16s>()), src2(b, atOffset(6));
            Zim64s dst = 0;
            Zim32f rounded = 0;
            EXPECT_EQ(zimsDotProd_16s64s(src1, src2, shape.len, &dst), zimStsOk);
            EXPECT_EQ(zimsDotProd_16s32f(src1, src2, shape.len, &rounded), zimStsOk);
            EXPECT_EQ(dst, exact) << shape;
            EXPECT_EQ(rounded, static_cast<Zim32f>(exact)) << shape;
        });
    const std::vector<Zim16s> many(300000, -32768);
    Zim64s dst;
    zimsDotProd_16s64s(many.data(), many.data(), 300000, &dst);
    EXPECT_EQ(dst, (Zim64s{1} << 30) * 300000);
}

TEST(IntegerProducts, FloatsAreRoundedOnce)
{
    // 2^24 + 1 + 2^-... is out of reach of integers: the tie 2^25 + 2 and its neighbours decide.
    for (Zim16s last : {1, 2, 3}) {
        const std::vector<Zim16s> a = {16384, 16384, last}, b = {1024, 1024, 1};
        Zim32f dst;
        zimsDotProd_16s32f(a.data(), b.data(), 3, &dst);
        EXPECT_EQ(dst, static_cast<Zim32f>(33554432 + last));
    }
}

// Values whose sum is exact in extended precision, though far from exact in Zim32f.
std::vector<Zim32f> cancellingValues(std::size_t count)
{
    Random random(3);
    std::vector<Zim32f> values;
    while (values.size() < count) {
        const auto large = static_cast<Zim32f>(random.between(-1 << 23, 1 << 23)) * 262144;
        values.insert(values.end(), {large, static_cast<Zim32f>(random.between(-4096, 4096)) / 4096, -large});
    }
    values.resize(count);
    return values;
}

TEST(Sum, AccurateFormRoundsTheExactSumOnce)
{
    const auto values = cancellingValues(3000);
    for (int hint : {0, 2, -1})
        forEachShape([&](Shape shape) {
            const auto taken = shape.take(values);
            long double exact = 0;
            for (Zim32f v : taken)
                exact += v;
            Zim32f dst;
            EXPECT_EQ(zimsSum_32f(Guarded<Zim32f>(taken, shape.place<Zim32f>()), shape.len, &dst, hint), zimStsOk);
            EXPECT_TRUE(sameBits(dst, static_cast<Zim32f>(exact))) << shape;
        });
}

TEST(Sum, FastFormStaysWithinTheErrorOfItsLanes)
{
    const auto values = Random(4).vector<Zim32f>(5000, -1, 1);
    forEachShape([&](Shape shape) {
        const auto taken = shape.take(values);
        long double exact = 0, size = 0;
        for (Zim32f v : taken) {
            exact += v;
            size += std::fabs(v);
        }
        Zim32f dst, elsewhere;
        EXPECT_EQ(zimsSum_32f(Guarded<Zim32f>(taken, shape.place<Zim32f>()), shape.len, &dst, 1), zimStsOk);
        zimsSum_32f(taken.data(), shape.len, &elsewhere, 1);
        EXPECT_LE(std::fabs(dst - exact), (shape.len / 32 + 4) * size * 0x1p-24L) << shape;
        EXPECT_TRUE(sameBits(dst, elsewhere)) << shape;
    });
}

// Every lane is exact, and the middle stretch is lost in a sum of stretches that has fewer bits.
TEST(Sum, FastFormCarriesStretchesInExtendedPrecision)
{
    std::vector<Zim32f> values(3 * 32768, 0x1p20f);
    std::fill_n(values.begin() + 32768, 32768, 0x1p-40f);
    std::fill_n(values.begin() + 2 * 32768, 32768, -0x1p20f);
    Zim32f dst;
    zimsSum_32f(values.data(), static_cast<int>(values.size()), &dst, 1);
    EXPECT_EQ(dst, 0x1p-25f);
}

// Every form of float product: result, bound on the error, independence of the place.
template <class T, class Result>
void expectProducts(ZimStatus (*product)(const T*, const T*, int, Result*))
{
    Random random(5);
    const auto x = random.vector<T>(4000, -1, 1), y = random.vector<T>(4000, -1, 1);
    const long double unit = std::numeric_limits<Result>::epsilon() / 2;
    forEachShape([&](Shape shape) {
        const auto a = shape.take(x), b = shape.take(y);
        long double exact = 0, size = 0;
        for (std::size_t i = 0; i < a.size(); ++i) {
            const long double term = static_cast<long double>(a[i]) * b[i];
            exact += term;
            size += std::fabs(term);
        }
        const Guarded<T> src1(a, shape.place<T>()), src2(b);
        Result dst, elsewhere;
        EXPECT_EQ(product(src1, src2, shape.len, &dst), zimStsOk);
        product(a.data(), b.data(), shape.len, &elsewhere);
        EXPECT_LE(std::fabs(dst - exact), (shape.len / 16 + 7) * size * unit) << shape;
        EXPECT_TRUE(sameBits(dst, elsewhere)) << shape;
    });
    // Small whole numbers leave no room for an error, and tell each element's place.
    for (int len = 1; len <= 200; ++len) {
        std::vector<T> a, b;
        Result exact = 0;
        for (int i = 0; i < len; ++i) {
            a.push_back(static_cast<T>(i % 61 + 1));
            b.push_back(static_cast<T>(i % 13 - 6));
            exact += a.back() * b.back();
        }
        Result dst;
        product(Guarded<T>(a), Guarded<T>(b), len, &dst);
        EXPECT_EQ(dst, exact) << len;
    }
}

TEST(FloatProducts, WithinTheErrorOfTheirLanes)
{
    expectProducts(zimsDotProd_32f);
    expectProducts(zimsDotProd_64f);
    expectProducts(zimsDotProd_32f64f);
}

// One infinity or NaN shows wherever it stands, and once: inf is not met by its own repetition.
TEST(FloatProducts, NonFiniteElementsPassThrough)
{
    for (int len = 1; len <= 40; ++len)
        for (int at = 0; at < len; ++at) {
            std::vector<Zim32f> x(len, 1), y(x.size(), 0.5f);
            x[at] = std::numeric_limits<Zim32f>::infinity();
            Zim32f product, sum;
            zimsDotProd_32f(x.data(), y.data(), len, &product);
            zimsSum_32f(x.data(), len, &sum, 1);
            EXPECT_EQ(product, std::numeric_limits<Zim32f>::infinity());
            EXPECT_EQ(sum, std::numeric_limits<Zim32f>::infinity());
        }
}

TEST(Sums, Checks)
{
    expectPointersThenLength(zimsSum_32f, zimsSum_32s_Sfs, zimsSum_16s32s_Sfs, zimsDotProd_32f, zimsDotProd_64f,
                             zimsDotProd_32f64f, zimsDotProd_16s64s, zimsDotProd_16s32f);
}

}  // namespace
}  // namespace zimsr::test
