// Mahalanobis distance of 16-bit vectors.
#include <zimsr/mahalanobis.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/loggauss_fixed.h"
#include "zimsr/kernels/mahalanobis.h"

using namespace zimsr;

// By contract, aligned vectors have the arithmetic of the fixed-point scores, where differences saturate, and all
// others that of exact differences.

ZimStatus zimsMahDistSingle_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    if (allAligned(16, src, mean, invVar))
        *dst = distanceOfVector<FloatSquares<Zim16s>>(len, src, mean, invVar);
    else
        *dst = distanceOfVector<OnFloats<SquareByInverse<F8>>>(len, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsMahDistSingle_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                       Zim32s* dst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    if (allAligned(16, src, mean, invVar)) {
        const Zim32f distance = distanceOfVector<FloatSquares<Zim16s>>(len, src, mean, invVar);
        quantiseBlock(&distance, dst, 1, 1, scaleFactor);
    } else {
        *dst = scaleFloor<Zim32s>(exactDistance(len, src, mean, invVar), scaleFactor);
    }
    return zimStsOk;
}
