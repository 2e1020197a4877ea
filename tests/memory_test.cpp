// Fill and copy: to the bit, at every length and place, on both sides of the length where they pass the cache by.
#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <numeric>
#include <vector>

#include <zimsr/memory.h>

#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/shapes.h"

namespace zimsr::test {
namespace {

// Values whose bits a float operation would not keep among them.
const auto signallingNaN = std::bit_cast<Zim32f>(0x7FA00001u);
const auto signallingNaN64 = std::bit_cast<Zim64f>(UINT64_C(0xFFF4000000000001));

// Every element equals value: the first does, and each is as the one before it.
template <class T>
testing::AssertionResult allAre(const Guarded<T>& array, const T& value)
{
    if (std::memcmp(array.data(), &value, sizeof(T)) != 0)
        return testing::AssertionFailure() << "the first element differs";
    if (std::memcmp(array.data(), array.data() + 1, (array.size() - 1) * sizeof(T)) != 0)
        return testing::AssertionFailure() << "an element behind the first differs";
    return testing::AssertionSuccess();
}

// Every length at the start of the row, and lengths around half a megabyte, at places that are odd for a vector.
template <class T, class Run>
void forEachLengthAndPlace(Run run)
{
    forEachShape([&](Shape shape) { run(shape.len, shape.place<T>()); });
    constexpr int threshold = 524288 / sizeof(T);
    for (int len : {threshold - 1, threshold, threshold + 1, threshold + 77})
        for (std::size_t offset : {std::size_t{0}, sizeof(T), 32 - sizeof(T), 3 * sizeof(T)})
            run(len, atOffset(offset));
}

template <class T>
void expectSets(ZimStatus (*set)(T, T*, int), T value)
{
    forEachLengthAndPlace<T>([&](int len, Placement placement) {
        const Guarded<T> dst(len, placement);
        EXPECT_EQ(set(value, dst, len), zimStsOk);
        EXPECT_TRUE(allAre(dst, value)) << len;
    });
}

TEST(Set, EveryBit)
{
    expectSets<Zim8u>(zimsSet_8u, 0x9C);
    expectSets<Zim16s>(zimsSet_16s, -12345);
    expectSets<Zim32s>(zimsSet_32s, -123456789);
    expectSets<Zim32f>(zimsSet_32f, signallingNaN);
    expectSets<Zim32f>(zimsSet_32f, -0.0f);
    expectSets<Zim64f>(zimsSet_64f, signallingNaN64);
}

template <class T>
void expectZeroes(ZimStatus (*zero)(T*, int))
{
    forEachLengthAndPlace<T>([&](int len, Placement placement) {
        const Guarded<T> dst(len, placement);
        EXPECT_EQ(zero(dst, len), zimStsOk);
        EXPECT_TRUE(allAre(dst, T{0})) << len;
    });
}

TEST(Zero, EveryBit)
{
    expectZeroes(zimsZero_8u);
    expectZeroes(zimsZero_16s);
    expectZeroes(zimsZero_32f);
    expectZeroes(zimsZero_64f);
}

template <class T>
void expectCopies(ZimStatus (*copy)(const T*, T*, int))
{
    forEachLengthAndPlace<T>([&](int len, Placement placement) {
        const Guarded<T> src(len, placement), dst(src.size(), atOffset(2 * sizeof(T)));
        auto* bytes = reinterpret_cast<unsigned char*>(src.data());
        // All patterns of a byte, so signalling NaNs too, and no two neighbours alike.
        for (std::size_t i = 0; i < src.size() * sizeof(T); ++i)
            bytes[i] = static_cast<unsigned char>(0xA1 * i + (i >> 8));
        EXPECT_EQ(copy(src, dst, len), zimStsOk);
        EXPECT_EQ(std::memcmp(dst.data(), src.data(), src.size() * sizeof(T)), 0) << len;
    });
}

TEST(Copy, EveryBit)
{
    expectCopies(zimsCopy_8u);
    expectCopies(zimsCopy_16s);
    expectCopies(zimsCopy_32f);
    expectCopies(zimsCopy_64f);
    expectCopies(zimsMove_32f);
}

TEST(Move, OverlapInEitherDirection)
{
    for (int len : {1, 2, 33, 1000, 200000})
        for (int distance : {1, 7, 500}) {
            const std::size_t count = len + distance;
            std::vector<Zim32f> values(count);
            std::iota(values.begin(), values.end(), 1.0f);
            const Guarded<Zim32f> up(values), down(values);
            EXPECT_EQ(zimsMove_32f(up, up + distance, len), zimStsOk);
            EXPECT_EQ(zimsMove_32f(down + distance, down, len), zimStsOk);
            for (int i = 0; i < len; ++i) {
                ASSERT_EQ(up[i + distance], static_cast<Zim32f>(i + 1));
                ASSERT_EQ(down[i], static_cast<Zim32f>(i + distance + 1));
            }
        }
}

TEST(Memory, Checks)
{
    expectPointersThenLength(zimsSet_8u, zimsSet_16s, zimsSet_32s, zimsSet_32f, zimsSet_64f, zimsZero_8u, zimsZero_16s,
                             zimsZero_32f, zimsZero_64f, zimsCopy_8u, zimsCopy_16s, zimsCopy_32f, zimsCopy_64f,
                             zimsMove_32f);
}

}  // namespace
}  // namespace zimsr::test
