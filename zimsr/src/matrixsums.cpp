// Sums of rows and columns, and the scaled sums of one row or column.
#include <cstddef>

#include <zimsr/matrixsums.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/columnstats.h"
#include "zimsr/kernels/matrixsums.h"

using namespace zimsr;

namespace {

// The sums are formed in place of the results, and rounded there to nearest.
Zim32f* asFloats(Zim32s* dst)
{
    return reinterpret_cast<Zim32f*>(dst);
}

void roundInPlace(Zim32s* srcDst, int len, int scaleFactor)
{
    quantiseBlock(asFloats(srcDst), srcDst, static_cast<std::size_t>(len), 1, scaleFactor);
}

constexpr ZimStatus outsideColumn(int width, int height, int col, int firstRow)
{
    return faultIf(width < 1 || height < 1 || col < 0 || col >= width || firstRow < 0 || firstRow >= height,
                   zimStsBadSize);
}

}  // namespace

// ---- Sums of columns

ZimStatus zimsSumColumn_32f_D2(const Zim32f* src, int step, int height, Zim32f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    sumColumns(Rows(src, step), height, dst, width, 1.0f);
    return zimStsOk;
}

ZimStatus zimsSumColumn_32f_D2L(const Zim32f* const* rows, int height, Zim32f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(height, width)))
        return fault;
    sumColumns(Rows(rows), height, dst, width, 1.0f);
    return zimStsOk;
}

ZimStatus zimsSumColumn_64f_D2(const Zim64f* src, int step, int height, Zim64f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    sumColumns(Rows(src, step), height, dst, width, 1.0);
    return zimStsOk;
}

ZimStatus zimsSumColumn_64f_D2L(const Zim64f* const* rows, int height, Zim64f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(height, width)))
        return fault;
    sumColumns(Rows(rows), height, dst, width, 1.0);
    return zimStsOk;
}

ZimStatus zimsSumColumn_16s32f_D2(const Zim16s* src, int step, int height, Zim32f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    sumColumns(Rows(src, step), height, dst, width, 1.0f);
    return zimStsOk;
}

ZimStatus zimsSumColumn_16s32f_D2L(const Zim16s* const* rows, int height, Zim32f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(height, width)))
        return fault;
    sumColumns(Rows(rows), height, dst, width, 1.0f);
    return zimStsOk;
}

ZimStatus zimsSumColumn_16s32s_D2Sfs(const Zim16s* src, int step, int height, Zim32s* dst, int width, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    sumColumns(Rows(src, step), height, asFloats(dst), width, 1.0f);
    roundInPlace(dst, width, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsSumColumn_16s32s_D2LSfs(const Zim16s* const* rows, int height, Zim32s* dst, int width, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(height, width)))
        return fault;
    sumColumns(Rows(rows), height, asFloats(dst), width, 1.0f);
    roundInPlace(dst, width, scaleFactor);
    return zimStsOk;
}

// ---- Sums of rows

ZimStatus zimsSumRow_32f_D2(const Zim32f* src, int width, int step, Zim32f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    sumsOfRows(Rows(src, step), width, dst, height);
    return zimStsOk;
}

ZimStatus zimsSumRow_32f_D2L(const Zim32f* const* rows, int width, Zim32f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(width, height)))
        return fault;
    sumsOfRows(Rows(rows), width, dst, height);
    return zimStsOk;
}

ZimStatus zimsSumRow_64f_D2(const Zim64f* src, int width, int step, Zim64f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    sumsOfRows(Rows(src, step), width, dst, height);
    return zimStsOk;
}

ZimStatus zimsSumRow_64f_D2L(const Zim64f* const* rows, int width, Zim64f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(width, height)))
        return fault;
    sumsOfRows(Rows(rows), width, dst, height);
    return zimStsOk;
}

ZimStatus zimsSumRow_16s32f_D2(const Zim16s* src, int width, int step, Zim32f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    sumsOfRows(Rows(src, step), width, dst, height);
    return zimStsOk;
}

ZimStatus zimsSumRow_16s32f_D2L(const Zim16s* const* rows, int width, Zim32f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(width, height)))
        return fault;
    sumsOfRows(Rows(rows), width, dst, height);
    return zimStsOk;
}

ZimStatus zimsSumRow_16s32s_D2Sfs(const Zim16s* src, int width, int step, Zim32s* dst, int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    sumsOfRows(Rows(src, step), width, asFloats(dst), height);
    roundInPlace(dst, height, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsSumRow_16s32s_D2LSfs(const Zim16s* const* rows, int width, Zim32s* dst, int height, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(width, height)))
        return fault;
    sumsOfRows(Rows(rows), width, asFloats(dst), height);
    roundInPlace(dst, height, scaleFactor);
    return zimStsOk;
}

// ---- One row, one column

ZimStatus zimsSumRowAbs_64f(const Zim64f* src, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = sumOfMagnitudes(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSumRowSqr_64f(Zim64f* srcDst, int len, Zim64f* dst, Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst, dst), anyBelowOne(len)))
        return fault;
    *dst = scaleAndSumSquares(srcDst, static_cast<std::size_t>(len), val);
    return zimStsOk;
}

ZimStatus zimsSumColumnAbs_64f_D2L(const Zim64f* const* rows, int width, int height, Zim64f* dst, int col, int firstRow)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), outsideColumn(width, height, col, firstRow)))
        return fault;
    *dst = sumColumnMagnitudes(Rows(rows), col, firstRow, height);
    return zimStsOk;
}

ZimStatus zimsSumColumnSqr_64f_D2L(Zim64f* const* rows, int width, int height, Zim64f* dst, int col, int firstRow,
                                   Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), outsideColumn(width, height, col, firstRow)))
        return fault;
    *dst = scaleColumnAndSumSquares(Rows(rows), col, firstRow, height, val);
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsSumCol_32f_D2(const Zim32f* src, int step, Zim32f* dst, int height, int width)
{
    return zimsSumColumn_32f_D2(src, step, height, dst, width);
}

ZimStatus zimsSumCol_32f_D2L(const Zim32f* const* rows, int width, Zim32f* dst, int height)
{
    return zimsSumColumn_32f_D2L(rows, height, dst, width);
}

ZimStatus zimsSumCol_64f_D2(const Zim64f* src, int step, Zim64f* dst, int height, int width)
{
    return zimsSumColumn_64f_D2(src, step, height, dst, width);
}

ZimStatus zimsSumCol_64f_D2L(const Zim64f* const* rows, int width, Zim64f* dst, int height)
{
    return zimsSumColumn_64f_D2L(rows, height, dst, width);
}

ZimStatus zimsSumAllRow_32f_D2(const Zim32f* src, int step, int height, Zim32f* dst, int width)
{
    return zimsSumColumn_32f_D2(src, step, height, dst, width);
}

ZimStatus zimsSumAllRow_32f_D2L(const Zim32f* const* rows, int height, Zim32f* dst, int width)
{
    return zimsSumColumn_32f_D2L(rows, height, dst, width);
}

ZimStatus zimsSumColAbs_64f_D2L(const Zim64f* const* rows, int width, int height, Zim64f* dst, int col, int firstRow)
{
    return zimsSumColumnAbs_64f_D2L(rows, width, height, dst, col, firstRow);
}

ZimStatus zimsSumColSqr_64f_D2L(Zim64f* const* rows, int width, int height, Zim64f* dst, int col, int firstRow,
                                Zim64f val)
{
    return zimsSumColumnSqr_64f_D2L(rows, width, height, dst, col, firstRow, val);
}
