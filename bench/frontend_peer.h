// The front end's inner products as plain loops.
#pragma once

namespace peer {

// energies[i] = sum of lower[i] over the bins c[i] .. c[i+1], and of upper[i] over c[i+1] + 1 .. c[i+2].
void filterBank(const float* spectrum, const int* c, const float* const* lower, const float* const* upper, int nFilter,
                float* energies);

// dst[i] = factor[i] * sum over j of matrix[i * width + j] * src[j].
void scaledMatrixVector(const float* matrix, const float* factor, const float* src, int height, int width, float* dst);

// dst[k] = |spectrum[k]|, of complex values.
void magnitude(const float* spectrum, float* dst, int len);

}  // namespace peer
