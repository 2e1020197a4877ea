// The order in which columns are summed: rows in fours, then a pair, then a single one.
#pragma once

namespace zimsr::test {

// sum + term(0) + ... + term(height - 1).
template <class Float, class Term>
Float sumDown(int height, Float sum, Term term)
{
    int r = 0;
    for (; r + 4 <= height; r += 4)
        sum += (term(r) + term(r + 1)) + (term(r + 2) + term(r + 3));
    if (r + 2 <= height) {
        sum += term(r) + term(r + 1);
        r += 2;
    }
    return r < height ? sum + term(r) : sum;
}

}  // namespace zimsr::test
