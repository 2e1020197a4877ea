// Compiled by itself, with all that the compiler offers for this machine.
#include "melfbank_fixed_peer.h"

#include <algorithm>
#include <cstdint>

namespace peer {

FilterBank triangles(const std::vector<int>& edges)
{
    FilterBank bank;
    for (std::size_t i = 1; i + 1 < edges.size(); ++i) {
        const int64_t rise = edges[i] - edges[i - 1] + 1, fall = edges[i + 1] - edges[i] + 1;
        std::vector<int> row;
        for (int64_t j = 1; j <= rise; ++j)
            row.push_back(static_cast<int>((j << 30) / rise));
        for (int64_t j = fall - 1; j >= 1; --j)
            row.push_back(static_cast<int>((j << 30) / fall));
        bank.first.push_back(edges[i - 1]);
        bank.weights.push_back(row);
    }
    return bank;
}

void evaluate(const FilterBank& bank, const int* src, int* dst, int scaleFactor)
{
    for (std::size_t i = 0; i < bank.weights.size(); ++i) {
        const int* bins = src + bank.first[i];
        const int* weights = bank.weights[i].data();
        const int count = static_cast<int>(bank.weights[i].size());
        int64_t sum = 0;
        for (int j = 0; j < count; ++j)
            sum += (int64_t{weights[j]} * bins[j]) >> 8;
        sum >>= scaleFactor;
        dst[i] = static_cast<int>(std::clamp<int64_t>((sum >> 22) + ((sum >> 21) & 1), INT32_MIN, INT32_MAX));
    }
}

}  // namespace peer
