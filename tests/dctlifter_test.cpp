// Cosine transform and liftering. The matrix is seen through impulses: the sum of one product and zeros is exact.
#include <gtest/gtest.h>

#include <functional>
#include <numbers>
#include <numeric>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

struct Shape {
    int lenDCT, lenCepstrum;
};

constexpr Shape shapes[] = {{1, 1},   {2, 1},   {5, 5},   {7, 3},   {8, 8},   {9, 4},    {13, 12},
                            {16, 15}, {23, 13}, {24, 12}, {26, 13}, {40, 39}, {129, 20}, {512, 6}};

// The test's grip on a state of either type: made by one builder, released with it.
template <class State>
class Lifter {
public:
    template <class Builder, class... Argument>
    explicit Lifter(Builder build, Argument... arguments)
    {
        EXPECT_EQ(build(&state_, arguments...), zimStsOk);
    }
    ~Lifter()
    {
        EXPECT_EQ(release(state_), zimStsOk);
        zimsFree(state_);
    }
    Lifter(const Lifter&) = delete;
    Lifter& operator=(const Lifter&) = delete;

    operator State*() const { return state_; }

private:
    static ZimStatus release(ZimsDCTLifterState_32f* state) { return zimsDCTLifterFree_32f(state); }
    static ZimStatus release(ZimsDCTLifterState_16s* state) { return zimsDCTLifterFree_16s(state); }

    State* state_ = nullptr;
};

using Lifter_32f = Lifter<ZimsDCTLifterState_32f>;
using Lifter_16s = Lifter<ZimsDCTLifterState_16s>;

std::vector<float> transformed(const std::vector<float>& src, ZimsDCTLifterState_32f* state, int outputs,
                               Placement placement = {})
{
    const Guarded<float> input(src, placement), output(outputs, placement);
    EXPECT_EQ(zimsDCTLifter_32f(input, output, state), zimStsOk);
    return output.values();
}

std::vector<float> impulse(int length, int place)
{
    std::vector<float> x(length, 0.0f);
    x[place] = 1;
    return x;
}

// cos(pi * i * (j + 1/2) / lenDCT) of the stated argument, which is a double.
long double cosine(int i, int j, int lenDCT)
{
    return std::cos(static_cast<long double>((j + 0.5) * (i * std::numbers::pi) / lenDCT));
}

TEST(CosineTransform, MatrixIsTheCosineSeriesWithC0Last)
{
    for (const auto [lenDCT, lenCepstrum] : shapes) {
        const std::vector<float> ones(lenCepstrum, 1.0f);
        const Lifter_32f lifter(zimsDCTLifterInitAlloc_MulC0_32f, lenDCT, ones.data(), lenCepstrum);
        for (int j = 0; j < lenDCT; ++j) {
            const auto row = transformed(impulse(lenDCT, j), lifter, lenCepstrum + 1);
            for (int i = 1; i <= lenCepstrum; ++i)
                ASSERT_LE(ulpError(row[static_cast<std::size_t>(i) - 1], cosine(i, j, lenDCT)), 0.5001L)
                    << lenDCT << ' ' << i << ' ' << j;
            ASSERT_EQ(row.back(), 1.0f);
        }
    }
}

TEST(CosineTransform, SumsAreAccurateAndDoNotDependOnPlaceOrAlignment)
{
    Random random(1);
    for (const auto [lenDCT, lenCepstrum] : shapes) {
        const auto src = random.vector<float>(lenDCT, -20, 5);
        const auto table = random.vector<float>(lenCepstrum, 0.5f, 12);
        const Lifter_32f whole(zimsDCTLifterInitAlloc_MulC0_32f, lenDCT, table.data(), lenCepstrum);
        const auto cepstra = transformed(src, whole, lenCepstrum + 1);
        // The row of C0 is all ones.
        EXPECT_EQ(cepstra.back(), std::accumulate(src.begin(), src.end(), 0.0f) * table.back());
        for (int i = 1; i <= lenCepstrum; ++i) {
            const std::size_t place = i - 1;
            const float factor = table[place];
            long double exact = 0, size = 0;
            for (int j = 0; j < lenDCT; ++j) {
                exact += src[j] * cosine(i, j, lenDCT) * factor;
                size += std::fabs(src[j] * factor);
            }
            EXPECT_LE(std::fabs(cepstra[place] - exact), size * (lenDCT / 8 + 6) * 0x1p-24L) << lenDCT << ' ' << i;
        }
        for (std::size_t offset = 0; offset < 32; offset += 4)
            EXPECT_TRUE(equalBits(transformed(src, whole, lenCepstrum + 1, atOffset(offset)), cepstra));
        // Fewer cepstra move each row between the groups of four and the rest.
        for (int fewer = 1; fewer < lenCepstrum; ++fewer) {
            const Lifter_32f part(zimsDCTLifterInitAlloc_Mul_32f, lenDCT, table.data(), fewer);
            EXPECT_TRUE(
                equalBits(transformed(src, part, fewer), std::vector(cepstra.begin(), cepstra.begin() + fewer)));
        }
    }
}

TEST(CosineTransform, SineLifter)
{
    for (const int nLifter : {1, 2, 22, 100})
        for (const float val : {1.0f, 0.27735f, -3.0f}) {
            constexpr int lenDCT = 26, lenCepstrum = 14;
            constexpr float val0 = 0.7071f;
            const std::vector<float> ones(lenCepstrum, 1.0f);
            const Lifter_32f plain(zimsDCTLifterInitAlloc_32f, lenDCT, lenCepstrum, nLifter, val);
            const Lifter_32f withC0(zimsDCTLifterInitAlloc_C0_32f, lenDCT, lenCepstrum, nLifter, val, val0);
            const Lifter_32f unlifted(zimsDCTLifterInitAlloc_MulC0_32f, lenDCT, ones.data(), lenCepstrum);
            const auto src = impulse(lenDCT, 2);
            const auto bare = transformed(src, unlifted, lenCepstrum + 1);
            const auto lifted = transformed(src, withC0, lenCepstrum + 1);
            for (int i = 1; i <= lenCepstrum; ++i) {
                const std::size_t place = i - 1;
                const long double sine = std::sin(static_cast<long double>(i * std::numbers::pi / nLifter));
                const long double factor = (1 + nLifter * 0.5L * sine) * val;
                EXPECT_LE(ulpError(lifted[place], bare[place] * factor), 2) << nLifter << ' ' << i;
            }
            EXPECT_EQ(lifted.back(), val0);
            EXPECT_TRUE(equalBits(transformed(src, plain, lenCepstrum), std::vector(lifted.begin(), lifted.end() - 1)));
        }
}

TEST(CosineTransform, SixteenBitFormsConvertTheFloatResult)
{
    Random random(2);
    for (const Shape& shape : shapes) {
        const int lenDCT = shape.lenDCT, lenCepstrum = shape.lenCepstrum;
        const auto table = random.vector<float>(lenCepstrum, -4, 4);
        const Lifter_32f reference(zimsDCTLifterInitAlloc_MulC0_32f, lenDCT, table.data(), lenCepstrum);
        const Lifter_16s mulC0(zimsDCTLifterInitAlloc_MulC0_16s, lenDCT, table.data(), lenCepstrum);
        const Lifter_16s mul(zimsDCTLifterInitAlloc_Mul_16s, lenDCT, table.data(), lenCepstrum);
        const auto shorts = random.any<Zim16s>(lenDCT);
        const auto ints = random.any<Zim32s>(lenDCT);
        const auto expectForm = [&](const auto& src, auto transform, ZimsDCTLifterState_16s* state, int outputs,
                                    int scaleFactor) {
            auto floats = transformed(std::vector<float>(src.begin(), src.end()), reference, lenCepstrum + 1);
            std::vector<Zim16s> expected(outputs);
            ASSERT_EQ(zimsConvert_32f16s_Sfs(floats.data(), expected.data(), outputs, 1, scaleFactor), zimStsOk);
            const Guarded input(src);
            const Guarded<Zim16s> output(expected.size());
            ASSERT_EQ(transform(input, output, state, scaleFactor), zimStsOk);
            EXPECT_TRUE(equalBits(output, expected)) << lenDCT << ' ' << scaleFactor;
        };
        for (const int scaleFactor : {-2, 0, 1, 6, 20}) {
            expectForm(shorts, zimsDCTLifter_16s_Sfs, mulC0, lenCepstrum + 1, scaleFactor);
            expectForm(shorts, zimsDCTLifter_16s_Sfs, mul, lenCepstrum, scaleFactor);
            expectForm(ints, zimsDCTLifter_32s16s_Sfs, mulC0, lenCepstrum + 1, scaleFactor);
        }
    }
}

TEST(CosineTransform, SixteenBitSineLifterIsTheFloatOne)
{
    const Lifter_32f floats(zimsDCTLifterInitAlloc_C0_32f, 24, 12, 22, 0.25f, 0.5f);
    const Lifter_16s shorts(zimsDCTLifterInitAlloc_C0_16s, 24, 12, 22, 0.25f, 0.5f);
    const Lifter_16s plain(zimsDCTLifterInitAlloc_16s, 24, 12, 22, 0.25f);
    const auto src = Random(3).vector<Zim16s>(24, -2000, 2000);
    const auto exact = transformed(std::vector<float>(src.begin(), src.end()), floats, 13);
    const Guarded<Zim16s> withC0(13), without(12);
    ASSERT_EQ(zimsDCTLifter_16s_Sfs(src.data(), withC0, shorts, 0), zimStsOk);
    ASSERT_EQ(zimsDCTLifter_16s_Sfs(src.data(), without, plain, 0), zimStsOk);
    for (std::size_t i = 0; i < 13; ++i)
        EXPECT_EQ(withC0[i], std::clamp(std::nearbyint(exact[i]), -32768.0f, 32767.0f));
    EXPECT_TRUE(equalBits(without, std::vector(withC0.begin(), withC0.end() - 1)));
}

TEST(CosineTransform, BufferOfThePromisedSizeIsEnoughAtEveryBase)
{
    Random random(4);
    for (int lenDCT = 1; lenDCT <= 34; ++lenDCT)
        for (int lenCepstrum = 1; lenCepstrum <= lenDCT; ++lenCepstrum) {
            int size;
            ASSERT_EQ(zimsDCTLifterGetSize_MulC0_16s(lenDCT, lenCepstrum, &size), zimStsOk);
            ASSERT_EQ(size, 8 * lenCepstrum + 100 + (4 * lenCepstrum + 4) + 32 * (lenCepstrum + 1) +
                                (4 * lenCepstrum + 4) * lenDCT + 32);
            const auto table = random.vector<Zim32s>(lenCepstrum, -3, 3);
            const std::vector<float> floatTable(table.begin(), table.end());
            const Lifter_16s heap(zimsDCTLifterInitAlloc_MulC0_16s, lenDCT, floatTable.data(), lenCepstrum);
            const auto src = random.vector<Zim16s>(lenDCT, -3000, 3000);
            std::vector<Zim16s> expected(lenCepstrum + 1);
            ASSERT_EQ(zimsDCTLifter_16s_Sfs(src.data(), expected.data(), heap, 1), zimStsOk);
            for (std::size_t offset = 0; offset < 32; offset += 4) {
                const GuardedBlock buffer(size, atOffset(offset));
                auto* state = static_cast<ZimsDCTLifterState_16s*>(buffer.data());
                ASSERT_EQ(zimsDCTLifterInit_MulC0_16s(state, lenDCT, table.data(), lenCepstrum), zimStsOk);
                std::vector<Zim16s> dst(expected.size());
                ASSERT_EQ(zimsDCTLifter_16s_Sfs(src.data(), dst.data(), state, 1), zimStsOk);
                ASSERT_TRUE(equalBits(dst, expected)) << lenDCT << ' ' << lenCepstrum << ' ' << offset;
            }
        }
}

TEST(CosineTransform, Checks)
{
    const std::vector<float> table(4, 1.0f);
    const std::vector<Zim32s> intTable(4, 1);
    ZimsDCTLifterState_32f* floats = nullptr;
    ZimsDCTLifterState_16s* shorts = nullptr;
    const auto sine = [&](auto build, auto** state, auto... val0) {
        expectNullsFirst(build, state, 0, 0, 0, 1.0f, val0...);
        expectStatuses({{"lenDCT", build(state, 0, 0, 22, 1.0f, val0...), zimStsBadSize},
                        {"lenCepstrum", build(state, 4, 0, 22, 1.0f, val0...), zimStsBadSize},
                        {"nLifter", build(state, 4, 4, 0, 1.0f, val0...), zimStsBadSize},
                        {"more cepstra than inputs", build(state, 4, 5, 22, 1.0f, val0...), zimStsBadSize},
                        {"beyond memory", build(state, INT_MAX, INT_MAX, 22, 1.0f, val0...), zimStsAllocFailed}});
        // One row has 2^32 bytes, which wider pointers could hold.
        if constexpr (sizeof(void*) == 4) {
            EXPECT_EQ(build(state, 1 << 30, 1, 22, 1.0f, val0...), zimStsAllocFailed);
        }
    };
    sine(zimsDCTLifterInitAlloc_32f, &floats);
    sine(zimsDCTLifterInitAlloc_16s, &shorts);
    sine(zimsDCTLifterInitAlloc_C0_32f, &floats, 1.0f);
    sine(zimsDCTLifterInitAlloc_C0_16s, &shorts, 1.0f);
    const auto fromTable = [&](auto build, auto* state, auto* values) {
        expectNullsFirst(build, state, 0, values, 0);
        expectStatuses({{"lenDCT", build(state, 0, values, 0), zimStsBadSize},
                        {"lenCepstrum", build(state, 4, values, 0), zimStsBadSize},
                        {"more cepstra than inputs", build(state, 3, values, 4), zimStsBadSize}});
    };
    fromTable(zimsDCTLifterInitAlloc_Mul_32f, &floats, table.data());
    fromTable(zimsDCTLifterInitAlloc_Mul_16s, &shorts, table.data());
    fromTable(zimsDCTLifterInitAlloc_MulC0_32f, &floats, table.data());
    fromTable(zimsDCTLifterInitAlloc_MulC0_16s, &shorts, table.data());
    Guarded<Zim32s> buffer(8);
    fromTable(zimsDCTLifterInit_MulC0_16s, reinterpret_cast<ZimsDCTLifterState_16s*>(buffer.data()), intTable.data());
    EXPECT_EQ(buffer[0], static_cast<Zim32s>(0xA5A5A5A5)) << "a refused call wrote";

    int size = 0;
    expectStatuses({{"size", zimsDCTLifterGetSize_MulC0_16s(0, 0, nullptr), zimStsNullPointer},
                    {"lenDCT", zimsDCTLifterGetSize_MulC0_16s(0, 1, &size), zimStsBadSize},
                    {"lenCepstrum", zimsDCTLifterGetSize_MulC0_16s(1, 0, &size), zimStsBadSize},
                    {"more cepstra than inputs", zimsDCTLifterGetSize_MulC0_16s(3, 4, &size), zimStsBadSize},
                    {"too long", zimsDCTLifterGetSize_MulC0_16s(8193, 4, &size), zimStsBadSize},
                    {"longest", zimsDCTLifterGetSize_MulC0_16s(8192, 8192, &size), zimStsOk},
                    {"free 32f", zimsDCTLifterFree_32f(nullptr), zimStsNullPointer},
                    {"free 16s", zimsDCTLifterFree_16s(nullptr), zimStsNullPointer}});

    const Lifter_32f lifter(zimsDCTLifterInitAlloc_32f, 1, 1, 22, 1.0f);
    const Lifter_16s lifter16(zimsDCTLifterInitAlloc_16s, 1, 1, 22, 1.0f);
    float x = 1;
    Zim16s x16 = 1;
    Zim32s x32 = 1;
    ZimsDCTLifterState_16s* const state16 = lifter16;
    expectNullsFirst(zimsDCTLifter_32f, &x, &x, static_cast<ZimsDCTLifterState_32f*>(lifter));
    expectNullsFirst(zimsDCTLifter_16s_Sfs, &x16, &x16, state16, 0);
    expectNullsFirst(zimsDCTLifter_32s16s_Sfs, &x32, &x16, state16, 0);
}

// Every request of a builder failing in turn, until it runs through and its state is given back.
template <class State, class Build, class Release>
void expectBuilderFailsCleanly(int requests, Build build, Release release)
{
    State* state = nullptr;
    const auto call = [&] {
        state = reinterpret_cast<State*>(&state);
        const ZimStatus status = build(&state);
        if (status == zimStsOk) {
            release(state);
            zimsFree(state);
        } else {
            EXPECT_EQ(state, nullptr);
        }
        return status;
    };
    EXPECT_EQ(expectCleanFailure(call, zimStsAllocFailed), requests);
}

TEST(CosineTransform, FailedAllocationsLeaveNothingBehind)
{
    const std::vector<float> table(12, 1.0f);
    expectBuilderFailsCleanly<ZimsDCTLifterState_32f>(
        3, [](auto** state) { return zimsDCTLifterInitAlloc_C0_32f(state, 24, 12, 22, 1.0f, 1.0f); },
        zimsDCTLifterFree_32f);
    expectBuilderFailsCleanly<ZimsDCTLifterState_16s>(
        4, [](auto** state) { return zimsDCTLifterInitAlloc_16s(state, 24, 12, 22, 1.0f); }, zimsDCTLifterFree_16s);
    expectBuilderFailsCleanly<ZimsDCTLifterState_32f>(
        3, [&](auto** state) { return zimsDCTLifterInitAlloc_Mul_32f(state, 24, table.data(), 12); },
        zimsDCTLifterFree_32f);
    expectBuilderFailsCleanly<ZimsDCTLifterState_16s>(
        4, [&](auto** state) { return zimsDCTLifterInitAlloc_MulC0_16s(state, 24, table.data(), 12); },
        zimsDCTLifterFree_16s);
}

}  // namespace
}  // namespace zimsr::test
