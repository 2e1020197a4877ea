// Mahalanobis distance in floating point, and the moments that its models are estimated from.
#include <cstddef>

#include <zimsr/mahalanobis.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/mahalanobis.h"
#include "zimsr/kernels/moments.h"

using namespace zimsr;

// ---- One vector

ZimStatus zimsMahDistSingle_32f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    *dst = distanceOfVector<SquareByInverse<F8>>(len, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsMahDistSingle_64f(const Zim64f* src, const Zim64f* mean, const Zim64f* invVar, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    *dst = distanceOfVector<SquareByInverse<D4>>(len, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsMahDistSingle_32f64f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    *dst = distanceOfVector<Widened<SquareByInverse<D4>>>(len, src, mean, invVar);
    return zimStsOk;
}

// ---- Frames from one Gaussian

ZimStatus zimsMahDist_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                             Zim32f* dst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfFrames<SquareByInverse<F8>>(Rows(mat, step), width, height, dst, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsMahDist_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                              Zim32f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfFrames<SquareByInverse<F8>>(Rows(rows), width, height, dst, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsMahDist_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                             Zim64f* dst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfFrames<SquareByInverse<D4>>(Rows(mat, step), width, height, dst, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsMahDist_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                              Zim64f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfFrames<SquareByInverse<D4>>(Rows(rows), width, height, dst, mean, invVar);
    return zimStsOk;
}

// ---- One frame from many Gaussians

ZimStatus zimsMahDistMultiMix_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src, int width,
                                     Zim32f* dst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfGaussians<SquareByInverse<F8>>(src, width, height, dst, Rows(mean, step), Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsMahDistMultiMix_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows, const Zim32f* src,
                                      int width, Zim32f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfGaussians<SquareByInverse<F8>>(src, width, height, dst, Rows(meanRows), Rows(invVarRows));
    return zimStsOk;
}

ZimStatus zimsMahDistMultiMix_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src, int width,
                                     Zim64f* dst, int height)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mean, invVar, src, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfGaussians<SquareByInverse<D4>>(src, width, height, dst, Rows(mean, step), Rows(invVar, step));
    return zimStsOk;
}

ZimStatus zimsMahDistMultiMix_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows, const Zim64f* src,
                                      int width, Zim64f* dst, int height)
{
    if (ZimStatus fault = firstFault(anyNull(meanRows, invVarRows, src, dst), anyBelowOne(width, height)))
        return fault;
    distancesOfGaussians<SquareByInverse<D4>>(src, width, height, dst, Rows(meanRows), Rows(invVarRows));
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsMahDist1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                              Zim32f* dst, int height)
{
    return zimsMahDist_32f_D2(mat, step, mean, invVar, width, dst, height);
}

ZimStatus zimsMahDist1_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                               Zim32f* dst, int height)
{
    return zimsMahDist_32f_D2L(rows, mean, invVar, width, dst, height);
}

ZimStatus zimsMahDist1_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                              Zim64f* dst, int height)
{
    return zimsMahDist_64f_D2(mat, step, mean, invVar, width, dst, height);
}

ZimStatus zimsMahDist1_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                               Zim64f* dst, int height)
{
    return zimsMahDist_64f_D2L(rows, mean, invVar, width, dst, height);
}

ZimStatus zimsMahDist2_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src, int width,
                              Zim32f* dst, int height)
{
    return zimsMahDistMultiMix_32f_D2(mean, invVar, step, src, width, dst, height);
}

ZimStatus zimsMahDist2_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows, const Zim32f* src,
                               int width, Zim32f* dst, int height)
{
    return zimsMahDistMultiMix_32f_D2L(meanRows, invVarRows, src, width, dst, height);
}

ZimStatus zimsMahDist2_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src, int width,
                              Zim64f* dst, int height)
{
    return zimsMahDistMultiMix_64f_D2(mean, invVar, step, src, width, dst, height);
}

ZimStatus zimsMahDist2_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows, const Zim64f* src,
                               int width, Zim64f* dst, int height)
{
    return zimsMahDistMultiMix_64f_D2L(meanRows, invVarRows, src, width, dst, height);
}

// ---- Moments

ZimStatus zimsMeanVarAcc_32f(const Zim32f* src, const Zim32f* mean, Zim32f* meanAcc, Zim32f* varAcc, int len,
                             Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, meanAcc, varAcc), anyBelowOne(len)))
        return fault;
    addMoments(src, mean, meanAcc, varAcc, static_cast<std::size_t>(len), val);
    return zimStsOk;
}

ZimStatus zimsMeanVarAcc_64f(const Zim64f* src, const Zim64f* mean, Zim64f* meanAcc, Zim64f* varAcc, int len,
                             Zim64f val)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, meanAcc, varAcc), anyBelowOne(len)))
        return fault;
    addMoments(src, mean, meanAcc, varAcc, static_cast<std::size_t>(len), val);
    return zimStsOk;
}
