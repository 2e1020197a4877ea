// The forms of fixed-point scoring: which term and finish a name stands for, and forms in their shapes. For scores of
// type Score, Form::choose<Score>(scaleFactor, run) calls run(term, finish).
#pragma once

#include <algorithm>
#include <type_traits>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/loggauss_fixed.h"
#include "zimsr/kernels/loggauss_low.h"

namespace zimsr {

// ---- 2^-scaleFactor and half of it. A factor as large as the limit stands for all that are larger.

inline Zim32f fullScale(int scaleFactor)
{
    return GetScale_32s32f(scaleFactor);
}

inline int limited(int scaleFactor)
{
    return std::clamp(scaleFactor, -1000, 1000);
}

inline Zim32f halfScale(int scaleFactor)
{
    return GetScale_32s32f(limited(scaleFactor) + 1);
}

template <class Score>
inline constexpr bool isInteger = std::is_same_v<Score, Zim32s>;

// ---- Forms of a block

// The finish of a float sum.
template <class Score>
auto minusScaledSum(int scaleFactor)
{
    const MinusScaledSum finish{halfScale(scaleFactor)};
    if constexpr (isInteger<Score>)
        return Truncated<MinusScaledSum>{{finish}};
    else
        return finish;
}

struct PlainForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        run(FloatSquares<Zim16s>{}, minusScaledSum<Score>(scaleFactor));
    }
};

struct IdVarForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if constexpr (isInteger<Score>)
            run(PairsAndSingles<AsFloats>{}, minusScaledSum<Score>(scaleFactor));
        else
            run(PairsAndSingles<AsFloats>{}, MinusHalvedSum{fullScale(scaleFactor)});
    }
};

struct LowForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if (scaleFactor >= 0)
            run(LowPaired{LowScale(scaleFactor)}, PlusSum{});
        else
            run(FloatSquares<Zim16s>{}, minusScaledSum<Score>(scaleFactor));
    }
};

struct IdVarLowForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if constexpr (isInteger<Score>)
            run(Pairs<AsShifted>{AsShifted{Shift(-1 - limited(scaleFactor))}}, PlusSum{});
        else
            run(Pairs<AsFloats>{}, minusScaledSum<Score>(scaleFactor));
    }
};

// ---- Forms of a single vector, where they are others

struct PlainSingleForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if constexpr (isInteger<Score>)
            run(FloatSquares<Zim16s>{}, RoundedSaturated<MinusHalvedSum>{{{fullScale(scaleFactor)}}});
        else
            run(FloatSquares<Zim16s>{}, MinusHalvedSum{fullScale(scaleFactor)});
    }
};

struct IdVarSingleForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if constexpr (isInteger<Score>)
            run(FloatSquares<>{}, RoundedSaturated<MinusHalvedSum>{{{fullScale(scaleFactor)}}});
        else
            run(ExactSquareSum{}, MinusExactSum{GetScale_32s64f(limited(scaleFactor) + 1)});
    }
};

struct LowSingleForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if (scaleFactor >= 0)
            run(LowSingle{LowScale(scaleFactor)}, PlusSum{});
        else
            run(FloatSquares<Zim16s>{}, minusScaledSum<Score>(scaleFactor));
    }
};

struct IdVarLowSingleForm {
    template <class Score, class Run>
    static void choose(int scaleFactor, Run run)
    {
        if constexpr (isInteger<Score>)
            run(LowSingleIdVar(limited(scaleFactor)), PlusSum{});
        else
            IdVarLowForm::choose<Score>(scaleFactor, run);
    }
};

// ---- A form in a shape. Model: means and, where the form has them, inverse variances.

// Frames against one Gaussian.
template <class Form, class Score, class Keep, class... Model>
void scoreFixedFrames(Rows<const Zim16s> frames, int width, int height, Score gconst, int scaleFactor, Keep keepScores,
                      const Model*... model)
{
    Form::template choose<Score>(scaleFactor, [=](auto term, auto finish) {
        scoreFixedRows(term, finish, CommonConstant{gconst}, keepScores, width, height, frames, Shared{model}...);
    });
}

// One frame against a Gaussian a row, each with a constant of its own.
template <class Form, class Score, class Keep, class... Model>
void scoreFixedGaussians(const Zim16s* frame, int width, int height, const Score* constants, int scaleFactor,
                         Keep keepScores, Model... model)
{
    Form::template choose<Score>(scaleFactor, [=](auto term, auto finish) {
        scoreFixedRows(term, finish, RowConstants{constants}, keepScores, width, height, Shared{frame}, model...);
    });
}

}  // namespace zimsr
