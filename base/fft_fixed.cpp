// Real transform of 16-bit samples to a 32-bit spectrum: a wrapper around the transform in floating point.
#include <cstddef>
#include <limits>

#include <zimsr/fft.h>

#include "base/allocator.h"
#include "base/fft_plan.h"
#include "base/fft_workspace.h"
#include "base/kernels/convert.h"
#include "zimcore/frame/checks.h"

using namespace zimsr;

namespace {

ZimStatus notThisPlan(const ZimsFFTPlan_R_16s32s* plan)
{
    return plan ? faultIf(plan->identity != fftIdentity_16s32s, zimStsBadContext) : ZimStatus{zimStsNullPointer};
}

// Samples and spectrum in floating point in front of the inner transform's buffer.
Zim64s workBytes(int order, int innerBytes)
{
    return innerBytes + (Zim64s{4} << order) + 16;
}

ZimStatus buildInner(ZimsFFTPlan_R_16s32s& record)
{
    if (ZimStatus fault =
            firstFault(badFftFlag(record.flag),
                       faultIf(workBytes(record.order, 0) > std::numeric_limits<int>::max(), zimStsAllocFailed)))
        return fault;
    if (ZimStatus fault = zimsFFTInitAlloc_R_32f(&record.plan, record.order, record.flag, record.hint))
        return fault;
    record.bufferSize = static_cast<Zim32s>(workBytes(record.order, record.plan->bufferSize));
    return zimStsOk;
}

// work holds length + 2 elements; the inner transform's buffer begins where the samples end.
void transform(const Zim16s* src, Zim32s* dst, const ZimsFFTPlan_R_16s32s& plan, int scaleFactor, Zim32f* work)
{
    const std::size_t length = std::size_t{1} << plan.order;
    convertBlock(src, work, length);
    zimsFFTFwd_RToCCS_32f(work, work, plan.plan, reinterpret_cast<Zim8u*>(work + length));
    quantiseBlock(work, dst, plan.order == 0 ? 2 : length + 2, 1, scaleFactor);
}

}  // namespace

ZimStatus zimsFFTInitAlloc_R_16s32s(ZimsFFTPlan_R_16s32s** plan, int order, int flag, int hint)
{
    if (ZimStatus fault = firstFault(anyNull(plan), badFftOrder(order)))
        return fault;
    auto* record = static_cast<ZimsFFTPlan_R_16s32s*>(allocate(1, sizeof(ZimsFFTPlan_R_16s32s)));
    if (!record)
        return zimStsAllocFailed;
    *record = {fftIdentity_16s32s, order, flag, hint, 0, nullptr};
    if (ZimStatus fault = buildInner(*record)) {
        release(record);
        return fault;
    }
    *plan = record;
    return zimStsOk;
}

ZimStatus zimsFFTFree_R_16s32s(ZimsFFTPlan_R_16s32s* plan)
{
    if (ZimStatus fault = notThisPlan(plan))
        return fault;
    zimsFFTFree_R_32f(plan->plan);
    plan->identity = 0;
    release(plan);
    return zimStsOk;
}

ZimStatus zimsFFTFwd_RToCCS_16s32s_Sfs(const Zim16s* src, Zim32s* dst, const ZimsFFTPlan_R_16s32s* plan,
                                       int scaleFactor, Zim8u* buffer)
{
    if (ZimStatus fault = firstFault(notThisPlan(plan), anyNull(src, dst)))
        return fault;
    if (plan->order < firstTabledOrder) {
        Zim32f work[10];
        transform(src, dst, *plan, scaleFactor, work);
        return zimStsOk;
    }
    FftWorkspace workspace(buffer, plan->bufferSize);
    if (!workspace)
        return zimStsAllocFailed;
    transform(src, dst, *plan, scaleFactor, reinterpret_cast<Zim32f*>(workspace.data()));
    return zimStsOk;
}
