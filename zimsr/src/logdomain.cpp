// Log-domain arithmetic: sums and differences of probabilities that are held as logarithms.
#include <cstddef>

#include <zimsr/logdomain.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/logdomain.h"
#include "zimsr/kernels/logdomain_scaled.h"
#include "zimsr/kernels/logdomain_sub.h"

using namespace zimsr;

namespace {

enum LogAddHint { accurate = 0, fast = 1, scalar = 2 };

// Any other hint leaves srcDst as it is.
void addByHint(const Zim32f* src, Zim32f* srcDst, std::size_t len, int hint)
{
    switch (hint) {
        case accurate:
            return logAddAccurate(src, srcDst, len);
        case fast:
            return logAddFast(src, srcDst, len);
        case scalar:
            return logAddExtended(src, srcDst, len);
    }
}

template <class Int>
void addScaledByHint(const Int* src, Int* srcDst, int len, int scaleFactor, int hint)
{
    logAddScaled(src, srcDst, static_cast<std::size_t>(len), scaleFactor,
                 [hint](const Zim32f* added, Zim32f* sums, std::size_t count) { addByHint(added, sums, count, hint); });
}

}  // namespace

// ---- Sum of two vectors

ZimStatus zimsLogAdd_32f(const Zim32f* src, Zim32f* srcDst, int len, int hint)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    addByHint(src, srcDst, static_cast<std::size_t>(len), hint);
    return zimStsOk;
}

ZimStatus zimsLogAdd_64f(const Zim64f* src, Zim64f* srcDst, int len, int hint)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    if (hint == accurate || hint == fast || hint == scalar)
        logAddAccurate(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsLogAdd_32s_Sfs(const Zim32s* src, Zim32s* srcDst, int len, int scaleFactor, int hint)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    addScaledByHint(src, srcDst, len, scaleFactor, hint);
    return zimStsOk;
}

ZimStatus zimsLogAdd_16s_Sfs(const Zim16s* src, Zim16s* srcDst, int len, int scaleFactor, int hint)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    addScaledByHint(src, srcDst, len, scaleFactor, hint);
    return zimStsOk;
}

// ---- Sum over a vector

ZimStatus zimsLogSum_32f(const Zim32f* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, dst)))
        return fault;
    *dst = logSum(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsLogSum_64f(const Zim64f* src, Zim64f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, dst)))
        return fault;
    *dst = logSum(src, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsLogSum_32s_Sfs(const Zim32s* src, Zim32s* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, dst)))
        return fault;
    *dst = len == 1 ? src[0] : logSumScaled(src, static_cast<std::size_t>(len), scaleFactor);
    return zimStsOk;
}

ZimStatus zimsLogSum_16s_Sfs(const Zim16s* src, Zim16s* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, dst)))
        return fault;
    *dst = len == 1 ? src[0] : logSumScaled(src, static_cast<std::size_t>(len), scaleFactor);
    return zimStsOk;
}

// ---- Difference of two vectors

ZimStatus zimsLogSub_32f(const Zim32f* src, Zim32f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    if (ParamErr32f(src, srcDst, len))
        return zimStsOutOfRange;
    logSubBlock(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsLogSub_64f(const Zim64f* src, Zim64f* srcDst, int len)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    if (ParamErr64f(src, srcDst, len))
        return zimStsOutOfRange;
    logSubBlock(src, srcDst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsLogSub_32s_Sfs(const Zim32s* src, Zim32s* srcDst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    if (ParamErr32s(src, srcDst, len))
        return zimStsOutOfRange;
    logSubScaled(src, srcDst, static_cast<std::size_t>(len), GetScale_32s32f(scaleFactor));
    return zimStsOk;
}

ZimStatus zimsLogSub_16s_Sfs(const Zim16s* src, Zim16s* srcDst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyBelowOne(len), anyNull(src, srcDst)))
        return fault;
    if (ParamErr16s(src, srcDst, len))
        return zimStsOutOfRange;
    logSubScaled(src, srcDst, static_cast<std::size_t>(len), GetScale_32s32f(scaleFactor));
    return zimStsOk;
}
