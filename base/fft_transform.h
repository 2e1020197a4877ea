// The transform behind the doors, for plans with tables (order 4 and above).
#pragma once

#include "base/fft_plan.h"

namespace zimsr {

// Builds every table of a plan whose order is set, or none: false when there is no memory.
bool createTablesCFFT(ZimsFFTPlan_R_32f& plan);

// Releases the tables and the record.
void deleteFftCtx(ZimsFFTPlan_R_32f* plan);

// buffer is 16-byte aligned and holds bufferSize bytes less the slack for its alignment.
template <SpectrumFormat format>
void forwardTransform(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan, Zim8u* buffer);
void inverseTransform(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan, Zim8u* buffer);

}  // namespace zimsr
