#ifndef ZIMSR_MELFBANK_H
#define ZIMSR_MELFBANK_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
