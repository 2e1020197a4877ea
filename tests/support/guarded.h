// Arrays that notice a stray access.
//
//     Guarded<float> x(n);              // ends where a protected page begins: reading one byte too far faults
//     Guarded<float> x(n, atOffset(4)); // starts 4 bytes past a 64-byte boundary, canaries on both sides
//
// Canaries are tested when the array is destroyed; a broken one fails the running test.
#pragma once

#include <cstddef>
#include <cstring>
#include <initializer_list>
#include <type_traits>
#include <vector>

namespace zimsr::test {

struct Placement {
    bool beforeProtectedPage = true;
    std::size_t offset = 0;
};

inline Placement atOffset(std::size_t bytes)
{
    return {false, bytes};
}

// A mapping with protected pages on both sides, and bytes of canary wherever the block is not.
class GuardedBlock {
public:
    GuardedBlock(std::size_t bytes, Placement placement);
    ~GuardedBlock();
    GuardedBlock(const GuardedBlock&) = delete;
    GuardedBlock& operator=(const GuardedBlock&) = delete;

    void* data() const { return data_; }

private:
    unsigned char* mapping_;
    std::size_t mappedBytes_;
    unsigned char* usable_;
    std::size_t usableBytes_;
    unsigned char* data_;
    std::size_t bytes_;
};

template <class T>
class Guarded {
    static_assert(std::is_trivially_copyable_v<T>);

public:
    explicit Guarded(std::size_t count, Placement placement = {}) : block_(count * sizeof(T), placement), count_(count)
    {
        std::memset(block_.data(), 0xA5, count * sizeof(T));
    }
    Guarded(std::initializer_list<T> values, Placement placement = {}) : Guarded(values.size(), placement)
    {
        assign(values);
    }
    explicit Guarded(const std::vector<T>& values, Placement placement = {}) : Guarded(values.size(), placement)
    {
        assign(values);
    }

    T* data() const { return static_cast<T*>(block_.data()); }
    operator T*() const { return data(); }
    std::size_t size() const { return count_; }
    T* begin() const { return data(); }
    T* end() const { return data() + count_; }
    std::vector<T> values() const { return std::vector<T>(begin(), end()); }

    // Element by element through memcpy, since an offset may leave the array misaligned for T.
    template <class Sequence>
    void assign(const Sequence& values) const
    {
        std::size_t i = 0;
        for (const T value : values) {
            if (i == count_)
                break;
            std::memcpy(static_cast<char*>(block_.data()) + i++ * sizeof(T), &value, sizeof(T));
        }
    }
    void fill(T value) const { assign(std::vector<T>(count_, value)); }

private:
    GuardedBlock block_;
    std::size_t count_;
};

}  // namespace zimsr::test
