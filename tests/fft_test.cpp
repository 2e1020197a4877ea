// The real transform: against its definition in long double, against itself in every placement, statuses, allocation.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <complex>
#include <memory>
#include <numbers>
#include <thread>
#include <vector>

#include <zimsr.h>

#include "base/kernels/fft_tables.h"
#include "support/compare.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

using Floats = std::vector<float>;

constexpr int flags[] = {1, 2, 4, 8};
constexpr int highestOrder = 20;

struct Plan {
    explicit Plan(int order, int flag = 8)
    {
        EXPECT_EQ(zimsFFTInitAlloc_R_32f(&plan, order, flag, 0), zimStsOk) << order;
    }
    ~Plan() { EXPECT_EQ(zimsFFTFree_R_32f(plan), zimStsOk); }
    operator const ZimsFFTPlan_R_32f*() const { return plan; }
    std::size_t bufferSize() const
    {
        int size = -1;
        EXPECT_EQ(zimsFFTGetBufSize_R_32f(plan, &size), zimStsOk);
        return static_cast<std::size_t>(size);
    }
    ZimsFFTPlan_R_32f* plan = nullptr;
};

struct FixedPlan {
    explicit FixedPlan(int order, int flag = 8)
    {
        EXPECT_EQ(zimsFFTInitAlloc_R_16s32s(&plan, order, flag, 0), zimStsOk) << order;
    }
    ~FixedPlan() { EXPECT_EQ(zimsFFTFree_R_16s32s(plan), zimStsOk); }
    operator const ZimsFFTPlan_R_16s32s*() const { return plan; }
    ZimsFFTPlan_R_16s32s* plan = nullptr;
};

// One direction of the transform with its formats, so that a property is written once for all three.
struct Direction {
    const char* name;
    ZimStatus (*transform)(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f*, Zim8u*);
    int extraElements;  // of dst over src
};

constexpr Direction directions[] = {{"forward to CCS", zimsFFTFwd_RToCCS_32f, 2},
                                    {"forward to Pack", zimsFFTFwd_RToPack_32f, 0},
                                    {"inverse from Pack", zimsFFTInv_PackToR_32f, 0}};

std::size_t lengthOf(int order)
{
    return std::size_t{1} << order;
}

std::size_t elementsOf(const Direction& direction, int order)
{
    return order == 0 && direction.extraElements ? 2
                                                 : lengthOf(order) + static_cast<std::size_t>(direction.extraElements);
}

Floats signalOf(int order)
{
    return Random(static_cast<unsigned>(order) + 1).vector<float>(lengthOf(order), -1, 1);
}

Floats transformed(const Direction& direction, const Floats& src, const ZimsFFTPlan_R_32f* plan)
{
    const int order = static_cast<int>(std::log2(static_cast<double>(src.size())));
    Floats dst(elementsOf(direction, order));
    EXPECT_EQ(direction.transform(src.data(), dst.data(), plan, nullptr), zimStsOk);
    return dst;
}

// sum over j of x[j] * exp(sign * 2*pi*i*j*k / N), for every k, by the textbook recursion on halves.
template <class Real>
void referenceTransform(std::vector<std::complex<Real>>& x, int sign)
{
    using Complex = std::complex<Real>;
    const std::size_t length = x.size();
    for (std::size_t i = 1, j = 0; i < length; ++i) {
        std::size_t bit = length / 2;
        for (; j & bit; bit /= 2)
            j ^= bit;
        j |= bit;
        if (i < j)
            std::swap(x[i], x[j]);
    }
    std::vector<Complex> roots(length / 2);
    for (std::size_t k = 0; k < roots.size(); ++k)
        roots[k] =
            std::polar<Real>(1, sign * 2 * std::numbers::pi_v<Real> * static_cast<Real>(k) / static_cast<Real>(length));
    for (std::size_t span = 2; span <= length; span *= 2)
        for (std::size_t first = 0; first < length; first += span)
            for (std::size_t k = 0; k < span / 2; ++k) {
                const Complex even = x[first + k], root = roots[k * (length / span)], odd = x[first + span / 2 + k];
                const Complex turned(odd.real() * root.real() - odd.imag() * root.imag(),
                                     odd.real() * root.imag() + odd.imag() * root.real());
                x[first + k] = even + turned;
                x[first + span / 2 + k] = even - turned;
            }
}

template <class Real>
std::vector<Real> referenceForward(const Floats& signal)
{
    std::vector<std::complex<Real>> x(signal.begin(), signal.end());
    referenceTransform(x, -1);
    std::vector<Real> pack{x[0].real()};
    for (std::size_t k = 1; k < x.size() / 2; ++k)
        pack.insert(pack.end(), {x[k].real(), x[k].imag()});
    if (x.size() > 1)
        pack.push_back(x[x.size() / 2].real());
    return pack;
}

template <class Real>
std::vector<Real> referenceInverse(const Floats& pack)
{
    const std::size_t length = pack.size();
    std::vector<std::complex<Real>> x(length);
    x[0] = pack[0];
    if (length > 1)
        x[length / 2] = pack[length - 1];
    for (std::size_t k = 1; k < length / 2; ++k) {
        x[k] = {pack[2 * k - 1], pack[2 * k]};
        x[length - k] = std::conj(x[k]);
    }
    referenceTransform(x, 1);
    std::vector<Real> signal;
    for (const auto& value : x)
        signal.push_back(value.real());
    return signal;
}

long double factorOf(int flag, int order, bool forward)
{
    const long double length = static_cast<long double>(lengthOf(order));
    return flag == 4 ? 1 / std::sqrt(length) : flag == (forward ? 1 : 2) ? 1 / length : 1;
}

// Relative to the size of the result: the error's root mean square grows as sqrt(log N), its largest value a little
// more.
template <class Real>
void expectWithinErrorBound(const Floats& actual, const std::vector<Real>& exact, long double factor, int order)
{
    ASSERT_EQ(actual.size(), exact.size());
    long double errorSquares = 0, squares = 0, largest = 0;
    for (std::size_t i = 0; i < exact.size(); ++i) {
        const long double error = std::fabs(actual[i] - factor * exact[i]);
        errorSquares += error * error;
        squares += factor * exact[i] * factor * exact[i];
        largest = std::max(largest, error);
    }
    const long double count = static_cast<long double>(exact.size());
    const long double unit = std::ldexp(1.0L, -24), growth = std::sqrt(4.0L + order);
    EXPECT_LE(std::sqrt(errorSquares / squares), 0.7L * unit * growth) << "order " << order;
    EXPECT_LE(largest / std::sqrt(squares / count), 4.2L * unit * growth) << "order " << order;
}

template <class Real>
void expectDefinition(int order)
{
    const Floats signal = signalOf(order);
    const std::vector<Real> spectrum = referenceForward<Real>(signal), inverse = referenceInverse<Real>(signal);
    for (int flag : flags) {
        if (order > 12 && flag != flags[order % 4])
            continue;
        const Plan plan(order, flag);
        expectWithinErrorBound(transformed(directions[1], signal, plan), spectrum, factorOf(flag, order, true), order);
        expectWithinErrorBound(transformed(directions[2], signal, plan), inverse, factorOf(flag, order, false), order);
    }
}

TEST(Fft, MeetsItsDefinition)
{
    for (int order = 0; order <= 14; ++order)
        expectDefinition<long double>(order);
    for (int order = 15; order <= highestOrder; ++order)
        expectDefinition<double>(order);
}

// The transform of orders 27 to 30 has a step more than the smaller ones; here it is cut from a small length.
TEST(Fft, LargestOrdersInSmall)
{
    for (int order = 13; order <= 18; ++order) {
        const fft::LargeShape shape(order, 6);
        const std::size_t bins = shape.bins();
        Floats base(bins / 2 + 1), realRec(bins + 64), ccsRec(bins + 64),
            spans(fft::spanTwiddlesUpTo(shape.columnRows()));
        Floats step(2 * bins), middle(2 * shape.rowLength());
        std::vector<Zim32u> bitRev(shape.columnRows());
        ZimsFFTPlan_R_32f plan{};
        plan.order = order;
        plan.bitRevTable = bitRev.data();
        plan.twiddleL1 = spans.data();
        plan.realRecTable = realRec.data();
        plan.ccsRecTable = ccsRec.data();
        plan.blockTwiddles[0] = step.data();
        plan.blockTwiddles[1] = middle.data();
        fft::zims_createTabTwdBase_32f(base.data(), order);
        fft::zims_createTabTwd_Large_32f(plan, fft::UnitRoots(base.data(), order), shape);

        Floats buffer(fft::LargeTransform::bufferFloats(shape));
        const fft::LargeTransform transform(plan, shape, buffer.data());
        const Floats signal = signalOf(order);
        Floats ccs(2 * bins + 2), pack(2 * bins), inverse(2 * bins);
        transform.forward<SpectrumFormat::ccs>(signal.data(), ccs.data());
        transform.forward<SpectrumFormat::pack>(signal.data(), pack.data());
        transform.inverse(signal.data(), inverse.data());
        expectWithinErrorBound(pack, referenceForward<double>(signal), 1, order);
        expectWithinErrorBound(inverse, referenceInverse<double>(signal), 1, order);
        ccs[1] = ccs[2 * bins];
        ccs.resize(2 * bins);
        std::rotate(ccs.begin() + 1, ccs.begin() + 2, ccs.end());
        EXPECT_TRUE(equalBits(ccs, pack)) << order;

        Floats inPlace = signal;
        transform.forward<SpectrumFormat::pack>(inPlace.data(), inPlace.data());
        EXPECT_TRUE(equalBits(inPlace, pack)) << order;
        inPlace = signal;
        transform.inverse(inPlace.data(), inPlace.data());
        EXPECT_TRUE(equalBits(inPlace, inverse)) << order;
    }
}

TEST(Fft, CcsHoldsThePackBinsBetweenExactZeros)
{
    for (int order = 0; order <= highestOrder; ++order) {
        const Plan plan(order, flags[order % 4]);
        const Floats signal = signalOf(order);
        Floats pack = transformed(directions[1], signal, plan);
        pack.insert(pack.begin() + 1, 0.0f);
        if (order > 0)
            pack.push_back(0.0f);
        EXPECT_TRUE(equalBits(transformed(directions[0], signal, plan), pack)) << order;
    }
}

TEST(Fft, SmallestTransformsByHand)
{
    const auto expectAll = [](const Floats& x, const Floats& ccs, const Floats& pack) {
        const Plan plan(static_cast<int>(std::log2(x.size())));
        EXPECT_TRUE(equalBits(transformed(directions[0], x, plan), ccs));
        EXPECT_TRUE(equalBits(transformed(directions[1], x, plan), pack));
    };
    expectAll({3}, {3, 0}, {3});
    expectAll({3, 5}, {8, 0, -2, 0}, {8, -2});
    expectAll({1, 2, 4, 8}, {15, 0, -3, 6, -5, 0}, {15, -3, 6, -5});
    for (int flag : flags)
        EXPECT_TRUE(equalBits(transformed(directions[2], {7}, Plan(0, flag)), Floats{7}));
}

TEST(Fft, InverseOfForwardGivesTheSignalBack)
{
    for (int order = 0; order <= 16; ++order)
        for (int flag : flags) {
            const Plan plan(order, flag);
            const Floats signal = signalOf(order);
            const Floats back = transformed(directions[2], transformed(directions[1], signal, plan), plan);
            const float gain = flag == 8 ? static_cast<float>(lengthOf(order)) : 1.0f;
            for (std::size_t i = 0; i < signal.size(); ++i)
                ASSERT_NEAR(back[i] / gain, signal[i], 1e-6) << order << ' ' << flag;
        }
}

TEST(Fft, AnImpulseAndAConstantAreExact)
{
    for (int order = 2; order <= 18; ++order) {
        const Plan plan(order);
        Floats impulse(lengthOf(order)), flat(lengthOf(order), 1.0f);
        impulse[0] = 1;
        for (std::size_t i = 1; i < flat.size() - 1; i += 2)
            flat[i + 1] = 0;
        EXPECT_EQ(transformed(directions[1], impulse, plan), flat) << order;
        const Floats constant(lengthOf(order), 1.0f);
        Floats line(lengthOf(order));
        line[0] = static_cast<float>(lengthOf(order));
        EXPECT_EQ(transformed(directions[1], constant, plan), line) << order;
    }
}

TEST(Fft, EveryPlacementGivesTheSameBits)
{
    for (int order = 0; order <= highestOrder; ++order)
        for (const Direction& direction : directions) {
            const Plan plan(order, flags[(order + 1) % 4]);
            const Floats signal = signalOf(order), expected = transformed(direction, signal, plan);
            const auto expectSame = [&](std::size_t srcOffset, std::size_t dstOffset, std::size_t bufferOffset) {
                SCOPED_TRACE(testing::Message() << direction.name << ", order " << order << ", offsets " << srcOffset
                                                << ' ' << dstOffset << ' ' << bufferOffset);
                const Guarded<float> src(signal, atOffset(srcOffset)), dst(expected.size(), atOffset(dstOffset));
                const Guarded<Zim8u> buffer(plan.bufferSize(), atOffset(bufferOffset));
                EXPECT_EQ(direction.transform(src, dst, plan, buffer), zimStsOk);
                EXPECT_TRUE(equalBits(dst.values(), expected));
                EXPECT_TRUE(equalBits(src.values(), signal));

                Guarded<float> inPlace(expected.size(), atOffset(dstOffset));
                inPlace.assign(signal);
                EXPECT_EQ(direction.transform(inPlace, inPlace, plan, buffer), zimStsOk);
                EXPECT_TRUE(equalBits(inPlace.values(), expected));
            };
            const std::size_t placements = order <= 9 ? 64 : order <= 13 ? 4 : 1;
            for (std::size_t i = 0; i < placements; ++i)
                expectSame((i * 13 + 3) % 64, (i * 29 + 9) % 64, (i * 7 + 5) % 64);

            // At the end of a page, buffer included.
            const Guarded<float> src(signal), dst(expected.size());
            const Guarded<Zim8u> buffer(plan.bufferSize());
            EXPECT_EQ(direction.transform(src, dst, plan, buffer), zimStsOk);
            EXPECT_TRUE(equalBits(dst.values(), expected));
        }
}

TEST(Fft, APowerOfTwoPassesThrough)
{
    for (int order = 0; order <= 17; ++order)
        for (const Direction& direction : directions) {
            const Plan plan(order);
            const Floats signal = signalOf(order);
            Floats scaled = signal, expected = transformed(direction, signal, plan);
            for (Floats* values : {&scaled, &expected})
                for (float& value : *values)
                    value *= 1024;
            EXPECT_TRUE(equalBits(transformed(direction, scaled, plan), expected)) << direction.name << ' ' << order;
        }
}

TEST(Fft, ANanReachesEveryBin)
{
    for (int order = 1; order <= 14; ++order) {
        const Plan plan(order, flags[order % 4]);
        for (std::size_t place : {std::size_t{0}, lengthOf(order) / 2, lengthOf(order) - 1}) {
            Floats signal = signalOf(order);
            signal[place] = NAN;
            const Floats spectrum = transformed(directions[0], signal, plan);
            for (std::size_t bin = 0; bin <= lengthOf(order) / 2; ++bin)
                ASSERT_TRUE(std::isnan(spectrum[2 * bin]) || std::isnan(spectrum[2 * bin + 1]))
                    << order << ' ' << place;
        }
    }
}

TEST(Fft, BufferSizes)
{
    const auto sizeOf = [](int order) { return Plan(order).bufferSize(); };
    for (int order = 0; order < 4; ++order)
        EXPECT_EQ(sizeOf(order), 0u) << order;
    EXPECT_EQ(sizeOf(4), 80u);
    for (int order = 4; order <= 17; ++order)
        EXPECT_EQ(sizeOf(order), 4 * lengthOf(order) + 16) << order;
    EXPECT_EQ(sizeOf(18), 4096u + 0x80010);
    for (int order = 19; order <= 21; ++order)
        EXPECT_EQ(sizeOf(order), 8192u + 0x80010) << order;
    EXPECT_EQ(sizeOf(22), 65536u + 0x80010);
    EXPECT_EQ(sizeOf(23), 262144u + 0x80010);
}

TEST(Fft, ThreadsShareAPlan)
{
    const Plan plan(12);
    const Floats signal = signalOf(12), expected = transformed(directions[0], signal, plan);
    Floats results[2];
    std::thread other([&] { results[0] = transformed(directions[0], signal, plan); });
    results[1] = transformed(directions[0], signal, plan);
    other.join();
    for (const Floats& result : results)
        EXPECT_TRUE(equalBits(result, expected));
}

TEST(Fft, FixedPointIsTheFloatTransformConverted)
{
    for (int order = 0; order <= 15; ++order)
        for (int flag : flags) {
            const Plan plan(order, flag);
            const FixedPlan fixed(order, flag);
            const std::vector<Zim16s> samples = Random(7).any<Zim16s>(lengthOf(order));
            const Floats spectrum = transformed(directions[0], Floats(samples.begin(), samples.end()), plan);
            for (int scaleFactor : {0, 3, -4, -16, 40, -200, 200, INT_MIN, INT_MAX}) {
                std::vector<Zim32s> expected;
                for (float value : spectrum) {
                    const double scaled = std::ldexp(static_cast<double>(value), -std::clamp(scaleFactor, -200, 200));
                    expected.push_back(
                        static_cast<Zim32s>(std::nearbyint(std::clamp(scaled, -2147483648.0, 2147483647.0))));
                }
                const Guarded<Zim16s> src(samples);
                const Guarded<Zim32s> dst(expected.size());
                EXPECT_EQ(zimsFFTFwd_RToCCS_16s32s_Sfs(src, dst, fixed, scaleFactor, nullptr), zimStsOk);
                EXPECT_TRUE(equalBits(dst.values(), expected)) << order << ' ' << flag << ' ' << scaleFactor;
                if (order < 4) {
                    Zim8u ignored = 0;
                    EXPECT_EQ(zimsFFTFwd_RToCCS_16s32s_Sfs(src, dst, fixed, scaleFactor, &ignored), zimStsOk);
                    EXPECT_TRUE(equalBits(dst.values(), expected));
                    continue;
                }
                const Guarded<Zim8u> buffer(8 * lengthOf(order) + 32,
                                            atOffset(static_cast<std::size_t>(scaleFactor) % 64));
                EXPECT_EQ(zimsFFTFwd_RToCCS_16s32s_Sfs(src, dst, fixed, scaleFactor, buffer), zimStsOk);
                EXPECT_TRUE(equalBits(dst.values(), expected));
            }
        }
}

TEST(Fft, MulPackConjMultipliesByTheConjugate)
{
    Random random(9);
    for (int len = 1; len <= 70; ++len)
        for (bool aliased : {false, true}) {
            const std::size_t count = static_cast<std::size_t>(len);
            const Floats x = random.vector<float>(count, -9, 9), y = aliased ? x : random.vector<float>(count, -9, 9);
            Floats expected(count);
            expected[0] = x[0] * y[0];
            if (len % 2 == 0)
                expected[count - 1] = x[count - 1] * y[count - 1];
            for (std::size_t i = 1; i + 1 < count; i += 2) {
                const float re1 = x[i] * y[i], re2 = x[i + 1] * y[i + 1], im1 = x[i + 1] * y[i], im2 = x[i] * y[i + 1];
                expected[i] = re1 + re2;
                expected[i + 1] = im1 - im2;
            }
            for (const Placement& placement : {Placement{}, atOffset(4), atOffset(9)}) {
                const Guarded<float> src(x, placement), srcDst(y, placement);
                EXPECT_EQ(zimsMulPackConj_32f_I(aliased ? srcDst : src, srcDst, len), zimStsOk);
                EXPECT_TRUE(equalBits(srcDst.values(), expected)) << len;
            }
        }
}

TEST(Fft, Statuses)
{
    const Plan made(4);
    const FixedPlan madeFixed(4);
    ZimsFFTPlan_R_32f* const plan = made.plan;
    ZimsFFTPlan_R_16s32s* const fixed = madeFixed.plan;
    auto* const notPlan = reinterpret_cast<ZimsFFTPlan_R_32f*>(fixed);
    auto* const notFixed = reinterpret_cast<ZimsFFTPlan_R_16s32s*>(plan);
    ZimsFFTPlan_R_32f* out = nullptr;
    ZimsFFTPlan_R_16s32s* outFixed = nullptr;
    Zim32f x[18] = {};
    Zim16s samples[16] = {};
    Zim32s bins[18];
    int size;
    std::vector<StatusCase> cases = {
        {"null plan, bad order, bad flag", zimsFFTInitAlloc_R_32f(nullptr, 31, 0, 0), zimStsNullPointer},
        {"order 31, bad flag", zimsFFTInitAlloc_R_32f(&out, 31, 0, 0), zimStsBadFftOrder},
        {"order -1", zimsFFTInitAlloc_R_32f(&out, -1, 8, 0), zimStsBadFftOrder},
        {"fixed: null plan, bad order", zimsFFTInitAlloc_R_16s32s(nullptr, 31, 0, 0), zimStsNullPointer},
        {"fixed: order 31, bad flag", zimsFFTInitAlloc_R_16s32s(&outFixed, 31, 0, 0), zimStsBadFftOrder},
        {"fixed: order -1", zimsFFTInitAlloc_R_16s32s(&outFixed, -1, 8, 0), zimStsBadFftOrder},
        {"fixed: order whose size is no int, bad flag", zimsFFTInitAlloc_R_16s32s(&outFixed, 29, 3, 0),
         zimStsBadFftFlag},
        {"fixed: order whose size is no int", zimsFFTInitAlloc_R_16s32s(&outFixed, 29, 8, 0), zimStsAllocFailed},
        {"size: null plan and size", zimsFFTGetBufSize_R_32f(nullptr, nullptr), zimStsNullPointer},
        {"size: other plan, null size", zimsFFTGetBufSize_R_32f(notPlan, nullptr), zimStsBadContext},
        {"size: null size", zimsFFTGetBufSize_R_32f(plan, nullptr), zimStsNullPointer},
        {"size", zimsFFTGetBufSize_R_32f(plan, &size), zimStsOk},
        {"fixed: null plan", zimsFFTFwd_RToCCS_16s32s_Sfs(samples, bins, nullptr, 0, nullptr), zimStsNullPointer},
        {"fixed: other plan, null", zimsFFTFwd_RToCCS_16s32s_Sfs(nullptr, nullptr, notFixed, 0, nullptr),
         zimStsBadContext},
        {"fixed: null src", zimsFFTFwd_RToCCS_16s32s_Sfs(nullptr, bins, fixed, 0, nullptr), zimStsNullPointer},
        {"fixed: null dst", zimsFFTFwd_RToCCS_16s32s_Sfs(samples, nullptr, fixed, 0, nullptr), zimStsNullPointer},
        {"free null", zimsFFTFree_R_32f(nullptr), zimStsNullPointer},
        {"free other", zimsFFTFree_R_32f(notPlan), zimStsBadContext},
        {"fixed: free null", zimsFFTFree_R_16s32s(nullptr), zimStsNullPointer},
        {"fixed: free other", zimsFFTFree_R_16s32s(notFixed), zimStsBadContext},
        {"product: null src, length 0", zimsMulPackConj_32f_I(nullptr, x, 0), zimStsNullPointer},
        {"product: null srcDst", zimsMulPackConj_32f_I(x, nullptr, 1), zimStsNullPointer},
        {"product: length 0", zimsMulPackConj_32f_I(x, x, 0), zimStsBadSize},
    };
    for (int flag : {0, 3, 5, 16, -1, INT_MIN}) {
        cases.push_back({"bad flag, small", zimsFFTInitAlloc_R_32f(&out, 3, flag, 0), zimStsBadFftFlag});
        cases.push_back({"bad flag, order 30", zimsFFTInitAlloc_R_32f(&out, 30, flag, 0), zimStsBadFftFlag});
        cases.push_back({"fixed: bad flag", zimsFFTInitAlloc_R_16s32s(&outFixed, 10, flag, 0), zimStsBadFftFlag});
    }
    for (const Direction& direction : directions) {
        cases.push_back({direction.name, direction.transform(x, x, nullptr, nullptr), zimStsNullPointer});
        cases.push_back({direction.name, direction.transform(nullptr, nullptr, notPlan, nullptr), zimStsBadContext});
        cases.push_back({direction.name, direction.transform(nullptr, x, plan, nullptr), zimStsNullPointer});
        cases.push_back({direction.name, direction.transform(x, nullptr, plan, nullptr), zimStsNullPointer});
    }
    expectStatuses(cases);
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(outFixed, nullptr);
}

TEST(Fft, ThePlanKeepsItsRecordAndTransformsDoNotWriteIt)
{
    const Plan made(9, 4);
    const ZimsFFTPlan_R_32f before = *made.plan;
    EXPECT_EQ(before.identity, 6u);
    EXPECT_EQ(before.order, 9);
    EXPECT_EQ(before.scaleForward, 1u);
    EXPECT_EQ(before.scaleInverse, 1u);
    EXPECT_EQ(before.factor, static_cast<float>(1 / std::sqrt(512.0)));
    for (const Direction& direction : directions)
        transformed(direction, signalOf(9), made);
    EXPECT_EQ(std::memcmp(&before, made.plan, sizeof before), 0);

    const FixedPlan fixed(5, 2);
    EXPECT_EQ(fixed.plan->identity, 0x4C4D5364u);
    EXPECT_EQ(fixed.plan->bufferSize, (4 * 32 + 16) + 4 * 32 + 16);
    EXPECT_EQ(fixed.plan->plan->scaleInverse, 1u);
}

TEST(Fft, AFailedConstructionLeavesNothing)
{
    for (int order : {0, 3, 4, 5, 6, 10, 15, 17, 18, 20}) {
        ZimsFFTPlan_R_32f* plan = nullptr;
        ZimsFFTPlan_R_16s32s* fixed = nullptr;
        expectCleanFailure(
            [&] {
                EXPECT_EQ(plan, nullptr);
                return zimsFFTInitAlloc_R_32f(&plan, order, 8, 0);
            },
            zimStsAllocFailed);
        expectCleanFailure(
            [&] {
                EXPECT_EQ(fixed, nullptr);
                return zimsFFTInitAlloc_R_16s32s(&fixed, order, 8, 0);
            },
            zimStsAllocFailed);
        EXPECT_EQ(zimsFFTFree_R_32f(plan), zimStsOk);
        EXPECT_EQ(zimsFFTFree_R_16s32s(fixed), zimStsOk);
    }
}

TEST(Fft, ATransformAllocatesOnlyABufferThatItWasNotGiven)
{
    for (int order : {3, 4, 9, 13, 14, 17, 18, 19}) {
        const Plan plan(order);
        std::vector<Zim8u> buffer(plan.bufferSize() + 1);
        for (const Direction& direction : directions) {
            const Floats signal = signalOf(order);
            Floats dst(elementsOf(direction, order));
            {
                AllocationWatch watch;
                EXPECT_EQ(direction.transform(signal.data(), dst.data(), plan, buffer.data()), zimStsOk);
                EXPECT_EQ(watch.requests(), 0);
            }
            std::fill(dst.begin(), dst.end(), 5.0f);
            const Floats untouched = dst;
            const int requests =
                forEachFailedAllocation([&] { return direction.transform(signal.data(), dst.data(), plan, nullptr); },
                                        [&](ZimStatus status, int leaked) {
                                            EXPECT_EQ(status, zimStsAllocFailed);
                                            EXPECT_EQ(leaked, 0);
                                            EXPECT_TRUE(equalBits(dst, untouched));
                                        });
            EXPECT_EQ(requests, order < 4 ? 0 : 1);
        }
        if (order > 13)
            continue;
        const FixedPlan fixed(order);
        std::vector<Zim16s> samples(lengthOf(order));
        std::vector<Zim32s> bins(lengthOf(order) + 2);
        EXPECT_EQ(expectCleanFailure(
                      [&] { return zimsFFTFwd_RToCCS_16s32s_Sfs(samples.data(), bins.data(), fixed, 0, nullptr); },
                      zimStsAllocFailed),
                  order < 4 ? 0 : 1);
    }
}

}  // namespace
}  // namespace zimsr::test
