// Gaussians whose covariance is block-diagonal.
#include <cstddef>

#include <zimsr/blockdiagonal.h>

#include "base/allocator.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/blockdiagonal.h"
#include "zimsr/kernels/blockdiagonal_state.h"

using namespace zimsr;

namespace {

// The caller's pointer is written on success only.
template <class Matrix>
ZimStatus initialise(Matrix** matrix, const typename Matrix::Element* const* rows, const Zim32s* blockSizes,
                     int blockCount)
{
    if (ZimStatus fault = firstFault(anyNull(matrix, rows, blockSizes), anyBelowOne(blockCount)))
        return fault;
    for (int b = 0; b < blockCount; ++b)
        if (ZimStatus fault = anyBelowOne(blockSizes[b]))
            return fault;
    Matrix* const made = makeBlockDMatrix<Matrix>(rows, blockSizes, blockCount);
    if (!made)
        return zimStsAllocFailed;
    *matrix = made;
    return zimStsOk;
}

template <class Matrix>
ZimStatus freeMatrix(Matrix* matrix)
{
    if (ZimStatus fault = anyNull(matrix))
        return fault;
    release(matrix->base);
    return zimStsOk;
}

// The dimension of a matrix is never below 1.
constexpr ZimStatus lengthOtherThan(int dimension, int len)
{
    return faultIf(len != dimension, zimStsBadSize);
}

// Vectors of up to 111 elements are worked on in automatic storage.
template <class T, class Score, class... Scale>
ZimStatus scoreBlocks(const BlockDMatrixFields<T>& matrix, const T* src, const T* mean, Score* dst, Score gconst,
                      Scale... scaleFactor)
{
    constexpr std::size_t automatic = 111;
    const std::size_t len = static_cast<std::size_t>(matrix.total);
    Scratch<T, automatic> deviations(len);
    Scratch<RowSumOf<T>, automatic> sums(len);
    if (!deviations || !sums)
        return zimStsAllocFailed;
    subtractMean(src, mean, deviations.data(), len);
    multiplyRows(matrix, deviations.data(), sums.data());
    *dst = blockScore(deviations.data(), sums.data(), len, gconst, scaleFactor...);
    return zimStsOk;
}

}  // namespace

// ---- The matrix

ZimStatus zimsBlockDMatrixInitAlloc_32f(ZimsBlockDMatrix_32f** matrix, const Zim32f* const* rows,
                                        const Zim32s* blockSizes, int blockCount)
{
    return initialise(matrix, rows, blockSizes, blockCount);
}

ZimStatus zimsBlockDMatrixInitAlloc_64f(ZimsBlockDMatrix_64f** matrix, const Zim64f* const* rows,
                                        const Zim32s* blockSizes, int blockCount)
{
    return initialise(matrix, rows, blockSizes, blockCount);
}

ZimStatus zimsBlockDMatrixInitAlloc_16s(ZimsBlockDMatrix_16s** matrix, const Zim16s* const* rows,
                                        const Zim32s* blockSizes, int blockCount)
{
    return initialise(matrix, rows, blockSizes, blockCount);
}

ZimStatus zimsBlockDMatrixFree_32f(ZimsBlockDMatrix_32f* matrix)
{
    return freeMatrix(matrix);
}

ZimStatus zimsBlockDMatrixFree_64f(ZimsBlockDMatrix_64f* matrix)
{
    return freeMatrix(matrix);
}

ZimStatus zimsBlockDMatrixFree_16s(ZimsBlockDMatrix_16s* matrix)
{
    return freeMatrix(matrix);
}

// ---- Scores

ZimStatus zimsLogGaussSingle_BlockDVar_32f(const Zim32f* src, const Zim32f* mean, const ZimsBlockDMatrix_32f* matrix,
                                           int len, Zim32f* dst, Zim32f gconst)
{
    if (ZimStatus fault = anyNull(src, mean, matrix, dst))
        return fault;
    if (ZimStatus fault = lengthOtherThan(matrix->total, len))
        return fault;
    return scoreBlocks(*matrix, src, mean, dst, gconst);
}

ZimStatus zimsLogGaussSingle_BlockDVar_64f(const Zim64f* src, const Zim64f* mean, const ZimsBlockDMatrix_64f* matrix,
                                           int len, Zim64f* dst, Zim64f gconst)
{
    if (ZimStatus fault = anyNull(src, mean, matrix, dst))
        return fault;
    if (ZimStatus fault = lengthOtherThan(matrix->total, len))
        return fault;
    return scoreBlocks(*matrix, src, mean, dst, gconst);
}

ZimStatus zimsLogGaussSingle_BlockDVar_32f64f(const Zim32f* src, const Zim32f* mean, const ZimsBlockDMatrix_32f* matrix,
                                              int len, Zim64f* dst, Zim64f gconst)
{
    if (ZimStatus fault = anyNull(src, mean, matrix, dst))
        return fault;
    if (ZimStatus fault = lengthOtherThan(matrix->total, len))
        return fault;
    return scoreBlocks(*matrix, src, mean, dst, gconst);
}

ZimStatus zimsLogGaussSingle_BlockDVarScaled_16s32f(const Zim16s* src, const Zim16s* mean,
                                                    const ZimsBlockDMatrix_16s* matrix, int len, Zim32f* dst,
                                                    Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = anyNull(src, mean, matrix, dst))
        return fault;
    if (ZimStatus fault = lengthOtherThan(matrix->total, len))
        return fault;
    return scoreBlocks(*matrix, src, mean, dst, gconst, scaleFactor);
}

ZimStatus zimsLogGaussSingle_BlockDVar_16s32s_Sfs(const Zim16s* src, const Zim16s* mean,
                                                  const ZimsBlockDMatrix_16s* matrix, int len, Zim32s* dst,
                                                  Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = anyNull(src, mean, matrix, dst))
        return fault;
    if (ZimStatus fault = lengthOtherThan(matrix->total, len))
        return fault;
    return scoreBlocks(*matrix, src, mean, dst, gconst, scaleFactor);
}

ZimStatus zimsLogGaussSingle_BlockDVar_16s32f(const Zim16s* src, const Zim16s* mean, const ZimsBlockDMatrix_16s* matrix,
                                              int len, Zim32f* dst, Zim32f gconst)
{
    return zimsLogGaussSingle_BlockDVarScaled_16s32f(src, mean, matrix, len, dst, gconst, 0);
}
