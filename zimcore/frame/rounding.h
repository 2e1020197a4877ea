// Rounding of float operations, for a run that rounds in one way whatever the caller has set.
//
//     const RoundToNearest mode;
//     quantise(src, dst, len, ...);
//
// The control word changes only where the caller's mode is another one, and only in its mode bits. It is read and
// written behind a memory barrier: what a kernel loads and stores stays on its side of the change, and with it every
// operation between a load and a store.
#pragma once

#include <cstdint>
#include <limits>

namespace zimsr {

namespace rounding_detail {

inline constexpr std::uint32_t modeBits = 0x6000;  // 0 is to nearest, ties to even

inline std::uint32_t controlWord()
{
    std::uint32_t word;
    __asm__ volatile("stmxcsr %0" : "=m"(word) : : "memory");
    return word;
}

inline void setMode(std::uint32_t mode)
{
    const std::uint32_t word = (controlWord() & ~modeBits) | mode;
    __asm__ volatile("ldmxcsr %0" : : "m"(word) : "memory");
}

}  // namespace rounding_detail

class RoundToNearest {
public:
    RoundToNearest()
    {
        if (!roundsToNearest()) [[unlikely]] {
            callersMode_ = rounding_detail::controlWord() & rounding_detail::modeBits;
            rounding_detail::setMode(0);
        }
    }
    ~RoundToNearest()
    {
        if (callersMode_ != 0) [[unlikely]]
            rounding_detail::setMode(callersMode_);
    }
    RoundToNearest(const RoundToNearest&) = delete;
    RoundToNearest& operator=(const RoundToNearest&) = delete;

private:
    // To read the control word, the processor waits until every float operation in flight is done: longer than a short
    // conversion runs. So the mode is told from two sums. Half a unit is added to 1 and to the float above it: to nearest
    // even, one goes down and the other up; every other mode moves both alike.
    static bool roundsToNearest()
    {
        constexpr float unit = std::numeric_limits<float>::epsilon();
        float one = 1;
        __asm__ volatile("" : "+x"(one) : : "memory");
        return (one + unit + unit / 2) - (one + unit / 2) > unit;
    }

    std::uint32_t callersMode_ = 0;
};

// Toward zero, in the vector unit as in the stack unit, whatever the caller has set; both are as they were afterwards.
//
// What must not move across the change stands in a function that is not inlined: between registers, the compiler moves
// float operations as it likes.
class RoundTowardZero {
public:
    RoundTowardZero() : vectorMode_(rounding_detail::controlWord() & rounding_detail::modeBits)
    {
        rounding_detail::setMode(rounding_detail::modeBits);
        __asm__ volatile("fnstcw %0" : "=m"(stackWord_) : : "memory");
        setStackWord(static_cast<std::uint16_t>(stackWord_ | 0x0C00));
    }
    ~RoundTowardZero()
    {
        rounding_detail::setMode(vectorMode_);
        setStackWord(stackWord_);
    }
    RoundTowardZero(const RoundTowardZero&) = delete;
    RoundTowardZero& operator=(const RoundTowardZero&) = delete;

private:
    static void setStackWord(std::uint16_t word) { __asm__ volatile("fldcw %0" : : "m"(word) : "memory"); }

    std::uint32_t vectorMode_;
    std::uint16_t stackWord_;
};

}  // namespace zimsr
