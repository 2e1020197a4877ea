// Quadratic form of a vector with a block-diagonal matrix, sum over rows i of d[i] * (sum over j of M[i][j] * d[j]),
// and the log-likelihood made of it.
#pragma once

#include <cstddef>
#include <type_traits>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "base/kernels/sums.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/blockdiagonal_state.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/loggauss_fixed.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// ---- d = x - mean, saturating in 16 bits

template <class Float>
inline void subtractMean(const Float* x, const Float* mean, Float* deviations, std::size_t len)
{
    using V = FloatVector<Float>;
    mapElements<V::lanes>(
        deviations, len, [](V value, V centre) { return value - centre; }, x, mean);
}

inline void subtractMean(const Zim16s* x, const Zim16s* mean, Zim16s* deviations, std::size_t len)
{
    mapElements<8>(
        deviations, len, [](S8 value, S8 centre) { return subtractSaturated(value, centre); }, x, mean);
}

// ---- Each row of the matrix times the deviations in its block

template <class V>
struct Product {
    using Sum = V;
    ZIM_INLINE V operator()(V a, V b) const { return a * b; }
};

// An exact integer, then a float.
struct IntegerProduct {
    using Sum = F8;
    ZIM_INLINE F8 operator()(S8 a, S8 b) const { return toFloat(multiplyWide(a, b)); }
};

template <class T>
using RowTerm = std::conditional_t<std::is_integral_v<T>, IntegerProduct, Product<FloatVector<T>>>;

template <class T>
using RowSumOf = typename RowTerm<T>::Sum::Lane;

template <class T>
inline void multiplyRows(const BlockDMatrixFields<T>& matrix, const T* deviations, RowSumOf<T>* sums)
{
    std::ptrdiff_t first = 0;
    for (Zim32s b = 0; b < matrix.blockCount; ++b) {
        const Zim32s size = matrix.blockSizes[b];
        sumRows(RowTerm<T>{}, Groups<4, 1>{}, size, size, StoreScores{sums + first}, Shared{deviations + first},
                Rows<const T>(matrix.rows + first));
        first += size;
    }
}

// ---- gconst - 0.5 * sum over i of d[i] * sums[i]

inline Zim32f blockScore(const Zim32f* deviations, const Zim32f* sums, std::size_t len, Zim32f gconst)
{
    const Zim64f form = dotProduct(deviations, sums, len);
    return static_cast<Zim32f>(FromHalvedSum{}(Zim64f{gconst}, form));
}

inline Zim64f blockScore(const Zim64f* deviations, const Zim64f* sums, std::size_t len, Zim64f gconst)
{
    return FromHalvedSum{}(gconst, dotProduct(deviations, sums, len));
}

inline Zim64f blockScore(const Zim32f* deviations, const Zim32f* sums, std::size_t len, Zim64f gconst)
{
    return FromHalvedSum{}(gconst, wideDotProduct(deviations, sums, len));
}

inline Zim32f fixedForm(const Zim16s* deviations, const Zim32f* sums, std::size_t len)
{
    return sumLanes(sumVectors<F8>(
        len, [](S8 deviation, F8 sum) { return toFloat(widen(deviation)) * sum; }, deviations, sums));
}

inline Zim32f blockScore(const Zim16s* deviations, const Zim32f* sums, std::size_t len, Zim32f gconst, int scaleFactor)
{
    return gconst + scaledSum(0 - 0.5f * fixedForm(deviations, sums, len), GetScale_32s32f(scaleFactor));
}

// Limited to 32 bits and truncated.
inline Zim32s blockScore(const Zim16s* deviations, const Zim32f* sums, std::size_t len, Zim32s gconst, int scaleFactor)
{
    const Zim32f form = scaledSum(fixedForm(deviations, sums, len), GetScale_32s32f(scaleFactor));
    const Zim32f score = static_cast<Zim32f>(gconst) - 0.5f * form;
    return quantise(splat<F8>(score), Truncate{}, Zim32s{})[0];
}

}  // namespace zimsr
