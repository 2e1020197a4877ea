// The all-integer mel filter bank: where its tables lie in the caller's block, its edges by a logarithm and an
// exponential in fixed point, its evaluation. No header below this one may need a floating-point register.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>
#include <type_traits>

#include <zimsr/melfbank_fixed.h>

#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"
#include "zimsr/kernels/melfbank_shape.h"

// The head of the block. Places of tables are told in bytes from its start, so that they fit 32 bits at every width of
// a pointer.
struct ZimsFBankState_32s {
    Zim32s centers;    // edge bins
    Zim32s lowerRows;  // table of the places of rows
    Zim32s upperRows;
    Zim32s mode;
    Zim32s nFilter;
    Zim32s nBins;
};

namespace zimsr::fixedbank {

// ---- The block

// What lies so many bytes behind the start of a block. Integer is const where the block is only read.
template <class Integer, class State>
Integer* placeIn(State* state, Zim32s place)
{
    using Byte = std::conditional_t<std::is_const_v<Integer>, const char, char>;
    return reinterpret_cast<Integer*>(reinterpret_cast<Byte*>(state) + place);
}

// The bank as its slopes and its evaluation see it.
template <class Integer, class State>
struct View {
    using Weight = Zim32s;

    struct RowTable {
        State* state;
        const Zim32s* places;

        Integer* operator[](std::ptrdiff_t i) const { return placeIn<Integer>(state, places[i]); }
    };

    Integer* centers;
    RowTable lowerRows, upperRows;

    explicit View(State* state)
        : centers(placeIn<Integer>(state, state->centers)),
          lowerRows{state, placeIn<const Zim32s>(static_cast<const State*>(state), state->lowerRows)},
          upperRows{state, placeIn<const Zim32s>(static_cast<const State*>(state), state->upperRows)}
    {
    }
};

using WritableBank = View<Zim32s, ZimsFBankState_32s>;
using Bank = View<const Zim32s, const ZimsFBankState_32s>;

// Bytes of a table with an entry of 32 bits for each edge.
constexpr Zim32s tableBytes(int nFilter)
{
    return 4 * nFilter + 8;
}

constexpr Zim32s blockBytes(int nFilter, int halfLen)
{
    const Zim32s r = tableBytes(nFilter);
    return 4 * nFilter + 96 + 9 * r + r * (halfLen + 9) + r * halfLen + 64;
}

// A table of rows at a place in the block, the rows behind it, all zero.
inline void layRows(ZimsFBankState_32s* state, Zim32s table, Zim32s firstRow, int count, int halfLen)
{
    const Zim32s rowBytes = 4 * halfLen;
    for (int i = 0; i < count; ++i)
        placeIn<Zim32s>(state, table)[i] = firstRow + rowBytes * i;
    std::memset(placeIn<char>(state, firstRow), 0,
                static_cast<std::size_t>(count) * static_cast<std::size_t>(rowBytes));
}

// Tables and rows start on boundaries of 32 bytes, wherever the block does.
inline void layTables(ZimsFBankState_32s* state, int nFilter, int halfLen, int mode)
{
    const Zim32s past = static_cast<Zim32s>(ZIM_UINT_PTR(state) % 32), r = tableBytes(nFilter);
    const auto onBoundary = [past](Zim32s place) { return (past + place + 31) / 32 * 32 - past; };
    state->centers = onBoundary(sizeof *state);
    state->lowerRows = onBoundary(state->centers + r);
    state->upperRows = onBoundary(state->lowerRows + r * (halfLen + 9));
    state->mode = mode;
    state->nFilter = nFilter;
    state->nBins = halfLen + 1;
    layRows(state, state->lowerRows, onBoundary(state->lowerRows + r), nFilter + 2, halfLen);
    layRows(state, state->upperRows, onBoundary(state->upperRows + r), nFilter + 2, halfLen);
}

// ---- Logarithm and exponential

inline constexpr Zim64s ln2Q31 = 1488522236;
inline constexpr Zim64s log2eQ31 = 0xB8AA3B29;

// *result = ln(value); both have so many fraction bits. The fraction of the binary logarithm is found bit by bit.
inline ZimStatus ownNatLog(Zim64s value, Zim64s* result, int fractionBits)
{
    if (value < 1)
        return zimStsBadArgument;
    int exponent = 0;
    for (Zim64s rest = value; rest >= 2; rest >>= 1)
        ++exponent;
    Zim64s mantissa = exponent > 29 ? value >> (exponent - 29) : value << (29 - exponent);
    Zim64s fraction = 0;
    for (int bit = 0; bit < 31; ++bit) {
        mantissa = (mantissa * mantissa) >> 29;
        fraction <<= 1;
        if (mantissa >= 0x40000000) {
            mantissa >>= 1;
            ++fraction;
        }
    }
    *result = ((exponent - fractionBits) * ln2Q31 + ((fraction * ln2Q31) >> 31)) >> (31 - fractionBits);
    return zimStsOk;
}

// ln(1 + 2^-(t+1)) in Q31, to nearest: twice the inverse hyperbolic tangent of z = 2^-(t+1) / (2 + 2^-(t+1)).
constexpr std::array<Zim32s, 32> logarithmsOfFactors()
{
    std::array<Zim32s, 32> table{};
    double power = 1;
    for (Zim32s& entry : table) {
        power /= 2;
        const double z = power / (2 + power);
        double sum = 0, term = z;
        for (int k = 1; k < 60; k += 2, term *= z * z)
            sum += term / k;
        entry = static_cast<Zim32s>(2 * sum * 2147483648.0 + 0.5);
    }
    return table;
}

inline constexpr std::array<Zim32s, 32> _ExpTable1 = logarithmsOfFactors();

// exp(x), x with so many fraction bits; a format of -22 gives Q22, and so on. What does not fit 31 bits is 0x7FFFFFFF.
// The remainder of x never falls below 0, so that factors 1 - 2^-(t+1) are not needed.
inline Zim64s ownFixedExp(Zim64s x, int fractionBits, int format)
{
    constexpr Zim64s most = std::numeric_limits<Zim32s>::max();
    const Zim64s y = (x * log2eQ31) >> fractionBits;
    const Zim64s n = y >> 31;
    Zim64s r = ((y - n * (Zim64s{1} << 31)) * ln2Q31) >> 31;
    Zim64s product = Zim64s{1} << 31;
    for (int t = 0; t < 32; ++t)
        if (r > _ExpTable1[static_cast<unsigned>(t)]) {
            r -= _ExpTable1[static_cast<unsigned>(t)];
            product += product >> (t + 1);
        }
    const Zim64s right = format - n + 31;
    if (right < 0)
        return most;
    return std::min(product >> std::min<Zim64s>(right, 63), most);
}

// ---- Edges

// floor(a * b * 2^-22) for numbers at or above 0 whose product may need more than 64 bits.
constexpr Zim64s multiplyQ22(Zim64s a, Zim64s b)
{
    constexpr Zim64s one = Zim64s{1} << 22;
    return a * (b / one) + a * (b % one) / one;
}

// The bins of frequencies evenly spaced in mel. All values are Q22.
class Edges {
public:
    Edges(int fftLen, int sampleRate, int lowFreq, int highFreq, int nFilter, Zim32s melMul, Zim32s melDiv)
        : steps_(nFilter + 1),
          melMul_(Zim64s{melMul} << 7),
          melLow_(mel(lowFreq, melMul, melDiv)),
          span_(mel(highFreq, melMul, melDiv) - melLow_),
          binsPerDiv_(multiplyQ22(Zim64s{melDiv} << 7, (Zim64s{fftLen} << 22) / sampleRate))
    {
    }

    Zim64s operator[](int i) const
    {
        const Zim64s m = (melLow_ * steps_ + i * span_) / steps_;
        const Zim64s e = ownFixedExp((m << 22) / melMul_, 22, -22) - 0x400000;
        const Zim64s bin = multiplyQ22(e, binsPerDiv_);
        return (bin >> 22) + ((bin >> 21) & 1);
    }

private:
    static Zim64s mel(int frequency, Zim32s melMul, Zim32s melDiv)
    {
        const Zim64s div = Zim64s{melDiv} << 7;
        Zim64s ofSum = 0, ofDiv = 0;
        ownNatLog((Zim64s{frequency} << 22) + div, &ofSum, 22);
        ownNatLog(div, &ofDiv, 22);
        return ((ofSum - ofDiv) * melMul) >> 15;
    }

    Zim64s steps_, melMul_, melLow_, span_, binsPerDiv_;
};

// ---- Weights

struct Q30Weights {
    using State = WritableBank;

    static Zim64s ratio(Zim64s numerator, Zim64s denominator) { return (numerator << 30) / denominator; }
};

inline void buildFilters(ZimsFBankState_32s* state, const Edges& edges)
{
    const WritableBank bank(state);
    for (int i = 0; i <= state->nFilter + 1; ++i)
        bank.centers[i] = static_cast<Zim32s>(edges[i]);
    for (int i = 1; i <= state->nFilter; ++i)
        binSlopes<Q30Weights>(bank, i);
}

// ---- Evaluation

// sum + the products of count weights and bins.
inline Zim64s addProducts(Zim64s sum, const Zim32s* weights, const Zim32s* bins, std::ptrdiff_t count)
{
#pragma GCC unroll 4
    for (std::ptrdiff_t j = 0; j < count; ++j) {
        const Zim64s product = (Zim64s{weights[j]} * bins[j]) >> 8;
        if (__builtin_add_overflow(sum, product, &sum)) [[unlikely]]
            sum = product < 0 ? std::numeric_limits<Zim64s>::min() : std::numeric_limits<Zim64s>::max();
    }
    return sum;
}

// sum * 2^-scaleFactor, from the products' Q22 to an integer.
inline Zim32s scaleSum(Zim64s sum, int scaleFactor)
{
    if (scaleFactor >= 0) {
        sum >>= scaleFactor;
    } else {
        const Zim64s limit = Zim64s{1} << (63 + scaleFactor);
        if (sum >= limit)
            sum = std::numeric_limits<Zim64s>::max();
        else
            sum = sum < -limit ? std::numeric_limits<Zim64s>::min() : sum * (Zim64s{1} << -scaleFactor);
    }
    return saturate<Zim32s>((sum >> 22) + ((sum >> 21) & 1));
}

inline void evaluate(const Zim32s* spectrum, Zim32s* dst, const Bank& bank, int nFilter, int scaleFactor)
{
    const Zim32s* c = bank.centers;
    for (int i = 1; i <= nFilter; ++i) {
        const Zim64s rising = addProducts(0, bank.lowerRows[i - 1], spectrum + c[i - 1], lowerLength(c, i));
        const Zim64s sum = addProducts(rising, bank.upperRows[i - 1], spectrum + c[i] + 1, upperLength(c, i));
        dst[i - 1] = scaleSum(sum, scaleFactor);
    }
}

}  // namespace zimsr::fixedbank
