// Sums of a term over the elements of each row: the loop below everything that compares vectors with vectors. A row is
// summed in one order, whatever group it is in: Sum::lanes partial sums, one for each place in a vector, then the tree
// of sumLanes.
//
// A term is a function object that takes a vector of each operand and gives a Term::Sum; one that needs more has an
// overload of foldedTerms of its own. An operand is the Rows of a matrix, or a vector that all rows share.
#pragma once

#include <cstddef>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

template <class T>
struct Shared {
    const T* vector;

    ZIM_INLINE const T* operator[](int) const { return vector; }
};

template <class T>
Shared(const T*) -> Shared<T>;

template <class T, int count>
struct RowPointers {
    const T* row[count];

    ZIM_INLINE const T* operator[](int i) const { return row[i]; }
};

template <int count, class T>
ZIM_INLINE Shared<T> rowsFrom(std::ptrdiff_t, Shared<T> operand)
{
    return operand;
}

template <int count, class T>
ZIM_INLINE RowPointers<T, count> rowsFrom(std::ptrdiff_t first, const Rows<const T>& operand)
{
    RowPointers<T, count> pointers;
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i)
        pointers.row[i] = operand[first + i];
    return pointers;
}

template <int lanes, class T>
ZIM_INLINE Vec<T, lanes> loadLanes(const T* source)
{
    return load<Vec<T, lanes>>(source);
}

template <int lanes, class T>
ZIM_INLINE Vec<T, lanes> loadFirstLanes(const T* source, int count)
{
    return loadFirst<Vec<T, lanes>>(source, count);
}

// The partial sums of count rows.
template <class Term, int count, class... Row>
ZIM_INLINE void sumTerms(Term term, typename Term::Sum (&sum)[count], int width, const Row&... rows)
{
    using Sum = typename Term::Sum;
    if (width < Sum::lanes) {
        // Selected, since of the zeros that fill up a vector a term may make something else.
        const auto inside = firstLanes<Sum>(width);
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            sum[i] = keep(inside, term(loadFirstLanes<Sum::lanes>(rows[i], width)...));
        return;
    }
#pragma GCC unroll 8
    for (int i = 0; i < count; ++i)
        sum[i] = term(loadLanes<Sum::lanes>(rows[i])...);
    const std::ptrdiff_t last = width - Sum::lanes;
    for (std::ptrdiff_t j = Sum::lanes; j <= last; j += Sum::lanes) {
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            sum[i] += term(loadLanes<Sum::lanes>(rows[i] + j)...);
    }
    if (const int rest = width % Sum::lanes) {
        const auto fresh = lastLanes<Sum>(rest);
#pragma GCC unroll 8
        for (int i = 0; i < count; ++i)
            sum[i] += keep(fresh, term(loadLanes<Sum::lanes>(rows[i] + last)...));
    }
}

// The same, folded as sumFolded wants them.
template <int count, class Term, class... Row>
ZIM_INLINE auto foldedTerms(Term term, int width, const Row&... rows)
{
    typename Term::Sum sum[count];
    sumTerms(term, sum, width, rows...);
    return foldLanes(sum);
}

// The sum of one row by itself.
template <class Term, class... T>
ZIM_INLINE auto sumRow(Term term, int width, const T*... operands)
{
    return sumFolded(foldedTerms<1>(term, width, Shared{operands}...));
}

// Calls deliver(r, sums) for all whole groups of count rows from row first on: sums holds the sums of row r and the
// rows behind it, one a lane, and is a scalar when count is 1. Gives the first row left. The sums of a group are
// delivered while those of the next are under way, since adding across lanes takes long and uses little of the
// processor.
template <int count, class Term, class Deliver, class... Operand>
ZIM_INLINE std::ptrdiff_t sumGroups(Term term, std::ptrdiff_t first, int height, int width, Deliver deliver,
                                    const Operand&... operands)
{
    std::ptrdiff_t r = first;
    decltype(foldedTerms<count>(term, width, rowsFrom<count>(r, operands)...)) previous{};
    for (; height - r >= count; r += count) {
        const auto folded = foldedTerms<count>(term, width, rowsFrom<count>(r, operands)...);
        if (r != first)
            deliver(r - count, sumFolded(previous));
        previous = folded;
    }
    if (r != first)
        deliver(r - count, sumFolded(previous));
    return r;
}

// Sizes of the groups that a matrix is taken in, largest first; the last is 1.
template <int... counts>
struct Groups {
};

template <class Term, int... counts, class Deliver, class... Operand>
ZIM_INLINE void sumRows(Term term, Groups<counts...>, int height, int width, Deliver deliver,
                        const Operand&... operands)
{
    std::ptrdiff_t r = 0;
    ((r = sumGroups<counts>(term, r, height, width, deliver, operands...)), ...);
}

}  // namespace zimsr
