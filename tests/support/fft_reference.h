// The discrete Fourier transform by its definition, in a type of the caller's choice, and how far a single-precision
// one may be from it.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <numbers>
#include <vector>

namespace zimsr::test {

using Floats = std::vector<float>;

inline std::size_t lengthOf(int order)
{
    return std::size_t{1} << order;
}

// sum over j of x[j] * exp(sign * 2*pi*i*j*k / N), for every k, by the textbook recursion on halves.
template <class Real>
void referenceTransform(std::vector<std::complex<Real>>& x, int sign)
{
    using Complex = std::complex<Real>;
    const std::size_t length = x.size();
    for (std::size_t i = 1, j = 0; i < length; ++i) {
        std::size_t bit = length / 2;
        for (; j & bit; bit /= 2)
            j ^= bit;
        j |= bit;
        if (i < j)
            std::swap(x[i], x[j]);
    }
    std::vector<Complex> roots(length / 2);
    for (std::size_t k = 0; k < roots.size(); ++k)
        roots[k] =
            std::polar<Real>(1, sign * 2 * std::numbers::pi_v<Real> * static_cast<Real>(k) / static_cast<Real>(length));
    for (std::size_t span = 2; span <= length; span *= 2)
        for (std::size_t first = 0; first < length; first += span)
            for (std::size_t k = 0; k < span / 2; ++k) {
                const Complex even = x[first + k], root = roots[k * (length / span)], odd = x[first + span / 2 + k];
                const Complex turned(odd.real() * root.real() - odd.imag() * root.imag(),
                                     odd.real() * root.imag() + odd.imag() * root.real());
                x[first + k] = even + turned;
                x[first + span / 2 + k] = even - turned;
            }
}

template <class Real>
std::vector<Real> referenceForward(const Floats& signal)
{
    std::vector<std::complex<Real>> x(signal.begin(), signal.end());
    referenceTransform(x, -1);
    std::vector<Real> pack{x[0].real()};
    for (std::size_t k = 1; k < x.size() / 2; ++k)
        pack.insert(pack.end(), {x[k].real(), x[k].imag()});
    if (x.size() > 1)
        pack.push_back(x[x.size() / 2].real());
    return pack;
}

template <class Real>
std::vector<Real> referenceInverse(const Floats& pack)
{
    const std::size_t length = pack.size();
    std::vector<std::complex<Real>> x(length);
    x[0] = pack[0];
    if (length > 1)
        x[length / 2] = pack[length - 1];
    for (std::size_t k = 1; k < length / 2; ++k) {
        x[k] = {pack[2 * k - 1], pack[2 * k]};
        x[length - k] = std::conj(x[k]);
    }
    referenceTransform(x, 1);
    std::vector<Real> signal;
    for (const auto& value : x)
        signal.push_back(value.real());
    return signal;
}

inline long double factorOf(int flag, int order, bool forward)
{
    const long double length = static_cast<long double>(lengthOf(order));
    return flag == 4 ? 1 / std::sqrt(length) : flag == (forward ? 1 : 2) ? 1 / length : 1;
}

// Relative to the size of the result: the error's root mean square grows as sqrt(log N), its largest value a little
// more.
template <class Real>
void expectWithinErrorBound(const Floats& actual, const std::vector<Real>& exact, long double factor, int order)
{
    ASSERT_EQ(actual.size(), exact.size());
    long double errorSquares = 0, squares = 0, largest = 0;
    for (std::size_t i = 0; i < exact.size(); ++i) {
        const long double error = std::fabs(actual[i] - factor * exact[i]);
        errorSquares += error * error;
        squares += factor * exact[i] * factor * exact[i];
        largest = std::max(largest, error);
    }
    const long double count = static_cast<long double>(exact.size());
    const long double unit = std::ldexp(1.0L, -24), growth = std::sqrt(4.0L + order);
    EXPECT_LE(std::sqrt(errorSquares / squares), 0.7L * unit * growth) << "order " << order;
    EXPECT_LE(largest / std::sqrt(squares / count), 4.2L * unit * growth) << "order " << order;
}

}  // namespace zimsr::test
