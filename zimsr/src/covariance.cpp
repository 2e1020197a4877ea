// Accumulation of full covariance matrices.
#include <zimsr/covariance.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/covariance.h"

using namespace zimsr;
using namespace zimsr::covariance;

namespace {

// By contract, large blocks in aligned memory are accumulated frame by frame; all others sum by sum.

template <class T>
bool alignedBlocks(const T* mat, int step, const T* mean, const Zim64f* dst, int dstStep)
{
    return allAligned(16, mat, mean, dst) && step % 4 == 0 && dstStep % 4 == 0;
}

template <class T>
bool alignedRows(const T* const* rows, int height, const T* mean, Zim64f* const* dstRows, int width)
{
    return allAligned(16, mean) && RowMatrAlErr(rows, height) == 0 && RowMatrAlErr(dstRows, width) == 0;
}

}  // namespace

ZimStatus zimsAccCovarianceMatrix_32f64f_D2(const Zim32f* mat, int step, int height, const Zim32f* mean, Zim64f* dst,
                                            int width, int dstStep, Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(mat, mean, dst), anyBelowOne(height, width), strideBelow(step, width),
                                     strideBelow(dstStep, width)))
        return fault;
    const Frames<Zim32f> frames{Rows(mat, step), height, width, mean};
    if (Zim64s{step} * height >= 140000 && alignedBlocks(mat, step, mean, dst, dstStep))
        accumulate<InFloats>(FrameByFrame{val}, frames, Rows(dst, dstStep));
    else
        accumulate<InDoubles>(WholeSum{val}, frames, Rows(dst, dstStep));
    return zimStsOk;
}

ZimStatus zimsAccCovarianceMatrix_32f64f_D2L(const Zim32f* const* rows, int height, const Zim32f* mean,
                                             Zim64f* const* dstRows, int width, Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, dstRows), anyBelowOne(height, width)))
        return fault;
    const Frames<Zim32f> frames{Rows(rows), height, width, mean};
    if (Zim64s{height} * width >= 134000 && alignedRows(rows, height, mean, dstRows, width))
        accumulate<InFloats>(FrameByFrame{val}, frames, Rows(dstRows));
    else
        accumulate<InDoubles>(WholeSum{val}, frames, Rows(dstRows));
    return zimStsOk;
}

ZimStatus zimsAccCovarianceMatrix_16s64f_D2(const Zim16s* mat, int step, int height, const Zim16s* mean, Zim64f* dst,
                                            int width, int dstStep, Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(mat, mean, dst), anyBelowOne(height, width), strideBelow(step, width),
                                     strideBelow(dstStep, width)))
        return fault;
    const Frames<Zim16s> frames{Rows(mat, step), height, width, mean};
    if (Zim64s{step} * height >= 270000 && alignedBlocks(mat, step, mean, dst, dstStep))
        accumulateSaturated(FrameByFrame{val}, frames, Rows(dst, dstStep));
    else
        accumulate<InDoubles>(WholeSum{val}, frames, Rows(dst, dstStep));
    return zimStsOk;
}

ZimStatus zimsAccCovarianceMatrix_16s64f_D2L(const Zim16s* const* rows, int height, const Zim16s* mean,
                                             Zim64f* const* dstRows, int width, Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, dstRows), anyBelowOne(height, width)))
        return fault;
    const Frames<Zim16s> frames{Rows(rows), height, width, mean};
    if (Zim64s{height} * width >= 260000 && alignedRows(rows, height, mean, dstRows, width))
        accumulateSaturated(FrameByFrame{val}, frames, Rows(dstRows));
    else
        accumulate<InDoubles>(WholeSum{val}, frames, Rows(dstRows));
    return zimStsOk;
}
