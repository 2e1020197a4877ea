// Where a bank's edges lie: the mel scale, and the bins of frequencies in Hz or mel.
#pragma once

#include <algorithm>
#include <cmath>

#include <zimsr/types.h>

#include "zimcore/elementary/elementary.h"
#include "zimsr/kernels/melfbank_state.h"

namespace zimsr {

// Mel scale and bin axis of one bank. Quotients are formed in double; the two factors between bins and frequencies are
// rounded to single precision.
struct MelAxis {
    double mul;
    double div;
    double binsPerHz;
    Zim32f hzPerBin;
    Zim32f binsPerDiv;

    MelAxis(Zim32f melMul, Zim32f melDiv, Zim32f sampleRate, int fftLen)
        : mul(melMul),
          div(melDiv),
          binsPerHz(fftLen / static_cast<double>(sampleRate)),
          hzPerBin(static_cast<Zim32f>(static_cast<double>(sampleRate) / fftLen)),
          binsPerDiv(static_cast<Zim32f>(div * binsPerHz))
    {
    }

    double melOfHz(double frequency) const { return elementary::log(1 + frequency / div) * mul; }
    double melOfBin(int bin) const { return melOfHz(bin * static_cast<double>(hzPerBin)); }
    double binOfMel(double mel) const { return (elementary::exp(mel / mul) - 1) * binsPerDiv; }
    double binOfHz(double frequency) const { return frequency * binsPerHz; }

    // Whether the scale has a place for every frequency from low to high.
    bool covers(Zim32f low, Zim32f high) const
    {
        return mul != 0 && std::isfinite(melOfHz(low)) && std::isfinite(melOfHz(high));
    }
};

// Sets edge i to a position on the bin axis, truncated for mel slopes and rounded for bin slopes. Rounding errors of
// the scale are held between the edge before and the last bin. False when the position is not on the axis at all.
template <class State>
bool placeEdge(const State& bank, int i, double position, int slopes)
{
    if (!(position >= 0))
        return false;
    position = std::min(position, bank.fftLen / 2.0);
    const Zim32s bin =
        slopes == ZimFBankBinSlopes ? static_cast<Zim32s>(__builtin_lrint(position)) : static_cast<Zim32s>(position);
    bank.centers[i] = i > 0 ? std::max(bin, bank.centers[i - 1]) : bin;
    return true;
}

// The edges of a mel bank, evenly spaced in mel, and their unrounded mel values.
template <class State>
bool placeMelEdges(const State& bank, const MelAxis& axis, int slopes, Zim32f lowFreq, Zim32f highFreq, Zim32f* mels)
{
    const double low = axis.melOfHz(lowFreq);
    const Zim32f span = static_cast<Zim32f>(axis.melOfHz(highFreq) - low);
    const Zim32f steps = static_cast<Zim32f>(bank.nFilter + 1);
    for (int i = 0; i <= bank.nFilter + 1; ++i) {
        mels[i] = static_cast<Zim32f>(i * static_cast<double>(span) / steps + low);
        const Zim32f position = static_cast<Zim32f>(axis.binOfMel(mels[i]));
        if (!std::isfinite(mels[i]) || !placeEdge(bank, i, position, slopes))
            return false;
    }
    return true;
}

// The linear part of a mixed bank: the edges 0 .. count, evenly spaced in Hz, the last at highFreq.
template <class State>
bool placeLinearEdges(const State& bank, const MelAxis& axis, int slopes, Zim32f lowFreq, Zim32f highFreq, int count,
                      Zim32f* frequencies)
{
    const double span = static_cast<double>(highFreq) - lowFreq;
    for (int i = 0; i <= count; ++i) {
        frequencies[i] = static_cast<Zim32f>(i * span / count + lowFreq);
        if (!placeEdge(bank, i, axis.binOfHz(frequencies[i]), slopes))
            return false;
    }
    return true;
}

// Edges evenly spaced in mel, as the upper part of a mixed bank has them.
struct MelGrid {
    double low;
    double span;
    int steps;

    MelGrid(const MelAxis& axis, Zim32f lowFreq, Zim32f highFreq, int stepCount)
        : low(axis.melOfHz(lowFreq)), span(axis.melOfHz(highFreq) - low), steps(stepCount)
    {
    }

    double operator[](int i) const { return i * span / steps + low; }
};

// The mel part of a mixed bank: the edges nLinear .. nFilter + 1.
template <class State>
bool placeUpperEdges(const State& bank, const MelAxis& axis, int slopes, const MelGrid& grid)
{
    for (int i = 0; i <= grid.steps; ++i)
        if (!placeEdge(bank, bank.nLinear + i, axis.binOfMel(grid[i]), slopes))
            return false;
    return true;
}

}  // namespace zimsr
