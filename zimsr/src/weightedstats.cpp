// Means and variances of columns whose rows carry weights.
#include <zimsr/weightedstats.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/weightedstats.h"

using namespace zimsr;

// ---- Means

ZimStatus zimsWeightedMeanColumn_32f_D2(const Zim32f* mat, int step, const Zim32f* weights, int height, Zim32f* mean,
                                        int width)
{
    if (ZimStatus fault = firstFault(anyNull(mat, weights, mean), strideBelow(step, width), anyBelowOne(height, width)))
        return fault;
    weightedMeanOfColumns(Rows(mat, step), weights, height, mean, width);
    return zimStsOk;
}

ZimStatus zimsWeightedMeanColumn_32f_D2L(const Zim32f* const* rows, const Zim32f* weights, int height, Zim32f* mean,
                                         int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, weights, mean), anyBelowOne(height, width)))
        return fault;
    weightedMeanOfColumns(Rows(rows), weights, height, mean, width);
    return zimStsOk;
}

ZimStatus zimsWeightedMeanColumn_64f_D2(const Zim64f* mat, int step, const Zim64f* weights, int height, Zim64f* mean,
                                        int width)
{
    if (ZimStatus fault = firstFault(anyNull(mat, weights, mean), strideBelow(step, width), anyBelowOne(height, width)))
        return fault;
    weightedMeanOfColumns(Rows(mat, step), weights, height, mean, width);
    return zimStsOk;
}

ZimStatus zimsWeightedMeanColumn_64f_D2L(const Zim64f* const* rows, const Zim64f* weights, int height, Zim64f* mean,
                                         int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, weights, mean), anyBelowOne(height, width)))
        return fault;
    weightedMeanOfColumns(Rows(rows), weights, height, mean, width);
    return zimStsOk;
}

// ---- Variances about given means

ZimStatus zimsWeightedVarColumn_32f_D2(const Zim32f* mat, int step, const Zim32f* weights, int height,
                                       const Zim32f* mean, Zim32f* var, int width)
{
    if (ZimStatus fault =
            firstFault(anyNull(mat, weights, mean, var), strideBelow(step, width), anyBelowOne(height, width)))
        return fault;
    weightedVarianceOfColumns(Rows(mat, step), weights, height, mean, var, width);
    return zimStsOk;
}

ZimStatus zimsWeightedVarColumn_32f_D2L(const Zim32f* const* rows, const Zim32f* weights, int height,
                                        const Zim32f* mean, Zim32f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, weights, mean, var), anyBelowOne(height, width)))
        return fault;
    weightedVarianceOfColumns(Rows(rows), weights, height, mean, var, width);
    return zimStsOk;
}

ZimStatus zimsWeightedVarColumn_64f_D2(const Zim64f* mat, int step, const Zim64f* weights, int height,
                                       const Zim64f* mean, Zim64f* var, int width)
{
    if (ZimStatus fault =
            firstFault(anyNull(mat, weights, mean, var), strideBelow(step, width), anyBelowOne(height, width)))
        return fault;
    weightedVarianceOfColumns(Rows(mat, step), weights, height, mean, var, width);
    return zimStsOk;
}

ZimStatus zimsWeightedVarColumn_64f_D2L(const Zim64f* const* rows, const Zim64f* weights, int height,
                                        const Zim64f* mean, Zim64f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, weights, mean, var), anyBelowOne(height, width)))
        return fault;
    weightedVarianceOfColumns(Rows(rows), weights, height, mean, var, width);
    return zimStsOk;
}

// ---- Means and variances

ZimStatus zimsWeightedMeanVarColumn_32f_D2(const Zim32f* mat, int step, const Zim32f* weights, int height, Zim32f* mean,
                                           Zim32f* var, int width)
{
    if (ZimStatus fault =
            firstFault(anyNull(mat, weights, mean, var), strideBelow(step, width), anyBelowOne(height, width)))
        return fault;
    weightedMomentsOfColumns(Rows(mat, step), weights, height, mean, var, width);
    return zimStsOk;
}

ZimStatus zimsWeightedMeanVarColumn_32f_D2L(const Zim32f* const* rows, const Zim32f* weights, int height, Zim32f* mean,
                                            Zim32f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, weights, mean, var), anyBelowOne(height, width)))
        return fault;
    weightedMomentsOfColumns(Rows(rows), weights, height, mean, var, width);
    return zimStsOk;
}

ZimStatus zimsWeightedMeanVarColumn_64f_D2(const Zim64f* mat, int step, const Zim64f* weights, int height, Zim64f* mean,
                                           Zim64f* var, int width)
{
    if (ZimStatus fault =
            firstFault(anyNull(mat, weights, mean, var), strideBelow(step, width), anyBelowOne(height, width)))
        return fault;
    weightedMomentsOfColumns(Rows(mat, step), weights, height, mean, var, width);
    return zimStsOk;
}

ZimStatus zimsWeightedMeanVarColumn_64f_D2L(const Zim64f* const* rows, const Zim64f* weights, int height, Zim64f* mean,
                                            Zim64f* var, int width)
{
    if (ZimStatus fault = firstFault(anyNull(rows, weights, mean, var), anyBelowOne(height, width)))
        return fault;
    weightedMomentsOfColumns(Rows(rows), weights, height, mean, var, width);
    return zimStsOk;
}
