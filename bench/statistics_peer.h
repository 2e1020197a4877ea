// Reductions by Eigen, compiled with all that the compiler offers. The matrix is stored row by row.
#pragma once

void peerMeanVarColumn(const float* mat, int height, int width, float* mean, float* var);
void peerSumColumn(const float* mat, int height, int width, float* dst);
void peerSumRow(const float* mat, int height, int width, float* dst);
