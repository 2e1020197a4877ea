// The plain loops that log-domain addition is measured against: srcDst[i] = ln(exp(src[i]) + exp(srcDst[i])).
#pragma once

void peerLogAdd_32f(const float* src, float* srcDst, int len);
void peerLogAddInDouble_32f(const float* src, float* srcDst, int len);
void peerLogAdd_64f(const double* src, double* srcDst, int len);
