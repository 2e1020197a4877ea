// Filter banks in use: filled by hand, evaluated against plain sums, and given back.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/filter_banks.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

using Real = long double;

template <class Type>
class Banks : public testing::Test {
};
TYPED_TEST_SUITE(Banks, BankTypes);

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
            filters.push_back(random.vector<float>(c[i + 1] - c[i - 1] + 1, -2, 2));
            for (float& weight : filters.back())
                weight = std::trunc(weight * 16384) / 16384;
            ASSERT_EQ(TypeParam::setCoeffs(bank, i, Guarded<float>(filters.back())), zimStsOk);
        }
        for (int i = 1; i <= filtersOf(c); ++i)
            EXPECT_EQ(filterOf(bank, c, i), filters[i - 1]);
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
            const auto values = random.vector<float>(c[i + 1] - c[i - 1] + 1, -range, range);
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
        const auto spectrum = random.vector<float>(c.back() + 1, -100, 100);
        const Guarded<float> src(spectrum), dst(filled.filters.size());
        ASSERT_EQ(zimsEvalFBank_32f(src, dst, filled.bank), zimStsOk);
        for (std::size_t i = 0; i < dst.size(); ++i) {
            Real exact = 0, size = 0;
            for (std::size_t j = 0; j < filled.filters[i].size(); ++j) {
                const Real product = static_cast<Real>(filled.filters[i][j]) * spectrum[c[i] + j];
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
            spectrum[bin] = NAN;
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
            const Guarded<Zim16s> src(random.any<Zim16s>(c.back() + 1));
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
        const Guarded<float> frame(random.vector<float>(fftLen, -1000, 1000));
        ZimsFFTPlan_R_32f* plan;
        ASSERT_EQ(zimsFFTInitAlloc_R_32f(&plan, order, 8, 0), zimStsOk);
        std::vector<Zim32fc> spectrum(fftLen / 2 + 1);
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
        const Guarded<Zim16s> frame(random.vector<Zim16s>(fftLen, -9000, 9000));
        ZimsFFTPlan_R_16s32s* plan;
        ASSERT_EQ(zimsFFTInitAlloc_R_16s32s(&plan, order, 8, 0), zimStsOk);
        std::vector<Zim32sc> spectrum(fftLen / 2 + 1);
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

// ---- Memory, release, checks

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
                                     {"centres", TypeParam::getCenters(state, centers), zimStsFBankNoCoeffs},
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

TYPED_TEST(Banks, PointersAreCheckedFirst)
{
    int order, centers[5] = {};
    float coeffs[129] = {};
    const Bank<TypeParam> bank(TypeParam::empty, &order, 16, 3, 0);
    typename TypeParam::State* const state = bank;
    expectNullsFirst(TypeParam::free, state);
    expectNullsFirst(TypeParam::getCenters, state, centers);
    expectNullsFirst(TypeParam::setCenters, state, centers);
    expectNullsFirst(TypeParam::getCoeffs, state, 0, coeffs);
    expectNullsFirst(TypeParam::setCoeffs, state, 0, coeffs);
    Zim16s s[9] = {};
    Zim32s i[9] = {};
    if constexpr (std::is_same_v<TypeParam, Float>) {
        expectNullsFirst(zimsEvalFBank_32f, coeffs, coeffs, state);
        EXPECT_EQ(zimsEvalFBank_32f(coeffs, coeffs, state), zimStsFBankNoCoeffs) << "no centres";
    } else {
        expectNullsFirst(zimsEvalFBank_16s_Sfs, s, s, state, 0);
        expectNullsFirst(zimsEvalFBank_16s32s_Sfs, s, i, state, 0);
        EXPECT_EQ(zimsEvalFBank_16s_Sfs(s, s, state, 0), zimStsFBankNoCoeffs) << "no centres";
        EXPECT_EQ(zimsEvalFBank_16s32s_Sfs(s, i, state, 0), zimStsFBankNoCoeffs) << "no centres";
    }
}

}  // namespace
}  // namespace zimsr::test
