// Log-likelihood of a 16-bit vector under one diagonal Gaussian.
#include <cstddef>

#include <zimsr/loggauss_fixed.h>

#include "base/kernels/arithmetic.h"
#include "base/kernels/convert.h"
#include "base/kernels/fill.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/scaling.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/loggauss_fixed.h"
#include "zimsr/kernels/loggauss_fixed_forms.h"

using namespace zimsr;

namespace {

// Operands: the vector, the mean and, where the form has them, inverse variances.
template <class Form, class Score, class... Operand>
void scoreSingle(Score* dst, int len, Score gconst, int scaleFactor, const Operand*... operands)
{
    Form::template choose<Score>(
        scaleFactor, [=](auto term, auto finish) { *dst = scoreFixedVector(term, finish, gconst, len, operands...); });
}

// Room for count vectors, element by element, so that their size in bytes is checked once.
template <int count>
struct Vectors {
    Zim32f element[count];
};

// reciprocals[i] = 1 / variances[i]; the warning if a variance is 0.
ZimStatus invert(const Zim32f* variances, Zim32f* reciprocals, std::size_t count)
{
    fillBlock(1.0f, reciprocals, count);
    return divideElements(variances, reciprocals, reciprocals, count) ? zimStsDivByZeroWarn : zimStsOk;
}

}  // namespace

// ---- Plain

ZimStatus zimsLogGaussSingle_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                        Zim32s* dst, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<PlainSingleForm>(dst, len, gconst, scaleFactor, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_Scaled_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                           Zim32f* dst, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<PlainSingleForm>(dst, len, gconst, scaleFactor, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVar_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, int len, Zim32s* dst,
                                              Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<IdVarSingleForm>(dst, len, gconst, scaleFactor, src, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVarScaled_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst,
                                                Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<IdVarSingleForm>(dst, len, gconst, scaleFactor, src, mean);
    return zimStsOk;
}

// ---- In integers

ZimStatus zimsLogGaussSingle_Low_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                            Zim32s* dst, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<LowSingleForm>(dst, len, gconst, scaleFactor, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_LowScaled_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                              Zim32f* dst, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<LowSingleForm>(dst, len, gconst, scaleFactor, src, mean, invVar);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVarLow_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, int len, Zim32s* dst,
                                                 Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<IdVarLowSingleForm>(dst, len, gconst, scaleFactor, src, mean);
    return zimStsOk;
}

ZimStatus zimsLogGaussSingle_IdVarLowScaled_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst,
                                                   Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, dst), anyBelowOne(len)))
        return fault;
    scoreSingle<IdVarLowSingleForm>(dst, len, gconst, scaleFactor, src, mean);
    return zimStsOk;
}

// ---- With the variances given

ZimStatus zimsLogGaussSingle_DirectVarScaled_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* var, int len,
                                                    Zim32f* dst, Zim32f gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var, dst), anyBelowOne(len)))
        return fault;
    const std::size_t count = static_cast<std::size_t>(len);
    HeapScratch<Vectors<2>> scratch(count + 8);
    if (!scratch)
        return zimStsNoMemory;
    Zim32f *const variances = scratch[0].element, *const reciprocals = variances + count;
    convertBlock(var, variances, count);
    const ZimStatus status = invert(variances, reciprocals, count);
    *dst = scoreFixedVector(FloatSquares<Zim32f>{}, MinusHalvedSum{fullScale(scaleFactor)}, gconst, len, src, mean,
                            static_cast<const Zim32f*>(reciprocals));
    return status;
}

ZimStatus zimsLogGaussSingle_DirectVar_16s32s_Sfs(const Zim16s* src, const Zim16s* mean, const Zim16s* var, int len,
                                                  Zim32s* dst, Zim32s gconst, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var, dst), anyBelowOne(len)))
        return fault;
    const std::size_t count = static_cast<std::size_t>(len);
    HeapScratch<Vectors<5>> scratch(count + 16);
    if (!scratch)
        return zimStsNoMemory;
    Zim32f *const x = scratch[0].element, *const means = x + count;
    Zim32f *const variances = means + count, *const reciprocals = variances + count;
    convertBlock(src, x, count);
    convertBlock(mean, means, count);
    convertBlock(var, variances, count);
    const ZimStatus status = invert(variances, reciprocals, count);
    const Zim32f sum = sumRow(SquareByInverse<F8>{}, len, static_cast<const Zim32f*>(x),
                              static_cast<const Zim32f*>(means), static_cast<const Zim32f*>(reciprocals));
    Zim32s half;
    quantiseBlock(&sum, &half, 1, 1, limited(scaleFactor) + 1);
    *dst = saturate<Zim32s>(Zim64s{gconst} - half);
    return status;
}

// ---- The scale factor 0

ZimStatus zimsLogGaussSingle_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len, Zim32f* dst,
                                    Zim32f gconst)
{
    return zimsLogGaussSingle_Scaled_16s32f(src, mean, invVar, len, dst, gconst, 0);
}

ZimStatus zimsLogGaussSingle_IdVar_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst, Zim32f gconst)
{
    return zimsLogGaussSingle_IdVarScaled_16s32f(src, mean, len, dst, gconst, 0);
}

ZimStatus zimsLogGaussSingle_DirectVar_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* var, int len,
                                              Zim32f* dst, Zim32f gconst)
{
    return zimsLogGaussSingle_DirectVarScaled_16s32f(src, mean, var, len, dst, gconst, 0);
}

ZimStatus zimsLogGaussSingle_Low_16s32f(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar, int len,
                                        Zim32f* dst, Zim32f gconst)
{
    return zimsLogGaussSingle_LowScaled_16s32f(src, mean, invVar, len, dst, gconst, 0);
}

ZimStatus zimsLogGaussSingle_IdVarLow_16s32f(const Zim16s* src, const Zim16s* mean, int len, Zim32f* dst, Zim32f gconst)
{
    return zimsLogGaussSingle_IdVarLowScaled_16s32f(src, mean, len, dst, gconst, 0);
}
