// The plain loop, compiled with all that the compiler offers.
#pragma once

float peerBlockScore(const float* src, const float* mean, const float* const* rows, const int* blockSizes,
                     int blockCount, float gconst);
