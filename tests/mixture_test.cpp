// Mixtures: every form against the scores of one Gaussian at a time and the log-domain functions, bit for bit, and
// whole mixtures against the formula.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr/logdomain.h>
#include <zimsr/loggauss.h>
#include <zimsr/mixture.h>

#include "support/compare.h"
#include "support/random.h"
#include "support/score_doors.h"

namespace zimsr::test {
namespace {

template <class T>
using Vector = std::vector<T>;

// ---- What the folds must give, from the scores and the running scores

void logAdd(const Zim32f* src, Zim32f* srcDst, int len)
{
    zimsLogAdd_32f(src, srcDst, len, 0);
}

void logAdd(const Zim64f* src, Zim64f* srcDst, int len)
{
    zimsLogAdd_64f(src, srcDst, len, 0);
}

Zim32f logSum(const Vector<Zim32f>& values)
{
    Zim32f sum;
    zimsLogSum_32f(values.data(), &sum, static_cast<int>(values.size()));
    return sum;
}

Zim64f logSum(const Vector<Zim64f>& values)
{
    Zim64f sum;
    zimsLogSum_64f(values.data(), &sum, static_cast<int>(values.size()));
    return sum;
}

template <class T>
Vector<T> greater(const Vector<T>& scores, Vector<T> running)
{
    for (std::size_t i = 0; i < running.size(); ++i)
        if (scores[i] > running[i])
            running[i] = scores[i];
    return running;
}

template <class T>
Vector<T> added(const Vector<T>& scores, Vector<T> running)
{
    logAdd(scores.data(), running.data(), static_cast<int>(running.size()));
    return running;
}

// Blocks of 100, each behind the sum so far.
template <class T>
Vector<T> summed(const Vector<T>& scores, Vector<T> running)
{
    Vector<T> block;
    for (std::size_t first = 0; first < scores.size(); first += 100) {
        block.insert(block.end(), &scores[first], scores.data() + std::min(first + 100, scores.size()));
        block = {logSum(block)};
    }
    running[0] = block[0];
    return running;
}

template <class T>
Vector<T> summedInOrder(const Vector<T>& scores, Vector<T> running)
{
    running[0] = scores[0];
    for (std::size_t i = 1; i < scores.size(); ++i)
        logAdd(&scores[i], running.data(), 1);
    return running;
}

// ---- The functions: what a form folds, and how

template <class T>
struct Form {
    ScoreDoor<T, T> door, scores;
    Vector<T> (*fold)(const Vector<T>& scores, Vector<T> running);

    bool isWhole() const { return fold == summed<T> || fold == summedInOrder<T>; }
};

// The scores of frames are those of the plain function of the same tail, those of many Gaussians come one by one.
#define FRAMES(function, plain, fold)                             \
    {SCORE_DOOR(function##_D2), SCORE_DOOR(plain##_D2), fold},    \
    {                                                             \
        SCORE_DOOR(function##_D2L), SCORE_DOOR(plain##_D2L), fold \
    }
#define GAUSSIANS(function, single, fold)                    \
    {SCORE_DOOR(function##_D2), SCORE_DOOR(single), fold},   \
    {                                                        \
        SCORE_DOOR(function##_D2L), SCORE_DOOR(single), fold \
    }
#define FORMS_OF_TYPE(tag)                                                                                    \
    FRAMES(zimsLogGaussMax_##tag, zimsLogGauss_##tag, greater),                                               \
        FRAMES(zimsLogGaussMax_IdVar_##tag, zimsLogGauss_IdVar_##tag, greater),                               \
        FRAMES(zimsLogGaussAdd_##tag, zimsLogGauss_##tag, added),                                             \
        FRAMES(zimsLogGaussAdd_IdVar_##tag, zimsLogGauss_IdVar_##tag, added),                                 \
        GAUSSIANS(zimsLogGaussMaxMultiMix_##tag, zimsLogGaussSingle_##tag, greater),                          \
        GAUSSIANS(zimsLogGaussAddMultiMix_##tag, zimsLogGaussSingle_##tag, added),                            \
        GAUSSIANS(zimsLogGaussMixture_##tag, zimsLogGaussSingle_##tag, summed),                               \
    {                                                                                                         \
        SCORE_DOOR(zimsLogGaussMixture_IdVar_##tag##_D2L), SCORE_DOOR(zimsLogGaussSingle_IdVar_##tag), summed \
    }

const Vector<Form<Zim32f>> forms_32f = {
    FORMS_OF_TYPE(32f),
    {SCORE_DOOR(zimsLogGaussMixture_IdVar_32f_D2), SCORE_DOOR(zimsLogGaussSingle_IdVar_32f), summedInOrder},
    {SCORE_DOOR(zimsLogGaussMax1_32f_D2), SCORE_DOOR(zimsLogGauss_32f_D2), greater},
    {SCORE_DOOR(zimsLogGaussAdd1_32f_D2), SCORE_DOOR(zimsLogGauss_32f_D2), added},
    {SCORE_DOOR(zimsLogGaussAdd2_32f_D2), SCORE_DOOR(zimsLogGaussSingle_32f), added},
};
const Vector<Form<Zim64f>> forms_64f = {
    FORMS_OF_TYPE(64f),
    {SCORE_DOOR(zimsLogGaussMixture_IdVar_64f_D2), SCORE_DOOR(zimsLogGaussSingle_IdVar_64f), summed},
};
#undef FORMS_OF_TYPE
#undef GAUSSIANS
#undef FRAMES

template <class T>
class Mixture : public testing::Test {
protected:
    static const auto& forms()
    {
        if constexpr (sizeof(T) == 4)
            return forms_32f;
        else
            return forms_64f;
    }

    ScoreArrays<T, T> arrays(int height, int width, Placement placement = {})
    {
        return {height,
                width + height % 3,
                random_.vector<T>(height * width, -1, 1),
                random_.vector<T>(height * width, T(0.01), 3),
                random_.vector<T>(width, -1, 1),
                random_.between<T>(-60, 0),
                random_.vector<T>(height, -60, -20),
                placement};
    }

    static Vector<T> scores(const Form<T>& form, const ScoreArrays<T, T>& a)
    {
        EXPECT_EQ(form.scores.run(a, 0), zimStsOk);
        return a.running.values();
    }

    // With running scores of which some are far above, near, and far below.
    void expectAllForms(const ScoreArrays<T, T>& a)
    {
        for (const auto& form : forms()) {
            const Vector<T> folded = scores(form, a);
            Vector<T> running;
            for (T score : folded)
                running.push_back(score + random_.between<T>(-20, 20));
            a.running.assign(running);
            EXPECT_EQ(form.door.run(a, 0), zimStsOk);
            EXPECT_TRUE(equalBits(a.running.values(), form.fold(folded, running)))
                << form.door.name << ' ' << a.height << " x " << a.width;
        }
    }

private:
    Random random_{1};
};
using FloatTypes = testing::Types<Zim32f, Zim64f>;
TYPED_TEST_SUITE(Mixture, FloatTypes);

// ---- Tests

TYPED_TEST(Mixture, EveryFormFoldsTheScoresOfItsGaussians)
{
    for (int width : {1, 2, 3, 4, 5, 8, 13, 36, 39, 40, 61})
        for (int height : {1, 2, 3, 4, 5, 6, 7, 8, 9, 31, 99, 100, 101, 103, 128, 129, 201, 259})
            this->expectAllForms(this->arrays(height, width));
    this->expectAllForms(this->arrays(1001, 5));
    for (int width : {3, 8, 13})
        for (std::size_t element = 0; element < 16; ++element)
            this->expectAllForms(this->arrays(107, width, atOffset(element * sizeof(TypeParam))));
}

TYPED_TEST(Mixture, WholeMixturesAreCloseToTheFormula)
{
    for (int height : {1, 2, 7, 32, 100, 101, 250}) {
        const auto a = this->arrays(height, 13);
        for (const auto& form : this->forms())
            if (form.isWhole()) {
                long double sum = 0;
                for (TypeParam score : this->scores(form, a))
                    sum += std::exp(static_cast<long double>(score));
                EXPECT_EQ(form.door.run(a, 0), zimStsOk);
                // What the threshold drops, and a rounding for every addition.
                const long double dropped = (sizeof(TypeParam) == 4 ? 2.3e-7L : 1.1e-10L) * height;
                EXPECT_NEAR(a.running[0], std::log(sum),
                            dropped + height * 60 * std::numeric_limits<TypeParam>::epsilon())
                    << form.door.name << ' ' << height;
            }
    }
}

// Scores of frames at the mean are the constant to the bit.
TYPED_TEST(Mixture, TiesNaNsAndTheFloor)
{
    using T = TypeParam;
    const T floor = sizeof(T) == 4 ? T(ZIMSLOGZERO_F) : T(-1e10);
    const struct {
        const char* what;
        Vector<T> (*fold)(const Vector<T>&, Vector<T>);
        T running, constant, expected;
    } cases[] = {
        {"a tie leaves the running score", greater, T(-0.0), T(0.0), T(-0.0)},
        {"a tie leaves the running score", greater, T(0.0), T(-0.0), T(0.0)},
        {"a NaN score", greater, -3, poison<T>(), -3},
        {"a running score at the floor", greater, floor, -3, -3},
        {"the floor is neutral", added, floor, -70, -70},
        {"a sum below the floor is raised to it", added, 3 * floor, 2 * floor, floor},
    };
    for (int height : {1, 3, 4, 9})
        for (const auto& c : cases) {
            const Vector<T> ones(height * 5, 1), x(5, 1), constants(height, c.constant);
            const ScoreArrays<T, T> a(height, 5, ones, ones, x, c.constant, constants);
            for (const auto& form : this->forms())
                if (form.fold == c.fold) {
                    a.running.fill(c.running);
                    form.door.run(a, 0);
                    EXPECT_TRUE(equalBits(a.running.values(), Vector<T>(height, c.expected)))
                        << form.door.name << ": " << c.what;
                }
        }
}

// Where doubling the constant overflows, the forms that double it show.
TYPED_TEST(Mixture, ConstantsAreDoubledWhereThePlainFormDoublesThem)
{
    for (int width : {2, 13}) {
        auto a = this->arrays(1, width);
        a.gconst = std::numeric_limits<TypeParam>::max() * TypeParam(0.75);
        a.constants.fill(a.gconst);
        for (const auto& form : this->forms()) {
            const auto score = this->scores(form, a);
            a.running.fill(0);
            EXPECT_EQ(form.door.run(a, 0), zimStsOk);
            EXPECT_EQ(a.running.values(), score) << form.door.name;
        }
    }
}

TYPED_TEST(Mixture, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    for (const auto& form : this->forms())
        if (form.isWhole())
            form.door.expectChecks({zimStsNullPointer, zimStsBadStride, zimStsBadSize});
        else
            form.door.expectChecks({zimStsBadStride, zimStsNullPointer, zimStsBadSize});
}

}  // namespace
}  // namespace zimsr::test
