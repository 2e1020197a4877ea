#pragma once

// The definition as a plain loop over the lags.
void plainAutoCorr(const float* src, int srcLen, float* dst, int dstLen);
