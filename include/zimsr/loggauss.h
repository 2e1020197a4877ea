#ifndef ZIMSR_LOGGAUSS_H
#define ZIMSR_LOGGAUSS_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
