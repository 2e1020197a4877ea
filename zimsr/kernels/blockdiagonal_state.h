// The record behind a block-diagonal matrix, and the one allocation that holds it with its rows.
#pragma once

#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <zimsr/blockdiagonal.h>

#include "base/allocator.h"

namespace zimsr {

template <class T>
struct BlockDMatrixFields {
    using Element = T;

    T** rows;  // one for each row of the matrix: the elements inside the row's block
    Zim32s* blockSizes;
    void* base;  // the block as the allocator returned it
    Zim32s blockCount;
    Zim32s total;  // dimension of the matrix, the sum of the block sizes
};

}  // namespace zimsr

struct ZimsBlockDMatrix_32f : zimsr::BlockDMatrixFields<Zim32f> {};
struct ZimsBlockDMatrix_64f : zimsr::BlockDMatrixFields<Zim64f> {};
struct ZimsBlockDMatrix_16s : zimsr::BlockDMatrixFields<Zim16s> {};

namespace zimsr {

// Places of the parts within one allocation. A size that does not fit is the greatest there is, which no allocator has.
template <class Matrix>
class BlockDMatrixLayout {
    using T = typename Matrix::Element;

public:
    BlockDMatrixLayout(const Zim32s* blockSizes, int blockCount)
    {
        for (int b = 0; b < blockCount; ++b)
            total += blockSizes[b];
        if (total > INT_MAX)
            bytes = SIZE_MAX;
        table = append(static_cast<std::size_t>(total), sizeof(T*));
        sizes = append(static_cast<std::size_t>(blockCount), sizeof(Zim32s));
        firstRow = bytes;
        for (int b = 0; b < blockCount; ++b)
            append(static_cast<std::size_t>(blockSizes[b]), rowBytes(blockSizes[b]));
    }

    // From one row to the next; each starts on a 16-byte boundary.
    static std::size_t rowBytes(Zim32s blockSize)
    {
        std::size_t size;
        return __builtin_mul_overflow(static_cast<std::size_t>(blockSize), sizeof(T), &size) ? SIZE_MAX : rounded(size);
    }

    Zim64s total = 0;
    std::size_t bytes = rounded(sizeof(Matrix)), table, sizes, firstRow;

private:
    static constexpr std::size_t rounded(std::size_t size)
    {
        return size > SIZE_MAX - 15 ? SIZE_MAX : (size + 15) / 16 * 16;
    }

    std::size_t append(std::size_t count, std::size_t size)
    {
        const std::size_t place = bytes;
        std::size_t added;
        if (__builtin_mul_overflow(count, size, &added) || __builtin_add_overflow(bytes, rounded(added), &bytes))
            bytes = SIZE_MAX;
        return place;
    }
};

// A matrix with copies of the rows and sizes, or null when there is no memory for it.
template <class Matrix>
Matrix* makeBlockDMatrix(const typename Matrix::Element* const* rows, const Zim32s* blockSizes, int blockCount)
{
    using T = typename Matrix::Element;
    const BlockDMatrixLayout<Matrix> layout(blockSizes, blockCount);
    char* const base = static_cast<char*>(allocate(layout.bytes, 1));
    if (!base)
        return nullptr;
    Matrix* const matrix = reinterpret_cast<Matrix*>(base);
    matrix->rows = reinterpret_cast<T**>(base + layout.table);
    matrix->blockSizes = reinterpret_cast<Zim32s*>(base + layout.sizes);
    matrix->base = base;
    matrix->blockCount = blockCount;
    matrix->total = static_cast<Zim32s>(layout.total);
    char* place = base + layout.firstRow;
    std::ptrdiff_t r = 0;
    for (int b = 0; b < blockCount; ++b) {
        const Zim32s size = matrix->blockSizes[b] = blockSizes[b];
        for (Zim32s i = 0; i < size; ++i, ++r) {
            matrix->rows[r] = reinterpret_cast<T*>(place);
            std::memcpy(place, rows[r], static_cast<std::size_t>(size) * sizeof(T));
            place += layout.rowBytes(size);
        }
    }
    return matrix;
}

}  // namespace zimsr
