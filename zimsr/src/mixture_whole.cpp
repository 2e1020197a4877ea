// One frame against whole mixtures.
#include <zimsr/mixture.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/mixture.h"

using namespace zimsr;

// ---- Variances of their own

ZimStatus zimsLogGaussMixture_32f_D2(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int height, int step,
                                     int width, const Zim32f* val, Zim32f* dst)
{
    if (ZimStatus fault =
            firstFault(anyNull(src, mean, invVar, val, dst), strideBelow(step, width), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(height, scoresOfGaussians<SquareByInverse<F8>, FromDoubledConstant>(
                                         src, width, val, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_32f_D2L(const Zim32f* src, const Zim32f* const* meanRows, const Zim32f* const* invVarRows,
                                      int height, int width, const Zim32f* val, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, invVarRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim32f>(height, scoresOfGaussians<SquareByInverse<F8>, FromDoubledConstant>(
                                         src, width, val, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_64f_D2(const Zim64f* src, const Zim64f* mean, const Zim64f* invVar, int height, int step,
                                     int width, const Zim64f* val, Zim64f* dst)
{
    if (ZimStatus fault =
            firstFault(anyNull(src, mean, invVar, val, dst), strideBelow(step, width), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim64f>(height, scoresOfGaussians<SquareByInverse<D4>, FromHalvedSum>(
                                         src, width, val, Rows(mean, step), Rows(invVar, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_64f_D2L(const Zim64f* src, const Zim64f* const* meanRows, const Zim64f* const* invVarRows,
                                      int height, int width, const Zim64f* val, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, invVarRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim64f>(height, scoresOfGaussians<SquareByInverse<D4>, FromHalvedSum>(
                                         src, width, val, Rows(meanRows), Rows(invVarRows)));
    return zimStsOk;
}

// ---- Identity variances

ZimStatus zimsLogGaussMixture_IdVar_32f_D2(const Zim32f* src, const Zim32f* mean, int height, int step, int width,
                                           const Zim32f* val, Zim32f* dst)
{
    if (ZimStatus fault =
            firstFault(anyNull(src, mean, val, dst), strideBelow(step, width), anyBelowOne(width, height)))
        return fault;
    // By contract, this form sums in the order of the Gaussians.
    *dst =
        sumScoresInOrder(height, scoresOfGaussians<Square<F8>, FromDoubledConstant>(src, width, val, Rows(mean, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_IdVar_32f_D2L(const Zim32f* src, const Zim32f* const* meanRows, int height, int width,
                                            const Zim32f* val, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst =
        sumScores<Zim32f>(height, scoresOfGaussians<Square<F8>, FromDoubledConstant>(src, width, val, Rows(meanRows)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_IdVar_64f_D2(const Zim64f* src, const Zim64f* mean, int height, int step, int width,
                                           const Zim64f* val, Zim64f* dst)
{
    if (ZimStatus fault =
            firstFault(anyNull(src, mean, val, dst), strideBelow(step, width), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim64f>(height, scoresOfGaussians<Square<D4>, FromHalvedSum>(src, width, val, Rows(mean, step)));
    return zimStsOk;
}

ZimStatus zimsLogGaussMixture_IdVar_64f_D2L(const Zim64f* src, const Zim64f* const* meanRows, int height, int width,
                                            const Zim64f* val, Zim64f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(src, meanRows, val, dst), anyBelowOne(width, height)))
        return fault;
    *dst = sumScores<Zim64f>(height, scoresOfGaussians<Square<D4>, FromHalvedSum>(src, width, val, Rows(meanRows)));
    return zimStsOk;
}
