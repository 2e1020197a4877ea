// Makes and releases the memory of a filter bank.
#pragma once

#include <climits>
#include <cstddef>
#include <cstring>

#include <zimsr/fft.h>

#include "base/allocator.h"
#include "zimsr/kernels/melfbank_state.h"

namespace zimsr {

inline constexpr int unscaledTransform = 8;
inline constexpr int transformHint = 2;

inline ZimStatus makePlan(ZimsFFTPlan_R_32f** plan, int order)
{
    return zimsFFTInitAlloc_R_32f(plan, order, unscaledTransform, transformHint);
}

inline ZimStatus makePlan(ZimsFFTPlan_R_16s32s** plan, int order)
{
    return zimsFFTInitAlloc_R_16s32s(plan, order, unscaledTransform, transformHint);
}

// A null plan is nothing.
inline void releasePlan(ZimsFFTPlan_R_32f* plan)
{
    zimsFFTFree_R_32f(plan);
}

inline void releasePlan(ZimsFFTPlan_R_16s32s* plan)
{
    zimsFFTFree_R_16s32s(plan);
}

inline void allocateRows(Zim32f*** rows, int height, int width)
{
    *rows = Alloc2_32f(height, width);
}

inline void allocateRows(Zim32s*** rows, int height, int width)
{
    *rows = Alloc2_32s(height, width);
}

// Releases everything but the record itself, and leaves a bank without centres.
template <class State>
void releaseTables(State& bank)
{
    release(bank.centers);
    Free2(bank.lowerRows);
    Free2(bank.upperRows);
    release(bank.workBuf);
    releasePlan(bank.fftSpec);
    bank.centers = nullptr;
    bank.lowerRows = bank.upperRows = nullptr;
    bank.hasCoeffs = 0;
    bank.workBuf = nullptr;
    bank.fftSpec = nullptr;
}

template <class State>
void releaseBank(State* bank)
{
    releaseTables(*bank);
    release(bank);
}

// The plan, and one block for the spectrum and behind it the plan's scratch, so that evaluation need not allocate.
template <class State>
bool makeTransform(State& bank)
{
    if (makePlan(&bank.fftSpec, bank.fftOrder) != zimStsOk)
        return false;
    const std::size_t spectrum = static_cast<std::size_t>(bank.fftLen) + 2;
    const std::size_t scratch = static_cast<std::size_t>(bank.fftSpec->bufferSize) / sizeof(*bank.workBuf) + 1;
    bank.workBuf = static_cast<typename State::Weight*>(allocate(spectrum + scratch, sizeof(*bank.workBuf)));
    if (!bank.workBuf)
        return false;
    std::memset(bank.workBuf, 0, spectrum * sizeof(*bank.workBuf));
    return true;
}

// A bank for frames of frameLen samples with zeroed rows and edgeCount edges not yet set. Null when memory is short or
// no transform is that long; then nothing is left allocated.
template <class State>
State* makeBank(int frameLen, int nFilter, std::size_t edgeCount, bool transforms)
{
    constexpr int largestOrder = 30;
    if (frameLen > 1 << largestOrder || nFilter > INT_MAX - 3)
        return nullptr;
    State* bank = static_cast<State*>(allocate(1, sizeof(State)));
    if (!bank)
        return nullptr;
    *bank = State{};
    bank->fftOrder = transformOrder(frameLen);
    bank->fftLen = 1 << bank->fftOrder;
    bank->nFilter = bank->nLinear = nFilter;
    bank->edgeCount = static_cast<Zim32s>(edgeCount);
    if constexpr (requires { bank->weightShift; })
        bank->weightShift = q14;
    bank->centers = static_cast<Zim32s*>(allocate(edgeCount, sizeof(Zim32s)));

    // Eight columns more than the longest row has, so that a full vector can be read from any of its elements.
    constexpr int slack = 8, shift = 3;
    const int rowCount = nFilter + 2, upperColumns = bank->fftLen / 2 + slack, lowerColumns = upperColumns + shift;
    allocateRows(&bank->lowerRows, rowCount, lowerColumns);
    allocateRows(&bank->upperRows, rowCount, upperColumns);
    if (!bank->centers || !bank->lowerRows || !bank->upperRows || (transforms && !makeTransform(*bank))) {
        releaseBank(bank);
        return nullptr;
    }
    for (int r = 0; r < rowCount; ++r) {
        std::memset(bank->lowerRows[r], 0, static_cast<std::size_t>(lowerColumns) * sizeof(**bank->lowerRows));
        std::memset(bank->upperRows[r], 0, static_cast<std::size_t>(upperColumns) * sizeof(**bank->upperRows));
        bank->lowerRows[r] += shift;
    }
    return bank;
}

// Hands out a finished bank.
template <class State>
ZimStatus deliver(State* bank, State** state)
{
    *state = bank;
    return zimStsOk;
}

template <class State>
ZimStatus deliver(State* bank, State** state, int* order)
{
    *order = bank->fftOrder;
    return deliver(bank, state);
}

// Gives up a bank that could not be made, or not be finished.
template <class State>
ZimStatus giveUp(State* bank, State** state, ZimStatus status)
{
    if (bank)
        releaseBank(bank);
    *state = nullptr;
    return status;
}

}  // namespace zimsr
