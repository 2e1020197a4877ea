// Control over malloc: the test program's malloc and free stand in front of the C library's.
//
//     forEachFailedAllocation([&] { ... return status; }, [&](ZimStatus status) { EXPECT_EQ(...); });
#pragma once

#include <gtest/gtest.h>

#include <functional>

#include <zimsr/types.h>

namespace zimsr::test {

// While it lives, counts the requests of this thread, and fails the one numbered failAt (counted from 1; 0 fails none).
class AllocationWatch {
public:
    explicit AllocationWatch(int failAt = 0);
    ~AllocationWatch();
    AllocationWatch(const AllocationWatch&) = delete;
    AllocationWatch& operator=(const AllocationWatch&) = delete;

    int requests() const;
    // Blocks obtained and not yet given back.
    int live() const;
};

// Runs call with its first request failing, then its second, and so on, until it runs through. Each failed run is given
// to check with the number of blocks that it left behind. Returns how many requests a complete run makes.
int forEachFailedAllocation(const std::function<ZimStatus()>& call,
                            const std::function<void(ZimStatus status, int leaked)>& check);

// The common case: each failed run returns status and leaves nothing behind.
int expectCleanFailure(const std::function<ZimStatus()>& call, ZimStatus status);

}  // namespace zimsr::test
