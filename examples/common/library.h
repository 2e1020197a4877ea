// The library's calls and objects in C++ dress: a failing status becomes an exception, an object frees itself.
#pragma once

#include <zimsr.h>

#include <memory>
#include <stdexcept>
#include <string>

// A warning (a positive status) is not a failure: all was computed.
inline void require(ZimStatus status)
{
    if (status < zimStsOk)
        throw std::runtime_error("the library refused a call with status " + std::to_string(status));
}

// A Free function releases what the object owns; the block of the object itself goes back to the allocator.
template <auto freeTables>
struct Release {
    template <typename Object>
    void operator()(Object* object) const
    {
        freeTables(object);
        zimsFree(object);
    }
};

using FilterBank = std::unique_ptr<ZimsFBankState_32f, Release<zimsFBankFree_32f>>;
using CosineTransform = std::unique_ptr<ZimsDCTLifterState_32f, Release<zimsDCTLifterFree_32f>>;
