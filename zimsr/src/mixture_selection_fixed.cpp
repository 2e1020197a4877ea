// Mixtures of 16-bit Gaussians of which a frame's shortlist is scored.
#include <zimsr/selection.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/logdomain.h"
#include "zimsr/kernels/loggauss_fixed_forms.h"
#include "zimsr/kernels/selection_fixed.h"
#include "zimsr/src/selection_doors.h"

using namespace zimsr;

namespace {

// The arithmetic of a form and the width of its rows, and then what sumSelected takes.
template <class Form, template <class, class> class Pairs, class Add, class... Argument>
ZimStatus sumScaled(int scaleFactor, int width, Add add, Rows<const Zim16s> frames, Argument... arguments)
{
    ZimStatus status = zimStsOk;
    Form::template choose<Zim32f>(scaleFactor, [&](auto term, auto finish) {
        status = sumSelected(frames, Pairs<decltype(term), decltype(finish)>{term, finish, width}, add, arguments...);
    });
    return status;
}

}  // namespace

ZimStatus zimsLogGaussMixture_SelectScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, const Zim16s* invVar,
                                                     int step, int width, const Zim32f* val, const Zim8u* table,
                                                     int gaussCount, Zim32f* dst, int height, Zim32f defaultVal,
                                                     int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, invVar, table, val, dst),
                                     anyBelowOne(width, gaussCount, height), strideBelow(step, width)))
        return fault;
    const Rows frames(src, step), means(mean, step), inverses(invVar, step);
    // By contract, the fast path has the finish of a block of frames.
    if (addsFast(gaussCount, height))
        return sumScaled<PlainForm, FixedPairs>(scaleFactor, width, LogAddFast{}, frames, val, table, gaussCount, dst,
                                                height, defaultVal, means, inverses);
    return sumScaled<PlainSingleForm, FixedPairs>(scaleFactor, width, LogAddAccurate{}, frames, val, table, gaussCount,
                                                  dst, height, defaultVal, means, inverses);
}

ZimStatus zimsLogGaussMixture_SelectScaled_16s32f_D2L(const Zim16s* const* srcRows, const Zim16s* const* meanRows,
                                                      const Zim16s* const* invVarRows, int width, const Zim32f* val,
                                                      const Zim8u* table, int gaussCount, Zim32f* dst, int height,
                                                      Zim32f defaultVal, int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(anyNull(srcRows, meanRows, invVarRows, table, val, dst), anyBelowOne(width, gaussCount, height)))
        return fault;
    if (ZimStatus fault = firstFault(anyRowNull(srcRows, height), anyRowNull(meanRows, gaussCount),
                                     anyRowNull(invVarRows, gaussCount)))
        return fault;
    return sumScaled<PlainSingleForm, FixedPairs>(scaleFactor, width, LogAddAccurate{}, Rows(srcRows), val, table,
                                                  gaussCount, dst, height, defaultVal, Rows(meanRows),
                                                  Rows(invVarRows));
}

ZimStatus zimsLogGaussMixture_SelectIdVarScaled_16s32f_D2(const Zim16s* src, const Zim16s* mean, int step, int width,
                                                          const Zim32f* val, const Zim8u* table, int gaussCount,
                                                          Zim32f* dst, int height, Zim32f defaultVal, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, table, val, dst), anyBelowOne(width, gaussCount, height),
                                     strideBelow(step, width)))
        return fault;
    return sumScaled<IdVarSingleForm, FixedSingles>(scaleFactor, width, LogAddAccurate{}, Rows(src, step), val, table,
                                                    gaussCount, dst, height, defaultVal, Rows(mean, step));
}

ZimStatus zimsLogGaussMixture_SelectIdVarScaled_16s32f_D2L(const Zim16s* const* srcRows, const Zim16s* const* meanRows,
                                                           int width, const Zim32f* val, const Zim8u* table,
                                                           int gaussCount, Zim32f* dst, int height, Zim32f defaultVal,
                                                           int scaleFactor)
{
    if (ZimStatus fault =
            firstFault(anyNull(srcRows, meanRows, table, val, dst), anyBelowOne(width, gaussCount, height)))
        return fault;
    if (ZimStatus fault = firstFault(anyRowNull(srcRows, height), anyRowNull(meanRows, gaussCount)))
        return fault;
    return sumScaled<IdVarSingleForm, FixedSingles>(scaleFactor, width, LogAddAccurate{}, Rows(srcRows), val, table,
                                                    gaussCount, dst, height, defaultVal, Rows(meanRows));
}
