// Mahalanobis distance: every form is the sum inside the Gaussian score, to the bit. Moments: against their formula.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

#define FUNCTIONS_OF_TYPE(T, tag)                                        \
    template <>                                                          \
    struct Api<T> {                                                      \
        static constexpr auto score = zimsLogGaussSingle_##tag;          \
        static constexpr auto single = zimsMahDistSingle_##tag;          \
        static constexpr auto block = zimsMahDist_##tag##_D2;            \
        static constexpr auto rows = zimsMahDist_##tag##_D2L;            \
        static constexpr auto block1 = zimsMahDist1_##tag##_D2;          \
        static constexpr auto rows1 = zimsMahDist1_##tag##_D2L;          \
        static constexpr auto mix = zimsMahDistMultiMix_##tag##_D2;      \
        static constexpr auto rowsMix = zimsMahDistMultiMix_##tag##_D2L; \
        static constexpr auto mix2 = zimsMahDist2_##tag##_D2;            \
        static constexpr auto rowsMix2 = zimsMahDist2_##tag##_D2L;       \
        static constexpr auto moments = zimsMeanVarAcc_##tag;            \
    };
template <class T>
struct Api;
FUNCTIONS_OF_TYPE(Zim32f, 32f)
FUNCTIONS_OF_TYPE(Zim64f, 64f)
#undef FUNCTIONS_OF_TYPE

// height vectors a, each with weights of its own, and one vector b with weights for all: frames and a Gaussian, or
// Gaussians and a frame.
template <class T>
struct Problem {
    int height, width;
    std::vector<T> a, weightsOfA, b, weightsOfB;

    Problem(Random& random, int rows, int columns) : height(rows), width(columns)
    {
        const std::size_t count = static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns);
        a = random.vector<T>(count, -4, 4), weightsOfA = random.vector<T>(count, T(0.01), 3);
        b = random.vector<T>(static_cast<std::size_t>(columns), -4, 4);
        weightsOfB = random.vector<T>(b.size(), T(0.01), 3);
    }

    // The score of a difference x - m with the constant 0 is -0.5 times the sum, exactly.
    T distance(int r, const std::vector<T>& weights, std::ptrdiff_t weightRow) const
    {
        T score;
        Api<T>::score(&a[static_cast<std::size_t>(r) * b.size()], b.data(), weights.data() + weightRow * width, width,
                      &score, 0);
        return -2 * score;
    }
    std::vector<T> fromOne() const
    {
        std::vector<T> distances;
        for (int r = 0; r < height; ++r)
            distances.push_back(distance(r, weightsOfB, 0));
        return distances;
    }
    std::vector<T> fromMany() const
    {
        std::vector<T> distances;
        for (int r = 0; r < height; ++r)
            distances.push_back(distance(r, weightsOfA, r));
        return distances;
    }
};

// Arrays end at a protected page unless they are placed otherwise, and gaps between rows hold NaN.
template <class T>
void expectAllForms(const Problem<T>& p, Placement placement = {})
{
    using F = Api<T>;
    const int step = p.width + p.height % 3;
    const StridedMatrix<T> a(p.a, p.height, p.width, step, placement);
    const StridedMatrix<T> weights(p.weightsOfA, p.height, p.width, step, placement);
    const RowMatrix<T> rows(p.a, p.height, p.width, placement), weightRows(p.weightsOfA, p.height, p.width, placement);
    const Guarded<T> b(p.b, placement), weight(p.weightsOfB, placement);
    Guarded<T> dst(static_cast<std::size_t>(p.height), placement);
    const auto expect = [&](const char* form, const std::vector<T>& expected, auto call) {
        dst.fill(poison<T>());
        EXPECT_EQ(call(), zimStsOk) << form;
        EXPECT_TRUE(equalBits(dst.values(), expected))
            << form << ' ' << p.height << " x " << p.width << ", place " << placement.offset;
    };
    const auto frames = p.fromOne();
    const int width = p.width, height = p.height;
    expect("Single", frames, [&] {
        ZimStatus status = zimStsOk;
        for (int r = 0; r < height; ++r)
            status |= F::single(rows.data()[r], b, weight, width, dst + r);
        return status;
    });
    for (auto form : {F::block, F::block1})
        expect("D2", frames, [&] { return form(a.data(), step, b, weight, width, dst, height); });
    for (auto form : {F::rows, F::rows1})
        expect("D2L", frames, [&] { return form(rows.data(), b, weight, width, dst, height); });
    const auto gaussians = p.fromMany();
    for (auto form : {F::mix, F::mix2})
        expect("MultiMix D2", gaussians, [&] { return form(a.data(), weights.data(), step, b, width, dst, height); });
    for (auto form : {F::rowsMix, F::rowsMix2})
        expect("MultiMix D2L", gaussians, [&] { return form(rows.data(), weightRows.data(), b, width, dst, height); });
}

template <class T>
class Mahalanobis : public testing::Test {
};
using FloatTypes = testing::Types<Zim32f, Zim64f>;
TYPED_TEST_SUITE(Mahalanobis, FloatTypes);

TYPED_TEST(Mahalanobis, EveryFormIsTheSumInsideTheScore)
{
    Random random(1);
    for (int width = 1; width <= 41; ++width)
        for (int height : {1, 2, 3, 4, 5, 9, 13})
            expectAllForms(Problem<TypeParam>(random, height, width));
    for (int width : {3, 8, 13, 39, 40})
        for (std::size_t element = 0; element < 9; ++element)
            expectAllForms(Problem<TypeParam>(random, 11, width), atOffset(element * sizeof(TypeParam)));
}

TYPED_TEST(Mahalanobis, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
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
    T* const dst = out.data();
    expectStatuses({
        {"D2: the stride before a null", F::block(null, 3, v, v, 4, dst, 2), zimStsBadStride},
        {"D2: mat before sizes", F::block(null, 4, v, v, 0, dst, 0), zimStsNullPointer},
        {"D2: mean", F::block(v, 4, null, v, 4, dst, 2), zimStsNullPointer},
        {"D2: invVar", F::block(v, 4, v, null, 4, dst, 2), zimStsNullPointer},
        {"D2: dst", F::block(v, 4, v, v, 4, nowhere, 2), zimStsNullPointer},
        {"D2: width", F::block(v, 4, v, v, 0, dst, 2), zimStsBadSize},
        {"D2: height", F::block(v, 4, v, v, 4, dst, 0), zimStsBadSize},
        {"D2L: rows", F::rows(noRows, v, v, 0, dst, 2), zimStsNullPointer},
        {"D2L: mean", F::rows(rows, null, v, 4, dst, 2), zimStsNullPointer},
        {"D2L: invVar", F::rows(rows, v, null, 4, dst, 2), zimStsNullPointer},
        {"D2L: dst", F::rows(rows, v, v, 4, nowhere, 2), zimStsNullPointer},
        {"D2L: width", F::rows(rows, v, v, -1, dst, 2), zimStsBadSize},
        {"D2L: height", F::rows(rows, v, v, 4, dst, 0), zimStsBadSize},
        {"MultiMix D2: stride", F::mix(null, v, 3, v, 4, dst, 2), zimStsBadStride},
        {"MultiMix D2: mean", F::mix(null, v, 4, v, 0, dst, 2), zimStsNullPointer},
        {"MultiMix D2: invVar", F::mix(v, null, 4, v, 4, dst, 2), zimStsNullPointer},
        {"MultiMix D2: src", F::mix(v, v, 4, null, 4, dst, 2), zimStsNullPointer},
        {"MultiMix D2: dst", F::mix(v, v, 4, v, 4, nowhere, 2), zimStsNullPointer},
        {"MultiMix D2: height", F::mix(v, v, 4, v, 4, dst, 0), zimStsBadSize},
        {"MultiMix D2L: meanRows", F::rowsMix(noRows, rows, v, 0, dst, 2), zimStsNullPointer},
        {"MultiMix D2L: invVarRows", F::rowsMix(rows, noRows, v, 4, dst, 2), zimStsNullPointer},
        {"MultiMix D2L: src", F::rowsMix(rows, rows, null, 4, dst, 2), zimStsNullPointer},
        {"MultiMix D2L: dst", F::rowsMix(rows, rows, v, 4, nowhere, 2), zimStsNullPointer},
        {"MultiMix D2L: width", F::rowsMix(rows, rows, v, 0, dst, 2), zimStsBadSize},
    });
    EXPECT_EQ(out, std::vector<T>(2, 7));
    expectPointersThenLength(F::single);
    expectPointersThenLength(F::moments);
}

TEST(MahalanobisWidened, EveryOperandIsWidenedFirst)
{
    Random random(2);
    for (int width = 1; width <= 41; ++width) {
        const Problem<float> p(random, 1, width);
        const Guarded<float> x(p.a), mean(p.b), invVar(p.weightsOfB);
        double distance, score;
        EXPECT_EQ(zimsMahDistSingle_32f64f(x, mean, invVar, width, &distance), zimStsOk);
        zimsLogGaussSingle_32f64f(x, mean, invVar, width, &score, 0);
        EXPECT_TRUE(sameBits(distance, -2 * score)) << width;
    }
    expectPointersThenLength(zimsMahDistSingle_32f64f);
}

// ---- Moments

TYPED_TEST(Mahalanobis, MomentsAreAddedToTheSums)
{
    using T = TypeParam;
    Random random(3);
    for (int len = 1; len <= 70; ++len)
        for (std::size_t offset : {std::size_t{0}, std::size_t{1}, std::size_t{3}}) {
            const Placement place = offset == 0 ? Placement{} : atOffset(offset * sizeof(T));
            const auto count = static_cast<std::size_t>(len);
            const auto mean = random.vector<T>(count, -4, 4);
            auto first = random.vector<T>(count, -9, 9), second = random.vector<T>(count, 0, 9);
            const Guarded<T> meanAt(mean, place), meanAcc(first, place), varAcc(second, place);
            for (T weight : {T(1), T(0.3), T(0), T(-0.7)}) {
                const auto x = random.vector<T>(count, -4, 4);
                const Guarded<T> src(x, place);
                EXPECT_EQ(Api<T>::moments(src, meanAt, meanAcc, varAcc, len, weight), zimStsOk);
                for (std::size_t j = 0; j < count; ++j) {
                    const T deviation = x[j] - mean[j], weighted = deviation * weight;
                    first[j] += weighted;
                    second[j] += deviation * weighted;
                }
            }
            EXPECT_TRUE(equalBits(meanAcc.values(), first)) << len;
            EXPECT_TRUE(equalBits(varAcc.values(), second)) << len;
        }
}

}  // namespace
}  // namespace zimsr::test
