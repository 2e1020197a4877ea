// The records behind the cosine transform with liftering.
//
// A row of the matrix starts on a 32-byte boundary and is filled up with zeros to a full vector of 8.
#pragma once

#include <zimsr/dctlifter.h>

struct ZimsDCTLifterState_32f {
    Zim32s nLifter;  // -1 when the lifter is the caller's
    Zim32s lenDCT;
    Zim32s lenCepstrum;  // without C0
    Zim32s hasC0;
    Zim32f* lifter;  // lenCepstrum + 1, that of C0 first
    Zim32f** rows;   // lenCepstrum + 1, that of C0 first
};

// Packed, because a caller's buffer may start at any multiple of 4.
struct __attribute__((packed, aligned(4))) ZimsDCTLifterState_16s {
    Zim32s nLifter;
    Zim32s lenDCT;
    Zim32s lenCepstrum;
    Zim32s hasC0;
    Zim32f* lifter;
    Zim32f* workBuf;  // the results before conversion
    Zim32f** rows;
};
