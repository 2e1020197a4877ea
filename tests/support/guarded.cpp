#include "support/guarded.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

namespace zimsr::test {
namespace {

constexpr unsigned char canary = 0xC7;
constexpr std::size_t canaryBytes = 64;

}  // namespace

GuardedBlock::GuardedBlock(std::size_t bytes, Placement placement) : bytes_(bytes)
{
    const std::size_t page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    usableBytes_ = (bytes + placement.offset + 3 * canaryBytes + page - 1) / page * page;
    mappedBytes_ = usableBytes_ + 2 * page;
    void* mapping = mmap(nullptr, mappedBytes_, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED || mprotect(static_cast<char*>(mapping) + page, usableBytes_, PROT_READ | PROT_WRITE) != 0)
        abort();
    mapping_ = static_cast<unsigned char*>(mapping);
    usable_ = mapping_ + page;
    data_ = placement.beforeProtectedPage ? usable_ + usableBytes_ - bytes : usable_ + canaryBytes + placement.offset;
    std::fill(usable_, usable_ + usableBytes_, canary);
}

GuardedBlock::~GuardedBlock()
{
    const auto isCanary = [](unsigned char byte) { return byte == canary; };
    EXPECT_TRUE(std::all_of(usable_, data_, isCanary)) << "written in front of an array";
    EXPECT_TRUE(std::all_of(data_ + bytes_, usable_ + usableBytes_, isCanary)) << "written behind an array";
    munmap(mapping_, mappedBytes_);
}

}  // namespace zimsr::test
