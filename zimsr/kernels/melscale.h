// The mel scale on vectors, in double precision between load and store.
#pragma once

#include <zimsr/types.h>

#include "zimcore/elementary/elementary.h"
#include "zimcore/frame/simd.h"

namespace zimsr {

// dst[i] = formula(src[i]), four elements at a time. Each is loaded before it is stored, so src and dst may be the
// same.
template <class Formula>
ZIM_INLINE void inDouble(const Zim32f* src, Zim32f* dst, int len, Formula formula)
{
    int i = 0;
    for (; i + 4 <= len; i += 4)
        store(dst + i, narrow(formula(widen(load<F4>(src + i)))));
    if (i < len)
        storeFirst(dst + i, narrow(formula(widen(loadFirst<F4>(src + i, len - i)))), len - i);
}

inline void melToLinear(const Zim32f* src, Zim32f* dst, int len, double melMul, double melDiv)
{
    const D4 perMul = splat<D4>(1 / melMul), div = splat<D4>(melDiv), one = splat<D4>(1);
    inDouble(src, dst, len, [=](D4 mel) { return (elementary::exp(mel * perMul) - one) * div; });
}

inline void linearToMel(const Zim32f* src, Zim32f* dst, int len, double melMul, double melDiv)
{
    const D4 perDiv = splat<D4>(1 / melDiv), mul = splat<D4>(melMul), one = splat<D4>(1);
    inDouble(src, dst, len, [=](D4 frequency) { return elementary::log(frequency * perDiv + one) * mul; });
}

}  // namespace zimsr
