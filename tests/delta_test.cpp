// Dynamic features: every member against a plain reference of its formulas, streamed in pieces and whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/delta_members.h"
#include "support/deltas.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

// Feeds one utterance block by block, as a caller does who keeps K rows. Each call meets a matrix of its own that ends
// at a protected page and holds nothing but what the call may read; afterwards the whole of it, gaps included, is what
// it was but for the results that the call completes.
template <class T>
class Feeder {
public:
    Feeder(const Member<T>& member, const std::vector<T>& src, const std::vector<T>& val, int frames, int width,
           int scaleFactor)
        : m_(member),
          src_(src),
          val_(val),
          frames_(frames),
          width_(width),
          scaleFactor_(scaleFactor),
          wanted_(features(member, src, val, frames, width, scaleFactor))
    {
    }

    // The lengths of the blocks add up to the frames; the last block closes the utterance.
    void feed(const std::vector<int>& blocks, int gap, Placement placement)
    {
        int seen = 0;
        for (std::size_t b = 0; b < blocks.size(); ++b) {
            const int flags = (b == 0 ? ZimDeltaBegin : 0) | (b + 1 == blocks.size() ? ZimDeltaEnd : 0);
            ASSERT_NO_FATAL_FAILURE(feedBlock(seen, blocks[b], flags, gap, placement)) << "block " << b;
            seen += blocks[b];
        }
    }

private:
    void feedBlock(int seen, int height, int flags, int gap, Placement placement)
    {
        const bool begins = flags & ZimDeltaBegin, ends = flags & ZimDeltaEnd;
        const int base = begins ? 0 : seen - m_.context();
        const int rows = seen + height - base, step = m_.rowLength(width_) + gap;
        const auto row = m_.rowLength(width_), srcWidth = m_.srcWidth(width_);
        std::vector<T> before((rows - 1) * step + row, untouched<T>());
        const auto put = [&](std::vector<T>& matrix, int kind, int firstRow, int endRow) {
            for (int t = firstRow; t < endRow; ++t)
                std::copy_n(&wanted_[t * row + kind * width_], width_, &matrix[(t - base) * step + kind * width_]);
        };
        if (!begins) {
            put(before, 0, base + m_.firstStatic(), seen);
            put(before, 1, base, base + m_.deltas());
        }
        std::vector<T> after = before;
        put(after, 0, seen, seen + height);
        for (int kind = 1; kind <= m_.order; ++kind)
            put(after, kind, begins ? 0 : seen - m_.reach(kind), seen + height - (ends ? 0 : m_.reach(kind)));

        const Guarded<T> src(std::vector<T>(src_.begin() + seen * srcWidth, src_.begin() + (seen + height) * srcWidth),
                             placement);
        const Guarded<T> val(val_, placement), dst(before, placement);
        ASSERT_EQ(m_.call(src, val, width_, dst, step, height, flags | ~3, scaleFactor_), zimStsOk);
        ASSERT_TRUE(identical(dst.values(), after, step)) << m_.name << " width " << width_ << " height " << height
                                                          << " flags " << flags << " factor " << scaleFactor_;
    }

    const Member<T>& m_;
    const std::vector<T>&src_, &val_;
    int frames_, width_, scaleFactor_;
    std::vector<T> wanted_;
};

template <class T>
class Streaming : public testing::Test {
protected:
    // Calls run(member, feeder of an utterance) for a width; the distributed front end has one only.
    template <class Run>
    void forEachMember(int width, int framesBeyondContext, int scaleFactor, Run run)
    {
        for (const Member<T>& m : members<T>()) {
            const int memberWidth = m.aurora() ? 13 : width;
            const int frames = m.context() + framesBeyondContext;
            const auto src = randomValues<T>(random_, frames * m.srcWidth(memberWidth));
            const auto val = randomValues<T>(random_, m.rowLength(memberWidth));
            Feeder<T> feeder(m, src, val, frames, memberWidth, scaleFactor);
            ASSERT_NO_FATAL_FAILURE(run(m, feeder, frames)) << m.name;
        }
    }

    Random random_{33};
};
TYPED_TEST_SUITE(Streaming, Elements);

TYPED_TEST(Streaming, EverySplitGivesTheFeaturesOfTheWholeUtterance)
{
    constexpr int beyond = 5;
    for (int width : {5, 17})
        this->forEachMember(width, beyond, 9, [&](const auto& m, auto& feeder, int) {
            for (unsigned cuts = 0; cuts < 1u << (beyond + 1); ++cuts) {
                std::vector<int> blocks = {m.context()};
                for (int i = 0; i < beyond; ++i) {
                    if (cuts >> i & 1)
                        blocks.push_back(0);
                    ++blocks.back();
                }
                if (cuts >> beyond & 1)
                    blocks.push_back(0);
                ASSERT_NO_FATAL_FAILURE(feeder.feed(blocks, 3, {}));
            }
        });
}

TYPED_TEST(Streaming, EveryWidthAndAlignment)
{
    for (int width = 1; width <= 50; ++width)
        for (std::size_t offset : {0, 1, 4, 7})
            this->forEachMember(width, 14, 11, [&](const auto& m, auto& feeder, int frames) {
                const int gap = static_cast<int>(offset % 4) * width % 5;
                ASSERT_NO_FATAL_FAILURE(feeder.feed({frames}, gap, Placement{}));
                ASSERT_NO_FATAL_FAILURE(feeder.feed({m.context() + 2, frames - m.context() - 2}, gap,
                                                    atOffset(offset * sizeof(TypeParam))));
            });
}

TYPED_TEST(Streaming, LongBlocks)
{
    for (int width : {3, 39, 600})
        this->forEachMember(width, 1500 / width + 120, 12, [&](const auto&, auto& feeder, int frames) {
            ASSERT_NO_FATAL_FAILURE(feeder.feed({frames}, 1, {}));
            ASSERT_NO_FATAL_FAILURE(feeder.feed({frames / 2, frames / 3, frames - frames / 2 - frames / 3}, 0, {}));
        });
}

TEST(Streaming16s, EveryScaleFactorAtTheEndsOfTheRange)
{
    Random random(34);
    std::vector<int> factors = {INT_MIN, INT_MIN + 1, -1000, 1000, INT_MAX - 1, INT_MAX};
    for (int factor = -34; factor <= 66; ++factor)
        factors.push_back(factor);
    for (int factor : factors)
        for (const Member<Zim16s>& m : members_16s)
            for (int width : {13, 14, 21}) {
                if (m.aurora() && width != 13)
                    continue;
                const int frames = m.context() + 30;
                const auto src = extremes(random, frames * m.srcWidth(width));
                const auto val = extremes(random, m.rowLength(width));
                Feeder<Zim16s> feeder(m, src, val, frames, width, factor);
                ASSERT_NO_FATAL_FAILURE(feeder.feed({frames}, 0, {}));
            }
}

TEST(Streaming32f, TheFirstAndTheLastRows)
{
    const Zim32f x[] = {1, 3, 8, 20, 50, 120};
    Zim32f dst[18];
    ASSERT_EQ(zimsDelta_Win1_32f_D2(x, 1, dst, 2, 2, 0.5f, 3), zimStsOk);
    EXPECT_EQ(dst[1], 1.0f);
    EXPECT_EQ(dst[3], 1.0f);
    ASSERT_EQ(zimsDeltaDelta_Win2_32f_D2(x, 1, dst, 3, 6, 1, 2, 3), zimStsOk);
    const Zim32f d[] = {2 + 2 * 7, 7 + 2 * 19, 17 + 2 * 49, 42 + 2 * 117, 100 + 2 * 112, 70 + 2 * 100};
    const Zim32f a[] = {2 * (d[1] - d[0] + 2 * (d[2] - d[0])), 2 * (d[2] - d[0] + 2 * (d[3] - d[0])),
                        2 * (d[3] - d[1] + 2 * (d[4] - d[0])), 2 * (d[4] - d[2] + 2 * (d[5] - d[1])),
                        2 * (d[5] - d[3] + 2 * (d[5] - d[2])), 2 * (d[5] - d[4] + 2 * (d[5] - d[3]))};
    for (int t = 0; t < 6; ++t) {
        EXPECT_EQ(dst[3 * t], x[t]);
        EXPECT_EQ(dst[3 * t + 1], d[t]) << t;
        EXPECT_EQ(dst[3 * t + 2], a[t]) << t;
    }
}

constexpr int shortFrames = 20, shortWidth = 13;

// A short utterance at once, with one factor for all columns.
std::vector<Zim32f> wholeOf(const Member<Zim32f>& m, const std::vector<Zim32f>& src, const std::vector<Zim32f>& val)
{
    std::vector<Zim32f> dst(shortFrames * m.rowLength(shortWidth));
    EXPECT_EQ(m.call(src.data(), val.data(), shortWidth, dst.data(), m.rowLength(shortWidth), shortFrames, 3, 0),
              zimStsOk);
    return dst;
}

TEST(Streaming32f, ConstantInputHasNoDynamicsAndInfinitiesAndNaNsStayInTheirColumns)
{
    for (const Member<Zim32f>& m : members_32f) {
        const int row = m.rowLength(shortWidth), srcWidth = m.srcWidth(shortWidth);
        const std::vector<Zim32f> ones(row, 1.0f);
        const auto still = wholeOf(m, std::vector<Zim32f>(shortFrames * srcWidth, 7.5f), ones);
        for (int i = 0; i < shortFrames * row; ++i)
            if (i % row >= shortWidth) {
                EXPECT_NEAR(still[i], 0, m.aurora() ? 1e-5 : 0) << m.name;
            }

        auto src = Random(35).vector<Zim32f>(shortFrames * srcWidth, -1, 1);
        src[9 * srcWidth + 3] = INFINITY;
        src[11 * srcWidth + 7] = NAN;
        EXPECT_TRUE(equalBits(wholeOf(m, src, ones), features(m, src, ones, shortFrames, shortWidth, 0))) << m.name;
    }
}

// ---- Copies

template <class T>
using CopyColumn = ZimStatus (*)(const T* src, int width, T* dst, int dstStep, int height);

template <class T>
std::vector<CopyColumn<T>> copies()
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return {zimsCopyColumn_32f_D2, zimsCopyCol_32f_D2};
    else
        return {zimsCopyColumn_16s_D2};
}

template <class T>
class Copying : public testing::Test {
};
TYPED_TEST_SUITE(Copying, Elements);

TYPED_TEST(Copying, CopiesBitsAndNothingElse)
{
    using T = TypeParam;
    Random random(38);
    for (int width = 1; width <= 50; ++width)
        for (int gap : {0, 1, 8})
            for (std::size_t offset : {0, 1, 2}) {
                const int height = 1 + width % 5, step = width + gap;
                auto values = randomValues<T>(random, height * width);
                if constexpr (std::is_same_v<T, Zim32f>)
                    values[0] = std::bit_cast<Zim32f>(0x7F812345u);  // a signalling NaN
                std::vector<T> before((height - 1) * step + width, untouched<T>()), after = before;
                for (int r = 0; r < height; ++r)
                    std::copy_n(&values[r * width], width, &after[r * step]);
                for (const Placement& placement : {Placement{}, atOffset(offset * sizeof(T))}) {
                    const Guarded<T> src(values, placement);
                    for (const auto copy : copies<T>()) {
                        const Guarded<T> dst(before, placement);
                        ASSERT_EQ(copy(src, width, dst, step, height), zimStsOk);
                        ASSERT_TRUE(identical(dst.values(), after, step)) << width << ' ' << gap;
                    }
                }
            }
}

// ---- Statuses

template <class T>
class Statuses : public testing::Test {
protected:
    void TearDown() override { EXPECT_TRUE(identical(dst_.values(), std::vector<T>(dst_.size(), untouched<T>()), 1)); }

    std::vector<T> src_ = std::vector<T>(200, T{1});
    Guarded<T> dst_{std::vector<T>(400, untouched<T>())};
};
TYPED_TEST_SUITE(Statuses, Elements);

TYPED_TEST(Statuses, StreamingChecksInTheirOrder)
{
    using T = TypeParam;
    const T* const none = nullptr;
    T* const nowhere = nullptr;
    const T* const src = this->src_.data();
    T* const dst = this->dst_.data();
    for (const Member<T>& m : members<T>()) {
        SCOPED_TRACE(m.name);
        const int width = m.aurora() ? 13 : 4, row = m.rowLength(width), K = m.context();
        expectStatuses({
            {"null src", m.call(none, src, 0, dst, 0, -1, 1, 0), zimStsNullPointer},
            {"null dst", m.call(src, src, 0, nowhere, 0, -1, 1, 0), zimStsNullPointer},
            {"negative height", m.call(src, src, width, dst, 0, -1, 3, 0), zimStsBadSize},
            {"height 0 in the middle", m.call(src, src, width, dst, 0, 0, 0, 0), zimStsBadSize},
            {"height 0 at the beginning", m.call(src, src, width, dst, 0, 0, 1, 0), zimStsBadSize},
            {"no end among other bits", m.call(src, src, width, dst, 0, 0, ~2, 0), zimStsBadSize},
            {"stride", m.call(src, src, width, dst, row - 1, K - 1, 1, 0), zimStsBadStride},
            {"stride of an empty block", m.call(src, src, width, dst, row - 1, 0, 2, 0), zimStsBadStride},
            {"too few to begin", m.call(src, src, width, dst, row, K - 1, 1, 0), zimStsBadSize},
            {"too few for a whole", m.call(src, src, width, dst, row, K - 1, 3, 0), zimStsBadSize},
            {"none to begin and end", m.call(src, src, width, dst, row, 0, 3, 0), zimStsBadSize},
        });
        if (m.mul)
            expectStatuses({{"null val", m.call(src, none, 0, dst, 0, -1, 1, 0), zimStsNullPointer}});
        if (!m.aurora())
            expectStatuses({
                {"width", m.call(src, src, 0, dst, -1, 5, 0, 0), zimStsBadSize},
                {"a width whose row is longer than an int", m.call(src, src, 1500000000, dst, INT_MAX, 8, 0, 0),
                 zimStsBadStride},
            });
    }
}

TYPED_TEST(Statuses, CopyChecksInTheirOrder)
{
    using enum Size;
    for (const auto copy : copies<TypeParam>())
        expectMatrixChecks({width, step, height}, {zimStsNullPointer, zimStsBadSize, zimStsBadStride}, copy);
}

}  // namespace
}  // namespace zimsr::test
