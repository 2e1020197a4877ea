// A vector against all rows of a matrix.
#include <zimsr/matrixsums.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/rowoperations.h"

using namespace zimsr;

ZimStatus zimsAddAllRowSum_32f_D2(const Zim32f* src, int step, int height, Zim32f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(step, width)))
        return fault;
    addAllRows(Rows(src, step), height, dst, width);
    return zimStsOk;
}

ZimStatus zimsAddAllRowSum_32f_D2L(const Zim32f* const* rows, int height, Zim32f* dst, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, dst), anyBelowOne(height, width)))
        return fault;
    addAllRows(Rows(rows), height, dst, width);
    return zimStsOk;
}

ZimStatus zimsSubRow_32f_D2(const Zim32f* val, int width, Zim32f* srcDst, int step, int height)
{
    if (ZimStatus fault = firstFault(anyNull(val, srcDst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    updateRows(val, Rows(srcDst, step), width, height, Subtract{});
    return zimStsOk;
}

ZimStatus zimsSubRow_32f_D2L(const Zim32f* val, Zim32f* const* rows, int width, int height)
{
    if (ZimStatus fault = firstFault(anyNull(val, rows), anyBelowOne(width, height)))
        return fault;
    updateRows(val, Rows(rows), width, height, Subtract{});
    return zimStsOk;
}

ZimStatus zimsSubRow_16s_D2(const Zim16s* val, int width, Zim16s* srcDst, int step, int height)
{
    if (ZimStatus fault = firstFault(anyNull(val, srcDst), anyBelowOne(width, height), strideBelow(step, width)))
        return fault;
    updateRows(val, Rows(srcDst, step), width, height, SubtractSaturated{});
    return zimStsOk;
}

ZimStatus zimsSubRow_16s_D2L(const Zim16s* val, Zim16s* const* rows, int width, int height)
{
    if (ZimStatus fault = firstFault(anyNull(val, rows), anyBelowOne(width, height)))
        return fault;
    updateRows(val, Rows(rows), width, height, SubtractSaturated{});
    return zimStsOk;
}
