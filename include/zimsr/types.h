/** @file
 *  Element types, status codes and the conventions that every function follows.
 *
 *  @defgroup frame Types and conventions
 *
 *  **Vectors** are a pointer to the first element and a separate length in elements. Lengths, counts and strides are
 *  `int` and always count elements, never bytes. Arrays need no alignment beyond that of their element type.
 *
 *  **Matrices** come in two forms that differ in arguments, never in arithmetic:
 *  - `D2`: one block of memory, column c of row r is `mat[r * step + c]`. A step smaller than the row length is
 *    #zimStsBadStride.
 *  - `D2L`: an array of row pointers, `rows[r][c]`. The array is read, never written; the row pointers are not tested.
 *
 *  **Failures** are status codes. Argument checks come first, in an order fixed per family; a refused call has written
 *  nothing. A positive status is a warning: the call ran to its end and put a defined substitute into some element.
 *
 *  **Sfs** in a name: the result is scaled by 2^-scaleFactor, rounded half to even and saturated to its type, unless
 *  the function says otherwise.
 *
 *  **Aliasing**: a destination may not overlap a source, except where a function says that it works in place.
 *
 *  **Threads**: every function is reentrant and takes no lock. Calls may run at once as long as they share no buffer
 *  that one of them writes.
 *  @{
 */
#ifndef ZIMSR_TYPES_H
#define ZIMSR_TYPES_H

#include <stdint.h>

#ifdef __cplusplus
#define ZIMSR_BEGIN_DECLS extern "C" {
#define ZIMSR_END_DECLS }
#else
#define ZIMSR_BEGIN_DECLS
#define ZIMSR_END_DECLS
#endif

/** Marks what the shared object exports. */
#define ZIMSR_API __attribute__((visibility("default")))

typedef uint8_t Zim8u;
typedef int16_t Zim16s;
typedef uint16_t Zim16u;
typedef int32_t Zim32s;
typedef uint32_t Zim32u;
typedef int64_t Zim64s;
typedef float Zim32f;
typedef double Zim64f;

/** Complex number, real part first. */
typedef struct Zim32fc {
    Zim32f re;
    Zim32f im;
} Zim32fc;

/** Complex number of 32-bit integers, real part first. */
typedef struct Zim32sc {
    Zim32s re;
    Zim32s im;
} Zim32sc;

/** Result of a call: 0 success, negative an error (nothing useful was written), positive a warning (all was written,
 *  with a defined substitute in some element). */
typedef Zim32s ZimStatus;

/** All values of #ZimStatus. */
enum {
    zimStsCdbkSizeChanged = 31,    /**< a codebook was built, but its size differs from the size asked for */
    zimStsZeroOccupancy = 16,      /**< an occupancy used as divisor is zero or subnormal; nothing was updated */
    zimStsResultFloored = 11,      /**< every result fell below the caller's floor and was raised to it */
    zimStsLogOfNegative = 8,       /**< logarithm of a negative value: NaN, or the integer form's substitute */
    zimStsLogOfZero = 7,           /**< logarithm of zero: an infinity, or the integer form's substitute */
    zimStsDivByZeroWarn = 6,       /**< a divisor was zero: the element is the function's substitute */
    zimStsInverseOfZero = 4,       /**< nothing could be inverted */
    zimStsSqrtOfNegative = 3,      /**< square root of a negative value: NaN */
    zimStsOk = 0,                  /**< success */
    zimStsFailure = -2,            /**< an inner step of a composed operation failed */
    zimStsNoMemory = -4,           /**< a scratch buffer could not be obtained */
    zimStsBadArgument = -5,        /**< an argument outside its domain: an index, a threshold, a factor */
    zimStsBadSize = -6,            /**< a length or count below 1 or above the function's limit */
    zimStsOutOfRange = -7,         /**< a value outside the range the operation is defined on */
    zimStsNullPointer = -8,        /**< a required pointer is null */
    zimStsAllocFailed = -9,        /**< an object or its working storage could not be allocated */
    zimStsDivideByZero = -10,      /**< a constant divisor is zero */
    zimStsBadFftOrder = -15,       /**< transform order out of range */
    zimStsBadFftFlag = -16,        /**< transform normalisation flag invalid */
    zimStsBadContext = -17,        /**< an object does not carry its identity word */
    zimStsBadStride = -37,         /**< row stride smaller than the row length */
    zimStsNoConvergence = -65,     /**< the singular value iteration did not converge */
    zimStsBadClusterMode = -66,    /**< a clustering mode is refused */
    zimStsNegativeFactor = -67,    /**< an occupancy or factor is negative */
    zimStsFBankNoCoeffs = -69,     /**< the filter bank has no coefficients set */
    zimStsFBankBadMode = -70,      /**< the filter bank mode is not one of the two valid ones */
    zimStsFBankBadFlag = -71,      /**< the filter bank's edges or options are invalid */
    zimStsLspNotFound = -114,      /**< the root search from predictor to line spectrum failed */
    zimStsLspOrder = -115,         /**< the line spectrum is out of order */
    zimStsLpBadReflection = -116,  /**< a reflection coefficient of exactly plus or minus 1 */
    zimStsLpUnstable = -117,       /**< the recursion became unstable */
    zimStsBadFilterLength = -119,  /**< adaptive filter length out of range */
    zimStsNotSupported = -9999     /**< the object was made in a mode this entry does not serve */
};

/** @} */
#endif
