// The functions that score vectors under Gaussians, and those that fold scores, all run on the same arrays: the
// signature of each tells how.
//
//     const ScoreDoor<Zim32f, Zim32f> door = SCORE_DOOR(zimsLogGauss_32f_D2);
//     EXPECT_EQ(door.run(arrays, 0), zimStsOk);
#pragma once

#include <functional>
#include <tuple>
#include <type_traits>
#include <vector>

#include "support/arguments.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"

namespace zimsr::test {

// A matrix of vectors and one vector x: frames and a mean, or means and a frame. Weights are inverse variances, those
// of the first row where there is one Gaussian; constants are gconst there. Each array ends at a protected page unless
// it is placed otherwise, and gaps between rows hold poison.
template <class T, class Score>
struct ScoreArrays {
    int height, width;
    Score gconst;
    StridedMatrix<T> mat, weightMat;
    RowMatrix<T> rows, weightRows;
    Guarded<T> x, weights;
    Guarded<Score> constants, running;

    ScoreArrays(int height_, int step, const std::vector<T>& vectors, const std::vector<T>& matrixOfWeights,
                const std::vector<T>& vector, Score gconst_, const std::vector<Score>& constants_,
                Placement placement = {})
        : height(height_),
          width(static_cast<int>(vector.size())),
          gconst(gconst_),
          mat(vectors, height, width, step, placement),
          weightMat(matrixOfWeights, height, width, step, placement),
          rows(vectors, height, width, placement),
          weightRows(matrixOfWeights, height, width, placement),
          x(vector, placement),
          weights(std::vector<T>(matrixOfWeights.begin(), matrixOfWeights.begin() + width), placement),
          constants(constants_, ofScores(placement)),
          running(constants_.size(), ofScores(placement))
    {
    }

private:
    // As many elements past the boundary.
    static Placement ofScores(Placement placement)
    {
        placement.offset = placement.offset / sizeof(T) * sizeof(Score);
        return placement;
    }
};

// An int argument that tells what it is.
template <Size size>
struct Dimension {
    static constexpr Size is = size;
    int value;
    operator int() const { return value; }
};

// The constants of many Gaussians.
template <class Score>
struct Constants {
    const Score* first;
    operator const Score*() const { return first; }
};

// Results that stand where the constants stood.
template <class Score>
struct OverConstants {
    Score* running;
    operator Score*() const { return running; }
};

// The arguments of a door; of a function on one vector, those for row r.
template <class Door, class T, class Score>
auto argumentsOf(const ScoreArrays<T, Score>& a, int r, int factor)
{
    const Dimension<Size::step> step{a.mat.step()};
    const Dimension<Size::width> width{a.width};
    const Dimension<Size::height> height{a.height};
    const T *mat = a.mat.data(), *weightMat = a.weightMat.data(), *x = a.x, *weights = a.weights;
    const T *const *rows = a.rows.data(), *const *weightRows = a.weightRows.data();
    const Constants<Score> constants{a.constants};
    Score* running = a.running;
    const OverConstants<Score> over{running};
    const auto fitting = [&](auto... f) {
        return firstThatFits<Door>(
            // Frames under one Gaussian.
            std::tuple(mat, step, x, weights, width, running, height, a.gconst, f...),
            std::tuple(rows, x, weights, width, running, height, a.gconst, f...),
            std::tuple(mat, step, x, width, running, height, a.gconst, f...),
            std::tuple(rows, x, width, running, height, a.gconst, f...),
            std::tuple(mat, step, x, weights, width, running, height),
            std::tuple(rows, x, weights, width, running, height),
            // One frame under many Gaussians.
            std::tuple(mat, weightMat, step, x, width, over, height, f...),
            std::tuple(rows, weightRows, x, width, over, height, f...),
            std::tuple(mat, weightMat, step, x, width, constants, running, height, f...),
            std::tuple(rows, weightRows, x, width, constants, running, height, f...),
            std::tuple(x, mat, weightMat, height, step, width, constants, running, f...),
            std::tuple(x, rows, weightRows, height, width, constants, running, f...),
            std::tuple(x, mat, height, step, width, constants, running, f...),
            std::tuple(x, rows, height, width, constants, running, f...),
            // One frame under one Gaussian.
            std::tuple(rows[r], x, weightRows[r], width, running + r, a.constants[r], f...),
            std::tuple(rows[r], x, width, running + r, a.constants[r], f...),
            std::tuple(rows[r], x, weightRows[r], width, running + r));
    };
    if constexpr (std::is_same_v<decltype(fitting(factor)), Nothing>)
        return fitting();
    else
        return fitting(factor);
}

template <class... Argument>
struct Signature;
template <class... Argument>
struct Signature<std::tuple<Argument...>> {
    template <class T>
    static constexpr bool has = (std::is_same_v<T, Argument> || ...);
    static constexpr bool ofOneVector = !has<Dimension<Size::height>>;
    // A plain int is nothing else, but for the constants of integers, and these have a factor too.
    static constexpr bool hasFactor = has<int>;

    static std::vector<Size> sizes()
    {
        std::vector<Size> all;
        const auto add = [&]<class T>(std::type_identity<T>) {
            if constexpr (requires { T::is; })
                all.push_back(T::is);
        };
        (add(std::type_identity<Argument>()), ...);
        return all;
    }
};

template <class T, class Score>
struct ScoreDoor {
    using Arrays = ScoreArrays<T, Score>;

    const char* name;
    bool ofOneVector, hasFactor;
    // Whether each row has its own weights and constant.
    bool manyGaussians;
    std::function<ZimStatus(const Arrays&, int factor)> run;
    // The order of faults in a block; rows have no stride, and one vector has its pointers checked first.
    std::function<void(const std::vector<ZimStatus>& order)> expectChecks;

    template <class... Argument>
    ScoreDoor(const char* name_, ZimStatus (*door)(Argument...)) : name(name_)
    {
        using Door = decltype(door);
        using Is = Signature<decltype(argumentsOf<Door>(std::declval<const Arrays&>(), 0, 0))>;
        ofOneVector = Is::ofOneVector;
        manyGaussians = ofOneVector || Is::template has<Constants<Score>> || Is::template has<OverConstants<Score>>;
        hasFactor = Is::hasFactor;
        run = [door](const Arrays& a, int factor) {
            if constexpr (Is::template has<OverConstants<Score>>)
                a.running.assign(a.constants.values());
            ZimStatus status = zimStsOk;
            for (int r = 0; r < (Is::ofOneVector ? a.height : 1); ++r)
                if (const ZimStatus fault = std::apply(door, argumentsOf<Door>(a, r, factor)))
                    status = fault;
            return status;
        };
        expectChecks = [door](const std::vector<ZimStatus>& order) {
            if constexpr (Is::ofOneVector)
                expectPointersThenLength(door);
            else
                expectMatrixChecks(Is::sizes(), order, door);
        };
    }
};

#define SCORE_DOOR(function) \
    {                        \
#function, function  \
    }

}  // namespace zimsr::test
