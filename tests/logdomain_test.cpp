// Log-domain sums and differences: against exact values, against the tabulated polynomials in higher precision, and
// vectors against their elements.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr/logdomain.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/logdomain_reference.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/specials.h"
#include "zimsr/kernels/logdomain.h"

namespace zimsr::test {
namespace {

const int hints[] = {0, 1, 2};

Zim32f add(Zim32f a, Zim32f b, int hint)
{
    EXPECT_EQ(zimsLogAdd_32f(&a, &b, 1, hint), zimStsOk);
    return b;
}

Zim64f add(Zim64f a, Zim64f b, int hint = 0)
{
    EXPECT_EQ(zimsLogAdd_64f(&a, &b, 1, hint), zimStsOk);
    return b;
}

// Pairs all over the segments, at and beside the break points, far apart, equal, below the floor.
template <class T>
std::vector<std::pair<T, T>> pairs()
{
    std::vector<std::pair<T, T>> all;
    for (double d : {0.0, -2.55, -6.8, -15.3195879547406, -3.5, -9.0, -23.0258509299405, -1e-6, -1.0, -20.0, -1000.0})
        for (double base : {0.0, 0.3, -47.25, 1000.0, -4499990.0, -4600000.0, -9.5e9, -2e10}) {
            const T a = static_cast<T>(base), b = static_cast<T>(a + static_cast<T>(d));
            all.insert(all.end(),
                       {{a, b}, {b, a}, {a, std::nextafter(b, infinity<T>)}, {std::nextafter(b, -infinity<T>), a}});
        }
    Random random(21);
    for (int i = 0; i < 3000; ++i)
        all.emplace_back(random.between<T>(-30, 0), random.between<T>(-30, 0));
    return all;
}

template <class T>
std::pair<std::vector<T>, std::vector<T>> unzipped(const std::vector<std::pair<T, T>>& all)
{
    std::pair<std::vector<T>, std::vector<T>> result;
    for (const auto& [a, b] : all)
        result.first.push_back(a), result.second.push_back(b);
    return result;
}

TEST(LogAdd, AccurateModesAreTheTabulatedSumRounded)
{
    for (const auto& [a, b] : pairs<Zim32f>()) {
        const long double wanted = tabulatedSum(a, b, false);
        EXPECT_LE(ulpError(add(a, b, 0), wanted), 0.5001L) << a << ' ' << b;
        EXPECT_EQ(add(a, b, 2), static_cast<Zim32f>(wanted)) << a << ' ' << b;
    }
    for (const auto& [a, b] : pairs<Zim64f>()) {
        const long double wanted = tabulatedSum(a, b, true);
        // Half a unit, and the roundings of the correction.
        EXPECT_LE(std::fabs(add(a, b) - wanted), 0.51L * std::fabs(wanted) * 0x1p-52L + 3e-15L) << a << ' ' << b;
    }
}

TEST(LogAdd, TheFastModeIsNearTheExactSum)
{
    for (const auto& [a, b] : pairs<Zim32f>())
        if (std::max(a, b) >= -4500000.0f) {
            const long double exact = exactSum(a, b);
            const long double unit = std::ldexp(1.0L, std::ilogb(std::fabs(exact) + 1e-30L) - 23);
            EXPECT_LE(std::fabs(add(a, b, 1) - exact), unit + 5e-7L) << a << ' ' << b;
        }
}

TEST(LogAdd, ErrorOfTheCorrection)
{
    long double worstFloat = 0, worstDouble = 0;
    for (int i = 0; i <= 15319; ++i)
        worstFloat = std::max(worstFloat, std::fabs(tabulatedSum(0, -i / 1000.0L, false) - exactSum(0, -i / 1000.0L)));
    for (int i = 0; i <= 23025; ++i)
        worstDouble = std::max(worstDouble, std::fabs(tabulatedSum(0, -i / 1000.0L, true) - exactSum(0, -i / 1000.0L)));
    EXPECT_LT(worstFloat, 5e-9L);
    EXPECT_LT(worstDouble, 6e-15L);
}

TEST(LogAdd, StatedExamples)
{
    for (int hint : hints) {
        EXPECT_NEAR(add(0.0f, 0.0f, hint), 0.6931472f, 1e-6f);
        EXPECT_EQ(add(-5000000.0f, -6000000.0f, hint), -4500000.0f);
        EXPECT_EQ(add(3.0f, -20.0f, hint), 3.0f);
        EXPECT_EQ(add(-5000000.0f, -5000000.0f, hint), static_cast<Zim32f>(-5000000.0 + 0.6931471827215062));
        EXPECT_EQ(add(-infinity<float>, 2.0f, hint), 2.0f);
        EXPECT_TRUE(std::isnan(add(-infinity<float>, -infinity<float>, hint)));
        // The second operand is what the processor's maximum and minimum give.
        EXPECT_TRUE(std::isnan(add(1.0f, nan<float>, hint)));
        EXPECT_NEAR(add(nan<float>, 1.0f, hint), 1.6931472f, 1e-6f);
        EXPECT_EQ(add(-2e10, -1e11, hint), -1e10);
        EXPECT_EQ(add(3.0, -30.0, hint), 3.0);
    }
}

TEST(LogAdd, UnknownHintsLeaveTheVector)
{
    for (int hint : {3, -1, INT_MAX}) {
        EXPECT_EQ(add(1.0f, -6000000.0f, hint), -6000000.0f);
        EXPECT_EQ(add(1.0, -2e10, hint), -2e10);
    }
}

// A vector is its elements, at every length and place, at every level: the kernels in this test are the baseline's.
TEST(LogAdd, VectorsAreTheirElements)
{
    const auto expectHint = [](auto door, int hint, auto element, const auto& operands) {
        const auto& [a, b] = operands;
        expectInPlace([=](auto* src, auto* srcDst, int len) { return door(src, srcDst, len, hint); }, element, a, b);
    };
    const auto floats = unzipped(pairs<Zim32f>());
    expectHint(
        zimsLogAdd_32f, 0, [](Zim32f old, Zim32f x) { return LogAddAccurate{}(splat<F8>(x), splat<F8>(old))[0]; },
        floats);
    expectHint(
        zimsLogAdd_32f, 1, [](Zim32f old, Zim32f x) { return LogAddFast{}(splat<F8>(x), splat<F8>(old))[0]; }, floats);
    expectHint(
        zimsLogAdd_32f, 2, [](Zim32f old, Zim32f x) { return logAddExtended(x, old); }, floats);
    expectHint(
        zimsLogAdd_64f, 1, [](Zim64f old, Zim64f x) { return LogAddDouble{}(splat<D4>(x), splat<D4>(old))[0]; },
        unzipped(pairs<Zim64f>()));
}

TEST(LogAdd, OfAVectorAndItself)
{
    Random random(22);
    const auto values = random.vector<Zim32f>(77, -50, 0);
    for (int hint : hints) {
        auto doubled = values;
        EXPECT_EQ(zimsLogAdd_32f(doubled.data(), doubled.data(), 77, hint), zimStsOk);
        for (std::size_t i = 0; i < values.size(); ++i)
            EXPECT_EQ(doubled[i], add(values[i], values[i], hint));
    }
}

// ---- Scaled integers

template <class Int, class Add>
void expectAddsScaled(Add addScaled)
{
    const auto a = integers<Int>(23), b = integers<Int>(24);
    const int len = static_cast<int>(a.size());
    for (int factor : factors)
        for (int hint : {0, 1, 2, 3}) {
            std::vector<Int> wanted;
            for (std::size_t i = 0; i < a.size(); ++i) {
                const Zim32f x = static_cast<Zim32f>(a[i]) * scaleOf(factor),
                             y = static_cast<Zim32f>(b[i]) * scaleOf(factor);
                wanted.push_back(truncated<Int>(add(x, y, hint), factor));
            }
            const Guarded<Int> src(a), srcDst(b);
            EXPECT_EQ(addScaled(src.data(), srcDst.data(), len, factor, hint), zimStsOk);
            EXPECT_TRUE(equalBits(srcDst.values(), wanted)) << "factor " << factor << " hint " << hint;
        }
}

TEST(LogAddScaled, FloatSumsTruncatedAndSaturated)
{
    expectAddsScaled<Zim16s>(zimsLogAdd_16s_Sfs);
    expectAddsScaled<Zim32s>(zimsLogAdd_32s_Sfs);
    Zim16s zero = 0, sum = 0;
    zimsLogAdd_16s_Sfs(&zero, &sum, 1, 0, 0);
    EXPECT_EQ(sum, 0);
}

// ---- Sums over a vector

// As declared: lanes side by side, merged from the halves down, then the elements left.
template <class T, class AddPair>
T sumInLanes(const std::vector<T>& values, std::size_t lanes, AddPair addPair)
{
    std::vector<T> sums(values.begin(), values.begin() + 1);
    std::size_t taken = 1;
    if (values.size() >= 2 * lanes) {
        sums.assign(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(lanes));
        for (taken = lanes; taken + lanes <= values.size(); taken += lanes)
            for (std::size_t i = 0; i < lanes; ++i)
                sums[i] = addPair(values[taken + i], sums[i]);
        for (; lanes > 1; lanes /= 2)
            for (std::size_t i = 0; i < lanes / 2; ++i)
                sums[i] = addPair(sums[lanes / 2 + i], sums[i]);
    }
    for (; taken < values.size(); ++taken)
        sums[0] = addPair(values[taken], sums[0]);
    return sums[0];
}

template <class T, class Sum, class AddPair>
void expectSums(Sum sum, std::size_t lanes, T spread, AddPair addPair)
{
    Random random(25);
    forEachShape([&](Shape shape) {
        const auto values = random.vector<T>(shape.len, -spread, 0);
        const Guarded<T> src(values, shape.place<T>()), dst(1);
        EXPECT_EQ(sum(src.data(), dst.data(), shape.len), zimStsOk);
        EXPECT_TRUE(sameBits(dst[0], sumInLanes(values, lanes, addPair))) << shape;
    });
}

TEST(LogSum, LanesSideBySide)
{
    for (Zim32f spread : {2.0f, 40.0f})
        expectSums<Zim32f>(zimsLogSum_32f, 4, spread, [](Zim32f a, Zim32f b) { return add(a, b, 1); });
    for (Zim64f spread : {2.0, 60.0})
        expectSums<Zim64f>(zimsLogSum_64f, 2, spread, [](Zim64f a, Zim64f b) { return add(a, b); });
}

template <class T, class... Factor>
void expectDelivered(ZimStatus (*sum)(const T*, T*, int, Factor...), T value, Factor... factor)
{
    T result;
    EXPECT_EQ(sum(&value, &result, 1, factor...), zimStsOk);
    EXPECT_EQ(result, value);
}

TEST(LogSum, OneElementIsDeliveredAsItIs)
{
    expectDelivered(zimsLogSum_32f, -6000000.0f);
    expectDelivered(zimsLogSum_64f, -3e10);
    expectDelivered(zimsLogSum_32s_Sfs, INT_MIN, -200);
    expectDelivered(zimsLogSum_16s_Sfs, Zim16s{-32768}, 200);
}

// Up to six elements one by one, each exact; more in blocks of 128, with the sum so far before the next block.
template <class Int>
Int scaledSum(const std::vector<Int>& values, int factor)
{
    const Zim32f scale = scaleOf(factor);
    Zim32f sum;
    if (values.size() < 7) {
        sum = static_cast<Zim32f>(static_cast<long double>(values[0]) * scale);
        for (std::size_t i = 1; i < values.size(); ++i) {
            const long double x = static_cast<long double>(values[i]) * scale;
            sum = static_cast<Zim32f>(tabulatedSum(sum, x, false));
        }
    } else {
        std::vector<Zim32f> block;
        for (std::size_t i = 0; i < values.size(); ++i) {
            block.push_back(scale == 0 ? 0 : static_cast<Zim32f>(values[i]) * scale);
            if (i % 128 == 127 || i + 1 == values.size()) {
                zimsLogSum_32f(block.data(), &sum, static_cast<int>(block.size()));
                block = {sum};
            }
        }
    }
    return truncated<Int>(static_cast<Zim64f>(sum) / scale, 0);
}

template <class Int, class Sum>
void expectSumsScaled(Sum sum)
{
    for (std::size_t len : {2u, 3u, 6u, 7u, 8u, 100u, 128u, 129u, 135u, 256u, 300u})
        for (int factor : factors) {
            auto values = integers<Int>(26);
            values.resize(len);
            const Guarded<Int> src(values), dst(1);
            EXPECT_EQ(sum(src.data(), dst.data(), static_cast<int>(len), factor), zimStsOk);
            EXPECT_EQ(dst[0], scaledSum(values, factor)) << "length " << len << " factor " << factor;
        }
}

TEST(LogSum, ScaledIntegers)
{
    expectSumsScaled<Zim16s>(zimsLogSum_16s_Sfs);
    expectSumsScaled<Zim32s>(zimsLogSum_32s_Sfs);
}

// ---- Differences

long double exactDifference(long double a, long double d, long double zero, long double small, long double threshold)
{
    if (!(d >= threshold))
        return a >= small ? a : zero;
    const long double rest = -std::expm1(d);
    return rest > 0 ? a + std::log(rest) : zero;
}

template <class T, class Sub>
void expectSubtracts(Sub sub, T zero, T small, T threshold)
{
    Random random(27);
    forEachShape([&](Shape shape) {
        std::vector<T> a, b;
        for (int i = 0; i < shape.len; ++i) {
            a.push_back(i % 5 == 4 ? zero * T(1.5) : random.between<T>(-50, 50));
            b.push_back(a.back() - (i % 3 == 0 ? random.between<T>(T(0.001), 1) : random.between<T>(1, 30)));
            if (b.back() >= a.back())
                b.back() = std::nextafter(a.back(), -infinity<T>);
        }
        const Guarded<T> src(a, shape.place<T>()), srcDst(b, shape.place<T>());
        EXPECT_EQ(sub(src.data(), srcDst.data(), shape.len), zimStsOk);
        for (std::size_t i = 0; i < a.size(); ++i) {
            const long double exact = exactDifference(a[i], b[i] - a[i], zero, small, threshold);
            const long double unit =
                std::ldexp(1.0L, std::ilogb(std::fabs(exact) + 1e-30L) - std::numeric_limits<T>::digits + 1);
            // 1 - exp(d) is a difference of doubles, so that its logarithm is the less exact, the smaller it is.
            EXPECT_LE(std::fabs(srcDst[i] - exact), 0.6L * unit + 4e-13L) << a[i] << ' ' << b[i];
        }
    });
}

TEST(LogSub, NearTheExactDifference)
{
    expectSubtracts<Zim32f>(zimsLogSub_32f, -4500000.0f, -4500000.0f, -15.3195879547406f);
    expectSubtracts<Zim64f>(zimsLogSub_64f, -1e10, -9e9, -23.0258509299405);
}

TEST(LogSub, NeighboursAndVanishing)
{
    const Zim32f src[] = {0.0f, 1000.0f, -8.0f, 5.0f, 2.0f, -infinity<float>, -infinity<float>};
    Zim32f srcDst[] = {-1e-6f,    std::nextafter(1000.0f, 0.0f), -1e30f, -infinity<float>, nan<float>, -infinity<float>,
                       nan<float>};
    EXPECT_EQ(zimsLogSub_32f(src, srcDst, 7), zimStsOk);
    EXPECT_NEAR(srcDst[0], std::log(1e-6f), 1e-4f);
    EXPECT_NEAR(srcDst[1], 1000 + std::log(0x1p-14f), 1e-3f);
    EXPECT_EQ(srcDst[2], -8.0f);
    EXPECT_EQ(srcDst[3], 5.0f);
    EXPECT_EQ(srcDst[4], 2.0f);
    EXPECT_EQ(srcDst[5], -4500000.0f);
    EXPECT_EQ(srcDst[6], -4500000.0f);
    // A difference so small that its exponential is 1.
    const Zim32f tiny = 0;
    Zim32f below = -1e-20f;
    EXPECT_EQ(zimsLogSub_32f(&tiny, &below, 1), zimStsOk);
    EXPECT_EQ(below, -4500000.0f);
    const Zim64f tinyD = 0;
    Zim64f belowD = -1e-20;
    EXPECT_EQ(zimsLogSub_64f(&tinyD, &belowD, 1), zimStsOk);
    EXPECT_EQ(belowD, -1e10);
}

template <class T, class Sub>
void expectRefuses(Sub sub)
{
    for (int len : {1, 9, 40})
        for (int place = 0; place < len; place += 4)
            for (T excess : {T(0), T(1)}) {
                const std::vector<T> a(len, T(5));
                std::vector<T> b(a.size(), T(3));
                b[place] = T(5) + excess;
                const Guarded<T> src(a), srcDst(b);
                EXPECT_EQ(sub(src.data(), srcDst.data(), len), zimStsOutOfRange);
                EXPECT_TRUE(equalBits(srcDst.values(), b));
            }
}

TEST(LogSub, RefusesASubtrahendThatIsNotBelow)
{
    expectRefuses<Zim32f>(zimsLogSub_32f);
    expectRefuses<Zim64f>(zimsLogSub_64f);
    expectRefuses<Zim32s>([](const Zim32s* a, Zim32s* b, int len) { return zimsLogSub_32s_Sfs(a, b, len, 3); });
    expectRefuses<Zim16s>([](const Zim16s* a, Zim16s* b, int len) { return zimsLogSub_16s_Sfs(a, b, len, 3); });
    // 16-bit differences are widened, 32-bit ones wrap.
    const Zim16s low16 = -32768, high16 = 32767;
    Zim16s dst16 = high16;
    EXPECT_EQ(zimsLogSub_16s_Sfs(&low16, &dst16, 1, 0), zimStsOutOfRange);
    const Zim32s low32 = INT_MIN;
    Zim32s dst32 = INT_MAX;
    EXPECT_EQ(zimsLogSub_32s_Sfs(&low32, &dst32, 1, 0), zimStsOk);
    EXPECT_EQ(dst32, -4500000);
}

template <class Int, class Sub>
void expectSubtractsScaled(Sub sub)
{
    Random random(28);
    for (int factor : factors)
        for (int len : {1, 5, 8, 37}) {
            std::vector<Int> a, b;
            std::vector<long double> exact;
            for (int i = 0; i < len; ++i) {
                a.push_back(static_cast<Int>(random.between(-20000, 32767)));
                b.push_back(static_cast<Int>(a.back() - random.between(1, i % 2 ? 10 : 12000)));
                const Zim32f d = (static_cast<Zim32f>(b.back()) - static_cast<Zim32f>(a.back())) * scaleOf(factor);
                exact.push_back(exactDifference(a.back(), d, -4500000, -4500000, -15.3195879547406L));
                if (d > -1e-16f)
                    exact.back() = -4500000;
            }
            const Guarded<Int> src(a), srcDst(b);
            EXPECT_EQ(sub(src.data(), srcDst.data(), len, factor), zimStsOk);
            for (std::size_t i = 0; i < a.size(); ++i)
                // A sum that is whole but for its last bits may fall to either side.
                EXPECT_TRUE(srcDst[i] == truncated<Int>(exact[i] - 1e-3L, 0) ||
                            srcDst[i] == truncated<Int>(exact[i] + 1e-3L, 0))
                    << a[i] << ' ' << b[i] << " factor " << factor << ": " << srcDst[i] << " for " << exact[i];
        }
}

TEST(LogSub, ScaledIntegers)
{
    expectSubtractsScaled<Zim16s>(zimsLogSub_16s_Sfs);
    expectSubtractsScaled<Zim32s>(zimsLogSub_32s_Sfs);
}

TEST(LogDomain, ChecksLengthThenPointersAndARefusedCallWritesNothing)
{
    expectLengthThenPointers(zimsLogAdd_32f, zimsLogAdd_64f, zimsLogAdd_32s_Sfs, zimsLogAdd_16s_Sfs, zimsLogSum_32f,
                             zimsLogSum_64f, zimsLogSum_32s_Sfs, zimsLogSum_16s_Sfs, zimsLogSub_32f, zimsLogSub_64f,
                             zimsLogSub_32s_Sfs, zimsLogSub_16s_Sfs);
}

}  // namespace
}  // namespace zimsr::test
