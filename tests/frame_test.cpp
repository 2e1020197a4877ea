// The frame: version, special values, scale tables, the integer rule, vectors, allocation, which library is loaded.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <stdlib.h>

#include <cmath>
#include <cstring>
#include <filesystem>

#include <zimsr.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/random.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"

namespace zimsr::test {
namespace {

TEST(Frame, TheLevelUnderTestIsTheOneLoaded)
{
    Dl_info loaded;
    ASSERT_NE(dladdr(reinterpret_cast<const void*>(&zimsrGetLibVersion), &loaded), 0);
    if (const char* expected = getenv("ZIMSR_EXPECTED_LIBRARY")) {
        EXPECT_TRUE(std::filesystem::equivalent(std::filesystem::path(loaded.dli_fname).parent_path(), expected))
            << loaded.dli_fname;
    }
}

TEST(Frame, Version)
{
    const ZimVersion* version = zimsrGetLibVersion();
    EXPECT_EQ(version->major, 4);
    EXPECT_EQ(version->minor, 1);
    EXPECT_EQ(version->majorBuild, 12);
    EXPECT_EQ(version->build, 5);
    EXPECT_EQ(std::memcmp(version->targetTag, "l3\0\0", 4), 0);
    EXPECT_STREQ(version->name, "libzimsr.so");
    EXPECT_STREQ(version->version, "v4.1");
    EXPECT_STREQ(version->buildDate, "Jul 23 2004");
}

TEST(Frame, SpecialValues)
{
    EXPECT_EQ(bitsOf(zimConstantOfNAN_32f), 0xFFC00000u);
    EXPECT_EQ(bitsOf(zimConstantOfINF_32f), 0x7F800000u);
    EXPECT_EQ(bitsOf(zimConstantOfINF_NEG_32f), 0xFF800000u);
    EXPECT_EQ(bitsOf(zimConstantOfNAN_64f), 0xFFF8000000000000u);
    EXPECT_EQ(bitsOf(zimConstantOfINF_64f), 0x7FF0000000000000u);
    EXPECT_EQ(bitsOf(zimConstantOfINF_NEG_64f), 0xFFF0000000000000u);
}

TEST(Scaling, ScalesAreExactPowersOfTwoWithinTheirLimits)
{
    for (int factor = -140; factor <= 160; ++factor) {
        const float wanted = factor <= -128 ? INFINITY : factor >= 150 ? 0.0f : std::ldexp(1.0f, -factor);
        EXPECT_EQ(GetScale_32s32f(factor), wanted) << factor;
    }
    for (int factor = -1040; factor <= 1100; ++factor) {
        const double wanted = factor <= -1024 ? INFINITY : std::ldexp(1.0, -factor);
        EXPECT_EQ(GetScale_32s64f(factor), wanted) << factor;
    }
    EXPECT_EQ(GetScale_32s32f(INT_MIN), INFINITY);
    EXPECT_EQ(GetScale_32s64f(INT_MIN), INFINITY);
    EXPECT_EQ(GetScale_32s32f(INT_MAX), 0.0f);
    EXPECT_EQ(GetScale_32s64f(INT_MAX), 0.0);
}

TEST(Scaling, ShiftRightRoundsHalfToEven)
{
    Random random(1);
    for (int factor = 1; factor <= 62; ++factor)
        for (int i = 0; i < 300; ++i) {
            // Near multiples of half a unit, where the rule decides.
            const long long half = 1LL << (factor - 1);
            const long long v = random.between<long long>(-1000, 1000) * (factor > 50 ? 1 : half) / 4 +
                                random.between<long long>(-2, 2);
            const long double exact = std::ldexp(static_cast<long double>(v), -factor);
            EXPECT_EQ(shiftRightHalfEven(v, factor), static_cast<long long>(std::nearbyint(exact)))
                << v << ' ' << factor;
        }
    EXPECT_EQ(shiftRightHalfEven(5, 1), 2);
    EXPECT_EQ(shiftRightHalfEven(7, 1), 4);
    EXPECT_EQ(shiftRightHalfEven(-5, 1), -2);
}

TEST(Scaling, ShiftLeftSaturatesAndKeepsTheSign)
{
    EXPECT_EQ(shiftLeftSaturate<Zim16s>(3, 2), 12);
    EXPECT_EQ(shiftLeftSaturate<Zim16s>(20000, 1), 32767);
    EXPECT_EQ(shiftLeftSaturate<Zim16s>(-20000, 1), -32768);
    EXPECT_EQ(shiftLeftSaturate<Zim16s>(-1LL << 62, 15), -32768);
    EXPECT_EQ(shiftLeftSaturate<Zim16s>(0, 60), 0);
    EXPECT_EQ(shiftLeftSaturate<Zim32s>(-1, 31), INT32_MIN);
    EXPECT_EQ(shiftLeftSaturate<Zim32s>(1, 40), INT32_MAX);
}

TEST(Memory, BlocksAreAlignedAndGivenBack)
{
    EXPECT_EQ(zimsMalloc_8u(0), nullptr);
    EXPECT_EQ(zimsMalloc_64f(-1), nullptr);
    zimsFree(nullptr);
    AllocationWatch watch;
    for (int len : {1, 7, 1000}) {
        void* blocks[] = {zimsMalloc_8u(len), zimsMalloc_16s(len), zimsMalloc_32s(len), zimsMalloc_32f(len),
                          zimsMalloc_64f(len)};
        std::memset(blocks[4], 1, static_cast<std::size_t>(len) * sizeof(Zim64f));
        for (void* block : blocks) {
            EXPECT_NE(block, nullptr);
            EXPECT_TRUE(allAligned(32, block));
            zimsFree(block);
        }
    }
    EXPECT_EQ(watch.requests(), 15);
    EXPECT_EQ(watch.live(), 0);
}

TEST(Memory, AFailedRequestGivesNull)
{
    AllocationWatch watch(1);
    EXPECT_EQ(zimsMalloc_32f(10), nullptr);
}

}  // namespace
}  // namespace zimsr::test
