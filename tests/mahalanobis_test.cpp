// Mahalanobis distance: every form is the sum inside the Gaussian score, to the bit. Moments: against their formula.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/rounding.h"
#include "support/score_doors.h"

namespace zimsr::test {
namespace {

// ---- Floating point. The score of a difference with the constant 0 is -0.5 times the sum, exactly.

template <class T>
T distanceOf(const T* x, const T* mean, const T* invVar, int len, T* score)
{
    if constexpr (sizeof(T) == 4)
        zimsLogGaussSingle_32f(x, mean, invVar, len, score, 0);
    else
        zimsLogGaussSingle_64f(x, mean, invVar, len, score, 0);
    return -2 * *score;
}

Zim64f distanceOf(const Zim32f* x, const Zim32f* mean, const Zim32f* invVar, int len, Zim64f* score)
{
    zimsLogGaussSingle_32f64f(x, mean, invVar, len, score, 0);
    return -2 * *score;
}

#define FORMS_OF_TYPE(tag)                                                                                        \
    SCORE_DOOR(zimsMahDistSingle_##tag), SCORE_DOOR(zimsMahDist_##tag##_D2), SCORE_DOOR(zimsMahDist_##tag##_D2L), \
        SCORE_DOOR(zimsMahDist1_##tag##_D2), SCORE_DOOR(zimsMahDist1_##tag##_D2L),                                \
        SCORE_DOOR(zimsMahDistMultiMix_##tag##_D2), SCORE_DOOR(zimsMahDistMultiMix_##tag##_D2L),                  \
        SCORE_DOOR(zimsMahDist2_##tag##_D2), SCORE_DOOR(zimsMahDist2_##tag##_D2L)

const std::vector<ScoreDoor<Zim32f, Zim32f>> forms_32f = {FORMS_OF_TYPE(32f)};
const std::vector<ScoreDoor<Zim64f, Zim64f>> forms_64f = {FORMS_OF_TYPE(64f)};
const std::vector<ScoreDoor<Zim32f, Zim64f>> forms_32f64f = {SCORE_DOOR(zimsMahDistSingle_32f64f)};
#undef FORMS_OF_TYPE

template <class T, class S>
void expectAllForms(const std::vector<ScoreDoor<T, S>>& forms, Random& random, int height, int width,
                    Placement placement = {})
{
    const ScoreArrays<T, S> a(height, width + height % 3, random.vector<T>(height * width, -4, 4),
                              random.vector<T>(height * width, T(0.01), 3), random.vector<T>(width, -4, 4), 0,
                              std::vector<S>(height), placement);
    for (const auto& form : forms) {
        std::vector<S> expected(height);
        for (int r = 0; r < height; ++r)
            expected[r] = distanceOf(a.rows.data()[r], a.x.data(), a.weightRows.data()[form.manyGaussians ? r : 0],
                                     width, &expected[r]);
        a.running.fill(poison<S>());
        EXPECT_EQ(form.run(a, 0), zimStsOk) << form.name;
        EXPECT_TRUE(equalBits(a.running.values(), expected))
            << form.name << ' ' << height << " x " << width << ", place " << placement.offset;
    }
}

template <class T, class S>
void expectFamily(const std::vector<ScoreDoor<T, S>>& forms)
{
    Random random(1);
    for (int width = 1; width <= 41; ++width)
        for (int height : {1, 2, 3, 4, 5, 9, 13})
            expectAllForms(forms, random, height, width);
    for (int width : {3, 8, 13, 39, 40})
        for (std::size_t element = 0; element < 9; ++element)
            expectAllForms(forms, random, 11, width, atOffset(element * sizeof(T)));
    for (const auto& form : forms)
        form.expectChecks({zimStsBadStride, zimStsNullPointer, zimStsBadSize});
}

TEST(Mahalanobis, EveryFormIsTheSumInsideTheScoreAndChecksItsArguments)
{
    expectFamily(forms_32f);
    expectFamily(forms_64f);
    expectFamily(forms_32f64f);
}

// ---- 16 bits: vectors on a boundary have another arithmetic than all others

struct FixedProblem {
    std::vector<Zim16s> x, mean, invVar;

    // The differences of small numbers do not saturate.
    FixedProblem(Random& random, int len, Zim16s bound)
    {
        const auto count = static_cast<std::size_t>(len);
        x = random.vector<Zim16s>(count, static_cast<Zim16s>(-bound), bound);
        mean = random.vector<Zim16s>(count, static_cast<Zim16s>(-bound), bound);
        invVar = random.vector<Zim16s>(count, static_cast<Zim16s>(-bound), bound);
    }
    std::int64_t exact() const
    {
        std::int64_t sum = 0;
        for (std::size_t j = 0; j < x.size(); ++j) {
            const std::int64_t difference = std::int64_t{x[j]} - mean[j];
            sum += difference * difference * invVar[j];
        }
        return sum;
    }
};

struct FixedArrays {
    Guarded<Zim16s> x, mean, invVar;
    int len;

    FixedArrays(const FixedProblem& p, std::size_t a, std::size_t b, std::size_t c)
        : x(p.x, atOffset(a)),
          mean(p.mean, atOffset(b)),
          invVar(p.invVar, atOffset(c)),
          len(static_cast<int>(p.x.size()))
    {
    }
    float distance() const
    {
        float dst = 7;
        EXPECT_EQ(zimsMahDistSingle_16s32f(x, mean, invVar, len, &dst), zimStsOk);
        return dst;
    }
    Zim32s distance(int scaleFactor) const
    {
        Zim32s dst = 7;
        EXPECT_EQ(zimsMahDistSingle_16s32s_Sfs(x, mean, invVar, len, &dst, scaleFactor), zimStsOk);
        return dst;
    }
};

Zim32s saturated(long double value)
{
    return value >= 2147483647.0L ? INT_MAX : value <= -2147483648.0L ? INT_MIN : static_cast<Zim32s>(value);
}

constexpr int scaleFactors[] = {0,   1,       7,  20,  31,  40,  62,   63,   64,     149,
                                150, INT_MAX, -1, -13, -31, -64, -127, -128, INT_MIN};

TEST(FixedMahalanobis, OnABoundaryItIsTheSumInsideTheScore)
{
    Random random(4);
    for (int len = 1; len <= 41; ++len)
        for (Zim16s bound : {Zim16s{9}, Zim16s{300}, Zim16s{32767}}) {
            const FixedProblem p(random, len, bound);
            const FixedArrays arrays(p, 0, 16, 32);
            float score;
            zimsLogGaussSingle_16s32f(arrays.x, arrays.mean, arrays.invVar, len, &score, 0);
            const float distance = arrays.distance();
            EXPECT_TRUE(sameBits(distance, 0 - 2 * score)) << len;
            for (int factor : scaleFactors) {
                const long double scaled =
                    std::ldexp(static_cast<long double>(distance), -std::clamp(factor, -1000, 1000));
                EXPECT_EQ(arrays.distance(factor), saturated(std::nearbyint(scaled))) << len << ' ' << factor;
            }
        }
}

TEST(FixedMahalanobis, OffABoundaryItIsInFloatsOrExact)
{
    Random random(5);
    for (int len : {1, 2, 5, 7, 8, 9, 15, 16, 17, 40, 63, 64, 65, 128, 131, 1000})
        for (Zim16s bound : {Zim16s{9}, Zim16s{300}, Zim16s{32767}}) {
            FixedProblem p(random, len, bound);
            if (len == 128 && bound == 32767) {  // the greatest sum of a stretch
                std::fill(p.x.begin(), p.x.end(), Zim16s{-32768});
                std::fill(p.mean.begin(), p.mean.end(), Zim16s{32767});
                std::fill(p.invVar.begin(), p.invVar.end(), Zim16s{-32768});
            }
            const std::vector<float> x(p.x.begin(), p.x.end()), mean(p.mean.begin(), p.mean.end());
            const std::vector<float> invVar(p.invVar.begin(), p.invVar.end());
            float inFloats;
            zimsMahDistSingle_32f(x.data(), mean.data(), invVar.data(), len, &inFloats);
            for (const FixedArrays& arrays :
                 {FixedArrays(p, 2, 0, 0), FixedArrays(p, 0, 8, 0), FixedArrays(p, 0, 0, 14)}) {
                EXPECT_TRUE(sameBits(arrays.distance(), inFloats)) << len;
                for (int factor : scaleFactors) {
                    const long double scaled =
                        std::ldexp(static_cast<long double>(p.exact()), -std::clamp(factor, -1000, 1000));
                    EXPECT_EQ(arrays.distance(factor), saturated(std::floor(scaled))) << len << ' ' << factor;
                }
            }
        }
}

TEST(FixedMahalanobis, ADifferenceBeyondSixteenBits)
{
    FixedProblem p(*std::make_unique<Random>(6), 9, 0);
    p.x[0] = p.x[8] = 20000;
    p.mean[0] = p.mean[8] = -20000;
    p.invVar[0] = 1;
    const auto square = [](std::int64_t difference) { return difference * difference; };
    EXPECT_EQ(FixedArrays(p, 0, 0, 0).distance(1),
              square(32767) / 2);  // a full group saturates
    EXPECT_EQ(FixedArrays(p, 2, 0, 0).distance(1), square(40000) / 2);
    p.invVar[0] = 0, p.invVar[8] = 1;
    EXPECT_EQ(FixedArrays(p, 0, 0, 0).distance(1), square(40000) / 2);
    EXPECT_EQ(FixedArrays(p, 2, 0, 0).distance(1), square(40000) / 2);
}

TEST(FixedMahalanobis, RoundsToNearestInEveryMode)
{
    const FixedProblem p{[] {
        Random random(7);
        FixedProblem made(random, 1, 0);
        made.x[0] = made.invVar[0] = 3;  // the distance 27
        return made;
    }()};
    inEveryRoundingMode([&] { EXPECT_EQ(FixedArrays(p, 0, 0, 0).distance(2), 7); });
    expectPointersThenLength(zimsMahDistSingle_16s32f, zimsMahDistSingle_16s32s_Sfs);
}

// ---- Moments

template <class T>
void expectMoments(ZimStatus (*accumulate)(const T*, const T*, T*, T*, int, T))
{
    Random random(3);
    for (int len = 1; len <= 70; ++len)
        for (std::size_t element : {0, 1, 3}) {
            const Placement place = element == 0 ? Placement{} : atOffset(element * sizeof(T));
            const auto mean = random.vector<T>(len, -4, 4);
            auto first = random.vector<T>(len, -9, 9), second = random.vector<T>(len, 0, 9);
            const Guarded<T> meanAt(mean, place), meanAcc(first, place), varAcc(second, place);
            for (T weight : {T(1), T(0.3), T(0), T(-0.7)}) {
                const auto x = random.vector<T>(len, -4, 4);
                EXPECT_EQ(accumulate(Guarded<T>(x, place), meanAt, meanAcc, varAcc, len, weight), zimStsOk);
                for (int j = 0; j < len; ++j) {
                    const T deviation = x[j] - mean[j], weighted = deviation * weight;
                    first[j] += weighted;
                    second[j] += deviation * weighted;
                }
            }
            EXPECT_TRUE(equalBits(meanAcc.values(), first)) << len;
            EXPECT_TRUE(equalBits(varAcc.values(), second)) << len;
        }
    expectPointersThenLength(accumulate);
}

TEST(Moments, AreAddedToTheSums)
{
    expectMoments(zimsMeanVarAcc_32f);
    expectMoments(zimsMeanVarAcc_64f);
}

}  // namespace
}  // namespace zimsr::test
