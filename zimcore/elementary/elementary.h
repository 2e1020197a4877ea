// Elementary functions in double precision, for one double or for a vector of them:
//
//     D4 y = elementary::exp(x);    double z = elementary::log(w);
//
// Every function is one template over the vector type, and a single double is a lane of it. Lanes do not know of each
// other, nothing is fused and nothing comes from libm: a value has the same bits in any lane, at every instruction
// level, pointer width and compiler. Errors stay below 0.6 units in the last place (exp: 0.8 where its result is
// subnormal); special values follow IEEE 754, clause 9.2.1. Rounding to nearest is assumed.
#pragma once

#include "zimcore/elementary/exp.h"
#include "zimcore/elementary/log.h"
#include "zimcore/elementary/sincos.h"
