// Scores under one Gaussian, and of one frame under many: every form against a scalar account of the order of
// operations, bit for bit, and that against long double.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/score_doors.h"

namespace zimsr::test {
namespace {

// ---- What a score must be

enum class Variance { inverse, identity, direct, reciprocal };
enum class Finish { doubledConstant, halvedSum };
using enum Variance;
using enum Finish;

// Partial sums, one to each place in a vector. What is left behind the last whole vector goes to the last places, a row
// shorter than a vector to the first ones. Then halves and neighbours are added.
template <class S>
S sumInOrder(const std::vector<S>& terms)
{
    constexpr std::size_t lanes = 32 / sizeof(S);
    S sum[lanes] = {};
    const std::size_t whole = terms.size() / lanes * lanes, shift = whole == 0 ? 0 : lanes - terms.size() % lanes;
    for (std::size_t j = 0; j < terms.size(); ++j)
        sum[j < whole ? j % lanes : j - whole + shift] += terms[j];
    for (std::size_t l = 0; l < lanes / 2; ++l)
        sum[l] += sum[l + lanes / 2];
    return lanes == 8 ? (sum[0] + sum[1]) + (sum[2] + sum[3]) : sum[0] + sum[1];
}

// A function, and what distinguishes its arithmetic. T is the type of the vectors, S that of scores.
template <class T, class S>
struct Form : ScoreDoor<T, S> {
    Variance variance;
    Finish finish;
    bool hasShortPath = false;

    S score(S gconst, const std::vector<S>& terms) const
    {
        if (hasShortPath && terms.size() < 4) {
            S twice = gconst + gconst;
            for (S term : terms)
                twice -= term;
            return S(0.5) * twice;
        }
        const S sum = sumInOrder(terms);
        return finish == doubledConstant ? S(0.5) * (gconst + gconst - sum) : gconst - S(0.5) * sum;
    }
};

const std::vector<Form<Zim32f, Zim32f>> forms_32f = {
    {SCORE_DOOR(zimsLogGaussSingle_32f), inverse, doubledConstant},
    {SCORE_DOOR(zimsLogGaussSingle_IdVar_32f), identity, doubledConstant},
    {SCORE_DOOR(zimsLogGaussSingle_DirectVar_32f), reciprocal, doubledConstant},
    {SCORE_DOOR(zimsLogGauss_32f_D2), inverse, doubledConstant, true},
    {SCORE_DOOR(zimsLogGauss_32f_D2L), inverse, doubledConstant, true},
    {SCORE_DOOR(zimsLogGauss_IdVar_32f_D2), identity, doubledConstant, true},
    {SCORE_DOOR(zimsLogGauss_IdVar_32f_D2L), identity, doubledConstant},
    {SCORE_DOOR(zimsLogGauss1_32f_D2), inverse, doubledConstant, true},
    {SCORE_DOOR(zimsLogGauss1_32f_D2L), inverse, doubledConstant, true},
    {SCORE_DOOR(zimsLogGaussMultiMix_32f_D2), inverse, doubledConstant},
    {SCORE_DOOR(zimsLogGaussMultiMix_32f_D2L), inverse, doubledConstant},
    {SCORE_DOOR(zimsLogGauss2_32f_D2), inverse, doubledConstant},
    {SCORE_DOOR(zimsLogGauss2_32f_D2L), inverse, doubledConstant},
};

const std::vector<Form<Zim64f, Zim64f>> forms_64f = {
    {SCORE_DOOR(zimsLogGaussSingle_64f), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGaussSingle_IdVar_64f), identity, halvedSum},
    {SCORE_DOOR(zimsLogGaussSingle_DirectVar_64f), direct, halvedSum},
    {SCORE_DOOR(zimsLogGauss_64f_D2), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGauss_64f_D2L), inverse, doubledConstant},
    {SCORE_DOOR(zimsLogGauss_IdVar_64f_D2), identity, halvedSum},
    {SCORE_DOOR(zimsLogGauss_IdVar_64f_D2L), identity, halvedSum},
    {SCORE_DOOR(zimsLogGauss1_64f_D2), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGauss1_64f_D2L), inverse, doubledConstant},
    {SCORE_DOOR(zimsLogGaussMultiMix_64f_D2), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGaussMultiMix_64f_D2L), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGauss2_64f_D2), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGauss2_64f_D2L), inverse, halvedSum},
};

// Every operand is widened first.
const std::vector<Form<Zim32f, Zim64f>> forms_32f64f = {
    {SCORE_DOOR(zimsLogGaussSingle_32f64f), inverse, halvedSum},
    {SCORE_DOOR(zimsLogGaussSingle_IdVar_32f64f), identity, halvedSum},
    {SCORE_DOOR(zimsLogGaussSingle_DirectVar_32f64f), direct, halvedSum},
};

// height vectors of width features, each with a Gaussian of its own, and a vector that all of them are compared with.
template <class T, class S>
struct Problem {
    int height, width;
    std::vector<T> vectors, weights, x;
    S gconst;
    std::vector<S> constants;

    Problem(Random& random, int rows, int columns)
        : height(rows),
          width(columns),
          vectors(random.vector<T>(rows * columns, -4, 4)),
          weights(random.vector<T>(rows * columns, T(0.01), 3)),
          x(random.vector<T>(columns, -4, 4)),
          gconst(random.between<S>(-60, 0)),
          constants(random.vector<S>(rows, -60, 0))
    {
    }

    S constant(const Form<T, S>& form, int r) const { return form.manyGaussians ? constants[r] : gconst; }

    template <class Real>
    std::vector<Real> terms(const Form<T, S>& form, int r) const
    {
        std::vector<Real> result;
        for (int j = 0; j < width; ++j) {
            const Real weight = weights[(form.manyGaussians ? r : 0) * width + j];
            const Real difference = Real(vectors[r * width + j]) - x[j], square = difference * difference;
            result.push_back(form.variance == identity  ? square
                             : form.variance == inverse ? square * weight
                             : form.variance == direct  ? square / weight
                                                        : square * (1 / weight));
        }
        return result;
    }

    std::vector<S> expected(const Form<T, S>& form) const
    {
        std::vector<S> scores;
        for (int r = 0; r < height; ++r)
            scores.push_back(form.score(constant(form, r), terms<S>(form, r)));
        return scores;
    }

    ScoreArrays<T, S> arrays(Placement placement = {}) const
    {
        return {height, width + height % 3, vectors, weights, x, gconst, constants, placement};
    }
};

template <class T, class S>
void expectAllForms(const std::vector<Form<T, S>>& forms, const Problem<T, S>& p, Placement placement = {})
{
    const auto arrays = p.arrays(placement);
    for (const auto& form : forms) {
        arrays.running.fill(poison<S>());
        EXPECT_EQ(form.run(arrays, 0), zimStsOk);
        EXPECT_TRUE(equalBits(arrays.running.values(), p.expected(form)))
            << form.name << ' ' << p.height << " x " << p.width << ", place " << placement.offset;
    }
}

// ---- Tests

template <class Types>
class LogGauss : public testing::Test {
protected:
    using T = typename Types::first_type;
    using S = typename Types::second_type;

    static const auto& forms()
    {
        if constexpr (sizeof(T) == 8)
            return forms_64f;
        else if constexpr (sizeof(S) == 8)
            return forms_32f64f;
        else
            return forms_32f;
    }

    Problem<T, S> problem(int height, int width) { return {random_, height, width}; }

private:
    Random random_{1};
};
using Types = testing::Types<std::pair<Zim32f, Zim32f>, std::pair<Zim64f, Zim64f>, std::pair<Zim32f, Zim64f>>;
TYPED_TEST_SUITE(LogGauss, Types);

TYPED_TEST(LogGauss, EveryFormKeepsTheOrderOfOperations)
{
    for (int width = 1; width <= 70; ++width)
        for (int height = 1; height <= 9; ++height)
            expectAllForms(this->forms(), this->problem(height, width));
    for (int width : {1, 3, 7, 13, 40, 300})
        for (int height : {15, 16, 29, 200})
            expectAllForms(this->forms(), this->problem(height, width));
}

TYPED_TEST(LogGauss, TheSameBitsAtEveryAlignment)
{
    for (int width : {2, 4, 5, 8, 13, 36, 39, 40, 64}) {
        const auto p = this->problem(13, width);
        for (std::size_t element = 0; element < 16; ++element)
            expectAllForms(this->forms(), p, atOffset(element * sizeof(typename TypeParam::first_type)));
    }
}

TYPED_TEST(LogGauss, ScoresAreCloseToTheFormula)
{
    for (int width = 1; width <= 70; ++width) {
        const auto p = this->problem(1, width);
        for (const auto& form : this->forms()) {
            long double exact = p.constant(form, 0);
            for (long double term : p.template terms<long double>(form, 0))
                exact -= 0.5L * term;
            // Roundings on the way of a term: five of its own, its lane's sum, the tree, the constant.
            const int roundings = 5 + width / 4 + 3 + 1;
            const long double unit = std::numeric_limits<typename TypeParam::second_type>::epsilon() / 2;
            EXPECT_NEAR(p.expected(form)[0], exact, std::fabs(exact) * roundings * unit) << form.name << ' ' << width;
        }
    }
}

TYPED_TEST(LogGauss, AFrameAtTheMeanScoresTheConstant)
{
    auto p = this->problem(1, 39);
    p.vectors = p.x;
    const auto arrays = p.arrays();
    for (const auto& form : this->forms()) {
        form.run(arrays, 0);
        EXPECT_EQ(arrays.running[0], p.constant(form, 0)) << form.name;
    }
}

// An element that is read twice, since the last vector of a row is stepped back, must count once: an infinite one with
// a weight of 0 would leave a NaN behind, and an infinite one that is removed by a factor too.
TYPED_TEST(LogGauss, NonFiniteElementsStayInTheirFrame)
{
    using Score = typename TypeParam::second_type;
    constexpr Score infinity = std::numeric_limits<Score>::infinity();
    for (int width : {1, 3, 5, 7, 8, 9, 13, 15, 23, 39}) {
        const auto p = this->problem(11, width);
        for (int j = 0; j < width; ++j) {
            auto spoilt = p;
            spoilt.vectors[2 * width + j] = infinity;
            spoilt.vectors[9 * width + j] = poison<Score>();
            const auto arrays = spoilt.arrays();
            for (const auto& form : this->forms()) {
                auto expected = p.expected(form);
                expected[2] = -infinity;
                expected[9] = poison<Score>();
                form.run(arrays, 0);
                EXPECT_TRUE(equalBits(arrays.running.values(), expected)) << form.name << ' ' << width << ' ' << j;
            }
        }
    }
}

TYPED_TEST(LogGauss, DoublingTheConstantMayOverflow)
{
    using Score = typename TypeParam::second_type;
    for (int width : {2, 7, 13}) {
        auto p = this->problem(9, width);
        p.gconst = std::numeric_limits<Score>::max() * Score(0.75);
        p.constants.assign(9, p.gconst);
        expectAllForms(this->forms(), p);
        const auto arrays = p.arrays();
        for (const auto& form : this->forms()) {
            form.run(arrays, 0);
            EXPECT_EQ(std::isinf(arrays.running[0]), form.finish == doubledConstant) << form.name;
        }
    }
}

TYPED_TEST(LogGauss, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    for (const auto& form : this->forms())
        form.expectChecks({zimStsBadStride, zimStsNullPointer, zimStsBadSize});
}

// ---- Variances as they are

TEST(LogGaussDirectVar, AZeroVariance)
{
    Random random(10);
    const auto widened = [](const std::vector<float>& values) {
        return std::vector<double>(values.begin(), values.end());
    };
    for (int width : {1, 3, 8, 13, 40})
        for (int place : {0, width / 2, width - 1})
            for (float zero : {0.0f, -0.0f})
                for (bool atMean : {false, true}) {
                    Problem<float, float> p(random, 1, width);
                    p.weights[place] = zero;
                    p.vectors[place] = atMean ? p.x[place] : p.x[place] + 1;
                    const Guarded<float> x(p.vectors), mean(p.x), var(p.weights), dst{7};
                    const Guarded<double> xd(widened(p.vectors)), meand(widened(p.x)), vard(widened(p.weights));
                    const Guarded<double> dstd{7}, dstw{7};
                    EXPECT_EQ(zimsLogGaussSingle_DirectVar_32f(x, mean, var, width, dst, 0), zimStsDivByZeroWarn);
                    EXPECT_EQ(zimsLogGaussSingle_DirectVar_32f64f(x, mean, var, width, dstw, 0), zimStsDivByZeroWarn);
                    EXPECT_EQ(zimsLogGaussSingle_DirectVar_64f(xd, meand, vard, width, dstd, 0), zimStsOk);
                    // The reciprocal is plus infinity whatever the sign of the zero; the quotient has its sign.
                    EXPECT_TRUE(atMean ? std::isnan(dst[0]) : dst[0] == -HUGE_VALF);
                    EXPECT_TRUE(atMean ? std::isnan(dstd[0]) : dstd[0] == -std::copysign(HUGE_VAL, 1 / zero));
                    EXPECT_EQ(dstw[0], 7);
                }
}

TEST(LogGaussDirectVar, NoMemoryLeavesTheResultAlone)
{
    const std::vector<float> x(39, 1);
    float dst = 7;
    const auto call = [&] { return zimsLogGaussSingle_DirectVar_32f(x.data(), x.data(), x.data(), 39, &dst, 0); };
    forEachFailedAllocation(call, [&](ZimStatus status, int leaked) {
        EXPECT_EQ(status, zimStsNoMemory);
        EXPECT_EQ(leaked, 0);
        EXPECT_EQ(dst, 7);
    });
    EXPECT_EQ(dst, 0);
    AllocationWatch watch;
    EXPECT_EQ(call(), zimStsOk);
    EXPECT_EQ(zimsLogGaussSingle_DirectVar_32f(x.data(), x.data(), x.data(), 0, &dst, 0), zimStsBadSize);
    EXPECT_EQ(watch.requests(), 1) << "a refused call allocates nothing";
    EXPECT_EQ(watch.live(), 0);
}

}  // namespace
}  // namespace zimsr::test
