// Normalisation of log-energies, which are one column of a feature matrix.
#pragma once

#include <algorithm>
#include <cstddef>
#include <limits>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "base/kernels/extremes.h"
#include "zimcore/frame/scaling.h"

namespace zimsr::energy {

// ---- One column of a matrix, worked on in contiguous blocks

template <class T>
struct Column {
    T* first;
    std::ptrdiff_t step;
    std::size_t height;

    void gather(std::size_t from, std::size_t count, T* block) const
    {
        forEach(from, count, [=](T& element, std::size_t i) { block[i] = element; });
    }

    void scatter(const T* block, std::size_t from, std::size_t count) const
    {
        forEach(from, count, [=](T& element, std::size_t i) { element = block[i]; });
    }

    // Calls body(element, 0), body(element, 1), ... for count elements.
    template <class Body>
    ZIM_INLINE void forEach(std::size_t from, std::size_t count, Body body) const
    {
        T* element = first + static_cast<std::ptrdiff_t>(from) * step;
#pragma GCC unroll 4
        for (std::size_t i = 0; i < count; ++i, element += step)
            body(*element, i);
    }
};

// Calls body(block, from, count) for stretches of the column, copied together.
template <class T, class Body>
ZIM_INLINE void forEachBlock(const Column<T>& column, Body body)
{
    constexpr std::size_t blockLength = 256;
    T block[blockLength];
    for (std::size_t from = 0; from < column.height; from += blockLength) {
        const std::size_t count = std::min(blockLength, column.height - from);
        column.gather(from, count, block);
        body(block, from, count);
    }
}

// The greatest energy, or the smallest finite number when there is none above it.
inline Zim32f greatest(const Column<Zim32f>& column)
{
    Zim32f best = -std::numeric_limits<Zim32f>::max();
    if (column.step == 1)
        return std::max(best, extremeValue<Greatest<Zim32f>>(column.first, column.height));
    forEachBlock(column, [&](const Zim32f* block, std::size_t, std::size_t count) {
        best = std::max(best, extremeValue<Greatest<Zim32f>>(block, count));
    });
    return best;
}

inline Zim16s greatest(const Zim16s* energies, std::size_t len)
{
    if (len < 16)
        return *std::max_element(energies, energies + len);
    // The last vector is stepped back.
    S16 best = load<S16>(energies + len - 16);
    for (std::size_t i = 0; i + 16 < len; i += 16)
        best = max(best, load<S16>(energies + i));
    Zim16s lanes[8];
    store(lanes, max(lowHalf(best), highHalf(best)));
    return *std::max_element(lanes, lanes + 8);
}

// ---- Rules: how a vector of energies is normalised

// silFloor decibels below the maximum, in natural logarithms.
inline Zim32f silenceFloor(Zim32f silFloor, Zim32f maxE)
{
    return silFloor * -0.230259f + maxE;
}

struct FloatRule {
    using Element = Zim32f;
    static constexpr int lanes = 8;

    Zim32f target, maxE, floor, scale;

    // A NaN is not below the floor.
    template <class V>
    ZIM_INLINE V operator()(V e) const
    {
        return splat<V>(target) - (splat<V>(maxE) - max(splat<V>(floor), e)) * splat<V>(scale);
    }
};

// 16-bit energies by the float rule, truncated.
struct TruncatingRule {
    using Element = Zim16s;
    static constexpr int lanes = 8;

    FloatRule rule;

    ZIM_INLINE S8 operator()(S8 e) const { return quantise(rule(toFloat(widen(e))), Truncate{}, Zim16s{}); }
};

// 16-bit energies with a scale below 1.001 in Q10.
class FixedRule {
public:
    using Element = Zim16s;
    static constexpr int lanes = 16;

    FixedRule(Zim16s target, Zim16s maxE, Zim32f floor, Zim32f scale)
        : target_(splat<S16>(target)), maxE_(splat<S16>(maxE)), floor_(splat<S16>(roundedFloor(floor)))
    {
        // From here on down every difference but 0 saturates; NaN goes here too.
        constexpr double least = -(1 << 25);
        const Zim32s q10 = static_cast<Zim32s>(std::max(least, 1024.0 * static_cast<double>(scale)));
        whole_ = splat<S16>(static_cast<Zim16s>(q10 >> 10));
        fraction_ = splat<S16>(static_cast<Zim16s>(q10 & 1023));
    }

    // Multiplied by the whole part of the scale and by its fraction apart, the product is rounded down just the same.
    ZIM_INLINE S16 operator()(S16 e) const
    {
        const S16 difference = subtractSaturated(maxE_, max(e, floor_));
        const Unpacked<16> product =
            multiplyUnpacked(difference, whole_) + (multiplyUnpacked(difference, fraction_) >> 10);
        return subtractSaturated(target_, packSaturated(product));
    }

private:
    // Ties go away from zero.
    static Zim16s roundedFloor(Zim32f floor)
    {
        return saturate<Zim16s>(static_cast<Zim32s>(floor < 0 ? floor - 0.5f : floor + 0.5f));
    }

    S16 target_, maxE_, floor_, whole_, fraction_;
};

// ---- All energies of a column

template <class Rule>
void normalise(const Column<typename Rule::Element>& column, const Rule& rule)
{
    if (column.step == 1)
        mapElements<Rule::lanes>(column.first, column.height, rule, column.first);
    else
        forEachBlock(column, [&](auto* block, std::size_t from, std::size_t count) {
            mapElements<Rule::lanes>(block, count, rule, block);
            column.scatter(block, from, count);
        });
}

// The float rule takes fewer steps than it takes to bring energies together and apart again.
inline void normalise(const Column<Zim32f>& column, const FloatRule& rule)
{
    if (column.step == 1)
        mapElements<FloatRule::lanes>(column.first, column.height, rule, column.first);
    else
        column.forEach(0, column.height, [=](Zim32f& e, std::size_t) { e = rule(e); });
}

// By the fixed rule, unless the scale is too large for it.
inline void normalise(const Column<Zim16s>& column, Zim16s silFloor, Zim16s maxE, Zim16s val, Zim32f scale, bool few)
{
    const Zim32f floor = silenceFloor(silFloor, maxE);
    if (few || static_cast<double>(scale) >= 1.001)
        normalise(column, TruncatingRule{{static_cast<Zim32f>(val), static_cast<Zim32f>(maxE), floor, scale}});
    else
        normalise(column, FixedRule(val, maxE, floor, scale));
}

}  // namespace zimsr::energy
