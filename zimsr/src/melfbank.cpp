// Builders of filter banks: mel, linear and mel, empty.
#include <zimsr/melfbank.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/melfbank_edges.h"
#include "zimsr/kernels/melfbank_slopes.h"
#include "zimsr/kernels/melfbank_weights.h"
#include "zimsr/src/melfbank_storage.h"

namespace zimsr {
namespace {

// What the builders of mel and mixed banks are given.
struct BankRequest {
    int frameLen;
    Zim32f sampleRate, lowFreq, highFreq;
    int nFilter;
    Zim32f melMul, melDiv;
    int flags;

    int slopes() const { return flags & ~ZimFBankFrameInput; }
    bool takesFrames() const { return flags & ZimFBankFrameInput; }
};

// Comparisons are so written that a NaN fails them.
ZimStatus unlessAbove0(Zim32f value)
{
    return faultIf(!(value > 0), zimStsBadSize);
}

ZimStatus unlessOrdered(Zim32f low, Zim32f high)
{
    return faultIf(!(low <= high), zimStsFBankBadFlag);
}

ZimStatus modeFault(int flags)
{
    const int slopes = flags & ~ZimFBankFrameInput;
    return faultIf(slopes != ZimFBankMelSlopes && slopes != ZimFBankBinSlopes, zimStsFBankBadMode);
}

ZimStatus melBankFault(const BankRequest& wanted)
{
    return firstFault(anyBelowOne(wanted.frameLen, wanted.nFilter), unlessAbove0(wanted.sampleRate),
                      unlessAbove0(wanted.lowFreq), unlessOrdered(wanted.lowFreq, wanted.highFreq),
                      unlessOrdered(wanted.highFreq, wanted.sampleRate / 2), modeFault(wanted.flags));
}

ZimStatus mixedBankFault(const BankRequest& wanted, Zim32f linHighFreq, int nLinear)
{
    return firstFault(anyBelowOne(wanted.frameLen, wanted.nFilter), unlessAbove0(wanted.sampleRate),
                      unlessAbove0(wanted.lowFreq), faultIf(nLinear < 1 || nLinear > wanted.nFilter, zimStsBadSize),
                      unlessOrdered(wanted.lowFreq, linHighFreq), unlessOrdered(linHighFreq, wanted.highFreq),
                      unlessOrdered(wanted.highFreq, wanted.sampleRate / 2), modeFault(wanted.flags));
}

std::size_t edgesOf(int nFilter)
{
    return static_cast<std::size_t>(nFilter) + 2;
}

// A bank of the requested shape whose edges are still to be placed, or null.
template <class State>
State* makeMelBank(const BankRequest& wanted, int nLinear)
{
    State* bank = makeBank<State>(wanted.frameLen, wanted.nFilter, edgesOf(wanted.nFilter), wanted.takesFrames());
    if (bank) {
        bank->mode = wanted.flags;
        bank->nLinear = nLinear;
        bank->melMul = wanted.melMul;
        bank->melDiv = wanted.melDiv;
        bank->hasCoeffs = 1;
    }
    return bank;
}

template <class Weights>
ZimStatus buildMelBank(typename Weights::State** state, int* order, const BankRequest& wanted)
{
    auto* bank = makeMelBank<typename Weights::State>(wanted, wanted.nFilter);
    if (!bank)
        return giveUp(bank, state, zimStsAllocFailed);
    Scratch<Zim32f, 64> mels(edgesOf(wanted.nFilter));
    if (!mels)
        return giveUp(bank, state, zimStsAllocFailed);
    const MelAxis axis(wanted.melMul, wanted.melDiv, wanted.sampleRate, bank->fftLen);
    if (!placeMelEdges(*bank, axis, wanted.slopes(), wanted.lowFreq, wanted.highFreq, mels.data()))
        return giveUp(bank, state, zimStsFBankBadFlag);
    for (int i = 1; i <= bank->nFilter; ++i) {
        if (wanted.slopes() == ZimFBankBinSlopes)
            binSlopes<Weights>(*bank, i);
        else
            melSlopes<Weights>(*bank, axis, mels.data(), i);
    }
    return deliver(bank, state, order);
}

template <class Weights>
ZimStatus buildMixedBank(typename Weights::State** state, int* order, const BankRequest& wanted, Zim32f linHighFreq,
                         int nLinear)
{
    auto* bank = makeMelBank<typename Weights::State>(wanted, nLinear);
    if (!bank)
        return giveUp(bank, state, zimStsAllocFailed);
    Scratch<Zim32f, 64> frequencies(edgesOf(wanted.nFilter));
    if (!frequencies)
        return giveUp(bank, state, zimStsAllocFailed);
    const MelAxis axis(wanted.melMul, wanted.melDiv, wanted.sampleRate, bank->fftLen);
    const MelGrid upper(axis, linHighFreq, wanted.highFreq, wanted.nFilter - nLinear + 1);
    const bool allLinear = nLinear == wanted.nFilter, overBins = wanted.slopes() == ZimFBankBinSlopes;
    const bool usesScale = !(allLinear && overBins);
    if ((usesScale && !axis.covers(wanted.lowFreq, wanted.highFreq)) ||
        !placeLinearEdges(*bank, axis, wanted.slopes(), wanted.lowFreq, linHighFreq, nLinear + allLinear,
                          frequencies.data()) ||
        (!allLinear && !placeUpperEdges(*bank, axis, wanted.slopes(), upper)))
        return giveUp(bank, state, zimStsFBankBadFlag);
    const auto melOfEdge = [&](int i) {
        return allLinear || i <= nLinear ? axis.melOfHz(frequencies[static_cast<std::size_t>(i)]) : upper[i - nLinear];
    };
    for (int i = 1; i <= bank->nFilter; ++i) {
        if (overBins || i > nLinear)
            binSlopes<Weights>(*bank, i);
        else
            linearSlopes<Weights>(*bank, axis, melOfEdge(i - 1), melOfEdge(i), melOfEdge(i + 1), i);
    }
    return deliver(bank, state, order);
}

template <class State>
ZimStatus buildEmptyBank(State** state, int* order, int frameLen, int nFilter, int flags)
{
    State* bank = makeBank<State>(frameLen, nFilter, edgesOf(nFilter), flags & ZimFBankFrameInput);
    if (!bank)
        return giveUp(bank, state, zimStsAllocFailed);
    bank->mode = ZimFBankMelSlopes;
    bank->melDiv = 1;
    return deliver(bank, state, order);
}

}  // namespace
}  // namespace zimsr

using namespace zimsr;

ZimStatus zimsMelFBankInitAlloc_32f(ZimsFBankState_32f** state, int* order, int frameLen, Zim32f sampleRate,
                                    Zim32f lowFreq, Zim32f highFreq, int nFilter, Zim32f melMul, Zim32f melDiv,
                                    int flags)
{
    const BankRequest wanted{frameLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags};
    if (ZimStatus fault = firstFault(anyNull(state, order), melBankFault(wanted)))
        return fault;
    return buildMelBank<FloatWeights>(state, order, wanted);
}

ZimStatus zimsMelFBankInitAlloc_16s(ZimsFBankState_16s** state, int* order, int frameLen, Zim32f sampleRate,
                                    Zim32f lowFreq, Zim32f highFreq, int nFilter, Zim32f melMul, Zim32f melDiv,
                                    int flags)
{
    const BankRequest wanted{frameLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags};
    if (ZimStatus fault = firstFault(anyNull(state, order), melBankFault(wanted)))
        return fault;
    return buildMelBank<Q14Weights>(state, order, wanted);
}

ZimStatus zimsMelLinFBankInitAlloc_32f(ZimsFBankState_32f** state, int* order, int frameLen, Zim32f sampleRate,
                                       Zim32f lowFreq, Zim32f highFreq, int nFilter, Zim32f linHighFreq, int nLinear,
                                       Zim32f melMul, Zim32f melDiv, int flags)
{
    const BankRequest wanted{frameLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags};
    if (ZimStatus fault = firstFault(anyNull(state, order), mixedBankFault(wanted, linHighFreq, nLinear)))
        return fault;
    return buildMixedBank<FloatWeights>(state, order, wanted, linHighFreq, nLinear);
}

ZimStatus zimsMelLinFBankInitAlloc_16s(ZimsFBankState_16s** state, int* order, int frameLen, Zim32f sampleRate,
                                       Zim32f lowFreq, Zim32f highFreq, int nFilter, Zim32f linHighFreq, int nLinear,
                                       Zim32f melMul, Zim32f melDiv, int flags)
{
    const BankRequest wanted{frameLen, sampleRate, lowFreq, highFreq, nFilter, melMul, melDiv, flags};
    if (ZimStatus fault = firstFault(anyNull(state, order), mixedBankFault(wanted, linHighFreq, nLinear)))
        return fault;
    return buildMixedBank<Q14Weights>(state, order, wanted, linHighFreq, nLinear);
}

ZimStatus zimsEmptyFBankInitAlloc_32f(ZimsFBankState_32f** state, int* order, int frameLen, int nFilter, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(state, order), anyBelowOne(frameLen, nFilter)))
        return fault;
    return buildEmptyBank(state, order, frameLen, nFilter, flags);
}

ZimStatus zimsEmptyFBankInitAlloc_16s(ZimsFBankState_16s** state, int* order, int frameLen, int nFilter, int flags)
{
    if (ZimStatus fault = firstFault(anyNull(state, order), anyBelowOne(frameLen, nFilter)))
        return fault;
    return buildEmptyBank(state, order, frameLen, nFilter, flags);
}
