// Dynamic features: every member against a plain reference of its formulas, streamed in pieces and whole.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

constexpr int auroraWindow = 4;

// A streaming function, called in one way: width is of the statics, val has an element per column of a row.
template <class T>
struct Member {
    const char* name;
    int radius, order;
    bool mul;
    int context;  // K
    int firstStatic,
        deltas;    // what a continuing call may read: statics from here to K - 1, deltas of rows 0 .. deltas - 1
    int wideFrom;  // rows of this width and more are summed in 32 bits
    ZimStatus (*call)(const T* src, const T* val, int width, T* dst, int dstStep, int height, int flags,
                      int scaleFactor);

    bool aurora() const { return radius == auroraWindow; }
    int srcWidth(int width) const { return aurora() ? 14 : width; }
    int rowLength(int width) const { return (order + 1) * width; }
    // How many rows behind the static a result of a kind is complete.
    int reach(int kind) const { return aurora() ? radius : kind * radius; }
};

constexpr int never = std::numeric_limits<int>::max();

#define DELTA(T, name, radius, order, context, firstStatic, deltas, wideFrom, ...)                              \
    Member<T>                                                                                                   \
    {                                                                                                           \
#name, radius, order, false, context, firstStatic, deltas, wideFrom,                                          \
            [](const T* src, const T* val, int width, T* dst, int dstStep, int height, int flags, int scaleFactor) {  \
                (void)val, (void)width, (void)scaleFactor;                                                            \
                return name(src, __VA_ARGS__);                                                                        \
            } \
    }
#define DELTA_MUL(T, name, radius, order, context, firstStatic, deltas, wideFrom, ...)                          \
    Member<T>                                                                                                   \
    {                                                                                                           \
#name, radius, order, true, context, firstStatic, deltas, wideFrom,                                           \
            [](const T* src, const T* val, int width, T* dst, int dstStep, int height, int flags, int scaleFactor) {  \
                (void)width, (void)scaleFactor;                                                                       \
                return name(src, val, __VA_ARGS__);                                                                   \
            } \
    }
#define FOR_ORDER_1 width, dst, dstStep, height, val[0], flags
#define FOR_ORDER_2 width, dst, dstStep, height, val[0], val[1], flags
#define FOR_COLUMNS width, dst, dstStep, height, flags
#define FOR_AURORA dst, dstStep, height, flags

const std::vector<Member<Zim32f>> members_32f = {
    DELTA(Zim32f, zimsDelta_Win1_32f_D2, 1, 1, 2, 0, 0, never, FOR_ORDER_1),
    DELTA(Zim32f, zimsDelta_Win2_32f_D2, 2, 1, 4, 0, 0, never, FOR_ORDER_1),
    DELTA(Zim32f, zimsDeltaDelta_Win1_32f_D2, 1, 2, 3, 1, 2, never, FOR_ORDER_2),
    DELTA(Zim32f, zimsDeltaDelta_Win2_32f_D2, 2, 2, 6, 2, 4, never, FOR_ORDER_2),
    DELTA_MUL(Zim32f, zimsDeltaMul_Win1_32f_D2, 1, 1, 2, 0, 0, never, FOR_COLUMNS),
    DELTA_MUL(Zim32f, zimsDeltaMul_Win2_32f_D2, 2, 1, 4, 0, 0, never, FOR_COLUMNS),
    DELTA_MUL(Zim32f, zimsDeltaDeltaMul_Win1_32f_D2, 1, 2, 3, 1, 2, never, FOR_COLUMNS),
    DELTA_MUL(Zim32f, zimsDeltaDeltaMul_Win2_32f_D2, 2, 2, 6, 2, 4, never, FOR_COLUMNS),
    DELTA(Zim32f, zimsDeltaDelta_Aurora_32f_D2, 4, 2, 8, 0, 0, never, FOR_AURORA),
    DELTA_MUL(Zim32f, zimsDeltaDeltaMul_Aurora_32f_D2, 4, 2, 8, 0, 0, never, FOR_AURORA),
};

const std::vector<Member<Zim16s>> members_16s = {
    DELTA(Zim16s, zimsDelta_Win1_16s_D2Sfs, 1, 1, 2, 0, 0, never, FOR_ORDER_1, scaleFactor),
    DELTA(Zim16s, zimsDelta_Win2_16s_D2Sfs, 2, 1, 4, 0, 0, never, FOR_ORDER_1, scaleFactor),
    DELTA(Zim16s, zimsDeltaDelta_Win1_16s_D2Sfs, 1, 2, 3, 1, 2, never, FOR_ORDER_2, scaleFactor),
    DELTA(Zim16s, zimsDeltaDelta_Win2_16s_D2Sfs, 2, 2, 6, 2, 4, 14, FOR_ORDER_2, scaleFactor),
    DELTA_MUL(Zim16s, zimsDeltaMul_Win1_16s_D2Sfs, 1, 1, 2, 0, 0, never, FOR_COLUMNS, scaleFactor),
    DELTA_MUL(Zim16s, zimsDeltaMul_Win2_16s_D2Sfs, 2, 1, 4, 0, 0, never, FOR_COLUMNS, scaleFactor),
    DELTA_MUL(Zim16s, zimsDeltaDeltaMul_Win1_16s_D2Sfs, 1, 2, 3, 1, 2, never, FOR_COLUMNS, scaleFactor),
    DELTA_MUL(Zim16s, zimsDeltaDeltaMul_Win2_16s_D2Sfs, 2, 2, 6, 2, 4, 1, FOR_COLUMNS, scaleFactor),
    DELTA(Zim16s, zimsDeltaDelta_Aurora_16s_D2Sfs, 4, 2, 8, 0, 0, never, FOR_AURORA, scaleFactor),
    DELTA_MUL(Zim16s, zimsDeltaDeltaMul_Aurora_16s_D2Sfs, 4, 2, 8, 0, 0, never, FOR_AURORA, scaleFactor),
};

template <class T>
const std::vector<Member<T>>& members()
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return members_32f;
    else
        return members_16s;
}

// ---- The reference: one element at a time, as the formulas are written

long long limited(long long v)
{
    return std::clamp<long long>(v, -32768, 32767);
}

// A product scaled by 2^-scaleFactor without rounding, then limited.
Zim16s scaled(long long product, long long scaleFactor)
{
    if (scaleFactor >= 0)
        return static_cast<Zim16s>(limited(product >> std::min(scaleFactor, 63LL)));
    // Beyond 16 doublings nothing but 0 stays within the limits, and the product has less than 48 bits.
    const long double value =
        std::ldexp(static_cast<long double>(product), static_cast<int>(std::min(-scaleFactor, 16LL)));
    return static_cast<Zim16s>(std::clamp(value, -32768.0L, 32767.0L));
}

// Frames t - 4 .. t + 4 of one column.
template <class T>
struct Around {
    T x[9];
    T operator[](int k) const { return x[k + 4]; }
};

Zim32f regression(const Around<Zim32f>& x, int radius, bool, Zim32f val, int)
{
    Zim32f sum = x[1] - x[-1];
    if (radius == 2) {
        const Zim32f e = x[2] - x[-2];
        sum = (sum + e) + e;
    }
    return sum * val;
}

Zim16s regression(const Around<Zim16s>& x, int radius, bool wide, Zim16s val, int scaleFactor)
{
    const auto sat = [wide](long long v) { return wide ? v : limited(v); };
    long long sum = sat(x[1] - x[-1]);
    if (radius == 2) {
        const long long e = sat(x[2] - x[-2]);
        sum = sat(sum + sat(e + e));
    }
    return scaled(sum * val, scaleFactor);
}

const Zim32f auroraTaps[3][9] = {
    {},
    {-1.0f, -0.75f, -0.5f, -0.25f, -0.0f, 0.25f, 0.5f, 0.75f, 1.0f},
    {1.0f, 0.25f, -0.285714f, -0.607143f, -0.714286f, -0.607143f, -0.285714f, 0.25f, 1.0f}};

template <class T>
Zim32f auroraSum(const Around<T>& x, int kind)
{
    Zim32f sum = 0.0f;
    for (int k = -4; k <= 4; ++k)
        sum = sum + static_cast<Zim32f>(x[k]) * auroraTaps[kind][k + 4];
    return sum;
}

Zim32f aurora(const Around<Zim32f>& x, int kind, Zim32f val, int)
{
    return auroraSum(x, kind) * val;
}

Zim16s aurora(const Around<Zim16s>& x, int kind, Zim16s val, long long scaleFactor)
{
    if (kind == 1) {
        long long sum = 0;
        for (int k = -4; k <= 4; ++k)
            sum += k * x[k];
        return scaled(val * sum, std::max(scaleFactor + 2, 0LL));
    }
    return scaled(static_cast<long long>(static_cast<Zim32f>(val) * auroraSum(x, 2)), std::max(scaleFactor, 0LL));
}

template <class T>
Zim32f auroraEnergy(const T* frame)
{
    return static_cast<Zim32f>(frame[12]) * 0.6f / 23.0f + static_cast<Zim32f>(frame[13]) * 0.4f;
}

Zim32f staticOf(const Member<Zim32f>& m, const Zim32f* frame, int column, Zim32f val, int)
{
    const Zim32f value = m.aurora() && column == 12 ? auroraEnergy(frame) : frame[column];
    return m.mul ? value * val : value;
}

Zim16s staticOf(const Member<Zim16s>& m, const Zim16s* frame, int column, Zim16s val, int scaleFactor)
{
    const Zim16s factor = m.mul ? val : Zim16s{1};
    if (m.aurora())
        return scaled(column == 12 ? static_cast<long long>(static_cast<Zim32f>(factor) * auroraEnergy(frame))
                                   : static_cast<long long>(frame[column]) * factor,
                      std::max(scaleFactor, 0));
    return m.mul ? scaled(static_cast<long long>(frame[column]) * val, scaleFactor) : frame[column];
}

// The features of a whole utterance, row by row without gaps.
template <class T>
std::vector<T> features(const Member<T>& m, const std::vector<T>& src, const std::vector<T>& val, int frames, int width,
                        int scaleFactor)
{
    const int row = m.rowLength(width);
    std::vector<T> all(static_cast<std::size_t>(frames) * row);
    const auto at = [&](int t, int column) -> T& { return all[std::clamp(t, 0, frames - 1) * row + column]; };
    for (int t = 0; t < frames; ++t)
        for (int c = 0; c < width; ++c)
            at(t, c) = staticOf(m, &src[t * m.srcWidth(width)], c, val[c], scaleFactor);
    for (int kind = 1; kind <= m.order; ++kind)
        for (int t = 0; t < frames; ++t)
            for (int c = 0; c < width; ++c) {
                const T factor = m.mul ? val[kind * width + c] : m.aurora() ? T{1} : val[kind - 1];
                const int source = m.aurora() ? c : (kind - 1) * width + c;
                Around<T> x;
                for (int k = -4; k <= 4; ++k)
                    x.x[k + 4] = at(t + k, source);
                at(t, kind * width + c) = m.aurora()
                                              ? aurora(x, kind, factor, scaleFactor)
                                              : regression(x, m.radius, width >= m.wideFrom, factor, scaleFactor);
            }
    return all;
}

// ---- Streaming

// What stands where a call must neither read nor write.
template <class T>
T untouched()
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return std::bit_cast<Zim32f>(0x7FC5A5A5u);
    else
        return static_cast<T>(0x5AA5);
}

// Equal in every bit, those of a NaN included.
template <class T>
testing::AssertionResult identical(const std::vector<T>& left, const std::vector<T>& right, int step)
{
    for (std::size_t i = 0; i < left.size(); ++i)
        if (bitsOf(left[i]) != bitsOf(right[i]))
            return testing::AssertionFailure()
                   << "row " << i / step << ", column " << i % step << ": " << +left[i] << " and " << +right[i];
    return testing::AssertionSuccess();
}

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
        const int base = begins ? 0 : seen - m_.context;
        const int rows = seen + height - base, step = m_.rowLength(width_) + gap;
        const auto row = m_.rowLength(width_), srcWidth = m_.srcWidth(width_);
        std::vector<T> before(static_cast<std::size_t>(rows - 1) * step + row, untouched<T>());
        const auto put = [&](std::vector<T>& matrix, int kind, int firstRow, int endRow) {
            for (int t = firstRow; t < endRow; ++t)
                std::copy_n(&wanted_[t * row + kind * width_], width_, &matrix[(t - base) * step + kind * width_]);
        };
        if (!begins) {
            put(before, 0, base + m_.firstStatic, seen);
            put(before, 1, base, base + m_.deltas);
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
std::vector<T> randomValues(Random& random, std::size_t count)
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return random.vector<Zim32f>(count, -10, 10);
    else
        return random.any<Zim16s>(count);
}

// Ends of the range and small numbers, mixed with any.
std::vector<Zim16s> extremes(Random& random, std::size_t count)
{
    constexpr Zim16s chosen[] = {-32768, -32767, -16384, -2, -1, 0, 1, 2, 16384, 32766, 32767};
    std::vector<Zim16s> values = random.any<Zim16s>(count);
    for (Zim16s& value : values)
        if (random.between(0, 3) != 0)
            value = chosen[random.between(0, 10)];
    return values;
}

template <class T>
class Streaming : public testing::Test {
protected:
    // Calls run(member, feeder of an utterance) for a width; the distributed front end has one only.
    template <class Run>
    void forEachMember(int width, int framesBeyondContext, int scaleFactor, Run run)
    {
        for (const Member<T>& m : members<T>()) {
            const int memberWidth = m.aurora() ? 13 : width;
            const int frames = m.context + framesBeyondContext;
            const auto src = randomValues<T>(random_, static_cast<std::size_t>(frames) * m.srcWidth(memberWidth));
            const auto val = randomValues<T>(random_, static_cast<std::size_t>(m.rowLength(memberWidth)));
            Feeder<T> feeder(m, src, val, frames, memberWidth, scaleFactor);
            ASSERT_NO_FATAL_FAILURE(run(m, feeder, frames)) << m.name;
        }
    }

    Random random_{33};
};
using Elements = testing::Types<Zim32f, Zim16s>;
TYPED_TEST_SUITE(Streaming, Elements);

TYPED_TEST(Streaming, EverySplitGivesTheFeaturesOfTheWholeUtterance)
{
    constexpr int beyond = 5;
    for (int width : {5, 17})
        this->forEachMember(width, beyond, 9, [&](const auto& m, auto& feeder, int) {
            for (unsigned cuts = 0; cuts < 1u << (beyond + 1); ++cuts) {
                std::vector<int> blocks = {m.context};
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
                ASSERT_NO_FATAL_FAILURE(
                    feeder.feed({m.context + 2, frames - m.context - 2}, gap, atOffset(offset * sizeof(TypeParam))));
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
                const int frames = m.context + 30;
                const auto src = extremes(random, static_cast<std::size_t>(frames) * m.srcWidth(width));
                const auto val = extremes(random, static_cast<std::size_t>(m.rowLength(width)));
                Feeder<Zim16s> feeder(m, src, val, frames, width, factor);
                ASSERT_NO_FATAL_FAILURE(feeder.feed({frames}, 0, {}));
            }
}

TEST(Streaming16s, TheWideSumIsSeenOnlyFromWidth14)
{
    // x[2] - x[-2] is 40000: limited to 32767, or not.
    for (int width : {13, 14}) {
        std::vector<Zim16s> src(static_cast<std::size_t>(6 * width), -20000);
        std::fill_n(&src[4 * width], width, Zim16s{20000});
        std::vector<Zim16s> dst(static_cast<std::size_t>(6 * 3 * width));
        ASSERT_EQ(zimsDeltaDelta_Win2_16s_D2Sfs(src.data(), width, dst.data(), 3 * width, 6, 1, 1, 3, 2), zimStsOk);
        for (int c = 0; c < width; ++c)
            EXPECT_EQ(dst[2 * 3 * width + width + c], width < 14 ? 32767 >> 2 : 80000 >> 2);
    }
}

TEST(Streaming16s, TheProductIsScaledInFullWidthAndThenLimited)
{
    const Zim16s src[] = {32767, 0, -32768, -32768, 10000, 10000};
    Zim16s dst[12];
    ASSERT_EQ(zimsDelta_Win1_16s_D2Sfs(src, 1, dst, 2, 6, 1, 3, 0), zimStsOk);
    EXPECT_EQ(dst[3], -32768);
    EXPECT_EQ(dst[7], 32767);
    // 20000 and 1 << 30, doubled.
    const Zim16s small[] = {0, 20000}, large[] = {0, -32768};
    ASSERT_EQ(zimsDelta_Win1_16s_D2Sfs(small, 1, dst, 2, 2, 1, 3, -1), zimStsOk);
    EXPECT_EQ(dst[1], 32767);
    ASSERT_EQ(zimsDelta_Win1_16s_D2Sfs(large, 1, dst, 2, 2, -32768, 3, -1), zimStsOk);
    EXPECT_EQ(dst[1], 32767);
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

TEST(Streaming32f, ConstantInputHasNoDynamics)
{
    for (const Member<Zim32f>& m : members_32f) {
        const int width = 13, frames = 20, row = m.rowLength(width);
        const std::vector<Zim32f> src(static_cast<std::size_t>(frames * m.srcWidth(width)), 7.5f),
            val(static_cast<std::size_t>(row), 1.0f);
        std::vector<Zim32f> dst(static_cast<std::size_t>(frames * row));
        ASSERT_EQ(m.call(src.data(), val.data(), width, dst.data(), row, frames, 3, 0), zimStsOk);
        for (int i = 0; i < frames * row; ++i)
            if (i % row >= width) {
                EXPECT_NEAR(dst[i], 0, m.aurora() ? 1e-5 : 0) << m.name;
            }
    }
}

TEST(Streaming32f, InfinitiesAndNaNsStayInTheirColumns)
{
    for (const Member<Zim32f>& m : members_32f) {
        const int width = 13, frames = 20, row = m.rowLength(width);
        Random random(35);
        auto src = random.vector<Zim32f>(static_cast<std::size_t>(frames * m.srcWidth(width)), -1, 1);
        src[9 * m.srcWidth(width) + 3] = INFINITY;
        src[11 * m.srcWidth(width) + 7] = NAN;
        const std::vector<Zim32f> val(static_cast<std::size_t>(row), 0.5f);
        std::vector<Zim32f> dst(static_cast<std::size_t>(frames * row));
        ASSERT_EQ(m.call(src.data(), val.data(), width, dst.data(), row, frames, 3, 0), zimStsOk);
        EXPECT_TRUE(equalBits(dst, features(m, src, val, frames, width, 0))) << m.name;
    }
}

// ---- The whole utterance in place

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
        std::vector<T> before(static_cast<std::size_t>(height - 1) * step + offset + 2 * width, untouched<T>());
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
                const auto statics = randomValues<TypeParam>(this->random_, static_cast<std::size_t>(height * width));
                const auto val = randomValues<TypeParam>(this->random_, static_cast<std::size_t>(2 * width));
                const Placement placement =
                    middle == 1 ? atOffset(static_cast<std::size_t>(width % 8) * sizeof(TypeParam)) : Placement{};
                ASSERT_NO_FATAL_FAILURE(
                    this->expectDeltas(statics, val, height, width, winSize % 3, winSize, middle % 4, 17, placement));
            }
}

TYPED_TEST(Evaluation, LongUtterances)
{
    for (int width : {1, 39, 500}) {
        const int height = 700;
        const auto statics = randomValues<TypeParam>(this->random_, static_cast<std::size_t>(height * width));
        const auto val = randomValues<TypeParam>(this->random_, static_cast<std::size_t>(2 * width));
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
            const auto statics = extremes(random, static_cast<std::size_t>(height * width));
            const auto val = extremes(random, static_cast<std::size_t>(2 * width));
            ASSERT_NO_FATAL_FAILURE(fixture.expectDeltas(statics, val, height, width, 0, winSize, 0, factor, {}));
        }
    std::vector<Zim16s> statics(800, -32768);
    std::fill_n(&statics[400], 400, Zim16s{32767});
    ASSERT_NO_FATAL_FAILURE(fixture.expectDeltas(statics, {3, -5}, 800, 1, 0, 400, 0, 17, {}));
}

// ---- Copies

template <class T>
ZimStatus copyColumn(const T* src, int width, T* dst, int dstStep, int height)
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return zimsCopyColumn_32f_D2(src, width, dst, dstStep, height);
    else
        return zimsCopyColumn_16s_D2(src, width, dst, dstStep, height);
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
                auto values = randomValues<T>(random, static_cast<std::size_t>(height * width));
                if constexpr (std::is_same_v<T, Zim32f>)
                    values[0] = std::bit_cast<Zim32f>(0x7F812345u);  // a signalling NaN
                std::vector<T> before(static_cast<std::size_t>((height - 1) * step + width), untouched<T>()),
                    after = before;
                for (int r = 0; r < height; ++r)
                    std::copy_n(&values[r * width], width, &after[r * step]);
                for (const Placement& placement : {Placement{}, atOffset(offset * sizeof(T))}) {
                    const Guarded<T> src(values, placement), dst(before, placement);
                    ASSERT_EQ(copyColumn<T>(src, width, dst, step, height), zimStsOk);
                    ASSERT_TRUE(identical(dst.values(), after, step)) << width << ' ' << gap;
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
        const int width = m.aurora() ? 13 : 4, row = m.rowLength(width), K = m.context;
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

TYPED_TEST(Statuses, EvaluationChecksInTheirOrder)
{
    using T = TypeParam;
    T* const dst = this->dst_.data();
    const T* const val = this->src_.data();
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
}

TYPED_TEST(Statuses, CopyChecksInTheirOrder)
{
    using T = TypeParam;
    const T* const src = this->src_.data();
    T* const dst = this->dst_.data();
    expectStatuses({
        {"null src", copyColumn<T>(nullptr, 0, dst, -1, 0), zimStsNullPointer},
        {"null dst", copyColumn<T>(src, 0, nullptr, -1, 0), zimStsNullPointer},
        {"height", copyColumn<T>(src, 3, dst, 2, 0), zimStsBadSize},
        {"width", copyColumn<T>(src, 0, dst, -1, 2), zimStsBadSize},
        {"stride", copyColumn<T>(src, 3, dst, 2, 2), zimStsBadStride},
    });
}

TEST(Aliases, ForwardTheirArguments)
{
    const int width = 5, height = 12, row = 3 * width;
    const auto src = Random(39).vector<Zim32f>(static_cast<std::size_t>(width * height), -1, 1);
    const auto expectSame = [&](auto member, auto alias, auto... arguments) {
        std::vector<Zim32f> ofMember(static_cast<std::size_t>(row * height)), ofAlias = ofMember;
        EXPECT_EQ(member(src.data(), width, ofMember.data(), row, height, arguments...), zimStsOk);
        EXPECT_EQ(alias(src.data(), width, ofAlias.data(), row, height, arguments...), zimStsOk);
        EXPECT_TRUE(equalBits(ofMember, ofAlias));
        EXPECT_EQ(alias(src.data(), width, ofAlias.data(), width - 1, height, arguments...), zimStsBadStride);
    };
    expectSame(zimsDelta_Win1_32f_D2, zimsDeltaW1_32f_D2, 0.3f, 3);
    expectSame(zimsDelta_Win2_32f_D2, zimsDeltaW2_32f_D2, 0.3f, 3);
    expectSame(zimsDeltaDelta_Win1_32f_D2, zimsDeltaDeltaW1_32f_D2, 0.3f, 0.7f, 3);
    expectSame(zimsDeltaDelta_Win2_32f_D2, zimsDeltaDeltaW2_32f_D2, 0.3f, 0.7f, 3);
    expectSame(zimsCopyColumn_32f_D2, zimsCopyCol_32f_D2);
}

}  // namespace
}  // namespace zimsr::test
