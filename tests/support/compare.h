// Comparers: bit for bit, and within units in the last place.
#pragma once

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <type_traits>
#include <vector>

#include <zimsr/types.h>

namespace zimsr::test {

template <class T>
auto bitsOf(T value)
{
    if constexpr (sizeof(T) == 8)
        return std::bit_cast<std::uint64_t>(value);
    else if constexpr (sizeof(T) == 4)
        return std::bit_cast<std::uint32_t>(value);
    else if constexpr (sizeof(T) == 2)
        return std::bit_cast<std::uint16_t>(value);
    else
        return std::bit_cast<std::uint8_t>(value);
}

// Equal bits; NaNs that arise from arithmetic are equal whatever their sign, which is the processor's.
template <class T>
bool sameBits(T a, T b)
{
    if constexpr (std::is_floating_point_v<T>)
        if (std::isnan(a) && std::isnan(b))
            return true;
    return bitsOf(a) == bitsOf(b);
}

template <class Left, class Right>
testing::AssertionResult equalBits(const Left& left, const Right& right)
{
    if (left.size() != right.size())
        return testing::AssertionFailure() << "sizes " << left.size() << " and " << right.size();
    for (std::size_t i = 0; i < left.size(); ++i)
        if (!sameBits(left[i], right[i]))
            return testing::AssertionFailure() << "element " << i << ": " << +left[i] << " and " << +right[i];
    return testing::AssertionSuccess();
}

// |value - exact| in units of the last place of exact as a T; exact is of higher precision.
template <class T>
long double ulpError(T value, long double exact)
{
    if (std::isnan(value) && std::isnan(exact))
        return 0;
    if (std::isinf(value) || std::isinf(exact))
        return static_cast<long double>(value) == exact ? 0 : std::numeric_limits<long double>::infinity();
    int exponent;
    std::frexp(exact, &exponent);
    exponent = std::max(exponent, std::numeric_limits<T>::min_exponent);
    const long double unit = std::ldexp(1.0L, exponent - std::numeric_limits<T>::digits);
    return std::fabs(static_cast<long double>(value) - exact) / unit;
}

// A table of calls and what they must return: the order of a door's checks.
struct StatusCase {
    const char* what;
    ZimStatus actual;
    ZimStatus expected;
};

inline void expectStatuses(const std::vector<StatusCase>& cases)
{
    for (const StatusCase& c : cases)
        EXPECT_EQ(c.actual, c.expected) << c.what;
}

}  // namespace zimsr::test
