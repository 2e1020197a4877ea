#ifndef ZIMSR_FFT_H
#define ZIMSR_FFT_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
