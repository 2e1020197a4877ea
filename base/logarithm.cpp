// Natural logarithms and their sums.
#include <cstddef>

#include <zimsr/logarithm.h>

#include "base/kernels/logarithm.h"
#include "base/kernels/logarithm_sum.h"
#include "zimcore/frame/checks.h"

using namespace zimsr;

ZimStatus zimsLn_32f_I(Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(len)))
        return fault;
    return lnInPlace(srcDst, static_cast<std::size_t>(len));
}

ZimStatus zimsLn_32s_Sfs(const Zim32s* src, Zim32s* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    return scaleFactor < 0 ? lnScaledUp(src, dst, static_cast<std::size_t>(len), scaleFactor)
                           : lnShiftedRight(src, dst, static_cast<std::size_t>(len), scaleFactor);
}

ZimStatus zimsLn_32s_ISfs(Zim32s* srcDst, int len, int scaleFactor)
{
    return zimsLn_32s_Sfs(srcDst, srcDst, len, scaleFactor);
}

ZimStatus zimsSumLn_32f(const Zim32f* src, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    const SumOfLogs sum = sumOfLogs(src, static_cast<std::size_t>(len));
    *dst = static_cast<Zim32f>(sum.value);
    return sum.status;
}

ZimStatus zimsSumLn_64f(const Zim64f* src, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    const SumOfLogs sum = sumOfLogs(src, static_cast<std::size_t>(len));
    *dst = sum.value;
    return sum.status;
}
