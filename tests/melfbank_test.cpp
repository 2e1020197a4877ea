// Mel filter banks as they are built: edges and weights against the formulas in long double.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <functional>
#include <numeric>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/filter_banks.h"

namespace zimsr::test {
namespace {

template <class Type>
class Banks : public testing::Test {
};
TYPED_TEST_SUITE(Banks, BankTypes);

// ---- The formulas, in long double where they are not rounded

using Real = long double;

struct MelScale {
    float melMul, melDiv, rate;
    int fftLen;

    Real mel(Real frequency) const { return std::log(1 + frequency / melDiv) * melMul; }
    Real melOfBin(int k) const
    {
        return mel(static_cast<Real>(k) * static_cast<float>(static_cast<Real>(rate) / fftLen));
    }
    Real binOfMel(Real mel) const
    {
        return (std::exp(mel / melMul) - 1) * static_cast<float>(melDiv * (static_cast<Real>(fftLen) / rate));
    }
    // In double, as it is stated: rounding decides where a frequency falls on a bin.
    Real binOfHz(double frequency) const { return frequency * (fftLen / static_cast<double>(rate)); }
    int edge(Real bin, int slopes) const
    {
        bin = std::min(bin, fftLen / 2.0L);
        return static_cast<int>(slopes == ZimFBankBinSlopes ? std::nearbyint(bin) : std::trunc(bin));
    }
};

Real binSlope(const std::vector<int>& c, int i, int k)
{
    return k <= c[i] ? (k - c[i - 1] + 1) / static_cast<Real>(c[i] - c[i - 1] + 1)
                     : (c[i + 1] + 1 - k) / static_cast<Real>(c[i + 1] - c[i] + 1);
}

struct MelCase {
    int frameLen;
    float rate, low, high;
    int nFilter;
    float melMul, melDiv;
};

constexpr MelCase melCases[] = {
    {400, 16000, 20, 8000, 26, 1127.01048f, 700},  {256, 8000, 64, 4000, 23, 2595, 700},
    {200, 8000, 133.3334f, 3500, 40, 1127, 700},   {512, 11025, 300, 5000, 24, 1000, 1000},
    {2048, 44100, 1, 22050, 64, 1127.01048f, 700}, {64, 8000, 100, 4000, 45, 1127.01048f, 700},
    {256, 8000, 500, 500, 5, 1127.01048f, 700},    {1, 8000, 1, 4000, 1, 2595, 700},
    {3, 8000, 0.001f, 3999, 2, 0.01f, 12},         {1024, 16000, 7999.5f, 8000, 3, 1127.01048f, 700},
    {256, 8000, 1000, 4000, 10, 1e-3f, 1e6f},
};

int fftLenFor(int frameLen)
{
    int fftLen = 2;
    while (fftLen < frameLen)
        fftLen *= 2;
    return fftLen;
}

// Edges, and the weights over the bins c[i-1] .. c[i+1] of each filter i.
template <class Type, class Weight>
void expectBank(const Bank<Type>& bank, const std::vector<int>& c, const char* what, Weight exact)
{
    const int nFilter = static_cast<int>(c.size()) - 2;
    ASSERT_EQ(edgesOf(bank, nFilter), c) << what;
    for (int i = 1; i <= nFilter; ++i) {
        const auto weights = filterOf(bank, c, i);
        for (int k = c[i - 1]; k <= c[i + 1]; ++k)
            ASSERT_TRUE(Type::isWeight(weights[k - c[i - 1]], exact(i, k)))
                << what << ", edge " << c.back() << ", filter " << i << " bin " << k;
    }
}

TYPED_TEST(Banks, MelBankFollowsItsFormulas)
{
    for (const MelCase& is : melCases)
        for (const int slopes : {ZimFBankMelSlopes, ZimFBankBinSlopes}) {
            int order;
            const Bank<TypeParam> bank(TypeParam::mel, &order, is.frameLen, is.rate, is.low, is.high, is.nFilter,
                                       is.melMul, is.melDiv, slopes);
            const MelScale scale{is.melMul, is.melDiv, is.rate, fftLenFor(is.frameLen)};
            ASSERT_EQ(1 << order, scale.fftLen);
            const int edgeCount = is.nFilter + 2;
            std::vector<int> c(edgeCount);
            std::vector<float> g(edgeCount);
            const Real melLow = scale.mel(is.low);
            const float melSpan = static_cast<float>(scale.mel(is.high) - melLow);
            for (int i = 0; i < edgeCount; ++i) {
                g[i] = static_cast<float>(i * static_cast<Real>(melSpan) / static_cast<float>(is.nFilter + 1) + melLow);
                c[i] = scale.edge(static_cast<float>(scale.binOfMel(g[i])), slopes);
            }
            expectBank(bank, c, slopes == ZimFBankBinSlopes ? "slopes over bins" : "slopes over mel",
                       [&](int i, int k) {
                           return slopes == ZimFBankBinSlopes ? binSlope(c, i, k)
                                  : k == c[i - 1]             ? 0
                                  : k <= c[i]                 ? (scale.melOfBin(k) - g[i - 1]) / (g[i] - g[i - 1])
                                                              : (g[i + 1] - scale.melOfBin(k)) / (g[i + 1] - g[i]);
                       });
        }
}

TYPED_TEST(Banks, MixedBankFollowsItsFormulas)
{
    struct MixedCase : MelCase {
        float linHigh;
        int nLinear;
    };
    // No upper edge in mel falls on a bin, where the last bit of a logarithm would decide.
    const MixedCase cases[] = {
        {{400, 16000, 100, 7990, 26, 1127.01048f, 700}, 1010, 10},
        {{256, 8000, 133, 4000, 20, 2595, 700}, 1000, 20},
        {{512, 16000, 200, 6855, 40, 1127, 700}, 1005, 13},
        {{128, 8000, 250, 3990, 30, 1127.01048f, 700}, 2010, 1},
        {{256, 8000, 500, 3990, 6, 1127.01048f, 700}, 500, 3},
        {{256, 8000, 500, 500, 4, 1127.01048f, 700}, 500, 4},
        {{64, 8000, 10, 3990, 50, 1127.01048f, 700}, 3010, 49},
    };
    for (const MixedCase& is : cases)
        for (const int slopes : {ZimFBankMelSlopes, ZimFBankBinSlopes}) {
            int order;
            const Bank<TypeParam> bank(TypeParam::mixed, &order, is.frameLen, is.rate, is.low, is.high, is.nFilter,
                                       is.linHigh, is.nLinear, is.melMul, is.melDiv, slopes);
            const MelScale scale{is.melMul, is.melDiv, is.rate, fftLenFor(is.frameLen)};
            ASSERT_EQ(1 << order, scale.fftLen);
            const bool allLinear = is.nLinear == is.nFilter;
            const int lastLinear = allLinear ? is.nFilter + 1 : is.nLinear - 1;
            const Real melLow = scale.mel(is.linHigh), melSpan = scale.mel(is.high) - melLow;
            std::vector<int> c;
            std::vector<Real> mels;  // of the edges, in Hz or mel as they are spaced
            for (int i = 0; i <= is.nFilter + 1; ++i) {
                const Real width = static_cast<Real>(is.linHigh) - is.low;
                const float frequency =
                    static_cast<float>(i * width / (allLinear ? is.nFilter + 1 : is.nLinear) + is.low);
                const Real mel = (i - is.nLinear) * melSpan / (is.nFilter - is.nLinear + 1) + melLow;
                c.push_back(scale.edge(i <= lastLinear ? scale.binOfHz(frequency) : scale.binOfMel(mel), slopes));
                if (i > 0)
                    c.back() = std::max(c.back(), c[c.size() - 2]);
                mels.push_back(allLinear || i <= is.nLinear ? scale.mel(frequency) : mel);
            }
            expectBank(
                bank, c, slopes == ZimFBankBinSlopes ? "slopes over bins" : "slopes over mel", [&](int i, int k) {
                    if (slopes == ZimFBankBinSlopes || i > is.nLinear)
                        return binSlope(c, i, k);
                    const Real from = k <= c[i] ? mels[i - 1] : mels[i + 1];
                    return mels[i] == from ? 0 : std::max<Real>((scale.melOfBin(k) - from) / (mels[i] - from), 0);
                });
        }
}

TYPED_TEST(Banks, TransformLengthIsThePowerOfTwoAbove)
{
    const int cases[][2] = {{1, 1}, {2, 1}, {3, 2}, {4, 2}, {5, 3}, {255, 8}, {256, 8}, {257, 9}};
    for (const auto& [frameLen, expected] : cases) {
        int order = 0;
        const Bank<TypeParam> bank(TypeParam::empty, &order, frameLen, 1, 0);
        EXPECT_EQ(order, expected) << frameLen;
    }
}

// ---- Aurora

// The edges by the formula that the constant tables stand for.
std::vector<int> auroraEdges(float lowArgument, int steps, int count)
{
    const Real melLow = std::log(static_cast<Real>(lowArgument)) * 2595;
    const float melSpan = static_cast<float>(std::log(static_cast<Real>(6.714285850524902f)) * 2595 - melLow);
    std::vector<int> c;
    for (int i = 0; i < count; ++i) {
        const float mel = static_cast<float>(i * static_cast<Real>(melSpan) / steps + melLow);
        const Real bin = (std::exp(mel / 2595.0L) - 1) * 11.2f;
        c.push_back(static_cast<int>(std::nearbyint(std::min(bin, 64.0L))));
    }
    return c;
}

// Filter i as a triangle, whose steps are formed as the bank type forms them.
template <class Type>
std::vector<Real> auroraTriangle(const std::vector<int>& c, int i)
{
    const auto formed = [](Real ratio) {
        return std::is_same_v<Type, Fixed> ? std::trunc(ratio * 16384) / 16384 : ratio;
    };
    std::vector<Real> weights;
    for (int k = c[i - 1]; k <= c[i + 1]; ++k)
        weights.push_back(k == c[i - 1]  ? 0
                          : k <= c[i]    ? formed(static_cast<Real>(k - c[i - 1]) / (c[i] - c[i - 1]))
                          : k < c[i + 1] ? 1 - formed(static_cast<Real>(k - c[i]) / (c[i + 1] - c[i]))
                                         : 0);
    return weights;
}

TYPED_TEST(Banks, LowAuroraBank)
{
    const Bank<TypeParam> bank(TypeParam::lowAurora);
    auto c = auroraEdges(1.0014286041259766f, 24, 27);
    c.insert(c.begin(), 0);
    ASSERT_EQ(edgesOf(bank, 25), std::vector(c.begin(), c.end() - 1));
    EXPECT_EQ(filterOf(bank, c, 1), (std::vector<float>{1, 0}));
    for (int i = 2; i <= 25; ++i) {
        const auto exact = auroraTriangle<TypeParam>(c, i);
        const Real sum = std::accumulate(exact.begin(), exact.end(), Real{0});
        const auto weights = filterOf(bank, c, i);
        for (std::size_t j = 0; j < weights.size(); ++j) {
            // The single-precision triangle is rounded before and after the division.
            if (std::is_same_v<TypeParam, Float>)
                EXPECT_LE(ulpError(weights[j], exact[j] / sum), 1.6L) << i << ' ' << j;
            else
                EXPECT_TRUE(TypeParam::isWeight(weights[j], exact[j] / sum)) << i << ' ' << j;
        }
    }
    EXPECT_EQ(filterOf(bank, c, 26), std::vector<float>{0});
    float none[200];
    EXPECT_EQ(TypeParam::getCoeffs(bank, 27, none), zimStsBadSize);
    EXPECT_EQ(TypeParam::setCoeffs(bank, 26, none), zimStsBadSize);
}

TYPED_TEST(Banks, HighAuroraBank)
{
    const Bank<TypeParam> bank(TypeParam::highAurora);
    const auto c = auroraEdges(1.1142857074737549f, 4, 5);
    expectBank(bank, c, "Aurora", [&](int i, int k) { return auroraTriangle<TypeParam>(c, i)[k - c[i - 1]]; });
    float none[200];
    EXPECT_EQ(TypeParam::getCoeffs(bank, 4, none), zimStsBadSize);
}

// ---- Checks and memory

TYPED_TEST(Banks, ChecksOfTheBuilders)
{
    using State = typename TypeParam::State;
    State* state;
    int order;
    const auto mel = [&](int frameLen, int nFilter, float rate, float low, float high, int flags, float melMul = 1127,
                         float melDiv = 700) {
        state = reinterpret_cast<State*>(&order);
        order = -1;
        const ZimStatus status =
            TypeParam::mel(&state, &order, frameLen, rate, low, high, nFilter, melMul, melDiv, flags);
        EXPECT_EQ(order, -1);
        return status;
    };
    const auto mixed = [&](float low, float linHigh, float high, int nLinear, int flags) {
        state = reinterpret_cast<State*>(&order);
        return TypeParam::mixed(&state, &order, 256, 8000, low, high, 10, linHigh, nLinear, 1127, 700, flags);
    };
    expectStatuses({{"state", TypeParam::mel(nullptr, &order, 0, 8000, 50, 4000, 10, 1127, 700, 2), zimStsNullPointer},
                    {"order", TypeParam::mel(&state, nullptr, 0, 8000, 50, 4000, 10, 1127, 700, 2), zimStsNullPointer},
                    {"frameLen", mel(0, 10, NAN, 50, 4000, 0), zimStsBadSize},
                    {"nFilter", mel(256, 0, 8000, 5000, 4000, 0), zimStsBadSize},
                    {"rate", mel(256, 10, NAN, 5000, 4000, 0), zimStsBadSize},
                    {"lowFreq", mel(256, 10, 8000, 0, -1, 0), zimStsBadSize},
                    {"lowFreq is NaN", mel(256, 10, 8000, NAN, 1, 0), zimStsBadSize},
                    {"low above high", mel(256, 10, 8000, 4000.1f, 4000, 0), zimStsFBankBadFlag},
                    {"highFreq is NaN", mel(256, 10, 8000, 50, NAN, 0), zimStsFBankBadFlag},
                    {"high above half the rate", mel(256, 10, 8000, 50, 4000.1f, 0), zimStsFBankBadFlag}});
    for (const int flags : {0, 3, 4, 7, 8, 9, -1, INT_MIN})
        EXPECT_EQ(mel(256, 10, 8000, 50, 4000, flags), zimStsFBankBadMode) << flags;
    EXPECT_EQ(state, reinterpret_cast<State*>(&order)) << "a refused call wrote";

    // A mel scale that gives the edges no place.
    const float scales[][2] = {{0, 700},    {NAN, 700},   {INFINITY, 700}, {1127, 0},
                               {1127, NAN}, {1127, -700}, {3e38f, 700}};
    for (const auto& [melMul, melDiv] : scales)
        for (const int flags : {1, 2}) {
            EXPECT_EQ(mel(256, 10, 8000, 50, 4000, flags, melMul, melDiv), zimStsFBankBadFlag)
                << melMul << ' ' << melDiv;
            EXPECT_EQ(state, nullptr);
        }
    EXPECT_EQ(mel((1 << 30) + 1, 10, 8000, 50, 4000, 2), zimStsAllocFailed);
    EXPECT_EQ(state, nullptr);
    EXPECT_EQ(mel(256, INT_MAX, 8000, 50, 4000, 2), zimStsAllocFailed);

    expectStatuses({{"lowFreq", mixed(0, 1000, 4000, 0, 0), zimStsBadSize},
                    {"no linear filter", mixed(50, 10, 4000, 0, 0), zimStsBadSize},
                    {"more linear filters than filters", mixed(50, 10, 4000, 11, 0), zimStsBadSize},
                    {"low above linHigh", mixed(50, 10, 4000, 5, 0), zimStsFBankBadFlag},
                    {"linHigh is NaN", mixed(50, NAN, 4000, 5, 0), zimStsFBankBadFlag},
                    {"linHigh above high", mixed(50, 2000, 1000, 5, 0), zimStsFBankBadFlag},
                    {"high above half the rate", mixed(50, 1000, 5000, 5, 0), zimStsFBankBadFlag},
                    {"flags", mixed(50, 1000, 4000, 5, 4), zimStsFBankBadMode},
                    {"empty: state", TypeParam::empty(nullptr, &order, 0, 0, 0), zimStsNullPointer},
                    {"empty: order", TypeParam::empty(&state, nullptr, 0, 0, 0), zimStsNullPointer},
                    {"empty: frameLen", TypeParam::empty(&state, &order, 0, 1, 0), zimStsBadSize},
                    {"empty: nFilter", TypeParam::empty(&state, &order, 1, 0, 0), zimStsBadSize},
                    {"empty: too long", TypeParam::empty(&state, &order, INT_MAX, 1, 0), zimStsAllocFailed},
                    {"low Aurora", TypeParam::lowAurora(nullptr), zimStsNullPointer},
                    {"high Aurora", TypeParam::highAurora(nullptr), zimStsNullPointer}});
}

TYPED_TEST(Banks, FailedAllocationsLeaveNothingBehind)
{
    using State = typename TypeParam::State;
    using Builder = std::function<ZimStatus(State**, int*)>;
    const Builder builders[] = {
        [](State** state, int* order) { return TypeParam::mel(state, order, 400, 16000, 50, 8000, 26, 1127, 700, 6); },
        [](State** state, int* order) { return TypeParam::mel(state, order, 400, 16000, 50, 8000, 80, 1127, 700, 1); },
        [](State** state, int* order) {
            return TypeParam::mixed(state, order, 400, 16000, 50, 8000, 80, 1000, 9, 1127, 700, 5);
        },
        [](State** state, int* order) { return TypeParam::empty(state, order, 400, 26, 4); },
        [](State** state, int*) { return TypeParam::lowAurora(state); },
        [](State** state, int*) { return TypeParam::highAurora(state); }};
    for (const Builder& build : builders) {
        const auto call = [&] {
            int order = -1;
            State* state = reinterpret_cast<State*>(&order);
            const ZimStatus status = build(&state, &order);
            if (status == zimStsOk) {
                TypeParam::free(state);
                zimsFree(state);
            } else {
                EXPECT_EQ(state, nullptr);
                EXPECT_EQ(order, -1);
            }
            return status;
        };
        EXPECT_GE(expectCleanFailure(call, zimStsAllocFailed), 4);
        AllocationWatch watch;
        EXPECT_EQ(call(), zimStsOk);
        EXPECT_EQ(watch.live(), 0);
    }
}

}  // namespace
}  // namespace zimsr::test
