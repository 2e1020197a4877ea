// Log-likelihood under one diagonal Gaussian, in floating point.
#include <cstddef>

#include <zimsr/loggauss.h>
#include <zimsr/mixture.h>

#include "base/kernels/arithmetic.h"
#include "base/kernels/fill.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/loggauss.h"

using namespace zimsr;

namespace {

bool anyZero(const Zim32f* values, int len)
{
    bool found = false;
    for (int i = 0; i < len; ++i)
        found |= values[i] == 0;
    return found;
}

}  // namespace

// ---- One vector

ZimStatus zimsLogGaussSingle_32f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len, Zim32f* dst,
                                 Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<SquareByInverse<F8>, FromDoubledConstant>(len, gconst, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_64f(const Zim64f* src, const Zim64f* mean, const Zim64f* invVar, int len, Zim64f* dst,
                                 Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<SquareByInverse<D4>, FromHalvedSum>(len, gconst, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_32f64f(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int len, Zim64f* dst,
                                    Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<Widened<SquareByInverse<D4>>, FromHalvedSum>(len, gconst, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVar_32f(const Zim32f* src, const Zim32f* mean, int len, Zim32f* dst, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<Square<F8>, FromDoubledConstant>(len, gconst, src, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVar_64f(const Zim64f* src, const Zim64f* mean, int len, Zim64f* dst, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<Square<D4>, FromHalvedSum>(len, gconst, src, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVar_32f64f(const Zim32f* src, const Zim32f* mean, int len, Zim64f* dst, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<Widened<Square<D4>>, FromHalvedSum>(len, gconst, src, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_DirectVar_32f(const Zim32f* src, const Zim32f* mean, const Zim32f* var, int len,
                                           Zim32f* dst, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var, dst), anyBelowOne(len)))
        return fault;
    const std::size_t count = static_cast<std::size_t>(len);
    HeapScratch<Zim32f> invVar(count + 32);
    if (!invVar)
        return zimStsNoMemory;
    fillBlock(1.0f, invVar.data(), count);
    const bool zeroVariance = divideElements(var, invVar.data(), invVar.data(), count);
    *dst = scoreVector<SquareByInverse<F8>, FromDoubledConstant>(len, gconst, src, mean, invVar.data());
    return zeroVariance ? zimStsDivByZeroWarn : zimStsOk;
}

ZimStatus zimsLogGaussSingle_DirectVar_64f(const Zim64f* src, const Zim64f* mean, const Zim64f* var, int len,
                                           Zim64f* dst, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var, dst), anyBelowOne(len)))
        return fault;
    *dst = scoreVector<SquareByVariance<D4>, FromHalvedSum>(len, gconst, src, mean, var);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_DirectVar_32f64f(const Zim32f* src, const Zim32f* mean, const Zim32f* var, int len,
                                              Zim64f* dst, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var, dst), anyBelowOne(len)))
        return fault;
    // Here a zero variance stops the function before anything is written.
    if (anyZero(var, len))
        return zimStsDivByZeroWarn;
    *dst = scoreVector<Widened<SquareByVariance<D4>>, FromHalvedSum>(len, gconst, src, mean, var);
    return zimStsOk;
}

// ---- A block of frames

ZimStatus zimsLogGauss_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                              Zim32f* result, int height, Zim32f gconst)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreBlock<SquareByInverse>(Rows(mat, step), width, height, gconst, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                               Zim32f* result, int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreBlock<SquareByInverse>(Rows(rows), width, height, gconst, StoreScores{result}, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                              Zim64f* result, int height, Zim64f gconst)
{
    if (ZimStatus fault =
            firstFault(strideBelow(step, width), anyNull(mat, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    scoreFrames<SquareByInverse<D4>, FromHalvedSum>(Rows(mat, step), width, height, gconst, StoreScores{result}, mean,
                                                    invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                               Zim64f* result, int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, invVar, result), anyBelowOne(width, height)))
        return fault;
    // Unlike its D2 form, by contract, this one doubles the constant.
    scoreFrames<SquareByInverse<D4>, FromDoubledConstant>(Rows(rows), width, height, gconst, StoreScores{result}, mean,
                                                          invVar);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVar_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, int width, Zim32f* result,
                                    int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreBlock<Square>(Rows(mat, step), width, height, gconst, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVar_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, int width, Zim32f* result,
                                     int height, Zim32f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, result), anyBelowOne(width, height)))
        return fault;
    // This form has no short path.
    scoreFrames<Square<F8>, FromDoubledConstant>(Rows(rows), width, height, gconst, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVar_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, int width, Zim64f* result,
                                    int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(mat, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFrames<Square<D4>, FromHalvedSum>(Rows(mat, step), width, height, gconst, StoreScores{result}, mean);
    return zimStsOk;
}

ZimStatus zimsLogGauss_IdVar_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, int width, Zim64f* result,
                                     int height, Zim64f gconst)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, result), anyBelowOne(width, height)))
        return fault;
    scoreFrames<Square<D4>, FromHalvedSum>(Rows(rows), width, height, gconst, StoreScores{result}, mean);
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsLogGauss1_32f_D2(const Zim32f* mat, int step, const Zim32f* mean, const Zim32f* invVar, int width,
                               Zim32f* result, int height, Zim32f gconst)
{
    return zimsLogGauss_32f_D2(mat, step, mean, invVar, width, result, height, gconst);
}

ZimStatus zimsLogGauss1_32f_D2L(const Zim32f* const* rows, const Zim32f* mean, const Zim32f* invVar, int width,
                                Zim32f* result, int height, Zim32f gconst)
{
    return zimsLogGauss_32f_D2L(rows, mean, invVar, width, result, height, gconst);
}

ZimStatus zimsLogGauss1_64f_D2(const Zim64f* mat, int step, const Zim64f* mean, const Zim64f* invVar, int width,
                               Zim64f* result, int height, Zim64f gconst)
{
    return zimsLogGauss_64f_D2(mat, step, mean, invVar, width, result, height, gconst);
}

ZimStatus zimsLogGauss1_64f_D2L(const Zim64f* const* rows, const Zim64f* mean, const Zim64f* invVar, int width,
                                Zim64f* result, int height, Zim64f gconst)
{
    return zimsLogGauss_64f_D2L(rows, mean, invVar, width, result, height, gconst);
}

ZimStatus zimsLogGauss2_32f_D2(const Zim32f* mean, const Zim32f* invVar, int step, const Zim32f* src, int width,
                               Zim32f* srcDst, int height)
{
    return zimsLogGaussMultiMix_32f_D2(mean, invVar, step, src, width, srcDst, height);
}

ZimStatus zimsLogGauss2_32f_D2L(const Zim32f* const* meanRows, const Zim32f* const* invVarRows, const Zim32f* src,
                                int width, Zim32f* srcDst, int height)
{
    return zimsLogGaussMultiMix_32f_D2L(meanRows, invVarRows, src, width, srcDst, height);
}

ZimStatus zimsLogGauss2_64f_D2(const Zim64f* mean, const Zim64f* invVar, int step, const Zim64f* src, int width,
                               Zim64f* srcDst, int height)
{
    return zimsLogGaussMultiMix_64f_D2(mean, invVar, step, src, width, srcDst, height);
}

ZimStatus zimsLogGauss2_64f_D2L(const Zim64f* const* meanRows, const Zim64f* const* invVarRows, const Zim64f* src,
                                int width, Zim64f* srcDst, int height)
{
    return zimsLogGaussMultiMix_64f_D2L(meanRows, invVarRows, src, width, srcDst, height);
}
