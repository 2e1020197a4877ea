// A matrix in one block, row after row: what the library calls D2, with a step of as many elements as there are
// columns.
#pragma once

#include <cstddef>
#include <vector>

template <class T>
struct MatrixOf {
    MatrixOf() = default;
    MatrixOf(int rowCount, int columnCount, T value = T())
        : rows(rowCount), columns(columnCount), values(static_cast<std::size_t>(rowCount) * columnCount, value)
    {
    }

    T* row(int r) { return values.data() + static_cast<std::size_t>(r) * columns; }
    const T* row(int r) const { return values.data() + static_cast<std::size_t>(r) * columns; }

    int rows = 0;
    int columns = 0;
    std::vector<T> values;
};

using Matrix = MatrixOf<float>;
