// Complex numbers in vectors, real and imaginary parts apart, and the butterflies on them.
//
// A vector of 8 complex numbers holds them in the order 0 1 4 5 2 3 6 7 (laneOrder): that is how 16 interleaved floats
// come apart, and together again, by shuffles within groups of four lanes. Vectors of 4 and single numbers (V is float)
// are in order.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "zimcore/frame/simd.h"

namespace zimsr::fft {

template <class V>
struct LanesOf {
    static constexpr int count = V::lanes;
};
template <>
struct LanesOf<float> {
    static constexpr int count = 1;
};
template <class V>
inline constexpr int lanesOf = LanesOf<V>::count;

// The number that stands in a lane, and the lane that a number stands in: the order is its own inverse.
template <int lanes>
constexpr int laneOrder(int lane)
{
    if (lanes < 8)
        return lane;
    constexpr int order[] = {0, 1, 4, 5, 2, 3, 6, 7};
    return order[lane];
}

template <class V>
struct Complex {
    V re, im;
};

template <class V>
ZIM_INLINE Complex<V> operator+(Complex<V> a, Complex<V> b)
{
    return {a.re + b.re, a.im + b.im};
}

template <class V>
ZIM_INLINE Complex<V> operator-(Complex<V> a, Complex<V> b)
{
    return {a.re - b.re, a.im - b.im};
}

template <class V>
ZIM_INLINE Complex<V> operator*(Complex<V> a, Complex<V> b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

// The transform with the other sign of the exponent is this transform between two exchanges of the parts.
template <class V>
ZIM_INLINE Complex<V> exchanged(Complex<V> z)
{
    return {z.im, z.re};
}

template <class V>
ZIM_INLINE V everywhere(float value)
{
    if constexpr (lanesOf<V> == 1)
        return value;
    else
        return splat<V>(value);
}

template <class V>
ZIM_INLINE Complex<V> scaled(Complex<V> z, float factor)
{
    return {z.re * everywhere<V>(factor), z.im * everywhere<V>(factor)};
}

// ---- Memory: interleaved (re, im, re, im, ...), parts apart (a vector of re, a vector of im), or one number for all
// lanes

template <class V>
ZIM_INLINE Complex<V> loadInterleaved(const float* p)
{
    if constexpr (lanesOf<V> == 1) {
        return {p[0], p[1]};
    } else {
        const V low = load<V>(p), high = load<V>(p + V::lanes);
        return {shuffleFours<0, 2, 4, 6>(low, high), shuffleFours<1, 3, 5, 7>(low, high)};
    }
}

template <class V>
ZIM_INLINE void storeInterleaved(float* p, Complex<V> z)
{
    if constexpr (lanesOf<V> == 1) {
        p[0] = z.re;
        p[1] = z.im;
    } else {
        store(p, shuffleFours<0, 4, 1, 5>(z.re, z.im));
        store(p + V::lanes, shuffleFours<2, 6, 3, 7>(z.re, z.im));
    }
}

template <class V>
ZIM_INLINE Complex<V> loadParts(const float* p)
{
    if constexpr (lanesOf<V> == 1)
        return {p[0], p[1]};
    else
        return {load<V>(p), load<V>(p + V::lanes)};
}

template <class V>
ZIM_INLINE void storeParts(float* p, Complex<V> z)
{
    if constexpr (lanesOf<V> == 1) {
        p[0] = z.re;
        p[1] = z.im;
    } else {
        store(p, z.re);
        store(p + V::lanes, z.im);
    }
}

template <class V>
ZIM_INLINE Complex<V> loadForAll(const float* p)
{
    return {everywhere<V>(p[0]), everywhere<V>(p[1])};
}

// Interleaved, when the first float in memory is not there to be touched.

namespace detail {

template <int first, class V, std::size_t... lane>
ZIM_INLINE V lanesFrom(V a, V b, std::index_sequence<lane...>)
{
    return shuffle<(first + static_cast<int>(lane))...>(a, b);
}

// Lanes first, first + 1, ... of a followed by b.
template <int first, class V>
ZIM_INLINE V lanesFrom(V a, V b)
{
    return lanesFrom<first>(a, b, std::make_index_sequence<V::lanes>());
}

}  // namespace detail

// The first real part is any value.
template <class V>
ZIM_INLINE Complex<V> loadInterleavedButFirst(const float* p)
{
    constexpr int lanes = V::lanes;
    const V high = load<V>(p + lanes);
    const V low = detail::lanesFrom<lanes - 1>(high, load<V>(p + 1));
    return {shuffleFours<0, 2, 4, 6>(low, high), shuffleFours<1, 3, 5, 7>(low, high)};
}

template <class V>
ZIM_INLINE void storeInterleavedButFirst(float* p, Complex<V> z)
{
    const V low = shuffleFours<0, 4, 1, 5>(z.re, z.im), high = shuffleFours<2, 6, 3, 7>(z.re, z.im);
    store(p + 1, detail::lanesFrom<1>(low, high));
    store(p + V::lanes, high);
}

// ---- Butterflies: z[k] = sum over j of z[j] * exp(-2*pi*i*j*k/n), both in natural order

template <class V>
ZIM_INLINE void butterfly4(Complex<V>& z0, Complex<V>& z1, Complex<V>& z2, Complex<V>& z3)
{
    const Complex<V> sum02 = z0 + z2, difference02 = z0 - z2;
    const Complex<V> sum13 = z1 + z3, difference13 = z1 - z3;
    z0 = sum02 + sum13;
    z1 = {difference02.re + difference13.im, difference02.im - difference13.re};
    z2 = sum02 - sum13;
    z3 = {difference02.re - difference13.im, difference02.im + difference13.re};
}

template <class V>
ZIM_INLINE void butterfly8(Complex<V>* z)
{
    butterfly4(z[0], z[2], z[4], z[6]);
    butterfly4(z[1], z[3], z[5], z[7]);
    const V half = everywhere<V>(0.70710677f);  // square root of
    const Complex<V> even0 = z[0], even1 = z[2], even2 = z[4], even3 = z[6];
    const Complex<V> odd0 = z[1], odd2 = z[5];
    const Complex<V> odd1 = {(z[3].re + z[3].im) * half, (z[3].im - z[3].re) * half};
    const Complex<V> odd3 = {(z[7].im - z[7].re) * half, (z[7].re + z[7].im) * half};  // imaginary part negated
    z[0] = even0 + odd0;
    z[4] = even0 - odd0;
    z[1] = even1 + odd1;
    z[5] = even1 - odd1;
    z[2] = {even2.re + odd2.im, even2.im - odd2.re};
    z[6] = {even2.re - odd2.im, even2.im + odd2.re};
    z[3] = {even3.re + odd3.re, even3.im - odd3.im};
    z[7] = {even3.re - odd3.re, even3.im + odd3.im};
}

template <int points, class V>
ZIM_INLINE void butterfly(Complex<V>* z)
{
    static_assert(points == 4 || points == 8);
    if constexpr (points == 4)
        butterfly4(z[0], z[1], z[2], z[3]);
    else
        butterfly8(z);
}

// ---- Moving lanes

namespace detail {

template <class LanePick, class V, std::size_t... lane>
ZIM_INLINE V pickLanes(V a, V b, std::index_sequence<lane...>)
{
    return shuffle<LanePick{}(static_cast<int>(lane))...>(a, b);
}

// Lane by lane the number pick(i) of a, or of b when it is at least the number of lanes; all in terms of numbers, not
// of the lanes that they stand in.
template <class V, class Pick>
ZIM_INLINE V pickNumbers(V a, V b, Pick)
{
    constexpr auto lanePick = [](int lane) constexpr
    {
        constexpr int lanes = lanesOf<V>;
        const int number = Pick{}(laneOrder<lanes>(lane));
        return number < lanes ? laneOrder<lanes>(number) : lanes + laneOrder<lanes>(number - lanes);
    };
    return pickLanes<decltype(lanePick)>(a, b, std::make_index_sequence<lanesOf<V>>());
}

}  // namespace detail

// Numbers in reverse: n - 1, ..., 0.
template <class V>
ZIM_INLINE Complex<V> reversed(Complex<V> z)
{
    constexpr auto pick = [](int number) constexpr
    {
        return lanesOf<V> - 1 - number;
    };
    return {detail::pickNumbers(z.re, z.re, pick), detail::pickNumbers(z.im, z.im, pick)};
}

// Number 0 of next, then numbers n - 1, ..., 1 of z: what stands mirrored at k = 0, 1, ..., n - 1 when z and next
// follow each other. It is its own inverse on a run of vectors.
template <class V>
ZIM_INLINE Complex<V> mirrored(Complex<V> z, Complex<V> next)
{
    constexpr auto pick = [](int number) constexpr
    {
        return number == 0 ? lanesOf<V> : lanesOf<V> - number;
    };
    return {detail::pickNumbers(z.re, next.re, pick), detail::pickNumbers(z.im, next.im, pick)};
}

namespace detail {

ZIM_INLINE void transposeParts(std::array<F4, 4>& v)
{
    const F4 low01 = shuffleFours<0, 4, 1, 5>(v[0], v[1]), high01 = shuffleFours<2, 6, 3, 7>(v[0], v[1]);
    const F4 low23 = shuffleFours<0, 4, 1, 5>(v[2], v[3]), high23 = shuffleFours<2, 6, 3, 7>(v[2], v[3]);
    v = {shuffleFours<0, 1, 4, 5>(low01, low23), shuffleFours<2, 3, 6, 7>(low01, low23),
         shuffleFours<0, 1, 4, 5>(high01, high23), shuffleFours<2, 3, 6, 7>(high01, high23)};
}

ZIM_INLINE void transposeParts(std::array<F8, 8>& v)
{
    std::array<F8, 8> quads;
#pragma GCC unroll 2
    for (std::size_t half = 0; half < 8; half += 4) {
        const F8 low01 = shuffleFours<0, 4, 1, 5>(v[half], v[half + 1]),
                 high01 = shuffleFours<2, 6, 3, 7>(v[half], v[half + 1]);
        const F8 low23 = shuffleFours<0, 4, 1, 5>(v[half + 2], v[half + 3]);
        const F8 high23 = shuffleFours<2, 6, 3, 7>(v[half + 2], v[half + 3]);
        quads[half] = shuffleFours<0, 1, 4, 5>(low01, low23);
        quads[half + 1] = shuffleFours<2, 3, 6, 7>(low01, low23);
        quads[half + 2] = shuffleFours<0, 1, 4, 5>(high01, high23);
        quads[half + 3] = shuffleFours<2, 3, 6, 7>(high01, high23);
    }
#pragma GCC unroll 4
    for (std::size_t i = 0; i < 4; ++i) {
        v[i] = shuffle<0, 1, 2, 3, 8, 9, 10, 11>(quads[i], quads[i + 4]);
        v[i + 4] = shuffle<4, 5, 6, 7, 12, 13, 14, 15>(quads[i], quads[i + 4]);
    }
}

}  // namespace detail

// Transposes a square of numbers: number c of z[r] goes to number r of z[c].
template <class V>
ZIM_INLINE void transpose(Complex<V>* z)
{
    constexpr std::size_t lanes = lanesOf<V>;
    std::array<V, lanes> re, im;
#pragma GCC unroll 8
    for (std::size_t i = 0; i < lanes; ++i) {
        const Complex<V> row = z[laneOrder<lanes>(static_cast<int>(i))];
        re[i] = row.re;
        im[i] = row.im;
    }
    detail::transposeParts(re);
    detail::transposeParts(im);
#pragma GCC unroll 8
    for (std::size_t i = 0; i < lanes; ++i)
        z[laneOrder<lanes>(static_cast<int>(i))] = {re[i], im[i]};
}

}  // namespace zimsr::fft
