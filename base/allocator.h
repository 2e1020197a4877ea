// The only source of working memory: 32-byte aligned blocks that remember where they came from.
#pragma once

#include <cstddef>

#include <zimsr/types.h>

namespace zimsr {

// A block for count elements of elementSize bytes, 32-byte aligned, or null when count is 0, when the size in bytes
// does not fit, or when malloc has nothing.
void* allocate(std::size_t count, std::size_t elementSize);

// Gives back a block from allocate; null is nothing.
void release(void* block);

// A matrix in one allocation: height row pointers, then the rows, each on a 32-byte boundary and round8(width) elements
// from the next. The block is the row table itself; Free2 gives it back.
Zim32f** Alloc2_32f(int height, int width);
Zim32s** Alloc2_32s(int height, int width);
Zim32f** Alloc2_32fd(int height, int width);
void Free2(void* rows);
void Free2d(void* rows);

}  // namespace zimsr
