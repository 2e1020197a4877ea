// The plain loop that the all-integer mel filter bank is measured against.
#pragma once

#include <vector>

namespace peer {

// Triangles as rows of weights in Q30, each from its first bin on.
struct FilterBank {
    std::vector<int> first;
    std::vector<std::vector<int>> weights;
};

// Triangles between neighbours but one of the edge bins.
FilterBank triangles(const std::vector<int>& edges);
// One scaled sum of products for each filter.
void evaluate(const FilterBank& bank, const int* src, int* dst, int scaleFactor);

}  // namespace peer
