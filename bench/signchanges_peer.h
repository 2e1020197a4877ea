// The plain loops that the counts of sign changes are measured against.
#pragma once

namespace peer {

void signChanges(const float* src, int len, float* res);
void signChanges(const short* src, int len, int* res);
void halfSteps(const float* src, int len, float* res);
void halfSteps(const short* src, int len, int* res);
void signBitChanges(const float* src, int len, int* res);

}  // namespace peer
