// Accumulation of covariances: every form against a scalar account of each path, bit for bit, and against long double.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

template <class T>
struct Problem {
    int height, width;
    std::vector<T> frames, mean;
    std::vector<Zim64f> dst;

    Problem(Random& random, int rows, int columns, T low, T high)
        : height(rows),
          width(columns),
          frames(random.vector<T>(rows * columns, low, high)),
          mean(random.vector<T>(columns, low, high)),
          dst(random.vector<Zim64f>(mean.size() * mean.size(), -9, 9))
    {
    }
    T at(int r, std::size_t c) const { return frames[r * mean.size() + c]; }

    // The accumulator after element(i, j), from its old value, has taken the place of both halves.
    template <class Element>
    std::vector<Zim64f> symmetric(Element element) const
    {
        auto result = dst;
        for (std::size_t i = 0; i < mean.size(); ++i)
            for (std::size_t j = i; j < mean.size(); ++j)
                result[j * mean.size() + i] = result[i * mean.size() + j] = element(i, j, dst[i * mean.size() + j]);
        return result;
    }
};

template <class T>
std::vector<Zim64f> sumBySum(const Problem<T>& p, Zim64f val)
{
    return p.symmetric([&](std::size_t i, std::size_t j, Zim64f old) {
        Zim64f sum = 0;
        for (int r = 0; r < p.height; ++r)
            sum += (static_cast<Zim64f>(p.at(r, i)) - p.mean[j]) * (static_cast<Zim64f>(p.at(r, j)) - p.mean[j]);
        return old + val * sum;
    });
}

std::vector<Zim64f> frameByFrame(const Problem<Zim32f>& p, Zim64f val)
{
    return p.symmetric([&](std::size_t i, std::size_t j, Zim64f sum) {
        for (int r = 0; r < p.height; ++r) {
            const Zim32f first = p.at(r, i) - p.mean[j], second = p.at(r, j) - p.mean[j];
            sum += val * first * second;
        }
        return sum;
    });
}

std::vector<Zim64f> frameByFrame(const Problem<Zim16s>& p, Zim64f val)
{
    const auto limited = [](int difference) { return std::clamp(difference, -32768, 32767); };
    return p.symmetric([&](std::size_t i, std::size_t j, Zim64f sum) {
        const bool inGroup = (j - i) / 4 < (p.mean.size() - i) / 4;
        for (int r = 0; r < p.height; ++r) {
            const int first = p.mean[j] - p.at(r, i), second = p.at(r, j) - p.mean[j];
            sum -= inGroup ? val * limited(first) * limited(second) : val * first * second;
        }
        return sum;
    });
}

#define DOORS(T, tag)                                                                                                \
    ZimStatus accumulate(const T* mat, int step, int height, const T* mean, Zim64f* dst, int width, int dstStep,     \
                         Zim64f val)                                                                                 \
    {                                                                                                                \
        return zimsAccCovarianceMatrix_##tag##_D2(mat, step, height, mean, dst, width, dstStep, val);                \
    }                                                                                                                \
    ZimStatus accumulate(const T* const* rows, int height, const T* mean, Zim64f* const* dst, int width, Zim64f val) \
    {                                                                                                                \
        return zimsAccCovarianceMatrix_##tag##_D2L(rows, height, mean, dst, width, val);                             \
    }
DOORS(Zim32f, 32f64f)
DOORS(Zim16s, 16s64f)
#undef DOORS

struct Places {
    Placement frames, mean, dst;
};

template <class T>
std::vector<Zim64f> resultD2(const Problem<T>& p, Zim64f val, int step, int dstStep, const Places& places = {})
{
    const StridedMatrix<T> mat(p.frames, p.height, p.width, step, places.frames);
    const StridedMatrix<Zim64f> dst(p.dst, p.width, p.width, dstStep, places.dst);
    const Guarded<T> mean(p.mean, places.mean);
    EXPECT_EQ(accumulate(mat.data(), step, p.height, mean, dst.data(), p.width, dstStep, val), zimStsOk);
    return dst.values();
}

template <class T>
std::vector<Zim64f> resultD2L(const Problem<T>& p, Zim64f val, const Places& places = {})
{
    // Many rows of frames: they lie in one block, apart from each other.
    const int step = (p.width + 7) / 8 * 8;
    const StridedMatrix<T> mat(p.frames, p.height, p.width, step, places.frames);
    std::vector<const T*> rows;
    for (int r = 0; r < p.height; ++r)
        rows.push_back(mat.data() + static_cast<std::ptrdiff_t>(r) * step);
    const RowMatrix<Zim64f> dst(p.dst, p.width, p.width, places.dst);
    const Guarded<T> mean(p.mean, places.mean);
    EXPECT_EQ(accumulate(rows.data(), p.height, mean, dst.writable(), p.width, val), zimStsOk);
    return dst.values();
}

template <class T>
class Covariance : public testing::Test {
protected:
    // Differences of the samples exceed 16 bits.
    static constexpr T bound = sizeof(T) == 2 ? T(32767) : T(4);
    static constexpr int largeD2 = sizeof(T) == 2 ? 270000 : 140000, largeD2L = sizeof(T) == 2 ? 260000 : 134000;
};
using FrameTypes = testing::Types<Zim32f, Zim16s>;
TYPED_TEST_SUITE(Covariance, FrameTypes);

TYPED_TEST(Covariance, SmallBlocksAreAddedSumBySum)
{
    Random random(1);
    for (int width = 1; width <= 40; ++width)
        for (int height : {1, 2, 3, 4, 5, 19}) {
            const Problem<TypeParam> p(random, height, width, static_cast<TypeParam>(-this->bound), this->bound);
            const auto expected = sumBySum(p, 0.7);
            for (const Places& places :
                 {Places{}, {atOffset(0), atOffset(0), atOffset(0)}, {atOffset(4), {}, atOffset(8)}}) {
                EXPECT_TRUE(equalBits(resultD2(p, 0.7, width + height % 3, width + 2, places), expected)) << width;
                EXPECT_TRUE(equalBits(resultD2L(p, 0.7, places), expected)) << width;
            }
        }
}

TYPED_TEST(Covariance, LargeAlignedBlocksAreAddedFrameByFrame)
{
    Random random(2);
    const Placement aligned = atOffset(0), off = atOffset(8);
    for (int width : {1, 3, 4, 6, 8, 11, 39}) {
        const int step = (width + 3) / 4 * 4 + 4;
        const auto atLeast = [](int elements, int rowLength) { return (elements + rowLength - 1) / rowLength; };
        const auto draw = [&](int height) {
            return Problem<TypeParam>(random, height, width, static_cast<TypeParam>(-this->bound), this->bound);
        };
        const auto p = draw(atLeast(this->largeD2, step));
        const auto sums = sumBySum(p, 0.7);
        EXPECT_TRUE(equalBits(resultD2(p, 0.7, step, step, {aligned, aligned, aligned}), frameByFrame(p, 0.7)))
            << width;
        for (const Places& places : {Places{off, aligned, aligned}, {aligned, off, aligned}, {aligned, aligned, off}})
            EXPECT_TRUE(equalBits(resultD2(p, 0.7, step, step, places), sums)) << width;
        EXPECT_TRUE(equalBits(resultD2(p, 0.7, step, step + 1, {aligned, aligned, aligned}), sums)) << width;
        const auto odd = draw(atLeast(this->largeD2, step + 2)), shorter = draw(atLeast(this->largeD2, step) - 1);
        EXPECT_TRUE(equalBits(resultD2(odd, 0.7, step + 2, step, {aligned, aligned, aligned}), sumBySum(odd, 0.7)));
        EXPECT_TRUE(equalBits(resultD2(shorter, 0.7, step, step, {aligned, aligned, aligned}), sumBySum(shorter, 0.7)));
        if (width < 4)
            continue;

        const auto q = draw(atLeast(this->largeD2L, width)), fewer = draw(atLeast(this->largeD2L, width) - 1);
        const auto sumsOfRows = sumBySum(q, 0.7);
        EXPECT_TRUE(equalBits(resultD2L(q, 0.7, {aligned, aligned, aligned}), frameByFrame(q, 0.7))) << width;
        for (const Places& places : {Places{off, aligned, aligned}, {aligned, off, aligned}, {aligned, aligned, off}})
            EXPECT_TRUE(equalBits(resultD2L(q, 0.7, places), sumsOfRows)) << width;
        EXPECT_TRUE(equalBits(resultD2L(fewer, 0.7, {aligned, aligned, aligned}), sumBySum(fewer, 0.7))) << width;
    }
}

// With the columns' own means, the accumulator gets the scatter matrix.
TEST(CovarianceOfFloats, IsCloseToTheScatterMatrix)
{
    Random random(3);
    Problem<Zim32f> p(random, 256, 13, -4, 4);
    for (Zim32f& x : p.frames)
        x = std::round(x * 64) / 64;  // so that the means are exact
    std::vector<long double> mean(13, 0);
    for (std::size_t c = 0; c < 13; ++c) {
        for (int r = 0; r < 256; ++r)
            mean[c] += p.at(r, c);
        p.mean[c] = static_cast<Zim32f>(mean[c] /= 256);
    }
    std::fill(p.dst.begin(), p.dst.end(), 0);
    const auto result = resultD2(p, 1 / 255.0, 13, 13);
    for (std::size_t i = 0; i < 13; ++i)
        for (std::size_t j = 0; j < 13; ++j) {
            long double scatter = 0;
            for (int r = 0; r < 256; ++r)
                scatter += (p.at(r, i) - mean[i]) * (p.at(r, j) - mean[j]);
            EXPECT_NEAR(result[i * 13 + j], scatter / 255, 1e-12);
        }
}

TEST(CovarianceChecks, ComeInTheirOrderAndARefusedCallWritesNothing)
{
    using enum Size;
    const std::vector<ZimStatus> order{zimStsNullPointer, zimStsBadSize, zimStsBadStride};
    expectMatrixChecks({step, height, width, step}, order, zimsAccCovarianceMatrix_32f64f_D2,
                       zimsAccCovarianceMatrix_16s64f_D2);
    expectMatrixChecks({height, width}, order, zimsAccCovarianceMatrix_32f64f_D2L, zimsAccCovarianceMatrix_16s64f_D2L);
    const Zim32f x[2] = {};
    const Zim16s samples[2] = {};
    Zim64f dst[4] = {7, 7, 7, 7};
    for (auto [stride, dstStride] : {std::pair(1, 2), std::pair(2, 1)}) {
        EXPECT_EQ(accumulate(x, stride, 1, x, dst, 2, dstStride, 1), zimStsBadStride);
        EXPECT_EQ(accumulate(samples, stride, 1, samples, dst, 2, dstStride, 1), zimStsBadStride);
    }
    EXPECT_EQ(std::count(dst, dst + 4, 7), 4);
}

}  // namespace
}  // namespace zimsr::test
