// The 16-byte aligned buffer of one transform: the caller's, or one that lives as long as the call.
#pragma once

#include <cstdint>

#include "base/allocator.h"

namespace zimsr {

class FftWorkspace {
public:
    // bytes includes the slack for aligning the caller's buffer.
    FftWorkspace(Zim8u* callers, int bytes)
        : own_(callers ? nullptr : static_cast<Zim8u*>(allocate(static_cast<std::size_t>(bytes), 1))),
          data_(callers ? callers + (-reinterpret_cast<std::uintptr_t>(callers) & 15) : own_)
    {
    }
    ~FftWorkspace() { release(own_); }
    FftWorkspace(const FftWorkspace&) = delete;
    FftWorkspace& operator=(const FftWorkspace&) = delete;

    explicit operator bool() const { return data_ != nullptr; }
    Zim8u* data() const { return data_; }

private:
    Zim8u* own_;
    Zim8u* data_;
};

}  // namespace zimsr
