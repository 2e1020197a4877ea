// Argument checks. A door names them in the order of its contract and returns the first fault:
//
//     if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, dst), anyBelowOne(width, height)))
//         return fault;
//
// A check looks at its arguments only, never through a pointer.
#pragma once

#include <zimsr/types.h>

namespace zimsr {

template <class... Status>
constexpr ZimStatus firstFault(Status... checks)
{
    ZimStatus first = zimStsOk;
    ((first = first != zimStsOk ? first : checks), ...);
    return first;
}

constexpr ZimStatus faultIf(bool broken, ZimStatus status)
{
    if (broken) [[unlikely]]
        return status;
    return zimStsOk;
}

template <class... Pointer>
constexpr ZimStatus anyNull(Pointer... pointers)
{
    return faultIf((... || (pointers == nullptr)), zimStsNullPointer);
}

template <class... Int>
constexpr ZimStatus anyBelowOne(Int... sizes)
{
    return faultIf((... || (sizes < 1)), zimStsBadSize);
}

// `needed` may be wider than int, so that a product such as 3 * width is compared without overflow.
constexpr ZimStatus strideBelow(int step, Zim64s needed)
{
    return faultIf(step < needed, zimStsBadStride);
}

}  // namespace zimsr
