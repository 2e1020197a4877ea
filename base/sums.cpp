// Sums and inner products.
#include <cstddef>

#include <zimsr/sums.h>

#include "base/kernels/sums.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/scaling.h"

using namespace zimsr;

ZimStatus zimsSum_32f(const Zim32f* src, int len, Zim32f* dst, int hint)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = hint == 1 ? fastSum(src, static_cast<std::size_t>(len)) : accurateSum(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSum_32s_Sfs(const Zim32s* src, int len, Zim32s* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = scaleHalfEven<Zim32s>(exactSum(src, static_cast<std::size_t>(len)), scaleFactor);
    return zimStsOk;
}

ZimStatus zimsSum_16s32s_Sfs(const Zim16s* src, int len, Zim32s* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    *dst = scaleHalfEven<Zim32s>(exactSum(src, static_cast<std::size_t>(len)), scaleFactor);
    return zimStsOk;
}

ZimStatus zimsDotProd_32f(const Zim32f* src1, const Zim32f* src2, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    *dst = dotProduct(src1, src2, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDotProd_64f(const Zim64f* src1, const Zim64f* src2, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    *dst = dotProduct(src1, src2, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDotProd_32f64f(const Zim32f* src1, const Zim32f* src2, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    *dst = wideDotProduct(src1, src2, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDotProd_16s64s(const Zim16s* src1, const Zim16s* src2, int len, Zim64s* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    *dst = exactDotProduct(src1, src2, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDotProd_16s32f(const Zim16s* src1, const Zim16s* src2, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    *dst = static_cast<Zim32f>(exactDotProduct(src1, src2, static_cast<std::size_t>(len)));
    return zimStsOk;
}
