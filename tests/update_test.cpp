// Re-estimated means, variances, weights and constants: every form against its formula one operation after the other,
// and the way from a sample to its density.
#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <cstdint>
#include <limits>
#include <numeric>
#include <vector>

#include <zimsr/mahalanobis.h>
#include <zimsr/update.h>
#include <zimsr/version.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/shapes.h"
#include "support/specials.h"

namespace zimsr::test {
namespace {

// The functions of one floating type, and what distinguishes its arithmetic.
#define UPDATE_FUNCTIONS(tag)                                             \
    using Float = Zim##tag;                                               \
    static constexpr auto accumulate = zimsMeanVarAcc_##tag;              \
    static constexpr auto mean = zimsUpdateMean_##tag;                    \
    static constexpr auto var = zimsUpdateVar_##tag;                      \
    static constexpr auto weight = zimsUpdateWeight_##tag;                \
    static constexpr auto gconst = zimsUpdateGConst_##tag;                \
    static constexpr auto gconstOfVar = zimsUpdateGConst_DirectVar_##tag; \
    static constexpr auto preCalc = zimsOutProbPreCalc_##tag;             \
    static constexpr auto preCalcInPlace = zimsOutProbPreCalc_##tag##_I
struct Single {
    UPDATE_FUNCTIONS(32f);
    static Float share(Float accumulated, Float occupancy) { return accumulated * (1 / occupancy); }
};
struct Double {
    UPDATE_FUNCTIONS(64f);
    static Float share(Float accumulated, Float occupancy) { return accumulated / occupancy; }
};
#undef UPDATE_FUNCTIONS

template <class Type>
class Update : public testing::Test {
};
using Types = testing::Types<Single, Double>;
TYPED_TEST_SUITE(Update, Types);

template <class Float>
std::vector<Float> numbers(unsigned seed, Float bound = 100)
{
    return Random(seed).vector<Float>(5003, -bound, bound);
}

// ---- Means, variances, weights

TYPED_TEST(Update, MeansMoveByTheirShare)
{
    using Float = typename TypeParam::Float;
    const Float occupancy = Float(37.3);
    const auto update = [=](const Float* acc, Float* mean, int len) {
        return TypeParam::mean(acc, mean, len, occupancy);
    };
    expectInPlace(
        update, [=](Float old, Float acc) { return old + TypeParam::share(acc, occupancy); }, numbers<Float>(1),
        numbers<Float>(2));

    // The accumulator itself, and in double precision an accumulator one element ahead or behind.
    std::vector<Float> own = numbers<Float>(3), wanted = own;
    for (Float& value : wanted)
        value += TypeParam::share(value, occupancy);
    EXPECT_EQ(update(own.data(), own.data(), static_cast<int>(own.size())), zimStsOk);
    EXPECT_TRUE(equalBits(own, wanted));
    if constexpr (sizeof(Float) == 8)
        for (std::size_t accAt : {0, 1}) {
            std::vector<Float> both = numbers<Float>(4), inTurn = both;
            for (std::size_t i = 0; i + 1 < both.size(); ++i)
                inTurn[i + 1 - accAt] += inTurn[i + accAt] / occupancy;
            update(both.data() + accAt, both.data() + 1 - accAt, static_cast<int>(both.size()) - 1);
            EXPECT_TRUE(equalBits(both, inTurn));
        }
}

// What is to be written, floors included, and the status that goes with it.
template <class Float>
struct Floored {
    std::vector<Float> values;
    std::size_t kept = 0;

    void add(Float value, Float floor)
    {
        kept += value > floor;
        values.push_back(value > floor ? value : floor);
    }
    ZimStatus status() const { return kept == 0 ? zimStsResultFloored : zimStsOk; }
};

TYPED_TEST(Update, VariancesStayAboveTheirFloors)
{
    using Float = typename TypeParam::Float;
    const Float meanWgt = Float(37.3), varWgt = Float(29.1);
    auto anyFloor = numbers<Float>(5, 2);
    anyFloor[7] = anyFloor[1000] = nan<Float>;
    auto varAcc = numbers<Float>(6, 200);
    varAcc[11] = varAcc[1200] = nan<Float>;
    for (const Float raised : {Float(0), Float(1000)})  // by 1000, all but NaN are floored
        forEachShape([&](Shape shape) {
            const auto place = shape.place<Float>();
            const auto first = shape.take(numbers<Float>(7)), second = shape.take(varAcc);
            auto floor = shape.take(anyFloor);
            for (Float& value : floor)
                value += raised;
            Floored<Float> wanted;
            for (std::size_t i = 0; i < first.size(); ++i) {
                const Float shift = TypeParam::share(first[i], meanWgt);
                wanted.add(TypeParam::share(second[i], varWgt) - shift * shift, floor[i]);
            }
            const Guarded<Float> meanAcc(first, place), secondAcc(second, place), floors(floor, place);
            const Guarded<Float> var(first.size(), place);
            EXPECT_EQ(TypeParam::var(meanAcc, secondAcc, floors, var, shape.len, meanWgt, varWgt), wanted.status());
            EXPECT_TRUE(equalBits(var.values(), wanted.values)) << shape;
            TypeParam::var(meanAcc, secondAcc, floors, secondAcc, shape.len, meanWgt, varWgt);
            EXPECT_TRUE(equalBits(secondAcc.values(), wanted.values)) << shape << " in place";
        });
}

TYPED_TEST(Update, WeightsSumUpAsWritten)
{
    using Float = typename TypeParam::Float;
    const Float occupancy = Float(811.7);
    auto accumulated = Random(8).vector<Float>(5003, 0, 10);
    accumulated[3] = accumulated[2000] = nan<Float>;
    for (const Float floor : {Float(0.004), Float(-0.1), Float(1)})
        forEachShape([&](Shape shape) {
            const auto acc = shape.take(accumulated);
            Floored<Float> wanted;
            for (Float value : acc)
                wanted.add(value * (1 / occupancy), floor);
            const Guarded<Float> source(acc, shape.place<Float>()), weight(acc.size(), shape.place<Float>()), sum(1);
            EXPECT_EQ(TypeParam::weight(source, weight, shape.len, sum, occupancy, floor), wanted.status()) << shape;
            EXPECT_TRUE(equalBits(weight.values(), wanted.values)) << shape;
            const long double exact = std::accumulate(wanted.values.begin(), wanted.values.end(), 0.0L);
            long double size = 0;
            for (Float value : wanted.values)
                size += std::fabs(value);
            const long double roundings = 10 + shape.len / 16;
            EXPECT_LE(std::fabs(*sum.data() - exact), roundings * size * std::numeric_limits<Float>::epsilon())
                << shape;
        });
    // Every weight below its floor, in rows that do not fill a vector, with a floor below zero.
    const std::vector<Float> low(70, Float(-5));
    for (int len = 1; len <= 70; ++len) {
        std::vector<Float> weight(low.size());
        Float sum;
        EXPECT_EQ(TypeParam::weight(low.data(), weight.data(), len, &sum, 1, Float(-0.5)), zimStsResultFloored) << len;
        EXPECT_EQ(sum, Float(-0.5) * static_cast<Float>(len));
    }
}

TYPED_TEST(Update, OccupanciesAreTestedBeforeAnythingIsWritten)
{
    using Float = typename TypeParam::Float;
    const Float least = smallestNormal<Float>, above = std::nextafter(least, Float(1));
    const struct {
        Float first, second;
        ZimStatus status;
    } cases[] = {
        {0, 1, zimStsZeroOccupancy},
        {Float(-0.0), 1, zimStsZeroOccupancy},
        {least, 1, zimStsZeroOccupancy},
        {std::numeric_limits<Float>::denorm_min(), 1, zimStsZeroOccupancy},
        {-1, 1, zimStsNegativeFactor},
        {-least, 1, zimStsNegativeFactor},
        {nan<Float>, 1, zimStsNegativeFactor},
        {-infinity<Float>, 0, zimStsNegativeFactor},
        {1, 0, zimStsZeroOccupancy},
        {0, -1, zimStsNegativeFactor},
        {1, nan<Float>, zimStsNegativeFactor},
        {above, above, zimStsOk},
        {infinity<Float>, infinity<Float>, zimStsOk},
    };
    for (const auto& c : cases) {
        const Float zeros[2] = {}, floors[2] = {-1, -1};
        Float out[2] = {3, 3}, sum = 3;
        const bool written = c.status == zimStsOk;
        EXPECT_EQ(TypeParam::var(zeros, zeros, floors, out, 2, c.first, c.second), c.status);
        EXPECT_EQ(TypeParam::var(zeros, zeros, floors, out, 2, c.second, c.first), c.status);
        EXPECT_EQ(out[1], written ? Float(0) : Float(3));
        if (c.second == 1 || written) {
            EXPECT_EQ(TypeParam::mean(zeros, out, 2, c.first), c.status);
            EXPECT_EQ(TypeParam::weight(zeros, out, 2, &sum, c.first, -1), c.status);
            EXPECT_EQ(out[1], written ? Float(0) : Float(3));
            EXPECT_EQ(sum, written ? Float(0) : Float(3));
        }
    }
}

// ---- Constants

TYPED_TEST(Update, ConstantsOfGaussians)
{
    using Float = typename TypeParam::Float;
    const auto any = Random(9).vector<Float>(5003, Float(0.01), Float(30));
    forEachShape([&](Shape shape) {
        const auto variances = shape.take(any);
        const Guarded<Float> var(variances, shape.place<Float>()), gconst(2);
        EXPECT_EQ(TypeParam::gconstOfVar(var, shape.len, gconst), zimStsOk);
        EXPECT_EQ(TypeParam::gconst(var, shape.len, gconst + 1), zimStsOk);
        long double logs = 0;
        for (Float value : variances)
            logs += std::log(static_cast<long double>(value));
        const long double dimension = shape.len * 1.8378770664093L;
        const long double bound =
            (std::fabs(logs) + dimension) * (std::numeric_limits<Float>::epsilon() + (shape.len / 8 + 12) * 0x1p-53L);
        EXPECT_LE(std::fabs(gconst[0] - (dimension + logs)), bound) << shape;
        EXPECT_LE(std::fabs(gconst[1] - (dimension - logs)), bound) << shape;
    });

    for (const auto& [element, wanted, status] :
         {std::tuple(Float(0), Float(zimConstantOfINF_32f), zimStsLogOfZero),
          std::tuple(Float(-0.0), Float(zimConstantOfINF_32f), zimStsLogOfZero),
          std::tuple(Float(-1), Float(zimConstantOfNAN_32f), zimStsLogOfNegative)})
        for (int place : {0, 9, 38}) {
            std::vector<Float> var(39, Float(0.5));
            var[place] = element;
            Float gconst[2];
            EXPECT_EQ(TypeParam::gconst(var.data(), 39, gconst), status);
            EXPECT_EQ(TypeParam::gconstOfVar(var.data(), 39, gconst + 1), status);
            EXPECT_EQ(bitsOf(gconst[0]), bitsOf(wanted));
            EXPECT_EQ(bitsOf(gconst[1]), bitsOf(wanted));
        }
}

TYPED_TEST(Update, ConstantsOfScores)
{
    using Float = typename TypeParam::Float;
    const auto halved = [](Float logWeight, Float gconst) { return logWeight - gconst * Float(0.5); };
    auto gconst = numbers<Float>(10);
    gconst[4] = std::numeric_limits<Float>::denorm_min();
    expectElementwise<Float>(TypeParam::preCalc, halved, numbers<Float>(11, 1), gconst);
    expectInPlace(
        TypeParam::preCalcInPlace, [=](Float old, Float logWeight) { return halved(logWeight, old); }, gconst,
        numbers<Float>(11, 1));
}

TEST(OutProbPreCalc_32s, RoundsHalvesByPlaceInTheVector)
{
    auto gconst = Random(12).any<Zim32s>(5003), logWeight = Random(13).any<Zim32s>(5003);
    gconst[2] = gconst[40] = INT_MAX;
    gconst[3] = gconst[41] = INT_MIN;
    const auto wantedAt = [](Zim32s weight, Zim32s constant, bool tail) {
        const std::int64_t next = tail ? static_cast<Zim32s>(static_cast<Zim32u>(constant) + 1) : constant;
        return static_cast<Zim32s>(static_cast<Zim32u>(weight - (next >> 1)));
    };
    // Each vector by itself off the boundary.
    for (int moved = 0; moved < 8; ++moved)
        for (int len = 1; len <= 70; ++len) {
            const Shape shape{len};
            const auto place = [moved](int bit) { return atOffset(moved & bit ? 4 : 0); };
            const auto weights = shape.take(logWeight), constants = shape.take(gconst);
            const Guarded<Zim32s> weight(weights, place(1)), constant(constants, place(2)),
                val(weights.size(), place(4));
            const int first = moved == 0 ? len - len % 2 : len - len % 4;
            const int firstInPlace = (moved & 3) == 0 ? len - len % 2 : len - len % 4;
            std::vector<Zim32s> wanted, wantedInPlace;
            for (int i = 0; i < len; ++i) {
                const auto k = static_cast<std::size_t>(i);
                wanted.push_back(wantedAt(weights[k], constants[k], i >= first));
                wantedInPlace.push_back(wantedAt(weights[k], constants[k], i >= firstInPlace));
            }
            EXPECT_EQ(zimsOutProbPreCalc_32s(weight, constant, val, len), zimStsOk);
            EXPECT_TRUE(equalBits(val.values(), wanted)) << shape << ", " << moved;
            EXPECT_EQ(zimsOutProbPreCalc_32s_I(weight, constant, len), zimStsOk);
            EXPECT_TRUE(equalBits(constant.values(), wantedInPlace)) << shape << ", " << moved;
        }
}

// ---- The whole way

// From moments about a starting mean to the maximum-likelihood Gaussian, and its density at the mean.
TYPED_TEST(Update, MomentsBecomeTheDensityOfTheSample)
{
    using Float = typename TypeParam::Float;
    constexpr int len = 13, frames = 500;
    const auto sample = Random(23).vector<Float>(len * frames, -3, 5);
    std::vector<Float> mean(len, Float(0.5)), meanAcc(len), varAcc(len), var(len), invVar(len);
    const std::vector<Float> floor(len, Float(1e-3));
    for (std::size_t i = 0; i < sample.size(); i += len)
        TypeParam::accumulate(&sample[i], mean.data(), meanAcc.data(), varAcc.data(), len, 1);
    const Float logWeight = std::log(Float(0.25));
    Float gconst, val;
    EXPECT_EQ(TypeParam::var(meanAcc.data(), varAcc.data(), floor.data(), var.data(), len, frames, frames), zimStsOk);
    EXPECT_EQ(TypeParam::mean(meanAcc.data(), mean.data(), len, frames), zimStsOk);
    for (std::size_t j = 0; j < len; ++j)
        invVar[j] = 1 / var[j];
    EXPECT_EQ(TypeParam::gconst(invVar.data(), len, &gconst), zimStsOk);
    EXPECT_EQ(TypeParam::preCalc(&logWeight, &gconst, &val, 1), zimStsOk);

    const long double tolerance = 1000 * std::numeric_limits<Float>::epsilon();
    long double logDensity = std::log(0.25L);
    for (std::size_t j = 0; j < len; ++j) {
        long double sum = 0, squares = 0;
        for (std::size_t i = j; i < sample.size(); i += len)
            sum += sample[i];
        for (std::size_t i = j; i < sample.size(); i += len)
            squares += (sample[i] - sum / frames) * (sample[i] - sum / frames);
        EXPECT_NEAR(mean[j], sum / frames, tolerance);
        EXPECT_NEAR(var[j], squares / frames, tolerance);
        logDensity -= 0.5L * std::log(2 * std::acos(-1.0L) * squares / frames);
    }
    EXPECT_NEAR(val, logDensity, tolerance + 1e-11);
}

TEST(Update, PointersThenLength)
{
    expectPointersThenLength(zimsUpdateMean_32f, zimsUpdateMean_64f, zimsUpdateVar_32f, zimsUpdateVar_64f,
                             zimsUpdateWeight_32f, zimsUpdateWeight_64f, zimsUpdateGConst_32f, zimsUpdateGConst_64f,
                             zimsUpdateGConst_DirectVar_32f, zimsUpdateGConst_DirectVar_64f, zimsOutProbPreCalc_32f,
                             zimsOutProbPreCalc_64f, zimsOutProbPreCalc_32s, zimsOutProbPreCalc_32f_I,
                             zimsOutProbPreCalc_64f_I, zimsOutProbPreCalc_32s_I);
    const float x = 1;
    EXPECT_EQ(zimsUpdateMean_32f(&x, nullptr, 0, -1), zimStsNullPointer);
    float mean = 1;
    EXPECT_EQ(zimsUpdateMean_32f(&x, &mean, 0, -1), zimStsBadSize);
}

}  // namespace
}  // namespace zimsr::test
