// The mel scale on vectors, and the padding of frames.
#include <cstring>

#include <zimsr/melfbank.h>
#include <zimsr/memory.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/melscale.h"

namespace zimsr {
namespace {

ZimStatus scaleFault(const Zim32f* src, const Zim32f* dst, int len, Zim32f melMul, Zim32f melDiv)
{
    return firstFault(anyNull(src, dst), anyBelowOne(len), faultIf(!(melMul > 0) || !(melDiv > 0), zimStsBadSize));
}

ZimStatus paddingFault(const void* src, int srcLen, const void* dst, int dstLen)
{
    return firstFault(anyNull(src, dst), anyBelowOne(srcLen, dstLen), faultIf(dstLen < srcLen, zimStsBadSize));
}

}  // namespace
}  // namespace zimsr

using namespace zimsr;

ZimStatus zimsMelToLinear_32f(const Zim32f* src, Zim32f* dst, int len, Zim32f melMul, Zim32f melDiv)
{
    if (ZimStatus fault = scaleFault(src, dst, len, melMul, melDiv))
        return fault;
    melToLinear(src, dst, len, melMul, melDiv);
    return zimStsOk;
}

ZimStatus zimsLinearToMel_32f(const Zim32f* src, Zim32f* dst, int len, Zim32f melMul, Zim32f melDiv)
{
    if (ZimStatus fault = scaleFault(src, dst, len, melMul, melDiv))
        return fault;
    linearToMel(src, dst, len, melMul, melDiv);
    return zimStsOk;
}

ZimStatus zimsCopyWithPadding_16s(const Zim16s* src, int srcLen, Zim16s* dst, int dstLen)
{
    if (ZimStatus fault = paddingFault(src, srcLen, dst, dstLen))
        return fault;
    zimsCopy_16s(src, dst, srcLen);
    return dstLen > srcLen ? zimsZero_16s(dst + srcLen, dstLen - srcLen) : ZimStatus{zimStsOk};
}

ZimStatus zimsCopyWithPadding_32f(const Zim32f* src, int srcLen, Zim32f* dst, int dstLen)
{
    if (ZimStatus fault = paddingFault(src, srcLen, dst, dstLen))
        return fault;
    zimsCopy_32f(src, dst, srcLen);
    return dstLen > srcLen ? zimsZero_32f(dst + srcLen, dstLen - srcLen) : ZimStatus{zimStsOk};
}
