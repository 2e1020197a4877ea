#ifndef ZIMSR_MIXTURE_H
#define ZIMSR_MIXTURE_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
