// The plan records of the real transform. A plan is not written after construction.
#pragma once

#include <zimsr/fft.h>

#include "zimcore/frame/checks.h"

struct ZimsFFTPlan_R_32f {
    Zim32u identity;
    Zim32s order;
    Zim32u scaleForward;
    Zim32u scaleInverse;
    Zim32f factor;
    Zim32s hint;
    Zim32s bufferSize;
    Zim32u* bitRevTable;
    Zim32f* twiddleL1;
    Zim32f* realRecTable;
    Zim32f* ccsRecTable;
    Zim32f* blockTwiddles[3];
};

struct ZimsFFTPlan_R_16s32s {
    Zim32u identity;
    Zim32s order;
    Zim32s flag;
    Zim32s hint;
    Zim32s bufferSize;
    ZimsFFTPlan_R_32f* plan;
};

namespace zimsr {

inline constexpr Zim32u fftIdentity_32f = 6;
inline constexpr Zim32u fftIdentity_16s32s = 0x4C4D5364;

// Below this order a transform is straight-line arithmetic, without tables and without a buffer.
inline constexpr int firstTabledOrder = 4;

// Up to this order the half-length complex signal fits the buffer.
inline constexpr int lastBufferedOrder = 17;

enum class SpectrumFormat { ccs, pack };

constexpr ZimStatus badFftOrder(int order)
{
    return faultIf(order < 0 || order > 30, zimStsBadFftOrder);
}

constexpr ZimStatus badFftFlag(int flag)
{
    return faultIf(flag != 1 && flag != 2 && flag != 4 && flag != 8, zimStsBadFftFlag);
}

}  // namespace zimsr
