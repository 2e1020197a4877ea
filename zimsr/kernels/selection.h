// Mixtures of which only the selected Gaussians are scored, by a bit for each frame and Gaussian.
//
// Frames go in blocks. What is selected for a block is laid out as a list of pairs of a frame and a Gaussian, which are
// scored in groups whatever frames they belong to, so that a sparse selection fills the groups too. The scores of a
// frame then stand below each other in a column beside those of the other frames, and are folded in lanes of one frame
// each. Columns are filled by 32 Gaussians at a time, so that the Gaussians stay in the cache while the frames meet
// them.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <type_traits>
#include <utility>

#include <zimsr/types.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/simd.h"
#include "zimsr/kernels/bittable.h"
#include "zimsr/kernels/logdomain.h"
#include "zimsr/kernels/loggauss.h"
#include "zimsr/kernels/rowsums.h"

namespace zimsr {

inline constexpr int selectedFrames = 32;  // in a block
inline constexpr int selectedDepth = 128;  // scores of a frame before they are folded
inline constexpr int selectedPairs = 128;  // in a list before it is scored
inline constexpr int columnsOfWord = 32;

// ---- Scores of a list of pairs: the operands are the rows of frames and Gaussians, and where each score belongs

struct StoreAt {
    Zim32f* scores;
    const int* places;

    template <class Scores>
    ZIM_INLINE void operator()(std::ptrdiff_t r, Scores values) const
    {
        if constexpr (std::is_arithmetic_v<Scores>)
            scores[places[r]] = values;
        else
#pragma GCC unroll 8
            for (int lane = 0; lane < Scores::lanes; ++lane)
                scores[places[r + lane]] = values[lane];
    }
};

template <class Term>
struct FloatPairs {
    int width;

    template <class... Operand>
    [[gnu::noinline]] void operator()(int count, const Zim32f* constants, StoreAt keepScores, Operand... operands) const
    {
        const auto deliver = [=](std::ptrdiff_t r, auto sums) {
            keepScores(r, FromDoubledConstant{}(load<decltype(sums)>(constants + r), sums));
        };
        sumRows(Term{}, Groups<4, 1>{}, count, width, deliver, operands...);
    }
};

// ---- The working memory of a call, which is too large for a small stack

// models is the number of matrices that describe the Gaussians.
template <class T, int models>
struct SelectionWork {
    alignas(32) Zim32f scores[selectedDepth][selectedFrames];
    alignas(32) Zim32f sums[selectedFrames];
    alignas(32) Zim32s depths[selectedFrames];  // scores that stand in each column
    alignas(32) Zim32s filled[selectedFrames];  // a mask: the frame's sum has begun
    const T* rows[1 + models][selectedPairs];
    Zim32f constants[selectedPairs];
    int places[selectedPairs];
};

// ---- Folding: sums[f] = ln(exp(sums[f]) + sum of exp(column f)), in the order of the column

template <int lanes, class Work, class Add>
ZIM_INLINE void foldColumns(Work& work, int first, Add add)
{
    using Scores = Vec<Zim32f, lanes>;
    using Mask = Vec<Zim32s, lanes>;
    const Mask depths = load<Mask>(work.depths + first);
    const int deepest = *std::max_element(work.depths + first, work.depths + first + lanes);
    Mask filled = load<Mask>(work.filled + first);
    Scores sums = load<Scores>(work.sums + first);
    for (int k = 0; k < deepest; ++k) {
        const Mask here = splat<Mask>(k) < depths;
        // Where no score was written, there may be anything.
        const Scores scores = keep(here, load<Scores>(work.scores[k] + first));
        sums = select(here, select(filled, add(scores, sums), scores), sums);
        filled |= here;
    }
    store(work.filled + first, filled);
    store(work.sums + first, sums);
}

// Lanes enough to hide the waits of each other's polynomials.
template <class Add>
inline constexpr int foldedLanes = 16;
template <>
inline constexpr int foldedLanes<LogAddFast> = 32;

template <class Work, class Add>
inline void foldScores(Work& work, int frames, Add add)
{
    if (frames <= 8)
        foldColumns<8>(work, 0, add);
    else
        for (int first = 0; first < frames; first += foldedLanes<Add>)
            foldColumns<foldedLanes<Add>>(work, first, add);
    std::fill_n(work.depths, selectedFrames, 0);
}

// ---- The whole

template <class T, class ScorePairs, class Add, class... Model>
class Selection {
public:
    using Work = SelectionWork<T, sizeof...(Model)>;

    Selection(Work& work, ScorePairs scorePairs, Add add, const Zim32f* constants, Model... model)
        : work_(work), scorePairs_(scorePairs), add_(add), constants_(constants), model_{model...}
    {
    }

    void sums(Rows<const T> frames, const Zim8u* table, int gaussCount, Zim32f* dst, int height, Zim32f defaultVal)
    {
        for (std::ptrdiff_t first = 0; first < height; first += selectedFrames) {
            const int count = static_cast<int>(std::min<std::ptrdiff_t>(selectedFrames, height - first));
            const std::size_t rowBytes = bitRowBytes(gaussCount);
            block(frames.from(first), table + static_cast<std::size_t>(first) * rowBytes, rowBytes, gaussCount, count);
            for (int f = 0; f < count; ++f)
                dst[first + f] = work_.filled[f] ? work_.sums[f] : defaultVal;
        }
    }

private:
    void block(Rows<const T> frames, const Zim8u* table, std::size_t rowBytes, int gaussCount, int count)
    {
        std::fill_n(work_.depths, selectedFrames, 0);
        std::fill_n(work_.filled, selectedFrames, 0);
        std::fill_n(work_.sums, selectedFrames, 0.0f);
        int deepest = 0;
        for (int byte = 0; byte < static_cast<int>(rowBytes); byte += columnsOfWord / 8) {
            if (deepest > selectedDepth - columnsOfWord) {
                scoreList();
                foldScores(work_, count, add_);
                deepest = 0;
            }
            for (int f = 0; f < count; ++f) {
                const Zim8u* source = table + static_cast<std::size_t>(f) * rowBytes + byte;
                const Zim32u word = loadFirstBits<Zim32u>(source, static_cast<int>(rowBytes) - byte);
                listSelected(frames[f], f, firstBits(word, gaussCount - 8 * byte), 8 * byte);
                deepest = std::max(deepest, work_.depths[f]);
            }
        }
        scoreList();
        foldScores(work_, count, add_);
    }

    // Lists the Gaussians that the bits of a word select for frame f of the block.
    void listSelected(const T* frame, int f, Zim32u word, int firstColumn)
    {
        for (int depth = work_.depths[f]; word != 0; work_.depths[f] = ++depth) {
            const int bit = std::countl_zero(word);
            word &= ~(Zim32u{0x80000000} >> bit);
            const std::ptrdiff_t g = firstColumn + bit;
            listRows(frame, g, std::make_index_sequence<sizeof...(Model)>{});
            work_.constants[listed_] = constants_[g];
            work_.places[listed_] = depth * selectedFrames + f;
            if (++listed_ == selectedPairs)
                scoreList();
        }
    }

    template <std::size_t... i>
    void listRows(const T* frame, std::ptrdiff_t g, std::index_sequence<i...>)
    {
        work_.rows[0][listed_] = frame;
        ((work_.rows[1 + i][listed_] = model_[i][g]), ...);
    }

    void scoreList() { scoreList(std::make_index_sequence<1 + sizeof...(Model)>{}); }

    template <std::size_t... i>
    void scoreList(std::index_sequence<i...>)
    {
        scorePairs_(listed_, work_.constants, StoreAt{work_.scores[0], work_.places}, Rows<const T>(work_.rows[i])...);
        listed_ = 0;
    }

    Work& work_;
    ScorePairs scorePairs_;
    Add add_;
    const Zim32f* constants_;
    Rows<const T> model_[sizeof...(Model)];
    int listed_ = 0;
};

}  // namespace zimsr
