// Feature matrices in both forms, from one set of values: as a strided block whose gaps hold poison, and as a table of
// rows that lie apart, each guarded by itself.
#pragma once

#include <limits>
#include <memory>
#include <vector>

#include "support/guarded.h"

namespace zimsr::test {

// What an element outside the matrix holds: a value that shows in any result it gets into.
template <class T>
constexpr T poison()
{
    if constexpr (std::numeric_limits<T>::has_quiet_NaN)
        return std::numeric_limits<T>::quiet_NaN();
    else
        return static_cast<T>(0x5AA5);
}

// Form D2. The block ends with the last row's last element, so the gap behind it does not exist.
template <class T>
class StridedMatrix {
public:
    StridedMatrix(const std::vector<T>& values, int height, int width, int step, Placement placement = {})
        : height_(height), width_(width), step_(step), block_(elements(height, width, step), placement)
    {
        std::vector<T> laid(block_.size(), poison<T>());
        for (int r = 0; r < height; ++r)
            for (int c = 0; c < width; ++c)
                laid[at(r, c)] = values[r * width + c];
        block_.assign(laid);
    }

    T* data() const { return block_.data(); }
    int step() const { return step_; }
    std::vector<T> values() const
    {
        std::vector<T> tight;
        for (int r = 0; r < height_; ++r)
            for (int c = 0; c < width_; ++c)
                tight.push_back(block_.data()[at(r, c)]);
        return tight;
    }

private:
    static std::size_t elements(int height, int width, int step) { return (height - 1) * step + width; }
    std::size_t at(int r, int c) const { return r * step_ + c; }

    int height_, width_, step_;
    Guarded<T> block_;
};

// Form D2L.
template <class T>
class RowMatrix {
public:
    RowMatrix(const std::vector<T>& values, int height, int width, Placement placement = {})
    {
        for (int r = 0; r < height; ++r) {
            const auto first = values.begin() + static_cast<std::ptrdiff_t>(r) * width;
            rows_.push_back(std::make_unique<Guarded<T>>(std::vector<T>(first, first + width), placement));
            table_.push_back(rows_.back()->data());
        }
    }

    const T* const* data() const { return table_.data(); }
    T* const* writable() const { return table_.data(); }
    std::vector<T> values() const
    {
        std::vector<T> tight;
        for (const auto& row : rows_)
            tight.insert(tight.end(), row->begin(), row->end());
        return tight;
    }

private:
    std::vector<std::unique_ptr<Guarded<T>>> rows_;
    std::vector<T*> table_;
};

}  // namespace zimsr::test
