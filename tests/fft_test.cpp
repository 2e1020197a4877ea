// The real transform: against its definition in long double, against itself in every placement, statuses, allocation.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <vector>

#include <zimsr.h>

#include "base/kernels/fft_tables.h"
#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/fft_reference.h"
#include "support/guarded.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

constexpr int flags[] = {1, 2, 4, 8};
constexpr int highestOrder = 20;

// A plan of either type, given back with the test's grip on it.
template <class Type, ZimStatus (*initAlloc)(Type**, int, int, int), ZimStatus (*release)(Type*)>
struct PlanOf {
    explicit PlanOf(int order, int flag = 8) { EXPECT_EQ(initAlloc(&plan, order, flag, 0), zimStsOk) << order; }
    ~PlanOf() { EXPECT_EQ(release(plan), zimStsOk); }
    operator Type*() const { return plan; }
    Type* plan = nullptr;
};
using Plan = PlanOf<ZimsFFTPlan_R_32f, zimsFFTInitAlloc_R_32f, zimsFFTFree_R_32f>;
using FixedPlan = PlanOf<ZimsFFTPlan_R_16s32s, zimsFFTInitAlloc_R_16s32s, zimsFFTFree_R_16s32s>;

std::size_t bufferSizeOf(const Plan& plan)
{
    int size = -1;
    EXPECT_EQ(zimsFFTGetBufSize_R_32f(plan, &size), zimStsOk);
    return size;
}

// One direction of the transform with its formats, so that a property is written once for all three.
struct Direction {
    const char* name;
    ZimStatus (*transform)(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f*, Zim8u*);
    int extraElements;  // of dst over src
};

constexpr Direction directions[] = {{"forward to CCS", zimsFFTFwd_RToCCS_32f, 2},
                                    {"forward to Pack", zimsFFTFwd_RToPack_32f, 0},
                                    {"inverse from Pack", zimsFFTInv_PackToR_32f, 0}};

std::size_t elementsOf(const Direction& direction, int order)
{
    return order == 0 && direction.extraElements ? 2 : lengthOf(order) + direction.extraElements;
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
                const Guarded<Zim8u> buffer(bufferSizeOf(plan), atOffset(bufferOffset));
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
            const Guarded<Zim8u> buffer(bufferSizeOf(plan));
            EXPECT_EQ(direction.transform(src, dst, plan, buffer), zimStsOk);
            EXPECT_TRUE(equalBits(dst.values(), expected));
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
    const auto sizeOf = [](int order) { return bufferSizeOf(Plan(order)); };
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
                const Guarded<Zim8u> buffer(8 * lengthOf(order) + 32, atOffset(scaleFactor % 64));
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
            const std::size_t count = len;
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

TEST(Fft, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    const Plan plan(4);
    const FixedPlan fixed(4);
    auto* const notPlan = reinterpret_cast<ZimsFFTPlan_R_32f*>(fixed.plan);
    auto* const notFixed = reinterpret_cast<ZimsFFTPlan_R_16s32s*>(plan.plan);
    ZimsFFTPlan_R_32f* out = nullptr;
    ZimsFFTPlan_R_16s32s* outFixed = nullptr;
    Zim32f x[18] = {};
    Zim16s samples[16] = {};
    Zim32s bins[18];
    int size;
    const auto builders = [](auto build, auto** made) {
        expectNullsFirst(build, made, 31, 0, 0);
        expectStatuses({{"order 31, bad flag", build(made, 31, 0, 0), zimStsBadFftOrder},
                        {"order -1", build(made, -1, 8, 0), zimStsBadFftOrder}});
        for (int flag : {0, 3, 5, 16, -1, INT_MIN})
            for (int order : {3, 10, 29})
                EXPECT_EQ(build(made, order, flag, 0), zimStsBadFftFlag) << flag;
        EXPECT_EQ(*made, nullptr);
    };
    builders(zimsFFTInitAlloc_R_32f, &out);
    builders(zimsFFTInitAlloc_R_16s32s, &outFixed);
    expectNullsFirst(zimsFFTGetBufSize_R_32f, plan.plan, &size);
    expectNullsFirst(zimsFFTFwd_RToCCS_16s32s_Sfs, samples, bins, fixed.plan, 0, nullptr);
    expectNullsFirst(zimsMulPackConj_32f_I, x, x, 0);
    expectStatuses({
        {"order 30, bad flag", zimsFFTInitAlloc_R_32f(&out, 30, 3, 0), zimStsBadFftFlag},
        {"order whose size is no int", zimsFFTInitAlloc_R_16s32s(&outFixed, 29, 8, 0), zimStsAllocFailed},
        {"size: null plan and size", zimsFFTGetBufSize_R_32f(nullptr, nullptr), zimStsNullPointer},
        {"size: other plan, null size", zimsFFTGetBufSize_R_32f(notPlan, nullptr), zimStsBadContext},
        {"fixed: other plan, null", zimsFFTFwd_RToCCS_16s32s_Sfs(nullptr, nullptr, notFixed, 0, nullptr),
         zimStsBadContext},
        {"free null", zimsFFTFree_R_32f(nullptr), zimStsNullPointer},
        {"free other", zimsFFTFree_R_32f(notPlan), zimStsBadContext},
        {"fixed: free null", zimsFFTFree_R_16s32s(nullptr), zimStsNullPointer},
        {"fixed: free other", zimsFFTFree_R_16s32s(notFixed), zimStsBadContext},
        {"product: length 0", zimsMulPackConj_32f_I(x, x, 0), zimStsBadSize},
    });
    for (const Direction& direction : directions) {
        expectNullsFirst(direction.transform, x, x, plan.plan, nullptr);
        EXPECT_EQ(direction.transform(nullptr, nullptr, notPlan, nullptr), zimStsBadContext) << direction.name;
    }
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
    const auto expectCleanly = [](auto initAlloc, auto release, auto* plan, int order) {
        expectCleanFailure(
            [&] {
                EXPECT_EQ(plan, nullptr);
                return initAlloc(&plan, order, 8, 0);
            },
            zimStsAllocFailed);
        EXPECT_EQ(release(plan), zimStsOk);
    };
    for (int order : {0, 3, 4, 5, 6, 10, 15, 17, 18, 20}) {
        expectCleanly(zimsFFTInitAlloc_R_32f, zimsFFTFree_R_32f, static_cast<ZimsFFTPlan_R_32f*>(nullptr), order);
        expectCleanly(zimsFFTInitAlloc_R_16s32s, zimsFFTFree_R_16s32s, static_cast<ZimsFFTPlan_R_16s32s*>(nullptr),
                      order);
    }
}

TEST(Fft, ATransformAllocatesOnlyABufferThatItWasNotGiven)
{
    for (int order : {3, 4, 9, 13, 14, 17, 18, 19}) {
        const Plan plan(order);
        std::vector<Zim8u> buffer(bufferSizeOf(plan) + 1);
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
