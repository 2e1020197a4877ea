// Scores under block-diagonal Gaussians: small integers, which every type holds exactly, against a sum in integers; one
// element for the places of rounding; the matrix as it lies in memory.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdint>
#include <memory>
#include <utility>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/rounding.h"
#include "zimsr/kernels/blockdiagonal_state.h"

namespace zimsr::test {
namespace {

template <class T>
struct Api;
#define FUNCTIONS_OF_TYPE(T, tag)                                          \
    template <>                                                            \
    struct Api<T> {                                                        \
        using Matrix = ZimsBlockDMatrix_##tag;                             \
        static constexpr auto initAlloc = zimsBlockDMatrixInitAlloc_##tag; \
        static constexpr auto free = zimsBlockDMatrixFree_##tag;           \
    };
FUNCTIONS_OF_TYPE(Zim32f, 32f)
FUNCTIONS_OF_TYPE(Zim64f, 64f)
FUNCTIONS_OF_TYPE(Zim16s, 16s)
#undef FUNCTIONS_OF_TYPE

// Blocks of whole numbers in the caller's memory, each row at a protected page.
template <class T>
class Blocks {
public:
    Blocks(std::vector<Zim32s> sizesOfBlocks, Random& random) : sizes(std::move(sizesOfBlocks))
    {
        for (Zim32s size : sizes)
            for (Zim32s i = 0; i < size; ++i) {
                rows_.push_back(std::make_unique<Guarded<T>>(size));
                rows_.back()->assign(random.vector<Zim16s>(size, -4, 4));
            }
        for (const auto& row : rows_)
            table.push_back(row->data());
    }
    int count() const { return static_cast<int>(sizes.size()); }
    int total() const { return static_cast<int>(rows_.size()); }
    const Guarded<T>& row(int r) const { return *rows_[r]; }

    std::vector<Zim32s> sizes;
    std::vector<const T*> table;

private:
    std::vector<std::unique_ptr<Guarded<T>>> rows_;
};

// The library's copy of them.
template <class T>
class Matrix {
public:
    explicit Matrix(const Blocks<T>& blocks)
    {
        EXPECT_EQ(Api<T>::initAlloc(&matrix_, blocks.table.data(), blocks.sizes.data(), blocks.count()), zimStsOk);
    }
    explicit Matrix(T value)
    {
        const T* const row = &value;
        const Zim32s size = 1;
        EXPECT_EQ(Api<T>::initAlloc(&matrix_, &row, &size, 1), zimStsOk);
    }
    ~Matrix() { EXPECT_EQ(Api<T>::free(matrix_), zimStsOk); }
    Matrix(const Matrix&) = delete;
    Matrix& operator=(const Matrix&) = delete;

    operator const typename Api<T>::Matrix *() const { return matrix_; }
    const typename Api<T>::Matrix* operator->() const { return matrix_; }

private:
    typename Api<T>::Matrix* matrix_ = nullptr;
};

template <class T>
class BlockDiagonal : public testing::Test {
};
using Types = testing::Types<Zim32f, Zim64f, Zim16s>;
TYPED_TEST_SUITE(BlockDiagonal, Types);

TYPED_TEST(BlockDiagonal, TheMatrixIsACopyOnBoundariesInOneAllocation)
{
    using T = TypeParam;
    Random random(1);
    for (const auto& sizes : {std::vector<Zim32s>{1}, {3}, {4, 4}, {13, 13, 13}, {1, 2, 3, 4, 5, 6, 7}, {9, 1, 200}}) {
        Blocks<T> blocks(sizes, random);
        AllocationWatch watch;
        const Matrix<T> matrix(blocks);
        EXPECT_EQ(watch.requests(), 1);
        EXPECT_EQ(matrix->blockCount, blocks.count());
        EXPECT_EQ(matrix->total, blocks.total());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(&*matrix.operator->()) % 16, 0u);
        const std::vector<Zim32s> expectedSizes = blocks.sizes;
        std::fill(blocks.sizes.begin(), blocks.sizes.end(), 0);
        for (int b = 0, r = 0; b < blocks.count(); ++b) {
            EXPECT_EQ(matrix->blockSizes[b], expectedSizes[static_cast<std::size_t>(b)]);
            for (int i = 0; i < matrix->blockSizes[b]; ++i, ++r) {
                const T* row = matrix->rows[r];
                EXPECT_NE(row, blocks.table[static_cast<std::size_t>(r)]);
                EXPECT_EQ(reinterpret_cast<std::uintptr_t>(row) % 16, 0u);
                EXPECT_TRUE(equalBits(std::vector<T>(row, row + matrix->blockSizes[b]), blocks.row(r).values()));
            }
        }
    }
}

TYPED_TEST(BlockDiagonal, ARefusedMatrixLeavesThePointerAlone)
{
    using T = TypeParam;
    const auto initAlloc = Api<T>::initAlloc;
    Random random(2);
    const Blocks<T> blocks({2, 3}, random);
    auto* const before = reinterpret_cast<typename Api<T>::Matrix*>(&random);
    auto* matrix = before;
    const T* const* rows = blocks.table.data();
    const Zim32s sizes[] = {2, 3}, zero[] = {2, 0}, negative[] = {-1, 3}, huge[] = {INT_MAX, INT_MAX};
    expectNullsFirst(initAlloc, &matrix, rows, sizes, 0);
    expectStatuses({
        {"blockCount", initAlloc(&matrix, rows, sizes, 0), zimStsBadSize},
        {"a block of 0", initAlloc(&matrix, rows, zero, 2), zimStsBadSize},
        {"a block below 0", initAlloc(&matrix, rows, negative, 2), zimStsBadSize},
        {"a dimension beyond int", initAlloc(&matrix, rows, huge, 2), zimStsAllocFailed},
        {"Free", Api<T>::free(nullptr), zimStsNullPointer},
    });
    expectCleanFailure(
        [&] {
            EXPECT_EQ(matrix, before);
            const ZimStatus status = initAlloc(&matrix, rows, sizes, 2);
            if (status == zimStsOk) {
                Api<T>::free(matrix);
                matrix = before;
            }
            return status;
        },
        zimStsAllocFailed);
}

// ---- Scores: every form, called by the types of its vector, its constant and, where it has one, its scale factor

ZimStatus score(const Zim32f* x, const Zim32f* mean, const ZimsBlockDMatrix_32f* m, int len, Zim32f* dst, Zim32f c)
{
    return zimsLogGaussSingle_BlockDVar_32f(x, mean, m, len, dst, c);
}
ZimStatus score(const Zim64f* x, const Zim64f* mean, const ZimsBlockDMatrix_64f* m, int len, Zim64f* dst, Zim64f c)
{
    return zimsLogGaussSingle_BlockDVar_64f(x, mean, m, len, dst, c);
}
ZimStatus score(const Zim32f* x, const Zim32f* mean, const ZimsBlockDMatrix_32f* m, int len, Zim64f* dst, Zim64f c)
{
    return zimsLogGaussSingle_BlockDVar_32f64f(x, mean, m, len, dst, c);
}
ZimStatus score(const Zim16s* x, const Zim16s* mean, const ZimsBlockDMatrix_16s* m, int len, Zim32f* dst, Zim32f c)
{
    return zimsLogGaussSingle_BlockDVar_16s32f(x, mean, m, len, dst, c);
}
ZimStatus score(const Zim16s* x, const Zim16s* mean, const ZimsBlockDMatrix_16s* m, int len, Zim32s* dst, Zim32s c)
{
    return zimsLogGaussSingle_BlockDVar_16s32s_Sfs(x, mean, m, len, dst, c, 0);
}

template <class In, class Out>
struct Form {
    using Input = In;
    using Output = Out;
};

template <class F>
class BlockScore : public testing::Test {
};
using Forms = testing::Types<Form<Zim32f, Zim32f>, Form<Zim64f, Zim64f>, Form<Zim32f, Zim64f>, Form<Zim16s, Zim32f>,
                             Form<Zim16s, Zim32s>>;
TYPED_TEST_SUITE(BlockScore, Forms);

TYPED_TEST(BlockScore, SumsOverTheBlocksOnly)
{
    using T = typename TypeParam::Input;
    using Score = typename TypeParam::Output;
    Random random(3);
    std::vector<std::vector<Zim32s>> shapes = {{13, 13, 13}, {1, 2, 3, 4, 5, 6, 7, 8, 9}, {70, 41}, {70, 42}, {200}};
    for (Zim32s size = 1; size <= 20; ++size)
        shapes.push_back({size, 3});
    for (const auto& sizes : shapes) {
        const Blocks<T> blocks(sizes, random);
        const auto count = static_cast<std::size_t>(blocks.total());
        std::vector<int> deviation;
        Guarded<T> x(count), mean(count);
        for (std::size_t i = 0; i < count; ++i) {
            deviation.push_back(random.between(-7, 7));
            mean[i] = static_cast<T>(random.between(-9, 9));
            x[i] = static_cast<T>(mean[i] + static_cast<T>(deviation.back()));
        }
        std::int64_t form = 0;
        int r = 0, first = 0;
        for (Zim32s size : sizes) {
            for (Zim32s i = 0; i < size; ++i, ++r)
                for (Zim32s j = 0; j < size; ++j)
                    form += static_cast<std::int64_t>(blocks.row(r)[j]) * deviation[r] * deviation[first + j];
            first += size;
        }
        const Matrix<T> matrix(blocks);
        Score dst = 7;
        const auto call = [&] { return score(x, mean, matrix, blocks.total(), &dst, Score(100)); };
        const int requests = forEachFailedAllocation(call, [&](ZimStatus status, int leaked) {
            EXPECT_EQ(status, zimStsAllocFailed);
            EXPECT_EQ(leaked, 0);
            EXPECT_EQ(dst, 7);
        });
        EXPECT_EQ(requests > 0, count >= 112);
        EXPECT_EQ(dst, static_cast<Score>(100 - 0.5 * static_cast<double>(form))) << count;
    }
}

TYPED_TEST(BlockScore, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using T = typename TypeParam::Input;
    using Score = typename TypeParam::Output;
    Random random(4);
    const Matrix<T> matrix(Blocks<T>({2, 2}, random));
    const decltype(matrix.operator->()) none = nullptr;
    const T v[5] = {};
    Score dst = 7;
    expectStatuses({
        {"src before the length", score(nullptr, v, matrix, 0, &dst, Score(0)), zimStsNullPointer},
        {"mean", score(v, nullptr, matrix, 0, &dst, Score(0)), zimStsNullPointer},
        {"matrix", score(v, v, none, 0, &dst, Score(0)), zimStsNullPointer},
        {"dst", score(v, v, matrix, 0, static_cast<Score*>(nullptr), Score(0)), zimStsNullPointer},
        {"length 0", score(v, v, matrix, 0, &dst, Score(0)), zimStsBadSize},
        {"length below 0", score(v, v, matrix, -4, &dst, Score(0)), zimStsBadSize},
        {"shorter than the matrix", score(v, v, matrix, 3, &dst, Score(0)), zimStsBadSize},
        {"longer than the matrix", score(v, v, matrix, 5, &dst, Score(0)), zimStsBadSize},
    });
    EXPECT_EQ(dst, 7);
}

// ---- One element, where every rounding is told by the formula

TEST(BlockScoreOfOne, RoundsWhereItsTypeDoes)
{
    Random random(5);
    for (int i = 0; i < 200; ++i) {
        const float x = random.between(-4.0f, 4.0f), mean = random.between(-4.0f, 4.0f), m = random.between(0.1f, 4.0f);
        const double gconst = random.between(-60.0, 0.0);
        const float d = x - mean, sum = m * d, form = d * sum;
        float narrow;
        double wide;
        score(&x, &mean, Matrix<Zim32f>(m), 1, &narrow, static_cast<float>(gconst));
        score(&x, &mean, Matrix<Zim32f>(m), 1, &wide, gconst);
        EXPECT_EQ(narrow, static_cast<float>(static_cast<float>(gconst) - 0.5 * static_cast<double>(form)));
        EXPECT_EQ(wide, gconst - 0.5 * (static_cast<double>(d) * static_cast<double>(sum)));
        const double xd = x * 1.1, meand = mean / 3.0, md = m / 7.0;
        score(&xd, &meand, Matrix<Zim64f>(md), 1, &wide, gconst);
        EXPECT_EQ(wide, gconst - 0.5 * ((xd - meand) * (md * (xd - meand))));
    }
}

TEST(BlockScoreOfOne, SixteenBitsSaturateAndScale)
{
    Random random(6);
    for (int i = 0; i < 300; ++i) {
        const auto x = random.any<Zim16s>(1)[0], mean = random.any<Zim16s>(1)[0], m = random.any<Zim16s>(1)[0];
        const int d = std::clamp(x - mean, -32768, 32767);
        const float form = static_cast<float>(d) * static_cast<float>(d * m);
        const Matrix<Zim16s> matrix(m);
        for (int factor : {0, 1, 20, -1, -20, 127, -127, -128, 149, 150, INT_MAX, INT_MIN}) {
            const float scale = factor <= -128 ? HUGE_VALF : factor >= 150 ? 0.0f : std::ldexp(1.0f, -factor);
            const float gconst = random.between(-1e6f, 1e6f);
            const auto integer = random.between<Zim32s>(-1000000, 1000000);
            float scored;
            Zim32s score;
            EXPECT_EQ(zimsLogGaussSingle_BlockDVarScaled_16s32f(&x, &mean, matrix, 1, &scored, gconst, factor),
                      zimStsOk);
            EXPECT_EQ(zimsLogGaussSingle_BlockDVar_16s32s_Sfs(&x, &mean, matrix, 1, &score, integer, factor), zimStsOk);
            const float real = static_cast<float>(integer) - 0.5f * (form == 0 ? 0 : form * scale);
            EXPECT_EQ(scored, gconst + (form == 0 ? 0 : (0 - 0.5f * form) * scale)) << factor;
            EXPECT_EQ(score, real >= 2147483648.0f    ? INT_MAX
                             : real <= -2147483648.0f ? INT_MIN
                                                      : static_cast<Zim32s>(real))
                << factor;
        }
    }
}

TEST(BlockScoreOfOne, AtTheMeanTheScoreIsTheConstantAtEveryScale)
{
    const Zim16s x = 5;
    for (int factor : {0, 127, -128, INT_MAX, INT_MIN}) {
        float scored;
        Zim32s score;
        zimsLogGaussSingle_BlockDVarScaled_16s32f(&x, &x, Matrix<Zim16s>(9), 1, &scored, -3.5f, factor);
        zimsLogGaussSingle_BlockDVar_16s32s_Sfs(&x, &x, Matrix<Zim16s>(9), 1, &score, -35, factor);
        EXPECT_EQ(scored, -3.5f) << factor;
        EXPECT_EQ(score, -35) << factor;
    }
}

TEST(BlockScoreOfOne, TruncatesInEveryRoundingMode)
{
    const Zim16s x = 1, mean = 0;
    const Matrix<Zim16s> five(5), minusFive(-5);
    inEveryRoundingMode([&] {
        Zim32s below, above;
        zimsLogGaussSingle_BlockDVar_16s32s_Sfs(&x, &mean, five, 1, &below, 0, 0);
        zimsLogGaussSingle_BlockDVar_16s32s_Sfs(&x, &mean, minusFive, 1, &above, 0, 0);
        EXPECT_EQ(below, -2);
        EXPECT_EQ(above, 2);
    });
}

}  // namespace
}  // namespace zimsr::test
