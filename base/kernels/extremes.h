// The greatest and the smallest element. A NaN is passed over. Equal elements differ at most in the sign of a zero: the
// first one is taken, so that neither the order of the comparisons nor the width of a vector shows in a result.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

#include <zimsr/types.h>

#include "base/kernels/elementwise.h"

namespace zimsr {

// better takes the second vector's lane where the first is not better, or where either is NaN.
template <class Float>
struct Greatest {
    static constexpr Float start = -std::numeric_limits<Float>::infinity();
    template <class V>
    static ZIM_INLINE V better(V x, V best)
    {
        return max(x, best);
    }
    static bool isBetter(Float x, Float best) { return x > best; }
};

template <class Float>
struct Smallest {
    static constexpr Float start = std::numeric_limits<Float>::infinity();
    template <class V>
    static ZIM_INLINE V better(V x, V best)
    {
        return min(x, best);
    }
    static bool isBetter(Float x, Float best) { return x < best; }
};

// The extreme value of the row, start when all are NaN; a zero is of either sign.
template <class Order, class Float>
ZIM_INLINE Float extremeValue(const Float* src, std::size_t len)
{
    using V = FloatVector<Float>;
    constexpr std::size_t N = V::lanes;
    V a = splat<V>(Order::start), b = a, c = a, d = a;
    const auto take = [src](V best, std::size_t i) { return Order::better(load<V>(src + i), best); };
    if (len < N) {
        for (std::size_t i = 0; i < len; ++i)
            a = Order::better(splat<V>(src[i]), a);
    } else {
        std::size_t i = 0;
        for (; i + 4 * N <= len; i += 4 * N) {
            a = take(a, i);
            b = take(b, i + N);
            c = take(c, i + 2 * N);
            d = take(d, i + 3 * N);
        }
        for (; i + N <= len; i += N)
            b = take(b, i);
        a = take(a, len - N);
    }
    a = Order::better(Order::better(a, b), Order::better(c, d));
    Float best = a[0];
    for (int lane = 1; lane < V::lanes; ++lane)
        best = Order::isBetter(a[lane], best) ? a[lane] : best;
    return best;
}

// The place of the first element equal to value, or 0 if there is none.
template <class Float>
ZIM_INLINE std::size_t firstPlace(const Float* src, std::size_t len, Float value)
{
    using V = FloatVector<Float>;
    constexpr std::size_t N = V::lanes;
    const auto equalAt = [=](std::size_t i) { return load<V>(src + i) == splat<V>(value); };
    if (len < N) {
        const Float* found = std::find(src, src + len, value);
        return found == src + len ? 0 : static_cast<std::size_t>(found - src);
    }
    std::size_t i = 0;
    while (i + 4 * N <= len && !anySet(equalAt(i) | equalAt(i + N) | equalAt(i + 2 * N) | equalAt(i + 3 * N)))
        i += 4 * N;
    for (; i + N < len; i += N)
        if (const auto equal = equalAt(i); anySet(equal))
            return i + static_cast<std::size_t>(firstSet(equal));
    const auto equal = equalAt(len - N);
    return anySet(equal) ? len - N + static_cast<std::size_t>(firstSet(equal)) : 0;
}

// The first of the extreme elements, or the first element when all are NaN. Inlined, since on 32-bit x86 a float is
// returned through the stack unit, which makes a signalling NaN quiet.
template <class Order, class Float>
ZIM_INLINE Float extreme(const Float* src, std::size_t len)
{
    const Float best = extremeValue<Order>(src, len);
    return best == 0 || best == Order::start ? src[firstPlace(src, len, best)] : best;
}

// Its place. The row is taken in stretches, and searched again only where a stretch brings a new extreme.
template <class Order, class Float>
inline std::size_t extremePlace(const Float* src, std::size_t len)
{
    constexpr std::size_t stretch = 2048;
    Float best = Order::start;
    std::size_t place = 0;
    for (std::size_t i = 0; i < len; i += stretch) {
        const std::size_t count = std::min(stretch, len - i);
        const Float value = extremeValue<Order>(src + i, count);
        if (Order::isBetter(value, best)) {
            best = value;
            place = i + firstPlace(src + i, count, value);
        }
    }
    return best == Order::start ? firstPlace(src, len, best) : place;
}

// The better of two elements; srcDst stays where src is not better, or where either is NaN.
template <template <class> class Order, class Float>
ZIM_INLINE void extremeInPlace(const Float* src, Float* srcDst, std::size_t len)
{
    using V = FloatVector<Float>;
    mapElements<V::lanes>(
        srcDst, len, [](V best, V x) { return Order<Float>::better(x, best); }, srcDst, src);
}

ZIM_INLINE void smallestInPlace(const Zim32s* src, Zim32s* srcDst, std::size_t len)
{
    mapElements<8>(
        srcDst, len, [](I8 best, I8 x) { return select(x < best, x, best); }, srcDst, src);
}

}  // namespace zimsr
