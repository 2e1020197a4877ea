// Log-likelihood under diagonal Gaussians. Four independent choices make a function: the term of the exponent, the
// finish that brings the constant in, the shape (frames against one Gaussian, one frame against many, one against one),
// and what happens to a finished score.
#pragma once

#include <cstddef>
#include <type_traits>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// ---- Terms: each operation is rounded by itself. The square does not show which of the two was subtracted, so that a
// shape puts first what its rows share: the other one's load is then part of the subtraction.

template <class V>
struct SquareByInverse {
    using Sum = V;
    ZIM_INLINE V operator()(V x, V mean, V invVar) const
    {
        const V difference = x - mean;
        return difference * difference * invVar;
    }
};

template <class V>
struct Square {
    using Sum = V;
    ZIM_INLINE V operator()(V x, V mean) const
    {
        const V difference = x - mean;
        return difference * difference;
    }
};

template <class V>
struct SquareByVariance {
    using Sum = V;
    ZIM_INLINE V operator()(V x, V mean, V var) const
    {
        const V difference = x - mean;
        return difference * difference / var;
    }
};

// A term on operands of half the width, each widened before all else.
template <class Term>
struct Widened {
    using Sum = typename Term::Sum;
    template <class... V>
    ZIM_INLINE Sum operator()(V... operands) const
    {
        return Term{}(widen(operands)...);
    }
};

// ---- Finishes, for a vector of scores or for one. They differ where doubling overflows, and where halving loses bits
// of a subnormal.

struct FromDoubledConstant {
    template <class Score>
    ZIM_INLINE Score operator()(Score constant, Score sum) const
    {
        return splat<Score>(0.5f) * ((constant + constant) - sum);
    }
};

struct FromHalvedSum {
    template <class Score>
    ZIM_INLINE Score operator()(Score constant, Score sum) const
    {
        return constant - splat<Score>(0.5f) * sum;
    }
};

// ---- What happens to the scores of row r and the rows behind it

template <class T>
struct StoreScores {
    T* result;

    template <class Score>
    ZIM_INLINE void operator()(std::ptrdiff_t r, Score scores) const
    {
        store(result + r, scores);
    }
};

template <class T>
StoreScores(T*) -> StoreScores<T>;

// ---- Shapes. Blocks are not inlined, so that the two matrix forms of a function share one body.

// One vector against one Gaussian.
template <class Term, class Finish, class Score, class... T>
ZIM_INLINE Score scoreVector(int len, Score gconst, const T*... operands)
{
    return Finish{}(gconst, sumRow(Term{}, len, operands...));
}

// Eight rows side by side want sixteen registers of a whole vector each.
template <class Sum>
using FrameGroups = std::conditional_t<Sum::lanes == 8 && Sum::parts == 1, Groups<8, 4, 1>, Groups<4, 1>>;

// Frames against one Gaussian: its mean and, where the term has one, its variance.
template <class Term, class Finish, class T, class Keep, class... Variance>
[[gnu::noinline]] void scoreFrames(Rows<const T> frames, int width, int height, T gconst, Keep keepScores,
                                   const T* mean, const Variance*... variance)
{
    const auto deliver = [=](std::ptrdiff_t r, auto sums) {
        keepScores(r, Finish{}(splat<decltype(sums)>(gconst), sums));
    };
    sumRows(Term{}, FrameGroups<typename Term::Sum>{}, height, width, deliver, Shared{mean}, frames,
            Shared{variance}...);
}

// The same, but the constant comes first, and the terms are subtracted from it in their order.
template <class Term, class T, class Keep, class... Model>
[[gnu::noinline]] void scoreShortFrames(Rows<const T> frames, int width, int height, T gconst, Keep keepScores,
                                        const Model*... model)
{
    for (std::ptrdiff_t r = 0; r < height; ++r) {
        const T* frame = frames[r];
        T score = gconst + gconst;
        for (int j = 0; j < width; ++j)
            score -= Term{}(frame[j], model[j]...);
        keepScores(r, T(0.5f) * score);
    }
}

// A block of Zim32f frames has a short path below four elements.
template <template <class> class Term, class Keep, class... Model>
inline void scoreBlock(Rows<const Zim32f> frames, int width, int height, Zim32f gconst, Keep keepScores,
                       const Model*... model)
{
    if (width < 4)
        scoreShortFrames<Term<Zim32f>>(frames, width, height, gconst, keepScores, model...);
    else
        scoreFrames<Term<F8>, FromDoubledConstant>(frames, width, height, gconst, keepScores, model...);
}

// One frame against a Gaussian a row, each with a constant of its own.
template <class Term, class Finish, class T, class Keep, class... Model>
[[gnu::noinline]] void scoreGaussians(const T* frame, int width, int height, const T* constants, Keep keepScores,
                                      Model... model)
{
    const auto deliver = [=](std::ptrdiff_t r, auto sums) {
        keepScores(r, Finish{}(load<decltype(sums)>(constants + r), sums));
    };
    sumRows(Term{}, Groups<4, 1>{}, height, width, deliver, Shared{frame}, model...);
}

}  // namespace zimsr
