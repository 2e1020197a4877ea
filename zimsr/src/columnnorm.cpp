// Mean and variance normalisation of the columns of a matrix.
#include <cstddef>

#include <zimsr/columnnorm.h>

#include "base/kernels/fill.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rounding.h"
#include "zimsr/kernels/columnnorm.h"

using namespace zimsr;
using namespace zimsr::columnnorm;

namespace {

template <class T, class Sum>
ZimStatus sumsFault(const T* src, int step, int height, const Sum* sum, const Sum* sumSq, int width)
{
    return firstFault(strideBelow(step, width), anyNull(src, sum, sumSq), anyBelowOne(height, width));
}

template <class Sum>
void clearSums(Sum* sum, Sum* sumSq, int width)
{
    fillBlock(Sum{0}, sum, static_cast<std::size_t>(width));
    fillBlock(Sum{0}, sumSq, static_cast<std::size_t>(width));
}

// The sums stand as Zim32f in the place of the integers that they become.
Zim32f* asFloats(Zim32s* sums)
{
    return reinterpret_cast<Zim32f*>(sums);
}

void takeToFloat(Zim32s* sum, Zim32s* sumSq, int width)
{
    const RoundToNearest mode;
    for (Zim32s* sums : {sum, sumSq})
        convertBlock(sums, asFloats(sums), static_cast<std::size_t>(width));
}

void quantiseSums(Zim32s* sum, Zim32s* sumSq, int width, int scaleFactor)
{
    constexpr int toNearest = 1;
    for (Zim32s* sums : {sum, sumSq})
        quantiseBlock(asFloats(sums), sums, static_cast<std::size_t>(width), toNearest, scaleFactor);
}

}  // namespace

// ---- Sums

ZimStatus zimsSumMeanVar_32f(const Zim32f* src, int step, int height, Zim32f* sum, Zim32f* sumSq, int width)
{
    if (ZimStatus fault = sumsFault(src, step, height, sum, sumSq, width))
        return fault;
    clearSums(sum, sumSq, width);
    addRows(Rows(src, step), height, sum, sumSq, width);
    return zimStsOk;
}

ZimStatus zimsSumMeanVar_32f_I(const Zim32f* src, int step, int height, Zim32f* sum, Zim32f* sumSq, int width)
{
    if (ZimStatus fault = sumsFault(src, step, height, sum, sumSq, width))
        return fault;
    addRows(Rows(src, step), height, sum, sumSq, width);
    return zimStsOk;
}

ZimStatus zimsSumMeanVar_16s32f(const Zim16s* src, int step, int height, Zim32f* sum, Zim32f* sumSq, int width)
{
    if (ZimStatus fault = sumsFault(src, step, height, sum, sumSq, width))
        return fault;
    clearSums(sum, sumSq, width);
    addRows(Rows(src, step), height, sum, sumSq, width);
    return zimStsOk;
}

ZimStatus zimsSumMeanVar_16s32f_I(const Zim16s* src, int step, int height, Zim32f* sum, Zim32f* sumSq, int width)
{
    if (ZimStatus fault = sumsFault(src, step, height, sum, sumSq, width))
        return fault;
    addRows(Rows(src, step), height, sum, sumSq, width);
    return zimStsOk;
}

ZimStatus zimsSumMeanVar_16s32s_Sfs(const Zim16s* src, int step, int height, Zim32s* sum, Zim32s* sumSq, int width,
                                    int scaleFactor)
{
    if (ZimStatus fault = sumsFault(src, step, height, sum, sumSq, width))
        return fault;
    clearSums(sum, sumSq, width);
    addRows(Rows(src, step), height, asFloats(sum), asFloats(sumSq), width);
    quantiseSums(sum, sumSq, width, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsSumMeanVar_16s32s_ISfs(const Zim16s* src, int step, int height, Zim32s* sum, Zim32s* sumSq, int width,
                                     int scaleFactor)
{
    if (ZimStatus fault = sumsFault(src, step, height, sum, sumSq, width))
        return fault;
    takeToFloat(sum, sumSq, width);
    addRows(Rows(src, step), height, asFloats(sum), asFloats(sumSq), width);
    quantiseSums(sum, sumSq, width, scaleFactor);
    return zimStsOk;
}

// ---- Normalisation

ZimStatus zimsNormalizeColumn_32f_D2(Zim32f* srcDst, int step, int height, const Zim32f* mean, const Zim32f* val,
                                     int width)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst, mean, val), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    normaliseRows(Rows(srcDst, step), height, mean, val, width);
    return zimStsOk;
}

ZimStatus zimsNormalizeColumn_32f_D2L(Zim32f* const* rows, int height, const Zim32f* mean, const Zim32f* val, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, val), anyBelowOne(height, width)))
        return fault;
    normaliseRows(Rows(rows), height, mean, val, width);
    return zimStsOk;
}

// Whether a matrix of samples is aligned decides on the arithmetic.
ZimStatus zimsNormalizeColumn_16s_D2Sfs(Zim16s* srcDst, int step, int height, const Zim16s* mean, const Zim16s* val,
                                        int width, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst, mean, val), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    if (allAligned(16, srcDst, mean, val) && step % 8 == 0)
        normaliseAlignedRows(Rows(srcDst, step), height, mean, val, width, scaleFactor);
    else
        normaliseRows(Rows(srcDst, step), height, mean, val, width, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsNormalizeColumn_16s_D2LSfs(Zim16s* const* rows, int height, const Zim16s* mean, const Zim16s* val,
                                         int width, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, val), anyBelowOne(height, width)))
        return fault;
    if (allAligned(16, mean, val) && !RowMatrAlErr(rows, height))
        normaliseAlignedRows(Rows(rows), height, mean, val, width, scaleFactor);
    else
        normaliseRows(Rows(rows), height, mean, val, width, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsNormalizeCol_32f_D2(const Zim32f* mean, const Zim32f* val, int width, Zim32f* srcDst, int step,
                                  int height)
{
    return zimsNormalizeColumn_32f_D2(srcDst, step, height, mean, val, width);
}
