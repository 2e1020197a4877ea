// Removal of a constant offset from a stream of samples.
#include <zimsr/offset.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/offset.h"

using namespace zimsr;
using namespace zimsr::offset;

ZimStatus zimsCompensateOffset_32f(const Zim32f* src, Zim32f* dst, int len, Zim32f* srcPrev, Zim32f dstPrev, Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, srcPrev), anyBelowOne(len)))
        return fault;
    filterBlock(src, dst, len, srcPrev, dstPrev, val);
    return zimStsOk;
}

ZimStatus zimsCompensateOffset_32f_I(Zim32f* srcDst, int len, Zim32f* srcPrev, Zim32f dstPrev, Zim32f val)
{
    return zimsCompensateOffset_32f(srcDst, srcDst, len, srcPrev, dstPrev, val);
}

ZimStatus zimsCompensateOffset_16s(const Zim16s* src, Zim16s* dst, int len, Zim16s* srcPrev, Zim16s dstPrev, Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, srcPrev), anyBelowOne(len)))
        return fault;
    if (val >= -1 && val <= 1)
        filterBlock<Q12Step>(src, dst, len, srcPrev, dstPrev, val);
    else
        filterBlock<RoundingStep>(src, dst, len, srcPrev, dstPrev, val);
    return zimStsOk;
}

ZimStatus zimsCompensateOffset_16s_I(Zim16s* srcDst, int len, Zim16s* srcPrev, Zim16s dstPrev, Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst, srcPrev), anyBelowOne(len)))
        return fault;
    filterBlock<RoundingStep>(srcDst, srcDst, len, srcPrev, dstPrev, val);
    return zimStsOk;
}

ZimStatus zimsCompensateOffsetQ15_16s(const Zim16s* src, Zim16s* dst, int len, Zim16s* srcPrev, Zim16s dstPrev,
                                      Zim16s val)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, srcPrev), anyBelowOne(len), faultIf(len > 65535, zimStsBadSize),
                                     faultIf(val < 0, zimStsBadArgument)))
        return fault;
    runSteps(src, dst, len, *srcPrev, srcPrev, Q15Step(dstPrev, val));
    return zimStsOk;
}

ZimStatus zimsCompensateOffsetQ15_16s_I(Zim16s* srcDst, int len, Zim16s* srcPrev, Zim16s dstPrev, Zim16s val)
{
    return zimsCompensateOffsetQ15_16s(srcDst, srcDst, len, srcPrev, dstPrev, val);
}
