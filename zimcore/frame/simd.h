// Fixed-width vectors. A kernel is written on 8 floats, 4 doubles, 16 shorts at every instruction level; where the
// processor's registers are narrower, a vector is held in two of them. So the order of every sum, and with it every
// bit of a result, is the same at all levels. Intrinsics occur in the files of simd/ only.
//
//     F8 sum = splat<F8>(0);
//     for (; j + 8 <= width; j += 8)
//         sum += load<F8>(x + j) * load<F8>(y + j);
//     return sumLanes(sum);
#pragma once

#include "zimcore/frame/simd/bytes.h"
#include "zimcore/frame/simd/choice.h"
#include "zimcore/frame/simd/convert.h"
#include "zimcore/frame/simd/functions.h"
#include "zimcore/frame/simd/lanes.h"
#include "zimcore/frame/simd/operators.h"
#include "zimcore/frame/simd/rest.h"
#include "zimcore/frame/simd/shorts.h"
#include "zimcore/frame/simd/streaming.h"
#include "zimcore/frame/simd/sums.h"
#include "zimcore/frame/simd/vector.h"
