// Fixed-point scores folded into running scores, or summed over a mixture.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/loggauss_fixed_forms.h"
#include "zimsr/kernels/mixture.h"

namespace zimsr {

// ---- The maximum of integer scores. A form compares in floats where its score is one: the running score becomes a
// float, and the greater of the two an integer by truncation and saturation.

struct KeepGreaterInteger {
    Zim32s* running;

    ZIM_INLINE void operator()(std::ptrdiff_t r, I4 scores) const { KeepGreater{running}(r, scores); }
    ZIM_INLINE void operator()(std::ptrdiff_t r, Zim32s score) const { KeepGreater{running}(r, score); }
    ZIM_INLINE void operator()(std::ptrdiff_t r, F4 scores) const
    {
        store(running + r, greater(scores, load<I4>(running + r)));
    }
    ZIM_INLINE void operator()(std::ptrdiff_t r, Zim32f score) const
    {
        running[r] = greater(splat<F4>(score), splat<I4>(running[r]))[0];
    }

private:
    static ZIM_INLINE I4 greater(F4 scores, I4 old)
    {
        return quantise(max(scores, toFloat(old)), Truncate{}, Zim32s{});
    }
};

// Runs with rounding toward zero.
struct PlainMaxForm {
    template <class, class Run>
    static void choose(int scaleFactor, Run run)
    {
        const RoundTowardZero mode;
        run(FloatSquares<Zim16s>{}, FloatScore<MinusScaledSum>{{halfScale(scaleFactor)}});
    }
};

// The same, with the scale in two steps.
struct HalvedMaxForm {
    template <class, class Run>
    static void choose(int scaleFactor, Run run)
    {
        const RoundTowardZero mode;
        run(FloatSquares<Zim16s>{}, FloatScore<MinusHalvedSum>{{fullScale(scaleFactor)}});
    }
};

struct IdVarMaxForm {
    template <class, class Run>
    static void choose(int scaleFactor, Run run)
    {
        const RoundTowardZero mode;
        run(PairsAndSingles<AsFloats>{}, FloatScore<MinusScaledSum>{{halfScale(scaleFactor)}});
    }
};

struct LowMaxForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if (scaleFactor >= 0)
            LowForm::choose<Score>(scaleFactor, run);
        else
            run(FloatSquares<Zim16s>{}, FloatScore<MinusScaledSum>{{halfScale(scaleFactor)}});
    }
};

struct IdVarLowMaxForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        IdVarLowForm::choose<Score>(scaleFactor, [=](auto term, auto finish) {
            if (scaleFactor >= -1)
                run(term, finish);
            else
                run(term, PlusSumAsFloat{});
        });
    }
};

// ---- Sources of scores for the folds that take them block by block. Blocks are even, so that pairs stay pairs.

static_assert(frameBlock % 2 == 0 && gaussianBlock % 2 == 0);

template <class Form, class... Model>
ZIM_INLINE auto scoresOfFixedFrames(Rows<const Zim16s> frames, int width, Zim32f gconst, int scaleFactor,
                                    const Model*... model)
{
    return [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        scoreFixedFrames<Form>(frames.from(first), width, count, gconst, scaleFactor, StoreScores{scores}, model...);
    };
}

template <class Form, class... Model>
ZIM_INLINE auto scoresOfFixedGaussians(const Zim16s* frame, int width, const Zim32f* constants, int scaleFactor,
                                       Model... model)
{
    return [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        scoreFixedGaussians<Form>(frame, width, count, constants + first, scaleFactor, StoreScores{scores},
                                  model.from(first)...);
    };
}

// One Gaussian after the other, in the arithmetic of a single vector.
template <class Form>
ZIM_INLINE auto scoresOfSingles(const Zim16s* frame, int width, const Zim32f* constants, int scaleFactor,
                                Rows<const Zim16s> means)
{
    return [=](std::ptrdiff_t first, int count, Zim32f* scores) {
        Form::template choose<Zim32f>(scaleFactor, [=](auto term, auto finish) {
            for (std::ptrdiff_t i = 0; i < count; ++i)
                scores[i] = scoreFixedVector(term, finish, constants[first + i], width, frame, means[first + i]);
        });
    };
}

}  // namespace zimsr
