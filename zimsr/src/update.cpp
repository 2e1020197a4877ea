// Re-estimated means, variances and weights of Gaussian mixtures, and the constants of their scores.
#include <cstddef>
#include <limits>

#include <zimsr/update.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/update.h"

using namespace zimsr;

namespace {

// A NaN counts as negative.
template <class... Float>
ZimStatus anyNegative(Float... occupancies)
{
    return faultIf((... || !(occupancies >= 0)), zimStsNegativeFactor);
}

// Of occupancies that are not negative.
template <class... Float>
ZimStatus anyVanishing(Float... occupancies)
{
    return faultIf((... || (occupancies <= std::numeric_limits<Float>::min())), zimStsZeroOccupancy);
}

// From where on the halves of score constants are rounded up.
template <class... Pointer>
std::size_t firstRoundedUp(int len, Pointer... vectors)
{
    return static_cast<std::size_t>(allAligned(16, vectors...) ? len - len % 2 : len - len % 4);
}

}  // namespace

// ---- Means

ZimStatus zimsUpdateMean_32f(const Zim32f* meanAcc, Zim32f* mean, int len, Zim32f meanWgt)
{
    if (ZimStatus fault =
            firstFault(anyNull(meanAcc, mean), anyBelowOne(len), anyNegative(meanWgt), anyVanishing(meanWgt)))
        return fault;
    updateMean(meanAcc, mean, static_cast<std::size_t>(len), meanWgt);
    return zimStsOk;
}

ZimStatus zimsUpdateMean_64f(const Zim64f* meanAcc, Zim64f* mean, int len, Zim64f meanWgt)
{
    if (ZimStatus fault =
            firstFault(anyNull(meanAcc, mean), anyBelowOne(len), anyNegative(meanWgt), anyVanishing(meanWgt)))
        return fault;
    updateMean(meanAcc, mean, static_cast<std::size_t>(len), meanWgt);
    return zimStsOk;
}

// ---- Variances

ZimStatus zimsUpdateVar_32f(const Zim32f* meanAcc, const Zim32f* varAcc, const Zim32f* varFloor, Zim32f* var, int len,
                            Zim32f meanWgt, Zim32f varWgt)
{
    if (ZimStatus fault = firstFault(anyNull(meanAcc, varAcc, varFloor, var), anyBelowOne(len),
                                     anyNegative(meanWgt, varWgt), anyVanishing(meanWgt, varWgt)))
        return fault;
    return updateVariance(meanAcc, varAcc, varFloor, var, static_cast<std::size_t>(len), meanWgt, varWgt)
               ? zimStsResultFloored
               : zimStsOk;
}

ZimStatus zimsUpdateVar_64f(const Zim64f* meanAcc, const Zim64f* varAcc, const Zim64f* varFloor, Zim64f* var, int len,
                            Zim64f meanWgt, Zim64f varWgt)
{
    if (ZimStatus fault = firstFault(anyNull(meanAcc, varAcc, varFloor, var), anyBelowOne(len),
                                     anyNegative(meanWgt, varWgt), anyVanishing(meanWgt, varWgt)))
        return fault;
    return updateVariance(meanAcc, varAcc, varFloor, var, static_cast<std::size_t>(len), meanWgt, varWgt)
               ? zimStsResultFloored
               : zimStsOk;
}

// ---- Weights

ZimStatus zimsUpdateWeight_32f(const Zim32f* wgtAcc, Zim32f* weight, int len, Zim32f* sum, Zim32f wgtSum,
                               Zim32f wgtFloor)
{
    if (ZimStatus fault =
            firstFault(anyNull(wgtAcc, weight, sum), anyBelowOne(len), anyNegative(wgtSum), anyVanishing(wgtSum)))
        return fault;
    return updateWeights(wgtAcc, weight, static_cast<std::size_t>(len), sum, wgtSum, wgtFloor) ? zimStsResultFloored
                                                                                               : zimStsOk;
}

ZimStatus zimsUpdateWeight_64f(const Zim64f* wgtAcc, Zim64f* weight, int len, Zim64f* sum, Zim64f wgtSum,
                               Zim64f wgtFloor)
{
    if (ZimStatus fault =
            firstFault(anyNull(wgtAcc, weight, sum), anyBelowOne(len), anyNegative(wgtSum), anyVanishing(wgtSum)))
        return fault;
    return updateWeights(wgtAcc, weight, static_cast<std::size_t>(len), sum, wgtSum, wgtFloor) ? zimStsResultFloored
                                                                                               : zimStsOk;
}

// ---- Constants of Gaussians

ZimStatus zimsUpdateGConst_32f(const Zim32f* invVar, int len, Zim32f* gconst)
{
    if (ZimStatus fault = firstFault(anyNull(invVar, gconst), anyBelowOne(len)))
        return fault;
    return gaussianConstant(invVar, len, -1.0f, gconst);
}

ZimStatus zimsUpdateGConst_64f(const Zim64f* invVar, int len, Zim64f* gconst)
{
    if (ZimStatus fault = firstFault(anyNull(invVar, gconst), anyBelowOne(len)))
        return fault;
    return gaussianConstant(invVar, len, -1.0, gconst);
}

ZimStatus zimsUpdateGConst_DirectVar_32f(const Zim32f* var, int len, Zim32f* gconst)
{
    if (ZimStatus fault = firstFault(anyNull(var, gconst), anyBelowOne(len)))
        return fault;
    return gaussianConstant(var, len, 1.0f, gconst);
}

ZimStatus zimsUpdateGConst_DirectVar_64f(const Zim64f* var, int len, Zim64f* gconst)
{
    if (ZimStatus fault = firstFault(anyNull(var, gconst), anyBelowOne(len)))
        return fault;
    return gaussianConstant(var, len, 1.0, gconst);
}

// ---- Constants of a mixture's scores

ZimStatus zimsOutProbPreCalc_32f(const Zim32f* logWeight, const Zim32f* gconst, Zim32f* val, int len)
{
    if (ZimStatus fault = firstFault(anyNull(logWeight, gconst, val), anyBelowOne(len)))
        return fault;
    scoreConstants(logWeight, gconst, val, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsOutProbPreCalc_64f(const Zim64f* logWeight, const Zim64f* gconst, Zim64f* val, int len)
{
    if (ZimStatus fault = firstFault(anyNull(logWeight, gconst, val), anyBelowOne(len)))
        return fault;
    scoreConstants(logWeight, gconst, val, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsOutProbPreCalc_32s(const Zim32s* logWeight, const Zim32s* gconst, Zim32s* val, int len)
{
    if (ZimStatus fault = firstFault(anyNull(logWeight, gconst, val), anyBelowOne(len)))
        return fault;
    scoreConstants(logWeight, gconst, val, static_cast<std::size_t>(len), firstRoundedUp(len, logWeight, gconst, val));
    return zimStsOk;
}

ZimStatus zimsOutProbPreCalc_32f_I(const Zim32f* logWeight, Zim32f* gconst, int len)
{
    return zimsOutProbPreCalc_32f(logWeight, gconst, gconst, len);
}

ZimStatus zimsOutProbPreCalc_64f_I(const Zim64f* logWeight, Zim64f* gconst, int len)
{
    return zimsOutProbPreCalc_64f(logWeight, gconst, gconst, len);
}

ZimStatus zimsOutProbPreCalc_32s_I(const Zim32s* logWeight, Zim32s* gconst, int len)
{
    return zimsOutProbPreCalc_32s(logWeight, gconst, gconst, len);
}
