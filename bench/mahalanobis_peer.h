// The plain loops, compiled with all that the compiler offers.
#pragma once

void peerMahDist(const float* mat, int step, const float* mean, const float* invVar, int width, float* dst, int height);
void peerMahDistMultiMix(const float* mean, const float* invVar, int step, const float* src, int width, float* dst,
                         int height);
int peerMeanVarAcc(const float* src, const float* mean, float* meanAcc, float* varAcc, int len, float val);
