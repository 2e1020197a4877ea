// What log-domain sums of floats and of scaled integers must be, and numbers to try them on.
#pragma once

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr/types.h>

#include "support/random.h"
#include "zimsr/kernels/logdomain_tables.h"

namespace zimsr::test {

// ln(exp(a) + exp(b))
inline long double exactSum(long double a, long double b)
{
    const long double greater = std::max(a, b);
    return greater + std::log1p(std::exp(std::min(a, b) - greater));
}

// The definition by the tables, in extended precision.
inline long double tabulatedSum(long double a, long double b, bool doubleLevel)
{
    const Zim64f* p[3];
    if (doubleLevel)
        GetLogAddConst(&p[0], &p[1], &p[2]);
    else
        GetLogAddConst_F(&p[0], &p[1], &p[2]);
    const int degree = doubleLevel ? 21 : 10;
    const long double first = doubleLevel ? -3.5 : -2.55, second = doubleLevel ? -9.0 : -6.8;
    const long double greater = std::max(a, b), d = std::min(a, b) - greater;
    if (d < (doubleLevel ? -23.0258509299405 : -15.3195879547406))
        return greater < (doubleLevel ? -9e9 : -4500000.0) ? (doubleLevel ? -1e10 : -4500000.0) : greater;
    const int segment = d > first ? 0 : d > second ? 1 : 2;
    const long double t = segment == 0 ? d : d - (segment == 1 ? first : second);
    long double correction = p[segment][0];
    for (int i = 1; i <= degree; ++i)
        correction = correction * t + p[segment][i];
    return greater + correction;
}

// v * 2^exponent truncated toward zero into the type; NaN gives its least value.
template <class Int>
Int truncated(long double v, int exponent)
{
    using Limits = std::numeric_limits<Int>;
    v = std::ldexp(v, std::clamp(exponent, -3000, 3000));
    if (std::isnan(v))
        return Limits::min();
    return static_cast<Int>(std::clamp<long double>(std::trunc(v), Limits::min(), Limits::max()));
}

inline Zim32f scaleOf(int scaleFactor)
{
    return std::ldexp(1.0f, -std::clamp(scaleFactor, -1000, 1000));
}

constexpr int factors[] = {0,   1,   5,   8,    15,  31,   -1,   -3,   126,     127,
                           128, 149, 150, 1000, -60, -127, -128, -200, INT_MAX, INT_MIN};

template <class Int>
std::vector<Int> integers(unsigned seed)
{
    Random random(seed);
    auto values = random.vector<Int>(40, -700, 100);
    const auto wide = random.any<Int>(40);
    values.insert(values.end(), wide.begin(), wide.end());
    for (int special : {0, 0, 1, -1})
        values.push_back(static_cast<Int>(special));
    values.insert(values.end(), {std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()});
    for (int i = 0; i < 200; ++i)
        values.push_back(static_cast<Int>(random.between(-32768, 32767)));
    return values;
}

}  // namespace zimsr::test
