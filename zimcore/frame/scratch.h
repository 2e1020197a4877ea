// Working storage for one call: automatic up to a stated size, from the library's allocator above it, released on
// every path out.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/allocator.h"

namespace zimsr {

template <class T, std::size_t automatic>
class Scratch {
public:
    // False from operator bool means that the allocator had nothing: a status of the door.
    explicit Scratch(std::size_t count) : data_(local_)
    {
        if (count > automatic)
            data_ = static_cast<T*>(allocate(count, sizeof(T)));
    }
    ~Scratch()
    {
        if (data_ != local_)
            release(data_);
    }
    Scratch(const Scratch&) = delete;
    Scratch& operator=(const Scratch&) = delete;

    explicit operator bool() const { return data_ != nullptr; }
    T* data() { return data_; }
    T& operator[](std::size_t i) { return data_[i]; }

private:
    alignas(32) T local_[automatic];
    T* data_;
};

// Storage that always comes from the allocator: working memory whose size has no useful bound.
template <class T>
class HeapScratch {
public:
    explicit HeapScratch(std::size_t count) : data_(static_cast<T*>(allocate(count, sizeof(T)))) {}
    ~HeapScratch() { release(data_); }
    HeapScratch(const HeapScratch&) = delete;
    HeapScratch& operator=(const HeapScratch&) = delete;

    explicit operator bool() const { return data_ != nullptr; }
    T* data() { return data_; }
    T& operator[](std::size_t i) { return data_[i]; }

private:
    T* data_;
};

}  // namespace zimsr
