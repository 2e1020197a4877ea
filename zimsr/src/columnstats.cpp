// Means and variances of columns.
#include <cstddef>
#include <cstring>

#include <zimsr/columnstats.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/columnstats.h"
#include "zimsr/kernels/samplestats.h"

using namespace zimsr;

namespace {

constexpr int toNearest = 1;

// A variance needs two rows.
constexpr ZimStatus badVarianceSize(int height, int width)
{
    return faultIf(height < 2 || width < 1, zimStsBadSize);
}

// The mean of a single row is the row itself, with its negative zeros.
void meanOfColumns(Rows<const Zim32f> rows, int height, Zim32f* mean, int width)
{
    if (height == 1)
        std::memcpy(mean, rows[0], static_cast<std::size_t>(width) * sizeof(Zim32f));
    else
        sumColumns(rows, height, mean, width, HeightFactors<Zim32f, Zim64f>(height).invH);
}

// The statistics of samples are formed in floats, and rounded when all are known.
ZimStatus roundedMean(Rows<const Zim16s> rows, int height, Zim16s* mean, int width)
{
    const std::size_t columns = static_cast<std::size_t>(width);
    HeapScratch<Zim32f> m(columns + 8);
    if (!m)
        return zimStsNoMemory;
    sumColumns(rows, height, m.data(), width, HeightFactors<Zim32f, Zim32f>(height).invH);
    quantiseBlock(m.data(), mean, columns, toNearest, 0);
    return zimStsOk;
}

ZimStatus roundedVariance(Rows<const Zim16s> rows, int height, const Zim16s* mean, Zim16s* var, int width,
                          int scaleFactor)
{
    const std::size_t columns = static_cast<std::size_t>(width);
    HeapScratch<Zim32f> v(columns + 8);
    if (!v)
        return zimStsNoMemory;
    varianceOfColumns(rows, height, mean, v.data(), width, HeightFactors<Zim32f, Zim32f>(height));
    quantiseBlock(v.data(), var, columns, toNearest, scaleFactor);
    return zimStsOk;
}

ZimStatus roundedMoments(Rows<const Zim16s> rows, int height, Zim16s* mean, Zim16s* var, int width, int scaleFactor)
{
    const std::size_t columns = static_cast<std::size_t>(width);
    HeapScratch<Zim32f> scratch(2 * columns + 16);
    if (!scratch)
        return zimStsNoMemory;
    Zim32f* const m = scratch.data();
    Zim32f* const v = m + (columns + 7) / 8 * 8;
    momentsOfColumns(rows, height, m, v, width, HeightFactors<Zim32f, Zim32f>(height));
    quantiseBlock(m, mean, columns, toNearest, 0);
    quantiseBlock(v, var, columns, toNearest, scaleFactor);
    return zimStsOk;
}

}  // namespace

// ---- Floats

ZimStatus zimsMeanColumn_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, int width)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(src, mean), anyBelowOne(height, width)))
        return fault;
    meanOfColumns(Rows(src, step), height, mean, width);
    return zimStsOk;
}

ZimStatus zimsMeanColumn_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean), anyBelowOne(height, width)))
        return fault;
    meanOfColumns(Rows(rows), height, mean, width);
    return zimStsOk;
}

ZimStatus zimsVarColumn_32f_D2(const Zim32f* src, int height, int step, const Zim32f* mean, Zim32f* var, int width)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(src, mean, var), badVarianceSize(height, width)))
        return fault;
    varianceOfColumns(Rows(src, step), height, mean, var, width, HeightFactors<Zim32f, Zim64f>(height));
    return zimStsOk;
}

ZimStatus zimsVarColumn_32f_D2L(const Zim32f* const* rows, int height, const Zim32f* mean, Zim32f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, var), badVarianceSize(height, width)))
        return fault;
    varianceOfColumns(Rows(rows), height, mean, var, width, HeightFactors<Zim32f, Zim64f>(height));
    return zimStsOk;
}

ZimStatus zimsMeanVarColumn_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, Zim32f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var), badVarianceSize(height, width), strideBelow(step, width)))
        return fault;
    momentsOfColumns(Rows(src, step), height, mean, var, width, HeightFactors<Zim32f, Zim64f>(height));
    return zimStsOk;
}

ZimStatus zimsMeanVarColumn_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, Zim32f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, var), badVarianceSize(height, width)))
        return fault;
    momentsOfColumns(Rows(rows), height, mean, var, width, HeightFactors<Zim32f, Zim64f>(height));
    return zimStsOk;
}

// ---- Samples. By contract, the D2L forms truncate when some row is not on a 16-byte boundary.

ZimStatus zimsMeanColumn_16s_D2(const Zim16s* src, int height, int step, Zim16s* mean, int width)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(src, mean), anyBelowOne(height, width)))
        return fault;
    return roundedMean(Rows(src, step), height, mean, width);
}

ZimStatus zimsMeanColumn_16s_D2L(const Zim16s* const* rows, int height, Zim16s* mean, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean), anyBelowOne(height, width)))
        return fault;
    if (RowMatrAlErr(rows, height) == 0)
        return roundedMean(Rows(rows), height, mean, width);
    truncatedMeanOfColumns(Rows(rows), height, mean, width);
    return zimStsOk;
}

ZimStatus zimsVarColumn_16s_D2Sfs(const Zim16s* src, int height, int step, const Zim16s* mean, Zim16s* var, int width,
                                  int scaleFactor)
{
    if (ZimStatus fault = firstFault(strideBelow(step, width), anyNull(src, mean, var), badVarianceSize(height, width)))
        return fault;
    return roundedVariance(Rows(src, step), height, mean, var, width, scaleFactor);
}

ZimStatus zimsVarColumn_16s_D2LSfs(const Zim16s* const* rows, int height, const Zim16s* mean, Zim16s* var, int width,
                                   int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, var), badVarianceSize(height, width)))
        return fault;
    if (RowMatrAlErr(rows, height) == 0)
        return roundedVariance(Rows(rows), height, mean, var, width, scaleFactor);
    truncatedVarianceOfColumns(Rows(rows), height, mean, var, width, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsMeanVarColumn_16s_D2Sfs(const Zim16s* src, int height, int step, Zim16s* mean, Zim16s* var, int width,
                                      int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var), badVarianceSize(height, width), strideBelow(step, width)))
        return fault;
    return roundedMoments(Rows(src, step), height, mean, var, width, scaleFactor);
}

ZimStatus zimsMeanVarColumn_16s_D2LSfs(const Zim16s* const* rows, int height, Zim16s* mean, Zim16s* var, int width,
                                       int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, var), badVarianceSize(height, width)))
        return fault;
    if (RowMatrAlErr(rows, height) == 0)
        return roundedMoments(Rows(rows), height, mean, var, width, scaleFactor);
    truncatedMomentsOfColumns(Rows(rows), height, mean, var, width, scaleFactor);
    return zimStsOk;
}

// ---- Samples, with wider results. By contract, the D2L forms divide by the height in Zim32f.

ZimStatus zimsMeanVarColumn_16s32s_D2Sfs(const Zim16s* src, int height, int step, Zim32s* mean, Zim32s* var, int width,
                                         int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var), badVarianceSize(height, width), strideBelow(step, width)))
        return fault;
    const HeightFactors<Zim64f, Zim64f> factors(height);
    roundedMomentsOfColumns(Rows(src, step), height, mean, var, width, factors.invH,
                            factors.invH1 * GetScale_32s64f(scaleFactor));
    return zimStsOk;
}

ZimStatus zimsMeanVarColumn_16s32s_D2LSfs(const Zim16s* const* rows, int height, Zim32s* mean, Zim32s* var, int width,
                                          int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, var), badVarianceSize(height, width)))
        return fault;
    const HeightFactors<Zim64f, Zim32f> factors(height);
    roundedMomentsOfColumns(Rows(rows), height, mean, var, width, factors.invH,
                            factors.invH1 * GetScale_32s64f(scaleFactor));
    return zimStsOk;
}

ZimStatus zimsMeanVarColumn_16s16s32s_D2(const Zim16s* src, int height, int step, Zim16s* mean, Zim32s* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(src, mean, var), badVarianceSize(height, width), strideBelow(step, width)))
        return fault;
    const HeightFactors<Zim64f, Zim64f> factors(height);
    roundedMomentsOfColumns(Rows(src, step), height, mean, var, width, factors.invH, factors.invH1);
    return zimStsOk;
}

ZimStatus zimsMeanVarColumn_16s16s32s_D2L(const Zim16s* const* rows, int height, Zim16s* mean, Zim32s* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, mean, var), badVarianceSize(height, width)))
        return fault;
    const HeightFactors<Zim64f, Zim32f> factors(height);
    roundedMomentsOfColumns(Rows(rows), height, mean, var, width, factors.invH, factors.invH1);
    return zimStsOk;
}

// ---- Older names

ZimStatus zimsMeanCol_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, int width)
{
    return zimsMeanColumn_32f_D2(src, height, step, mean, width);
}

ZimStatus zimsMeanCol_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, int width)
{
    return zimsMeanColumn_32f_D2L(rows, height, mean, width);
}

ZimStatus zimsVarCol_32f_D2(const Zim32f* src, int height, int step, const Zim32f* mean, Zim32f* var, int width)
{
    return zimsVarColumn_32f_D2(src, height, step, mean, var, width);
}

ZimStatus zimsVarCol_32f_D2L(const Zim32f* const* rows, int height, const Zim32f* mean, Zim32f* var, int width)
{
    return zimsVarColumn_32f_D2L(rows, height, mean, var, width);
}

ZimStatus zimsMeanVarCol_32f_D2(const Zim32f* src, int height, int step, Zim32f* mean, Zim32f* var, int width)
{
    return zimsMeanVarColumn_32f_D2(src, height, step, mean, var, width);
}

ZimStatus zimsMeanVarCol_32f_D2L(const Zim32f* const* rows, int height, Zim32f* mean, Zim32f* var, int width)
{
    return zimsMeanVarColumn_32f_D2L(rows, height, mean, var, width);
}
