// Deltas of a whole utterance in place.
#include <zimsr/delta.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/delta_eval.h"

using namespace zimsr;
using namespace zimsr::delta;

namespace {

constexpr ZimStatus badUtterance(int height, int step, int width, int offset, int winSize)
{
    return firstFault(anyBelowOne(height, width, winSize), faultIf(offset < 0, zimStsBadSize),
                      faultIf(height < Zim64s{2} * winSize, zimStsBadSize),
                      strideBelow(step, offset + Zim64s{2} * width));
}

}  // namespace

ZimStatus zimsEvalDelta_32f_D2(Zim32f* srcDst, int height, int step, int width, int offset, int winSize, Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), badUtterance(height, step, width, offset, winSize)))
        return fault;
    evalDeltas(FloatRule{}, srcDst + offset, srcDst + offset + width, height, step, width, winSize,
               ByKind(val).deltas(1, width));
    return zimStsOk;
}

ZimStatus zimsEvalDeltaMul_32f_D2(Zim32f* srcDst, int height, int step, const Zim32f* val, int width, int offset,
                                  int winSize)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst, val), badUtterance(height, step, width, offset, winSize)))
        return fault;
    evalDeltas(FloatRule{}, srcDst + offset, srcDst + offset + width, height, step, width, winSize,
               ByColumn(val).deltas(1, width));
    return zimStsOk;
}

ZimStatus zimsEvalDelta_16s_D2Sfs(Zim16s* srcDst, int height, int step, int width, int offset, int winSize, Zim16s val,
                                  int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), badUtterance(height, step, width, offset, winSize)))
        return fault;
    evalDeltas(WideRule(scaleFactor), srcDst + offset, srcDst + offset + width, height, step, width, winSize,
               ByKind(val).deltas(1, width));
    return zimStsOk;
}

ZimStatus zimsEvalDeltaMul_16s_D2Sfs(Zim16s* srcDst, int height, int step, const Zim16s* val, int width, int offset,
                                     int winSize, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst, val), badUtterance(height, step, width, offset, winSize)))
        return fault;
    evalDeltas(WideRule(scaleFactor), srcDst + offset, srcDst + offset + width, height, step, width, winSize,
               ByColumn(val).deltas(1, width));
    return zimStsOk;
}
