#include "support/failing_allocator.h"

#include <cerrno>
#include <cstddef>

// Under a sanitizer malloc is the sanitizer's, and the library is linked to call this program's __wrap_malloc instead.
#ifdef ZIMSR_WRAPPED_MALLOC
#include <cstdlib>
#define INTERPOSED(name) __wrap_##name
#define UNDERLYING(name) name
#else
#define INTERPOSED(name) name
#define UNDERLYING(name) __libc_##name
extern "C" void* __libc_malloc(std::size_t);
extern "C" void __libc_free(void*);
#endif

namespace {

// Local to the thread, so that a test with threads can fail one of them.
thread_local bool watching = false;
thread_local int requestCount, failingRequest, liveBlocks;

}  // namespace

extern "C" void* INTERPOSED(malloc)(std::size_t bytes)
{
    if (watching && ++requestCount == failingRequest) {
        errno = ENOMEM;
        return nullptr;
    }
    void* block = UNDERLYING(malloc)(bytes);
    if (watching && block)
        ++liveBlocks;
    return block;
}

extern "C" void INTERPOSED(free)(void* block)
{
    if (watching && block)
        --liveBlocks;
    UNDERLYING(free)(block);
}

namespace zimsr::test {

AllocationWatch::AllocationWatch(int failAt)
{
    requestCount = liveBlocks = 0;
    failingRequest = failAt;
    watching = true;
}

AllocationWatch::~AllocationWatch()
{
    watching = false;
}

int AllocationWatch::requests() const
{
    return requestCount;
}

int AllocationWatch::live() const
{
    return liveBlocks;
}

int forEachFailedAllocation(const std::function<ZimStatus()>& call,
                            const std::function<void(ZimStatus status, int leaked)>& check)
{
    for (int failAt = 1;; ++failAt) {
        ZimStatus status;
        int requests, leaked;
        {
            AllocationWatch watch(failAt);
            status = call();
            requests = watch.requests();
            leaked = watch.live();
        }
        if (requests < failAt)
            return requests;
        check(status, leaked);
    }
}

int expectCleanFailure(const std::function<ZimStatus()>& call, ZimStatus expected)
{
    return forEachFailedAllocation(call, [expected](ZimStatus status, int leaked) {
        EXPECT_EQ(status, expected);
        EXPECT_EQ(leaked, 0);
    });
}

}  // namespace zimsr::test
