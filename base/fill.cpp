// Set, zero, copy, move.
#include <cstddef>
#include <cstring>

#include <zimsr/memory.h>

#include "base/kernels/fill.h"
#include "zimcore/frame/checks.h"

using namespace zimsr;

ZimStatus zimsSet_8u(Zim8u val, Zim8u* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    fillBlock(val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSet_16s(Zim16s val, Zim16s* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    fillBlock(val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSet_32s(Zim32s val, Zim32s* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    fillBlock(val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSet_32f(Zim32f val, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    fillBlock(val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSet_64f(Zim64f val, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    fillBlock(val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsZero_8u(Zim8u* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    zeroBlock(dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsZero_16s(Zim16s* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    zeroBlock(dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsZero_32f(Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    zeroBlock(dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsZero_64f(Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(dst), anyBelowOne(len)))
        return fault;
    zeroBlock(dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsCopy_8u(const Zim8u* src, Zim8u* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    copyBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsCopy_16s(const Zim16s* src, Zim16s* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    copyBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsCopy_32f(const Zim32f* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    copyBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsCopy_64f(const Zim64f* src, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    copyBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMove_32f(const Zim32f* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    std::memmove(dst, src, static_cast<std::size_t>(len) * sizeof(Zim32f));
    return zimStsOk;
}
