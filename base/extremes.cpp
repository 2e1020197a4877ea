// The greatest and the smallest element, of a vector and of pairs.
#include <cstddef>

#include <zimsr/extremes.h>

#include "base/kernels/extremes.h"
#include "zimcore/frame/checks.h"

using namespace zimsr;

ZimStatus zimsMax_32f(const Zim32f* src, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = extreme<Greatest<Zim32f>>(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMax_64f(const Zim64f* src, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = extreme<Greatest<Zim64f>>(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMin_32f(const Zim32f* src, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = extreme<Smallest<Zim32f>>(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMin_64f(const Zim64f* src, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = extreme<Smallest<Zim64f>>(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMaxIndx_32f(const Zim32f* src, int len, Zim32f* dstMax, int* dstIndex)
{
    if (!dstIndex)
        return zimsMax_32f(src, len, dstMax);
    if (ZimStatus fault = firstFault(anyNull(src, dstMax), anyBelowOne(len)))
        return fault;
    const std::size_t place = extremePlace<Greatest<Zim32f>>(src, static_cast<std::size_t>(len));
    *dstMax = src[place];
    *dstIndex = static_cast<int>(place);
    return zimStsOk;
}

ZimStatus zimsMaxIndx_64f(const Zim64f* src, int len, Zim64f* dstMax, int* dstIndex)
{
    if (!dstIndex)
        return zimsMax_64f(src, len, dstMax);
    if (ZimStatus fault = firstFault(anyNull(src, dstMax), anyBelowOne(len)))
        return fault;
    const std::size_t place = extremePlace<Greatest<Zim64f>>(src, static_cast<std::size_t>(len));
    *dstMax = src[place];
    *dstIndex = static_cast<int>(place);
    return zimStsOk;
}

ZimStatus zimsMaxEvery_32f_I(const Zim32f* src, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    extremeInPlace<Greatest>(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMinEvery_32f_I(const Zim32f* src, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    extremeInPlace<Smallest>(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMinEvery_32s_I(const Zim32s* src, Zim32s* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    smallestInPlace(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}
