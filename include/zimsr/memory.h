/** @file
 *  Allocation, fill and copy.
 *
 *  @defgroup memory Memory
 *
 *  @{
 */
#ifndef ZIMSR_MEMORY_H
#define ZIMSR_MEMORY_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @name Allocation
 *  A 32-byte aligned block for len elements, or null when len is below 1, when the size in bytes does not fit, or when
 *  `malloc` has nothing. Every object that the library allocates comes from here.
 *  @{
 */
ZIMSR_API Zim8u* zimsMalloc_8u(int len);
ZIMSR_API Zim16s* zimsMalloc_16s(int len);
ZIMSR_API Zim32s* zimsMalloc_32s(int len);
ZIMSR_API Zim32f* zimsMalloc_32f(int len);
ZIMSR_API Zim64f* zimsMalloc_64f(int len);
/** Gives back a block from a `zimsMalloc_*`. A null pointer is nothing. */
ZIMSR_API void zimsFree(void* ptr);
/** @} */

/** @name Fill and copy
 *  `Set`: dst[i] = val; `Zero`: dst[i] = 0; `Copy`: dst[i] = src[i] for arrays that do not overlap; `Move` as copy for
 *  arrays that may. For i = 0 .. len - 1.
 *
 *  Floating-point elements are copied by their bits. Long vectors are written past the cache.
 *
 *  @return #zimStsNullPointer when a pointer is null, then #zimStsBadSize when len is below 1.
 *  @{
 */
ZIMSR_API ZimStatus zimsSet_8u(Zim8u val, Zim8u* dst, int len);
ZIMSR_API ZimStatus zimsSet_16s(Zim16s val, Zim16s* dst, int len);
ZIMSR_API ZimStatus zimsSet_32s(Zim32s val, Zim32s* dst, int len);
ZIMSR_API ZimStatus zimsSet_32f(Zim32f val, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsSet_64f(Zim64f val, Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsZero_8u(Zim8u* dst, int len);
ZIMSR_API ZimStatus zimsZero_16s(Zim16s* dst, int len);
ZIMSR_API ZimStatus zimsZero_32f(Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsZero_64f(Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsCopy_8u(const Zim8u* src, Zim8u* dst, int len);
ZIMSR_API ZimStatus zimsCopy_16s(const Zim16s* src, Zim16s* dst, int len);
ZIMSR_API ZimStatus zimsCopy_32f(const Zim32f* src, Zim32f* dst, int len);
ZIMSR_API ZimStatus zimsCopy_64f(const Zim64f* src, Zim64f* dst, int len);
ZIMSR_API ZimStatus zimsMove_32f(const Zim32f* src, Zim32f* dst, int len);
/** @} */

ZIMSR_END_DECLS

/** @} */
#endif
