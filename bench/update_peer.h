// The plain loops that the model parameter updates are measured against.
#pragma once

namespace peer {

void updateMean(const float* meanAcc, float* mean, int len, float meanWgt);
void updateVar(const float* meanAcc, const float* varAcc, const float* varFloor, float* var, int len, float meanWgt,
               float varWgt);
float updateWeight(const float* wgtAcc, float* weight, int len, float wgtSum, float wgtFloor);
float updateGConst(const float* invVar, int len);
void outProbPreCalc(const float* logWeight, const float* gconst, float* val, int len);
void newVar(const float* mean, const float* varAcc, float* var, int len, float wgt1, float wgt2);
void weightedSum(const float* a, const float* b, float* dst, int len, float wgtA, float wgtB);
void weightedSum(const short* a, const short* b, short* dst, int len, float wgtA, float wgtB);

}  // namespace peer
