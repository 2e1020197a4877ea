// The all-integer filter bank: its logarithm and exponential against long double, its edges and weights against their
// formulas and against the bank in floating point, its evaluation against sums in 128 bits' reach, and its block.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"
#include "zimsr/kernels/melfbank_fixed.h"

namespace zimsr::test {
namespace {

using namespace fixedbank;

constexpr Zim32s mul1127 = 36929880, div700 = 22937600;  // Q15

struct Request {
    int frameLen, sampleRate, lowFreq, highFreq, nFilter;
    Zim32s melMul = mul1127, melDiv = div700;
};

// A bank in a block of just the size that is told, in a place of the block.
struct Built {
    Guarded<char> block;
    int order = -1;
    ZimStatus status;

    explicit Built(const Request& r, Placement placement = {}) : block(sizeOf(r), placement)
    {
        status = zimsMelFBankInit_32s(state(), &order, r.frameLen, r.sampleRate, r.lowFreq, r.highFreq, r.nFilter,
                                      r.melMul, r.melDiv, 2);
    }
    static std::size_t sizeOf(const Request& r)
    {
        int size = 0;
        EXPECT_EQ(zimsMelFBankGetSize_32s(r.frameLen, r.nFilter, 2, &size), zimStsOk);
        return static_cast<std::size_t>(size);
    }
    ZimsFBankState_32s* state() const { return reinterpret_cast<ZimsFBankState_32s*>(block.data()); }
    Bank bank() const { return Bank(state()); }
};

TEST(FixedMelFBank, LogarithmAndExponential)
{
    Random random(1);
    for (int t = 0; t < 32; ++t)
        EXPECT_EQ(_ExpTable1[static_cast<unsigned>(t)],
                  std::llround(std::ldexp(std::log1p(std::ldexp(1.0L, -t - 1)), 31)));
    for (int i = 0; i < 5000; ++i) {
        const Zim64s value = random.between<Zim64s>(1, Zim64s{1} << random.between<int>(1, 61));
        for (int bits : {15, 22, 30}) {
            Zim64s ln = 0;
            EXPECT_EQ(ownNatLog(value, &ln, bits), zimStsOk);
            const long double exact = std::log(std::ldexp(static_cast<long double>(value), -bits));
            // Of the binary logarithm 31 bits are found; squaring doubles an error of the mantissa.
            EXPECT_NEAR(std::ldexp(static_cast<long double>(ln), -bits), exact, std::ldexp(1.0L, -bits) + 1e-8L)
                << value;
        }
        const Zim64s x = random.between<Zim64s>(0, 13 << 21);
        const long double exact = std::exp(std::ldexp(static_cast<long double>(x), -22));
        const long double exponential = std::ldexp(static_cast<long double>(ownFixedExp(x, 22, -22)), -22);
        // Each of 32 factors adds a unit of the last place of Q31, or two.
        EXPECT_NEAR(exponential, std::min(exact, 512.0L), std::ldexp(1.0L, -22) * (1 + exact / 12)) << x;
    }
    Zim64s ln = 7;
    EXPECT_EQ(ownNatLog(0, &ln, 22), zimStsBadArgument);
    EXPECT_EQ(ownNatLog(-1, &ln, 22), zimStsBadArgument);
    EXPECT_EQ(ln, 7);
    EXPECT_EQ(ownFixedExp(0, 22, -22), 1 << 22);
    EXPECT_EQ(ownFixedExp(Zim64s{7} << 22, 22, -22), 0x7FFFFFFF);
    EXPECT_EQ(ownFixedExp(-(Zim64s{100} << 22), 22, -22), 0);
}

// Banks of every kind: edges in order and within the spectrum, rows as the formula has them, zeros behind them.
TEST(FixedMelFBank, EdgesAndWeights)
{
    Random random(2);
    int built = 0;
    for (int trial = 0; trial < 1500; ++trial) {
        Request r{random.between<int>(32, 1 << random.between<int>(6, 13)), random.between<int>(1, 48000), 0, 0, 1};
        r.highFreq = random.between<int>(1, std::min(24000, r.sampleRate / 2 + 10));
        r.lowFreq = random.between<int>(0, r.highFreq - 1);
        r.nFilter = std::min(random.between<int>(1, 60), 1 << (transformOrder(r.frameLen) - 1));
        if (trial % 2) {
            r.melMul = random.between<Zim32s>(0x80001, 0x3FFFFFFF);
            r.melDiv = random.between<Zim32s>(0x80001, trial % 4 == 1 ? 0x100000 : 0xFFFFFFF);
        }
        const Built made(r, trial % 3 ? Placement{} : atOffset(static_cast<std::size_t>(random.between<int>(0, 40))));
        const int h = (1 << transformOrder(r.frameLen)) / 2, n = r.nFilter;
        EXPECT_EQ(made.order, transformOrder(r.frameLen));
        const Edges edges(2 * h, r.sampleRate, r.lowFreq, r.highFreq, n, r.melMul, r.melDiv);
        if (edges[n + 1] > h) {
            EXPECT_EQ(made.status, zimStsFBankBadFlag);
            EXPECT_TRUE(std::all_of(made.block.begin(), made.block.end(), [](char byte) { return byte == '\xA5'; }));
            continue;
        }
        ++built;
        ASSERT_EQ(made.status, zimStsOk);
        EXPECT_EQ(made.state()->mode, 2);
        EXPECT_EQ(made.state()->nFilter, n);
        EXPECT_EQ(made.state()->nBins, h + 1);
        const Bank bank = made.bank();
        const Zim32s* c = bank.centers;
        ASSERT_GE(c[0], 0);
        for (int i = 1; i <= n; ++i) {
            ASSERT_LE(c[i - 1], c[i]);
            ASSERT_LE(c[i], c[i + 1]);
            std::vector<Zim32s> lower(static_cast<std::size_t>(h)), upper(lower);
            ASSERT_LE(c[i] - c[i - 1], h - 1) << "a lower row is not longer than its place";
            for (Zim64s j = 0; j <= c[i] - c[i - 1]; ++j)
                lower[static_cast<std::size_t>(j)] = static_cast<Zim32s>(((j + 1) << 30) / (c[i] - c[i - 1] + 1));
            for (Zim64s j = 0; j < c[i + 1] - c[i]; ++j)
                upper[static_cast<std::size_t>(j)] =
                    static_cast<Zim32s>(((c[i + 1] - c[i] - j) << 30) / (c[i + 1] - c[i] + 1));
            EXPECT_EQ(std::vector<Zim32s>(bank.lowerRows[i - 1], bank.lowerRows[i - 1] + h), lower);
            EXPECT_EQ(std::vector<Zim32s>(bank.upperRows[i - 1], bank.upperRows[i - 1] + h), upper);
        }
        for (int i = 0; i <= n + 1; ++i)
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(bank.lowerRows[i]) % 32, 0u);
    }
    EXPECT_GT(built, 250);
}

TEST(FixedMelFBank, EdgesLieWhereTheFloatingPointBankHasThem)
{
    for (const Request& r : {Request{400, 16000, 64, 8000, 26},
                             {200, 8000, 100, 3400, 23},
                             {1024, 44100, 20, 20000, 40},
                             {8192, 48000, 1, 24000, 200},
                             {256, 8000, 300, 4000, 10}}) {
        const Built fixed(r);
        ASSERT_EQ(fixed.status, zimStsOk);
        ZimsFBankState_32f* bank = nullptr;
        int order = 0;
        ASSERT_EQ(zimsMelFBankInitAlloc_32f(&bank, &order, r.frameLen, static_cast<float>(r.sampleRate),
                                            static_cast<float>(r.lowFreq), static_cast<float>(r.highFreq), r.nFilter,
                                            mul1127 / 32768.0f, 700, ZimFBankBinSlopes),
                  zimStsOk);
        EXPECT_EQ(fixed.order, order);
        std::vector<Zim32s> centers(static_cast<std::size_t>(r.nFilter) + 2);
        zimsFBankGetCenters_32f(bank, centers.data());
        for (int i = 0; i < r.nFilter + 2; ++i)
            EXPECT_LE(std::abs(fixed.bank().centers[i] - centers[static_cast<std::size_t>(i)]), 1) << i;
        zimsFBankFree_32f(bank);
        zimsFree(bank);
    }
}

// A bank whose products need more than 64 bits on the way to its edges: one sample a second.
TEST(FixedMelFBank, AnAxisOfManyBinsForAHertz)
{
    const Edges edges(8192, 1, 0, 24000, 1, mul1127, 0xFFFFFFF);
    EXPECT_NEAR(static_cast<double>(edges[2]), 24000.0 * 8192, 24000.0 * 8192 * 1e-6);
}

// ---- Evaluation

// Rounded like the sum in 64 bits, from exact terms.
Zim32s expectedValue(const Bank& bank, int i, const Zim32s* x, int scaleFactor)
{
    const Zim32s* c = bank.centers;
    long double sum = 0;
    const auto add = [&](Zim32s weight, Zim32s bin) { sum += static_cast<long double>((Zim64s{weight} * bin) >> 8); };
    for (int j = 0; j <= c[i] - c[i - 1]; ++j)
        add(bank.lowerRows[i - 1][j], x[c[i - 1] + j]);
    for (int j = 0; j < c[i + 1] - c[i]; ++j)
        add(bank.upperRows[i - 1][j], x[c[i] + 1 + j]);
    const auto to64 = [](long double v) { return std::clamp(v, -0x1p63L, 0x1p63L - 1); };
    const long double scaled = to64(std::floor(std::ldexp(to64(sum), -scaleFactor)));
    const long double rounded = std::floor(std::ldexp(scaled, -22) + 0.5L);
    return static_cast<Zim32s>(std::clamp(rounded, -2147483648.0L, 2147483647.0L));
}

TEST(FixedMelFBank, Evaluation)
{
    Random random(3);
    for (const Request& r : {Request{400, 16000, 64, 8000, 26},
                             {200, 8000, 0, 4000, 1},
                             {32, 8000, 0, 4000, 16},
                             {8192, 48000, 0, 24000, 1}}) {
        const Built made(r);
        ASSERT_EQ(made.status, zimStsOk);
        const Bank bank = made.bank();
        const auto bins = static_cast<std::size_t>(bank.centers[r.nFilter + 1]) + 1;
        const auto count = static_cast<std::size_t>(r.nFilter);
        for (Zim32s loudest : {1, 100, 1 << 20, INT_MAX})
            for (bool negative : {false, true}) {
                const Guarded<Zim32s> src(random.vector<Zim32s>(bins, negative ? -loudest - 1 : loudest / 2, loudest));
                const Guarded<Zim32s> dst(count);
                for (int scaleFactor = -31; scaleFactor <= 31; ++scaleFactor) {
                    EXPECT_EQ(zimsEvalFBank_32s_Sfs(src, dst, made.state(), scaleFactor), zimStsOk);
                    for (int i = 1; i <= r.nFilter; ++i)
                        ASSERT_EQ(dst[i - 1], expectedValue(bank, i, src, scaleFactor)) << i << ' ' << scaleFactor;
                }
            }
    }
}

TEST(FixedMelFBank, ALargeSumStaysPositive)
{
    const Built made({8192, 48000, 0, 24000, 1});
    const std::vector<Zim32s> src(4097, INT_MAX);
    for (int scaleFactor : {-31, -1, 0}) {
        Zim32s dst = 0;
        EXPECT_EQ(zimsEvalFBank_32s_Sfs(src.data(), &dst, made.state(), scaleFactor), zimStsOk);
        EXPECT_EQ(dst, INT_MAX);
    }
}

// ---- Refusals

TEST(FixedMelFBank, ChecksComeInTheirOrder)
{
    int size = 7, order = 7;
    std::vector<char> block(1 << 20, 'x');
    auto* const s = reinterpret_cast<ZimsFBankState_32s*>(block.data());
    const auto init = [&](int frameLen, int rate, int low, int high, int n, Zim32s mul, Zim32s div, int mode) {
        return zimsMelFBankInit_32s(s, &order, frameLen, rate, low, high, n, mul, div, mode);
    };
    expectStatuses({
        {"size", zimsMelFBankGetSize_32s(0, 0, 0, nullptr), zimStsNullPointer},
        {"no filter", zimsMelFBankGetSize_32s(400, 0, 0, &size), zimStsBadSize},
        {"frame 31", zimsMelFBankGetSize_32s(31, 26, 0, &size), zimStsBadSize},
        {"frame 8193", zimsMelFBankGetSize_32s(8193, 26, 0, &size), zimStsBadSize},
        {"mode before too many filters", zimsMelFBankGetSize_32s(400, 257, 1, &size), zimStsFBankBadMode},
        {"too many filters", zimsMelFBankGetSize_32s(400, 257, 2, &size), zimStsBadSize},
        {"state", zimsMelFBankInit_32s(nullptr, &order, 0, 0, 0, 0, 0, 0, 0, 0), zimStsNullPointer},
        {"order", zimsMelFBankInit_32s(s, nullptr, 0, 0, 0, 0, 0, 0, 0, 0), zimStsNullPointer},
        {"no filter", init(400, 0, 0, 8000, 0, 0, 0, 0), zimStsBadSize},
        {"no high edge", init(400, 0, 0, 0, 26, 0, 0, 0), zimStsBadSize},
        {"frame", init(31, 0, 0, 8000, 26, 0, 0, 0), zimStsBadSize},
        {"mode", init(400, 0, 0, 8000, 26, 0, 0, 6), zimStsFBankBadMode},
        {"rate 0", init(400, 0, -1, 8000, 26, 0, 0, 2), zimStsBadSize},
        {"rate 48001", init(400, 48001, 0, 8000, 26, 0, 0, 2), zimStsBadSize},
        {"low edge", init(400, 16000, -1, 24001, 26, 0, 0, 2), zimStsBadSize},
        {"equal edges", init(400, 16000, 8000, 8000, 26, 0, 0, 2), zimStsFBankBadFlag},
        {"high edge", init(400, 48000, 64, 24001, 26, 0, 0, 2), zimStsFBankBadFlag},
        {"melDiv 16", init(400, 16000, 64, 8000, 26, 0, 0x80000, 2), zimStsBadArgument},
        {"melDiv 8192", init(400, 16000, 64, 8000, 26, mul1127, 0x10000000, 2), zimStsBadArgument},
        {"melMul 16", init(400, 16000, 64, 8000, 26, 0x80000, div700, 2), zimStsBadArgument},
        {"melMul 32768", init(400, 16000, 64, 8000, 26, 0x40000000, div700, 2), zimStsBadArgument},
    });
    EXPECT_EQ(size, 7);
    EXPECT_EQ(order, 7) << "not yet written";
    EXPECT_EQ(init(400, 16000, 64, 8000, 258, mul1127, div700, 2), zimStsBadSize);
    EXPECT_EQ(order, 9) << "written before the number of filters is refused";
    EXPECT_EQ(init(200, 8000, 64, 8000, 26, mul1127, div700, 2), zimStsFBankBadFlag) << "an edge above half the rate";
    EXPECT_EQ(order, 8);
    EXPECT_EQ(block, std::vector<char>(1 << 20, 'x'));
    EXPECT_EQ(zimsMelFBankGetSize_32s(32, 16, 2, &size), zimStsOk);
    EXPECT_EQ(size, 4 * 16 + 96 + 9 * 72 + 72 * 25 + 72 * 16 + 64);
    EXPECT_EQ(init(32, 16000, 0, 8000, 17, mul1127, div700, 2), zimStsOk) << "one filter more than a size is told for";

    Zim32s dst = 7;
    const Zim32s src = 7;
    ZimsFBankState_32s empty{};
    expectStatuses({
        {"src", zimsEvalFBank_32s_Sfs(nullptr, &dst, &empty, 32), zimStsNullPointer},
        {"dst", zimsEvalFBank_32s_Sfs(&src, nullptr, &empty, 32), zimStsNullPointer},
        {"bank", zimsEvalFBank_32s_Sfs(&src, &dst, nullptr, 32), zimStsNullPointer},
        {"factor 32", zimsEvalFBank_32s_Sfs(&src, &dst, &empty, 32), zimStsBadArgument},
        {"factor -32", zimsEvalFBank_32s_Sfs(&src, &dst, &empty, -32), zimStsBadArgument},
        {"no filter", zimsEvalFBank_32s_Sfs(&src, &dst, &empty, 31), zimStsOk},
    });
    EXPECT_EQ(dst, 7);
}

}  // namespace
}  // namespace zimsr::test
