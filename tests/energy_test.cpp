// Energies of every type and stride against the formula, operation by operation; the fixed rule against 64-bit
// arithmetic.
#include <gtest/gtest.h>

#include <algorithm>
#include <cfloat>
#include <climits>
#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

constexpr float infinity = std::numeric_limits<float>::infinity();

// ---- What an energy must become

float floorOf(float silFloor, float maxE)
{
    return silFloor * -0.230259f + maxE;
}

float mapped(float e, float target, float maxE, float silFloor, float scale)
{
    const float floor = floorOf(silFloor, maxE);
    return target - (maxE - (e < floor ? floor : e)) * scale;
}

Zim16s sat16(long long v)
{
    return static_cast<Zim16s>(std::clamp<long long>(v, -32768, 32767));
}

Zim16s byFloat(Zim16s e, Zim16s val, Zim16s maxE, Zim16s silFloor, float scale)
{
    const float v = mapped(e, val, maxE, silFloor, scale);
    return !(v >= -32768) ? Zim16s{-32768} : v > 32767 ? Zim16s{32767} : static_cast<Zim16s>(v);
}

Zim16s byFixed(Zim16s e, Zim16s val, Zim16s maxE, Zim16s silFloor, float scale)
{
    const float floor = floorOf(silFloor, maxE);
    const Zim16s floor16 = sat16(static_cast<long long>(std::trunc(floor < 0 ? floor - 0.5f : floor + 0.5f)));
    const double q10 = 1024.0 * static_cast<double>(scale);
    const long long s = q10 > -2147483648.0 ? static_cast<long long>(q10) : INT_MIN;
    return sat16(val - sat16((sat16(maxE - std::max(e, floor16)) * s) >> 10));
}

// A column of a matrix whose other columns are poison, or an array when step is 1.
template <class T>
std::vector<T> normalised(const std::vector<T>& energies, int step, const std::function<ZimStatus(T*, int, int)>& call)
{
    const int height = static_cast<int>(energies.size());
    StridedMatrix<T> column(energies, height, 1, step);
    EXPECT_EQ(call(column.data(), step, height), zimStsOk);
    return column.values();
}

TEST(NormEnergy, SinglePrecision)
{
    Random random(1);
    for (int height : {1, 2, 7, 8, 9, 16, 31, 255, 256, 257, 1500})
        for (int step : {1, 2, 39}) {
            const auto energies = random.vector<float>(height, -20, 20);
            const float highest = *std::max_element(energies.begin(), energies.end());
            for (float given : {highest, 3.25f, -50.0f}) {
                std::vector<float> expected;
                for (float e : energies)
                    expected.push_back(mapped(e, 1, given, 50, 0.1f));
                const auto realTime = normalised<float>(energies, step, [=](float* x, int s, int h) {
                    return zimsNormEnergy_RT_32f(x, s, h, 50, given, 0.1f);
                });
                EXPECT_TRUE(equalBits(realTime, expected)) << height << " by " << step;
                if (given == highest) {
                    const auto whole = normalised<float>(
                        energies, step, [=](float* x, int s, int h) { return zimsNormEnergy_32f(x, s, h, 50, 0.1f); });
                    EXPECT_TRUE(equalBits(whole, expected)) << height << " by " << step;
                }
            }
        }
}

TEST(NormEnergy, TheGreatestBecomesOneAndSilenceTheFloor)
{
    const auto result = normalised<float>({-30, 4, 2, -100}, 3, [](float* x, int step, int height) {
        return zimsNormEnergy_32f(x, step, height, 50, 0.1f);
    });
    const float silence = 1 - (4 - floorOf(50, 4)) * 0.1f;
    EXPECT_EQ(result, (std::vector<float>{silence, 1, 1 - 2 * 0.1f, silence}));
}

TEST(NormEnergy, NonFiniteEnergies)
{
    const float nan = std::nanf("");
    const auto call = [](float* x, int step, int height) { return zimsNormEnergy_32f(x, step, height, 50, 0.1f); };
    for (int step : {1, 5}) {
        const auto aroundNan = normalised<float>({nan, 2, nan, 1, -infinity}, step, call);
        EXPECT_TRUE(equalBits(
            aroundNan, std::vector<float>{nan, 1, nan, mapped(1, 1, 2, 50, 0.1f), mapped(-infinity, 1, 2, 50, 0.1f)}));
        // Nothing lies above the smallest number: it is the maximum.
        const auto nothing = normalised<float>({-infinity, -infinity}, step, call);
        EXPECT_TRUE(equalBits(nothing, std::vector<float>(2, mapped(-infinity, 1, -FLT_MAX, 50, 0.1f))));
        EXPECT_TRUE(std::isnan(normalised<float>({1, infinity}, step, call)[1]));
    }
}

TEST(NormEnergy, SamplesByBothRules)
{
    Random random(2);
    std::vector<float> scales = {0.1f, 0.999f, 1.0f,   1.0009999f, 1.001f, 1.5f,      1000.0f,      infinity,
                                 0,    -0.7f,  -31.5f, -40000.0f,  -1e20f, -infinity, std::nanf("")};
    for (int height : {1, 10, 11, 15, 16, 17, 40, 1024, 1025})
        for (int step : {1, 3})
            for (float scale : scales) {
                const bool wide = random.between<int>(0, 1);
                const auto count = static_cast<std::size_t>(height);
                const auto energies = wide ? random.any<Zim16s>(count) : random.vector<Zim16s>(count, -300, 300);
                const auto silFloor = wide ? random.between<Zim16s>(-32768, 32767) : Zim16s{50};
                const auto val = random.between<Zim16s>(-32768, 32767);
                const auto given = random.between<Zim16s>(-32768, 32767);
                const Zim16s highest = *std::max_element(energies.begin(), energies.end());
                const bool large = static_cast<double>(scale) >= 1.001;
                std::vector<Zim16s> expected, expectedRealTime;
                for (Zim16s e : energies) {
                    expected.push_back((large || height < 11 ? byFloat : byFixed)(e, val, highest, silFloor, scale));
                    expectedRealTime.push_back((large ? byFloat : byFixed)(e, val, given, silFloor, scale));
                }
                const auto whole = normalised<Zim16s>(energies, step, [=](Zim16s* x, int s, int h) {
                    return zimsNormEnergy_16s(x, s, h, silFloor, val, scale);
                });
                const auto realTime = normalised<Zim16s>(energies, step, [=](Zim16s* x, int s, int h) {
                    return zimsNormEnergy_RT_16s(x, s, h, silFloor, given, val, scale);
                });
                EXPECT_TRUE(equalBits(whole, expected)) << height << " by " << step << ", scale " << scale;
                EXPECT_TRUE(equalBits(realTime, expectedRealTime)) << height << " by " << step << ", scale " << scale;
            }
}

// The floor is rounded with ties away from zero, after half is added in single precision: here to 1, not to 0.
TEST(NormEnergy, TheFloorOfSamplesIsRounded)
{
    const auto floorOfColumn = [](Zim16s maxE, Zim16s silFloor) {
        std::vector<Zim16s> column(11, -32768);
        zimsNormEnergy_RT_16s(column.data(), 1, 11, silFloor, maxE, maxE, 1);
        return column[0];
    };
    for (int maxE : {-3, 0, 5, 32767})
        for (int silFloor = -200; silFloor <= 200; ++silFloor) {
            const float floor = floorOf(static_cast<float>(silFloor), static_cast<float>(maxE));
            const int expected = std::min(32767, static_cast<int>(std::round(floor)));
            EXPECT_EQ(floorOfColumn(static_cast<Zim16s>(maxE), static_cast<Zim16s>(silFloor)), expected);
        }
}

TEST(NormEnergy, NoMemoryLeavesTheEnergiesAlone)
{
    const std::vector<Zim16s> energies(1025, 7);
    auto column = energies;
    const auto call = [&] { return zimsNormEnergy_16s(column.data(), 1, 1025, 50, 100, 0.1f); };
    const int requests = forEachFailedAllocation(call, [&](ZimStatus status, int leaked) {
        EXPECT_EQ(status, zimStsAllocFailed);
        EXPECT_EQ(leaked, 0);
        EXPECT_EQ(column, energies);
    });
    EXPECT_EQ(requests, 1);
    AllocationWatch watch;
    zimsNormEnergy_16s(column.data(), 1, 1024, 50, 100, 0.1f);
    EXPECT_EQ(watch.requests(), 0) << "1024 energies need no memory";
}

TEST(NormEnergy, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    // The step is no less than 1, as a width is.
    expectMatrixChecks({Size::width, Size::height}, {zimStsNullPointer, zimStsBadSize}, zimsNormEnergy_32f,
                       zimsNormEnergy_RT_32f, zimsNormEnergy_16s, zimsNormEnergy_RT_16s);
}

}  // namespace
}  // namespace zimsr::test
