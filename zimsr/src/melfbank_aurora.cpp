// The two constant filter banks of the advanced distributed front end.
#include "zimsr/kernels/melfbank_aurora.h"

#include <zimsr/melfbank.h>

#include "zimcore/frame/checks.h"
#include "zimsr/src/melfbank_storage.h"

namespace zimsr {
namespace {

template <class State, class Edges>
State* makeAuroraBank(const Edges& edges, int nFilter)
{
    constexpr int frameLen = 128;
    State* bank = makeBank<State>(frameLen, nFilter, edges.size(), false);
    if (!bank)
        return nullptr;
    std::copy(edges.begin(), edges.end(), bank->centers);
    bank->mode = ZimFBankBinSlopes;
    bank->melMul = 2595;
    bank->melDiv = 700;
    bank->hasCoeffs = 1;
    return bank;
}

template <class Weights>
ZimStatus buildLowAurora(typename Weights::State** state)
{
    auto* bank = makeAuroraBank<typename Weights::State>(lowAuroraEdges, 25);
    if (!bank)
        return giveUp(bank, state, zimStsAllocFailed);
    lowAuroraFilters<Weights>(*bank);
    return deliver(bank, state);
}

template <class Weights>
ZimStatus buildHighAurora(typename Weights::State** state)
{
    auto* bank = makeAuroraBank<typename Weights::State>(highAuroraEdges, 3);
    if (!bank)
        return giveUp(bank, state, zimStsAllocFailed);
    highAuroraFilters<Weights>(*bank);
    return deliver(bank, state);
}

}  // namespace
}  // namespace zimsr

using namespace zimsr;

ZimStatus zimsMelFBankInitAllocLow_Aurora_32f(ZimsFBankState_32f** state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    return buildLowAurora<FloatWeights>(state);
}

ZimStatus zimsMelFBankInitAllocLow_Aurora_16s(ZimsFBankState_16s** state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    return buildLowAurora<Q14Weights>(state);
}

ZimStatus zimsMelFBankInitAllocHigh_Aurora_32f(ZimsFBankState_32f** state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    return buildHighAurora<FloatWeights>(state);
}

ZimStatus zimsMelFBankInitAllocHigh_Aurora_16s(ZimsFBankState_16s** state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    return buildHighAurora<Q14Weights>(state);
}
