// Elementwise arithmetic.
#include <algorithm>
#include <cstddef>

#include <zimsr/arithmetic.h>

#include "base/kernels/arithmetic.h"
#include "base/kernels/magnitude.h"
#include "base/kernels/sums.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"

using namespace zimsr;

ZimStatus zimsAbs_64f(const Zim64f* src, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    absoluteBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsAdd_32f_I(const Zim32f* src, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    addInPlace(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsAdd_64f_I(const Zim64f* src, Zim64f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    addInPlace(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSub_32f_I(const Zim32f* src, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    subtractInPlace(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsSub_64f_I(const Zim64f* src, Zim64f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    subtractInPlace(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsAddC_32f(const Zim32f* src, Zim32f val, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    addConstant(src, val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMul_32f(const Zim32f* src1, const Zim32f* src2, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    multiplyElements(src1, src2, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMulC_32f(const Zim32f* src, Zim32f val, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    multiplyByConstant(src, val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMulC_64f(const Zim64f* src, Zim64f val, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    multiplyByConstant(src, val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMulC_32f_I(Zim32f val, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(len)))
        return fault;
    multiplyByConstantInPlace(val, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMulC_64f_I(Zim64f val, Zim64f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(len)))
        return fault;
    multiplyByConstantInPlace(val, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDiv_32f(const Zim32f* src1, const Zim32f* src2, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    return divideElements(src1, src2, dst, static_cast<std::size_t>(len)) ? zimStsDivByZeroWarn : zimStsOk;
}

ZimStatus zimsDiv_64f(const Zim64f* src1, const Zim64f* src2, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    return divideElements(src1, src2, dst, static_cast<std::size_t>(len)) ? zimStsDivByZeroWarn : zimStsOk;
}

ZimStatus zimsDiv_32f_I(const Zim32f* src, Zim32f* srcDst, int len)
{
    return zimsDiv_32f(src, srcDst, srcDst, len);
}

ZimStatus zimsDivC_32f(const Zim32f* src, Zim32f val, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len), faultIf(val == 0, zimStsDivideByZero)))
        return fault;
    multiplyByConstant(src, 1 / val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDivC_64f(const Zim64f* src, Zim64f val, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len), faultIf(val == 0, zimStsDivideByZero)))
        return fault;
    multiplyByConstant(src, 1 / val, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDivC_32f_I(Zim32f val, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(len), faultIf(val == 0, zimStsDivideByZero)))
        return fault;
    multiplyByConstantInPlace(1 / val, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsDivC_64f_I(Zim64f val, Zim64f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(len), faultIf(val == 0, zimStsDivideByZero)))
        return fault;
    multiplyByConstantInPlace(1 / val, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMul_16s_Sfs(const Zim16s* src1, const Zim16s* src2, Zim16s* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src1, src2, dst), anyBelowOne(len)))
        return fault;
    if (scaleFactor > 30)
        zeroBlock(dst, static_cast<std::size_t>(len));
    else
        multiplyScaled(src1, src2, dst, static_cast<std::size_t>(len), std::max(scaleFactor, -15));
    return zimStsOk;
}

ZimStatus zimsZeroMean_16s(Zim16s* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(srcDst)))
        return fault;
    const Zim64s sum = exactSum(srcDst, static_cast<std::size_t>(len));
    subtractDoubleMean(srcDst, static_cast<std::size_t>(len), static_cast<Zim32s>(2 * sum / len));
    return zimStsOk;
}

ZimStatus zimsMulColumn_64f_D2L(Zim64f* const* rows, int width, int height, int col, int firstRow, Zim64f val)
{
    if (ZimStatus fault =
            firstFault(anyNull(rows), anyBelowOne(width, height),
                       faultIf(col < 0 || col >= width || firstRow < 0 || firstRow >= height, zimStsBadSize)))
        return fault;
    multiplyColumn(Rows(rows), col, firstRow, height, val);
    return zimStsOk;
}

ZimStatus zimsMulCol_64f_D2L(Zim64f* const* rows, int width, int height, int col, int firstRow, Zim64f val)
{
    return zimsMulColumn_64f_D2L(rows, width, height, col, firstRow, val);
}

ZimStatus zimsMagnitude_32fc(const Zim32fc* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    magnitudeBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsMagnitude_32sc_Sfs(const Zim32sc* src, Zim32s* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    magnitudeBlock(src, dst, static_cast<std::size_t>(len), scaleFactor);
    return zimStsOk;
}

ZimStatus zimsSqrt_64f_I(Zim64f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(len)))
        return fault;
    return squareRootInPlace(srcDst, static_cast<std::size_t>(len)) ? zimStsSqrtOfNegative : zimStsOk;
}
