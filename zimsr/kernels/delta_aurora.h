// Dynamic features of the distributed front end: 13 statics from 12 cepstra, C0 and the log energy, and two windows of
// nine taps, both on the statics (ETSI ES 202 050).
#pragma once

#include <type_traits>

#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/delta.h"

namespace zimsr::delta {

namespace aurora {
inline constexpr int srcWidth = 14;
inline constexpr int cepstra = 12;
inline constexpr int width = 13;
inline constexpr int radius = 4;
inline constexpr int taps = 2 * radius + 1;
inline constexpr int context = contextDepth(radius, radius);
}  // namespace aurora

// The taps one by one from the left, in single precision.
template <class V>
ZIM_INLINE V tapSum(const V* x, const Zim32f (&weights)[aurora::taps])
{
    V sum = splat<V>(0);
#pragma GCC unroll 16
    for (int k = 0; k < aurora::taps; ++k)
        sum += x[k - aurora::radius] * splat<V>(weights[k]);
    return sum;
}

struct AuroraDelta {
    static constexpr int radius = aurora::radius;
    static constexpr Zim32f weights[] = {-1.0f, -0.75f, -0.5f, -0.25f, -0.0f, 0.25f, 0.5f, 0.75f, 1.0f};

    template <int N>
    static ZIM_INLINE Vec<Zim32f, N> sum(const Vec<Zim32f, N>* x)
    {
        return tapSum(x, weights);
    }

    // Four times the weights.
    template <int N>
    static ZIM_INLINE Unpacked<N> sum(const Exact<N>* x)
    {
        return (weightedDifference(1, x[1], x[-1]) + weightedDifference(2, x[2], x[-2])) +
               (weightedDifference(3, x[3], x[-3]) + weightedDifference(4, x[4], x[-4]));
    }
};

struct AuroraDeltaDelta {
    static constexpr int radius = aurora::radius;
    static constexpr Zim32f weights[] = {1.0f,       0.25f,      -0.285714f, -0.607143f, -0.714286f,
                                         -0.607143f, -0.285714f, 0.25f,      1.0f};

    template <class V>
    static ZIM_INLINE V sum(const V* x)
    {
        return tapSum(x, weights);
    }
};

// 16-bit elements taken into single precision; products truncated to integers and shifted right.
struct TruncatingRule {
    using Element = Zim16s;
    static constexpr int lanes = S8::lanes;

    int right;

    ZIM_INLINE F8 hold(S8 stored) const { return toFloat(widen(stored)); }

    ZIM_INLINE S8 deliver(F8 sum, S8 factor) const
    {
        const F8 product = toFloat(widen(factor)) * sum;
        // From 2^31 on a product is an integer with more than 8 zeros behind it.
        const I8 small = toIntTruncated(product) >> std::min(right, 31);
        const I8 large = toIntTruncated(product * splat<F8>(0x1p-8f)) >> std::clamp(right - 8, 0, 31);
        const F8 limit = splat<F8>(0x1p31f);
        return narrowSaturated(select((product < limit) & (product >= -limit), small, large));
    }
};

// Static column 12.
template <class T>
Zim32f combinedEnergy(const T* row)
{
    return static_cast<Zim32f>(row[12]) * 0.6f / 23.0f + static_cast<Zim32f>(row[13]) * 0.4f;
}

// Statics by staticRule, but column 12 by energyRule, then both windows on them.
template <class T, class StaticRule, class EnergyRule, class DeltaRule, class DeltaDeltaRule, class Scaling>
void appendAurora(const Stream<T>& stream, const StaticRule& staticRule, const EnergyRule& energyRule,
                  const DeltaRule& deltaRule, const DeltaDeltaRule& deltaDeltaRule, Scaling scaling)
{
    constexpr std::integral_constant<int, aurora::width> width;
    T* const x = stream.dst;
    T* const d = x + width;
    T* const a = d + width;
    streamRows(
        stream, aurora::context,
        [&](auto in, auto out, RowIndex height) {
            const auto factors = scaling.statics();
            writeStatics(staticRule, in, out, aurora::cepstra, factors, height);
            for (RowIndex r = 0; r < height; ++r)
                out[r][aurora::cepstra] = energyRule(combinedEnergy(in[r]), factors.of(aurora::cepstra));
        },
        Stage{aurora::radius,
              [&](RowRange rows, RowIndex last) {
                  runWindow<AuroraDelta>(deltaRule, x, d, stream.dstStep, width, scaling.deltas(1, width), rows, last);
              }},
        Stage{aurora::radius, [&](RowRange rows, RowIndex last) {
                  runWindow<AuroraDeltaDelta>(deltaDeltaRule, x, a, stream.dstStep, width, scaling.deltas(2, width),
                                              rows, last);
              }});
}

template <class Scaling>
void appendAurora(const Stream<Zim32f>& stream, Scaling scaling)
{
    const FloatRule rule;
    const auto energyRule = [](Zim32f energy, Zim32f factor) { return energy * factor; };
    appendAurora(stream, rule, energyRule, rule, rule, scaling);
}

// All factors 1.
struct ByOne {
    Uniform<Zim16s> statics() const { return {1}; }
    Uniform<Zim16s> deltas(int, int) const { return {1}; }
};

// Every shift is to the right: a count below 0 is 0. The sum of a delta is four times too large.
template <class Scaling>
void appendAurora(const Stream<Zim16s>& stream, Scaling scaling, int scaleFactor)
{
    const int limited = std::clamp(scaleFactor, -2, 60);
    const int right = std::max(limited, 0);
    const auto energyRule = [right](Zim32f energy, Zim16s factor) {
        return saturate<Zim16s>(static_cast<Zim32s>(static_cast<Zim32f>(factor) * energy) >> std::min(right, 31));
    };
    appendAurora(stream, SaturatingRule(right), energyRule, WideRule(limited + 2), TruncatingRule{right}, scaling);
}

}  // namespace zimsr::delta
