// The shape that all filter banks share: transform length, the extent of a filter's two rows, slopes over bins.
#pragma once

#include <zimsr/types.h>

namespace zimsr {

// log2 of the transform length: the least that holds a frame, and at least 1.
constexpr int transformOrder(int frameLen)
{
    int order = 1;
    while (1 << order < frameLen)
        ++order;
    return order;
}

// The rows of filter i, counted from 1. The edges of a bank never step back.
inline int lowerLength(const Zim32s* c, int i)
{
    return c[i] - c[i - 1] + 1;
}

inline int upperLength(const Zim32s* c, int i)
{
    return c[i + 1] - c[i];
}

// Straight lines over the bins: filter i rises to 1 on its centre and would meet 0 one bin outside its edges.
template <class Weights>
void binSlopes(const typename Weights::State& bank, int i)
{
    using Weight = typename Weights::State::Weight;
    const Zim32s* c = bank.centers;
    const Zim64s rise = c[i] - c[i - 1], fall = c[i + 1] - c[i];
    for (Zim64s j = 0; j <= rise; ++j)
        bank.lowerRows[i - 1][j] = static_cast<Weight>(Weights::ratio(j + 1, rise + 1));
    for (Zim64s j = 0; j < fall; ++j)
        bank.upperRows[i - 1][j] = static_cast<Weight>(Weights::ratio(fall - j, fall + 1));
}

}  // namespace zimsr
