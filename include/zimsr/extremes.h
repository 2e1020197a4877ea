#ifndef ZIMSR_EXTREMES_H
#define ZIMSR_EXTREMES_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
