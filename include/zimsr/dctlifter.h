#ifndef ZIMSR_DCTLIFTER_H
#define ZIMSR_DCTLIFTER_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
