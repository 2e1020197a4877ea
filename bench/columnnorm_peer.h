// The plain loops that mean and variance normalisation is measured against.
#pragma once

namespace peer {

void sumMeanVar(const float* src, int step, int height, float* sum, float* sumSq, int width);
void sumMeanVar(const short* src, int step, int height, float* sum, float* sumSq, int width);
void normalise(float* srcDst, int step, int height, const float* mean, const float* val, int width);
void normalise(short* srcDst, int step, int height, const short* mean, const short* val, int width, int right);

}  // namespace peer
