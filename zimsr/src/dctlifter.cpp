// Builders, transforms and release of the cosine transform with liftering.
#include <climits>
#include <cstdint>
#include <cstring>

#include <zimsr/convert.h>
#include <zimsr/dctlifter.h>

#include "base/allocator.h"
#include "zimcore/frame/checks.h"
#include "zimsr/kernels/dctlifter.h"
#include "zimsr/kernels/dctlifter_state.h"

namespace zimsr {
namespace {

template <class State>
concept HasWorkBuf = requires(State state)
{
    state.workBuf;
};

ZimStatus lengthFault(int lenDCT, int lenCepstrum)
{
    return firstFault(anyBelowOne(lenDCT, lenCepstrum), faultIf(lenDCT < lenCepstrum, zimStsBadSize));
}

template <class State>
void releaseTables(const State& state)
{
    Free2d(state.rows);
    release(state.lifter);
    if constexpr (HasWorkBuf<State>)
        release(state.workBuf);
}

// A state with its matrix, whose lifter is still to be filled. Null when memory is short; then nothing is left
// allocated.
template <class State>
State* makeState(int lenDCT, int lenCepstrum, int nLifter, bool hasC0)
{
    State* state = lenCepstrum < INT_MAX ? static_cast<State*>(allocate(1, sizeof(State))) : nullptr;
    if (!state)
        return nullptr;
    const std::size_t rowCount = static_cast<std::size_t>(lenCepstrum) + 1;
    *state = State{};
    state->nLifter = nLifter;
    state->lenDCT = lenDCT;
    state->lenCepstrum = lenCepstrum;
    state->hasC0 = hasC0;
    state->lifter = static_cast<Zim32f*>(allocate(rowCount, sizeof(Zim32f)));
    state->rows = Alloc2_32fd(lenCepstrum + 1, lenDCT);
    bool complete = state->lifter && state->rows;
    if constexpr (HasWorkBuf<State>) {
        state->workBuf = static_cast<Zim32f*>(allocate(rowCount - !hasC0, sizeof(Zim32f)));
        complete = complete && state->workBuf;
    }
    if (!complete) {
        releaseTables(*state);
        release(state);
        return nullptr;
    }
    fillCosines(state->rows, lenDCT, lenCepstrum + 1);
    return state;
}

template <class State>
ZimStatus buildSine(State** state, int lenDCT, int lenCepstrum, int nLifter, Zim32f val, const Zim32f* val0)
{
    *state = makeState<State>(lenDCT, lenCepstrum, nLifter, val0 != nullptr);
    if (!*state)
        return zimStsAllocFailed;
    fillSineLifter((*state)->lifter, lenCepstrum, nLifter, val);
    if (val0)
        (*state)->lifter[0] = *val0;
    return zimStsOk;
}

template <class State>
ZimStatus buildTable(State** state, int lenDCT, const Zim32f* lifterTable, int lenCepstrum, bool hasC0)
{
    *state = makeState<State>(lenDCT, lenCepstrum, -1, hasC0);
    if (!*state)
        return zimStsAllocFailed;
    fillTableLifter((*state)->lifter, lenCepstrum, lifterTable, hasC0 ? lifterTable[lenCepstrum - 1] : 0);
    return zimStsOk;
}

// Takes one array after another from a caller's buffer.
class Carver {
public:
    explicit Carver(void* start) : next_(reinterpret_cast<std::uintptr_t>(start)) {}

    template <class T>
    T* take(std::size_t count, std::size_t boundary)
    {
        const std::uintptr_t start = (next_ + boundary - 1) & ~(boundary - 1);
        next_ = start + count * sizeof(T);
        return reinterpret_cast<T*>(start);
    }

private:
    std::uintptr_t next_;
};

template <class Source, class State>
void transform(const Source* src, Zim32f* dst, const State& state)
{
    transformAndLift(src, dst, state.rows, state.lifter, state.lenDCT, state.lenCepstrum, state.hasC0);
}

template <class Source>
ZimStatus transformAndConvert(const Source* src, Zim16s* dst, const ZimsDCTLifterState_16s& state, int scaleFactor)
{
    constexpr int toNearest = 1;
    transform(src, state.workBuf, state);
    return zimsConvert_32f16s_Sfs(state.workBuf, dst, state.lenCepstrum + state.hasC0, toNearest, scaleFactor);
}

}  // namespace
}  // namespace zimsr

using namespace zimsr;

ZimStatus zimsDCTLifterInitAlloc_32f(ZimsDCTLifterState_32f** state, int lenDCT, int lenCepstrum, int nLifter,
                                     Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(state), lengthFault(lenDCT, lenCepstrum), anyBelowOne(nLifter)))
        return fault;
    return buildSine(state, lenDCT, lenCepstrum, nLifter, val, nullptr);
}

ZimStatus zimsDCTLifterInitAlloc_16s(ZimsDCTLifterState_16s** state, int lenDCT, int lenCepstrum, int nLifter,
                                     Zim32f val)
{
    if (ZimStatus fault = firstFault(anyNull(state), lengthFault(lenDCT, lenCepstrum), anyBelowOne(nLifter)))
        return fault;
    return buildSine(state, lenDCT, lenCepstrum, nLifter, val, nullptr);
}

ZimStatus zimsDCTLifterInitAlloc_C0_32f(ZimsDCTLifterState_32f** state, int lenDCT, int lenCepstrum, int nLifter,
                                        Zim32f val, Zim32f val0)
{
    if (ZimStatus fault = firstFault(anyNull(state), lengthFault(lenDCT, lenCepstrum), anyBelowOne(nLifter)))
        return fault;
    return buildSine(state, lenDCT, lenCepstrum, nLifter, val, &val0);
}

ZimStatus zimsDCTLifterInitAlloc_C0_16s(ZimsDCTLifterState_16s** state, int lenDCT, int lenCepstrum, int nLifter,
                                        Zim32f val, Zim32f val0)
{
    if (ZimStatus fault = firstFault(anyNull(state), lengthFault(lenDCT, lenCepstrum), anyBelowOne(nLifter)))
        return fault;
    return buildSine(state, lenDCT, lenCepstrum, nLifter, val, &val0);
}

ZimStatus zimsDCTLifterInitAlloc_Mul_32f(ZimsDCTLifterState_32f** state, int lenDCT, const Zim32f* lifterTable,
                                         int lenCepstrum)
{
    if (ZimStatus fault = firstFault(anyNull(state, lifterTable), lengthFault(lenDCT, lenCepstrum)))
        return fault;
    return buildTable(state, lenDCT, lifterTable, lenCepstrum, false);
}

ZimStatus zimsDCTLifterInitAlloc_Mul_16s(ZimsDCTLifterState_16s** state, int lenDCT, const Zim32f* lifterTable,
                                         int lenCepstrum)
{
    if (ZimStatus fault = firstFault(anyNull(state, lifterTable), lengthFault(lenDCT, lenCepstrum)))
        return fault;
    return buildTable(state, lenDCT, lifterTable, lenCepstrum, false);
}

ZimStatus zimsDCTLifterInitAlloc_MulC0_32f(ZimsDCTLifterState_32f** state, int lenDCT, const Zim32f* lifterTable,
                                           int lenCepstrum)
{
    if (ZimStatus fault = firstFault(anyNull(state, lifterTable), lengthFault(lenDCT, lenCepstrum)))
        return fault;
    return buildTable(state, lenDCT, lifterTable, lenCepstrum, true);
}

ZimStatus zimsDCTLifterInitAlloc_MulC0_16s(ZimsDCTLifterState_16s** state, int lenDCT, const Zim32f* lifterTable,
                                           int lenCepstrum)
{
    if (ZimStatus fault = firstFault(anyNull(state, lifterTable), lengthFault(lenDCT, lenCepstrum)))
        return fault;
    return buildTable(state, lenDCT, lifterTable, lenCepstrum, true);
}

ZimStatus zimsDCTLifterGetSize_MulC0_16s(int lenDCT, int lenCepstrum, int* size)
{
    if (ZimStatus fault =
            firstFault(anyNull(size), lengthFault(lenDCT, lenCepstrum), faultIf(lenDCT > 8192, zimStsBadSize)))
        return fault;
    const int rowCount = lenCepstrum + 1;
    *size = 8 * lenCepstrum + 100 + 4 * rowCount + 32 * rowCount + 4 * rowCount * lenDCT + 32;
    return zimStsOk;
}

ZimStatus zimsDCTLifterInit_MulC0_16s(ZimsDCTLifterState_16s* state, int lenDCT, const Zim32s* lifterTable,
                                      int lenCepstrum)
{
    if (ZimStatus fault = firstFault(anyNull(state, lifterTable), lengthFault(lenDCT, lenCepstrum)))
        return fault;
    const std::size_t rowCount = static_cast<std::size_t>(lenCepstrum) + 1;
    const std::size_t rowLength = (static_cast<std::size_t>(lenDCT) + 7) & ~std::size_t{7};
    // The size that is promised counts pointers of 4 bytes. It has room for wider ones where their table does not start
    // on a boundary of its own.
    constexpr std::size_t boundary = 32, tableBoundary = sizeof(void*) == 4 ? boundary : sizeof(void*);
    Carver buffer(state + 1);
    state->nLifter = -1;
    state->lenDCT = lenDCT;
    state->lenCepstrum = lenCepstrum;
    state->hasC0 = 1;
    state->lifter = buffer.take<Zim32f>(rowCount, boundary);
    state->workBuf = buffer.take<Zim32f>(rowCount, boundary);
    std::memset(state->workBuf, 0, rowCount * sizeof(Zim32f));
    Zim32f** rows = buffer.take<Zim32f*>(rowCount, tableBoundary);
    for (std::size_t i = 0; i < rowCount; ++i)
        rows[i] = buffer.take<Zim32f>(rowLength, boundary);
    state->rows = rows;
    fillCosines(rows, lenDCT, lenCepstrum + 1);
    fillTableLifter(state->lifter, lenCepstrum, lifterTable, static_cast<Zim32f>(lifterTable[lenCepstrum - 1]));
    return zimStsOk;
}

ZimStatus zimsDCTLifter_32f(const Zim32f* src, Zim32f* dst, const ZimsDCTLifterState_32f* state)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state)))
        return fault;
    transform(src, dst, *state);
    return zimStsOk;
}

ZimStatus zimsDCTLifter_16s_Sfs(const Zim16s* src, Zim16s* dst, ZimsDCTLifterState_16s* state, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state)))
        return fault;
    return transformAndConvert(src, dst, *state, scaleFactor);
}

ZimStatus zimsDCTLifter_32s16s_Sfs(const Zim32s* src, Zim16s* dst, ZimsDCTLifterState_16s* state, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst, state)))
        return fault;
    return transformAndConvert(src, dst, *state, scaleFactor);
}

ZimStatus zimsDCTLifterFree_32f(ZimsDCTLifterState_32f* state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    releaseTables(*state);
    return zimStsOk;
}

ZimStatus zimsDCTLifterFree_16s(ZimsDCTLifterState_16s* state)
{
    if (ZimStatus fault = firstFault(anyNull(state)))
        return fault;
    releaseTables(*state);
    return zimStsOk;
}
