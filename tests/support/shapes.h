// The lengths and places that every vector function is run with.
#pragma once

#include <cstddef>
#include <vector>

#include "support/guarded.h"

namespace zimsr::test {

// Calls run(len, placement) for all lengths up to some vectors and a few long ones, each with the array's end at a
// protected page, and for places at and off the boundaries of a vector.
template <class T, class Run>
void forEachShape(Run run)
{
    std::vector<int> lengths;
    for (int len = 1; len <= 70; ++len)
        lengths.push_back(len);
    lengths.insert(lengths.end(), {127, 128, 513, 2050});
    for (int len : lengths) {
        run(len, Placement{});
        for (std::size_t element : {0, 1, 2, 5})
            run(len, atOffset(element * sizeof(T)));
    }
}

}  // namespace zimsr::test
