// The exported special values. NaNs are written by their bits, since the sign of a computed NaN is the processor's.
#include <bit>

#include <zimsr/version.h>

extern "C" {

constinit const Zim32f zimConstantOfNAN_32f = std::bit_cast<Zim32f>(0xFFC00000u);
constinit const Zim32f zimConstantOfINF_32f = std::bit_cast<Zim32f>(0x7F800000u);
constinit const Zim32f zimConstantOfINF_NEG_32f = std::bit_cast<Zim32f>(0xFF800000u);
constinit const Zim64f zimConstantOfNAN_64f = std::bit_cast<Zim64f>(UINT64_C(0xFFF8000000000000));
constinit const Zim64f zimConstantOfINF_64f = std::bit_cast<Zim64f>(UINT64_C(0x7FF0000000000000));
constinit const Zim64f zimConstantOfINF_NEG_64f = std::bit_cast<Zim64f>(UINT64_C(0xFFF0000000000000));
}
