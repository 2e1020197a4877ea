// Dynamic features of the distributed front end.
#include <zimsr/delta.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/delta_aurora.h"
#include "zimsr/src/delta_checks.h"

using namespace zimsr;
using namespace zimsr::delta;

namespace {

constexpr ZimStatus badAurora(int dstStep, int height, int flags)
{
    return badBlock(aurora::srcWidth, dstStep, height, flags, 3 * aurora::width, aurora::context);
}

}  // namespace

ZimStatus zimsDeltaDelta_Aurora_32f_D2(const Zim32f* src, Zim32f* dst, int dstStep, int height, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badAurora(dstStep, height, flags)))
        return fault;
    appendAurora(Stream{src, aurora::srcWidth, dst, dstStep, height, flags}, ByKind<Zim32f>(1, 1));
    return zimStsOk;
}

ZimStatus zimsDeltaDeltaMul_Aurora_32f_D2(const Zim32f* src, const Zim32f* val, Zim32f* dst, int dstStep, int height,
                                          int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badAurora(dstStep, height, flags)))
        return fault;
    appendAurora(Stream{src, aurora::srcWidth, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaDelta_Aurora_16s_D2Sfs(const Zim16s* src, Zim16s* dst, int dstStep, int height, int flags,
                                          int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badAurora(dstStep, height, flags)))
        return fault;
    appendAurora(Stream{src, aurora::srcWidth, dst, dstStep, height, flags}, ByOne{}, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsDeltaDeltaMul_Aurora_16s_D2Sfs(const Zim16s* src, const Zim16s* val, Zim16s* dst, int dstStep, int height,
                                             int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badAurora(dstStep, height, flags)))
        return fault;
    appendAurora(Stream{src, aurora::srcWidth, dst, dstStep, height, flags}, ByColumn(val), scaleFactor);
    return zimStsOk;
}
