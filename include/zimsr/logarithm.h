#ifndef ZIMSR_LOGARITHM_H
#define ZIMSR_LOGARITHM_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
