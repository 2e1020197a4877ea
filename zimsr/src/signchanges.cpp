// Sign changes of a signal.
#include <cstddef>

#include <zimsr/signchanges.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/signchanges.h"

using namespace zimsr;
using namespace zimsr::signchanges;

ZimStatus zimsSignChangeRate_32f(const Zim32f* src, int len, Zim32f* res)
{
    if (ZimStatus fault = firstFault(anyNull(src, res), anyBelowOne(len)))
        return fault;
    *res = static_cast<Zim32f>(negativeProducts(src, static_cast<std::size_t>(len)));
    return zimStsOk;
}

ZimStatus zimsSignChangeRate_16s(const Zim16s* src, int len, Zim32s* res)
{
    if (ZimStatus fault = firstFault(anyNull(src, res), anyBelowOne(len)))
        return fault;
    *res = static_cast<Zim32s>(negativeProducts(src, static_cast<std::size_t>(len)));
    return zimStsOk;
}

ZimStatus zimsSignChangeRate_Count0_32f(const Zim32f* src, int len, Zim32f* res)
{
    if (ZimStatus fault = firstFault(anyNull(src, res), anyBelowOne(len)))
        return fault;
    *res = 0.5f * static_cast<Zim32f>(halfSteps(src, static_cast<std::size_t>(len)));
    return zimStsOk;
}

ZimStatus zimsSignChangeRate_Count0_16s(const Zim16s* src, int len, Zim32s* res)
{
    if (ZimStatus fault = firstFault(anyNull(src, res), anyBelowOne(len)))
        return fault;
    *res = static_cast<Zim32s>(halfSteps(src, static_cast<std::size_t>(len)) >> 1);
    return zimStsOk;
}

ZimStatus zimsSignChangeRateXor_32f(const Zim32f* src, int len, Zim32s* res)
{
    if (ZimStatus fault = firstFault(anyNull(src, res), anyBelowOne(len)))
        return fault;
    *res = static_cast<Zim32s>(signBitChanges(src, static_cast<std::size_t>(len)));
    return zimStsOk;
}
