#ifndef ZIMSR_SUMS_H
#define ZIMSR_SUMS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
