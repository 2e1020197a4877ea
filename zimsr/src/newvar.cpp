// Variances from raw sums.
#include <cstddef>

#include <zimsr/update.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/newvar.h"

using namespace zimsr;

ZimStatus zimsNewVar_32f(const Zim32f* mean, const Zim32f* varAcc, Zim32f* var, int len, Zim32f wgt1, Zim32f wgt2)
{
    if (ZimStatus fault = firstFault(anyNull(mean, varAcc, var), anyBelowOne(len)))
        return fault;
    const std::size_t count = static_cast<std::size_t>(len);
    const RawVariance variance{wgt1, wgt2};
    if (len >= 11 && allAligned(4, mean) && !overlap(mean, var, count) && !overlap(varAcc, var, count))
        newVarianceFrom(-ZIM_UINT_PTR(mean) % 16 / 4, mean, varAcc, var, count, variance);
    else
        newVarianceInTurn(mean, varAcc, var, count, variance);
    return zimStsOk;
}

ZimStatus zimsNewVar_32f_I(const Zim32f* mean, Zim32f* varAcc, int len, Zim32f wgt1, Zim32f wgt2)
{
    if (ZimStatus fault = firstFault(anyNull(mean, varAcc), anyBelowOne(len)))
        return fault;
    newVariance(mean, varAcc, varAcc, static_cast<std::size_t>(len), RawVariance{wgt1, wgt2});
    return zimStsOk;
}

ZimStatus zimsNewVar_32s_Sfs(const Zim32s* mean, const Zim32s* varAcc, Zim32s* var, int len, Zim32f wgt1, Zim32f wgt2,
                             int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(mean, varAcc, var), anyBelowOne(len)))
        return fault;
    const std::size_t count = static_cast<std::size_t>(len);
    const RawVariance variance{wgt1, wgt2};
    if (allAligned(16, mean, varAcc))
        newVarianceRounded(mean, varAcc, var, count, variance, scaleFactor);
    else
        newVarianceTruncated(mean, varAcc, var, count, variance, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsNewVar_32s_ISfs(const Zim32s* mean, Zim32s* varAcc, int len, Zim32f wgt1, Zim32f wgt2, int scaleFactor)
{
    return zimsNewVar_32s_Sfs(mean, varAcc, varAcc, len, wgt1, wgt2, scaleFactor);
}
