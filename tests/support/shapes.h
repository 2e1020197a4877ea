// Vector functions at every length and place, element by element against a formula.
//
//     expectElementwise<Zim32f>(zimsMul_32f, [](float a, float b) { return a * b; }, x, y);
//     expectInPlace(zimsAdd_32f_I, [](float old, float a) { return old + a; }, x, y);
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <tuple>
#include <vector>

#include <zimsr/types.h>

#include "support/compare.h"
#include "support/guarded.h"

namespace zimsr::test {

// A length, and where the arrays lie: ending at a protected page, or some elements past a boundary.
struct Shape {
    int len;
    int elementsPastBoundary = -1;

    template <class T>
    Placement place() const
    {
        return elementsPastBoundary < 0 ? Placement{}
                                        : atOffset(static_cast<std::size_t>(elementsPastBoundary) * sizeof(T));
    }
    // As many values as the length, from a list that is repeated; each length starts elsewhere.
    template <class T>
    std::vector<T> take(const std::vector<T>& values) const
    {
        std::vector<T> taken;
        for (int i = 0; i < len; ++i)
            taken.push_back(values[static_cast<std::size_t>(i + 3 * len) % values.size()]);
        return taken;
    }
};

inline std::ostream& operator<<(std::ostream& out, Shape shape)
{
    return out << "length " << shape.len << " at " << shape.elementsPastBoundary;
}

// All lengths up to some vectors, and a few long ones.
template <class Run>
void forEachShape(Run run)
{
    std::vector<int> lengths = {127, 128, 513, 2050};
    for (int len = 1; len <= 70; ++len)
        lengths.push_back(len);
    for (int len : lengths)
        for (int place : {-1, 0, 1, 2, 5})
            run(Shape{len, place});
}

// One call on an array that holds old values, and sources of the same shape.
template <class Result, class Call, class Element, class... Source>
void expectAtShape(Shape shape, const Guarded<Result>& dst, Call call, Element element,
                   const std::vector<Source>&... values)
{
    const std::vector<Result> old = dst.values();
    const auto sources = std::tuple(shape.take(values)...);
    std::apply(
        [&](const auto&... source) {
            std::vector<Result> wanted;
            for (std::size_t i = 0; i < old.size(); ++i)
                wanted.push_back(element(old[i], source[i]...));
            EXPECT_EQ(call(Guarded<Source>(source, shape.place<Source>()).data()..., dst.data(), shape.len), zimStsOk);
            EXPECT_TRUE(equalBits(dst.values(), wanted)) << shape;
        },
        sources);
}

// call(sources..., dst, len) writes element(values...).
template <class Result, class Call, class Element, class... Source>
void expectElementwise(Call call, Element element, const std::vector<Source>&... values)
{
    forEachShape([&](Shape shape) {
        const Guarded<Result> dst(static_cast<std::size_t>(shape.len), shape.place<Result>());
        expectAtShape(
            shape, dst, call, [&](Result, Source... value) { return element(value...); }, values...);
    });
}

// call(sources..., srcDst, len) replaces each old value by element(old, values...).
template <class Call, class Element, class Result, class... Source>
void expectInPlace(Call call, Element element, const std::vector<Result>& old, const std::vector<Source>&... values)
{
    forEachShape([&](Shape shape) {
        const Guarded<Result> srcDst(shape.take(old), shape.place<Result>());
        expectAtShape(shape, srcDst, call, element, values...);
    });
}

}  // namespace zimsr::test
