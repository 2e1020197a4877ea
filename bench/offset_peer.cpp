// Compiled by itself, with all that the compiler offers for this machine.
#include "offset_peer.h"

#include <algorithm>

namespace peer {
namespace {

template <class Wide>
short sat(Wide v)
{
    return static_cast<short>(std::clamp<Wide>(v, -32768, 32767));
}

}  // namespace

void offset(const float* src, float* dst, int len, float* srcPrev, float dstPrev, float val)
{
    float before = *srcPrev, y = dstPrev;
    for (int i = 0; i < len; ++i) {
        const float x = src[i];
        y = val * y + (x - before);
        before = x;
        dst[i] = y;
    }
    *srcPrev = before;
}

void offset(const short* src, short* dst, int len, short* srcPrev, short dstPrev, int q)
{
    short before = *srcPrev, y = dstPrev;
    for (int i = 0; i < len; ++i) {
        const short x = src[i];
        y = sat(((y * q) >> 12) + sat(x - before));
        before = x;
        dst[i] = y;
    }
    *srcPrev = before;
}

void offsetQ15(const short* src, short* dst, int len, short* srcPrev, short dstPrev, short val)
{
    short before = *srcPrev, y = dstPrev;
    for (int i = 0; i < len; ++i) {
        const short x = src[i];
        y = sat(((x - before) * 32768LL + y * val) / 32768);
        before = x;
        dst[i] = y;
    }
    *srcPrev = before;
}

void offsetRounded(short* srcDst, int len, short* srcPrev, short dstPrev, float val)
{
    short before = *srcPrev, y = dstPrev;
    for (int i = 0; i < len; ++i) {
        const short x = srcDst[i];
        const float v = static_cast<float>(x - before) + static_cast<float>(y) * val;
        y = sat(static_cast<int>(v + (v < 0 ? -0.5f : 0.5f)));
        before = x;
        srcDst[i] = y;
    }
    *srcPrev = before;
}

}  // namespace peer
