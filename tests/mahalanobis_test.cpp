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
#include "support/matrix.h"
#include "support/random.h"
#include "support/rounding.h"

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
    using F = Api<TypeParam>;
    using enum Size;
    for (auto form : {F::block, F::block1})
        expectMatrixChecks(form, {step, width, height}, {zimStsBadStride, zimStsNullPointer, zimStsBadSize});
    for (auto form : {F::mix, F::mix2})
        expectMatrixChecks(form, {step, width, height}, {zimStsBadStride, zimStsNullPointer, zimStsBadSize});
    for (auto form : {F::rows, F::rows1})
        expectMatrixChecks(form, {width, height}, {zimStsNullPointer, zimStsBadSize});
    for (auto form : {F::rowsMix, F::rowsMix2})
        expectMatrixChecks(form, {width, height}, {zimStsNullPointer, zimStsBadSize});
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
    expectPointersThenLength(zimsMahDistSingle_16s32f);
    expectPointersThenLength(zimsMahDistSingle_16s32s_Sfs);
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
