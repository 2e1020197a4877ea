// Transforms beyond the buffer: order 18 to 30, the signal in dst, strips of 8 columns in the buffer.
//
// The half-length complex signal of M = A B A numbers is a block indexed (n1, m, n2). One step transforms its columns,
// over n1 and, while B is at most 2, m; a second one transforms what is left, over n2. The steps change places with a
// transposition of the outer indices: written on the way where src and dst differ, else a pass of its own, in place
// (D. H. Bailey 1990). From order 27 on B is larger, and a pass between the steps transforms over m.
//
// The first step has W_M^(column kappa) as twiddles, kappa = k1 + A km the bin of its own transform. The last one makes
// the bins k = kappa + A B k2 in place, from columns kappa and A B - kappa together.
#pragma once

#include <cstring>

#include "base/kernels/fft_recombine.h"
#include "base/kernels/fft_rows.h"

namespace zimsr::fft {

struct LargeShape {
    static constexpr std::size_t lanes = 8;
    static constexpr std::size_t step = rowFloats<F8>;

    explicit constexpr LargeShape(int order) : LargeShape(order, std::min((order - 1) / 2, 12)) {}
    constexpr LargeShape(int order, int log2OuterSize)
        : log2Outer(log2OuterSize),
          log2Middle(order - 1 - 2 * log2Outer),
          log2ColumnRows(log2Outer + (log2Middle > 1 ? 0 : log2Middle)),
          strips(std::size_t{1} << std::clamp(11 - log2Outer, 0, 2))
    {
    }
    constexpr bool separateMiddle() const { return log2Middle > 1; }
    constexpr std::size_t outer() const { return std::size_t{1} << log2Outer; }
    constexpr std::size_t middle() const { return std::size_t{1} << log2Middle; }
    constexpr std::size_t bins() const { return outer() * middle() * outer(); }
    // The first step: columns of columnRows numbers.
    constexpr std::size_t columnRows() const { return std::size_t{1} << log2ColumnRows; }
    constexpr std::size_t columns() const { return bins() >> log2ColumnRows; }
    // The last step: columns of outer numbers.
    constexpr std::size_t rowLength() const { return outer() * middle(); }
    // The row (n1 or k1, m) of a block in which bin kappa of a column stands.
    constexpr std::size_t rowOf(std::size_t kappa) const
    {
        return separateMiddle() ? kappa : (kappa & (outer() - 1)) << log2Middle | kappa >> log2Outer;
    }

    // The last step takes columns 1, 2, ... and their mirror images ... rowLength - 2, rowLength - 1 in groups: visits
    // the first column on either side.
    template <class Visit>
    void forEachGroup(Visit visit) const
    {
        const std::size_t width = strips * lanes;
        for (std::size_t low = 1, high = rowLength() - width; low < high + width; low += width, high -= width)
            visit(low, high);
    }

    // Visits the vectors of a group that hold bins k, ..., k + 7 below M/2: strip and row, and the strip of the
    // mirrored ones, which stand in row outer - 1 - row. Strips are counted from the low side on.
    template <class Visit>
    void forEachVector(std::size_t low, std::size_t high, Visit visit) const
    {
        for (std::size_t r = 0; r < outer() / 2; ++r)
            for (std::size_t w = 0; w < strips; ++w) {
                const std::size_t mirror = strips - 1 - w;
                visit(w, strips + mirror, r, r * rowLength() + low + w * lanes);
                visit(strips + mirror, w, r, r * rowLength() + high + mirror * lanes);
            }
    }

    int log2Outer, log2Middle, log2ColumnRows;
    // How many strips stand side by side in the buffer: wide rows are kind to the caches, few rows fit more of them.
    std::size_t strips;
};

// One transform at work: its shape, tables and buffer. A block in memory holds interleaved numbers.
class LargeTransform {
    using V = F8;
    static constexpr std::size_t lanes = LargeShape::lanes;
    static constexpr std::size_t step = LargeShape::step;

public:
    LargeTransform(const ZimsFFTPlan_R_32f& plan, const LargeShape& shape, float* buffer)
        : shape_(shape), plan_(plan), buffer_(buffer)
    {
    }

    // Strips of the first step, or twice as many of at least half the length of the last; then a single column.
    static constexpr std::size_t stripFloats(const LargeShape& shape)
    {
        return shape.strips * std::max(shape.columnRows(), 2 * shape.outer()) * step;
    }
    static constexpr std::size_t bufferFloats(const LargeShape& shape)
    {
        return stripFloats(shape) + 2 * shape.outer();
    }

    template <SpectrumFormat format>
    void forward(const float* src, float* dst) const;
    void inverse(const float* src, float* dst) const;

private:
    enum class Write { inPlace, transposed };

    float* columnStrip(std::size_t w) const { return buffer_ + w * shape_.columnRows() * step; }
    float* outerStrip(std::size_t w) const { return buffer_ + w * shape_.outer() * step; }
    float* singleColumn() const { return buffer_ + stripFloats(shape_); }
    BitReversal reversal(int bits) const { return {plan_.bitRevTable, shape_.log2ColumnRows, bits}; }

    template <SpectrumFormat format>
    void transformColumns(const float* src, float* dst, Write write) const;
    template <SpectrumFormat format>
    void transposeStrip(const float* strip, const float* twiddles, float* dst, std::size_t first) const;
    void transformMiddle(float* dst, bool inverse) const;
    void exchangeOuter(float* dst) const;
    template <SpectrumFormat format>
    void binsFromColumns(float* dst) const;
    template <SpectrumFormat format>
    void binsFromColumnZero(float* dst) const;
    void columnsFromBins(const float* bins, float* dst, Write write) const;
    void columnZeroFromBins(const float* bins, Complex<float> ends, float* dst, Write write) const;
    void signalFromColumns(float* dst) const;

    LargeShape shape_;
    const ZimsFFTPlan_R_32f& plan_;
    float* buffer_;
};

// ---- Forward

// The first step.
template <SpectrumFormat format>
inline void LargeTransform::transformColumns(const float* src, float* dst, Write write) const
{
    const std::size_t rowCount = shape_.columnRows(), columns = shape_.columns();
    const BitReversal reversed = reversal(shape_.log2ColumnRows);
    const float* twiddles = plan_.blockTwiddles[0];
    for (std::size_t first = 0; first < columns; first += shape_.strips * lanes) {
        for (std::size_t r = 0; r < rowCount; ++r)
            for (std::size_t w = 0; w < shape_.strips; ++w)
                storeParts(columnStrip(w) + reversed(r) * step,
                           loadInterleaved<V>(src + 2 * (r * columns + first + w * lanes)));
        for (std::size_t w = 0; w < shape_.strips; ++w, twiddles += rowCount * step) {
            const std::size_t column = first + w * lanes;
            transformRows<V>(columnStrip(w), shape_.log2ColumnRows, plan_.twiddleL1);
            if (write == Write::transposed)
                transposeStrip<format>(columnStrip(w), twiddles, dst, column);
            else
                for (std::size_t kappa = 0; kappa < rowCount; ++kappa)
                    storeInterleaved(
                        dst + 2 * (shape_.rowOf(kappa) * columns + column),
                        loadParts<V>(columnStrip(w) + kappa * step) * loadParts<V>(twiddles + kappa * step));
        }
    }
}

// Bin kappa of column n2 goes to row n2. In Pack form the block begins one element in front of dst, as the bins of Pack
// do, and the element that falls out stands at the end, where Pack has bin M.
template <SpectrumFormat format>
inline void LargeTransform::transposeStrip(const float* strip, const float* twiddles, float* dst,
                                           std::size_t first) const
{
    const std::size_t rowCount = shape_.columnRows();
    for (std::size_t kappa = 0; kappa < rowCount; kappa += lanes) {
        Complex<V> z[lanes];
#pragma GCC unroll 8
        for (std::size_t i = 0; i < lanes; ++i)
            z[i] = loadParts<V>(strip + (kappa + i) * step) * loadParts<V>(twiddles + (kappa + i) * step);
        transpose(z);
        float* tile = dst + firstBinAt<format> + 2 * (first * rowCount + kappa);
        if (format == SpectrumFormat::pack && first == 0 && kappa == 0) {
            float numbers[2 * lanes];
            storeInterleaved(numbers, z[0]);
            dst[2 * shape_.bins() - 1] = numbers[0];
            std::memcpy(dst, numbers + 1, sizeof numbers - sizeof(float));
        } else {
            storeInterleaved(tile, z[0]);
        }
#pragma GCC unroll 7
        for (std::size_t i = 1; i < lanes; ++i)
            storeInterleaved(tile + 2 * i * rowCount, z[i]);
    }
}

// Between the steps, the block indexed (n2, m, k1): over m, with the twiddles W_AB^(n2 km) on km.
inline void LargeTransform::transformMiddle(float* dst, bool inverse) const
{
    const std::size_t outer = shape_.outer(), middle = shape_.middle();
    const BitReversal reversed = reversal(shape_.log2Middle);
    const float* twiddles = plan_.blockTwiddles[1];
    for (std::size_t n2 = 0; n2 < outer; ++n2, twiddles += 2 * middle)
        for (std::size_t first = 0; first < outer; first += lanes) {
            const auto place = [=](std::size_t m) { return dst + 2 * ((n2 * middle + m) * outer + first); };
            const auto twiddle = [=](std::size_t km) { return loadForAll<V>(twiddles + 2 * km); };
            for (std::size_t m = 0; m < middle; ++m) {
                const Complex<V> z = loadInterleaved<V>(place(m));
                storeParts(buffer_ + reversed(m) * step, inverse ? z * twiddle(m) : z);
            }
            transformRows<V>(buffer_, shape_.log2Middle, plan_.twiddleL1);
            for (std::size_t m = 0; m < middle; ++m) {
                const Complex<V> z = loadParts<V>(buffer_ + m * step);
                storeInterleaved(place(m), inverse ? z : z * twiddle(m));
            }
        }
}

// In place: the number at (i, m, j) changes places with that at (j, m, i).
inline void LargeTransform::exchangeOuter(float* dst) const
{
    const std::size_t outer = shape_.outer(), middle = shape_.middle();
    for (std::size_t m = 0; m < middle; ++m)
        for (std::size_t i = 0; i < outer; i += lanes)
            for (std::size_t j = 0; j <= i; j += lanes) {
                const auto place = [=](std::size_t n1, std::size_t n2) {
                    return dst + 2 * ((n1 * middle + m) * outer + n2);
                };
                Complex<V> z[lanes], other[lanes];
                for (std::size_t r = 0; r < lanes; ++r) {
                    z[r] = loadInterleaved<V>(place(i + r, j));
                    other[r] = loadInterleaved<V>(place(j + r, i));
                }
                transpose(z);
                transpose(other);
                for (std::size_t r = 0; r < lanes; ++r) {
                    storeInterleaved(place(j + r, i), z[r]);
                    storeInterleaved(place(i + r, j), other[r]);
                }
            }
}

// The last step. Columns kappa and rowLength - kappa hold the mirrored bins.
template <SpectrumFormat format>
inline void LargeTransform::binsFromColumns(float* dst) const
{
    const std::size_t outer = shape_.outer(), rowLength = shape_.rowLength(), strips = shape_.strips;
    const std::size_t lastVector = shape_.bins() - lanes + 1;
    const float factor = plan_.scaleForward ? plan_.factor : 1;
    const BitReversal reversedRow = reversal(shape_.log2Outer);
    float* bins = dst + firstBinAt<format>;
    const float* table = plan_.realRecTable;
    shape_.forEachGroup([&](std::size_t low, std::size_t high) {
        for (std::size_t r = 0; r < outer; ++r)
            for (std::size_t w = 0; w < strips; ++w) {
                const std::size_t place = r * rowLength + w * lanes;
                storeParts(outerStrip(w) + reversedRow(r) * step, loadInterleaved<V>(bins + 2 * (place + low)));
                storeParts(outerStrip(strips + w) + reversedRow(r) * step,
                           loadInterleaved<V>(bins + 2 * (place + high)));
            }
        for (std::size_t w = 0; w < 2 * strips; ++w)
            transformRows<V>(outerStrip(w), shape_.log2Outer, plan_.twiddleL1);
        shape_.forEachVector(low, high, [&](std::size_t strip, std::size_t mirror, std::size_t r, std::size_t k) {
            const Complex<V> z = scaled(loadParts<V>(outerStrip(strip) + r * step), factor);
            const Complex<V> zMirrored = scaled(loadParts<V>(outerStrip(mirror) + (outer - 1 - r) * step), factor);
            const BinPair<V> x = zims_cRealRecombine_32f(z, reversed(zMirrored), loadParts<V>(table));
            storeInterleaved(bins + 2 * k, x.low);
            storeInterleaved(bins + 2 * (lastVector - k), reversed(x.high));
            table += step;
        });
    });
}

// Column 0 mirrors itself, and comes last with the elements behind the signal's length: a buffer may begin there.
template <SpectrumFormat format>
inline void LargeTransform::binsFromColumnZero(float* dst) const
{
    const std::size_t outer = shape_.outer(), rowLength = shape_.rowLength(), binCount = shape_.bins();
    const float factor = plan_.scaleForward ? plan_.factor : 1;
    const BitReversal reversedRow = reversal(shape_.log2Outer);
    const float* table = plan_.realRecTable + shape_.bins();
    float* bins = dst + firstBinAt<format>;
    float* z = singleColumn();
    const Complex<float> packFirst = {dst[2 * binCount - 1], dst[0]};
    for (std::size_t r = 0; r < outer; ++r)
        storeParts(z + 2 * reversedRow(r), r == 0 && format == SpectrumFormat::pack
                                               ? packFirst
                                               : loadInterleaved<float>(bins + 2 * r * rowLength));
    transformRows<float>(z, shape_.log2Outer, plan_.twiddleL1);
    const auto number = [=](std::size_t r) { return scaled(loadParts<float>(z + 2 * r), factor); };
    for (std::size_t r = 1; r < outer / 2; ++r) {
        const std::size_t k = r * rowLength;
        const BinPair<float> x = zims_cRealRecombine_32f(number(r), number(outer - r), loadParts<float>(table + 2 * r));
        storeInterleaved(bins + 2 * k, x.low);
        storeInterleaved(bins + 2 * (binCount - k), x.high);
    }
    const Complex<float> middle = number(outer / 2), first = number(0);
    storeInterleaved(bins + binCount, Complex<float>{middle.re, -middle.im});
    dst[0] = first.re + first.im;
    bins[2 * binCount] = first.re - first.im;
    if (format == SpectrumFormat::ccs)
        dst[1] = bins[2 * binCount + 1] = 0;
}

template <SpectrumFormat format>
inline void LargeTransform::forward(const float* src, float* dst) const
{
    const bool inPlace = src == dst || shape_.separateMiddle();
    transformColumns<format>(src, dst, inPlace ? Write::inPlace : Write::transposed);
    if (inPlace) {
        exchangeOuter(dst);
        if (shape_.separateMiddle())
            transformMiddle(dst, false);
        if (format == SpectrumFormat::pack) {
            const std::size_t last = 2 * shape_.bins() - 1;
            const float first = dst[0];
            std::memmove(dst, dst + 1, last * sizeof(float));
            dst[last] = first;
        }
    }
    binsFromColumns<format>(dst);
    binsFromColumnZero<format>(dst);
}

// ---- Inverse, with real and imaginary parts exchanged: the steps of the forward transform backwards. bins[2k] begins
// bin k. Transposed, number n2 of column kappa goes to the row of kappa.

inline void LargeTransform::columnsFromBins(const float* bins, float* dst, Write write) const
{
    const std::size_t outer = shape_.outer(), rowLength = shape_.rowLength(), strips = shape_.strips;
    const std::size_t lastVector = shape_.bins() - lanes + 1;
    const BitReversal reversedRow = reversal(shape_.log2Outer);
    const float* table = plan_.ccsRecTable;
    shape_.forEachGroup([&](std::size_t low, std::size_t high) {
        shape_.forEachVector(low, high, [&](std::size_t strip, std::size_t mirror, std::size_t r, std::size_t k) {
            const BinPair<V> z =
                zims_cCcsRecombine_32f(loadInterleaved<V>(bins + 2 * k),
                                       reversed(loadInterleaved<V>(bins + 2 * (lastVector - k))), loadParts<V>(table));
            storeParts(outerStrip(strip) + reversedRow(r) * step, exchanged(z.low));
            storeParts(outerStrip(mirror) + reversedRow(outer - 1 - r) * step, exchanged(reversed(z.high)));
            table += step;
        });
        for (std::size_t w = 0; w < 2 * strips; ++w)
            transformRows<V>(outerStrip(w), shape_.log2Outer, plan_.twiddleL1);
        if (write == Write::inPlace) {
            for (std::size_t r = 0; r < outer; ++r)
                for (std::size_t w = 0; w < strips; ++w) {
                    const std::size_t place = r * rowLength + w * lanes;
                    storeInterleaved(dst + 2 * (place + low), loadParts<V>(outerStrip(w) + r * step));
                    storeInterleaved(dst + 2 * (place + high), loadParts<V>(outerStrip(strips + w) + r * step));
                }
            return;
        }
        for (std::size_t w = 0; w < 2 * strips; ++w) {
            const std::size_t kappa = w < strips ? low + w * lanes : high + (w - strips) * lanes;
            for (std::size_t r = 0; r < outer; r += lanes) {
                Complex<V> z[lanes];
#pragma GCC unroll 8
                for (std::size_t i = 0; i < lanes; ++i)
                    z[i] = loadParts<V>(outerStrip(w) + (r + i) * step);
                transpose(z);
#pragma GCC unroll 8
                for (std::size_t i = 0; i < lanes; ++i)
                    storeInterleaved(dst + 2 * (shape_.rowOf(kappa + i) * outer + r), z[i]);
            }
        }
    });
}

// ends are bins 0 and M.
inline void LargeTransform::columnZeroFromBins(const float* bins, Complex<float> ends, float* dst, Write write) const
{
    const std::size_t outer = shape_.outer(), rowLength = shape_.rowLength(), binCount = shape_.bins();
    const BitReversal reversedRow = reversal(shape_.log2Outer);
    const float* table = plan_.ccsRecTable + shape_.bins();
    float* z = singleColumn();
    const Complex<float> middle = loadInterleaved<float>(bins + binCount);
    storeParts(z, Complex<float>{ends.re - ends.im, ends.re + ends.im});
    storeParts(z + 2 * reversedRow(outer / 2), Complex<float>{-2 * middle.im, 2 * middle.re});
    for (std::size_t r = 1; r < outer / 2; ++r) {
        const std::size_t k = r * rowLength;
        const BinPair<float> pair =
            zims_cCcsRecombine_32f(loadInterleaved<float>(bins + 2 * k),
                                   loadInterleaved<float>(bins + 2 * (binCount - k)), loadParts<float>(table + 2 * r));
        storeParts(z + 2 * reversedRow(r), exchanged(pair.low));
        storeParts(z + 2 * reversedRow(outer - r), exchanged(pair.high));
    }
    transformRows<float>(z, shape_.log2Outer, plan_.twiddleL1);
    const std::size_t stride = write == Write::inPlace ? rowLength : 1;
    for (std::size_t r = 0; r < outer; ++r)
        storeInterleaved(dst + 2 * r * stride, loadParts<float>(z + 2 * r));
}

inline void LargeTransform::signalFromColumns(float* dst) const
{
    const std::size_t rowCount = shape_.columnRows(), columns = shape_.columns(), strips = shape_.strips;
    const BitReversal reversedRow = reversal(shape_.log2ColumnRows);
    const float factor = plan_.scaleInverse ? plan_.factor : 1;
    const float* twiddles = plan_.blockTwiddles[0];
    for (std::size_t first = 0; first < columns; first += strips * lanes, twiddles += strips * rowCount * step) {
        for (std::size_t kappa = 0; kappa < rowCount; ++kappa)
            for (std::size_t w = 0; w < strips; ++w)
                storeParts(columnStrip(w) + reversedRow(kappa) * step,
                           loadInterleaved<V>(dst + 2 * (shape_.rowOf(kappa) * columns + first + w * lanes)) *
                               loadParts<V>(twiddles + (w * rowCount + kappa) * step));
        for (std::size_t w = 0; w < strips; ++w)
            transformRows<V>(columnStrip(w), shape_.log2ColumnRows, plan_.twiddleL1);
        for (std::size_t r = 0; r < rowCount; ++r)
            for (std::size_t w = 0; w < strips; ++w)
                storeInterleaved(dst + 2 * (r * columns + first + w * lanes),
                                 scaled(exchanged(loadParts<V>(columnStrip(w) + r * step)), factor));
    }
}

inline void LargeTransform::inverse(const float* src, float* dst) const
{
    const std::size_t last = 2 * shape_.bins() - 1;
    const Write write = src == dst || shape_.separateMiddle() ? Write::inPlace : Write::transposed;
    const Complex<float> ends = {src[0], src[last]};
    const float* bins = src + firstBinAt<SpectrumFormat::pack>;
    if (src == dst) {
        std::memmove(dst + 1, dst, last * sizeof(float));
        bins = dst;
    }
    columnZeroFromBins(bins, ends, dst, write);
    columnsFromBins(bins, dst, write);
    if (write == Write::inPlace) {
        if (shape_.separateMiddle())
            transformMiddle(dst, true);
        exchangeOuter(dst);
    }
    signalFromColumns(dst);
}

}  // namespace zimsr::fft
