// What a fixed-point score must be: a plain account of each arithmetic, one element after the other, and data that tell
// one arithmetic from the other.
#pragma once

#include <algorithm>
#include <climits>
#include <cmath>
#include <type_traits>
#include <vector>

#include <zimsr/types.h>

#include "support/random.h"

namespace zimsr::test {

using Shorts = std::vector<Zim16s>;

// A frame under a model; without inverse variances, they are 1.
struct Frame {
    Shorts x, mean, invVar;

    int width() const { return static_cast<int>(x.size()); }
    int weight(int j) const { return invVar.empty() ? 1 : invVar[j]; }
    int exact(int j) const { return x[j] - mean[j]; }
    int saturated(int j) const { return std::clamp(exact(j), -32768, 32767); }
    // How many elements stand in full groups of eight.
    int grouped() const { return width() / 8 * 8; }
};

inline Zim32u square(int difference)
{
    return static_cast<Zim32u>(difference) * static_cast<Zim32u>(difference);
}

inline Zim32f toFloats(Zim32u bits)
{
    return static_cast<Zim32f>(static_cast<Zim32s>(bits));
}

// Sizes of the groups behind the groups of eight.
inline std::vector<int> tailGroups(int width)
{
    std::vector<int> groups;
    for (int size : {4, 2, 1})
        if (width & size)
            groups.push_back(size);
    return groups;
}

// The terms of a float sum. Their sum depends on its order, but not where it is exact, or of two terms only.
using Terms = std::vector<Zim32f>;

inline Terms plainTerms(const Frame& f)
{
    Terms terms;
    for (int j = 0; j < f.width(); ++j) {
        const Zim32f squared = toFloats(square(j < f.grouped() ? f.saturated(j) : f.exact(j)));
        terms.push_back(f.invVar.empty() ? squared : squared * static_cast<Zim32f>(f.weight(j)));
    }
    return terms;
}

// Squares of neighbours together, those behind the groups of eight by themselves: as 32-bit integers.
inline std::vector<Zim32u> pairSquares(const Frame& f)
{
    std::vector<Zim32u> squares;
    for (int j = 0; j < f.grouped(); j += 2)
        squares.push_back(square(f.saturated(j)) + square(f.saturated(j + 1)));
    for (int j = f.grouped(); j < f.width(); ++j)
        squares.push_back(square(f.exact(j)));
    return squares;
}

// Those in groups of four and of two together as well.
inline std::vector<Zim32u> allPairSquares(const Frame& f)
{
    std::vector<Zim32u> squares;
    for (int j = 0; j + 1 < f.width(); j += 2)
        squares.push_back(square(f.saturated(j)) + square(f.saturated(j + 1)));
    if (f.width() % 2 != 0)
        squares.push_back(square(f.exact(f.width() - 1)));
    return squares;
}

inline Terms asFloats(const std::vector<Zim32u>& squares)
{
    Terms terms;
    for (Zim32u s : squares)
        terms.push_back(toFloats(s));
    return terms;
}

// What an arithmetic shift of 32-bit lanes gives, to the left for a positive amount.
inline Zim32u shiftLane(Zim32u v, long long amount)
{
    if (amount >= 0)
        return amount < 32 ? v << amount : 0;
    return static_cast<Zim32u>(static_cast<Zim32s>(v) >> std::min(-amount, 31LL));
}

// The two accumulators of the integer arithmetic.
struct Accumulators {
    Zim32u a[4] = {}, b[4] = {};

    void add(int place, int difference, int weight)
    {
        const Zim32u d2 = square(difference);
        a[place / 2] += (d2 >> 16) * static_cast<Zim32u>(weight);
        b[place / 2] += ((d2 & 0xFFFF) >> 1) * static_cast<Zim32u>(weight);
    }
    Accumulators negated() const
    {
        Accumulators n;
        for (int l = 0; l < 4; ++l) {
            n.a[l] = 0u - a[l];
            n.b[l] = 0u - b[l];
        }
        return n;
    }
    Zim32u scaled(long long scaleFactor) const
    {
        Zim32u sum = 0;
        for (int l = 0; l < 4; ++l)
            sum += shiftLane(a[l], 15 - scaleFactor) + shiftLane(b[l], -scaleFactor);
        return sum;
    }
};

enum class Place { single, paired, oddLast };

inline Zim32u lowSum(const Frame& f, long long scaleFactor, Place place)
{
    Accumulators all;
    Zim32u subtracted = 0;
    for (int first = 0; first < f.grouped(); first += 8) {
        Accumulators group;
        for (int e = 0; e < 8; ++e) {
            group.add(e, f.saturated(first + e), f.weight(first + e));
            all.add(e, f.saturated(first + e), f.weight(first + e));
        }
        if (place == Place::oddLast)
            subtracted += group.scaled(scaleFactor);
    }
    int first = f.grouped();
    for (int size : tailGroups(f.width())) {
        Accumulators group;
        for (int e = 0; e < size; ++e) {
            Accumulators element;
            element.add(0, f.saturated(first + e), f.weight(first + e));
            group.add(e, f.saturated(first + e), f.weight(first + e));
            if (place == Place::paired)
                all.add(e, f.saturated(first + e), f.weight(first + e));
            if (place == Place::oddLast)
                subtracted += element.scaled(scaleFactor);
        }
        if (place == Place::single)
            subtracted += group.scaled(scaleFactor);
        first += size;
    }
    return place == Place::oddLast ? 0u - subtracted : all.negated().scaled(scaleFactor) - subtracted;
}

// One vector with identity variance: the single last difference is another one.
inline Zim32u lowIdVarSingleSum(const Frame& f, long long scaleFactor)
{
    Frame paired = f;
    if (f.width() % 2 == 0)
        return lowSum(paired, scaleFactor, Place::single);
    paired.x.back() = paired.mean.back();
    const int difference = f.exact(f.width() - 1);
    Zim32u last;
    if (scaleFactor >= 0) {
        Accumulators element;
        element.add(0, static_cast<Zim16s>(static_cast<Zim16u>(difference)), 1);
        last = element.scaled(scaleFactor);
    } else {
        last = shiftLane(shiftLane(square(difference), -1), -scaleFactor);
    }
    return lowSum(paired, scaleFactor, Place::single) - last;
}

inline Zim32u shiftedSum(const std::vector<Zim32u>& squares, long long scaleFactor)
{
    Zim32u sum = 0;
    for (Zim32u s : squares)
        sum -= shiftLane(s, -(scaleFactor + 1));
    return sum;
}

// ---- Scores from sums

inline Zim32f sumOf(const Terms& terms)
{
    Zim32f sum = 0;
    for (Zim32f t : terms)
        sum += t;
    return sum;
}

inline Zim32f power(int exponent)
{
    return std::ldexp(1.0f, exponent);
}

inline Zim32s truncated(Zim32f v)
{
    return v >= -2147483648.0f && v < 2147483648.0f ? static_cast<Zim32s>(v) : INT_MIN;
}

inline Zim32s roundedSaturated(Zim32f v)
{
    if (v >= 2147483648.0f)
        return INT_MAX;
    return v <= -2147483648.0f ? INT_MIN : static_cast<Zim32s>(std::nearbyint(v));
}

inline Zim32s wrapped(Zim32s gconst, Zim32u sum)
{
    return static_cast<Zim32s>(static_cast<Zim32u>(gconst) + sum);
}

inline Zim32f floatScore(const Terms& terms, Zim32f gconst, int factor)
{
    return gconst - sumOf(terms) * power(-(factor + 1));
}

// A float score as the type wants it: truncated for integers.
template <class Score>
Score delivered(const Terms& terms, Score gconst, int factor)
{
    const Zim32f score = floatScore(terms, static_cast<Zim32f>(gconst), factor);
    if constexpr (std::is_integral_v<Score>)
        return truncated(score);
    else
        return score;
}

// The same of an integer sum.
template <class Score>
Score delivered(Zim32u sum, Score gconst)
{
    if constexpr (std::is_integral_v<Score>)
        return wrapped(gconst, sum);
    else
        return toFloats(sum) + gconst;
}

enum class Arithmetic { plain, idVar, low, idVarLow };

constexpr bool hasVariance(Arithmetic arithmetic)
{
    return arithmetic == Arithmetic::plain || arithmetic == Arithmetic::low;
}

// A row of a block: one of a pair, or the last of an odd number.
template <class Score>
Score blockScore(Arithmetic arithmetic, const Frame& f, Score gconst, int factor, bool oddLast)
{
    switch (arithmetic) {
        case Arithmetic::plain:
            return delivered(plainTerms(f), gconst, factor);
        case Arithmetic::idVar:
            return delivered(asFloats(pairSquares(f)), gconst, factor);
        case Arithmetic::low:
            return factor < 0 ? delivered(plainTerms(f), gconst, factor)
                              : delivered(lowSum(f, factor, oddLast ? Place::oddLast : Place::paired), gconst);
        default:
            const auto squares = oddLast ? pairSquares(f) : allPairSquares(f);
            if constexpr (std::is_integral_v<Score>)
                return wrapped(gconst, shiftedSum(squares, factor));
            else
                return delivered(asFloats(squares), gconst, factor);
    }
}

// A vector by itself.
template <class Score>
Score singleScore(Arithmetic arithmetic, const Frame& f, Score gconst, int factor)
{
    constexpr bool isInteger = std::is_integral_v<Score>;
    switch (arithmetic) {
        case Arithmetic::low:
            return factor < 0 ? delivered(plainTerms(f), gconst, factor)
                              : delivered(lowSum(f, factor, Place::single), gconst);
        case Arithmetic::idVarLow:
            if constexpr (isInteger)
                return wrapped(gconst, lowIdVarSingleSum(f, factor));
            else
                return delivered(asFloats(allPairSquares(f)), gconst, factor);
        case Arithmetic::idVar:
            if constexpr (!isInteger) {
                long long sum = 0;
                for (int j = 0; j < f.width(); ++j)
                    sum += static_cast<long long>(f.saturated(j)) * f.saturated(j);
                return static_cast<Zim32f>(gconst - std::ldexp(static_cast<long double>(sum), -(factor + 1)));
            }
            [[fallthrough]];
        default:
            const Zim32f score = floatScore(plainTerms(f), static_cast<Zim32f>(gconst), factor);
            if constexpr (isInteger)
                return roundedSaturated(score);
            else
                return score;
    }
}

// ---- Data. A block of frames, and a model.

struct Block {
    int height, width;
    Shorts frames, mean, invVar;

    Frame frame(int r) const
    {
        const auto first = frames.begin() + static_cast<std::ptrdiff_t>(r) * width;
        return {Shorts(first, first + width), mean, invVar};
    }
};

// Every float sum of it is exact.
inline Block smallBlock(Random& random, int height, int width)
{
    const auto w = static_cast<std::size_t>(width);
    Block block{height, width, random.vector<Zim16s>(w * height, -60, 60), random.vector<Zim16s>(w, -60, 60),
                random.vector<Zim16s>(w, -20, 20)};
    return block;
}

inline Block anyBlock(Random& random, int height, int width)
{
    const auto w = static_cast<std::size_t>(width);
    return {height, width, random.any<Zim16s>(w * height), random.any<Zim16s>(w), random.any<Zim16s>(w)};
}

// Differences of all sizes in one or two neighbouring places of each frame, and nothing elsewhere.
inline Block sparseBlock(Random& random, int height, int width, int place)
{
    Block block = anyBlock(random, height, width);
    for (int r = 0; r < height; ++r)
        for (int j = 0; j < width; ++j)
            if (j != place && j != (place ^ 1))
                block.frames[r * width + j] = block.mean[j];
    const Zim16s extremes[] = {-32768, 32767};
    for (int j : {place, place ^ 1})
        if (j < width && random.between(0, 2) != 0) {
            block.mean[j] = extremes[random.between(0, 1)];
            for (int r = 0; r < height; ++r)
                block.frames[r * width + j] = random.between(0, 1) != 0
                                                  ? extremes[random.between(0, 1)]
                                                  : static_cast<Zim16s>(random.between(-9000, 9000));
        }
    return block;
}

}  // namespace zimsr::test
