// Dynamic features of a whole utterance in place, against a plain reference of their formula.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <vector>

#include <zimsr/delta.h>

#include "support/compare.h"
#include "support/deltas.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

template <class T>
struct Evaluator {
    bool mul;
    ZimStatus (*call)(T* srcDst, int height, int step, const T* val, int width, int offset, int winSize,
                      int scaleFactor);
};

template <class T>
std::vector<Evaluator<T>> evaluators()
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return {{false, [](T* x, int h, int s, const T* v, int w, int o, int k,
                           int) { return zimsEvalDelta_32f_D2(x, h, s, w, o, k, *v); }},
                {true, [](T* x, int h, int s, const T* v, int w, int o, int k, int) {
                     return zimsEvalDeltaMul_32f_D2(x, h, s, v, w, o, k);
                 }}};
    else
        return {{false, [](T* x, int h, int s, const T* v, int w, int o, int k,
                           int f) { return zimsEvalDelta_16s_D2Sfs(x, h, s, w, o, k, *v, f); }},
                {true, [](T* x, int h, int s, const T* v, int w, int o, int k, int f) {
                     return zimsEvalDeltaMul_16s_D2Sfs(x, h, s, v, w, o, k, f);
                 }}};
}

// The sum over k of k * difference(k), times val.
template <class Difference>
Zim32f weighted(Difference difference, int winSize, Zim32f val, int)
{
    Zim32f sum = 0;
    for (int k = 1; k <= winSize; ++k)
        sum = sum + static_cast<Zim32f>(k) * difference(k);
    return val * sum;
}

template <class Difference>
Zim16s weighted(Difference difference, int winSize, Zim16s val, int scaleFactor)
{
    long long sum = 0;
    for (int k = 1; k <= winSize; ++k)
        sum += static_cast<long long>(k) * difference(k);
    return scaled(static_cast<long long>(static_cast<Zim32s>(sum)) * val, scaleFactor);
}

template <class T>
class Evaluation : public testing::Test {
protected:
    void expectDeltas(const std::vector<T>& statics, const std::vector<T>& val, int height, int width, int offset,
                      int winSize, int gap, int scaleFactor, Placement placement)
    {
        const int step = offset + 2 * width + gap;
        std::vector<T> before((height - 1) * step + offset + 2 * width, untouched<T>());
        for (int t = 0; t < height; ++t)
            std::copy_n(&statics[t * width], width, &before[t * step + offset]);
        for (const Evaluator<T>& e : evaluators<T>()) {
            std::vector<T> after = before;
            for (int t = 0; t < height; ++t)
                for (int c = 0; c < width; ++c) {
                    const auto x = [&](int row) { return statics[row * width + c]; };
                    const auto difference = [&](int k) {
                        const T later = t >= height - winSize ? x(height - 1) : x(t + k);
                        const T earlier = t < winSize ? x(0) : x(t - k);
                        return later - earlier;
                    };
                    after[t * step + offset + width + c] =
                        weighted(difference, winSize, e.mul ? val[width + c] : val[0], scaleFactor);
                }
            std::vector<T> columnVal = val;
            if (e.mul)
                std::fill_n(columnVal.begin(), width, untouched<T>());
            const Guarded<T> srcDst(before, placement), factors(columnVal, placement);
            ASSERT_EQ(e.call(srcDst, height, step, factors, width, offset, winSize, scaleFactor), zimStsOk);
            ASSERT_TRUE(identical(srcDst.values(), after, step))
                << "height " << height << " width " << width << " offset " << offset << " window " << winSize
                << " factor " << scaleFactor;
        }
    }

    Random random_{36};
};
TYPED_TEST_SUITE(Evaluation, Elements);

TYPED_TEST(Evaluation, EveryWidthWindowAndAlignment)
{
    for (int width = 1; width <= 40; ++width)
        for (int winSize : {1, 2, 3, 6})
            for (int middle : {0, 1, 5}) {
                const int height = 2 * winSize + middle;
                const auto statics = randomValues<TypeParam>(this->random_, height * width);
                const auto val = randomValues<TypeParam>(this->random_, 2 * width);
                const Placement placement = middle == 1 ? atOffset(width % 8 * sizeof(TypeParam)) : Placement{};
                ASSERT_NO_FATAL_FAILURE(
                    this->expectDeltas(statics, val, height, width, winSize % 3, winSize, middle % 4, 17, placement));
            }
}

TYPED_TEST(Evaluation, LongUtterances)
{
    for (int width : {1, 39, 500}) {
        const int height = 700;
        const auto statics = randomValues<TypeParam>(this->random_, height * width);
        const auto val = randomValues<TypeParam>(this->random_, 2 * width);
        ASSERT_NO_FATAL_FAILURE(this->expectDeltas(statics, val, height, width, 2, 3, 1, 20, {}));
    }
}

TEST(Evaluation16s, EveryScaleFactorAndASumThatWraps)
{
    Random random(37);
    class Fixture : public Evaluation<Zim16s> {
    public:
        void TestBody() override {}
        using Evaluation<Zim16s>::expectDeltas;
    } fixture;
    for (int factor :
         {INT_MIN, -40, -16, -15, -8, -1, 0, 1, 8, 15, 16, 17, 18, 30, 31, 32, 33, 46, 47, 48, 49, 63, 64, INT_MAX})
        // 400 frames of 65535 each sum to more than 2^32.
        for (int winSize : {1, 3, 400}) {
            const int width = 9, height = 2 * winSize + 3;
            const auto statics = extremes(random, height * width);
            const auto val = extremes(random, 2 * width);
            ASSERT_NO_FATAL_FAILURE(fixture.expectDeltas(statics, val, height, width, 0, winSize, 0, factor, {}));
        }
    std::vector<Zim16s> statics(800, -32768);
    std::fill_n(&statics[400], 400, Zim16s{32767});
    ASSERT_NO_FATAL_FAILURE(fixture.expectDeltas(statics, {3, -5}, 800, 1, 0, 400, 0, 17, {}));
}

TYPED_TEST(Evaluation, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using T = TypeParam;
    const std::vector<T> clear(100, untouched<T>()), vals(9, T{1});
    std::vector<T> matrix = clear;
    T* const dst = matrix.data();
    const T* const val = vals.data();
    for (const Evaluator<T>& e : evaluators<T>()) {
        expectStatuses({
            {"null", e.call(nullptr, 0, 0, val, 0, 0, 0, 0), zimStsNullPointer},
            {"height", e.call(dst, 0, 0, val, 2, 0, 1, 0), zimStsBadSize},
            {"width", e.call(dst, 4, -1, val, 0, 0, 1, 0), zimStsBadSize},
            {"offset", e.call(dst, 4, -1, val, 2, -1, 1, 0), zimStsBadSize},
            {"window", e.call(dst, 4, -1, val, 2, 0, 0, 0), zimStsBadSize},
            {"height below two windows", e.call(dst, 5, 0, val, 2, 0, 3, 0), zimStsBadSize},
            {"a window whose double is no int", e.call(dst, 5, 0, val, 2, 0, 1 << 30, 0), zimStsBadSize},
            {"stride", e.call(dst, 6, 6, val, 2, 3, 3, 0), zimStsBadStride},
            {"a width whose row is longer than an int", e.call(dst, 6, 6, val, 1 << 30, INT_MAX, 3, 0),
             zimStsBadStride},
        });
        if (e.mul)
            expectStatuses({{"null val", e.call(dst, 0, 0, nullptr, 0, 0, 0, 0), zimStsNullPointer}});
    }
    EXPECT_TRUE(identical(matrix, clear, 1));
}

}  // namespace
}  // namespace zimsr::test
