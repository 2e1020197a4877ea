// Numbers to compute with: neither so small nor so large that a sum leaves the common range.
#pragma once

#include <random>
#include <vector>

#include <zimsr/types.h>

using Floats = std::vector<Zim32f>;

inline Floats features(int count)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<Zim32f> values(0.5f, 1.5f);
    Floats x(static_cast<std::size_t>(count));
    for (Zim32f& value : x)
        value = values(random);
    return x;
}
