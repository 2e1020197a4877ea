// The weights between the edges of a bank, in either kind of weight.
#pragma once

#include <algorithm>

#include <zimsr/types.h>

#include "zimsr/kernels/melfbank_edges.h"
#include "zimsr/kernels/melfbank_shape.h"
#include "zimsr/kernels/melfbank_state.h"
#include "zimsr/kernels/melfbank_weights.h"

namespace zimsr {

// row[0 ..] = the height of bins first .. last on a line over mel, height(mel) / span.
template <class Weights, class Weight, class Height>
void melSlope(Weight* row, const MelAxis& axis, int first, int last, double span, Height height)
{
    for (int k = first; k <= last; ++k)
        row[k - first] = static_cast<Weight>(Weights::ratio(height(axis.melOfBin(k)), span));
}

template <class Weight>
void floorAtZero(Weight* row, int count)
{
    for (int j = 0; j < count; ++j)
        row[j] = std::max(Weight{0}, row[j]);
}

// Straight lines over mel between the unrounded edges.
template <class Weights>
void melSlopes(const typename Weights::State& bank, const MelAxis& axis, const Zim32f* mels, int i)
{
    const Zim32s* c = bank.centers;
    const double foot = mels[i - 1], toe = mels[i + 1];
    bank.lowerRows[i - 1][0] = 0;
    melSlope<Weights>(bank.lowerRows[i - 1] + 1, axis, c[i - 1] + 1, c[i], mels[i] - mels[i - 1],
                      [=](double mel) { return mel - foot; });
    melSlope<Weights>(bank.upperRows[i - 1], axis, c[i] + 1, c[i + 1], mels[i + 1] - mels[i],
                      [=](double mel) { return toe - mel; });
}

// As melSlopes, for a linear filter of a mixed bank, whose edges are foot, peak and toe in mel. The slope takes in the
// bin of its lower edge. No weight is below 0, and between equal edges there is no slope.
template <class Weights>
void linearSlopes(const typename Weights::State& bank, const MelAxis& axis, double foot, double peak, double toe, int i)
{
    const Zim32s* c = bank.centers;
    if (peak != foot)
        melSlope<Weights>(bank.lowerRows[i - 1], axis, c[i - 1], c[i], peak - foot,
                          [=](double mel) { return mel - foot; });
    if (toe != peak)
        melSlope<Weights>(bank.upperRows[i - 1], axis, c[i] + 1, c[i + 1], toe - peak,
                          [=](double mel) { return toe - mel; });
    floorAtZero(bank.lowerRows[i - 1], lowerLength(c, i));
    floorAtZero(bank.upperRows[i - 1], upperLength(c, i));
}

}  // namespace zimsr
