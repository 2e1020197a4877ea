// Shortlists of Gaussians as bit tables: filled from lists of indices, and gathered row by row.
#include <zimsr/selection.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/bittable.h"

using namespace zimsr;

namespace {

constexpr ZimStatus anyBelowZero(int startBit)
{
    return faultIf(startBit < 0, zimStsBadSize);
}

constexpr ZimStatus rowTooShort(int rowBytes, int startBit, int bits)
{
    return strideBelow(rowBytes, (Zim64s{startBit} + bits + 7) >> 3);
}

ZimStatus anyCountBelowOne(const Zim32s* counts, int lists)
{
    for (int i = 0; i < lists; ++i)
        if (counts[i] < 1)
            return zimStsBadSize;
    return zimStsOk;
}

ZimStatus anyOutside(const IndexLists& lists, int limit)
{
    return faultIf(lists.anyOutside(limit), zimStsBadArgument);
}

}  // namespace

// ---- Lists of columns, one for each row

ZimStatus zimsFillShortlist_Row_1u(const Zim32s* indices, int width, int count, Zim8u* const* rows, int height,
                                   int rowBytes, int startBit)
{
    if (ZimStatus fault = firstFault(anyNull(indices, rows), anyBelowOne(width, count, height), anyBelowZero(startBit),
                                     rowTooShort(rowBytes, startBit, width)))
        return fault;
    const IndexLists lists(indices, height, count);
    if (ZimStatus fault = anyOutside(lists, width))
        return fault;
    toggleColumnsOfRows(lists, rows, startBit);
    return zimStsOk;
}

ZimStatus zimsFillShortlist_RowVar_1u(const Zim32s* indices, const Zim32s* counts, int width, Zim8u* const* rows,
                                      int height, int rowBytes, int startBit)
{
    if (ZimStatus fault =
            firstFault(anyNull(indices, counts, rows), anyBelowOne(width, height), anyBelowZero(startBit)))
        return fault;
    // Unlike in the other forms with counts, by contract, these come before the stride.
    if (ZimStatus fault = firstFault(anyCountBelowOne(counts, height), rowTooShort(rowBytes, startBit, width)))
        return fault;
    const IndexLists lists(indices, height, counts);
    if (ZimStatus fault = anyOutside(lists, width))
        return fault;
    toggleColumnsOfRows(lists, rows, startBit);
    return zimStsOk;
}

// ---- Lists of rows, one for each column

ZimStatus zimsFillShortlist_Column_1u(const Zim32s* indices, int count, Zim8u* const* rows, int height, int rowBytes,
                                      int startBit, int width)
{
    if (ZimStatus fault = firstFault(anyNull(indices, rows), anyBelowOne(count, height, width), anyBelowZero(startBit),
                                     rowTooShort(rowBytes, startBit, width)))
        return fault;
    const IndexLists lists(indices, width, count);
    if (ZimStatus fault = anyOutside(lists, height))
        return fault;
    toggleRowsOfColumns(lists, rows, startBit);
    return zimStsOk;
}

ZimStatus zimsFillShortlist_ColumnVar_1u(const Zim32s* indices, const Zim32s* counts, Zim8u* const* rows, int height,
                                         int rowBytes, int startBit, int width)
{
    if (ZimStatus fault = firstFault(anyNull(indices, counts, rows), anyBelowOne(height, width), anyBelowZero(startBit),
                                     rowTooShort(rowBytes, startBit, width)))
        return fault;
    if (ZimStatus fault = anyCountBelowOne(counts, width))
        return fault;
    const IndexLists lists(indices, width, counts);
    if (ZimStatus fault = anyOutside(lists, height))
        return fault;
    toggleRowsOfColumns(lists, rows, startBit);
    return zimStsOk;
}

// ---- A table for each frame from the shortlists of its clusters

ZimStatus zimsBuildSignTable_8u1u(const Zim32s* indices, int count, const Zim8u* const* rows, int height, int rowBytes,
                                  int startBit, Zim8u* dst, int dstHeight, int bits)
{
    if (ZimStatus fault = firstFault(anyNull(indices, rows, dst), anyBelowOne(count, height, dstHeight, bits),
                                     anyBelowZero(startBit), rowTooShort(rowBytes, startBit, bits)))
        return fault;
    const IndexLists lists(indices, dstHeight, count);
    if (ZimStatus fault = anyOutside(lists, height))
        return fault;
    gatherRows(lists, rows, rowBytes, startBit, dst, dstHeight, bits);
    return zimStsOk;
}

ZimStatus zimsBuildSignTable_Var_8u1u(const Zim32s* indices, const Zim32s* counts, const Zim8u* const* rows, int height,
                                      int rowBytes, int startBit, Zim8u* dst, int dstHeight, int bits)
{
    if (ZimStatus fault = firstFault(anyNull(indices, counts, rows, dst), anyBelowOne(height, dstHeight, bits),
                                     anyBelowZero(startBit), rowTooShort(rowBytes, startBit, bits)))
        return fault;
    if (ZimStatus fault = anyCountBelowOne(counts, dstHeight))
        return fault;
    const IndexLists lists(indices, dstHeight, counts);
    if (ZimStatus fault = anyOutside(lists, height))
        return fault;
    gatherRows(lists, rows, rowBytes, startBit, dst, dstHeight, bits);
    return zimStsOk;
}
