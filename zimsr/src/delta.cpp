// Dynamic features by the short windows, streamed, and the copy of the statics alone.
#include <zimsr/delta.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/delta.h"
#include "zimsr/src/delta_checks.h"

using namespace zimsr;
using namespace zimsr::delta;

namespace {

// Up to this width `zimsDeltaDelta_Win2_16s_D2Sfs` saturates every sum to 16 bits; wider rows are summed in 32.
constexpr int widestSaturating = 13;

template <class Window>
constexpr ZimStatus badDelta(int width, int dstStep, int height, int flags)
{
    return badBlock(width, dstStep, height, flags, Zim64s{2} * width, contextOf<Window>(1));
}

template <class Window>
constexpr ZimStatus badDeltaDelta(int width, int dstStep, int height, int flags)
{
    return badBlock(width, dstStep, height, flags, Zim64s{3} * width, contextOf<Window>(2));
}

}  // namespace

ZimStatus zimsDelta_Win1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val,
                                int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win1>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByKind(val));
    return zimStsOk;
}

ZimStatus zimsDelta_Win2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val,
                                int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win2>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByKind(val));
    return zimStsOk;
}

ZimStatus zimsDeltaMul_Win1_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst, int dstStep,
                                   int height, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win1>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaMul_Win2_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst, int dstStep,
                                   int height, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win2>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaDelta_Win1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val1,
                                     Zim32f val2, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDeltaDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win1>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByKind(val1, val2));
    return zimStsOk;
}

ZimStatus zimsDeltaDelta_Win2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val1,
                                     Zim32f val2, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDeltaDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win2>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByKind(val1, val2));
    return zimStsOk;
}

ZimStatus zimsDeltaDeltaMul_Win1_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst, int dstStep,
                                        int height, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDeltaDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win1>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaDeltaMul_Win2_32f_D2(const Zim32f* src, const Zim32f* val, int width, Zim32f* dst, int dstStep,
                                        int height, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDeltaDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win2>(FloatRule{}, Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDelta_Win1_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height, Zim16s val,
                                   int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win1>(SaturatingRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags}, ByKind(val));
    return zimStsOk;
}

ZimStatus zimsDelta_Win2_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height, Zim16s val,
                                   int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win2>(SaturatingRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags}, ByKind(val));
    return zimStsOk;
}

ZimStatus zimsDeltaMul_Win1_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst, int dstStep,
                                      int height, int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win1>(SaturatingRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaMul_Win2_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst, int dstStep,
                                      int height, int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDelta<Win2>(SaturatingRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaDelta_Win1_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height, Zim16s val1,
                                        Zim16s val2, int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDeltaDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win1>(SaturatingRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags},
                           ByKind(val1, val2));
    return zimStsOk;
}

ZimStatus zimsDeltaDelta_Win2_16s_D2Sfs(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height, Zim16s val1,
                                        Zim16s val2, int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), badDeltaDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    const Stream stream{src, width, dst, dstStep, height, flags};
    if (width <= widestSaturating)
        appendDeltaDelta<Win2>(SaturatingRule(scaleFactor), stream, ByKind(val1, val2));
    else
        appendDeltaDelta<Win2>(WideRule(scaleFactor), stream, ByKind(val1, val2));
    return zimStsOk;
}

ZimStatus zimsDeltaDeltaMul_Win1_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst, int dstStep,
                                           int height, int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDeltaDelta<Win1>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win1>(SaturatingRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsDeltaDeltaMul_Win2_16s_D2Sfs(const Zim16s* src, const Zim16s* val, int width, Zim16s* dst, int dstStep,
                                           int height, int flags, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, val, dst), badDeltaDelta<Win2>(width, dstStep, height, flags)))
        return fault;
    appendDeltaDelta<Win2>(WideRule(scaleFactor), Stream{src, width, dst, dstStep, height, flags}, ByColumn(val));
    return zimStsOk;
}

ZimStatus zimsCopyColumn_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(dstStep, width)))
        return fault;
    copyRows(Rows(src, width), Rows(dst, dstStep), width, height);
    return zimStsOk;
}

ZimStatus zimsCopyColumn_16s_D2(const Zim16s* src, int width, Zim16s* dst, int dstStep, int height)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(height, width), strideBelow(dstStep, width)))
        return fault;
    copyRows(Rows(src, width), Rows(dst, dstStep), width, height);
    return zimStsOk;
}

ZimStatus zimsDeltaW1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val, int flags)
{
    return zimsDelta_Win1_32f_D2(src, width, dst, dstStep, height, val, flags);
}

ZimStatus zimsDeltaW2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val, int flags)
{
    return zimsDelta_Win2_32f_D2(src, width, dst, dstStep, height, val, flags);
}

ZimStatus zimsDeltaDeltaW1_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val1,
                                  Zim32f val2, int flags)
{
    return zimsDeltaDelta_Win1_32f_D2(src, width, dst, dstStep, height, val1, val2, flags);
}

ZimStatus zimsDeltaDeltaW2_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height, Zim32f val1,
                                  Zim32f val2, int flags)
{
    return zimsDeltaDelta_Win2_32f_D2(src, width, dst, dstStep, height, val1, val2, flags);
}

ZimStatus zimsCopyCol_32f_D2(const Zim32f* src, int width, Zim32f* dst, int dstStep, int height)
{
    return zimsCopyColumn_32f_D2(src, width, dst, dstStep, height);
}
