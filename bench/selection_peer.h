// The plain loop, compiled with all that the compiler offers.
#pragma once

void peerBuildSignTable(const int* indices, int count, const unsigned char* const* rows, int startBit,
                        unsigned char* dst, int dstHeight, int bits);
