#include "update_peer.h"

#include <algorithm>
#include <cmath>

namespace peer {

void updateMean(const float* __restrict meanAcc, float* __restrict mean, int len, float meanWgt)
{
    for (int i = 0; i < len; ++i)
        mean[i] += meanAcc[i] / meanWgt;
}

void updateVar(const float* __restrict meanAcc, const float* __restrict varAcc, const float* __restrict varFloor,
               float* __restrict var, int len, float meanWgt, float varWgt)
{
    for (int i = 0; i < len; ++i) {
        const float shift = meanAcc[i] / meanWgt;
        var[i] = std::max(varAcc[i] / varWgt - shift * shift, varFloor[i]);
    }
}

float updateWeight(const float* __restrict wgtAcc, float* __restrict weight, int len, float wgtSum, float wgtFloor)
{
    float sum = 0;
    for (int i = 0; i < len; ++i) {
        weight[i] = std::max(wgtAcc[i] / wgtSum, wgtFloor);
        sum += weight[i];
    }
    return sum;
}

float updateGConst(const float* __restrict invVar, int len)
{
    float sum = 0;
    for (int i = 0; i < len; ++i)
        sum += std::log(invVar[i]);
    return static_cast<float>(len) * 1.83787707f - sum;
}

void outProbPreCalc(const float* __restrict logWeight, const float* __restrict gconst, float* __restrict val, int len)
{
    for (int i = 0; i < len; ++i)
        val[i] = logWeight[i] - 0.5f * gconst[i];
}

void newVar(const float* __restrict mean, const float* __restrict varAcc, float* __restrict var, int len, float wgt1,
            float wgt2)
{
    for (int i = 0; i < len; ++i)
        var[i] = (varAcc[i] - mean[i] * mean[i] * wgt1) * wgt2;
}

void weightedSum(const float* __restrict a, const float* __restrict b, float* __restrict dst, int len, float wgtA,
                 float wgtB)
{
    const float sum = wgtA + wgtB;
    for (int i = 0; i < len; ++i)
        dst[i] = (a[i] * wgtA + b[i] * wgtB) / sum;
}

void weightedSum(const short* __restrict a, const short* __restrict b, short* __restrict dst, int len, float wgtA,
                 float wgtB)
{
    const float sum = wgtA + wgtB;
    for (int i = 0; i < len; ++i)
        dst[i] = static_cast<short>(std::rint((a[i] * wgtA + b[i] * wgtB) / sum));
}

}  // namespace peer
