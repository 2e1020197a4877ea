#ifndef ZIMSR_CONVERT_H
#define ZIMSR_CONVERT_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
