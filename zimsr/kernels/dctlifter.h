// Cosine matrix, lifter and the matrix-vector product.
//
// A row is summed in one vector of eight lanes, in the order of its elements, whatever its place in the matrix; but that
// of C0 from left to right.
#pragma once

#include <numbers>

#include <zimsr/types.h>

#include "zimcore/elementary/elementary.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

// rows[i][j] = cos(pi * i * (j + 1/2) / lenDCT), then zeros up to a full vector.
inline void fillCosines(Zim32f* const* rows, int lenDCT, int rowCount)
{
    for (int i = 0; i < rowCount; ++i) {
        const double frequency = i * std::numbers::pi;
        Zim32f* row = rows[i];
        for (int j = 0; j < lenDCT; ++j) {
            const Zim32f middle = static_cast<Zim32f>(j + 1) - 0.5f;
            row[j] = static_cast<Zim32f>(elementary::cos(middle * frequency / lenDCT));
        }
        for (int j = lenDCT; j % F8::lanes != 0; ++j)
            row[j] = 0;
    }
}

// lifter[i] = (1 + nLifter / 2 * sin(pi * i / nLifter)) * val, for i = 0 .. lenCepstrum.
inline void fillSineLifter(Zim32f* lifter, int lenCepstrum, int nLifter, Zim32f val)
{
    const double half = static_cast<Zim32f>(nLifter) * 0.5f;
    for (int i = 0; i <= lenCepstrum; ++i) {
        const double angle = static_cast<double>(static_cast<Zim32f>(i)) * std::numbers::pi / nLifter;
        lifter[i] = static_cast<Zim32f>(1.0 + half * elementary::sin(angle)) * val;
    }
}

// The table holds the factors of the cepstra 1 .. lenCepstrum.
template <class Factor>
void fillTableLifter(Zim32f* lifter, int lenCepstrum, const Factor* table, Zim32f c0)
{
    lifter[0] = c0;
    for (int i = 1; i <= lenCepstrum; ++i)
        lifter[i] = static_cast<Zim32f>(table[i - 1]);
}

ZIM_INLINE F8 toFloats(F8 v)
{
    return v;
}

ZIM_INLINE F8 toFloats(I8 v)
{
    return toFloat(v);
}

ZIM_INLINE F8 toFloats(S8 v)
{
    return toFloat(widen(v));
}

// The input of a transform, as floats in vectors of eight. The last, partial vector is loaded once for all rows.
template <class Source>
struct TransformInput {
    using Elements = Vec<Source, 8>;

    const Source* src;
    int whole;  // elements in full vectors
    bool hasTail;
    F8 tail;

    TransformInput(const Source* source, int len)
        : src(source),
          whole(len & -8),
          hasTail(whole < len),
          tail(toFloats(loadFirst<Elements>(source + whole, len - whole)))
    {
    }

    // Adds the products with each row to its sum: rowSum(row, sum)...
    template <class... RowSum>
    ZIM_INLINE void multiply(RowSum... rowSum) const
    {
        for (int j = 0; j < whole; j += 8) {
            const F8 x = toFloats(load<Elements>(src + j));
            ((*rowSum.sum += x * load<F8>(rowSum.row + j)), ...);
        }
        if (hasTail)
            ((*rowSum.sum += tail * load<F8>(rowSum.row + whole)), ...);
    }
};

struct RowSum {
    const Zim32f* row;
    F8* sum;
};

// dst[i - 1] = (src . rows[i]) * lifter[i] for i = 1 .. lenCepstrum; with C0, dst[lenCepstrum] = (src . rows[0]) *
// lifter[0] behind them.
template <class Source>
void transformAndLift(const Source* src, Zim32f* dst, const Zim32f* const* rows, const Zim32f* lifter, int lenDCT,
                      int lenCepstrum, bool hasC0)
{
    const TransformInput<Source> input(src, lenDCT);
    int i = 1;
    for (; i + 3 <= lenCepstrum; i += 4) {
        F8 a = splat<F8>(0), b = a, c = a, d = a;
        input.multiply(RowSum{rows[i], &a}, RowSum{rows[i + 1], &b}, RowSum{rows[i + 2], &c}, RowSum{rows[i + 3], &d});
        store(dst + i - 1, sumLanesOfFour(a, b, c, d) * load<F4>(lifter + i));
    }
    for (; i <= lenCepstrum; ++i) {
        F8 sum = splat<F8>(0);
        input.multiply(RowSum{rows[i], &sum});
        dst[i - 1] = sumLanes(sum) * lifter[i];
    }
    if (hasC0) {
        Zim32f sum = 0;
        for (int j = 0; j < lenDCT; ++j)
            sum += static_cast<Zim32f>(src[j]) * rows[0][j];
        dst[lenCepstrum] = sum * lifter[0];
    }
}

}  // namespace zimsr
