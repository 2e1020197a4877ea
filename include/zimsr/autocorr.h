#ifndef ZIMSR_AUTOCORR_H
#define ZIMSR_AUTOCORR_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

ZIMSR_END_DECLS
#endif
