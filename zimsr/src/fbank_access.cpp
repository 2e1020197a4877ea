// Centres and coefficients of a filter bank, and its release.
#include <cstring>

#include <zimsr/melfbank.h>

#include "zimcore/frame/checks.h"
#include "zimsr/kernels/melfbank_state.h"
#include "zimsr/kernels/melfbank_weights.h"
#include "zimsr/src/melfbank_storage.h"

namespace zimsr {
namespace {

ZimStatus edgesFault(const Zim32s* c, int nFilter, int fftLen)
{
    bool valid = c[0] >= 0 && c[nFilter + 1] <= fftLen / 2;
    for (int i = 1; i <= nFilter + 1; ++i)
        valid &= c[i - 1] <= c[i];
    return faultIf(!valid, zimStsFBankNoCoeffs);
}

template <class State>
ZimStatus getCenters(const State& bank, Zim32s* centers)
{
    if (!bank.hasCoeffs)
        return zimStsFBankNoCoeffs;
    std::memcpy(centers, bank.centers, (static_cast<std::size_t>(bank.nFilter) + 2) * sizeof(Zim32s));
    return zimStsOk;
}

template <class State>
ZimStatus setCenters(State& bank, const Zim32s* centers)
{
    if (ZimStatus fault = firstFault(anyNull(bank.centers), edgesFault(centers, bank.nFilter, bank.fftLen)))
        return fault;
    std::memcpy(bank.centers, centers, (static_cast<std::size_t>(bank.nFilter) + 2) * sizeof(Zim32s));
    bank.hasCoeffs = 1;
    return zimStsOk;
}

// Filter i exists when the edges i - 1 .. i + 1 do; the low Aurora bank has one more than it evaluates.
template <class State>
ZimStatus filterFault(const State& bank, int filter, int last)
{
    return firstFault(faultIf(!bank.hasCoeffs, zimStsFBankNoCoeffs),
                      faultIf(filter < 1 || filter > last, zimStsBadSize));
}

Zim32f valueOf(Zim32f weight)
{
    return weight;
}

Zim32f valueOf(Zim32s weight)
{
    return static_cast<Zim32f>(weight) * 0x1p-14f;
}

void setWeight(Zim32f* weight, Zim32f value)
{
    *weight = value;
}

void setWeight(Zim32s* weight, Zim32f value)
{
    *weight = truncateLimited(value * 16384.0f);
}

template <class State>
ZimStatus getCoeffs(const State& bank, int filter, Zim32f* dst)
{
    if (ZimStatus fault = filterFault(bank, filter, bank.edgeCount - 2))
        return fault;
    const int lowerCount = lowerLength(bank.centers, filter), upperCount = upperLength(bank.centers, filter);
    for (int j = 0; j < lowerCount; ++j)
        *dst++ = valueOf(bank.lowerRows[filter - 1][j]);
    for (int j = 0; j < upperCount; ++j)
        *dst++ = valueOf(bank.upperRows[filter - 1][j]);
    return zimStsOk;
}

template <class State>
ZimStatus setCoeffs(const State& bank, int filter, const Zim32f* src)
{
    if (ZimStatus fault = filterFault(bank, filter, bank.nFilter))
        return fault;
    const int lowerCount = lowerLength(bank.centers, filter), upperCount = upperLength(bank.centers, filter);
    for (int j = 0; j < lowerCount; ++j)
        setWeight(&bank.lowerRows[filter - 1][j], *src++);
    for (int j = 0; j < upperCount; ++j)
        setWeight(&bank.upperRows[filter - 1][j], *src++);
    return zimStsOk;
}

}  // namespace
}  // namespace zimsr

using namespace zimsr;

ZimStatus zimsFBankGetCenters_32f(const ZimsFBankState_32f* state, Zim32s* centers)
{
    if (ZimStatus fault = firstFault(anyNull(state, centers)))
        return fault;
    return getCenters(*state, centers);
}

ZimStatus zimsFBankGetCenters_16s(const ZimsFBankState_16s* state, Zim32s* centers)
{
    if (ZimStatus fault = firstFault(anyNull(state, centers)))
        return fault;
    return getCenters(*state, centers);
}

ZimStatus zimsFBankSetCenters_32f(ZimsFBankState_32f* state, const Zim32s* centers)
{
    if (ZimStatus fault = firstFault(anyNull(state, centers)))
        return fault;
    return setCenters(*state, centers);
}

ZimStatus zimsFBankSetCenters_16s(ZimsFBankState_16s* state, const Zim32s* centers)
{
    if (ZimStatus fault = firstFault(anyNull(state, centers)))
        return fault;
    return setCenters(*state, centers);
}

ZimStatus zimsFBankGetCoeffs_32f(const ZimsFBankState_32f* state, int filter, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(state, dst)))
        return fault;
    return getCoeffs(*state, filter, dst);
}

ZimStatus zimsFBankGetCoeffs_16s(const ZimsFBankState_16s* state, int filter, Zim32f* dst)
{
    if (ZimStatus fault = firstFault(anyNull(state, dst)))
        return fault;
    return getCoeffs(*state, filter, dst);
}

ZimStatus zimsFBankSetCoeffs_32f(ZimsFBankState_32f* state, int filter, const Zim32f* src)
{
    if (ZimStatus fault = firstFault(anyNull(state, src)))
        return fault;
    return setCoeffs(*state, filter, src);
}

ZimStatus zimsFBankSetCoeffs_16s(ZimsFBankState_16s* state, int filter, const Zim32f* src)
{
    if (ZimStatus fault = firstFault(anyNull(state, src)))
        return fault;
    return setCoeffs(*state, filter, src);
}

ZimStatus zimsFBankFree_32f(ZimsFBankState_32f* state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    releaseTables(*state);
    return zimStsOk;
}

ZimStatus zimsFBankFree_16s(ZimsFBankState_16s* state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    releaseTables(*state);
    return zimStsOk;
}
