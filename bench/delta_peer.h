// The plain loops that the dynamic features are measured against: whole utterances.
#pragma once

namespace peer {

void deltaWin1(const float* src, int width, float* dst, int step, int height, float val);
void deltaDeltaWin2(const float* src, int width, float* dst, int step, int height, float val1, float val2);
// Every difference and doubling saturated, or the sum in 32 bits.
void deltaDeltaWin2(const short* src, int width, short* dst, int step, int height, short val1, short val2, int right);
void deltaDeltaWin2Wide(const short* src, int width, short* dst, int step, int height, short val1, short val2,
                        int right);
void aurora(const float* src, float* dst, int step, int height);
void aurora(const short* src, short* dst, int step, int height, int right);
void evalDelta(float* srcDst, int height, int step, int width, int winSize, float val);
void evalDelta(short* srcDst, int height, int step, int width, int winSize, short val, int right);
void copyColumn(const float* src, int width, float* dst, int step, int height);

}  // namespace peer
