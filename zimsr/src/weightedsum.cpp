// Interpolation of two parameter vectors.
#include <cstddef>

#include <zimsr/update.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/weightedsum.h"

using namespace zimsr;

ZimStatus zimsWeightedSum_32f(const Zim32f* a, const Zim32f* b, Zim32f* dst, int len, Zim32f wgtA, Zim32f wgtB)
{
    if (ZimStatus fault = firstFault(anyNull(a, b, dst), anyBelowOne(len)))
        return fault;
    return weightedSum(a, b, dst, static_cast<std::size_t>(len), wgtA, wgtB, ShareOfEach{}) ? zimStsDivByZeroWarn
                                                                                            : zimStsOk;
}

ZimStatus zimsWeightedSum_64f(const Zim64f* a, const Zim64f* b, Zim64f* dst, int len, Zim64f wgtA, Zim64f wgtB)
{
    if (ZimStatus fault = firstFault(anyNull(a, b, dst), anyBelowOne(len)))
        return fault;
    return weightedSum(a, b, dst, static_cast<std::size_t>(len), wgtA, wgtB, ShareOfEach{}) ? zimStsDivByZeroWarn
                                                                                            : zimStsOk;
}

ZimStatus zimsWeightedSumHalf_32f(const Zim32f* a, const Zim32f* b, Zim32f* dst, int len, Zim32f wgtA, Zim32f wgtB)
{
    if (ZimStatus fault = firstFault(anyNull(a, b, dst), anyBelowOne(len)))
        return fault;
    return weightedSum(a, b, dst, static_cast<std::size_t>(len), wgtA, wgtB, ShareOfSecond{}) ? zimStsDivByZeroWarn
                                                                                              : zimStsOk;
}

ZimStatus zimsWeightedSumHalf_64f(const Zim64f* a, const Zim64f* b, Zim64f* dst, int len, Zim64f wgtA, Zim64f wgtB)
{
    if (ZimStatus fault = firstFault(anyNull(a, b, dst), anyBelowOne(len)))
        return fault;
    return weightedSum(a, b, dst, static_cast<std::size_t>(len), wgtA, wgtB, ShareOfSecond{}) ? zimStsDivByZeroWarn
                                                                                              : zimStsOk;
}

// ---- 16 bits: alignment and length decide how a result is rounded

namespace {

template <class Shares>
ZimStatus weightedSumOfShorts(const Zim16s* a, const Zim16s* b, Zim16s* dst, int len, Zim32f wgtA, Zim32f wgtB,
                              Shares shares)
{
    if (ZimStatus fault = firstFault(anyNull(a, b, dst), anyBelowOne(len)))
        return fault;
    const std::size_t count = static_cast<std::size_t>(len);
    const bool noSum = len >= 8 && allAligned(16, a, b, dst)
                           ? weightedSum(a, b, dst, count, wgtA, wgtB, shares, RoundNearest{})
                           : weightedSum(a, b, dst, count, wgtA, wgtB, shares, Truncate{});
    return noSum ? zimStsDivByZeroWarn : zimStsOk;
}

}  // namespace

ZimStatus zimsWeightedSum_16s(const Zim16s* a, const Zim16s* b, Zim16s* dst, int len, Zim32f wgtA, Zim32f wgtB)
{
    return weightedSumOfShorts(a, b, dst, len, wgtA, wgtB, ShareOfEach{});
}

ZimStatus zimsWeightedSumHalf_16s(const Zim16s* a, const Zim16s* b, Zim16s* dst, int len, Zim32f wgtA, Zim32f wgtB)
{
    return weightedSumOfShorts(a, b, dst, len, wgtA, wgtB, ShareOfSecond{});
}
