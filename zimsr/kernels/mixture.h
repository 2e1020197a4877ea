// Folding the scores of Gaussians: into running scores, by maximum or by log-domain addition, or into one sum.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/logdomain.h"
#include "zimsr/kernels/loggauss.h"

namespace zimsr {

// Stands where StoreScores does: a running score stays where it is equal, and where the new one is NaN.
template <class T>
struct KeepGreater {
    T* running;

    template <class Score>
    ZIM_INLINE void operator()(std::ptrdiff_t r, Score scores) const
    {
        store(running + r, max(scores, load<Score>(running + r)));
    }
};

template <class T>
KeepGreater(T*) -> KeepGreater<T>;

// The other folds take the scores block by block, from scoreRows(first, count, scores), which writes those of count
// rows from row first on.
inline constexpr int frameBlock = 128, gaussianBlock = 100;

template <int block, class Visit>
ZIM_INLINE void forEachBlock(int height, Visit visit)
{
    for (std::ptrdiff_t first = 0; first < height; first += block)
        visit(first, static_cast<int>(std::min<std::ptrdiff_t>(block, height - first)));
}

struct AccurateAddition {
    template <class T>
    void operator()(const T* scores, T* running, std::size_t count) const
    {
        logAddAccurate(scores, running, count);
    }
};

struct FastAddition {
    void operator()(const Zim32f* scores, Zim32f* running, std::size_t count) const
    {
        logAddFast(scores, running, count);
    }
};

// running[i] = ln(exp(score of row i) + exp(running[i]))
template <int block, class Addition = AccurateAddition, class T, class ScoreRows>
inline void addScores(T* running, int height, ScoreRows scoreRows)
{
    alignas(32) T scores[block];
    forEachBlock<block>(height, [&](std::ptrdiff_t first, int count) {
        scoreRows(first, count, scores);
        Addition{}(scores, running + first, static_cast<std::size_t>(count));
    });
}

// ln of the sum of exp(score) over all rows. From the second block on, the sum so far stands in front of the block.
template <class T, class ScoreRows>
inline T sumScores(int height, ScoreRows scoreRows)
{
    alignas(32) T values[1 + gaussianBlock];
    T sum = 0;
    forEachBlock<gaussianBlock>(height, [&](std::ptrdiff_t first, int count) {
        scoreRows(first, count, values + 1);
        values[0] = sum;
        const auto added = static_cast<std::size_t>(count);
        sum = first == 0 ? logSum(values + 1, added) : logSum(values, 1 + added);
    });
    return sum;
}

// The same one by one in the order of the rows, in the accurate arithmetic.
template <class ScoreRows>
inline Zim32f sumScoresInOrder(int height, ScoreRows scoreRows)
{
    alignas(32) Zim32f scores[gaussianBlock];
    Zim32f sum = 0;
    forEachBlock<gaussianBlock>(height, [&](std::ptrdiff_t first, int count) {
        scoreRows(first, count, scores);
        for (int i = 0; i < count; ++i)
            sum = first + i == 0 ? scores[0] : logAddAccurate(scores[i], sum);
    });
    return sum;
}

// Scores of one frame under the Gaussians of model's rows, for the folds above.
template <class Term, class Finish, class T, class... Model>
ZIM_INLINE auto scoresOfGaussians(const T* frame, int width, const T* constants, Model... model)
{
    return [=](std::ptrdiff_t first, int count, T* scores) {
        scoreGaussians<Term, Finish>(frame, width, count, constants + first, StoreScores{scores}, model.from(first)...);
    };
}

}  // namespace zimsr
