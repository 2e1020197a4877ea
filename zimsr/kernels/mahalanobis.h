// Mahalanobis distance under diagonal covariance: the sum of the scores of loggauss.h by itself, in the same shapes.
#pragma once

#include "zimcore/frame/rows.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

// One vector from one Gaussian: its mean and inverse variances.
template <class Term, class T, class... Model>
ZIM_INLINE auto distanceOfVector(int len, const T* vector, const Model*... model)
{
    return sumRow(Term{}, len, vector, model...);
}

// Frames from one Gaussian.
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
