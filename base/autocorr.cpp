// Autocorrelation: few lags directly, many through the real transform.
#include <algorithm>

#include <zimsr/autocorr.h>
#include <zimsr/fft.h>

#include "base/allocator.h"
#include "base/kernels/autocorr.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/scratch.h"

using namespace zimsr;

namespace {

constexpr int firstTransformedLagCount = 856;

// A plan that lives for one call.
class CallPlan {
public:
    CallPlan(int order, int flag) : fault_(zimsFFTInitAlloc_R_32f(&plan_, order, flag, 0)) {}
    ~CallPlan()
    {
        if (plan_)
            zimsFFTFree_R_32f(plan_);
    }
    CallPlan(const CallPlan&) = delete;
    CallPlan& operator=(const CallPlan&) = delete;

    ZimStatus fault() const { return fault_; }
    const ZimsFFTPlan_R_32f* get() const { return plan_; }
    std::size_t bufferSize() const
    {
        int size = 0;
        zimsFFTGetBufSize_R_32f(plan_, &size);
        return static_cast<std::size_t>(size);
    }

private:
    ZimsFFTPlan_R_32f* plan_ = nullptr;
    ZimStatus fault_;
};

ZimStatus autoCorrByTransform(const Zim32f* src, int srcLen, Zim32f* dst, int lags)
{
    int order = 1;
    while ((Zim64s{1} << order) < 2 * Zim64s{srcLen})
        ++order;
    const CallPlan plan(order, 2);
    if (plan.fault())
        return plan.fault();
    const int length = 1 << order;
    // Without a buffer each transform looks for its own.
    HeapScratch<Zim8u> buffer(plan.bufferSize());
    HeapScratch<Zim32f> signal(static_cast<std::size_t>(length));
    if (!signal)
        return zimStsAllocFailed;
    std::copy_n(src, srcLen, signal.data());
    std::fill_n(signal.data() + srcLen, length - srcLen, 0.0f);
    if (ZimStatus fault = zimsFFTFwd_RToPack_32f(signal.data(), signal.data(), plan.get(), buffer.data()))
        return fault;
    if (ZimStatus fault = zimsMulPackConj_32f_I(signal.data(), signal.data(), length))
        return fault;
    if (ZimStatus fault = zimsFFTInv_PackToR_32f(signal.data(), signal.data(), plan.get(), buffer.data()))
        return fault;
    std::copy_n(signal.data(), lags, dst);
    return zimStsOk;
}

}  // namespace

ZimStatus zimsAutoCorr_32f(const Zim32f* src, int srcLen, Zim32f* dst, int dstLen)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(srcLen, dstLen)))
        return fault;
    const int lags = std::min(srcLen, dstLen);
    if (lags < firstTransformedLagCount)
        ownAutoCorr_32f(src, srcLen, dst, lags);
    else if (ZimStatus fault = autoCorrByTransform(src, srcLen, dst, lags))
        return fault;
    std::fill_n(dst + lags, dstLen - lags, 0.0f);
    return zimStsOk;
}
