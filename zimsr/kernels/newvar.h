// Variances from raw sums: (varAcc - mean^2 wgt1) wgt2.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

#include "base/kernels/convert.h"
#include "base/kernels/elementwise.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/rows.h"
#include "zimcore/frame/scaling.h"

namespace zimsr {

struct RawVariance {
    Zim32f wgt1, wgt2;

    ZIM_INLINE F8 operator()(F8 mean, F8 varAcc) const
    {
        return (varAcc - mean * mean * splat<F8>(wgt1)) * splat<F8>(wgt2);
    }
    ZIM_INLINE F8 operator()(I8 mean, I8 varAcc) const { return (*this)(toFloat(mean), toFloat(varAcc)); }

    // In higher precision.
    ZIM_INLINE F4 operator()(F4 mean, F4 varAcc) const { return narrow(wide(widen(mean), widen(varAcc))); }
    ZIM_INLINE Zim32f operator()(Zim32f mean, Zim32f varAcc) const
    {
        return static_cast<Zim32f>(wide<Zim64f>(mean, varAcc));
    }

private:
    // The difference from 0 decides the sign of a zero.
    template <class Wide>
    ZIM_INLINE Wide wide(Wide mean, Wide varAcc) const
    {
        return (varAcc + (splat<Wide>(0) - mean * mean) * splat<Wide>(wgt1)) * splat<Wide>(wgt2);
    }
};

ZIM_INLINE void newVariance(const Zim32f* mean, const Zim32f* varAcc, Zim32f* var, std::size_t len,
                            RawVariance variance)
{
    mapElements<8>(var, len, variance, mean, varAcc);
}

// In Zim32f from element `first` on, as far as groups of 8 go; in higher precision in front of it and behind.
ZIM_INLINE void newVarianceFrom(std::size_t first, const Zim32f* mean, const Zim32f* varAcc, Zim32f* var,
                                std::size_t len, RawVariance variance)
{
    const std::size_t end = first + (len - first) / 8 * 8;
    if (first > 0)
        mapElements<4>(var, first, variance, mean, varAcc);
    newVariance(mean + first, varAcc + first, var + first, end - first, variance);
    if (end < len)
        mapElements<4>(var + end, len - end, variance, mean + end, varAcc + end);
}

// In higher precision, whatever the destination overlaps.
ZIM_INLINE void newVarianceInTurn(const Zim32f* mean, const Zim32f* varAcc, Zim32f* var, std::size_t len,
                                  RawVariance variance)
{
    mapInTurn(var, len, variance, mean, varAcc);
}

// Rounded to nearest even: the floats stand where the integers will.
ZIM_INLINE void newVarianceRounded(const Zim32s* mean, const Zim32s* varAcc, Zim32s* var, std::size_t len,
                                   RawVariance variance, int scaleFactor)
{
    const RoundToNearest mode;
    const auto floats = reinterpret_cast<Zim32f*>(var);
    mapElements<8>(floats, len, variance, mean, varAcc);
    quantiseBlock(floats, var, len, scaleFactor, RoundNearest{});
}

// Truncated toward zero. Zero stays zero where the scale is infinite.
ZIM_INLINE void newVarianceTruncated(const Zim32s* mean, const Zim32s* varAcc, Zim32s* var, std::size_t len,
                                     RawVariance variance, int scaleFactor)
{
    const RoundToNearest mode;
    const F8 scale = splat<F8>(GetScale_32s32f(scaleFactor));
    const auto scaled = [=](I8 mean8, I8 varAcc8) {
        const F8 v = variance(mean8, varAcc8);
        return quantise(select(v == splat<F8>(0), v, v * scale), Truncate{}, Zim32s{});
    };
    mapElements<8>(var, len, scaled, mean, varAcc);
}

}  // namespace zimsr
