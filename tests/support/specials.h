// The ends of a floating type's range, and what is no number.
#pragma once

#include <limits>
#include <vector>

namespace zimsr::test {

template <class T>
constexpr T infinity = std::numeric_limits<T>::infinity();
template <class T>
constexpr T nan = std::numeric_limits<T>::quiet_NaN();
template <class T>
constexpr T smallest = std::numeric_limits<T>::denorm_min();
template <class T>
constexpr T smallestNormal = std::numeric_limits<T>::min();
template <class T>
constexpr T largest = std::numeric_limits<T>::max();

// All of them, of both signs.
template <class T>
std::vector<T> specialValues()
{
    std::vector<T> values;
    for (T v : {T(0), smallest<T>, smallestNormal<T>, largest<T>, infinity<T>, nan<T>})
        values.insert(values.end(), {v, -v});
    return values;
}

}  // namespace zimsr::test
