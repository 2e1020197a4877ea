/** @file
 *  The version record and the special values.
 */
#ifndef ZIMSR_VERSION_H
#define ZIMSR_VERSION_H

#include <zimsr/types.h>

ZIMSR_BEGIN_DECLS

/** @addtogroup frame
 *  @{
 */

/** What the library says of itself. */
typedef struct ZimVersion {
    Zim32s major;
    Zim32s minor;
    Zim32s majorBuild;
    Zim32s build;
    char targetTag[4];     /**< level of the kernels, padded with NUL bytes */
    const char* name;      /**< file name of the library */
    const char* version;   /**< version as text */
    const char* buildDate;
} ZimVersion;

/** Returns the library's constant version record. It cannot fail. */
ZIMSR_API const ZimVersion* zimsrGetLibVersion(void);

/** The values written where a warning status says that a substitute was used. Callers may compare with them, bit by bit
 *  in the case of the two NaNs, whose sign bit is set. */
extern ZIMSR_API const Zim32f zimConstantOfNAN_32f;
extern ZIMSR_API const Zim32f zimConstantOfINF_32f;
extern ZIMSR_API const Zim32f zimConstantOfINF_NEG_32f;
extern ZIMSR_API const Zim64f zimConstantOfNAN_64f;
extern ZIMSR_API const Zim64f zimConstantOfINF_64f;
extern ZIMSR_API const Zim64f zimConstantOfINF_NEG_64f;

/** @} */

ZIMSR_END_DECLS
#endif
