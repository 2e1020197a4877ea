// The plain loops that offset removal is measured against.
#pragma once

namespace peer {

void offset(const float* src, float* dst, int len, float* srcPrev, float dstPrev, float val);
// In fixed point, q being Q12.
void offset(const short* src, short* dst, int len, short* srcPrev, short dstPrev, int q);
void offsetQ15(const short* src, short* dst, int len, short* srcPrev, short dstPrev, short val);
// In single precision, rounded.
void offsetRounded(short* srcDst, int len, short* srcPrev, short dstPrev, float val);

}  // namespace peer
