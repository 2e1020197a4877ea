/** @file
 *  Primitives for speech recognition and speech processing: everything that the library offers.
 */
#ifndef ZIMSR_H
#define ZIMSR_H

#include <zimsr/types.h>

#include <zimsr/version.h>

#include <zimsr/arithmetic.h>
#include <zimsr/autocorr.h>
#include <zimsr/blockdiagonal.h>
#include <zimsr/columnnorm.h>
#include <zimsr/columnstats.h>
#include <zimsr/convert.h>
#include <zimsr/covariance.h>
#include <zimsr/dctlifter.h>
#include <zimsr/delta.h>
#include <zimsr/energy.h>
#include <zimsr/extremes.h>
#include <zimsr/fft.h>
#include <zimsr/logarithm.h>
#include <zimsr/logdomain.h>
#include <zimsr/loggauss.h>
#include <zimsr/loggauss_fixed.h>
#include <zimsr/mahalanobis.h>
#include <zimsr/matrixsums.h>
#include <zimsr/melfbank.h>
#include <zimsr/melfbank_fixed.h>
#include <zimsr/memory.h>
#include <zimsr/mixture.h>
#include <zimsr/mixture_fixed.h>
#include <zimsr/offset.h>
#include <zimsr/selection.h>
#include <zimsr/signchanges.h>
#include <zimsr/sums.h>
#include <zimsr/update.h>
#include <zimsr/weightedstats.h>

#endif
