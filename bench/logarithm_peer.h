// The plain loops that the logarithms are measured against.
#pragma once

void peerLn_32f(float* srcDst, int len);
void peerLn_32s(const int* src, int* dst, int len, float scale);
float peerSumLn_32f(const float* src, int len);
double peerSumLn_64f(const double* src, int len);
