// Sign changes at every length and place, against counts pair by pair.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <functional>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/random.h"
#include "support/shapes.h"

namespace zimsr::test {
namespace {

// ---- What a pair adds

int belowZero(float a, float b)
{
    return !(a * b >= 0);
}

int signOfProduct(float a, float b)
{
    return std::signbit(a * b);
}

int belowZeroInWords(Zim16s a, Zim16s b)
{
    return a * b < 0;
}

template <class T>
int halfSteps(T a, T b)
{
    const auto sgn = [](T x) { return x > 0 ? 1 : x == 0 ? 0 : -1; };
    return std::abs(sgn(b) - sgn(a));
}

int differentSignBits(float a, float b)
{
    return std::signbit(a) != std::signbit(b);
}

template <class T>
long long countOver(const std::vector<T>& x, std::size_t first, std::size_t end, int (*ofPair)(T, T))
{
    long long count = 0;
    for (std::size_t i = first; i + 1 < end; ++i)
        count += ofPair(x[i], x[i + 1]);
    return count;
}

template <class T, class Result>
Result counted(ZimStatus (*door)(const T*, int, Result*), const T* src, std::size_t len)
{
    const Guarded<Result> res(1);
    EXPECT_EQ(door(src, static_cast<int>(len), res), zimStsOk);
    return res[0];
}

// Runs over lengths and places with values of a list, in any order.
template <class T>
void overShapes(const std::vector<T>& values, const std::function<void(const std::vector<T>&, const T*, Shape)>& run)
{
    Random random(1);
    forEachShape([&](Shape shape) {
        std::vector<T> x;
        for (int i = 0; i < shape.len; ++i)
            x.push_back(values[random.between<std::size_t>(0, values.size() - 1)]);
        const Guarded<T> src(x, shape.template place<T>());
        run(x, src.data(), shape);
    });
}

constexpr float inf = std::numeric_limits<float>::infinity();
const std::vector<float> numbers = {1, -1, 0.5f, -2, 0.0f, -0.0f, 1e-30f, -1e-30f, 3e38f, -3e38f};
const std::vector<float> allNumbers = {1, -1, 0.0f, -0.0f, inf, -inf, std::nanf(""), -std::nanf("")};

TEST(SignChangeRate, HalfStepsAndSignBits)
{
    for (const auto& list : {numbers, allNumbers})
        overShapes<float>(list, [](const auto& x, const float* src, Shape shape) {
            EXPECT_EQ(counted(zimsSignChangeRate_Count0_32f, src, x.size()),
                      0.5f * static_cast<float>(countOver(x, 0, x.size(), halfSteps<float>)))
                << shape;
            EXPECT_EQ(counted(zimsSignChangeRateXor_32f, src, x.size()), countOver(x, 0, x.size(), differentSignBits))
                << shape;
        });
}

TEST(SignChangeRate, Samples)
{
    for (const auto& list : {std::vector<Zim16s>{1, -1, 0}, std::vector<Zim16s>{32767, -32768, 255, -300, 1, -1, 0}})
        overShapes<Zim16s>(list, [](const auto& x, const Zim16s* src, Shape shape) {
            EXPECT_EQ(counted(zimsSignChangeRate_16s, src, x.size()), countOver(x, 0, x.size(), belowZeroInWords))
                << shape;
            EXPECT_EQ(counted(zimsSignChangeRate_Count0_16s, src, x.size()),
                      countOver(x, 0, x.size(), halfSteps<Zim16s>) / 2)
                << shape;
        });
}

// A product of -0.0 shows where the comparison ends and the sign bits begin.
TEST(SignChangeRate, ProductsAreComparedUpToTheFirstBoundary)
{
    overShapes<float>(numbers, [](const auto& x, const float* src, Shape shape) {
        const std::size_t toBoundary = -reinterpret_cast<std::uintptr_t>(src) % 16 / 4;
        const std::size_t compared = std::min(toBoundary, x.size() - 1);
        EXPECT_EQ(counted(zimsSignChangeRate_32f, src, x.size()),
                  static_cast<float>(countOver(x, 0, compared + 1, belowZero) +
                                     countOver(x, compared, x.size(), signOfProduct)))
            << shape;
    });
    alignas(16) const float zeros[] = {-1, 0, -1, 0, -1, 0, -1};
    EXPECT_EQ(counted(zimsSignChangeRate_32f, zeros, 7), 6);
    EXPECT_EQ(counted(zimsSignChangeRate_32f, zeros + 1, 6), 2);
}

TEST(SignChangeRate, ANanCounts)
{
    alignas(16) const float x[] = {1, std::nanf(""), 1, 1, 1, -std::nanf(""), 1, 1, inf, 0, 0};
    EXPECT_EQ(counted(zimsSignChangeRate_32f, x + 1, 3), 1) << "compared";
    EXPECT_EQ(counted(zimsSignChangeRate_32f, x, 4), 0) << "a NaN without a sign";
    EXPECT_EQ(counted(zimsSignChangeRate_32f, x + 4, 4), 2) << "a NaN with a sign";
    EXPECT_EQ(counted(zimsSignChangeRate_32f, x + 8, 3), 1) << "infinity times 0 has one";
}

// Wherever it stands in a long signal.
TEST(SignChangeRate, OneElementThatIsNoNumber)
{
    Random random(3);
    for (std::size_t len : {300, 1000})
        for (std::size_t place : {std::size_t{0}, std::size_t{1}, len / 2, len - 2, len - 1})
            for (float value : {inf, -inf, std::nanf(""), -std::nanf("")}) {
                std::vector<float> x;
                for (std::size_t i = 0; i < len; ++i)
                    x.push_back(numbers[random.between<std::size_t>(0, numbers.size() - 1)]);
                x[place] = value;
                const Guarded<float> src(x, atOffset(0));
                EXPECT_EQ(counted(zimsSignChangeRate_32f, src.data(), len),
                          static_cast<float>(countOver(x, 0, len, signOfProduct)))
                    << value << " at " << place << " of " << len;
            }
}

TEST(SignChangeRate, AnArrayOffItsAlignmentIsCompared)
{
    Random random(2);
    for (std::size_t len : {1, 2, 5, 40, 200}) {
        std::vector<float> x;
        for (std::size_t i = 0; i < len; ++i)
            x.push_back(numbers[random.between<std::size_t>(0, numbers.size() - 1)]);
        for (std::size_t offset : {1, 2, 3, 13}) {
            const Guarded<float> src(x, atOffset(offset));
            EXPECT_EQ(counted(zimsSignChangeRate_32f, src.data(), len),
                      static_cast<float>(countOver(x, 0, len, belowZero)));
            EXPECT_EQ(counted(zimsSignChangeRateXor_32f, src.data(), len), countOver(x, 0, len, differentSignBits));
            EXPECT_EQ(counted(zimsSignChangeRate_Count0_32f, src.data(), len),
                      0.5f * static_cast<float>(countOver(x, 0, len, halfSteps<float>)));
        }
    }
}

TEST(SignChangeRate, EveryPairOfALongSignal)
{
    constexpr std::size_t len = 600001;
    std::vector<float> x(len);
    std::vector<Zim16s> samples(len);
    for (std::size_t i = 0; i < len; ++i)
        x[i] = samples[i] = i % 2 ? -1 : 1;
    EXPECT_EQ(counted(zimsSignChangeRate_32f, x.data(), len), 600000);
    EXPECT_EQ(counted(zimsSignChangeRate_16s, samples.data(), len), 600000);
    EXPECT_EQ(counted(zimsSignChangeRate_Count0_32f, x.data(), len), 600000);
    EXPECT_EQ(counted(zimsSignChangeRate_Count0_16s, samples.data(), len), 600000);
    EXPECT_EQ(counted(zimsSignChangeRateXor_32f, x.data(), len), 600000);
}

TEST(SignChangeRate, ChecksComeInTheirOrder)
{
    expectPointersThenLength(zimsSignChangeRate_32f, zimsSignChangeRate_16s, zimsSignChangeRate_Count0_32f,
                             zimsSignChangeRate_Count0_16s, zimsSignChangeRateXor_32f);
}

}  // namespace
}  // namespace zimsr::test
