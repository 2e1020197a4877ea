// Mahalanobis distance under diagonal covariance: the sum of the scores of loggauss.h by itself, in the same shapes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// One vector from one Gaussian: its mean and inverse variances.
template <class Term, class T, class... Model>
ZIM_INLINE auto distanceOfVector(int len, const T* vector, const Model*... model)
{
    return sumRow(Term{}, len, vector, model...);
}

// ---- 16-bit numbers: a term on operands that are floats, or doubles, before all else

template <class Term>
struct OnFloats {
    using Sum = typename Term::Sum;
    template <class... V>
    ZIM_INLINE Sum operator()(V... operands) const
    {
        return Term{}(toFloat(widen(operands))...);
    }
};

template <class Term>
struct OnDoubles {
    using Sum = typename Term::Sum;
    template <class... V>
    ZIM_INLINE Sum operator()(V... operands) const
    {
        return Term{}(widen(toFloat(widen(operands)))...);
    }
};

// The exact sum, in 64 bits, where it wraps around. A term is below 2^47, so that the sum of a stretch is an integer
// that a double holds.
inline Zim64s exactDistance(int len, const Zim16s* vector, const Zim16s* mean, const Zim16s* invVar)
{
    constexpr std::ptrdiff_t stretch = 64;
    uint64_t sum = 0;
    for (std::ptrdiff_t j = 0; j < len; j += stretch) {
        const int count = static_cast<int>(std::min(stretch, len - j));
        const Zim64f part = distanceOfVector<OnDoubles<SquareByInverse<D8>>>(count, vector + j, mean + j, invVar + j);
        sum += static_cast<uint64_t>(static_cast<Zim64s>(part));
    }
    return static_cast<Zim64s>(sum);
}

// ---- Matrices. Frames from one Gaussian.
template <class Term, class T>
[[gnu::noinline]] void distancesOfFrames(Rows<const T> frames, int width, int height, T* distances, const T* mean,
                                         const T* invVar)
{
    sumRows(Term{}, FrameGroups<typename Term::Sum>{}, height, width, StoreScores{distances}, Shared{mean}, frames,
            Shared{invVar});
}

// One frame from a Gaussian a row.
template <class Term, class T>
[[gnu::noinline]] void distancesOfGaussians(const T* frame, int width, int height, T* distances, Rows<const T> mean,
                                            Rows<const T> invVar)
{
    sumRows(Term{}, Groups<4, 1>{}, height, width, StoreScores{distances}, Shared{frame}, mean, invVar);
}

}  // namespace zimsr
