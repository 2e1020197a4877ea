// The one idea behind the two matrix forms: the address of row r, from a base and a stride or from a row table.
#pragma once

#include <cstddef>
#include <cstdint>

// A pointer's bits, for tests of alignment.
#define ZIM_UINT_PTR(p) (reinterpret_cast<std::uintptr_t>(p))

namespace zimsr {

// T is const-qualified for a matrix that is only read.
template <class T>
class Rows {
public:
    constexpr Rows(T* base, std::ptrdiff_t step) : base_(base), step_(step) {}
    constexpr explicit Rows(T* const* table) : table_(table) {}

    constexpr T* operator[](std::ptrdiff_t r) const { return table_ ? table_[r] : base_ + r * step_; }

    // The rows from row r on.
    constexpr Rows from(std::ptrdiff_t r) const { return table_ ? Rows(table_ + r) : Rows(base_ + r * step_, step_); }

private:
    T* base_ = nullptr;
    std::ptrdiff_t step_ = 0;
    T* const* table_ = nullptr;
};

template <class... Pointer>
inline bool allAligned(std::uintptr_t boundary, Pointer... pointers)
{
    return ((ZIM_UINT_PTR(pointers) | ...) & (boundary - 1)) == 0;
}

// True if some element belongs to both vectors.
template <class A, class B>
inline bool overlap(const A* a, const B* b, std::size_t len)
{
    return ZIM_UINT_PTR(a) < ZIM_UINT_PTR(b + len) && ZIM_UINT_PTR(b) < ZIM_UINT_PTR(a + len);
}

// 1 if a row of the table does not start on a 16-byte boundary, else 0.
template <class T>
inline int RowMatrAlErr(T* const* rows, int height)
{
    for (int r = 0; r < height; ++r)
        if (!allAligned(16, rows[r]))
            return 1;
    return 0;
}

}  // namespace zimsr
