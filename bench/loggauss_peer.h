// The plain loop, compiled with all that the compiler offers.
#pragma once

void peerLogGauss(const float* mat, int step, const float* mean, const float* invVar, int width, float* result,
                  int height, float gconst);
