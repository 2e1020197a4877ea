// The record behind a filter bank, and the shape of its rows.
#pragma once

#include <zimsr/melfbank.h>

#include "base/fft_plan.h"
#include "zimsr/kernels/melfbank_shape.h"

namespace zimsr {

// The fields that both types share, in the order of the described layout.
template <class WeightType, class PlanType>
struct FBankFields {
    using Weight = WeightType;
    using Plan = PlanType;

    Zim32s* centers;     // edge bins
    Weight** lowerRows;  // each row starts 12 bytes past a 32-byte boundary, so that element 1 is aligned
    Weight** upperRows;
    Zim32s mode;
    Zim32s fftLen;
    Zim32s fftOrder;
    Zim32s nFilter;
    Zim32s nLinear;
    Zim32f melMul;
    Zim32f melDiv;
    Zim8u hasCoeffs;
    Plan* fftSpec;
    Weight* workBuf;  // fftLen + 2 elements, and behind them the transform's scratch
};

}  // namespace zimsr

struct ZimsFBankState_32f : zimsr::FBankFields<Zim32f, ZimsFFTPlan_R_32f> {
    Zim32s edgeCount;  // edge bins in centers
};

struct ZimsFBankState_16s : zimsr::FBankFields<Zim32s, ZimsFFTPlan_R_16s32s> {
    Zim32s weightShift;
    Zim32s edgeCount;
};

namespace zimsr {

inline constexpr int q14 = 14;

}  // namespace zimsr
