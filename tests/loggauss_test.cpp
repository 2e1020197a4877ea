// Scores under one Gaussian, and of one frame under many: every form against a scalar account of the order of
// operations, bit for bit, and that against long double.
#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

// ---- What a score must be

enum class Variance { inverse, identity, direct };
enum class Finish { doubledConstant, halvedSum };

// height frames of width features, and one Gaussian.
template <class T>
struct Problem {
    int height, width;
    std::vector<T> frames, mean, invVar;
    T gconst;

    Problem(Random& random, int rows, int columns)
        : height(rows),
          width(columns),
          frames(random.vector<T>(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns), -4, 4)),
          mean(random.vector<T>(static_cast<std::size_t>(columns), -4, 4)),
          invVar(random.vector<T>(static_cast<std::size_t>(columns), T(0.01), 3)),
          gconst(random.between<T>(-60, 0))
    {
    }

    T& at(int r, int j) { return frames[static_cast<std::size_t>(r) * mean.size() + static_cast<std::size_t>(j)]; }

    std::vector<T> terms(int r, Variance variance) const
    {
        std::vector<T> result;
        for (std::size_t j = 0; j < mean.size(); ++j) {
            const T difference = frames[static_cast<std::size_t>(r) * mean.size() + j] - mean[j];
            const T square = difference * difference;
            result.push_back(variance == Variance::identity  ? square
                             : variance == Variance::inverse ? square * invVar[j]
                                                             : square / invVar[j]);
        }
        return result;
    }
};

// Partial sums, one to each place in a vector. What is left behind the last whole vector goes to the last places, a row
// shorter than a vector to the first ones. Then halves and neighbours are added.
template <class T>
T sumInOrder(const std::vector<T>& terms)
{
    constexpr std::size_t lanes = 32 / sizeof(T);
    T sum[lanes] = {};
    const std::size_t whole = terms.size() / lanes * lanes, shift = whole == 0 ? 0 : lanes - terms.size() % lanes;
    for (std::size_t j = 0; j < terms.size(); ++j)
        sum[j < whole ? j % lanes : j - whole + shift] += terms[j];
    for (std::size_t l = 0; l < lanes / 2; ++l)
        sum[l] += sum[l + lanes / 2];
    return lanes == 8 ? (sum[0] + sum[1]) + (sum[2] + sum[3]) : sum[0] + sum[1];
}

template <class T>
T finished(Finish finish, T gconst, T sum)
{
    return finish == Finish::doubledConstant ? T(0.5) * (gconst + gconst - sum) : gconst - T(0.5) * sum;
}

template <class T>
T shortScore(T gconst, const std::vector<T>& terms)
{
    T score = gconst + gconst;
    for (T term : terms)
        score -= term;
    return T(0.5) * score;
}

// ---- The functions, all run on the same arrays

// Each array ends at a protected page unless it is placed otherwise, and gaps between rows hold NaN.
template <class T>
struct Arrays {
    StridedMatrix<T> mat, weightMat;
    RowMatrix<T> rows, weightRows;
    Guarded<T> mean, invVar, result;
    int height, width;
    T gconst;

    explicit Arrays(const Problem<T>& p, Placement placement = {})
        : mat(p.frames, p.height, p.width, p.width + p.height % 3, placement),
          weightMat(repeated(p), p.height, p.width, mat.step(), placement),
          rows(p.frames, p.height, p.width, placement),
          weightRows(repeated(p), p.height, p.width, placement),
          mean(p.mean, placement),
          invVar(p.invVar, placement),
          result(static_cast<std::size_t>(p.height), placement),
          height(p.height),
          width(p.width),
          gconst(p.gconst)
    {
    }

    static std::vector<T> repeated(const Problem<T>& p)
    {
        std::vector<T> all;
        for (int r = 0; r < p.height; ++r)
            all.insert(all.end(), p.invVar.begin(), p.invVar.end());
        return all;
    }
};

template <class T>
struct Form {
    const char* name;
    Variance variance;
    Finish finish;
    bool hasShortPath;
    ZimStatus (*run)(Arrays<T>&);

    T expected(const Problem<T>& p, int r) const
    {
        const auto terms = p.terms(r, variance);
        return hasShortPath && p.width < 4 ? shortScore(p.gconst, terms)
                                           : finished(finish, p.gconst, sumInOrder(terms));
    }
    std::vector<T> expected(const Problem<T>& p) const
    {
        std::vector<T> scores;
        for (int r = 0; r < p.height; ++r)
            scores.push_back(expected(p, r));
        return scores;
    }
};

#define FUNCTIONS_OF_TYPE(T, tag)                                         \
    template <>                                                           \
    struct Api<T> {                                                       \
        static constexpr auto single = zimsLogGaussSingle_##tag;          \
        static constexpr auto singleId = zimsLogGaussSingle_IdVar_##tag;  \
        static constexpr auto block = zimsLogGauss_##tag##_D2;            \
        static constexpr auto rows = zimsLogGauss_##tag##_D2L;            \
        static constexpr auto blockId = zimsLogGauss_IdVar_##tag##_D2;    \
        static constexpr auto rowsId = zimsLogGauss_IdVar_##tag##_D2L;    \
        static constexpr auto block1 = zimsLogGauss1_##tag##_D2;          \
        static constexpr auto rows1 = zimsLogGauss1_##tag##_D2L;          \
        static constexpr auto mix = zimsLogGaussMultiMix_##tag##_D2;      \
        static constexpr auto rowsMix = zimsLogGaussMultiMix_##tag##_D2L; \
        static constexpr auto mix2 = zimsLogGauss2_##tag##_D2;            \
        static constexpr auto rowsMix2 = zimsLogGauss2_##tag##_D2L;       \
    };
template <class T>
struct Api;
FUNCTIONS_OF_TYPE(Zim32f, 32f)
FUNCTIONS_OF_TYPE(Zim64f, 64f)
#undef FUNCTIONS_OF_TYPE

template <class T>
ZimStatus eachVector(Arrays<T>& a, auto single)
{
    ZimStatus status = zimStsOk;
    for (int r = 0; r < a.height; ++r)
        status |= single(a.rows.data()[r], a.result + r);
    return status;
}

// A square does not show which of the two was subtracted, so that frames may serve as means.
template <class T>
ZimStatus overConstants(Arrays<T>& a, auto mix, auto... gaussians)
{
    a.result.fill(a.gconst);
    return mix(gaussians..., a.mean, a.width, a.result, a.height);
}

template <class T>
std::vector<Form<T>> forms()
{
    using F = Api<T>;
    using A = Arrays<T>&;
    using enum Variance;
    constexpr bool isFloat = sizeof(T) == 4;
    constexpr Finish own = isFloat ? Finish::doubledConstant : Finish::halvedSum;
    return {
        {"Single", inverse, own, false,
         [](A a) {
             return eachVector(
                 a, [&](auto x, auto dst) { return F::single(x, a.mean, a.invVar, a.width, dst, a.gconst); });
         }},
        {"Single_IdVar", identity, own, false,
         [](A a) {
             return eachVector(a, [&](auto x, auto dst) { return F::singleId(x, a.mean, a.width, dst, a.gconst); });
         }},
        {"D2", inverse, own, isFloat,
         [](A a) {
             return F::block(a.mat.data(), a.mat.step(), a.mean, a.invVar, a.width, a.result, a.height, a.gconst);
         }},
        {"D2L", inverse, Finish::doubledConstant, isFloat,
         [](A a) { return F::rows(a.rows.data(), a.mean, a.invVar, a.width, a.result, a.height, a.gconst); }},
        {"IdVar_D2", identity, own, isFloat,
         [](A a) { return F::blockId(a.mat.data(), a.mat.step(), a.mean, a.width, a.result, a.height, a.gconst); }},
        {"IdVar_D2L", identity, own, false,
         [](A a) { return F::rowsId(a.rows.data(), a.mean, a.width, a.result, a.height, a.gconst); }},
        {"LogGauss1_D2", inverse, own, isFloat,
         [](A a) {
             return F::block1(a.mat.data(), a.mat.step(), a.mean, a.invVar, a.width, a.result, a.height, a.gconst);
         }},
        {"LogGauss1_D2L", inverse, Finish::doubledConstant, isFloat,
         [](A a) { return F::rows1(a.rows.data(), a.mean, a.invVar, a.width, a.result, a.height, a.gconst); }},
        {"MultiMix_D2", inverse, own, false,
         [](A a) { return overConstants(a, F::mix, a.mat.data(), a.weightMat.data(), a.mat.step()); }},
        {"MultiMix_D2L", inverse, own, false,
         [](A a) { return overConstants(a, F::rowsMix, a.rows.data(), a.weightRows.data()); }},
        {"LogGauss2_D2", inverse, own, false,
         [](A a) { return overConstants(a, F::mix2, a.mat.data(), a.weightMat.data(), a.mat.step()); }},
        {"LogGauss2_D2L", inverse, own, false,
         [](A a) { return overConstants(a, F::rowsMix2, a.rows.data(), a.weightRows.data()); }},
    };
}

template <class T>
void expectAllForms(const Problem<T>& p, Placement placement = {})
{
    Arrays<T> arrays(p, placement);
    for (const auto& form : forms<T>()) {
        arrays.result.fill(poison<T>());
        EXPECT_EQ(form.run(arrays), zimStsOk);
        EXPECT_TRUE(equalBits(arrays.result.values(), form.expected(p)))
            << form.name << ' ' << p.height << " x " << p.width << ", place " << placement.offset;
    }
}

// ---- Tests

template <class T>
class LogGauss : public testing::Test {
};
using FloatTypes = testing::Types<Zim32f, Zim64f>;
TYPED_TEST_SUITE(LogGauss, FloatTypes);

TYPED_TEST(LogGauss, EveryFormKeepsTheOrderOfOperations)
{
    Random random(1);
    for (int width = 1; width <= 70; ++width)
        for (int height = 1; height <= 9; ++height)
            expectAllForms(Problem<TypeParam>(random, height, width));
    for (int width : {1, 3, 7, 13, 40, 300})
        for (int height : {15, 16, 29, 200})
            expectAllForms(Problem<TypeParam>(random, height, width));
}

TYPED_TEST(LogGauss, TheSameBitsAtEveryAlignment)
{
    Random random(2);
    for (int width : {2, 4, 5, 8, 13, 36, 39, 40, 64}) {
        const Problem<TypeParam> p(random, 13, width);
        for (std::size_t element = 0; element < 16; ++element)
            expectAllForms(p, atOffset(element * sizeof(TypeParam)));
    }
}

TYPED_TEST(LogGauss, ScoresAreCloseToTheFormula)
{
    using T = TypeParam;
    Random random(3);
    for (int width = 1; width <= 70; ++width) {
        const Problem<T> p(random, 1, width);
        for (const auto& form : forms<T>()) {
            long double sum = 0;
            for (std::size_t j = 0; j < p.mean.size(); ++j) {
                const long double difference = static_cast<long double>(p.frames[j]) - p.mean[j];
                sum += difference * difference * (form.variance == Variance::identity ? 1 : p.invVar[j]);
            }
            const long double exact = p.gconst - 0.5L * sum;
            // Roundings on the way of a term: four of its own, its lane's sum, the tree, the constant.
            const int roundings = 4 + width / 4 + 3 + 1;
            EXPECT_NEAR(form.expected(p, 0), exact,
                        std::fabs(exact) * roundings * std::numeric_limits<T>::epsilon() / 2)
                << form.name << ' ' << width;
        }
    }
}

TYPED_TEST(LogGauss, AFrameAtTheMeanScoresTheConstant)
{
    Random random(4);
    Problem<TypeParam> p(random, 5, 39);
    for (int r = 0; r < p.height; ++r)
        for (int j = 0; j < p.width; ++j)
            p.at(r, j) = p.mean[static_cast<std::size_t>(j)];
    Arrays<TypeParam> arrays(p);
    for (const auto& form : forms<TypeParam>()) {
        form.run(arrays);
        EXPECT_TRUE(equalBits(arrays.result.values(), std::vector<TypeParam>(5, p.gconst))) << form.name;
    }
}

// An element that is read twice, since the last vector of a row is stepped back, must count once: an infinite one with
// a weight of 0 would leave a NaN behind, and an infinite one that is removed by a factor too.
TYPED_TEST(LogGauss, NonFiniteElementsStayInTheirFrame)
{
    using T = TypeParam;
    constexpr T infinity = std::numeric_limits<T>::infinity();
    Random random(5);
    for (int width : {1, 3, 5, 7, 8, 9, 13, 15, 23, 39}) {
        Problem<T> p(random, 11, width);
        for (int j = 0; j < width; ++j) {
            Problem<T> spoilt = p;
            spoilt.at(2, j) = infinity;
            spoilt.at(9, j) = poison<T>();
            Arrays<T> arrays(spoilt);
            for (const auto& form : forms<T>()) {
                auto expected = form.expected(p);
                expected[2] = -infinity;
                expected[9] = poison<T>();
                form.run(arrays);
                EXPECT_TRUE(equalBits(arrays.result.values(), expected)) << form.name << ' ' << width << ' ' << j;
            }
        }
    }
}

TYPED_TEST(LogGauss, DoublingTheConstantMayOverflow)
{
    using T = TypeParam;
    Random random(6);
    for (int width : {2, 7, 13}) {
        Problem<T> p(random, 9, width);
        p.gconst = std::numeric_limits<T>::max() * T(0.75);
        expectAllForms(p);
        Arrays<T> arrays(p);
        for (const auto& form : forms<T>()) {
            form.run(arrays);
            EXPECT_EQ(std::isinf(arrays.result[0]), form.finish == Finish::doubledConstant) << form.name;
        }
    }
}

TYPED_TEST(LogGauss, EachGaussianHasItsOwnConstantAndModel)
{
    using T = TypeParam;
    Random random(7);
    for (int height : {1, 4, 7, 101}) {
        const int width = 13;
        const auto count = static_cast<std::size_t>(height);
        const auto means = random.vector<T>(count * width, -4, 4), weights = random.vector<T>(count * width, 0, 2);
        const auto x = random.vector<T>(width, -4, 4), constants = random.vector<T>(count, -60, 0);
        const StridedMatrix<T> mean(means, height, width, width + 3), invVar(weights, height, width, width + 3);
        const Guarded<T> scores(constants);
        EXPECT_EQ(Api<T>::mix(mean.data(), invVar.data(), width + 3, x.data(), width, scores, height), zimStsOk);
        for (std::size_t i = 0; i < count; ++i) {
            T alone;
            Api<T>::single(x.data(), &means[i * width], &weights[i * width], width, &alone, constants[i]);
            EXPECT_TRUE(sameBits(scores[i], alone)) << i;
        }
    }
}

TYPED_TEST(LogGauss, ChecksOfBlocksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using T = TypeParam;
    using F = Api<T>;
    const T* null = nullptr;
    const T* const* noRows = nullptr;
    T* nowhere = nullptr;
    const std::vector<T> x(8, 1);
    const T* const v = x.data();
    const T* const rows[] = {v, v};
    std::vector<T> out(2, 7);
    T* const r = out.data();
    expectStatuses({
        {"D2: the stride before a null", F::block(null, 3, v, v, 4, r, 2, 0), zimStsBadStride},
        {"D2: mat before sizes", F::block(null, 4, v, v, 0, r, 0, 0), zimStsNullPointer},
        {"D2: mean", F::block(v, 4, null, v, 4, r, 2, 0), zimStsNullPointer},
        {"D2: invVar", F::block(v, 4, v, null, 4, r, 2, 0), zimStsNullPointer},
        {"D2: result", F::block(v, 4, v, v, 4, nowhere, 2, 0), zimStsNullPointer},
        {"D2: width", F::block(v, 4, v, v, 0, r, 2, 0), zimStsBadSize},
        {"D2: height", F::block(v, 4, v, v, 4, r, 0, 0), zimStsBadSize},
        {"D2: a negative stride below a negative width", F::block(v, -2, v, v, -1, r, 2, 0), zimStsBadStride},
        {"IdVar D2: stride", F::blockId(v, 3, null, 4, r, 2, 0), zimStsBadStride},
        {"IdVar D2: mat", F::blockId(null, 4, v, 4, r, 0, 0), zimStsNullPointer},
        {"IdVar D2: mean", F::blockId(v, 4, null, 4, r, 2, 0), zimStsNullPointer},
        {"IdVar D2: result", F::blockId(v, 4, v, 4, nowhere, 2, 0), zimStsNullPointer},
        {"IdVar D2: height", F::blockId(v, 4, v, 4, r, -1, 0), zimStsBadSize},
        {"D2L: rows", F::rows(noRows, v, v, 0, r, 2, 0), zimStsNullPointer},
        {"D2L: mean", F::rows(rows, null, v, 4, r, 2, 0), zimStsNullPointer},
        {"D2L: invVar", F::rows(rows, v, null, 4, r, 2, 0), zimStsNullPointer},
        {"D2L: result", F::rows(rows, v, v, 4, nowhere, 2, 0), zimStsNullPointer},
        {"D2L: width", F::rows(rows, v, v, -1, r, 2, 0), zimStsBadSize},
        {"D2L: height", F::rows(rows, v, v, 4, r, 0, 0), zimStsBadSize},
        {"IdVar D2L: rows", F::rowsId(noRows, v, 4, r, 0, 0), zimStsNullPointer},
        {"IdVar D2L: mean", F::rowsId(rows, null, 4, r, 2, 0), zimStsNullPointer},
        {"IdVar D2L: result", F::rowsId(rows, v, 4, nowhere, 2, 0), zimStsNullPointer},
        {"IdVar D2L: width", F::rowsId(rows, v, 0, r, 2, 0), zimStsBadSize},
        {"MultiMix D2: stride", F::mix(null, v, 3, v, 4, r, 2), zimStsBadStride},
        {"MultiMix D2: mean", F::mix(null, v, 4, v, 0, r, 2), zimStsNullPointer},
        {"MultiMix D2: invVar", F::mix(v, null, 4, v, 4, r, 2), zimStsNullPointer},
        {"MultiMix D2: src", F::mix(v, v, 4, null, 4, r, 2), zimStsNullPointer},
        {"MultiMix D2: srcDst", F::mix(v, v, 4, v, 4, nowhere, 2), zimStsNullPointer},
        {"MultiMix D2: height", F::mix(v, v, 4, v, 4, r, 0), zimStsBadSize},
        {"MultiMix D2L: meanRows", F::rowsMix(noRows, rows, v, 0, r, 2), zimStsNullPointer},
        {"MultiMix D2L: invVarRows", F::rowsMix(rows, noRows, v, 4, r, 2), zimStsNullPointer},
        {"MultiMix D2L: src", F::rowsMix(rows, rows, null, 4, r, 2), zimStsNullPointer},
        {"MultiMix D2L: srcDst", F::rowsMix(rows, rows, v, 4, nowhere, 2), zimStsNullPointer},
        {"MultiMix D2L: width", F::rowsMix(rows, rows, v, 0, r, 2), zimStsBadSize},
    });
    EXPECT_EQ(out, std::vector<T>(2, 7));
}

// The checks of a function on one vector, with a variance and without.
template <class In, class Out>
void expectRefusals(ZimStatus (*score)(const In*, const In*, const In*, int, Out*, Out))
{
    const In v[4] = {1, 1, 1, 1};
    Out dst = 7;
    expectStatuses({
        {"src before length", score(nullptr, v, v, 0, &dst, 0), zimStsNullPointer},
        {"mean", score(v, nullptr, v, 4, &dst, 0), zimStsNullPointer},
        {"variance", score(v, v, nullptr, 4, &dst, 0), zimStsNullPointer},
        {"dst", score(v, v, v, 4, nullptr, 0), zimStsNullPointer},
        {"length 0", score(v, v, v, 0, &dst, 0), zimStsBadSize},
        {"length below 0", score(v, v, v, -4, &dst, 0), zimStsBadSize},
    });
    EXPECT_EQ(dst, 7);
}

template <class In, class Out>
void expectRefusals(ZimStatus (*score)(const In*, const In*, int, Out*, Out))
{
    const In v[4] = {1, 1, 1, 1};
    Out dst = 7;
    expectStatuses({
        {"src before length", score(nullptr, v, 0, &dst, 0), zimStsNullPointer},
        {"mean", score(v, nullptr, 4, &dst, 0), zimStsNullPointer},
        {"dst", score(v, v, 4, nullptr, 0), zimStsNullPointer},
        {"length 0", score(v, v, 0, &dst, 0), zimStsBadSize},
        {"length below 0", score(v, v, -4, &dst, 0), zimStsBadSize},
    });
    EXPECT_EQ(dst, 7);
}

TEST(LogGaussSingle, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    expectRefusals(zimsLogGaussSingle_32f);
    expectRefusals(zimsLogGaussSingle_64f);
    expectRefusals(zimsLogGaussSingle_32f64f);
    expectRefusals(zimsLogGaussSingle_IdVar_32f);
    expectRefusals(zimsLogGaussSingle_IdVar_64f);
    expectRefusals(zimsLogGaussSingle_IdVar_32f64f);
    expectRefusals(zimsLogGaussSingle_DirectVar_32f);
    expectRefusals(zimsLogGaussSingle_DirectVar_64f);
    expectRefusals(zimsLogGaussSingle_DirectVar_32f64f);
}

// ---- Mixed types, and variances as they are

std::vector<double> widened(const std::vector<float>& values)
{
    return {values.begin(), values.end()};
}

TEST(LogGaussWidened, EveryOperandIsWidenedFirst)
{
    Random random(8);
    for (int width = 1; width <= 70; ++width) {
        const Problem<float> narrow(random, 1, width);
        Problem<double> wide(random, 1, width);
        wide.frames = widened(narrow.frames), wide.mean = widened(narrow.mean), wide.invVar = widened(narrow.invVar);
        const Guarded<float> x(narrow.frames), mean(narrow.mean), invVar(narrow.invVar);
        const auto expected = [&](Variance variance) {
            return finished(Finish::halvedSum, wide.gconst, sumInOrder(wide.terms(0, variance)));
        };
        double score[3];
        EXPECT_EQ(zimsLogGaussSingle_32f64f(x, mean, invVar, width, &score[0], wide.gconst), zimStsOk);
        EXPECT_EQ(zimsLogGaussSingle_IdVar_32f64f(x, mean, width, &score[1], wide.gconst), zimStsOk);
        EXPECT_EQ(zimsLogGaussSingle_DirectVar_32f64f(x, mean, invVar, width, &score[2], wide.gconst), zimStsOk);
        EXPECT_TRUE(sameBits(score[0], expected(Variance::inverse))) << width;
        EXPECT_TRUE(sameBits(score[1], expected(Variance::identity))) << width;
        EXPECT_TRUE(sameBits(score[2], expected(Variance::direct))) << width;
    }
}

TEST(LogGaussDirectVar, ByReciprocalOrByDivision)
{
    Random random(9);
    for (int width = 1; width <= 70; ++width) {
        Problem<float> p(random, 1, width);
        const Problem<double> q(random, 1, width);
        const Guarded<float> x(p.frames), mean(p.mean), var(p.invVar);
        const Guarded<double> xd(q.frames), meand(q.mean), vard(q.invVar);
        for (float& v : p.invVar)
            v = 1 / v;
        float score;
        double scored;
        EXPECT_EQ(zimsLogGaussSingle_DirectVar_32f(x, mean, var, width, &score, p.gconst), zimStsOk);
        EXPECT_EQ(zimsLogGaussSingle_DirectVar_64f(xd, meand, vard, width, &scored, q.gconst), zimStsOk);
        EXPECT_TRUE(
            sameBits(score, finished(Finish::doubledConstant, p.gconst, sumInOrder(p.terms(0, Variance::inverse)))));
        EXPECT_TRUE(sameBits(scored, finished(Finish::halvedSum, q.gconst, sumInOrder(q.terms(0, Variance::direct)))));
    }
}

TEST(LogGaussDirectVar, AZeroVariance)
{
    Random random(10);
    for (int width : {1, 3, 8, 13, 40})
        for (int j : {0, width / 2, width - 1})
            for (float zero : {0.0f, -0.0f})
                for (bool atMean : {false, true}) {
                    Problem<float> p(random, 1, width);
                    const auto place = static_cast<std::size_t>(j);
                    p.invVar[place] = zero;
                    p.frames[place] = atMean ? p.mean[place] : p.mean[place] + 1;
                    const Guarded<float> x(p.frames), mean(p.mean), var(p.invVar), dst{7};
                    const Guarded<double> xd(widened(p.frames)), meand(widened(p.mean)), vard(widened(p.invVar));
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
