// Evaluation of filter banks.
#include <zimsr/arithmetic.h>
#include <zimsr/fft.h>
#include <zimsr/melfbank.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/melfbank_eval.h"
#include "zimsr/kernels/melfbank_state.h"

namespace zimsr {
namespace {

template <class State>
ZimStatus bankFault(const State& bank)
{
    return firstFault(anyNull(bank.centers), faultIf(!bank.hasCoeffs, zimStsFBankNoCoeffs));
}

Zim8u* transformScratch(const auto& bank)
{
    return reinterpret_cast<Zim8u*>(bank.workBuf + bank.fftLen + 2);
}

// The magnitude spectrum of a frame, in the bank's buffer.
ZimStatus transformFrame(const Zim32f* frame, const ZimsFBankState_32f& bank)
{
    if (ZimStatus fault = zimsFFTFwd_RToCCS_32f(frame, bank.workBuf, bank.fftSpec, transformScratch(bank)))
        return fault;
    return zimsMagnitude_32fc(reinterpret_cast<const Zim32fc*>(bank.workBuf), bank.workBuf, bank.fftLen / 2 + 1);
}

// The same times 64: transform and magnitude keep three bits of fraction each.
constexpr int fractionBits = 3;

ZimStatus transformFrame(const Zim16s* frame, const ZimsFBankState_16s& bank)
{
    if (ZimStatus fault =
            zimsFFTFwd_RToCCS_16s32s_Sfs(frame, bank.workBuf, bank.fftSpec, -fractionBits, transformScratch(bank)))
        return fault;
    return zimsMagnitude_32sc_Sfs(reinterpret_cast<const Zim32sc*>(bank.workBuf), bank.workBuf, bank.fftLen / 2 + 1,
                                  -fractionBits);
}

void evaluateFloat(const Zim32f* spectrum, Zim32f* dst, const ZimsFBankState_32f& bank)
{
    evaluateBank<FloatBins>(spectrum, spectrum + bank.centers[bank.nFilter + 1] + 1, bank.centers, bank.lowerRows,
                            bank.upperRows, bank.nFilter, [dst](std::ptrdiff_t first, const F8* sums, int count) {
                                const F4 four = sumLanesOfFour(sums[0], sums[1], sums[2], sums[3]);
                                if (count == 4)
                                    store(dst + first, four);
                                else
                                    storeFirst(dst + first, four, count);
                            });
}

template <class T, class Result>
void evaluateInteger(const T* spectrum, Result* dst, const ZimsFBankState_16s& bank, Zim64s shift)
{
    evaluateBank<IntegerBins>(spectrum, spectrum + bank.centers[bank.nFilter + 1] + 1, bank.centers, bank.lowerRows,
                              bank.upperRows, bank.nFilter, [=](std::ptrdiff_t first, const L4* sums, int count) {
                                  for (int i = 0; i < count; ++i)
                                      dst[first + i] = scaleFloor<Result>(sumLanes(sums[i]), shift);
                              });
}

template <class Result>
ZimStatus evaluate(const Zim16s* src, Result* dst, const ZimsFBankState_16s& bank, int scaleFactor)
{
    Zim64s shift = Zim64s{scaleFactor} + bank.weightShift;
    if (bank.mode & ZimFBankFrameInput) {
        if (ZimStatus fault = transformFrame(src, bank))
            return fault;
        evaluateInteger(bank.workBuf, dst, bank, shift + 2 * fractionBits);
    } else {
        evaluateInteger(src, dst, bank, shift);
    }
    return zimStsOk;
}

}  // namespace
}  // namespace zimsr

using namespace zimsr;

ZimStatus zimsEvalFBank_32f(const Zim32f* src, Zim32f* dst, ZimsFBankState_32f* state)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state)))
        return fault;
    if (ZimStatus fault = bankFault(*state))
        return fault;
    const bool isFrame = state->mode & ZimFBankFrameInput;
    if (isFrame) {
        if (ZimStatus fault = transformFrame(src, *state))
            return fault;
    }
    evaluateFloat(isFrame ? state->workBuf : src, dst, *state);
    return zimStsOk;
}

ZimStatus zimsEvalFBank_16s_Sfs(const Zim16s* src, Zim16s* dst, ZimsFBankState_16s* state, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state)))
        return fault;
    if (ZimStatus fault = bankFault(*state))
        return fault;
    return evaluate(src, dst, *state, scaleFactor);
}

ZimStatus zimsEvalFBank_16s32s_Sfs(const Zim16s* src, Zim32s* dst, ZimsFBankState_16s* state, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state)))
        return fault;
    if (ZimStatus fault = bankFault(*state))
        return fault;
    return evaluate(src, dst, *state, scaleFactor);
}
