// The plain loops that a user would write, for the compiler to make the best of.
#pragma once

#include <cstddef>
#include <cstdint>

namespace peer {

void set(float value, float* dst, std::size_t len);
void add(const float* src, float* srcDst, std::size_t len);
void multiply(const float* src1, const float* src2, float* dst, std::size_t len);
void scale(const float* src, float value, float* dst, std::size_t len);
void divide(const float* src1, const float* src2, float* dst, std::size_t len);
void magnitude(const float* src, float* dst, std::size_t len);
void bytesToFloats(const std::uint8_t* src, float* dst, std::size_t len);
void shortsToFloats(const std::int16_t* src, float* dst, std::size_t len);
void intsToFloats(const std::int32_t* src, float* dst, std::size_t len);
void doublesToFloats(const double* src, float* dst, std::size_t len);
void floatsToShorts(const float* src, std::int16_t* dst, std::size_t len, float factor);
void floatsToInts(const float* src, std::int32_t* dst, std::size_t len, float factor);
float sum(const float* src, std::size_t len);
float greatest(const float* src, std::size_t len);
std::size_t greatestPlace(const float* src, std::size_t len);
double wideDot(const float* src1, const float* src2, std::size_t len);
std::int64_t exactDot(const std::int16_t* src1, const std::int16_t* src2, std::size_t len);

}  // namespace peer
