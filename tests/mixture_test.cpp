// Mixtures: every form against the scores of one Gaussian at a time and the log-domain functions, bit for bit, and
// whole mixtures against the formula.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <vector>

#include <zimsr/logdomain.h>
#include <zimsr/loggauss.h>
#include <zimsr/mixture.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

#define FUNCTIONS_OF_TYPE(T, tag)                                                    \
    template <>                                                                      \
    struct Api<T> {                                                                  \
        static constexpr auto single = zimsLogGaussSingle_##tag;                     \
        static constexpr auto singleId = zimsLogGaussSingle_IdVar_##tag;             \
        static constexpr auto plain = zimsLogGauss_##tag##_D2;                       \
        static constexpr auto plainRows = zimsLogGauss_##tag##_D2L;                  \
        static constexpr auto plainId = zimsLogGauss_IdVar_##tag##_D2;               \
        static constexpr auto plainIdRows = zimsLogGauss_IdVar_##tag##_D2L;          \
        static constexpr auto max = zimsLogGaussMax_##tag##_D2;                      \
        static constexpr auto maxRows = zimsLogGaussMax_##tag##_D2L;                 \
        static constexpr auto maxId = zimsLogGaussMax_IdVar_##tag##_D2;              \
        static constexpr auto maxIdRows = zimsLogGaussMax_IdVar_##tag##_D2L;         \
        static constexpr auto add = zimsLogGaussAdd_##tag##_D2;                      \
        static constexpr auto addRows = zimsLogGaussAdd_##tag##_D2L;                 \
        static constexpr auto addId = zimsLogGaussAdd_IdVar_##tag##_D2;              \
        static constexpr auto addIdRows = zimsLogGaussAdd_IdVar_##tag##_D2L;         \
        static constexpr auto maxMix = zimsLogGaussMaxMultiMix_##tag##_D2;           \
        static constexpr auto maxMixRows = zimsLogGaussMaxMultiMix_##tag##_D2L;      \
        static constexpr auto addMix = zimsLogGaussAddMultiMix_##tag##_D2;           \
        static constexpr auto addMixRows = zimsLogGaussAddMultiMix_##tag##_D2L;      \
        static constexpr auto mixture = zimsLogGaussMixture_##tag##_D2;              \
        static constexpr auto mixtureRows = zimsLogGaussMixture_##tag##_D2L;         \
        static constexpr auto mixtureId = zimsLogGaussMixture_IdVar_##tag##_D2;      \
        static constexpr auto mixtureIdRows = zimsLogGaussMixture_IdVar_##tag##_D2L; \
        static constexpr auto logAdd = zimsLogAdd_##tag;                             \
        static constexpr auto logSum = zimsLogSum_##tag;                             \
    };
template <class T>
struct Api;
FUNCTIONS_OF_TYPE(Zim32f, 32f)
FUNCTIONS_OF_TYPE(Zim64f, 64f)
#undef FUNCTIONS_OF_TYPE

// ---- What the folds must give, from the scores and the running scores

template <class T>
using Vector = std::vector<T>;

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
    Api<T>::logAdd(scores.data(), running.data(), static_cast<int>(running.size()), 0);
    return running;
}

// Blocks of 100, each behind the sum so far.
template <class T>
Vector<T> summed(const Vector<T>& scores, Vector<T> running)
{
    Vector<T> block;
    for (std::size_t first = 0; first < scores.size(); first += 100) {
        block.insert(block.end(), &scores[first], scores.data() + std::min(first + 100, scores.size()));
        T sum;
        Api<T>::logSum(block.data(), &sum, static_cast<int>(block.size()));
        block = {sum};
    }
    running[0] = block[0];
    return running;
}

template <class T>
Vector<T> summedInOrder(const Vector<T>& scores, Vector<T> running)
{
    running[0] = scores[0];
    for (std::size_t i = 1; i < scores.size(); ++i)
        Api<T>::logAdd(&scores[i], running.data(), 1, 0);
    return running;
}

// ---- The functions, all run on the same arrays

// A matrix of vectors and one vector x: frames and a mean, or, since a square does not show which of the two was
// subtracted, means and a frame. Weights are inverse variances. Each array ends at a protected page unless it is placed
// otherwise, and gaps between rows hold NaN.
template <class T>
struct Arrays {
    int height, width;
    T gconst;
    StridedMatrix<T> mat, weightMat;
    RowMatrix<T> rows, weightRows;
    Guarded<T> x, weights, constants, running;

    Arrays(Random& random, int height_, int width_, Placement placement = {})
        : Arrays(random, height_, width_, placement, static_cast<std::size_t>(height_),
                 random.vector<T>(static_cast<std::size_t>(height_ * width_), -1, 1),
                 random.vector<T>(static_cast<std::size_t>(height_ * width_), T(0.01), 3))
    {
    }

    int step() const { return mat.step(); }

private:
    Arrays(Random& random, int height_, int width_, Placement placement, std::size_t count, const Vector<T>& vectors,
           const Vector<T>& matrixOfWeights)
        : height(height_),
          width(width_),
          gconst(random.between<T>(-60, 0)),
          mat(vectors, height, width, width + height % 3, placement),
          weightMat(matrixOfWeights, height, width, mat.step(), placement),
          rows(vectors, height, width, placement),
          weightRows(matrixOfWeights, height, width, placement),
          x(random.vector<T>(static_cast<std::size_t>(width), -1, 1), placement),
          weights(random.vector<T>(static_cast<std::size_t>(width), T(0.01), 3), placement),
          constants(random.vector<T>(count, -60, -20), placement),
          running(count, placement)
    {
    }
};

template <class T>
using Call = std::function<ZimStatus(const Arrays<T>&, T* to)>;

// What a form folds, and how.
template <class T>
struct Form {
    const char* name;
    Call<T> run, scores;
    Vector<T> (*fold)(const Vector<T>& scores, Vector<T> running);
};

template <class T>
Vector<Form<T>> forms()
{
    using F = Api<T>;
    using A = const Arrays<T>&;
    const auto frames = [](auto door) -> Call<T> {
        return [door](A a, T* to) {
            return door(a.mat.data(), a.step(), a.x, a.weights, a.width, to, a.height, a.gconst);
        };
    };
    const auto framesRows = [](auto door) -> Call<T> {
        return [door](A a, T* to) { return door(a.rows.data(), a.x, a.weights, a.width, to, a.height, a.gconst); };
    };
    const auto framesId = [](auto door) -> Call<T> {
        return [door](A a, T* to) { return door(a.mat.data(), a.step(), a.x, a.width, to, a.height, a.gconst); };
    };
    const auto framesIdRows = [](auto door) -> Call<T> {
        return [door](A a, T* to) { return door(a.rows.data(), a.x, a.width, to, a.height, a.gconst); };
    };
    const auto mix = [](auto door) -> Call<T> {
        return [door](A a, T* to) {
            return door(a.mat.data(), a.weightMat.data(), a.step(), a.x, a.width, a.constants, to, a.height);
        };
    };
    const auto mixRows = [](auto door) -> Call<T> {
        return [door](A a, T* to) {
            return door(a.rows.data(), a.weightRows.data(), a.x, a.width, a.constants, to, a.height);
        };
    };
    const Call<T> mixture = [](A a, T* to) {
        return F::mixture(a.x, a.mat.data(), a.weightMat.data(), a.height, a.step(), a.width, a.constants, to);
    };
    const Call<T> mixtureRows = [](A a, T* to) {
        return F::mixtureRows(a.x, a.rows.data(), a.weightRows.data(), a.height, a.width, a.constants, to);
    };
    const Call<T> mixtureId = [](A a, T* to) {
        return F::mixtureId(a.x, a.mat.data(), a.height, a.step(), a.width, a.constants, to);
    };
    const Call<T> mixtureIdRows = [](A a, T* to) {
        return F::mixtureIdRows(a.x, a.rows.data(), a.height, a.width, a.constants, to);
    };
    // One Gaussian at a time.
    const auto each = [](auto score) -> Call<T> {
        return [score](A a, T* to) {
            ZimStatus status = zimStsOk;
            for (int r = 0; r < a.height; ++r)
                status |= score(a, r, to + r);
            return status;
        };
    };
    const auto single = each([](A a, int r, T* to) {
        return F::single(a.x, a.rows.data()[r], a.weightRows.data()[r], a.width, to, a.constants[r]);
    });
    const auto singleId =
        each([](A a, int r, T* to) { return F::singleId(a.x, a.rows.data()[r], a.width, to, a.constants[r]); });
    // The scores of frames are those of the plain function of the same tail.
    const auto plain = frames(F::plain), plainRows = framesRows(F::plainRows), plainId = framesId(F::plainId),
               plainIdRows = framesIdRows(F::plainIdRows);
    Vector<Form<T>> all = {
        {"Max_D2", frames(F::max), plain, greater},
        {"Max_D2L", framesRows(F::maxRows), plainRows, greater},
        {"Max_IdVar_D2", framesId(F::maxId), plainId, greater},
        {"Max_IdVar_D2L", framesIdRows(F::maxIdRows), plainIdRows, greater},
        {"Add_D2", frames(F::add), plain, added},
        {"Add_D2L", framesRows(F::addRows), plainRows, added},
        {"Add_IdVar_D2", framesId(F::addId), plainId, added},
        {"Add_IdVar_D2L", framesIdRows(F::addIdRows), plainIdRows, added},
        {"MaxMultiMix_D2", mix(F::maxMix), single, greater},
        {"MaxMultiMix_D2L", mixRows(F::maxMixRows), single, greater},
        {"AddMultiMix_D2", mix(F::addMix), single, added},
        {"AddMultiMix_D2L", mixRows(F::addMixRows), single, added},
        {"Mixture_D2", mixture, single, summed},
        {"Mixture_D2L", mixtureRows, single, summed},
        {"Mixture_IdVar_D2", mixtureId, singleId, sizeof(T) == 4 ? summedInOrder<T> : summed<T>},
        {"Mixture_IdVar_D2L", mixtureIdRows, singleId, summed},
    };
    if constexpr (sizeof(T) == 4)
        all.insert(all.end(), {{"Max1", frames(zimsLogGaussMax1_32f_D2), plain, greater},
                               {"Add1", frames(zimsLogGaussAdd1_32f_D2), plain, added},
                               {"Add2", mix(zimsLogGaussAdd2_32f_D2), single, added}});
    return all;
}

// The scores that a form folds, and running scores for it: some of each far above, near, and far below.
template <class T>
struct Folding {
    Vector<T> scores, running;

    Folding(const Form<T>& form, const Arrays<T>& a, Random& random) : scores(static_cast<std::size_t>(a.height))
    {
        EXPECT_EQ(form.scores(a, scores.data()), zimStsOk);
        for (T score : scores)
            running.push_back(score + random.between<T>(-20, 20));
    }
};

template <class T>
void expectAllForms(Random& random, const Arrays<T>& a)
{
    for (const auto& form : forms<T>()) {
        const Folding<T> folding(form, a, random);
        a.running.assign(folding.running);
        EXPECT_EQ(form.run(a, a.running), zimStsOk);
        EXPECT_TRUE(equalBits(a.running.values(), form.fold(folding.scores, folding.running)))
            << form.name << ' ' << a.height << " x " << a.width;
    }
}

// ---- Tests

template <class T>
class Mixture : public testing::Test {
};
using FloatTypes = testing::Types<Zim32f, Zim64f>;
TYPED_TEST_SUITE(Mixture, FloatTypes);

TYPED_TEST(Mixture, EveryFormFoldsTheScoresOfItsGaussians)
{
    Random random(1);
    for (int width : {1, 2, 3, 4, 5, 8, 13, 36, 39, 40, 61})
        for (int height : {1, 2, 3, 4, 5, 6, 7, 8, 9, 31, 99, 100, 101, 103, 128, 129, 201, 259})
            expectAllForms(random, Arrays<TypeParam>(random, height, width));
    expectAllForms(random, Arrays<TypeParam>(random, 1001, 5));
}

TYPED_TEST(Mixture, TheSameBitsAtEveryAlignment)
{
    for (int width : {3, 8, 13}) {
        Vector<Vector<TypeParam>> first;
        for (std::size_t element = 0; element < 16; ++element) {
            Random random(2);
            const Arrays<TypeParam> a(random, 107, width, atOffset(element * sizeof(TypeParam)));
            Vector<Vector<TypeParam>> results;
            for (const auto& form : forms<TypeParam>()) {
                a.running.assign(Folding<TypeParam>(form, a, random).running);
                EXPECT_EQ(form.run(a, a.running), zimStsOk);
                results.push_back(a.running.values());
            }
            if (element == 0)
                first = results;
            for (std::size_t i = 0; i < results.size(); ++i)
                EXPECT_TRUE(equalBits(results[i], first[i])) << "form " << i << ", element " << element;
        }
    }
}

TYPED_TEST(Mixture, WholeMixturesAreCloseToTheFormula)
{
    using T = TypeParam;
    Random random(3);
    for (int height : {1, 2, 7, 32, 100, 101, 250}) {
        const Arrays<T> a(random, height, 13);
        for (const auto& form : forms<T>()) {
            if (form.fold != summed<T> && form.fold != summedInOrder<T>)
                continue;
            Vector<T> scores(static_cast<std::size_t>(height));
            form.scores(a, scores.data());
            long double sum = 0;
            for (T score : scores)
                sum += std::exp(static_cast<long double>(score));
            EXPECT_EQ(form.run(a, a.running), zimStsOk);
            // What the threshold drops, and a rounding for every addition.
            const long double dropped = (sizeof(T) == 4 ? 2.3e-7L : 1.1e-10L) * height;
            EXPECT_NEAR(a.running[0], std::log(sum), dropped + height * 60 * std::numeric_limits<T>::epsilon())
                << form.name << ' ' << height;
        }
    }
}

// Scores of frames at the mean are the constant to the bit.
TYPED_TEST(Mixture, TiesNaNsAndTheFloor)
{
    using T = TypeParam;
    using F = Api<T>;
    const T floor = sizeof(T) == 4 ? T(ZIMSLOGZERO_F) : T(-1e10), nan = poison<T>();
    for (int height : {1, 3, 4, 9}) {
        const Vector<T> x(static_cast<std::size_t>(height) * 5, 1), ones(x.size(), 1), row(5, 1);
        const Vector<T> zeros(static_cast<std::size_t>(height), 0);
        const auto all = [height](T value) { return Vector<T>(static_cast<std::size_t>(height), value); };
        const auto max = [&](T running, T constant) {
            auto frames = all(running), gaussians = all(running);
            const auto constants = all(constant);
            F::max(x.data(), 5, row.data(), row.data(), 5, frames.data(), height, constant);
            F::maxMix(x.data(), ones.data(), 5, row.data(), 5, constants.data(), gaussians.data(), height);
            EXPECT_TRUE(equalBits(frames, gaussians));
            return frames;
        };
        EXPECT_TRUE(equalBits(max(T(-0.0), T(0.0)), all(T(-0.0)))) << "a tie leaves the running score";
        EXPECT_TRUE(equalBits(max(T(0.0), T(-0.0)), all(T(0.0)))) << "a tie leaves the running score";
        EXPECT_TRUE(equalBits(max(T(-3), nan), all(T(-3)))) << "a NaN score";
        EXPECT_TRUE(equalBits(max(floor, T(-3)), all(T(-3))));
        auto running = all(floor);
        F::add(x.data(), 5, row.data(), row.data(), 5, running.data(), height, T(-70));
        EXPECT_TRUE(equalBits(running, all(T(-70)))) << "the floor is neutral";
        const auto below = all(2 * floor);
        running = all(3 * floor);
        F::addMix(x.data(), ones.data(), 5, row.data(), 5, below.data(), running.data(), height);
        EXPECT_TRUE(equalBits(running, all(floor))) << "a sum below the floor is raised to it";
    }
}

// Where doubling the constant overflows, the forms that double it show.
TYPED_TEST(Mixture, ConstantsAreDoubledWhereThePlainFormDoublesThem)
{
    using T = TypeParam;
    Random random(4);
    for (int width : {2, 13}) {
        Arrays<T> a(random, 1, width);
        a.gconst = std::numeric_limits<T>::max() * T(0.75);
        a.constants.fill(a.gconst);
        for (const auto& form : forms<T>()) {
            T score;
            form.scores(a, &score);
            a.running.fill(0);
            EXPECT_EQ(form.run(a, a.running), zimStsOk);
            EXPECT_EQ(a.running[0], score) << form.name;
        }
    }
}

TYPED_TEST(Mixture, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using F = Api<TypeParam>;
    using enum Size;
    const auto expectChecks = [](std::vector<Size> sizes, std::vector<ZimStatus> order, auto... doors) {
        (expectMatrixChecks(doors, sizes, order), ...);
    };
    const std::vector<ZimStatus> strideFirst = {zimStsBadStride, zimStsNullPointer, zimStsBadSize};
    const std::vector<ZimStatus> nullFirst = {zimStsNullPointer, zimStsBadStride, zimStsBadSize};
    expectChecks({step, width, height}, strideFirst, F::max, F::add, F::maxId, F::addId, F::maxMix, F::addMix);
    expectChecks({width, height}, nullFirst, F::maxRows, F::addRows, F::maxIdRows, F::addIdRows, F::maxMixRows,
                 F::addMixRows);
    expectChecks({height, step, width}, nullFirst, F::mixture, F::mixtureId);
    expectChecks({height, width}, nullFirst, F::mixtureRows, F::mixtureIdRows);
}

}  // namespace
}  // namespace zimsr::test
