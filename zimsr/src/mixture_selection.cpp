// Mixtures of diagonal Gaussians of which a frame's shortlist is scored.
#include <zimsr/selection.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/logdomain.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/selection.h"
#include "zimsr/src/selection_doors.h"

using namespace zimsr;

ZimStatus zimsLogGaussMixture_Select_32f_D2(const Zim32f* src, const Zim32f* mean, const Zim32f* invVar, int step,
                                            int width, const Zim32f* val, const Zim8u* table, int gaussCount,
                                            Zim32f* dst, int height, Zim32f defaultVal)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, table, val, dst),
                                     anyBelowOne(width, gaussCount, height), strideBelow(step, width)))
        return fault;
    const FloatPairs<SquareByInverse<F8>> pairs{width};
    const auto sum = [&](auto add) {
        return sumSelected(Rows(src, step), pairs, add, val, table, gaussCount, dst, height, defaultVal,
                           Rows(mean, step), Rows(invVar, step));
    };
    return addsFast(gaussCount, height) ? sum(LogAddFast{}) : sum(LogAddAccurate{});
}

ZimStatus zimsLogGaussMixture_Select_32f_D2L(const Zim32f* const* srcRows, const Zim32f* const* meanRows,
                                             const Zim32f* const* invVarRows, int width, const Zim32f* val,
                                             const Zim8u* table, int gaussCount, Zim32f* dst, int height,
                                             Zim32f defaultVal)
{
    if (ZimStatus fault =
            firstFault(anyNull(srcRows, meanRows, invVarRows, table, val, dst), anyBelowOne(width, gaussCount, height)))
        return fault;
    if (ZimStatus fault = firstFault(anyRowNull(srcRows, height), anyRowNull(meanRows, gaussCount),
                                     anyRowNull(invVarRows, gaussCount)))
        return fault;
    return sumSelected(Rows(srcRows), FloatPairs<SquareByInverse<F8>>{width}, LogAddAccurate{}, val, table, gaussCount,
                       dst, height, defaultVal, Rows(meanRows), Rows(invVarRows));
}

ZimStatus zimsLogGaussMixture_SelectIdVar_32f_D2(const Zim32f* src, const Zim32f* mean, int step, int width,
                                                 const Zim32f* val, const Zim8u* table, int gaussCount, Zim32f* dst,
                                                 int height, Zim32f defaultVal)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, table, val, dst), anyBelowOne(width, gaussCount, height),
                                     strideBelow(step, width)))
        return fault;
    return sumSelected(Rows(src, step), FloatPairs<Square<F8>>{width}, LogAddAccurate{}, val, table, gaussCount, dst,
                       height, defaultVal, Rows(mean, step));
}

ZimStatus zimsLogGaussMixture_SelectIdVar_32f_D2L(const Zim32f* const* srcRows, const Zim32f* const* meanRows,
                                                  int width, const Zim32f* val, const Zim8u* table, int gaussCount,
                                                  Zim32f* dst, int height, Zim32f defaultVal)
{
    if (ZimStatus fault =
            firstFault(anyNull(srcRows, meanRows, table, val, dst), anyBelowOne(width, gaussCount, height)))
        return fault;
    if (ZimStatus fault = firstFault(anyRowNull(srcRows, height), anyRowNull(meanRows, gaussCount)))
        return fault;
    return sumSelected(Rows(srcRows), FloatPairs<Square<F8>>{width}, LogAddAccurate{}, val, table, gaussCount, dst,
                       height, defaultVal, Rows(meanRows));
}
