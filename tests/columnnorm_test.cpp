// Sums of columns added row after row, and normalisation by the path that alignment and the column's place choose,
// against loops over single elements.
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
#include "support/matrix.h"
#include "support/random.h"
#include "support/rounding.h"

namespace zimsr::test {
namespace {

// Rounded half to even, saturated.
template <class Int>
Int quantised(double v)
{
    return static_cast<Int>(
        std::clamp<double>(std::nearbyint(v), std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

// ---- Sums

// The sums of a column, added to what stands in them.
template <class T>
void addColumn(const std::vector<T>& values, std::size_t width, std::size_t column, float& sum, float& sumSq)
{
    for (std::size_t i = column; i < values.size(); i += width) {
        const float x = values[i];
        sum += x;
        sumSq += x * x;
    }
}

template <class T>
using SumDoor = ZimStatus (*)(const T*, int, int, Zim32f*, Zim32f*, int);

template <class T>
void expectFloatSums(SumDoor<T> fresh, SumDoor<T> onto)
{
    Random random(1);
    for (int width = 1; width <= 70; ++width)
        for (int height : {1, 2, 3, 9, 40}) {
            const auto columns = static_cast<std::size_t>(width);
            const auto values = random.vector<T>(columns * height, -30000, 30000);
            const auto start = random.vector<float>(columns, -1e6f, 1e6f);
            const Placement place = height % 2 ? Placement{} : atOffset(width % 8 * sizeof(T));
            const StridedMatrix<T> src(values, height, width, width + width % 3, place);
            for (bool accumulates : {false, true}) {
                const Guarded<float> sum(start), sumSq(start);
                std::vector<float> expected(accumulates ? start : std::vector<float>(columns)), expectedSq = expected;
                for (std::size_t c = 0; c < columns; ++c)
                    addColumn(values, columns, c, expected[c], expectedSq[c]);
                EXPECT_EQ((accumulates ? onto : fresh)(src.data(), src.step(), height, sum, sumSq, width), zimStsOk);
                EXPECT_TRUE(equalBits(sum.values(), expected)) << height << " x " << width;
                EXPECT_TRUE(equalBits(sumSq.values(), expectedSq)) << height << " x " << width;
            }
        }
}

TEST(SumMeanVar, SinglePrecision)
{
    expectFloatSums(zimsSumMeanVar_32f, zimsSumMeanVar_32f_I);
}

TEST(SumMeanVar, SamplesToFloats)
{
    expectFloatSums(zimsSumMeanVar_16s32f, zimsSumMeanVar_16s32f_I);
}

TEST(SumMeanVar, SamplesToIntegers)
{
    Random random(2);
    for (int width : {1, 3, 7, 8, 9, 13, 39, 64})
        for (int scaleFactor : {0, 1, 7, 31, 200, -1, -3, -40, INT_MAX, INT_MIN}) {
            const int height = 21;
            const auto columns = static_cast<std::size_t>(width);
            const auto values = random.any<Zim16s>(columns * height);
            const auto start = random.any<Zim32s>(columns);
            const StridedMatrix<Zim16s> src(values, height, width, width + 2);
            for (bool accumulates : {false, true}) {
                std::vector<Zim32s> expected, expectedSq;
                for (std::size_t c = 0; c < columns; ++c) {
                    float sum = accumulates ? static_cast<float>(start[c]) : 0, sumSq = sum;
                    addColumn(values, columns, c, sum, sumSq);
                    const int exponent = -std::clamp(scaleFactor, -300, 300);
                    expected.push_back(quantised<Zim32s>(std::ldexp(static_cast<double>(sum), exponent)));
                    expectedSq.push_back(quantised<Zim32s>(std::ldexp(static_cast<double>(sumSq), exponent)));
                }
                const Guarded<Zim32s> sum(start), sumSq(start);
                const auto door = accumulates ? zimsSumMeanVar_16s32s_ISfs : zimsSumMeanVar_16s32s_Sfs;
                EXPECT_EQ(door(src.data(), src.step(), height, sum, sumSq, width, scaleFactor), zimStsOk);
                EXPECT_TRUE(equalBits(sum.values(), expected)) << width << " scaled by " << scaleFactor;
                EXPECT_TRUE(equalBits(sumSq.values(), expectedSq)) << width << " scaled by " << scaleFactor;
            }
        }
}

// ---- Normalisation

TEST(NormalizeColumn, SinglePrecision)
{
    Random random(3);
    for (int width = 1; width <= 40; ++width)
        for (int height : {1, 2, 5}) {
            const auto columns = static_cast<std::size_t>(width);
            const auto values = random.vector<float>(columns * height, -100, 100);
            const Guarded<float> mean(random.vector<float>(columns, -10, 10)), val(random.vector<float>(columns, 0, 3));
            std::vector<float> expected;
            for (std::size_t i = 0; i < values.size(); ++i)
                expected.push_back((values[i] - mean[i % columns]) * val[i % columns]);
            const int step = width + width % 3;
            const StridedMatrix<float> block(values, height, width, step), aliased(values, height, width, step);
            const RowMatrix<float> rows(values, height, width);
            EXPECT_EQ(zimsNormalizeColumn_32f_D2(block.data(), step, height, mean, val, width), zimStsOk);
            EXPECT_EQ(zimsNormalizeCol_32f_D2(mean, val, width, aliased.data(), step, height), zimStsOk);
            EXPECT_EQ(zimsNormalizeColumn_32f_D2L(rows.writable(), height, mean, val, width), zimStsOk);
            EXPECT_TRUE(equalBits(block.values(), expected)) << height << " x " << width;
            EXPECT_TRUE(equalBits(aliased.values(), expected)) << height << " x " << width;
            EXPECT_TRUE(equalBits(rows.values(), expected)) << height << " x " << width;
        }
}

Zim16s sat16(long long v)
{
    return static_cast<Zim16s>(std::clamp<long long>(v, -32768, 32767));
}

Zim16s shifted(long long product, int scaleFactor)
{
    return scaleFactor >= 0 ? sat16(product >> std::min(scaleFactor, 63))
                            : sat16(product * (1LL << -std::max(scaleFactor, -30)));
}

// An element on the plain path, on the aligned path in a group of eight columns, or behind the last of them.
enum class Way { exact, saturated, rounded };

Zim16s normalised(Way way, Zim16s x, Zim16s mean, Zim16s val, int scaleFactor)
{
    const int difference = x - mean;
    switch (way) {
        case Way::exact:
            return shifted(static_cast<long long>(difference) * val, scaleFactor);
        case Way::saturated:
            return shifted(sat16(difference) * val, scaleFactor);
        default:
            const float v = static_cast<float>(difference) * static_cast<float>(val);
            return quantised<Zim16s>(std::ldexp(static_cast<double>(v), -std::clamp(scaleFactor, -300, 300)));
    }
}

// Runs both forms with arrays at given places; which of them lies off its boundary decides on the way.
TEST(NormalizeColumn, SamplesByEveryWay)
{
    Random random(4);
    struct Place {
        std::size_t matrix, mean, val;
        int gap;  // beyond a multiple of eight
    };
    const std::vector<Place> places = {{0, 0, 0, 0}, {2, 0, 0, 0}, {0, 8, 0, 0}, {0, 0, 14, 0}, {0, 0, 0, 1}};
    for (int width = 1; width <= 40; ++width)
        for (int scaleFactor : {0, 1, 5, 15, 16, 31, 32, 40, 150, -1, -5, -15, -16, -40, -128, INT_MAX, INT_MIN})
            for (const Place& place : places) {
                const int height = 3, step = (width + 7) / 8 * 8 + place.gap;
                const auto columns = static_cast<std::size_t>(width);
                const bool loud = random.between<int>(0, 1);
                const auto draw = [&](std::size_t count) {
                    return loud ? random.any<Zim16s>(count) : random.vector<Zim16s>(count, -9, 9);
                };
                const auto values = draw(columns * height);
                const Guarded<Zim16s> mean(draw(columns), atOffset(place.mean)),
                    val(draw(columns), atOffset(place.val));
                const auto expected = [&](bool aligned) {
                    std::vector<Zim16s> result;
                    for (std::size_t i = 0; i < values.size(); ++i) {
                        const std::size_t c = i % columns;
                        const Way way = !aligned ? Way::exact : c < columns / 8 * 8 ? Way::saturated : Way::rounded;
                        result.push_back(normalised(way, values[i], mean[c], val[c], scaleFactor));
                    }
                    return result;
                };
                const bool aligned = place.matrix + place.mean + place.val == 0;
                const StridedMatrix<Zim16s> block(values, height, width, step, atOffset(place.matrix));
                const RowMatrix<Zim16s> rows(values, height, width, atOffset(place.matrix));
                EXPECT_EQ(zimsNormalizeColumn_16s_D2Sfs(block.data(), step, height, mean, val, width, scaleFactor),
                          zimStsOk);
                EXPECT_EQ(zimsNormalizeColumn_16s_D2LSfs(rows.writable(), height, mean, val, width, scaleFactor),
                          zimStsOk);
                EXPECT_TRUE(equalBits(block.values(), expected(aligned && place.gap == 0)))
                    << "D2, width " << width << " scaled by " << scaleFactor;
                EXPECT_TRUE(equalBits(rows.values(), expected(aligned)))
                    << "D2L, width " << width << " scaled by " << scaleFactor;
            }
}

TEST(NormalizeColumn, ColumnsBehindTheLastGroupAreRounded)
{
    alignas(16) Zim16s row[16], mean[9] = {}, val[9];
    std::fill_n(row, 16, Zim16s{3});
    std::fill_n(val, 9, Zim16s{1});
    inEveryRoundingMode([&] {
        std::fill_n(row, 16, Zim16s{3});
        zimsNormalizeColumn_16s_D2Sfs(row, 16, 1, mean, val, 9, 1);
        EXPECT_EQ(row[7], 1);
        EXPECT_EQ(row[8], 2);
        EXPECT_EQ(row[9], 3);
    });
}

// ---- Refusals

TEST(ColumnNormalisation, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using enum Size;
    expectMatrixChecks({step, height, width}, {zimStsBadStride, zimStsNullPointer, zimStsBadSize}, zimsSumMeanVar_32f,
                       zimsSumMeanVar_32f_I, zimsSumMeanVar_16s32f, zimsSumMeanVar_16s32f_I, zimsSumMeanVar_16s32s_Sfs,
                       zimsSumMeanVar_16s32s_ISfs);
    const std::vector<ZimStatus> strideLast{zimStsNullPointer, zimStsBadSize, zimStsBadStride};
    expectMatrixChecks({step, height, width}, strideLast, zimsNormalizeColumn_32f_D2, zimsNormalizeColumn_16s_D2Sfs);
    expectMatrixChecks({width, step, height}, strideLast, zimsNormalizeCol_32f_D2);
    expectMatrixChecks({height, width}, strideLast, zimsNormalizeColumn_32f_D2L, zimsNormalizeColumn_16s_D2LSfs);
}

}  // namespace
}  // namespace zimsr::test
