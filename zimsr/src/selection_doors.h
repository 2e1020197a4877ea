// What the doors of selected mixtures share.
#pragma once

#include <zimsr/types.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/selection.h"

namespace zimsr {

template <class T>
ZimStatus anyRowNull(const T* const* rows, int height)
{
    for (int r = 0; r < height; ++r)
        if (ZimStatus fault = anyNull(rows[r]))
            return fault;
    return zimStsOk;
}

// Two functions add in the fast arithmetic when there is enough to do.
constexpr bool addsFast(int gaussCount, int height)
{
    return gaussCount >= 9 && height >= 2;
}

template <class T, class ScorePairs, class Add, class... Model>
ZimStatus sumSelected(Rows<const T> frames, ScorePairs scorePairs, Add add, const Zim32f* val, const Zim8u* table,
                      int gaussCount, Zim32f* dst, int height, Zim32f defaultVal, Model... model)
{
    HeapScratch<SelectionWork<T, sizeof...(Model)>> work(1);
    if (!work)
        return zimStsAllocFailed;
    Selection<T, ScorePairs, Add, Model...>(*work.data(), scorePairs, add, val, model...)
        .sums(frames, table, gaussCount, dst, height, defaultVal);
    return zimStsOk;
}

}  // namespace zimsr
