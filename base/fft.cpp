// Real transform: plans and transforms in floating point, and the spectrum product.
#include <zimsr/fft.h>

#include "base/allocator.h"
#include "base/fft_plan.h"
#include "base/fft_transform.h"
#include "base/fft_workspace.h"
#include "base/kernels/fft_small.h"
#include "base/kernels/fft_spectrum.h"
#include "zimcore/frame/checks.h"

using namespace zimsr;

namespace {

ZimStatus notThisPlan(const ZimsFFTPlan_R_32f* plan)
{
    return plan ? faultIf(plan->identity != fftIdentity_32f, zimStsBadContext) : ZimStatus{zimStsNullPointer};
}

void setNormalisation(ZimsFFTPlan_R_32f& plan, int flag)
{
    const std::size_t length = std::size_t{1} << plan.order;
    plan.scaleForward = flag == 1 || flag == 4;
    plan.scaleInverse = flag == 2 || flag == 4;
    if (flag == 1 || flag == 2)
        plan.factor = 1.0f / static_cast<Zim32f>(length);
    if (flag == 4)
        plan.factor = static_cast<Zim32f>(1.0 / __builtin_sqrt(static_cast<double>(length)));
}

template <SpectrumFormat format>
ZimStatus forward(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer)
{
    if (ZimStatus fault = firstFault(notThisPlan(plan), anyNull(src, dst)))
        return fault;
    if (plan->order < firstTabledOrder) {
        forwardSmall<format>(src, dst, *plan);
        return zimStsOk;
    }
    FftWorkspace workspace(buffer, plan->bufferSize);
    if (!workspace)
        return zimStsAllocFailed;
    forwardTransform<format>(src, dst, *plan, workspace.data());
    return zimStsOk;
}

}  // namespace

ZimStatus zimsFFTInitAlloc_R_32f(ZimsFFTPlan_R_32f** plan, int order, int flag, int hint)
{
    if (ZimStatus fault = firstFault(anyNull(plan), badFftOrder(order)))
        return fault;
    auto* record = static_cast<ZimsFFTPlan_R_32f*>(allocate(1, sizeof(ZimsFFTPlan_R_32f)));
    if (!record)
        return zimStsAllocFailed;
    *record = {};
    record->identity = fftIdentity_32f;
    record->order = order;
    record->hint = hint;
    setNormalisation(*record, flag);
    ZimStatus fault = badFftFlag(flag);
    if (!fault && order >= firstTabledOrder)
        fault = faultIf(!createTablesCFFT(*record), zimStsAllocFailed);
    if (fault) {
        deleteFftCtx(record);
        return fault;
    }
    *plan = record;
    return zimStsOk;
}

ZimStatus zimsFFTFree_R_32f(ZimsFFTPlan_R_32f* plan)
{
    if (ZimStatus fault = notThisPlan(plan))
        return fault;
    deleteFftCtx(plan);
    return zimStsOk;
}

ZimStatus zimsFFTGetBufSize_R_32f(const ZimsFFTPlan_R_32f* plan, int* size)
{
    if (ZimStatus fault = firstFault(notThisPlan(plan), anyNull(size)))
        return fault;
    *size = plan->bufferSize;
    return zimStsOk;
}

ZimStatus zimsFFTFwd_RToCCS_32f(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer)
{
    return forward<SpectrumFormat::ccs>(src, dst, plan, buffer);
}

ZimStatus zimsFFTFwd_RToPack_32f(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer)
{
    return forward<SpectrumFormat::pack>(src, dst, plan, buffer);
}

ZimStatus zimsFFTInv_PackToR_32f(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f* plan, Zim8u* buffer)
{
    if (ZimStatus fault = firstFault(notThisPlan(plan), anyNull(src, dst)))
        return fault;
    if (plan->order < firstTabledOrder) {
        inverseSmall(src, dst, *plan);
        return zimStsOk;
    }
    FftWorkspace workspace(buffer, plan->bufferSize);
    if (!workspace)
        return zimStsAllocFailed;
    inverseTransform(src, dst, *plan, workspace.data());
    return zimStsOk;
}

ZimStatus zimsMulPackConj_32f_I(const Zim32f* src, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, srcDst), anyBelowOne(len)))
        return fault;
    mulPackConj(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}
