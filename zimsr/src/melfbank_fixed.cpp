// The all-integer mel filter bank. This file is compiled without floating-point registers.
#include <zimsr/melfbank_fixed.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/melfbank_fixed.h"

using namespace zimsr;
using namespace zimsr::fixedbank;

namespace {

constexpr int binSlopesMode = 2;

constexpr ZimStatus outside(int value, int least, int most, ZimStatus status)
{
    return faultIf(value < least || value > most, status);
}

}  // namespace

ZimStatus zimsMelFBankGetSize_32s(int frameLen, int nFilter, int mode, int* size)
{
    if (ZimStatus fault = firstFault(anyNull(size), anyBelowOne(nFilter), outside(frameLen, 32, 8192, zimStsBadSize),
                                     faultIf(mode != binSlopesMode, zimStsFBankBadMode)))
        return fault;
    const int halfLen = 1 << (transformOrder(frameLen) - 1);
    if (nFilter > halfLen)
        return zimStsBadSize;
    *size = blockBytes(nFilter, halfLen);
    return zimStsOk;
}

ZimStatus zimsMelFBankInit_32s(ZimsFBankState_32s* state, int* order, int frameLen, int sampleRate, int lowFreq,
                               int highFreq, int nFilter, Zim32s melMul, Zim32s melDiv, int mode)
{
    if (ZimStatus fault = firstFault(
            anyNull(state, order), anyBelowOne(nFilter, highFreq), outside(frameLen, 32, 8192, zimStsBadSize),
            faultIf(mode != binSlopesMode, zimStsFBankBadMode), outside(sampleRate, 1, 48000, zimStsBadSize),
            faultIf(lowFreq < 0, zimStsBadSize), faultIf(highFreq <= lowFreq || highFreq > 24000, zimStsFBankBadFlag),
            outside(melDiv, 0x80001, 0xFFFFFFF, zimStsBadArgument),
            outside(melMul, 0x80001, 0x3FFFFFFF, zimStsBadArgument)))
        return fault;
    *order = transformOrder(frameLen);
    const int fftLen = 1 << *order, halfLen = fftLen / 2;
    if (nFilter > halfLen + 1)
        return zimStsBadSize;
    const Edges edges(fftLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv);
    if (edges[nFilter + 1] > halfLen)
        return zimStsFBankBadFlag;
    layTables(state, nFilter, halfLen, mode);
    buildFilters(state, edges);
    return zimStsOk;
}

ZimStatus zimsEvalFBank_32s_Sfs(const Zim32s* src, Zim32s* dst, const ZimsFBankState_32s* state, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state), outside(scaleFactor, -31, 31, zimStsBadArgument)))
        return fault;
    evaluate(src, dst, Bank(state), state->nFilter, scaleFactor);
    return zimStsOk;
}
