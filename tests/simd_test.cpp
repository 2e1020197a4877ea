// The vector types against their scalar meaning.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <vector>

#include "support/compare.h"
#include "support/guarded.h"
#include "support/random.h"
#include "zimcore/frame/simd.h"

namespace zimsr::test {
namespace {

template <class V>
std::vector<typename V::Lane> lanesOf(V v)
{
    std::vector<typename V::Lane> lanes;
    for (int i = 0; i < V::lanes; ++i)
        lanes.push_back(v[i]);
    return lanes;
}

template <class V>
class Vectors : public testing::Test {
};
using VectorTypes = testing::Types<F4, F8, D2, D4, D8, I4, I8, S8, S16>;
TYPED_TEST_SUITE(Vectors, VectorTypes);

TYPED_TEST(Vectors, PartialLoadsAndStoresStayInsideTheRow)
{
    using Lane = typename TypeParam::Lane;
    Random random(2);
    for (int count = 0; count <= TypeParam::lanes; ++count) {
        const auto values = random.vector<Lane>(static_cast<std::size_t>(count), 1, 100);
        Guarded<Lane> source(values), destination(values.size());
        const TypeParam v = loadFirst<TypeParam>(source, count);
        storeFirst(destination.data(), v, count);
        EXPECT_TRUE(equalBits(destination.values(), values));
        for (int i = count; i < TypeParam::lanes; ++i)
            EXPECT_EQ(v[i], Lane{0});
    }
}

TYPED_TEST(Vectors, SelectionTakesEachLaneFromItsSide)
{
    using Lane = typename TypeParam::Lane;
    const TypeParam ones = splat<TypeParam>(1), twos = splat<TypeParam>(2);
    for (int count = 0; count <= TypeParam::lanes; ++count) {
        const TypeParam v = select(firstLanes<TypeParam>(count), ones, twos);
        const TypeParam kept = keep(firstLanes<TypeParam>(count), twos);
        const TypeParam last = keep(lastLanes<TypeParam>(count), twos);
        for (int i = 0; i < TypeParam::lanes; ++i) {
            EXPECT_EQ(v[i], Lane(i < count ? 1 : 2));
            EXPECT_EQ(kept[i], Lane(i < count ? 2 : 0));
            EXPECT_EQ(last[i], Lane(i >= TypeParam::lanes - count ? 2 : 0));
        }
        const auto behind = ~firstLanes<TypeParam>(count);
        EXPECT_EQ(anySet(behind), count < TypeParam::lanes);
        EXPECT_EQ(firstSet(behind), count);
    }
}

TYPED_TEST(Vectors, HalvesHoldTheirLanesAndJoinToTheWhole)
{
    if constexpr (TypeParam::bytes > 16) {
        const TypeParam v = laneIndex<TypeParam>();
        const auto low = lowHalf(v), high = highHalf(v);
        for (int i = 0; i < TypeParam::lanes / 2; ++i) {
            EXPECT_EQ(low[i], v[i]);
            EXPECT_EQ(high[i], v[TypeParam::lanes / 2 + i]);
        }
        EXPECT_EQ(lanesOf(join(low, high)), lanesOf(v));
    }
}

TYPED_TEST(Vectors, AnyAndAllLookAtEveryLane)
{
    using Mask = typename TypeParam::Mask;
    EXPECT_FALSE(anySet(splat<Mask>(0)));
    EXPECT_TRUE(allSet(splat<Mask>(-1)));
    for (int i = 0; i < TypeParam::lanes; ++i) {
        Mask one = splat<Mask>(0);
        one.set(i, -1);
        EXPECT_TRUE(anySet(one));
        EXPECT_FALSE(allSet(~one));
    }
}

TEST(Reinterpret, KeepsBitsOverSeveralRegisters)
{
    const auto doubles = Random(4).vector<double>(8, -1, 1);
    const auto bits = reinterpret<Vec<uint64_t, 8>>(load<D8>(doubles.data()));
    for (int i = 0; i < 8; ++i)
        EXPECT_EQ(bits[i], bitsOf(doubles[static_cast<std::size_t>(i)]));
    EXPECT_EQ(lanesOf(reinterpret<D8>(bits)), doubles);
}

template <class V>
void expectPicksOneOfThree()
{
    using Lane = typename V::Lane;
    using Mask = typename V::Mask;
    const Lane values[] = {Lane(-1.5), Lane(2.25), Lane(1e30)};
    for (int first = 0; first <= V::lanes; ++first)
        for (int second = 0; second <= first; ++second) {
            const OneOfThree<V> choice(firstLanes<V>(first), firstLanes<V>(second));
            const V picked = choice({values[0], values[1], values[2]});
            for (int i = 0; i < V::lanes; ++i)
                EXPECT_EQ(picked[i], values[i < second ? 2 : i < first ? 1 : 0]);
            EXPECT_EQ(allSet(firstLanes<V>(first)), first == V::lanes);
            EXPECT_EQ(anySet(firstLanes<V>(first)), first != 0);
            EXPECT_FALSE(allSet(~firstLanes<V>(1) & splat<Mask>(-1)));
        }
}

TEST(Selection, OneOfThreeValuesForEachLane)
{
    expectPicksOneOfThree<F4>();
    expectPicksOneOfThree<F8>();
    expectPicksOneOfThree<Vec<float, 16>>();
    expectPicksOneOfThree<D2>();
    expectPicksOneOfThree<D4>();
    expectPicksOneOfThree<D8>();
}

TEST(Shuffle, PicksLanesOfBothOperands)
{
    const F8 a = laneIndex<F8>(), b = a + splat<F8>(8);
    using Lanes = std::vector<float>;
    EXPECT_EQ(lanesOf(shuffle<0, 8, 1, 9, 2, 10, 3, 11>(a, b)), (Lanes{0, 8, 1, 9, 2, 10, 3, 11}));
    EXPECT_EQ(lanesOf(shuffle<15, 1, 13, 3, 4, 10, 9, 8>(a, b)), (Lanes{15, 1, 13, 3, 4, 10, 9, 8}));
    EXPECT_EQ(lanesOf(shuffle<7, 6, 5, 4, 3, 2, 1, 0>(a)), (Lanes{7, 6, 5, 4, 3, 2, 1, 0}));
    EXPECT_EQ(lanesOf(join(highHalf(a), lowHalf(b))), (Lanes{4, 5, 6, 7, 8, 9, 10, 11}));
}

float tree(const float* v)
{
    return ((v[0] + v[4]) + (v[1] + v[5])) + ((v[2] + v[6]) + (v[3] + v[7]));
}

double tree(const double* v)
{
    return (v[0] + v[2]) + (v[1] + v[3]);
}

template <class V, int count>
void expectSumsOfGroup(Random& random)
{
    const auto x = random.vector<typename V::Lane>(count * V::lanes, -1, 1);
    V rows[count];
    for (int r = 0; r < count; ++r)
        rows[r] = load<V>(&x[static_cast<std::size_t>(r * V::lanes)]);
    const auto sums = sumFolded(foldLanes(rows));
    typename V::Lane lanes[count];
    store(lanes, sums);
    for (int r = 0; r < count; ++r)
        EXPECT_TRUE(sameBits(lanes[r], tree(&x[static_cast<std::size_t>(r * V::lanes)]))) << r << " of " << count;
}

TEST(Sums, OneTreeForSinglesAndGroups)
{
    Random random(3);
    for (int i = 0; i < 100; ++i) {
        expectSumsOfGroup<F8, 1>(random);
        expectSumsOfGroup<F8, 4>(random);
        expectSumsOfGroup<F8, 8>(random);
        expectSumsOfGroup<D4, 1>(random);
        expectSumsOfGroup<D4, 4>(random);
        const auto x = random.vector<float>(32, -1, 1);
        const F4 group = sumLanesOfFour(load<F8>(&x[0]), load<F8>(&x[8]), load<F8>(&x[16]), load<F8>(&x[24]));
        const D2 pair = sumLanesOfTwo(widen(load<F4>(&x[0])), widen(load<F4>(&x[4])));
        for (int r = 0; r < 4; ++r)
            EXPECT_TRUE(sameBits(group[r], tree(&x[8 * static_cast<std::size_t>(r)])));
        for (int r = 0; r < 2; ++r) {
            const auto v =
                std::vector<double>(&x[4 * static_cast<std::size_t>(r)], &x[4 * static_cast<std::size_t>(r) + 4]);
            EXPECT_TRUE(sameBits(pair[r], tree(v.data())));
        }
    }
}

TEST(Sums, OfIntegersAreExact)
{
    const auto x = Random(5).any<int32_t>(8);
    uint32_t sum = 0;
    for (int32_t value : x)
        sum += static_cast<uint32_t>(value);
    EXPECT_EQ(sumLanes(reinterpret<U8>(load<I8>(x.data()))), sum);
}

TEST(Conversions, RoundTruncateWidenSaturate)
{
    const F8 v = {load<F8>(std::vector<float>{-2.5f, -1.5f, -0.5f, 0.5f, 1.5f, 2.5f, 1e20f, NAN}.data())};
    EXPECT_EQ(lanesOf(toIntRounded(v)), (std::vector<int>{-2, -2, 0, 0, 2, 2, INT32_MIN, INT32_MIN}));
    EXPECT_EQ(lanesOf(toIntTruncated(v)), (std::vector<int>{-2, -1, 0, 0, 1, 2, INT32_MIN, INT32_MIN}));
    const auto shorts = std::vector<int16_t>{-32768, -1, 0, 1, 2, 3, 4, 32767};
    EXPECT_EQ(lanesOf(widen(load<S8>(shorts.data()))), std::vector<int>(shorts.begin(), shorts.end()));
    const auto ints = std::vector<int>{-40000, -32768, -1, 0, 1, 32767, 32768, INT32_MAX};
    EXPECT_EQ(lanesOf(narrowSaturated(load<I8>(ints.data()))),
              (std::vector<int16_t>{-32768, -32768, -1, 0, 1, 32767, 32767, 32767}));
}

std::vector<int8_t> sorted(std::vector<int8_t> values)
{
    std::sort(values.begin(), values.end());
    return values;
}

// Packed as registers have it, the lanes are the same, in another order.
void expectBytes(C32 narrowed, C32 packed, const std::vector<int8_t>& wanted)
{
    EXPECT_EQ(lanesOf(narrowed), wanted);
    EXPECT_EQ(sorted(lanesOf(packed)), sorted(wanted));
    for (int i = 0; i < 32; ++i)
        EXPECT_EQ(signBits(narrowed) >> i & 1, wanted[static_cast<std::size_t>(i)] < 0) << i;
}

TEST(Conversions, BytesSaturateAndTheirSignsAreBits)
{
    Random random(5);
    const auto ints = random.vector<int32_t>(32, -200, 200);
    std::vector<int16_t> shorts(ints.begin(), ints.end());
    std::vector<int8_t> wanted;
    for (int x : ints)
        wanted.push_back(static_cast<int8_t>(std::clamp(x, -128, 127)));
    const auto eight = [&](int k) { return load<I8>(ints.data() + k); };
    expectBytes(narrowSaturated(eight(0), eight(8), eight(16), eight(24)),
                packSaturated(eight(0), eight(8), eight(16), eight(24)), wanted);
    const S16 low = load<S16>(shorts.data()), high = load<S16>(shorts.data() + 16);
    expectBytes(narrowSaturated(low, high), packSaturated(low, high), wanted);
}

template <class V, int count>
void expectLowLanes(Random& random)
{
    using Lane = typename V::Lane;
    const auto values = random.vector<Lane>(count, -100, 100);
    Guarded<Lane> source(values), destination(count);
    const V v = loadLow<count, V>(source);
    storeLow<count>(destination.data(), v);
    EXPECT_TRUE(equalBits(destination.values(), values));
    for (int i = count; i < V::lanes; ++i)
        EXPECT_EQ(v[i], Lane{0});
}

TEST(LowLanes, LoadsAndStoresStayInsideTheRow)
{
    Random random(5);
    expectLowLanes<F4, 2>(random);
    expectLowLanes<F4, 1>(random);
    expectLowLanes<S8, 4>(random);
    expectLowLanes<S8, 2>(random);
    expectLowLanes<S8, 1>(random);
}

template <class V>
class ShortVectors : public testing::Test {
};
using ShortVectorTypes = testing::Types<S8, S16>;
TYPED_TEST_SUITE(ShortVectors, ShortVectorTypes);

TYPED_TEST(ShortVectors, SaturatingSumsAndExactProducts)
{
    using V = TypeParam;
    Random random(6);
    for (int i = 0; i < 200; ++i) {
        const auto values = random.any<int16_t>(4 * V::lanes);
        const auto vector = [&](int which) { return load<V>(&values[static_cast<std::size_t>(which * V::lanes)]); };
        const V a = vector(0), b = vector(1), c = vector(2), d = vector(3);
        const V sum = addSaturated(a, b), difference = subtractSaturated(a, b);
        const V product = packSaturated(multiplyUnpacked(a, b) >> 14);
        const V pairs = packSaturated(multiplyAddPairs(unpack(a, b), unpack(c, d)) >> 14);
        const V joined = packSaturated(unpack(a, b) >> 16);
        const auto limited = [](int v) { return std::clamp(v, -32768, 32767); };
        for (int lane = 0; lane < V::lanes; ++lane) {
            EXPECT_EQ(sum[lane], limited(a[lane] + b[lane]));
            EXPECT_EQ(difference[lane], limited(a[lane] - b[lane]));
            EXPECT_EQ(product[lane], limited(a[lane] * b[lane] >> 14));
            EXPECT_EQ(pairs[lane], limited((a[lane] * c[lane] + b[lane] * d[lane]) >> 14));
            EXPECT_EQ(joined[lane], b[lane]);
        }
    }
}

TYPED_TEST(ShortVectors, LanesOfEachEightComeToTheFront)
{
    using V = TypeParam;
    Random random(7);
    const auto values = random.any<int16_t>(V::lanes);
    const V v = load<V>(values.data());
    for (int first = 0; first <= 8; ++first)
        for (int count = 0; first + count <= 8; ++count) {
            const V moved = lanesInFront(v, first, count);
            for (int lane = 0; lane < V::lanes; ++lane)
                EXPECT_EQ(moved[lane], lane % 8 < count ? v[lane + first] : 0);
        }
}

TEST(Eights, FromOnePlaceAndFromTwo)
{
    Random random(8);
    const Guarded<int16_t> low(random.any<int16_t>(8)), high(random.any<int16_t>(8));
    const S16 both = loadEights(low.data(), high.data()), twice = loadInEachEight<16>(low.data());
    for (int lane = 0; lane < 16; ++lane) {
        EXPECT_EQ(both[lane], lane < 8 ? low[lane] : high[lane - 8]);
        EXPECT_EQ(twice[lane], low[lane % 8]);
    }
}

TEST(Shifts, ByAnyAmount)
{
    const I8 v = load<I8>(std::vector<int32_t>{0, 1, -1, 5, -5, 1 << 30, INT_MAX, INT_MIN}.data());
    for (int amount : {-INT_MAX, -64, -32, -31, -3, 0, 3, 31, 32, 64, INT_MAX}) {
        const I8 shifted = Shift(amount)(v);
        for (int lane = 0; lane < 8; ++lane) {
            const int64_t right = v[lane] >> std::clamp(-amount, 0, 31);
            EXPECT_EQ(shifted[lane], static_cast<int32_t>(right * (int64_t{1} << std::clamp(amount, 0, 32))));
        }
    }
}

}  // namespace
}  // namespace zimsr::test
