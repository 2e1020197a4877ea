// Tables of the real transform. Every sine and cosine is one of the N/4 + 1 rounded values of the base table.
#pragma once

#include <bit>

#include "base/kernels/fft_buffered.h"
#include "base/kernels/fft_large.h"
#include "zimcore/elementary/elementary.h"

namespace zimsr::fft {

// exp(-2*pi*i*j/N) for every j, from the sines of the first quadrant: base[i] = sin(2*pi*i/N), i = 0 .. N/4.
class UnitRoots {
public:
    UnitRoots(const float* base, int order) : base_(base), log2Quarter_(order - 2) {}

    int order() const { return log2Quarter_ + 2; }

    Complex<float> at(std::size_t j) const
    {
        const std::size_t quarter = std::size_t{1} << log2Quarter_;
        const std::size_t rising = j & (quarter - 1), falling = quarter - rising, quadrant = j >> log2Quarter_;
        const bool odd = quadrant & 1;
        return {signedBy(quadrant + 1, base_[odd ? rising : falling]),
                signedBy(quadrant + 2, base_[odd ? falling : rising])};
    }

private:
    // Negative in the second and third of four.
    static float signedBy(std::size_t quadrant, float value)
    {
        const Zim32u sign = static_cast<Zim32u>(quadrant & 2) << 30;
        return std::bit_cast<float>(std::bit_cast<Zim32u>(value) ^ sign);
    }

    const float* base_;
    int log2Quarter_;
};

// The base table, from sines and cosines of the first half of the quadrant.
inline void zims_createTabTwdBase_32f(float* base, int order)
{
    const std::size_t quarter = std::size_t{1} << (order - 2), half = quarter / 2;
    const double step = 6.283185307179586 / static_cast<double>(4 * quarter);
    for (std::size_t i = 0; i <= half; i += 4) {
        const D4 angle = (laneIndex<D4>() + splat<D4>(static_cast<double>(i))) * splat<D4>(step);
        const auto [sine, cosine] = elementary::sincos(angle);
        const F4 sines = narrow(sine), cosines = narrow(cosine);
        for (std::size_t lane = 0; lane < 4 && i + lane <= half; ++lane) {
            base[quarter - i - lane] = cosines[static_cast<int>(lane)];
            base[i + lane] = sines[static_cast<int>(lane)];
        }
    }
}

inline void zims_createTabBitRevNorm(Zim32u* table, int bits)
{
    table[0] = 0;
    for (int bit = bits - 1, count = 1; bit >= 0; --bit, count *= 2)
        for (int i = 0; i < count; ++i)
            table[count + i] = table[i] + (Zim32u{1} << bit);
}

inline void zims_createTabTwd_L1_32f(float* table, const UnitRoots& roots, int log2Rows)
{
    for (int log2Span = 4; log2Span <= log2Rows; ++log2Span)
        for (std::size_t k = 0; k < std::size_t{1} << (log2Span - 2); ++k)
            for (std::size_t power = 1; power <= 3; ++power, table += 2)
                storeParts(table, roots.at((power * k) << (roots.order() - log2Span)));
}

// Writes a vector of pairs, the first of each and then the second; pairOf takes the number of a pair in the vector.
template <class V, class Pair>
ZIM_INLINE float* putVector(float* table, Pair pairOf)
{
    constexpr int lanes = lanesOf<V>;
    for (int lane = 0; lane < lanes; ++lane) {
        const Complex<float> pair = pairOf(static_cast<std::size_t>(laneOrder<lanes>(lane)));
        table[lane] = pair.re;
        table[lanes + lane] = pair.im;
    }
    return table + 2 * lanes;
}

// The recombinations' pairs of bin k.
struct RealRecPairs {
    const UnitRoots& roots;
    Complex<float> operator()(std::size_t k) const
    {
        const Complex<float> root = roots.at(k);
        return {static_cast<float>(0.5 * static_cast<double>(root.re)),
                static_cast<float>(0.5 + 0.5 * static_cast<double>(root.im))};
    }
};

struct CcsRecPairs {
    const UnitRoots& roots;
    Complex<float> operator()(std::size_t k) const { return roots.at(k); }
};

// ---- Tables of a transform within the buffer, in vectors V: W_M^(n2 k1), those of the rows, and pairs for k = 0 ..
// M/2 - 1

template <class V>
void createTabTwd_Step(float* table, const UnitRoots& roots, std::size_t rowCount)
{
    constexpr std::size_t lanes = lanesOf<V>;
    for (std::size_t n2 = 0; n2 < rowCount; n2 += lanes)
        for (std::size_t k1 = 1; k1 < lanes; ++k1)
            table = putVector<V>(table, [&](std::size_t number) { return roots.at(2 * (n2 + number) * k1); });
}

template <class V, class Pairs>
void createRecombinationTable(float* table, std::size_t binCount, Pairs pairs)
{
    for (std::size_t k = 0; k < binCount / 2; k += lanesOf<V>)
        table = putVector<V>(table, [&](std::size_t number) { return pairs(k + number); });
}

template <class V>
void createBufferedTables(const ZimsFFTPlan_R_32f& plan, const UnitRoots& roots)
{
    const BufferedShape shape(plan.order);
    zims_createTabBitRevNorm(plan.bitRevTable, shape.log2Rows);
    createTabTwd_Step<V>(plan.twiddleL1, roots, shape.rows());
    zims_createTabTwd_L1_32f(plan.twiddleL1 + shape.stepFloats(), roots, shape.log2Rows);
    createRecombinationTable<V>(plan.realRecTable, shape.bins(), RealRecPairs{roots});
    createRecombinationTable<V>(plan.ccsRecTable, shape.bins(), CcsRecPairs{roots});
}

// ---- Tables of a large transform, in the order of use: W_M^(column kappa), W_AB^(n2 km), and pairs with column 0 at
// the end

template <class Pairs>
void createRecombinationTable(float* table, const LargeShape& shape, Pairs pairs)
{
    shape.forEachGroup([&](std::size_t low, std::size_t high) {
        shape.forEachVector(low, high, [&](std::size_t, std::size_t, std::size_t, std::size_t k) {
            table = putVector<F8>(table, [&](std::size_t number) { return pairs(k + number); });
        });
    });
    for (std::size_t r = 0; r < shape.outer() / 2; ++r, table += 2)
        storeParts(table, pairs(r * shape.rowLength()));
}

inline void zims_createTabTwd_Large_32f(const ZimsFFTPlan_R_32f& plan, const UnitRoots& roots, const LargeShape& shape)
{
    zims_createTabBitRevNorm(plan.bitRevTable, shape.log2ColumnRows);
    zims_createTabTwd_L1_32f(plan.twiddleL1, roots, shape.log2ColumnRows);
    createRecombinationTable(plan.realRecTable, shape, RealRecPairs{roots});
    createRecombinationTable(plan.ccsRecTable, shape, CcsRecPairs{roots});
    float* table = plan.blockTwiddles[0];
    for (std::size_t first = 0; first < shape.columns(); first += lanesOf<F8>)
        for (std::size_t kappa = 0; kappa < shape.columnRows(); ++kappa)
            table = putVector<F8>(table, [&](std::size_t number) { return roots.at(2 * (first + number) * kappa); });
    if (!shape.separateMiddle())
        return;
    table = plan.blockTwiddles[1];
    const int spread = roots.order() - shape.log2Outer - shape.log2Middle;
    for (std::size_t n2 = 0; n2 < shape.outer(); ++n2)
        for (std::size_t km = 0; km < shape.middle(); ++km, table += 2)
            storeParts(table, roots.at((n2 * km) << spread));
}

}  // namespace zimsr::fft
