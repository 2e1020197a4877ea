// Conversions between element types.
#include <algorithm>
#include <cstddef>

#include <zimsr/convert.h>

#include "base/kernels/convert.h"
#include "zimcore/frame/checks.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/scaling.h"

using namespace zimsr;

ZimStatus zimsConvert_8u32f(const Zim8u* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    convertBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsConvert_16s32f(const Zim16s* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    convertBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsConvert_32s32f(const Zim32s* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    const RoundToNearest mode;
    convertBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

ZimStatus zimsConvert_64f32f(const Zim64f* src, Zim32f* dst, int len)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    const RoundToNearest mode;
    convertBlock(src, dst, static_cast<std::size_t>(len));
    return zimStsOk;
}

// The limits of the factors keep every result a normal number or zero.
ZimStatus zimsConvert_16s32f_Sfs(const Zim16s* src, Zim32f* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    convertScaled(src, dst, static_cast<std::size_t>(len), GetScale_32s32f(std::clamp(scaleFactor, -112, 126)));
    return zimStsOk;
}

ZimStatus zimsConvert_16s64f_Sfs(const Zim16s* src, Zim64f* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    convertScaled(src, dst, static_cast<std::size_t>(len), GetScale_32s64f(std::clamp(scaleFactor, -1008, 1022)));
    return zimStsOk;
}

ZimStatus zimsConvert_32s32f_Sfs(const Zim32s* src, Zim32f* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    const RoundToNearest mode;
    convertScaled(src, dst, static_cast<std::size_t>(len), GetScale_32s32f(std::clamp(scaleFactor, -96, 126)));
    return zimStsOk;
}

ZimStatus zimsConvert_32s16s_Sfs(const Zim32s* src, Zim16s* dst, int len, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    shortenBlock(src, dst, static_cast<std::size_t>(len), std::clamp(scaleFactor, -15, 31));
    return zimStsOk;
}

ZimStatus zimsConvert_32f16s_Sfs(const Zim32f* src, Zim16s* dst, int len, int rndMode, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    quantiseBlock(src, dst, static_cast<std::size_t>(len), rndMode, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsConvert_32f32s_Sfs(const Zim32f* src, Zim32s* dst, int len, int rndMode, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    quantiseBlock(src, dst, static_cast<std::size_t>(len), rndMode, scaleFactor);
    return zimStsOk;
}

ZimStatus zimsConvert_64f32s_Sfs(const Zim64f* src, Zim32s* dst, int len, int rndMode, int scaleFactor)
{
    if (ZimStatus fault = firstFault(anyNull(src, dst), anyBelowOne(len)))
        return fault;
    quantiseBlock(src, dst, static_cast<std::size_t>(len), rndMode, scaleFactor);
    return zimStsOk;
}
