// Fixed-point scores against a plain reference, one element after the other: every form at every width and height where
// shifts, saturation by place in the row, and the frame without a partner apply.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include <zimsr/loggauss_fixed.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/fixed_scores.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/score_doors.h"

namespace zimsr::test {
namespace {

// ---- The functions. Those without a scale factor have the factor 0.

using enum Arithmetic;

template <class Score>
struct Form : ScoreDoor<Zim16s, Score> {
    Arithmetic arithmetic;

    Score expected(const Block& block, int r, Score gconst, int factor) const
    {
        Frame frame = block.frame(r);
        if (!hasVariance(arithmetic))
            frame.invVar.clear();
        return this->ofOneVector
                   ? singleScore(arithmetic, frame, gconst, factor)
                   : blockScore(arithmetic, frame, gconst, factor, block.height % 2 != 0 && r + 1 == block.height);
    }
};

#define INTEGER_FORMS(tail, arithmetic)                                                                            \
    {SCORE_DOOR(zimsLogGauss_##tail##_D2Sfs), arithmetic}, {SCORE_DOOR(zimsLogGauss_##tail##_D2LSfs), arithmetic}, \
    {                                                                                                              \
        SCORE_DOOR(zimsLogGaussSingle_##tail##_Sfs), arithmetic                                                    \
    }
const std::vector<Form<Zim32s>> integerForms = {
    INTEGER_FORMS(16s32s, plain),
    INTEGER_FORMS(Low_16s32s, low),
    INTEGER_FORMS(IdVar_16s32s, idVar),
    INTEGER_FORMS(IdVarLow_16s32s, idVarLow),
};

#define FLOAT_FORMS(tail, arithmetic)                                                                        \
    {SCORE_DOOR(zimsLogGauss_##tail##_D2), arithmetic}, {SCORE_DOOR(zimsLogGauss_##tail##_D2L), arithmetic}, \
    {                                                                                                        \
        SCORE_DOOR(zimsLogGaussSingle_##tail), arithmetic                                                    \
    }
const std::vector<Form<Zim32f>> floatForms = {
    FLOAT_FORMS(Scaled_16s32f, plain),
    FLOAT_FORMS(16s32f, plain),
    FLOAT_FORMS(LowScaled_16s32f, low),
    FLOAT_FORMS(Low_16s32f, low),
    FLOAT_FORMS(IdVarScaled_16s32f, idVar),
    FLOAT_FORMS(IdVar_16s32f, idVar),
    FLOAT_FORMS(IdVarLowScaled_16s32f, idVarLow),
    FLOAT_FORMS(IdVarLow_16s32f, idVarLow),
};
#undef FLOAT_FORMS
#undef INTEGER_FORMS

// ---- Forms on one block, with the rows at every kind of place

Placement placementOf(int offset)
{
    return offset < 0 ? Placement{} : atOffset(offset);
}

template <class Score>
ScoreArrays<Zim16s, Score> arraysOf(const Block& block, Score gconst, int offset)
{
    Shorts weights;
    for (int r = 0; r < block.height; ++r)
        weights.insert(weights.end(), block.invVar.begin(), block.invVar.end());
    return {block.height,
            block.width + offset % 5 + 1,
            block.frames,
            weights,
            block.mean,
            gconst,
            std::vector<Score>(block.height, gconst),
            placementOf(offset)};
}

constexpr auto all = [](const auto&) { return true; };

// chosen(form) tells which forms and factors the block suits.
template <class Score, class Chosen = decltype(all)>
void expectForms(const std::vector<Form<Score>>& forms, const Block& block, Score gconst,
                 const std::vector<int>& factors, int offset, Chosen chosen = all)
{
    const auto arrays = arraysOf(block, gconst, offset);
    for (const auto& form : forms)
        for (int factor : factors) {
            if (!chosen(form) || (factor != 0 && !form.hasFactor))
                continue;
            std::vector<Score> wanted;
            for (int r = 0; r < block.height; ++r)
                wanted.push_back(form.expected(block, r, gconst, factor));
            arrays.running.fill(7);
            EXPECT_EQ(form.run(arrays, factor), zimStsOk);
            EXPECT_TRUE(equalBits(arrays.running.values(), wanted))
                << form.name << " of " << block.height << " x " << block.width << ", factor " << factor;
        }
}

void expectAllForms(const Block& block, const std::vector<int>& factors, int offset)
{
    expectForms(integerForms, block, 12345, factors, offset);
    expectForms(floatForms, block, -123.0f, factors, offset);
}

template <class Check>
void forEachSize(Check check)
{
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 7; ++height)
            check(height, width, (width + height) % 3 == 0 ? -1 : 2 * ((width * 7 + height) % 8));
}

// ---- Tests

TEST(FixedLow, ShiftsDropBitsAtTheirPlaces)
{
    const std::vector<int> right = {0, 1, 2, 3, 7, 14, 15, 16, 17, 30, 31, 32, 46, 47, 48, 63, 64, 100, INT_MAX};
    const std::vector<int> left = {-1, -2, -3, -8, -15, -16, -17, -18, -30, -31, -32, -33, -100, INT_MIN + 1};
    Random random(31);
    const auto isLow = [](const auto& form) { return form.arithmetic == low; };
    const auto isLowOfIdentity = [](const auto& form) { return form.arithmetic == idVarLow; };
    forEachSize([&](int height, int width, int offset) {
        const Block block = anyBlock(random, height, width);
        const Zim32s gconst = random.between(INT_MIN, INT_MAX);
        expectForms(integerForms, block, gconst, right, offset, isLow);
        expectForms(floatForms, block, static_cast<Zim32f>(gconst), right, offset, isLow);
        expectForms(integerForms, block, gconst, right, offset, isLowOfIdentity);
        expectForms(integerForms, block, gconst, left, offset, isLowOfIdentity);
    });
}

TEST(Fixed, SumsThatAreExact)
{
    Random random(32);
    const std::vector<int> factors = {0, 1, 4, 15, 29, -1, -2, -5, -16, -30};
    forEachSize([&](int height, int width, int offset) {
        expectForms(floatForms, anyBlock(random, height, width), 5e8f, factors, offset,
                    [](const auto& form) { return form.ofOneVector && form.arithmetic == idVar; });
        expectAllForms(smallBlock(random, height, width), factors, offset);
    });
}

TEST(Fixed, DifferencesBeyondSixteenBitsByPlaceInTheRow)
{
    Random random(33);
    for (int width = 1; width <= 40; ++width)
        for (int place = 0; place < width; ++place)
            expectAllForms(sparseBlock(random, 3, width, place), {0, 3, -2, 20}, place % 2 == 0 ? -1 : 2);
}

TEST(Fixed, ADifferenceOf40000)
{
    for (int place : {3, 10}) {
        Shorts frame(13, 0), mean(13, 0), invVar(13, 1);
        frame[place] = 20000;
        mean[place] = -20000;
        Zim32s score;
        zimsLogGauss_16s32s_D2Sfs(frame.data(), 13, mean.data(), invVar.data(), 13, &score, 1, 0, 0);
        EXPECT_EQ(score, place < 8 ? -32767 * (32767 / 2.0f) : -800000000);
    }
}

template <class Score>
void expectConstants(const std::vector<Form<Score>>& forms, Score gconst)
{
    Random random(34);
    Block block = anyBlock(random, 1, 21);
    block.frames = block.mean;
    const auto arrays = arraysOf(block, gconst, -1);
    for (const auto& form : forms)
        for (int factor : {0, 7, 30, 127, 150, INT_MAX, -1, -30, -127, -128, -129, -1000, INT_MIN}) {
            arrays.running.fill(7);
            form.run(arrays, factor);
            EXPECT_EQ(arrays.running[0], gconst) << form.name << ' ' << factor;
        }
}

TEST(Fixed, EqualVectorsScoreTheConstant)
{
    expectConstants<Zim32s>(integerForms, -77);
    expectConstants<Zim32f>(floatForms, -77.5f);
}

TEST(Fixed, OverflowOfTheScore)
{
    const Shorts frame(16, 32767), mean(16, -1), high(16, 32767), lowest(16, -32768);
    Zim32s score;
    zimsLogGaussSingle_16s32s_Sfs(frame.data(), mean.data(), high.data(), 16, &score, 0, 0);
    EXPECT_EQ(score, INT_MIN);
    zimsLogGaussSingle_16s32s_Sfs(frame.data(), mean.data(), lowest.data(), 16, &score, 0, 0);
    EXPECT_EQ(score, INT_MAX);
    for (const Shorts& invVar : {high, lowest}) {
        zimsLogGauss_16s32s_D2Sfs(frame.data(), 16, mean.data(), invVar.data(), 16, &score, 1, 0, 0);
        EXPECT_EQ(score, INT_MIN);
    }
    zimsLogGaussSingle_Low_16s32s_Sfs(frame.data(), mean.data(), high.data(), 16, &score, 0, 0);
    EXPECT_EQ(score, wrapped(0, lowSum({frame, mean, high}, 0, Place::single)));
}

// A sum that is rounded is near the exact one, and the same in every place, alignment, matrix form and single call.
TEST(Fixed, SumsThatAreRounded)
{
    Random random(35);
    forEachSize([&](int height, int width, int offset) {
        Block block = anyBlock(random, height, width);
        for (Zim16s& v : block.invVar)
            v = static_cast<Zim16s>(v & 0x7FFF);
        const auto arrays = arraysOf(block, 0.0f, offset);
        std::vector<Zim32f> first[2];
        for (const auto& form : floatForms) {
            const bool weighted = form.arithmetic == plain;
            if (!weighted && (form.arithmetic != idVar || form.ofOneVector))
                continue;
            form.run(arrays, 0);
            auto& expected = first[weighted];
            if (expected.empty())
                expected = arrays.running.values();
            EXPECT_TRUE(equalBits(arrays.running.values(), expected)) << form.name << ' ' << height << " x " << width;
            for (int r = 0; r < height; ++r) {
                long double sum = 0, magnitude = 0;
                Frame frame = block.frame(r);
                if (!weighted)
                    frame.invVar.clear();
                for (Zim32f t : weighted ? plainTerms(frame) : asFloats(pairSquares(frame))) {
                    sum += t;
                    magnitude += std::fabs(t);
                }
                EXPECT_NEAR(arrays.running[r], -sum / 2, magnitude * width * 0x1p-25L) << form.name << ' ' << width;
                Block alone = block;
                alone.height = 1;
                alone.frames.assign(frame.x.begin(), frame.x.end());
                const auto single = arraysOf(alone, 0.0f, offset);
                form.run(single, 0);
                EXPECT_TRUE(sameBits(single.running[0], expected[r])) << form.name << ' ' << width;
            }
        }
    });
}

// ---- Variances

TEST(FixedDirectVar, ReciprocalsAsFloats)
{
    Random random(36);
    for (int width = 1; width <= 40; ++width)
        for (int place = 0; place < width; ++place) {
            Block block = sparseBlock(random, 1, width, place);
            if ((place ^ 1) < width)  // one term only: its sum is exact
                block.frames[place ^ 1] = block.mean[place ^ 1];
            for (Zim16s& v : block.invVar)
                v = static_cast<Zim16s>(v == 0 ? 1 : v);
            const Frame f = block.frame(0);
            const Zim32f reciprocal = 1.0f / static_cast<Zim32f>(f.weight(place));
            const Zim32f squared = toFloats(square(place < f.grouped() ? f.saturated(place) : f.exact(place)));
            // Of a Zim32s score the differences are floats, and so exact, and the sum is rounded and saturated before
            // it is subtracted.
            const Zim32f difference = static_cast<Zim32f>(f.exact(place)), sum = difference * difference * reciprocal;
            const Guarded<Zim16s> src(f.x), mean(f.mean), var(f.invVar);
            const Guarded<Zim32f> score(1);
            const Guarded<Zim32s> rounded(1);
            for (int factor : {0, 2, -3, 25}) {
                EXPECT_EQ(zimsLogGaussSingle_DirectVarScaled_16s32f(src, mean, var, width, score, 100.0f, factor),
                          zimStsOk);
                EXPECT_EQ(score[0], 100.0f - squared * reciprocal * 0.5f * power(-factor)) << width << ' ' << place;
                const Guarded<Zim32f> unscaled(1);
                EXPECT_EQ(zimsLogGaussSingle_DirectVar_16s32f(src, mean, var, width, unscaled, 100.0f), zimStsOk);
                EXPECT_EQ(unscaled[0], 100.0f - squared * reciprocal * 0.5f) << width << ' ' << place;
                const double limited =
                    std::clamp(std::nearbyint(std::ldexp(double{sum}, -(factor + 1))), -2147483648.0, 2147483647.0);
                for (Zim32s gconst : {7, INT_MIN, INT_MAX}) {
                    EXPECT_EQ(zimsLogGaussSingle_DirectVar_16s32s_Sfs(src, mean, var, width, rounded, gconst, factor),
                              zimStsOk);
                    EXPECT_EQ(rounded[0], std::clamp(gconst - limited, -2147483648.0, 2147483647.0))
                        << width << ' ' << place << ' ' << factor;
                }
            }
        }
}

TEST(FixedDirectVar, AZeroVariance)
{
    const Shorts src = {5, 5, 5}, mean = {4, 5, 5}, zeroFirst = {0, 1, 1}, zeroSecond = {1, 0, 1};
    Zim32f score = 0;
    EXPECT_EQ(zimsLogGaussSingle_DirectVarScaled_16s32f(src.data(), mean.data(), zeroFirst.data(), 3, &score, 1, 0),
              zimStsDivByZeroWarn);
    EXPECT_EQ(score, -INFINITY);
    EXPECT_EQ(zimsLogGaussSingle_DirectVar_16s32f(src.data(), mean.data(), zeroSecond.data(), 3, &score, 1),
              zimStsDivByZeroWarn);
    EXPECT_TRUE(std::isnan(score));
    Zim32s rounded = 0;
    EXPECT_EQ(zimsLogGaussSingle_DirectVar_16s32s_Sfs(src.data(), mean.data(), zeroFirst.data(), 3, &rounded, 1, 0),
              zimStsDivByZeroWarn);
    EXPECT_EQ(rounded, -INT_MAX + 1);
}

TEST(FixedDirectVar, NoMemoryLeavesTheResultAlone)
{
    const Shorts v(9, 3);
    Zim32f score = 1;
    Zim32s rounded = 1;
    const auto expectNoMemory = [](auto call, const auto& result) {
        EXPECT_EQ(forEachFailedAllocation(call,
                                          [&](ZimStatus status, int leaked) {
                                              EXPECT_EQ(status, zimStsNoMemory);
                                              EXPECT_EQ(leaked, 0);
                                              EXPECT_EQ(result, 1);
                                          }),
                  1);
        EXPECT_EQ(result, 2);
    };
    expectNoMemory(
        [&] { return zimsLogGaussSingle_DirectVarScaled_16s32f(v.data(), v.data(), v.data(), 9, &score, 2, 0); },
        score);
    expectNoMemory(
        [&] { return zimsLogGaussSingle_DirectVar_16s32s_Sfs(v.data(), v.data(), v.data(), 9, &rounded, 2, 0); },
        rounded);
}

// ---- Checks

TEST(Fixed, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    const std::vector<ZimStatus> order = {zimStsBadStride, zimStsNullPointer, zimStsBadSize};
    for (const auto& form : integerForms)
        form.expectChecks(order);
    for (const auto& form : floatForms)
        form.expectChecks(order);
    expectPointersThenLength(zimsLogGaussSingle_DirectVar_16s32s_Sfs, zimsLogGaussSingle_DirectVarScaled_16s32f,
                             zimsLogGaussSingle_DirectVar_16s32f);
}

}  // namespace
}  // namespace zimsr::test
