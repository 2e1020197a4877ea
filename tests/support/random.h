// Reproducible test data.
#pragma once

#include <cmath>
#include <limits>
#include <random>
#include <type_traits>
#include <vector>

namespace zimsr::test {

class Random {
public:
    explicit Random(unsigned seed) : engine_(seed) {}

    template <class T>
    T between(T low, T high)
    {
        if constexpr (std::is_floating_point_v<T>)
            return static_cast<T>(low + (static_cast<double>(high) - low) * (engine_() / 4294967296.0));
        else
            return static_cast<T>(low + static_cast<long long>(
                                            (static_cast<unsigned long long>(engine_()) << 32 | engine_()) %
                                            (static_cast<unsigned long long>(high) - static_cast<unsigned long long>(low) + 1)));
    }

    template <class T>
    std::vector<T> vector(std::size_t count, T low, T high)
    {
        std::vector<T> values(count);
        for (T& value : values)
            value = between(low, high);
        return values;
    }

    // Every value of an integer type alike.
    template <class T>
    std::vector<T> any(std::size_t count)
    {
        return vector<T>(count, std::numeric_limits<T>::min(), std::numeric_limits<T>::max());
    }

private:
    std::mt19937 engine_;
};

}  // namespace zimsr::test
