#ifndef ZIMSR_ARITHMETIC_H
#define ZIMSR_ARITHMETIC_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
