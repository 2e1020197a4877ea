#include "base/allocator.h"

#include <cstdint>
#include <cstdlib>

#include <zimsr/memory.h>

namespace zimsr {
namespace {

constexpr std::size_t boundary = 32;
// Room to align up, and for the word in front of the block, which holds malloc's pointer.
constexpr std::size_t overhead = boundary + sizeof(void*);

template <class T>
T* allocateVector(int len)
{
    return len < 1 ? nullptr : static_cast<T*>(allocate(static_cast<std::size_t>(len), sizeof(T)));
}

std::size_t roundUp(std::size_t value, std::size_t unit)
{
    return (value + unit - 1) / unit * unit;
}

template <class T>
T** allocateRows(int height, int width)
{
    const std::size_t rowCount = static_cast<std::size_t>(height);
    const std::size_t rowLength = roundUp(static_cast<std::size_t>(width), 8);
    std::size_t rowBytes, dataBytes, bytes;
    if (__builtin_mul_overflow(rowLength, sizeof(T), &rowBytes) ||
        __builtin_mul_overflow(rowBytes, rowCount, &dataBytes) ||
        __builtin_add_overflow(dataBytes, rowCount * sizeof(T*) + boundary - sizeof(T), &bytes))
        return nullptr;
    char* block = static_cast<char*>(allocate(bytes, 1));
    if (!block)
        return nullptr;
    T** rows = reinterpret_cast<T**>(block);
    char* firstRow = block + roundUp(rowCount * sizeof(T*), boundary);
    for (std::size_t r = 0; r < rowCount; ++r)
        rows[r] = reinterpret_cast<T*>(firstRow + r * rowBytes);
    return rows;
}

}  // namespace

void* allocate(std::size_t count, std::size_t elementSize)
{
    std::size_t bytes;
    if (count == 0 || __builtin_mul_overflow(count, elementSize, &bytes) ||
        __builtin_add_overflow(bytes, overhead, &bytes))
        return nullptr;
    void* raw = std::malloc(bytes);
    if (!raw)
        return nullptr;
    const std::uintptr_t aligned = (reinterpret_cast<std::uintptr_t>(raw) + overhead - 1) & ~(boundary - 1);
    void** block = reinterpret_cast<void**>(aligned);
    block[-1] = raw;
    return block;
}

void release(void* block)
{
    if (block)
        std::free(static_cast<void**>(block)[-1]);
}

Zim32f** Alloc2_32f(int height, int width)
{
    return allocateRows<Zim32f>(height, width);
}

Zim32s** Alloc2_32s(int height, int width)
{
    return allocateRows<Zim32s>(height, width);
}

Zim32f** Alloc2_32fd(int height, int width)
{
    return allocateRows<Zim32f>(height, width);
}

void Free2(void* rows)
{
    release(rows);
}

void Free2d(void* rows)
{
    release(rows);
}

}  // namespace zimsr

Zim8u* zimsMalloc_8u(int len)
{
    return zimsr::allocateVector<Zim8u>(len);
}

Zim16s* zimsMalloc_16s(int len)
{
    return zimsr::allocateVector<Zim16s>(len);
}

Zim32s* zimsMalloc_32s(int len)
{
    return zimsr::allocateVector<Zim32s>(len);
}

Zim32f* zimsMalloc_32f(int len)
{
    return zimsr::allocateVector<Zim32f>(len);
}

Zim64f* zimsMalloc_64f(int len)
{
    return zimsr::allocateVector<Zim64f>(len);
}

void zimsFree(void* ptr)
{
    zimsr::release(ptr);
}
