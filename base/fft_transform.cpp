// The transform by its size.
#include "base/fft_transform.h"

#include <cstdint>

#include "base/kernels/fft_buffered.h"
#include "base/kernels/fft_large.h"

namespace zimsr {
namespace {

// A line of the cache. The buffer of a large transform has room for that.
float* alignToLine(Zim8u* buffer)
{
    return reinterpret_cast<float*>(buffer + (-reinterpret_cast<std::uintptr_t>(buffer) & 63));
}

}  // namespace

template <SpectrumFormat format>
void forwardTransform(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan, Zim8u* buffer)
{
    switch (plan.order) {
        case 4:
            return fft::forward16<format>(src, dst, plan);
        case 5:
            return fft::forwardInRegisters<format, F4, 4>(src, dst, plan);
        case 6:
            return fft::forwardInRegisters<format, F4, 8>(src, dst, plan);
        case 7:
            return fft::forwardInRegisters<format, F8, 8>(src, dst, plan);
        default:
            if (plan.order <= lastBufferedOrder)
                fft::forwardBuffered<format>(src, dst, plan, reinterpret_cast<float*>(buffer));
            else
                fft::LargeTransform(plan, fft::LargeShape(plan.order), alignToLine(buffer)).forward<format>(src, dst);
    }
}

template void forwardTransform<SpectrumFormat::ccs>(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f&, Zim8u*);
template void forwardTransform<SpectrumFormat::pack>(const Zim32f*, Zim32f*, const ZimsFFTPlan_R_32f&, Zim8u*);

void inverseTransform(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan, Zim8u* buffer)
{
    switch (plan.order) {
        case 4:
            return fft::inverse16(src, dst, plan);
        case 5:
            return fft::inverseInRegisters<F4, 4>(src, dst, plan);
        case 6:
            return fft::inverseInRegisters<F4, 8>(src, dst, plan);
        case 7:
            return fft::inverseInRegisters<F8, 8>(src, dst, plan);
        default:
            if (plan.order <= lastBufferedOrder)
                fft::inverseBuffered(src, dst, plan, reinterpret_cast<float*>(buffer));
            else
                fft::LargeTransform(plan, fft::LargeShape(plan.order), alignToLine(buffer)).inverse(src, dst);
    }
}

}  // namespace zimsr
