// Transforms whose half-length complex signal fits the buffer: order 5 to 17, and order 4 in registers.
//
// With n = n1 C + n2 and k = k1 + L k2, L lanes and C = M/L rows, the complex transform is
//
//     Z[k] = sum over n2 of W_C^(n2 k2) [ W_M^(n2 k1) sum over n1 of W_L^(n1 k1) z[n1 C + n2] ]
//
// (D. H. Bailey 1990): butterflies across n1 with n2 in the lanes, the twiddles W_M, a transposition that brings k1
// into the lanes, and a transform down the rows n2. Row k2 then holds the bins L k2 to L k2 + L - 1. The inverse runs
// the same steps backwards, with real and imaginary parts exchanged.
#pragma once

#include <cstring>

#include "base/kernels/fft_recombine.h"
#include "base/kernels/fft_rows.h"

namespace zimsr::fft {

struct BufferedShape {
    explicit constexpr BufferedShape(int order)
        : log2Lanes(order <= firstTabledOrder ? 0
                    : order <= 6              ? 2
                                              : 3),
          log2Rows(order - 1 - log2Lanes)
    {
    }
    constexpr std::size_t rows() const { return std::size_t{1} << log2Rows; }
    constexpr std::size_t bins() const { return rows() << log2Lanes; }
    // The twiddles W_M come first in the core's table, then those of the rows.
    constexpr std::size_t stepFloats() const { return 2 * (bins() - rows()); }

    int log2Lanes, log2Rows;
};

// The L - 1 twiddles W_M^(n2 k1), k1 = 1 .. L - 1, for the n2 in the lanes.
template <class V>
inline constexpr std::size_t stepTwiddles = (lanesOf<V> - 1) * rowFloats<V>;

template <class V>
ZIM_INLINE void multiplyByStep(Complex<V>* z, const float* twiddles)
{
#pragma GCC unroll 8
    for (std::size_t k1 = 1; k1 < lanesOf<V>; ++k1)
        z[k1] = z[k1] * loadParts<V>(twiddles + (k1 - 1) * rowFloats<V>);
}

// Rows n2, ..., n2 + L - 1 from the signal's columns, and the columns back from the rows.
template <class V>
ZIM_INLINE void rowsFromColumns(const float* src, std::size_t rowCount, std::size_t n2, const float* twiddles,
                                Complex<V>* z)
{
    constexpr std::size_t lanes = lanesOf<V>;
#pragma GCC unroll 8
    for (std::size_t n1 = 0; n1 < lanes; ++n1)
        z[n1] = loadInterleaved<V>(src + 2 * (n1 * rowCount + n2));
    butterfly<lanes>(z);
    multiplyByStep(z, twiddles + n2 / lanes * stepTwiddles<V>);
    transpose(z);
}

template <class V>
ZIM_INLINE void columnsFromRows(Complex<V>* z, float* dst, std::size_t rowCount, std::size_t n2, const float* twiddles,
                                float factor)
{
    constexpr std::size_t lanes = lanesOf<V>;
    transpose(z);
    multiplyByStep(z, twiddles + n2 / lanes * stepTwiddles<V>);
    butterfly<lanes>(z);
#pragma GCC unroll 8
    for (std::size_t n1 = 0; n1 < lanes; ++n1)
        storeInterleaved(dst + 2 * (n1 * rowCount + n2), scaled(exchanged(z[n1]), factor));
}

// The bins from the rows of Z, rowAt(k2). They are stored in vectors that begin at multiples of L; the mirrored ones
// draw on two steps for that. Bin M, with which the elements behind the signal's length are written, comes last: a
// buffer may begin there.
template <SpectrumFormat format, class V, class RowAt>
ZIM_INLINE void binsFromRows(RowAt rowAt, float* dst, std::size_t rowCount, const float* realRec, float factor)
{
    constexpr std::size_t lanes = lanesOf<V>;
    const std::size_t binCount = rowCount * lanes;
    float* bins = dst + firstBinAt<format>;

    Complex<V> high = scaled(rowAt(rowCount / 2), factor);
    Complex<V> xAbove = {high.re, -high.im};
#pragma GCC unroll 4
    for (std::size_t k2 = rowCount / 2 - 1; k2 > 0; --k2) {
        const std::size_t k = k2 * lanes;
        const Complex<V> next = scaled(rowAt(rowCount - k2), factor);
        const BinPair<V> x =
            zims_cRealRecombine_32f(scaled(rowAt(k2), factor), mirrored(high, next), loadParts<V>(realRec + 2 * k));
        storeInterleaved(bins + 2 * k, x.low);
        storeInterleaved(bins + 2 * (binCount - k - lanes), mirrored(x.high, xAbove));
        high = next;
        xAbove = x.high;
    }
    const Complex<V> first = scaled(rowAt(0), factor);
    BinPair<V> x = zims_cRealRecombine_32f(first, mirrored(high, first), loadParts<V>(realRec));
    // Bins 0 and M in full, so that infinity meets no zero.
    const float bin0 = first.re[0] + first.im[0], binM = first.re[0] - first.im[0];
    storeInterleaved(bins + 2 * (binCount - lanes), mirrored(x.high, xAbove));
    if constexpr (format == SpectrumFormat::ccs) {
        x.low.re.set(0, bin0);
        x.low.im.set(0, 0);
        storeInterleaved(bins, x.low);
        bins[2 * binCount + 1] = 0;
    } else {
        x.low.im.set(0, bin0);
        storeInterleavedButFirst(bins, x.low);
    }
    bins[2 * binCount] = binM;
}

// The rows of 2 Z with its parts exchanged, to putRow(k2, row), from the bins in Pack form.
template <class V, class PutRow>
ZIM_INLINE void rowsFromBins(const float* src, PutRow putRow, std::size_t rowCount, const float* ccsRec)
{
    constexpr std::size_t lanes = lanesOf<V>;
    const std::size_t binCount = rowCount * lanes;
    const float* bins = src + firstBinAt<SpectrumFormat::pack>;
    const float bin0 = src[0], binM = bins[2 * binCount];

    Complex<V> low = loadInterleavedButFirst<V>(bins);
    low.re.set(0, bin0);
    low.im.set(0, 0);
    Complex<V> above = loadInterleaved<V>(bins + 2 * (binCount - lanes));
    BinPair<V> z =
        zims_cCcsRecombine_32f(low, mirrored(above, Complex<V>{splat<V>(binM), splat<V>(0)}), loadParts<V>(ccsRec));
    z.low.re.set(0, bin0 + binM);
    z.low.im.set(0, bin0 - binM);
    putRow(0, exchanged(z.low));
    Complex<V> high = z.high;
#pragma GCC unroll 4
    for (std::size_t k2 = 1; k2 < rowCount / 2; ++k2) {
        const std::size_t k = k2 * lanes;
        const Complex<V> below = loadInterleaved<V>(bins + 2 * (binCount - k - lanes));
        z = zims_cCcsRecombine_32f(loadInterleaved<V>(bins + 2 * k), mirrored(below, above),
                                   loadParts<V>(ccsRec + 2 * k));
        putRow(k2, exchanged(z.low));
        putRow(rowCount - k2, exchanged(mirrored(high, z.high)));
        high = z.high;
        above = below;
    }
    // The middle bin.
    const Complex<V> middle = {above.re + above.re, -(above.im + above.im)};
    putRow(rowCount / 2, exchanged(mirrored(high, middle)));
}

// ---- Order 8 and above: the rows in the buffer

template <SpectrumFormat format>
inline void forwardBuffered(const float* src, float* dst, const ZimsFFTPlan_R_32f& plan, float* rows)
{
    using V = F8;
    const BufferedShape shape(plan.order);
    for (std::size_t n2 = 0; n2 < shape.rows(); n2 += lanesOf<V>) {
        Complex<V> z[lanesOf<V>];
        rowsFromColumns(src, shape.rows(), n2, plan.twiddleL1, z);
#pragma GCC unroll 8
        for (std::size_t i = 0; i < lanesOf<V>; ++i)
            storeParts(rows + plan.bitRevTable[n2 + i] * rowFloats<V>, z[i]);
    }
    transformRows<V>(rows, shape.log2Rows, plan.twiddleL1 + shape.stepFloats());
    binsFromRows<format, V>([=](std::size_t k2) { return loadParts<V>(rows + k2 * rowFloats<V>); }, dst, shape.rows(),
                            plan.realRecTable, plan.scaleForward ? plan.factor : 1);
}

inline void inverseBuffered(const float* src, float* dst, const ZimsFFTPlan_R_32f& plan, float* rows)
{
    using V = F8;
    const BufferedShape shape(plan.order);
    const Zim32u* reversedRow = plan.bitRevTable;
    const float factor = plan.scaleInverse ? plan.factor : 1;
    rowsFromBins<V>(
        src, [=](std::size_t k2, Complex<V> z) { storeParts(rows + reversedRow[k2] * rowFloats<V>, z); }, shape.rows(),
        plan.ccsRecTable);
    transformRows<V>(rows, shape.log2Rows, plan.twiddleL1 + shape.stepFloats());
    for (std::size_t n2 = 0; n2 < shape.rows(); n2 += lanesOf<V>) {
        Complex<V> z[lanesOf<V>];
#pragma GCC unroll 8
        for (std::size_t i = 0; i < lanesOf<V>; ++i)
            z[i] = loadParts<V>(rows + (n2 + i) * rowFloats<V>);
        columnsFromRows(z, dst, shape.rows(), n2, plan.twiddleL1, factor);
    }
}

// ---- Orders 5 to 7: the rows, 4 or 8 of them, in registers

template <SpectrumFormat format, class V, std::size_t rowCount>
inline void forwardInRegisters(const float* src, float* dst, const ZimsFFTPlan_R_32f& plan)
{
    Complex<V> z[rowCount];
#pragma GCC unroll 2
    for (std::size_t n2 = 0; n2 < rowCount; n2 += lanesOf<V>)
        rowsFromColumns(src, rowCount, n2, plan.twiddleL1, z + n2);
    butterfly<rowCount>(z);
    binsFromRows<format, V>([&](std::size_t k2) { return z[k2]; }, dst, rowCount, plan.realRecTable,
                            plan.scaleForward ? plan.factor : 1);
}

template <class V, std::size_t rowCount>
inline void inverseInRegisters(const float* src, float* dst, const ZimsFFTPlan_R_32f& plan)
{
    Complex<V> z[rowCount];
    rowsFromBins<V>(
        src, [&](std::size_t k2, Complex<V> row) { z[k2] = row; }, rowCount, plan.ccsRecTable);
    butterfly<rowCount>(z);
#pragma GCC unroll 2
    for (std::size_t n2 = 0; n2 < rowCount; n2 += lanesOf<V>)
        columnsFromRows(z + n2, dst, rowCount, n2, plan.twiddleL1, plan.scaleInverse ? plan.factor : 1);
}

// ---- Order 4: eight complex numbers, without twiddles of their own

template <SpectrumFormat format>
inline void forward16(const float* src, float* dst, const ZimsFFTPlan_R_32f& plan)
{
    constexpr std::size_t binCount = 8;
    const float factor = plan.scaleForward ? plan.factor : 1;
    Complex<float> z[binCount];
    for (std::size_t n = 0; n < binCount; ++n)
        z[n] = loadInterleaved<float>(src + 2 * n);
    butterfly8(z);
    for (Complex<float>& number : z)
        number = scaled(number, factor);
    float* bins = dst + firstBinAt<format>;
    for (std::size_t k = 1; k < binCount / 2; ++k) {
        const BinPair<float> x =
            zims_cRealRecombine_32f(z[k], z[binCount - k], loadParts<float>(plan.realRecTable + 2 * k));
        storeInterleaved(bins + 2 * k, x.low);
        storeInterleaved(bins + 2 * (binCount - k), x.high);
    }
    storeInterleaved(bins + binCount, Complex<float>{z[binCount / 2].re, -z[binCount / 2].im});
    dst[0] = z[0].re + z[0].im;
    bins[2 * binCount] = z[0].re - z[0].im;
    if (format == SpectrumFormat::ccs)
        dst[1] = bins[2 * binCount + 1] = 0;
}

inline void inverse16(const float* src, float* dst, const ZimsFFTPlan_R_32f& plan)
{
    constexpr std::size_t binCount = 8;
    const float factor = plan.scaleInverse ? plan.factor : 1;
    const float* bins = src + firstBinAt<SpectrumFormat::pack>;
    Complex<float> z[binCount];
    z[0] = {src[0] - bins[2 * binCount], src[0] + bins[2 * binCount]};
    z[binCount / 2] = {-2 * bins[binCount + 1], 2 * bins[binCount]};
    for (std::size_t k = 1; k < binCount / 2; ++k) {
        const BinPair<float> pair = zims_cCcsRecombine_32f(loadInterleaved<float>(bins + 2 * k),
                                                           loadInterleaved<float>(bins + 2 * (binCount - k)),
                                                           loadParts<float>(plan.ccsRecTable + 2 * k));
        z[k] = exchanged(pair.low);
        z[binCount - k] = exchanged(pair.high);
    }
    butterfly8(z);
    for (std::size_t n = 0; n < binCount; ++n)
        storeInterleaved(dst + 2 * n, scaled(exchanged(z[n]), factor));
}

}  // namespace zimsr::fft
