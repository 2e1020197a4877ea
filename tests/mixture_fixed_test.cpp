// Fixed-point mixtures: every function against the plain account of its scores, folded one by one.
#include <fenv.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

#include <zimsr/logdomain.h>
#include <zimsr/mixture_fixed.h>

#include "support/compare.h"
#include "support/fixed_scores.h"
#include "support/random.h"
#include "support/rounding.h"
#include "support/score_doors.h"

namespace zimsr::test {
namespace {

using enum Arithmetic;
enum class Fold { none, greater, add, sum };
enum class Fused { never, rows, block };

// ---- Vectors that are frames or means, and x, a mean or a frame. Weights are inverse variances, of the one Gaussian
// or of each.

struct Data {
    int height, width;
    Shorts vectors, x, weights;

    Data(Random& random, int height_, int width_, Zim16s limit)
        : height(height_),
          width(width_),
          vectors(random.vector<Zim16s>(height * width, -limit, limit)),
          x(random.vector<Zim16s>(width, -limit, limit)),
          weights(random.vector<Zim16s>(height * width, -limit / 3, limit / 3))
    {
    }

    Frame frame(int r, bool ofManyGaussians, bool weighted) const
    {
        const auto row = [&](const Shorts& matrix, int i) {
            const auto first = matrix.begin() + i * width;
            return Shorts(first, first + width);
        };
        const Shorts weight = weighted ? row(weights, ofManyGaussians ? r : 0) : Shorts{};
        return ofManyGaussians ? Frame{x, row(vectors, r), weight} : Frame{row(vectors, r), x, weight};
    }
};

template <class Score>
using Arrays = ScoreArrays<Zim16s, Score>;

// Where the contract fuses scoring and adding, in the fast arithmetic.
template <class Score>
bool fuses(const Arrays<Score>& a, Fused fused)
{
    const auto aligned = [](const void* p) { return reinterpret_cast<std::uintptr_t>(p) % 16 == 0; };
    if (fused == Fused::block)
        return aligned(a.mat.data()) && aligned(a.x) && a.mat.step() % 8 == 0 && a.width >= 4;
    return fused == Fused::rows && aligned(a.x) && aligned(a.weights) && aligned(a.running) &&
           std::all_of(a.rows.data(), a.rows.data() + a.height, aligned);
}

// ---- The functions

template <class S>
struct Form : ScoreDoor<Zim16s, S> {
    Fold fold;
    Arithmetic arithmetic;
    Fused fused = Fused::never;
    std::vector<ZimStatus> order = {zimStsBadStride, zimStsNullPointer, zimStsBadSize};
};

#define BOTH(function, ...)                     \
    {SCORE_DOOR(function##_D2), __VA_ARGS__},   \
    {                                           \
        SCORE_DOOR(function##_D2L), __VA_ARGS__ \
    }
#define BOTH_SFS(function, ...)                    \
    {SCORE_DOOR(function##_D2Sfs), __VA_ARGS__},   \
    {                                              \
        SCORE_DOOR(function##_D2LSfs), __VA_ARGS__ \
    }

const std::vector<Form<Zim32s>> integerForms = {
    BOTH_SFS(zimsLogGaussMax_16s32s, Fold::greater, plain),
    BOTH_SFS(zimsLogGaussMax_IdVar_16s32s, Fold::greater, idVar),
    BOTH_SFS(zimsLogGaussMax_Low_16s32s, Fold::greater, low),
    BOTH_SFS(zimsLogGaussMax_IdVarLow_16s32s, Fold::greater, idVarLow),
    BOTH_SFS(zimsLogGaussMultiMix_16s32s, Fold::none, plain),
    BOTH_SFS(zimsLogGaussMultiMix_Low_16s32s, Fold::none, low),
    BOTH_SFS(zimsLogGaussMaxMultiMix_16s32s, Fold::greater, plain),
    BOTH_SFS(zimsLogGaussMaxMultiMix_Low_16s32s, Fold::greater, low),
};

const std::vector<ZimStatus> strideLast = {zimStsNullPointer, zimStsBadSize, zimStsBadStride};

const std::vector<Form<Zim32f>> floatForms = {
    BOTH(zimsLogGaussMax_Scaled_16s32f, Fold::greater, plain),
    BOTH(zimsLogGaussMax_16s32f, Fold::greater, plain),
    BOTH(zimsLogGaussMax_IdVarScaled_16s32f, Fold::greater, idVar),
    BOTH(zimsLogGaussMax_IdVar_16s32f, Fold::greater, idVar),
    BOTH(zimsLogGaussMax_LowScaled_16s32f, Fold::greater, low),
    BOTH(zimsLogGaussMax_IdVarLowScaled_16s32f, Fold::greater, idVarLow),
    {SCORE_DOOR(zimsLogGaussAdd_Scaled_16s32f_D2), Fold::add, plain},
    {SCORE_DOOR(zimsLogGaussAdd_Scaled_16s32f_D2L), Fold::add, plain, Fused::rows},
    {SCORE_DOOR(zimsLogGaussAdd_16s32f_D2), Fold::add, plain},
    {SCORE_DOOR(zimsLogGaussAdd_16s32f_D2L), Fold::add, plain, Fused::rows},
    {SCORE_DOOR(zimsLogGaussAdd_IdVarScaled_16s32f_D2), Fold::add, idVar, Fused::block},
    {SCORE_DOOR(zimsLogGaussAdd_IdVarScaled_16s32f_D2L), Fold::add, idVar},
    {SCORE_DOOR(zimsLogGaussAdd_IdVar_16s32f_D2), Fold::add, idVar, Fused::block},
    {SCORE_DOOR(zimsLogGaussAdd_IdVar_16s32f_D2L), Fold::add, idVar},
    BOTH(zimsLogGaussAdd_LowScaled_16s32f, Fold::add, low),
    BOTH(zimsLogGaussAdd_IdVarLowScaled_16s32f, Fold::add, idVarLow),
    BOTH(zimsLogGaussMultiMix_Scaled_16s32f, Fold::none, plain),
    BOTH(zimsLogGaussMultiMix_16s32f, Fold::none, plain),
    BOTH(zimsLogGaussMultiMix_LowScaled_16s32f, Fold::none, low),
    BOTH(zimsLogGaussMultiMix_Low_16s32f, Fold::none, low),
    BOTH(zimsLogGaussMaxMultiMix_Scaled_16s32f, Fold::greater, plain, Fused::never, strideLast),
    BOTH(zimsLogGaussMaxMultiMix_16s32f, Fold::greater, plain, Fused::never, strideLast),
    BOTH(zimsLogGaussMaxMultiMix_LowScaled_16s32f, Fold::greater, low, Fused::never, strideLast),
    BOTH(zimsLogGaussAddMultiMix_Scaled_16s32f, Fold::add, plain),
    BOTH(zimsLogGaussAddMultiMix_16s32f, Fold::add, plain),
    BOTH(zimsLogGaussAddMultiMix_LowScaled_16s32f, Fold::add, low),
    BOTH(zimsLogGaussMixture_Scaled_16s32f, Fold::sum, plain),
    BOTH(zimsLogGaussMixture_IdVarScaled_16s32f, Fold::sum, idVar),
    BOTH(zimsLogGaussMixture_LowScaled_16s32f, Fold::sum, low),
    BOTH(zimsLogGaussMixture_IdVarLowScaled_16s32f, Fold::sum, idVarLow),
};
#undef BOTH
#undef BOTH_SFS

// ---- What they must give

template <class S>
S scoreOf(const Form<S>& form, const Data& d, int r, S constant, int factor)
{
    const Frame frame = d.frame(r, form.manyGaussians, hasVariance(form.arithmetic));
    if constexpr (std::is_floating_point_v<S>)
        if (form.fold == Fold::sum && !hasVariance(form.arithmetic))
            return singleScore(form.arithmetic, frame, constant, factor);
    return blockScore(form.arithmetic, frame, constant, factor, d.height % 2 != 0 && r + 1 == d.height);
}

Zim32f greater(const Form<Zim32f>& form, const Data& d, int r, Zim32f constant, int factor, Zim32f old)
{
    return std::max(old, scoreOf(form, d, r, constant, factor));
}

// Compared as integers, or as floats that are then truncated.
Zim32s greater(const Form<Zim32s>& form, const Data& d, int r, Zim32s constant, int factor, Zim32s old)
{
    const bool inIntegers = (form.arithmetic == low && factor >= 0) || (form.arithmetic == idVarLow && factor >= -1);
    if (inIntegers)
        return std::max(old, scoreOf(form, d, r, constant, factor));
    const bool towardZero = form.arithmetic == plain || form.arithmetic == idVar;
    fesetround(towardZero ? FE_TOWARDZERO : FE_TONEAREST);
    volatile Zim32f score;
    if (form.arithmetic == idVarLow) {
        score = static_cast<Zim32f>(scoreOf(form, d, r, constant, factor));
    } else {
        const volatile Zim32s held = constant;
        const Frame frame = d.frame(r, form.manyGaussians, hasVariance(form.arithmetic));
        score = floatScore(form.arithmetic == idVar ? asFloats(pairSquares(frame)) : plainTerms(frame),
                           static_cast<Zim32f>(held), factor);
    }
    const volatile Zim32s running = old;
    const volatile Zim32f floatRunning = static_cast<Zim32f>(running);
    fesetround(FE_TONEAREST);
    const Zim32f best = std::max(Zim32f{score}, Zim32f{floatRunning});
    if (best >= 2147483648.0f)
        return INT_MAX;
    return best <= -2147483648.0f ? INT_MIN : static_cast<Zim32s>(best);
}

template <class S>
std::vector<S> wanted(const Form<S>& form, const Data& d, const Arrays<S>& a, int factor)
{
    std::vector<S> running = a.running.values(), scores;
    for (int r = 0; r < d.height; ++r) {
        const S constant = form.manyGaussians ? a.constants[r] : a.gconst;
        scores.push_back(form.fold == Fold::greater ? greater(form, d, r, constant, factor, a.running[r])
                                                    : scoreOf(form, d, r, constant, factor));
    }
    if (form.fold == Fold::none || form.fold == Fold::greater)
        return scores;
    if constexpr (std::is_floating_point_v<S>) {
        if (form.fold == Fold::add) {
            zimsLogAdd_32f(scores.data(), running.data(), d.height, fuses(a, form.fused) ? 1 : 0);
        } else {
            std::vector<S> block;
            for (std::size_t first = 0; first < scores.size(); first += 100) {
                block.insert(block.end(), &scores[first], scores.data() + std::min(first + 100, scores.size()));
                zimsLogSum_32f(block.data(), &running[0], static_cast<int>(block.size()));
                block = {running[0]};
            }
        }
    }
    return running;
}

// Constants that bring scores together, and running scores near them: integers also at the ends of their range.
template <class S>
void prepare(const Form<S>& form, const Data& d, Arrays<S>& a, int factor, Random& random)
{
    const auto near = [&](S value) {
        if constexpr (std::is_floating_point_v<S>)
            return value + random.between(-20.0f, 20.0f);
        else
            return random.between(0, 3) == 0
                       ? random.between(INT_MIN, INT_MAX)
                       : static_cast<S>(static_cast<Zim32u>(value) + static_cast<Zim32u>(random.between(-200, 200)));
    };
    for (int r = 0; r < d.height; ++r) {
        if constexpr (std::is_floating_point_v<S>)
            a.constants[r] = near(form.manyGaussians ? -scoreOf(form, d, r, S{0}, factor) : S{0});
        else
            a.constants[r] = near(0);
        a.running[r] = near(scoreOf(form, d, r, form.manyGaussians ? a.constants[r] : a.gconst, factor));
    }
}

template <class S>
void expectForms(const std::vector<Form<S>>& forms, const Data& d, int step, Placement placement,
                 const std::vector<int>& factors, Random& random)
{
    const S gconst = std::is_integral_v<S> ? random.between(S{-100000000}, S{100000000}) : random.between(S{-60}, S{0});
    Arrays<S> a(d.height, step, d.vectors, d.weights, d.x, gconst, std::vector<S>(d.height), placement);
    for (const auto& form : forms)
        for (int factor : factors) {
            if (!form.hasFactor && factor != 0)
                continue;
            prepare(form, d, a, factor, random);
            const auto expected = wanted(form, d, a, factor);
            EXPECT_EQ(form.run(a, factor), zimStsOk) << form.name;
            EXPECT_TRUE(equalBits(a.running.values(), expected))
                << form.name << ' ' << d.height << " x " << d.width << ", factor " << factor;
        }
}

void expectAllForms(const Data& d, int step, Placement placement, const std::vector<int>& factors, Random& random)
{
    expectForms(integerForms, d, step, placement, factors, random);
    expectForms(floatForms, d, step, placement, factors, random);
}

// ---- Tests

TEST(FixedMixture, EveryFormFoldsItsScores)
{
    Random random(1);
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 7; ++height)
            expectAllForms(Data(random, height, width, 60), width + height % 3, {}, {0, 1, 9, 17, -1, -2, -5}, random);
}

TEST(FixedMixture, InBlocks)
{
    Random random(2);
    for (int height : {31, 99, 100, 101, 127, 128, 129, 259})
        expectAllForms(Data(random, height, 13, 60), 16, {}, {0, 5, -3}, random);
}

// Where the contract makes an alignment visible, and nowhere else.
TEST(FixedMixture, AtEveryAlignment)
{
    Random random(3);
    for (int width : {3, 8, 13})
        for (std::size_t element = 0; element < 16; ++element)
            for (int step : {16, 19})
                expectAllForms(Data(random, 9, width, 60), step, atOffset(2 * element), {3}, random);
}

TEST(FixedMixture, IntegerArithmeticOfAnySize)
{
    Random random(4);
    for (int width = 1; width <= 40; ++width) {
        const Data d(random, 5, width, 32767);
        for (const auto& form : integerForms)
            if (form.arithmetic == low || form.arithmetic == idVarLow)
                expectForms<Zim32s>({form}, d, width, {}, {0, 3, 14, 15, 16, 31, 40}, random);
    }
}

// Which shows in a pair that saturates, in the last Gaussian of an odd number.
TEST(FixedMixture, AWholeMixtureWithoutVariancesIsOfSingleScores)
{
    Random random(5);
    for (const auto& form : floatForms)
        if (form.fold == Fold::sum && form.arithmetic == idVarLow)
            for (int i = 0; i < 20; ++i)
                expectForms<Zim32f>({form}, Data(random, 5, 2, 32767), 2, {}, {0, 20}, random);
}

// The sum of two terms that takes a rounding, in one lane of the sums.
TEST(FixedMixture, TheIntegerMaximumRoundsTowardZeroInEveryMode)
{
    Shorts x(32, 0);
    const Shorts zeros(32, 0);
    Shorts invVar(32, 1);
    x[0] = 4096, x[16] = 1;
    invVar[16] = 3;
    const auto score = [&](auto door, auto... arguments) {
        Zim32s result = INT_MIN;
        inEveryRoundingMode([&] {
            result = INT_MIN;
            door(arguments..., 32, &result, 1, 0, -1);
        });
        return result;
    };
    const Zim16s* const rows[] = {x.data()};
    EXPECT_EQ(score(zimsLogGaussMax_16s32s_D2Sfs, x.data(), 32, zeros.data(), invVar.data()), -16777218);
    EXPECT_EQ(score(zimsLogGaussMax_16s32s_D2LSfs, rows, zeros.data(), invVar.data()), -16777218);
    x[16] = 1, x[17] = 1, x[18] = 1;
    inEveryRoundingMode([&] {
        Zim32s running[] = {16777217, 2147483647, -2147483647};
        const Shorts frames(96, 0);
        zimsLogGaussMax_IdVar_16s32s_D2Sfs(frames.data(), 32, zeros.data(), 32, running, 3, INT_MIN, 0);
        EXPECT_EQ(running[0], 16777216);
        EXPECT_EQ(running[1], 2147483520);
        EXPECT_EQ(running[2], -2147483520);
        const Zim32s constants[] = {16777219, INT_MAX, INT_MIN};
        Zim32s best[] = {INT_MIN, INT_MIN, INT_MIN};
        zimsLogGaussMaxMultiMix_16s32s_D2Sfs(frames.data(), frames.data(), 32, zeros.data(), 32, constants, best, 3, 0);
        EXPECT_EQ(best[0], 16777218);
        EXPECT_EQ(best[1], 2147483520);
        EXPECT_EQ(best[2], INT_MIN);
    });
}

TEST(FixedMixture, AMaximumBeyondTheRangeSaturates)
{
    const Shorts x(16, 32767), mean(16, -1), negative(16, -32768), positive(16, 32767);
    for (auto max : {zimsLogGaussMax_16s32s_D2Sfs, zimsLogGaussMax_Low_16s32s_D2Sfs}) {
        Zim32s running = 5;
        max(x.data(), 16, mean.data(), negative.data(), 16, &running, 1, 0, -1);
        EXPECT_EQ(running, INT_MAX);
        running = 5;
        max(x.data(), 16, mean.data(), positive.data(), 16, &running, 1, 0, -1);
        EXPECT_EQ(running, 5);
    }
}

TEST(FixedMixture, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    for (const auto& form : integerForms)
        form.expectChecks(form.order);
    for (const auto& form : floatForms)
        form.expectChecks(form.order);
}

}  // namespace
}  // namespace zimsr::test
