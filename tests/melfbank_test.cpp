// Mel filter banks: edges and weights against the formulas in long double, evaluation against plain sums.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include <zimsr.h>

#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

// The two bank types under one set of names.
struct Float {
    using State = ZimsFBankState_32f;
    static constexpr auto mel = zimsMelFBankInitAlloc_32f;
    static constexpr auto mixed = zimsMelLinFBankInitAlloc_32f;
    static constexpr auto empty = zimsEmptyFBankInitAlloc_32f;
    static constexpr auto lowAurora = zimsMelFBankInitAllocLow_Aurora_32f;
    static constexpr auto highAurora = zimsMelFBankInitAllocHigh_Aurora_32f;
    static constexpr auto getCenters = zimsFBankGetCenters_32f;
    static constexpr auto setCenters = zimsFBankSetCenters_32f;
    static constexpr auto getCoeffs = zimsFBankGetCoeffs_32f;
    static constexpr auto setCoeffs = zimsFBankSetCoeffs_32f;
    static constexpr auto free = zimsFBankFree_32f;

    // Formulas in double, where differences of mel values cancel, and one rounding.
    static testing::AssertionResult isWeight(float actual, long double exact)
    {
        if (ulpError(actual, exact) <= 0.501L || std::fabs(actual - exact) < 1e-11L)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << actual << " for " << exact;
    }
};

struct Fixed {
    using State = ZimsFBankState_16s;
    static constexpr auto mel = zimsMelFBankInitAlloc_16s;
    static constexpr auto mixed = zimsMelLinFBankInitAlloc_16s;
    static constexpr auto empty = zimsEmptyFBankInitAlloc_16s;
    static constexpr auto lowAurora = zimsMelFBankInitAllocLow_Aurora_16s;
    static constexpr auto highAurora = zimsMelFBankInitAllocHigh_Aurora_16s;
    static constexpr auto getCenters = zimsFBankGetCenters_16s;
    static constexpr auto setCenters = zimsFBankSetCenters_16s;
    static constexpr auto getCoeffs = zimsFBankGetCoeffs_16s;
    static constexpr auto setCoeffs = zimsFBankSetCoeffs_16s;
    static constexpr auto free = zimsFBankFree_16s;

    // Q14, truncated toward zero.
    static testing::AssertionResult isWeight(float actual, long double exact)
    {
        if (actual == std::trunc(exact * 16384) / 16384)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << actual * 16384 << " for " << exact * 16384;
    }
};

// A bank made by one builder, released with the test's grip on it.
template <class Type>
class Bank {
public:
    template <class Builder, class... Argument>
    explicit Bank(Builder build, Argument... arguments)
    {
        EXPECT_EQ(build(&state_, arguments...), zimStsOk);
    }
    ~Bank()
    {
        EXPECT_EQ(Type::free(state_), zimStsOk);
        zimsFree(state_);
    }
    Bank(const Bank&) = delete;
    Bank& operator=(const Bank&) = delete;

    operator typename Type::State *() const { return state_; }

private:
    typename Type::State* state_ = nullptr;
};

template <class Type>
std::vector<int> edgesOf(const Bank<Type>& bank, int nFilter)
{
    const Guarded<Zim32s> centers(static_cast<std::size_t>(nFilter) + 2);
    EXPECT_EQ(Type::getCenters(bank, centers), zimStsOk);
    return std::vector<int>(centers.begin(), centers.end());
}

// Filter i as its weights over the bins c[i-1] .. c[i+1].
template <class Type>
std::vector<float> filterOf(const Bank<Type>& bank, const std::vector<int>& c, int i)
{
    const std::size_t place = static_cast<std::size_t>(i);
    const Guarded<float> weights(static_cast<std::size_t>(c[place + 1] - c[place - 1]) + 1);
    EXPECT_EQ(Type::getCoeffs(bank, i, weights), zimStsOk);
    return weights.values();
}

template <class Type>
class Banks : public testing::Test {
};
using BankTypes = testing::Types<Float, Fixed>;
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

Real binSlope(const std::vector<int>& c, std::size_t i, int k)
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

TYPED_TEST(Banks, MelBankFollowsItsFormulas)
{
    for (const MelCase& is : melCases)
        for (const int slopes : {ZimFBankMelSlopes, ZimFBankBinSlopes}) {
            int order;
            const Bank<TypeParam> bank(TypeParam::mel, &order, is.frameLen, is.rate, is.low, is.high, is.nFilter,
                                       is.melMul, is.melDiv, slopes);
            const MelScale scale{is.melMul, is.melDiv, is.rate, fftLenFor(is.frameLen)};
            ASSERT_EQ(1 << order, scale.fftLen);
            const std::size_t edgeCount = static_cast<std::size_t>(is.nFilter) + 2;
            std::vector<int> c(edgeCount);
            std::vector<float> g(edgeCount);
            const Real melLow = scale.mel(is.low);
            const float melSpan = static_cast<float>(scale.mel(is.high) - melLow);
            for (std::size_t i = 0; i < edgeCount; ++i) {
                g[i] = static_cast<float>(i * static_cast<Real>(melSpan) / static_cast<float>(is.nFilter + 1) + melLow);
                c[i] = scale.edge(static_cast<float>(scale.binOfMel(g[i])), slopes);
            }
            ASSERT_EQ(edgesOf(bank, is.nFilter), c) << is.frameLen << ' ' << slopes;
            for (std::size_t i = 1; i + 1 < edgeCount; ++i) {
                const auto weights = filterOf(bank, c, static_cast<int>(i));
                for (int k = c[i - 1]; k <= c[i + 1]; ++k) {
                    const Real exact = slopes == ZimFBankBinSlopes ? binSlope(c, i, k)
                                       : k == c[i - 1]             ? 0
                                       : k <= c[i]                 ? (scale.melOfBin(k) - g[i - 1]) / (g[i] - g[i - 1])
                                                                   : (g[i + 1] - scale.melOfBin(k)) / (g[i + 1] - g[i]);
                    ASSERT_TRUE(TypeParam::isWeight(weights[static_cast<std::size_t>(k - c[i - 1])], exact))
                        << is.frameLen << " slopes " << slopes << " filter " << i << " bin " << k;
                }
            }
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
            ASSERT_EQ(edgesOf(bank, is.nFilter), c) << is.frameLen << ' ' << slopes;
            for (std::size_t i = 1; i + 1 < c.size(); ++i) {
                const auto weights = filterOf(bank, c, static_cast<int>(i));
                for (int k = c[i - 1]; k <= c[i + 1]; ++k) {
                    const Real from = k <= c[i] ? mels[i - 1] : mels[i + 1];
                    Real exact = (scale.melOfBin(k) - from) / (mels[i] - from);
                    if (slopes == ZimFBankBinSlopes || static_cast<int>(i) > is.nLinear)
                        exact = binSlope(c, i, k);
                    else if (mels[i] == from)
                        exact = 0;
                    ASSERT_TRUE(
                        TypeParam::isWeight(weights[static_cast<std::size_t>(k - c[i - 1])], std::max(exact, Real{0})))
                        << is.frameLen << " slopes " << slopes << " filter " << i << " bin " << k;
                }
            }
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
std::vector<Real> auroraTriangle(const std::vector<int>& c, std::size_t i)
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
    for (std::size_t i = 2; i <= 25; ++i) {
        auto exact = auroraTriangle<TypeParam>(c, i);
        Real sum = 0;
        for (const Real weight : exact)
            sum += weight;
        const auto weights = filterOf(bank, c, static_cast<int>(i));
        for (std::size_t j = 0; j < weights.size(); ++j) {
            // The single-precision triangle is rounded before and after the division.
            if (std::is_same_v<TypeParam, Float>)
                EXPECT_LE(ulpError(weights[j], exact[j] / sum), 1.6L) << i << ' ' << j;
            else
                EXPECT_TRUE(TypeParam::isWeight(weights[j], exact[j] / sum)) << i << ' ' << j;
        }
    }
    EXPECT_EQ(filterOf(bank, c, 26), std::vector<float>{0});
    EXPECT_EQ(TypeParam::getCoeffs(bank, 27, nullptr), zimStsNullPointer);
    float none[200];
    EXPECT_EQ(TypeParam::getCoeffs(bank, 27, none), zimStsBadSize);
    EXPECT_EQ(TypeParam::setCoeffs(bank, 26, none), zimStsBadSize);
}

TYPED_TEST(Banks, HighAuroraBank)
{
    const Bank<TypeParam> bank(TypeParam::highAurora);
    const auto c = auroraEdges(1.1142857074737549f, 4, 5);
    ASSERT_EQ(edgesOf(bank, 3), c);
    for (std::size_t i = 1; i <= 3; ++i) {
        const auto exact = auroraTriangle<TypeParam>(c, i);
        const auto weights = filterOf(bank, c, static_cast<int>(i));
        for (std::size_t j = 0; j < weights.size(); ++j)
            EXPECT_TRUE(TypeParam::isWeight(weights[j], exact[j])) << i << ' ' << j;
    }
    float none[200];
    EXPECT_EQ(TypeParam::getCoeffs(bank, 4, none), zimStsBadSize);
}

// ---- Hand-filled banks

// Edges with narrow, wide and empty slopes.
const std::vector<std::vector<int>> edgeTables = {
    {0, 1, 3, 3, 12, 12, 12, 21, 40, 64}, {0, 0, 0},   {64, 64, 64},
    {5, 13, 21, 30, 39, 47, 54},          {0, 64, 64}, {3, 3, 35, 36},
    {0, 9, 9, 25, 26, 34, 35, 50},
};

int filtersOf(const std::vector<int>& c)
{
    return static_cast<int>(c.size()) - 2;
}

TYPED_TEST(Banks, EmptyBankTakesCentresThenCoefficients)
{
    for (const auto& c : edgeTables) {
        int order;
        const Bank<TypeParam> bank(TypeParam::empty, &order, 128, filtersOf(c), 0);
        std::vector<int> out(c.size());
        std::vector<float> weights(200);
        expectStatuses(
            {{"centres not set", TypeParam::getCenters(bank, out.data()), zimStsFBankNoCoeffs},
             {"coefficients not set", TypeParam::getCoeffs(bank, 1, weights.data()), zimStsFBankNoCoeffs},
             {"coefficients before centres", TypeParam::setCoeffs(bank, 1, weights.data()), zimStsFBankNoCoeffs},
             {"centres", TypeParam::setCenters(bank, Guarded<int>(c)), zimStsOk},
             {"filter 0", TypeParam::getCoeffs(bank, 0, weights.data()), zimStsBadSize},
             {"one filter more", TypeParam::getCoeffs(bank, filtersOf(c) + 1, weights.data()), zimStsBadSize},
             {"filter 0", TypeParam::setCoeffs(bank, 0, weights.data()), zimStsBadSize},
             {"one filter more", TypeParam::setCoeffs(bank, filtersOf(c) + 1, weights.data()), zimStsBadSize}});
        EXPECT_EQ(edgesOf(bank, filtersOf(c)), c);
        Random random(1);
        for (int i = 1; i <= filtersOf(c); ++i) {
            const auto before = filterOf(bank, c, i);
            EXPECT_EQ(before, std::vector<float>(before.size(), 0.0f));
        }
        std::vector<std::vector<float>> filters;
        for (int i = 1; i <= filtersOf(c); ++i) {
            const std::size_t place = static_cast<std::size_t>(i);
            filters.push_back(random.vector<float>(static_cast<std::size_t>(c[place + 1] - c[place - 1] + 1), -2, 2));
            for (float& weight : filters.back())
                weight = std::trunc(weight * 16384) / 16384;
            ASSERT_EQ(TypeParam::setCoeffs(bank, i, Guarded<float>(filters.back())), zimStsOk);
        }
        for (int i = 1; i <= filtersOf(c); ++i)
            EXPECT_EQ(filterOf(bank, c, i), filters[static_cast<std::size_t>(i) - 1]);
    }
}

TYPED_TEST(Banks, InvalidCentresAreRefusedAndChangeNothing)
{
    int order;
    const Bank<TypeParam> bank(TypeParam::empty, &order, 16, 3, 0);
    for (const auto& c : std::vector<std::vector<int>>{
             {-1, 0, 1, 2, 3}, {0, 2, 1, 3, 4}, {1, 0, 2, 3, 4}, {0, 1, 2, 4, 3}, {0, 1, 2, 3, 9}, {9, 9, 9, 9, 9}}) {
        EXPECT_EQ(TypeParam::setCenters(bank, c.data()), zimStsFBankNoCoeffs);
        EXPECT_EQ(TypeParam::getCenters(bank, std::vector<int>(5).data()), zimStsFBankNoCoeffs);
    }
    const std::vector<int> valid = {0, 1, 5, 5, 8};
    EXPECT_EQ(TypeParam::setCenters(bank, valid.data()), zimStsOk);
    EXPECT_EQ(TypeParam::setCenters(bank, std::vector<int>{0, 1, 5, 5, 9}.data()), zimStsFBankNoCoeffs);
    EXPECT_EQ(edgesOf(bank, 3), valid);
}

TEST(FixedBank, CoefficientsAreLimitedAndTruncated)
{
    int order;
    const Bank<Fixed> bank(Fixed::empty, &order, 16, 1, 0);
    ASSERT_EQ(Fixed::setCenters(bank, std::vector<int>{0, 3, 7}.data()), zimStsOk);
    const std::vector<float> values = {1.99999f, -1.99999f, 131072, -131072, 131071.99f, INFINITY, -INFINITY, NAN};
    ASSERT_EQ(Fixed::setCoeffs(bank, 1, values.data()), zimStsOk);
    const std::vector<float> stored = {32767 / 16384.0f, -32767 / 16384.0f, 131072, -131072, 131071.99f,
                                       131072,           -131072,           -131072};
    EXPECT_EQ(filterOf(bank, {0, 3, 7}, 1), stored);
    // The limit is 0x7FFFFFFF, which a float shows as 2^31: times 2 it wraps to -2.
    Zim32s sum;
    const std::vector<Zim16s> spectrum = {0, 0, 2, 0, 0, 0, 0, 0};
    ASSERT_EQ(zimsEvalFBank_16s32s_Sfs(spectrum.data(), &sum, bank, -14), zimStsOk);
    EXPECT_EQ(sum, -2);
}

// ---- Evaluation

// A hand-filled bank with the weights that it holds.
template <class Type, class Weight>
struct FilledBank {
    explicit FilledBank(const std::vector<int>& edges, Random& random, float range)
        : c(edges), bank(Type::empty, &order, 128, filtersOf(edges), 0)
    {
        EXPECT_EQ(Type::setCenters(bank, c.data()), zimStsOk);
        for (int i = 1; i <= filtersOf(c); ++i) {
            const std::size_t place = static_cast<std::size_t>(i);
            const auto values =
                random.vector<float>(static_cast<std::size_t>(c[place + 1] - c[place - 1] + 1), -range, range);
            EXPECT_EQ(Type::setCoeffs(bank, i, values.data()), zimStsOk);
            filters.emplace_back();
            for (const float value : values)
                filters.back().push_back(static_cast<Weight>(std::is_integral_v<Weight> ? value * 16384 : value));
        }
    }

    std::vector<int> c;
    int order;
    Bank<Type> bank;
    std::vector<std::vector<Weight>> filters;
};

TEST(FloatBank, EvaluationIsTheWeightedSum)
{
    Random random(1);
    for (const auto& c : edgeTables) {
        const FilledBank<Float, float> filled(c, random, 2);
        const auto spectrum = random.vector<float>(static_cast<std::size_t>(c.back()) + 1, -100, 100);
        const Guarded<float> src(spectrum), dst(filled.filters.size());
        ASSERT_EQ(zimsEvalFBank_32f(src, dst, filled.bank), zimStsOk);
        for (std::size_t i = 0; i < dst.size(); ++i) {
            Real exact = 0, size = 0;
            for (std::size_t j = 0; j < filled.filters[i].size(); ++j) {
                const Real product =
                    static_cast<Real>(filled.filters[i][j]) * spectrum[static_cast<std::size_t>(c[i]) + j];
                exact += product;
                size += std::fabs(product);
            }
            EXPECT_LE(std::fabs(dst[i] - exact), size * 0x1p-21L) << i;
        }
        for (std::size_t offset = 4; offset < 64; offset += 4) {
            const Guarded<float> shiftedSrc(spectrum, atOffset(offset)), shiftedDst(dst.size(), atOffset(offset));
            ASSERT_EQ(zimsEvalFBank_32f(shiftedSrc, shiftedDst, filled.bank), zimStsOk);
            EXPECT_TRUE(equalBits(shiftedDst, dst));
        }
    }
}

TEST(FloatBank, ABinReachesTheFiltersThatCoverItAndNoOther)
{
    Random random(2);
    for (const auto& c : edgeTables) {
        const FilledBank<Float, float> filled(c, random, 2);
        for (int bin = 0; bin <= 64; ++bin) {
            std::vector<float> spectrum(65, 1.0f);
            spectrum[static_cast<std::size_t>(bin)] = NAN;
            const Guarded<float> dst(filled.filters.size());
            ASSERT_EQ(zimsEvalFBank_32f(spectrum.data(), dst, filled.bank), zimStsOk);
            for (std::size_t i = 0; i < dst.size(); ++i)
                EXPECT_EQ(std::isnan(dst[i]), c[i] <= bin && bin <= c[i + 2]) << "filter " << i + 1 << " bin " << bin;
        }
    }
}

// floor(sum * 2^-shift), limited to the result's range.
template <class Result>
Result shifted(Zim64s sum, long long shift)
{
    const Real scaled =
        std::floor(std::ldexp(static_cast<Real>(sum), static_cast<int>(-std::clamp(shift, -200LL, 200LL))));
    return static_cast<Result>(
        std::clamp<Real>(scaled, std::numeric_limits<Result>::min(), std::numeric_limits<Result>::max()));
}

template <class Weight, class Bin>
Zim64s wrappedSum(const std::vector<Weight>& weights, const Bin* bins)
{
    Zim64s sum = 0;
    for (std::size_t j = 0; j < weights.size(); ++j)
        sum += static_cast<Zim32s>(static_cast<Zim32u>(weights[j]) * static_cast<Zim32u>(static_cast<Zim32s>(bins[j])));
    return sum;
}

TEST(FixedBank, EvaluationIsExactWithWrappingProducts)
{
    Random random(3);
    for (const auto& c : edgeTables)
        for (const float range : {1.0f, 131071.0f}) {
            const FilledBank<Fixed, Zim32s> filled(c, random, range);
            const Guarded<Zim16s> src(random.any<Zim16s>(static_cast<std::size_t>(c.back()) + 1));
            for (const int scaleFactor : {0,  1,   5,   17,  18,  48,  49,  50,  51,    1000,   INT_MAX,
                                          -1, -13, -14, -15, -30, -45, -50, -78, -1000, INT_MIN}) {
                const long long shift = 14LL + scaleFactor;
                const Guarded<Zim16s> narrow(filled.filters.size());
                const Guarded<Zim32s> wide(filled.filters.size());
                ASSERT_EQ(zimsEvalFBank_16s_Sfs(src, narrow, filled.bank, scaleFactor), zimStsOk);
                ASSERT_EQ(zimsEvalFBank_16s32s_Sfs(src, wide, filled.bank, scaleFactor), zimStsOk);
                for (std::size_t i = 0; i < wide.size(); ++i) {
                    const Zim64s sum = wrappedSum(filled.filters[i], src.data() + c[i]);
                    EXPECT_EQ(narrow[i], shifted<Zim16s>(sum, shift)) << sum << ' ' << scaleFactor;
                    EXPECT_EQ(wide[i], shifted<Zim32s>(sum, shift)) << sum << ' ' << scaleFactor;
                }
            }
        }
}

constexpr int frameLengths[] = {1, 2, 4, 8, 16, 32, 60, 400, 1024};

TEST(FloatBank, FrameInputIsTransformMagnitudeAndEvaluation)
{
    Random random(4);
    for (const int frameLen : frameLengths) {
        int order;
        const Bank<Float> bank(Float::mel, &order, frameLen, 8000.0f, 50.0f, 4000.0f, 7, 1127.0f, 700.0f,
                               ZimFBankBinSlopes | ZimFBankFrameInput);
        const Bank<Float> plain(Float::mel, &order, frameLen, 8000.0f, 50.0f, 4000.0f, 7, 1127.0f, 700.0f,
                                ZimFBankBinSlopes);
        const int fftLen = 1 << order;
        const Guarded<float> frame(random.vector<float>(static_cast<std::size_t>(fftLen), -1000, 1000));
        ZimsFFTPlan_R_32f* plan;
        ASSERT_EQ(zimsFFTInitAlloc_R_32f(&plan, order, 8, 0), zimStsOk);
        std::vector<Zim32fc> spectrum(static_cast<std::size_t>(fftLen) / 2 + 1);
        ASSERT_EQ(zimsFFTFwd_RToCCS_32f(frame, &spectrum[0].re, plan, nullptr), zimStsOk);
        zimsFFTFree_R_32f(plan);
        std::vector<float> magnitude(spectrum.size());
        ASSERT_EQ(zimsMagnitude_32fc(spectrum.data(), magnitude.data(), fftLen / 2 + 1), zimStsOk);
        const Guarded<float> expected(7), dst(7);
        ASSERT_EQ(zimsEvalFBank_32f(magnitude.data(), expected, plain), zimStsOk);
        // Twice: nothing of a frame stays behind.
        for (int run = 0; run < 2; ++run) {
            ASSERT_EQ(zimsEvalFBank_32f(frame, dst, bank), zimStsOk);
            EXPECT_TRUE(equalBits(dst, expected)) << frameLen;
        }
    }
}

TEST(FixedBank, FrameInputIsTransformMagnitudeAndEvaluation)
{
    Random random(5);
    for (const int frameLen : frameLengths) {
        int order;
        const Bank<Fixed> bank(Fixed::mel, &order, frameLen, 8000.0f, 50.0f, 4000.0f, 7, 1127.0f, 700.0f,
                               ZimFBankMelSlopes | ZimFBankFrameInput);
        const int fftLen = 1 << order;
        const Guarded<Zim16s> frame(random.vector<Zim16s>(static_cast<std::size_t>(fftLen), -9000, 9000));
        ZimsFFTPlan_R_16s32s* plan;
        ASSERT_EQ(zimsFFTInitAlloc_R_16s32s(&plan, order, 8, 0), zimStsOk);
        std::vector<Zim32sc> spectrum(static_cast<std::size_t>(fftLen) / 2 + 1);
        ASSERT_EQ(zimsFFTFwd_RToCCS_16s32s_Sfs(frame, &spectrum[0].re, plan, -3, nullptr), zimStsOk);
        zimsFFTFree_R_16s32s(plan);
        std::vector<Zim32s> magnitude(spectrum.size());
        ASSERT_EQ(zimsMagnitude_32sc_Sfs(spectrum.data(), magnitude.data(), fftLen / 2 + 1, -3), zimStsOk);
        const auto c = edgesOf(bank, 7);
        const Guarded<Zim32s> wide(7);
        const Guarded<Zim16s> narrow(7);
        ASSERT_EQ(zimsEvalFBank_16s32s_Sfs(frame, wide, bank, 2), zimStsOk);
        ASSERT_EQ(zimsEvalFBank_16s_Sfs(frame, narrow, bank, 2), zimStsOk);
        for (std::size_t i = 0; i < 7; ++i) {
            std::vector<Zim32s> weights;
            for (const float weight : filterOf(bank, c, static_cast<int>(i) + 1))
                weights.push_back(static_cast<Zim32s>(weight * 16384));
            const Zim64s sum = wrappedSum(weights, magnitude.data() + c[i]);
            EXPECT_EQ(wide[i], shifted<Zim32s>(sum, 14 + 6 + 2)) << frameLen;
            EXPECT_EQ(narrow[i], shifted<Zim16s>(sum, 14 + 6 + 2)) << frameLen;
        }
    }
}

TEST(FloatBank, AnEmptyBankNeverTransforms)
{
    int order;
    const Bank<Float> bank(Float::empty, &order, 16, 1, ZimFBankFrameInput);
    ASSERT_EQ(Float::setCenters(bank, std::vector<int>{1, 2, 3}.data()), zimStsOk);
    ASSERT_EQ(Float::setCoeffs(bank, 1, std::vector<float>{1, 10, 100}.data()), zimStsOk);
    float energy;
    ASSERT_EQ(zimsEvalFBank_32f(Guarded<float>{7, 1, 2, 3}, &energy, bank), zimStsOk);
    EXPECT_EQ(energy, 321);
}

// ---- Statuses, memory, release

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

TEST(FloatBank, EvaluationDoesNotAllocate)
{
    int order;
    const Bank<Float> bank(Float::mel, &order, 400, 16000.0f, 50.0f, 8000.0f, 26, 1127.0f, 700.0f, 6);
    const std::vector<float> frame(512, 1.0f);
    float energies[26];
    AllocationWatch watch;
    EXPECT_EQ(zimsEvalFBank_32f(frame.data(), energies, bank), zimStsOk);
    EXPECT_EQ(watch.requests(), 0);
}

TEST(FixedBank, EvaluationFailsCleanlyWhereItAllocates)
{
    for (const int frameLen : frameLengths) {
        int order;
        const Bank<Fixed> bank(Fixed::mel, &order, frameLen, 8000.0f, 50.0f, 4000.0f, 3, 1127.0f, 700.0f, 6);
        const std::vector<Zim16s> frame(std::size_t{1} << order, 100);
        const Guarded<Zim16s> energies(3);
        const auto untouched = energies.values();
        forEachFailedAllocation([&] { return zimsEvalFBank_16s_Sfs(frame.data(), energies, bank, 0); },
                                [&](ZimStatus status, int leaked) {
                                    EXPECT_EQ(status, zimStsAllocFailed);
                                    EXPECT_EQ(leaked, 0);
                                    EXPECT_EQ(energies.values(), untouched);
                                });
    }
}

TYPED_TEST(Banks, AFreedBankIsRefused)
{
    typename TypeParam::State* state;
    int order;
    ASSERT_EQ(TypeParam::mel(&state, &order, 256, 8000, 50, 4000, 3, 1127, 700, 6), zimStsOk);
    ASSERT_EQ(TypeParam::free(state), zimStsOk);
    int centers[5] = {};
    float coeffs[129] = {};
    Zim16s shorts[256] = {};
    Zim32s ints[3];
    std::vector<StatusCase> cases = {{"again", TypeParam::free(state), zimStsOk},
                                     {"centres", TypeParam::getCenters(state, centers), zimStsNullPointer},
                                     {"centres", TypeParam::setCenters(state, centers), zimStsNullPointer},
                                     {"coefficients", TypeParam::getCoeffs(state, 1, coeffs), zimStsFBankNoCoeffs},
                                     {"coefficients", TypeParam::setCoeffs(state, 1, coeffs), zimStsFBankNoCoeffs}};
    if constexpr (std::is_same_v<TypeParam, Float>) {
        cases.push_back({"evaluation", zimsEvalFBank_32f(coeffs, coeffs, state), zimStsNullPointer});
    } else {
        cases.push_back({"evaluation", zimsEvalFBank_16s_Sfs(shorts, shorts, state, 0), zimStsNullPointer});
        cases.push_back({"evaluation", zimsEvalFBank_16s32s_Sfs(shorts, ints, state, 0), zimStsNullPointer});
    }
    expectStatuses(cases);
    zimsFree(state);
}

TYPED_TEST(Banks, NullPointersAreRefused)
{
    const Bank<TypeParam> bank(TypeParam::highAurora);
    int centers[5];
    float coeffs[129];
    expectStatuses({{"free", TypeParam::free(nullptr), zimStsNullPointer},
                    {"get centres", TypeParam::getCenters(nullptr, centers), zimStsNullPointer},
                    {"get centres", TypeParam::getCenters(bank, nullptr), zimStsNullPointer},
                    {"set centres", TypeParam::setCenters(nullptr, centers), zimStsNullPointer},
                    {"set centres", TypeParam::setCenters(bank, nullptr), zimStsNullPointer},
                    {"get coefficients", TypeParam::getCoeffs(nullptr, 0, coeffs), zimStsNullPointer},
                    {"get coefficients", TypeParam::getCoeffs(bank, 0, nullptr), zimStsNullPointer},
                    {"set coefficients", TypeParam::setCoeffs(nullptr, 0, coeffs), zimStsNullPointer},
                    {"set coefficients", TypeParam::setCoeffs(bank, 0, nullptr), zimStsNullPointer}});
}

TEST(FBank, NullPointersOfEvaluation)
{
    int order;
    const Bank<Float> floats(Float::empty, &order, 16, 3, 0);
    const Bank<Fixed> fixed(Fixed::empty, &order, 16, 3, 0);
    float f[9] = {};
    Zim16s s[9] = {};
    Zim32s i[9] = {};
    expectStatuses({{"src", zimsEvalFBank_32f(nullptr, f, floats), zimStsNullPointer},
                    {"dst", zimsEvalFBank_32f(f, nullptr, floats), zimStsNullPointer},
                    {"state", zimsEvalFBank_32f(f, f, nullptr), zimStsNullPointer},
                    {"no centres", zimsEvalFBank_32f(f, f, floats), zimStsFBankNoCoeffs},
                    {"src", zimsEvalFBank_16s_Sfs(nullptr, s, fixed, 0), zimStsNullPointer},
                    {"dst", zimsEvalFBank_16s_Sfs(s, nullptr, fixed, 0), zimStsNullPointer},
                    {"state", zimsEvalFBank_16s_Sfs(s, s, nullptr, 0), zimStsNullPointer},
                    {"no centres", zimsEvalFBank_16s_Sfs(s, s, fixed, 0), zimStsFBankNoCoeffs},
                    {"src", zimsEvalFBank_16s32s_Sfs(nullptr, i, fixed, 0), zimStsNullPointer},
                    {"dst", zimsEvalFBank_16s32s_Sfs(s, nullptr, fixed, 0), zimStsNullPointer},
                    {"state", zimsEvalFBank_16s32s_Sfs(s, i, nullptr, 0), zimStsNullPointer},
                    {"no centres", zimsEvalFBank_16s32s_Sfs(s, i, fixed, 0), zimStsFBankNoCoeffs}});
}

}  // namespace
}  // namespace zimsr::test
