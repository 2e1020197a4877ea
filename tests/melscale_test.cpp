// The mel scale against its formulas in long double, and frames filled up with zeros.
#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

using Real = long double;

TEST(MelScale, ConversionsFollowTheirFormulas)
{
    Random random(6);
    constexpr float melMul = 1127.01048f, melDiv = 700;
    const Real perMul = static_cast<Real>(1 / static_cast<double>(melMul)),
               perDiv = static_cast<Real>(1 / static_cast<double>(melDiv));
    for (std::size_t len = 1; len <= 13; ++len) {
        const Guarded<float> frequencies(random.vector<float>(len, 0, 8000)), mels(len), back(len);
        ASSERT_EQ(zimsLinearToMel_32f(frequencies, mels, static_cast<int>(len), melMul, melDiv), zimStsOk);
        ASSERT_EQ(zimsMelToLinear_32f(mels, back, static_cast<int>(len), melMul, melDiv), zimStsOk);
        for (std::size_t i = 0; i < len; ++i) {
            EXPECT_LE(ulpError(mels[i], std::log(frequencies[i] * perDiv + 1) * melMul), 0.501L) << frequencies[i];
            EXPECT_LE(ulpError(back[i], (std::exp(mels[i] * perMul) - 1) * melDiv), 0.501L) << mels[i];
        }
        const Guarded<float> inPlace(frequencies.values());
        ASSERT_EQ(zimsLinearToMel_32f(inPlace, inPlace, static_cast<int>(len), melMul, melDiv), zimStsOk);
        EXPECT_TRUE(equalBits(inPlace, mels));
    }
}

TEST(MelScale, Checks)
{
    float x = 1, y;
    for (const auto convert : {zimsMelToLinear_32f, zimsLinearToMel_32f})
        expectStatuses({{"src", convert(nullptr, &y, 0, 0, 0), zimStsNullPointer},
                        {"dst", convert(&x, nullptr, 0, 0, 0), zimStsNullPointer},
                        {"len", convert(&x, &y, 0, 1, 1), zimStsBadSize},
                        {"melMul", convert(&x, &y, 1, 0, 1), zimStsBadSize},
                        {"melMul is NaN", convert(&x, &y, 1, NAN, 1), zimStsBadSize},
                        {"melDiv", convert(&x, &y, 1, 1, -1), zimStsBadSize}});
}

template <class T>
void expectPadding(ZimStatus (*pad)(const T*, int, T*, int))
{
    Random random(7);
    for (const int srcLen : {1, 2, 31, 400})
        for (const int more : {0, 1, 17, 112}) {
            auto values = random.vector<T>(static_cast<std::size_t>(srcLen), -100, 100);
            const Guarded<T> src(values), dst(values.size() + static_cast<std::size_t>(more));
            ASSERT_EQ(pad(src, srcLen, dst, srcLen + more), zimStsOk);
            values.resize(dst.size(), 0);
            EXPECT_TRUE(equalBits(dst, values));
        }
    T x{}, y{};
    expectStatuses({{"src", pad(nullptr, 0, &y, 0), zimStsNullPointer},
                    {"dst", pad(&x, 0, nullptr, 0), zimStsNullPointer},
                    {"srcLen", pad(&x, 0, &y, 1), zimStsBadSize},
                    {"dstLen", pad(&x, 1, &y, 0), zimStsBadSize},
                    {"too short", pad(&x, 2, &y, 1), zimStsBadSize}});
}

TEST(CopyWithPadding, CopiesAndFillsUpWithZeros)
{
    expectPadding(zimsCopyWithPadding_16s);
    expectPadding(zimsCopyWithPadding_32f);
}

}  // namespace
}  // namespace zimsr::test
