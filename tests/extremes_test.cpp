// Extremes against a plain loop with the same rules: NaN passed over, the first of equal elements.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <vector>

#include <zimsr/extremes.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/shapes.h"

namespace zimsr::test {
namespace {

template <class Float, class Better>
std::size_t firstBest(const std::vector<Float>& values, Better better)
{
    std::size_t best = 0;
    for (std::size_t i = 1; i < values.size(); ++i)
        if (better(values[i], values[best]) || (std::isnan(values[best]) && !std::isnan(values[i])))
            best = i;
    return best;
}

template <class Float>
struct Doors {
    ZimStatus (*max)(const Float*, int, Float*);
    ZimStatus (*min)(const Float*, int, Float*);
    ZimStatus (*maxIndx)(const Float*, int, Float*, int*);
};
constexpr Doors<Zim32f> doors32 = {zimsMax_32f, zimsMin_32f, zimsMaxIndx_32f};
constexpr Doors<Zim64f> doors64 = {zimsMax_64f, zimsMin_64f, zimsMaxIndx_64f};

template <class Float>
void expectExtremes(Doors<Float> doors, const std::vector<Float>& values, Placement placement)
{
    const Guarded<Float> src(values, placement);
    const int len = static_cast<int>(values.size());
    const std::size_t greatest = firstBest(values, [](Float a, Float b) { return a > b; });
    const std::size_t smallest = firstBest(values, [](Float a, Float b) { return a < b; });
    Float max, min, maxAtIndex, maxAlone;
    int index = -1;
    EXPECT_EQ(doors.max(src, len, &max), zimStsOk);
    EXPECT_EQ(doors.min(src, len, &min), zimStsOk);
    EXPECT_EQ(doors.maxIndx(src, len, &maxAtIndex, &index), zimStsOk);
    EXPECT_EQ(doors.maxIndx(src, len, &maxAlone, nullptr), zimStsOk);
    EXPECT_TRUE(sameBits(max, values[greatest])) << max << ' ' << values[greatest] << " length " << len;
    EXPECT_TRUE(sameBits(min, values[smallest])) << min << ' ' << values[smallest] << " length " << len;
    EXPECT_EQ(index, static_cast<int>(greatest)) << "length " << len;
    EXPECT_TRUE(sameBits(maxAtIndex, max));
    EXPECT_TRUE(sameBits(maxAlone, max));
}

// Few distinct values, so that every length has ties; zeros of both signs, infinities and NaNs among them.
template <class Float>
std::vector<std::vector<Float>> valueLists()
{
    using Limits = std::numeric_limits<Float>;
    const Float inf = Limits::infinity(), nan = Limits::quiet_NaN();
    const std::vector<std::vector<Float>> alphabets = {{-3, 1, 2, 2.5}, {-1, Float(-0.0), 0}, {1, Float(-0.0), 0},
                                                       {nan, -inf},     {nan, inf, 0},        {nan, -5, 7},
                                                       {nan},           {-inf, -inf, -2},     {inf, 3}};
    Random random(1);
    std::vector<std::vector<Float>> lists = {random.vector<Float>(3000, -1, 1)};
    for (const auto& alphabet : alphabets) {
        lists.emplace_back();
        for (int i = 0; i < 3000; ++i)
            lists.back().push_back(alphabet[random.between<std::size_t>(0, alphabet.size() - 1)]);
    }
    return lists;
}

template <class Float>
void expectExtremesAtEveryShape(Doors<Float> doors)
{
    for (const auto& list : valueLists<Float>())
        forEachShape([&](Shape shape) { expectExtremes(doors, shape.take(list), shape.place<Float>()); });
}

TEST(Extremes, EveryShape)
{
    expectExtremesAtEveryShape(doors32);
    expectExtremesAtEveryShape(doors64);
}

template <class Float, class Bits>
void expectBitsOfTheFirstNaN(Doors<Float> doors, Bits signalling)
{
    const std::vector<Bits> row(40, signalling);
    const auto* src = reinterpret_cast<const Float*>(row.data());
    Float max, min;
    EXPECT_EQ(doors.max(src, 40, &max), zimStsOk);
    EXPECT_EQ(doors.min(src, 40, &min), zimStsOk);
    EXPECT_EQ(std::memcmp(&max, &signalling, sizeof(max)), 0);
    EXPECT_EQ(std::memcmp(&min, &signalling, sizeof(min)), 0);
}

TEST(Extremes, SignallingNaNsStayAsTheyAre)
{
    expectBitsOfTheFirstNaN(doors32, UINT32_C(0x7FA00001));
    expectBitsOfTheFirstNaN(doors64, UINT64_C(0xFFF4000000000001));
}

// The greatest element at every place of a row that is taken in stretches, with an equal one behind it.
TEST(Extremes, TheFirstOccurrenceWinsAcrossStretches)
{
    std::vector<Zim32f> values = Random(2).vector<Zim32f>(5000, -1, 1);
    for (int first : {0, 7, 8, 2046, 2047, 2048, 2049, 4095, 4096, 4990})
        for (int second : {first + 1, first + 8, 4999}) {
            auto row = values;
            row[first] = row[second] = 5;
            expectExtremes(doors32, row, atOffset(4));
            expectExtremes(doors64, std::vector<Zim64f>(row.begin(), row.end()), atOffset(8));
        }
    expectExtremes(doors32, {1, 3, 3}, {});
}

TEST(Extremes, PairByPair)
{
    const auto lists32 = valueLists<Zim32f>();
    for (std::size_t i = 0; i < lists32.size(); ++i) {
        const auto& other = lists32[(i + 1) % lists32.size()];
        expectInPlace(
            zimsMaxEvery_32f_I, [](Zim32f old, Zim32f v) { return v > old ? v : old; }, lists32[i], other);
        expectInPlace(
            zimsMinEvery_32f_I, [](Zim32f old, Zim32f v) { return v < old ? v : old; }, lists32[i], other);
    }
    Random random(3);
    expectInPlace(
        zimsMinEvery_32s_I, [](Zim32s old, Zim32s v) { return std::min(old, v); }, random.any<Zim32s>(300),
        random.any<Zim32s>(299));
}

TEST(Extremes, Checks)
{
    expectPointersThenLength(zimsMax_32f, zimsMax_64f, zimsMin_32f, zimsMin_64f, zimsMaxEvery_32f_I, zimsMinEvery_32f_I,
                             zimsMinEvery_32s_I);
    const Zim32f x[1] = {4};
    const Zim64f y[1] = {4};
    Zim32f max32 = 7;
    Zim64f max64 = 7;
    int index = 7;
    expectNullsFirst(zimsMaxIndx_32f, x, 0, &max32, nullptr);
    expectNullsFirst(zimsMaxIndx_64f, y, 0, &max64, nullptr);
    expectStatuses({{"length", zimsMaxIndx_32f(x, 0, &max32, &index), zimStsBadSize},
                    {"length", zimsMaxIndx_64f(y, -1, &max64, &index), zimStsBadSize},
                    {"length, no index", zimsMaxIndx_64f(y, 0, &max64, nullptr), zimStsBadSize}});
    EXPECT_EQ(max32, 7);
    EXPECT_EQ(max64, 7);
    EXPECT_EQ(index, 7);
}

}  // namespace
}  // namespace zimsr::test
