// A matrix in one block, row after row: what the library calls D2, with a step of as many elements as there are
// columns.
#pragma once

#include <cstddef>
#include <vector>

struct Matrix {
    Matrix() = default;
    Matrix(int rowCount, int columnCount)
        : rows(rowCount), columns(columnCount), values(static_cast<std::size_t>(rowCount) * columnCount)
    {
    }

    float* row(int r) { return values.data() + static_cast<std::size_t>(r) * columns; }
    const float* row(int r) const { return values.data() + static_cast<std::size_t>(r) * columns; }

    int rows = 0;
    int columns = 0;
    std::vector<float> values;
};
