// The checks that the streaming delta functions share.
#pragma once

#include <zimsr/delta.h>

#include "zimcore/frame/checks.h"

namespace zimsr::delta {

// Sizes, the stride, then the first block, which must bring the context that later blocks find. A block may be empty
// only where it closes the utterance.
constexpr ZimStatus badBlock(int width, int dstStep, int height, int flags, Zim64s rowLength, int context)
{
    return firstFault(faultIf(width < 1 || height < 0 || (height == 0 && !(flags & ZimDeltaEnd)), zimStsBadSize),
                      strideBelow(dstStep, rowLength),
                      faultIf((flags & ZimDeltaBegin) && height < context, zimStsBadSize));
}

}  // namespace zimsr::delta
