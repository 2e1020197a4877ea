#ifndef ZIMSR_DELTA_H
#define ZIMSR_DELTA_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
