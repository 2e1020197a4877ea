// Evaluation of a filter bank: one walk over the spectrum, in vectors of eight bins.
//
// The bins between two centres belong to the upper slope of one filter and to the lower slope of the next, so each
// vector of the spectrum is loaded once and multiplied by both rows. Filters are short, often less than a vector: the
// last vector of a slope is read whole, and the products outside the slope are removed. Rows have room for that (see
// makeBank); the spectrum has, except at its end.
//
// The lanes of a filter's sum: bin c[i-1] enters lane 0, then the lower slope from bin c[i-1] + 1 on, then the upper
// slope from bin c[i] + 1 on, each slope from lane 0 on.
#pragma once

#include <zimsr/types.h>

#include "zimcore/frame/scaling.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

// Arithmetic of a bank in floating point: what a vector of bins is, and how products and sums are formed.
struct FloatBins {
    using Vector = F8;
    using Sum = F8;
    static ZIM_INLINE Sum first(Zim32f weight, Zim32f bin)
    {
        Sum sum = splat<F8>(0);
        sum.set(0, weight * bin);
        return sum;
    }
    static ZIM_INLINE Vector widened(F8 bins) { return bins; }
    static ZIM_INLINE Vector product(Vector weights, Vector bins) { return weights * bins; }
    static ZIM_INLINE void add(Sum& sum, Vector products) { sum += products; }
};

// Arithmetic of a bank in Q14: products of 32 bits that wrap, summed in 64.
struct IntegerBins {
    using Vector = I8;
    using Sum = L4;
    static ZIM_INLINE Sum first(Zim32s weight, Zim32s bin)
    {
        Sum sum = splat<L4>(0);
        sum.set(0, static_cast<Zim32s>(static_cast<Zim32u>(weight) * static_cast<Zim32u>(bin)));
        return sum;
    }
    static ZIM_INLINE Vector widened(S8 bins) { return widen(bins); }
    static ZIM_INLINE Vector widened(I8 bins) { return bins; }
    static ZIM_INLINE Vector product(Vector weights, Vector bins) { return weights * bins; }
    static ZIM_INLINE void add(Sum& sum, Vector products)
    {
        sum += widen(lowHalf(products)) + widen(highHalf(products));
    }
};

// A row of weights under multiplication, and the sum of the filter that it belongs to.
template <class Bins, class Weight>
struct Slope {
    const Weight* row;
    typename Bins::Sum* sum;
};

// Adds length bins to the sum of each slope, loading a vector of them once for all. end is where the spectrum ends.
template <class Bins, class T, class... Slopes>
ZIM_INLINE void addBins(const T* bins, std::ptrdiff_t length, const T* end, Slopes... slopes)
{
    using Vector = typename Bins::Vector;
    using Loaded = Vec<T, 8>;
    for (; length > 8; length -= 8, bins += 8, ((slopes.row += 8), ...)) {
        const Vector x = Bins::widened(load<Loaded>(bins));
        (Bins::add(*slopes.sum, Bins::product(load<Vector>(slopes.row), x)), ...);
    }
    const Vector x =
        Bins::widened(end - bins >= 8 ? load<Loaded>(bins) : loadFirst<Loaded>(bins, static_cast<int>(length)));
    const typename Vector::Mask inside = firstLanes<Vector>(static_cast<int>(length));
    (Bins::add(*slopes.sum, keep(inside, Bins::product(load<Vector>(slopes.row), x))), ...);
}

// Gives the sums of the filters 1 .. nFilter to store(filters before, sums, how many), four at a time. The spectrum can
// be read up to end.
template <class Bins, class T, class Weight, class Store>
ZIM_INLINE void evaluateBank(const T* spectrum, const T* end, const Zim32s* c, const Weight* const* lowerRows,
                             const Weight* const* upperRows, std::ptrdiff_t nFilter, Store store)
{
    using Sum = typename Bins::Sum;
    using Row = Slope<Bins, Weight>;
    Sum sums[4];
    Sum rising = Bins::first(lowerRows[0][0], spectrum[c[0]]);
    addBins<Bins>(spectrum + c[0] + 1, c[1] - c[0], end, Row{lowerRows[0] + 1, &rising});
    std::ptrdiff_t waiting = 0;
    for (std::ptrdiff_t i = 1; i < nFilter; ++i) {
        // Between the centres i and i + 1, filter i falls and filter i + 1 rises.
        Sum falling = rising;
        const T* centre = spectrum + c[i];
        rising = Bins::first(lowerRows[i][0], *centre);
        addBins<Bins>(centre + 1, c[i + 1] - c[i], end, Row{upperRows[i - 1], &falling},
                      Row{lowerRows[i] + 1, &rising});
        sums[waiting++] = falling;
        if (waiting == 4) {
            store(i - 4, sums, 4);
            waiting = 0;
        }
    }
    addBins<Bins>(spectrum + c[nFilter] + 1, c[nFilter + 1] - c[nFilter], end, Row{upperRows[nFilter - 1], &rising});
    sums[waiting++] = rising;
    const std::ptrdiff_t last = waiting;
    for (; waiting < 4; ++waiting)
        sums[waiting] = rising;
    store(nFilter - last, sums, static_cast<int>(last));
}

}  // namespace zimsr
