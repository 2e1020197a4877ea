// Autocorrelation: both paths against the definition in long double, placement, statuses, allocation.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

using Floats = std::vector<float>;

Floats autoCorr(const Floats& src, int dstLen, Placement placement = {})
{
    const Guarded<float> input(src, placement), output(dstLen, placement);
    EXPECT_EQ(zimsAutoCorr_32f(input, static_cast<int>(src.size()), output, dstLen), zimStsOk);
    return output.values();
}

// Every lag within relative error of the energy, which bounds every lag; exact zeros behind the last.
void expectAutoCorrelation(const Floats& src, const Floats& actual, double tolerance)
{
    long double energy = 0;
    for (float value : src)
        energy += static_cast<long double>(value) * value;
    for (std::size_t k = 0; k < actual.size(); ++k) {
        long double exact = 0;
        for (std::size_t i = 0; i + k < src.size(); ++i)
            exact += static_cast<long double>(src[i]) * src[i + k];
        if (k < src.size())
            ASSERT_NEAR(actual[k], exact, tolerance * energy) << "lag " << k << " of " << src.size();
        else
            ASSERT_EQ(bitsOf(actual[k]), 0u) << k;
    }
}

TEST(AutoCorr, FewLagsAreSummedDirectly)
{
    Random random(1);
    for (std::size_t srcLen : {1, 2, 7, 8, 9, 16, 31, 64, 100, 241, 400})
        for (int dstLen : {1, 2, 9, 11, 13, 32, 33, 64, 410}) {
            const Floats src = random.vector<float>(srcLen, -1, 1);
            const Floats result = autoCorr(src, dstLen);
            expectAutoCorrelation(src, result, 5e-7);
            for (std::size_t offset : {0, 4, 9, 20})
                EXPECT_TRUE(equalBits(autoCorr(src, dstLen, atOffset(offset)), result)) << srcLen << ' ' << dstLen;
        }
}

TEST(AutoCorr, ALagDoesNotDependOnHowManyAreAskedFor)
{
    const Floats src = Random(2).vector<float>(300, -1, 1);
    const Floats all = autoCorr(src, 300);
    for (int dstLen = 1; dstLen <= 40; ++dstLen)
        EXPECT_TRUE(equalBits(autoCorr(src, dstLen), Floats(all.begin(), all.begin() + dstLen))) << dstLen;
}

TEST(AutoCorr, BothPathsMeetAtTheThreshold)
{
    Random random(3);
    for (std::size_t srcLen : {855, 856, 857, 1024, 1025, 5000}) {
        const Floats src = random.vector<float>(srcLen, -1, 1);
        for (int dstLen : {855, 856, 900})
            expectAutoCorrelation(src, autoCorr(src, dstLen), 1e-6);
    }
    const Floats src = random.vector<float>(856, -1, 1);
    Floats dst(856);
    const auto requests = [&](int dstLen) {
        AllocationWatch watch;
        EXPECT_EQ(zimsAutoCorr_32f(src.data(), 856, dst.data(), dstLen), zimStsOk);
        EXPECT_EQ(watch.live(), 0);
        return watch.requests();
    };
    EXPECT_EQ(requests(855), 0);
    EXPECT_GT(requests(856), 0);
}

TEST(AutoCorr, Statuses)
{
    float x[4] = {};
    expectStatuses({{"null src, length 0", zimsAutoCorr_32f(nullptr, 0, x, 0), zimStsNullPointer},
                    {"null dst", zimsAutoCorr_32f(x, 4, nullptr, 4), zimStsNullPointer},
                    {"srcLen 0", zimsAutoCorr_32f(x, 0, x, 4), zimStsBadSize},
                    {"dstLen 0", zimsAutoCorr_32f(x, 4, x, 0), zimStsBadSize}});
}

// Without memory for the work buffer the transforms look for their own, so that a failure there is not the call's.
TEST(AutoCorr, AFailedAllocationLeavesNothing)
{
    const Floats src(900, 1.0f);
    Floats dst(900);
    int failures = 0;
    forEachFailedAllocation([&] { return zimsAutoCorr_32f(src.data(), 900, dst.data(), 900); },
                            [&](ZimStatus status, int leaked) {
                                failures += status == zimStsAllocFailed;
                                EXPECT_EQ(leaked, 0);
                            });
    EXPECT_GE(failures, 2);
}

}  // namespace
}  // namespace zimsr::test
