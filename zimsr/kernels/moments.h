// Weighted first and second moments around a mean, added to running sums.
#pragma once

#include <cstddef>

#include "base/kernels/elementwise.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

template <class V>
struct Moments {
    V first, second;

    ZIM_INLINE Moments operator+(Moments b) const { return {first + b.first, second + b.second}; }
};

// first[j] += d * weight and second[j] += d * (d * weight), for d = x[j] - mean[j].
template <class T>
inline void addMoments(const T* x, const T* mean, T* first, T* second, std::size_t len, T weight)
{
    using V = FloatVector<T>;
    const auto added = [weight](V value, V centre, V firstSum, V secondSum) ZIM_INLINE_LAMBDA {
        const V deviation = value - centre, weighted = deviation * splat<V>(weight);
        return Moments<V>{firstSum + weighted, secondSum + deviation * weighted};
    };
    const auto addedAt = [=](std::size_t j) ZIM_INLINE_LAMBDA {
        return added(load<V>(x + j), load<V>(mean + j), load<V>(first + j), load<V>(second + j));
    };
    const auto put = [=](std::size_t j, Moments<V> moments) ZIM_INLINE_LAMBDA {
        store(first + j, moments.first);
        store(second + j, moments.second);
    };
    if (len < V::lanes) {
        const int count = static_cast<int>(len);
        const Moments<V> moments = added(loadFirst<V>(x, count), loadFirst<V>(mean, count), loadFirst<V>(first, count),
                                         loadFirst<V>(second, count));
        storeFirst(first, moments.first, count);
        storeFirst(second, moments.second, count);
        return;
    }
    // The last vector overlaps the one before it, so it is made from the sums as they were.
    const std::size_t last = len - V::lanes;
    const Moments<V> lastMoments = addedAt(last);
    for (std::size_t j = 0; j < last; j += V::lanes)
        put(j, addedAt(j));
    put(last, lastMoments);
}

}  // namespace zimsr
