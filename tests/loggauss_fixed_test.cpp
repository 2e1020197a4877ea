// Fixed-point scores against a plain reference, one element after the other: every form at every width and height where
// shifts, saturation by place in the row, and the frame without a partner apply.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <vector>

#include <zimsr/loggauss_fixed.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/fixed_scores.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

// ---- The functions. Those without variances are called as if they had them.

template <class Score>
struct BlockForm {
    Arithmetic arithmetic;
    std::function<ZimStatus(const Zim16s*, int, const Zim16s*, const Zim16s*, int, Score*, int, Score, int)> d2;
    std::function<ZimStatus(const Zim16s* const*, const Zim16s*, const Zim16s*, int, Score*, int, Score, int)> d2l;
};

template <class Score>
struct SingleForm {
    Arithmetic arithmetic;
    std::function<ZimStatus(const Zim16s*, const Zim16s*, const Zim16s*, int, Score*, Score, int)> call;
};

template <class Score>
BlockForm<Score> withoutVariance(Arithmetic arithmetic,
                                 ZimStatus (*d2)(const Zim16s*, int, const Zim16s*, int, Score*, int, Score, int),
                                 ZimStatus (*d2l)(const Zim16s* const*, const Zim16s*, int, Score*, int, Score, int))
{
    return {arithmetic,
            [=](auto mat, int step, auto mean, auto, int width, auto result, int height, Score gconst, int factor) {
                return d2(mat, step, mean, width, result, height, gconst, factor);
            },
            [=](auto rows, auto mean, auto, int width, auto result, int height, Score gconst, int factor) {
                return d2l(rows, mean, width, result, height, gconst, factor);
            }};
}

template <class Score>
SingleForm<Score> withoutVariance(Arithmetic arithmetic,
                                  ZimStatus (*single)(const Zim16s*, const Zim16s*, int, Score*, Score, int))
{
    return {arithmetic, [=](auto src, auto mean, auto, int len, auto dst, Score gconst, int factor) {
                return single(src, mean, len, dst, gconst, factor);
            }};
}

using enum Arithmetic;

const BlockForm<Zim32s> integerBlocks[] = {
    {plain, zimsLogGauss_16s32s_D2Sfs, zimsLogGauss_16s32s_D2LSfs},
    {low, zimsLogGauss_Low_16s32s_D2Sfs, zimsLogGauss_Low_16s32s_D2LSfs},
    withoutVariance(idVar, zimsLogGauss_IdVar_16s32s_D2Sfs, zimsLogGauss_IdVar_16s32s_D2LSfs),
    withoutVariance(idVarLow, zimsLogGauss_IdVarLow_16s32s_D2Sfs, zimsLogGauss_IdVarLow_16s32s_D2LSfs),
};

const BlockForm<Zim32f> floatBlocks[] = {
    {plain, zimsLogGauss_Scaled_16s32f_D2, zimsLogGauss_Scaled_16s32f_D2L},
    {low, zimsLogGauss_LowScaled_16s32f_D2, zimsLogGauss_LowScaled_16s32f_D2L},
    withoutVariance(idVar, zimsLogGauss_IdVarScaled_16s32f_D2, zimsLogGauss_IdVarScaled_16s32f_D2L),
    withoutVariance(idVarLow, zimsLogGauss_IdVarLowScaled_16s32f_D2, zimsLogGauss_IdVarLowScaled_16s32f_D2L),
};

const SingleForm<Zim32s> integerSingles[] = {
    {plain, zimsLogGaussSingle_16s32s_Sfs},
    {low, zimsLogGaussSingle_Low_16s32s_Sfs},
    withoutVariance(idVar, zimsLogGaussSingle_IdVar_16s32s_Sfs),
    withoutVariance(idVarLow, zimsLogGaussSingle_IdVarLow_16s32s_Sfs),
};

const SingleForm<Zim32f> floatSingles[] = {
    {plain, zimsLogGaussSingle_Scaled_16s32f},
    {low, zimsLogGaussSingle_LowScaled_16s32f},
    withoutVariance(idVar, zimsLogGaussSingle_IdVarScaled_16s32f),
    withoutVariance(idVarLow, zimsLogGaussSingle_IdVarLowScaled_16s32f),
};

// ---- One form on one block, in both matrix forms, with the rows at every kind of place

Placement placementOf(int offset)
{
    return offset < 0 ? Placement{} : atOffset(static_cast<std::size_t>(offset));
}

template <class Score>
void expectForm(const BlockForm<Score>& form, Block block, Score gconst, const std::vector<int>& factors, int offset)
{
    const Placement placement = placementOf(offset);
    const StridedMatrix<Zim16s> mat(block.frames, block.height, block.width, block.width + offset % 5 + 1, placement);
    const RowMatrix<Zim16s> rows(block.frames, block.height, block.width, placement);
    const Guarded<Zim16s> mean(block.mean, placement), invVar(block.invVar, placement);
    if (!hasVariance(form.arithmetic))
        block.invVar.clear();
    for (int factor : factors) {
        std::vector<Score> wanted;
        for (int r = 0; r < block.height; ++r)
            wanted.push_back(
                blockScore(form.arithmetic, block.frame(r), gconst, factor, block.height % 2 && r + 1 == block.height));
        const Guarded<Score> result(wanted.size()), resultL(wanted.size());
        EXPECT_EQ(form.d2(mat.data(), mat.step(), mean, invVar, block.width, result, block.height, gconst, factor),
                  zimStsOk);
        EXPECT_EQ(form.d2l(rows.data(), mean, invVar, block.width, resultL, block.height, gconst, factor), zimStsOk);
        EXPECT_TRUE(equalBits(result.values(), wanted))
            << "arithmetic " << static_cast<int>(form.arithmetic) << " of " << block.height << " x " << block.width
            << ", factor " << factor;
        EXPECT_TRUE(equalBits(resultL.values(), result.values()));
    }
}

template <class Score>
void expectForm(const SingleForm<Score>& form, Block block, Score gconst, const std::vector<int>& factors, int offset)
{
    block.frames.resize(static_cast<std::size_t>(block.width));
    const Placement placement = placementOf(offset);
    const Guarded<Zim16s> src(block.frames, placement), mean(block.mean, placement), invVar(block.invVar, placement);
    if (!hasVariance(form.arithmetic))
        block.invVar.clear();
    for (int factor : factors) {
        const Guarded<Score> dst(1);
        const Score wanted = singleScore(form.arithmetic, block.frame(0), gconst, factor);
        EXPECT_EQ(form.call(src, mean, invVar, block.width, dst, gconst, factor), zimStsOk);
        EXPECT_TRUE(sameBits(dst[0], wanted))
            << "arithmetic " << static_cast<int>(form.arithmetic) << " of width " << block.width << ", factor "
            << factor << ": " << dst[0] << " for " << wanted;
    }
}

void expectAllForms(const Block& block, const std::vector<int>& factors, int offset)
{
    for (const auto& form : integerBlocks)
        expectForm(form, block, 12345, factors, offset);
    for (const auto& form : floatBlocks)
        expectForm(form, block, -123.0f, factors, offset);
    for (const auto& form : integerSingles)
        expectForm(form, block, 54321, factors, offset);
    for (const auto& form : floatSingles)
        expectForm(form, block, 321.0f, factors, offset);
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
    forEachSize([&](int height, int width, int offset) {
        const Block block = anyBlock(random, height, width);
        const Zim32s gconst = random.between(INT_MIN, INT_MAX);
        expectForm(integerBlocks[1], block, gconst, right, offset);
        expectForm(integerBlocks[3], block, gconst, right, offset);
        expectForm(integerBlocks[3], block, gconst, left, offset);
        expectForm(floatBlocks[1], block, static_cast<Zim32f>(gconst), right, offset);
        expectForm(integerSingles[1], block, gconst, right, offset);
        expectForm(integerSingles[3], block, gconst, right, offset);
        expectForm(integerSingles[3], block, gconst, left, offset);
        expectForm(floatSingles[1], block, static_cast<Zim32f>(gconst), right, offset);
    });
}

TEST(Fixed, SumsThatAreExact)
{
    Random random(32);
    forEachSize([&](int height, int width, int offset) {
        const Block any = anyBlock(random, height, width);
        const std::vector<int> factors = {0, 1, 4, 15, 29, -1, -2, -5, -16, -30};
        expectForm(floatSingles[2], any, 5e8f, factors, offset);
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
        frame[static_cast<std::size_t>(place)] = 20000;
        mean[static_cast<std::size_t>(place)] = -20000;
        Zim32s score;
        zimsLogGauss_16s32s_D2Sfs(frame.data(), 13, mean.data(), invVar.data(), 13, &score, 1, 0, 0);
        EXPECT_EQ(score, place < 8 ? -32767 * (32767 / 2.0f) : -800000000);
    }
}

TEST(Fixed, EqualVectorsScoreTheConstant)
{
    Random random(34);
    const Shorts mean = random.any<Zim16s>(21), invVar = random.any<Zim16s>(21);
    Shorts frames;
    for (int r = 0; r < 3; ++r)
        frames.insert(frames.end(), mean.begin(), mean.end());
    const RowMatrix<Zim16s> rows(frames, 3, 21);
    const auto expectConstant = [&](const auto& form, auto gconst) {
        for (int factor : {0, 7, 30, 127, 150, INT_MAX, -1, -30, -127, -128, -129, -1000, INT_MIN}) {
            std::vector<decltype(gconst)> scores(3);
            if constexpr (requires { form.d2; })
                form.d2l(rows.data(), mean.data(), invVar.data(), 21, scores.data(), 3, gconst, factor);
            else
                form.call(frames.data(), mean.data(), invVar.data(), 21, scores.data(), gconst, factor);
            EXPECT_EQ(scores[0], gconst) << static_cast<int>(form.arithmetic) << ' ' << factor;
            EXPECT_EQ(
                scores[2], requires { form.d2; } ? gconst : 0)
                << factor;
        }
    };
    for (const auto& form : integerBlocks)
        expectConstant(form, Zim32s{-77});
    for (const auto& form : floatBlocks)
        expectConstant(form, -77.5f);
    for (const auto& form : integerSingles)
        expectConstant(form, Zim32s{-77});
    for (const auto& form : floatSingles)
        expectConstant(form, -77.5f);
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
        const RowMatrix<Zim16s> rows(block.frames, height, width, placementOf(offset));
        const StridedMatrix<Zim16s> mat(block.frames, height, width, width + 3);
        const Guarded<Zim16s> mean(block.mean, placementOf(offset)), invVar(block.invVar);
        const Guarded<Zim32f> d2(static_cast<std::size_t>(height)), d2l(static_cast<std::size_t>(height)), alone(1);
        for (const BlockForm<Zim32f>& form : {floatBlocks[0], floatBlocks[2]}) {
            form.d2(mat.data(), mat.step(), mean, invVar, width, d2, height, 0, 0);
            form.d2l(rows.data(), mean, invVar, width, d2l, height, 0, 0);
            EXPECT_TRUE(equalBits(d2.values(), d2l.values())) << height << " x " << width;
            for (int r = 0; r < height; ++r) {
                long double sum = 0, magnitude = 0;
                const Frame frame = block.frame(r);
                for (Zim32f t : hasVariance(form.arithmetic) ? plainTerms(frame) : asFloats(pairSquares(frame))) {
                    sum += t;
                    magnitude += std::fabs(t);
                }
                EXPECT_NEAR(d2[r], -sum / 2, magnitude * width * 0x1p-25L) << width;
                form.d2l(rows.data() + r, mean, invVar, width, alone, 1, 0, 0);
                EXPECT_TRUE(sameBits(d2[r], alone[0])) << width;
                if (hasVariance(form.arithmetic)) {
                    zimsLogGaussSingle_Scaled_16s32f(rows.data()[r], mean, invVar, width, alone, 0, 0);
                    EXPECT_TRUE(sameBits(d2[r], alone[0])) << width;
                }
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
                block.frames[static_cast<std::size_t>(place ^ 1)] = block.mean[static_cast<std::size_t>(place ^ 1)];
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

// ---- Aliases and checks

TEST(Fixed, AliasesHaveTheScaleFactorZero)
{
    Random random(37);
    const Block b = anyBlock(random, 5, 23);
    const RowMatrix<Zim16s> rows(b.frames, 5, 23);
    const Zim16s *x = b.frames.data(), *m = b.mean.data(), *v = b.invVar.data();
    const Zim16s* const* l = rows.data();
    std::vector<Zim32f> target(5), alias(5);
    Zim32f *t = target.data(), *a = alias.data();
    const auto expectSame = [&](ZimStatus targetStatus, ZimStatus aliasStatus) {
        EXPECT_EQ(aliasStatus, targetStatus);
        EXPECT_TRUE(equalBits(alias, target));
    };
#define EXPECT_SAME(scaled, plain, last, ...) \
    expectSame(zimsLogGauss##scaled(__VA_ARGS__, t, last, 0), zimsLogGauss##plain(__VA_ARGS__, a, last))
#define COMMA ,
    for (int w : {23, 24, 0}) {  // valid, a stride too small (where there is one), a size too small
        const int len = w == 24 ? 23 : w;
        EXPECT_SAME(Single_Scaled_16s32f, Single_16s32f, 9, x, m, v, len);
        EXPECT_SAME(Single_IdVarScaled_16s32f, Single_IdVar_16s32f, 9, x, m, len);
        EXPECT_SAME(Single_DirectVarScaled_16s32f, Single_DirectVar_16s32f, 9, x, m, v, len);
        EXPECT_SAME(Single_LowScaled_16s32f, Single_Low_16s32f, 9, x, m, v, len);
        EXPECT_SAME(Single_IdVarLowScaled_16s32f, Single_IdVarLow_16s32f, 9, x, m, len);
        EXPECT_SAME(_Scaled_16s32f_D2, _16s32f_D2, 5 COMMA 9, x, 23, m, v, w);
        EXPECT_SAME(_IdVarScaled_16s32f_D2, _IdVar_16s32f_D2, 5 COMMA 9, x, 23, m, w);
        EXPECT_SAME(_LowScaled_16s32f_D2, _Low_16s32f_D2, 5 COMMA 9, x, 23, m, v, w);
        EXPECT_SAME(_IdVarLowScaled_16s32f_D2, _IdVarLow_16s32f_D2, 5 COMMA 9, x, 23, m, w);
        EXPECT_SAME(_Scaled_16s32f_D2L, _16s32f_D2L, 5 COMMA 9, l, m, v, len);
        EXPECT_SAME(_IdVarScaled_16s32f_D2L, _IdVar_16s32f_D2L, 5 COMMA 9, l, m, len);
        EXPECT_SAME(_LowScaled_16s32f_D2L, _Low_16s32f_D2L, 5 COMMA 9, l, m, v, len);
        EXPECT_SAME(_IdVarLowScaled_16s32f_D2L, _IdVarLow_16s32f_D2L, 5 COMMA 9, l, m, len);
    }
#undef COMMA
#undef EXPECT_SAME
}

TEST(Fixed, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using enum Size;
    const auto expectBlockChecks = [](auto... doors) {
        (expectMatrixChecks(doors, {step, width, height}, {zimStsBadStride, zimStsNullPointer, zimStsBadSize}), ...);
    };
    const auto expectRowChecks = [](auto... doors) {
        (expectMatrixChecks(doors, {width, height}, {zimStsNullPointer, zimStsBadSize}), ...);
    };
    const auto expectSingleChecks = [](auto... doors) { (expectPointersThenLength(doors), ...); };
    expectBlockChecks(zimsLogGauss_16s32s_D2Sfs, zimsLogGauss_Scaled_16s32f_D2, zimsLogGauss_IdVar_16s32s_D2Sfs,
                      zimsLogGauss_IdVarScaled_16s32f_D2, zimsLogGauss_Low_16s32s_D2Sfs,
                      zimsLogGauss_LowScaled_16s32f_D2, zimsLogGauss_IdVarLow_16s32s_D2Sfs,
                      zimsLogGauss_IdVarLowScaled_16s32f_D2);
    expectRowChecks(zimsLogGauss_16s32s_D2LSfs, zimsLogGauss_Scaled_16s32f_D2L, zimsLogGauss_IdVar_16s32s_D2LSfs,
                    zimsLogGauss_IdVarScaled_16s32f_D2L, zimsLogGauss_Low_16s32s_D2LSfs,
                    zimsLogGauss_LowScaled_16s32f_D2L, zimsLogGauss_IdVarLow_16s32s_D2LSfs,
                    zimsLogGauss_IdVarLowScaled_16s32f_D2L);
    expectSingleChecks(zimsLogGaussSingle_16s32s_Sfs, zimsLogGaussSingle_Scaled_16s32f,
                       zimsLogGaussSingle_IdVar_16s32s_Sfs, zimsLogGaussSingle_IdVarScaled_16s32f,
                       zimsLogGaussSingle_Low_16s32s_Sfs, zimsLogGaussSingle_LowScaled_16s32f,
                       zimsLogGaussSingle_IdVarLow_16s32s_Sfs, zimsLogGaussSingle_IdVarLowScaled_16s32f,
                       zimsLogGaussSingle_DirectVar_16s32s_Sfs, zimsLogGaussSingle_DirectVarScaled_16s32f);
}

}  // namespace
}  // namespace zimsr::test
