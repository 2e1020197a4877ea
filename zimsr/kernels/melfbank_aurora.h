// The two constant banks of the advanced distributed front end (ETSI ES 202 050): mel spacing with melMul = 2595 and
// melDiv = 700 at 8000 Hz and 128 points, from 1 Hz for the low bank and 80 Hz for the high bank to 4000 Hz.
#pragma once

#include <array>

#include <zimsr/types.h>

#include "zimsr/kernels/melfbank_weights.h"

namespace zimsr {

// 24 steps reach 4000 Hz; two more edges are held there. The 0 in front gives bin 0 a filter of its own, so that filter
// i > 1 is the triangle over the edges i - 1 .. i + 1.
inline constexpr std::array<Zim32s, 28> lowAuroraEdges = {0,  0,  1,  2,  3,  4,  5,  7,  8,  10, 12, 14, 16, 18,
                                                          20, 23, 26, 29, 32, 36, 39, 44, 48, 53, 58, 64, 64, 64};
// 4 steps.
inline constexpr std::array<Zim32s, 5> highAuroraEdges = {1, 8, 19, 37, 64};

// Filter i as a triangle that is 0 on its outer edges and 1 on its centre. Rows are zero where nothing is written.
template <class Weights>
void triangle(const typename Weights::State& bank, int i)
{
    using Weight = typename Weights::State::Weight;
    const Zim32s* c = bank.centers;
    const Zim64s rise = c[i] - c[i - 1], fall = c[i + 1] - c[i];
    for (Zim64s j = 1; j <= rise; ++j)
        bank.lowerRows[i - 1][j] = static_cast<Weight>(Weights::ratio(j, rise));
    for (Zim64s j = 1; j < fall; ++j)
        bank.upperRows[i - 1][j - 1] = static_cast<Weight>(Weights::one - Weights::ratio(j, fall));
}

// Divides the weights of filter i by their sum; a filter of zeros stays as it is.
template <class Weights>
void normalise(const typename Weights::State& bank, int i)
{
    using Wide = typename Weights::Wide;
    using Weight = typename Weights::State::Weight;
    Weight* lower = bank.lowerRows[i - 1];
    Weight* upper = bank.upperRows[i - 1];
    const int lowerCount = lowerLength(bank.centers, i), upperCount = upperLength(bank.centers, i);
    Wide sum = 0;
    for (int j = 0; j < lowerCount; ++j)
        sum += lower[j];
    for (int j = 0; j < upperCount; ++j)
        sum += upper[j];
    if (sum == 0)
        return;
    for (int j = 0; j < lowerCount; ++j)
        lower[j] = static_cast<Weight>(Weights::ratio(Wide{lower[j]}, sum));
    for (int j = 0; j < upperCount; ++j)
        upper[j] = static_cast<Weight>(Weights::ratio(Wide{upper[j]}, sum));
}

template <class Weights>
void lowAuroraFilters(const typename Weights::State& bank)
{
    bank.lowerRows[0][0] = static_cast<typename Weights::State::Weight>(Weights::one);
    for (int i = 2; i <= bank.nFilter + 1; ++i) {
        triangle<Weights>(bank, i);
        normalise<Weights>(bank, i);
    }
}

template <class Weights>
void highAuroraFilters(const typename Weights::State& bank)
{
    for (int i = 1; i <= bank.nFilter; ++i)
        triangle<Weights>(bank, i);
}

}  // namespace zimsr
