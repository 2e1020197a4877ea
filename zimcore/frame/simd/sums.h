// Sums across lanes: the library's one tree. The upper half is added to the lower until four lanes are left for
// floats (two for doubles), then neighbours are added.
#pragma once

#include "zimcore/frame/simd/lanes.h"

namespace zimsr {

ZIM_INLINE float sumLanes(F4 v)
{
    return (v[0] + v[1]) + (v[2] + v[3]);
}

ZIM_INLINE float sumLanes(F8 v)
{
    return sumLanes(lowHalf(v) + highHalf(v));
}

ZIM_INLINE double sumLanes(D2 v)
{
    return v[0] + v[1];
}

ZIM_INLINE double sumLanes(D4 v)
{
    return sumLanes(lowHalf(v) + highHalf(v));
}

ZIM_INLINE double sumLanes(D8 v)
{
    return sumLanes(lowHalf(v) + highHalf(v));
}

// Of integers, wrapping around.
template <class T, int N>
requires std::is_integral_v<T> ZIM_INLINE T sumLanes(Vec<T, N> v)
{
    using Unsigned = std::make_unsigned_t<T>;
    if constexpr (N == 2)
        return static_cast<T>(static_cast<Unsigned>(v[0]) + static_cast<Unsigned>(v[1]));
    else
        return sumLanes(lowHalf(v) + highHalf(v));
}

// ---- The sums of a group of vectors at once, each by the tree of sumLanes: foldLanes, then sumFolded. The two are
// apart so that a kernel can put other work between them, which hides the long wait of the last steps.

// The upper half added to the lower.
template <class T, int N>
ZIM_INLINE Vec<T, N / 2> foldHalves(Vec<T, N> v)
{
    return lowHalf(v) + highHalf(v);
}

// The same of two vectors: those of a in the lower half, those of b in the upper.
ZIM_INLINE F8 addHalves(F8 a, F8 b)
{
    return outerHalves(a, b) + shuffle<4, 5, 6, 7, 8, 9, 10, 11>(a, b);
}

ZIM_INLINE I8 addHalves(I8 a, I8 b)
{
    return shuffle<0, 1, 2, 3, 12, 13, 14, 15>(a, b) + shuffle<4, 5, 6, 7, 8, 9, 10, 11>(a, b);
}

ZIM_INLINE D4 addHalves(D4 a, D4 b)
{
    return outerHalves(a, b) + shuffle<2, 3, 4, 5>(a, b);
}

namespace simd_detail {

// Neighbours of a, then of b, within each half.
template <class T>
ZIM_INLINE Vec<T, 4> addNeighbours(Vec<T, 4> a, Vec<T, 4> b)
{
    return shuffle<0, 2, 4, 6>(a, b) + shuffle<1, 3, 5, 7>(a, b);
}

template <class T>
ZIM_INLINE Vec<T, 8> addNeighbours(Vec<T, 8> a, Vec<T, 8> b)
{
    return shuffle<0, 2, 8, 10, 4, 6, 12, 14>(a, b) + shuffle<1, 3, 9, 11, 5, 7, 13, 15>(a, b);
}

ZIM_INLINE D4 addNeighbours(D4 a, D4 b)
{
    return shuffle<0, 4, 2, 6>(a, b) + shuffle<1, 5, 3, 7>(a, b);
}

}  // namespace simd_detail

// Partial sums of count vectors.
template <class V, int count>
struct Folded {
    V part[count * 2 / V::lanes];
};

template <class V>
struct Folded<V, 1> {
    V part[1];
};

template <class V>
ZIM_INLINE Folded<V, 1> foldLanes(const V (&v)[1])
{
    return {{v[0]}};
}

template <class V>
ZIM_INLINE typename V::Lane sumFolded(Folded<V, 1> v)
{
    return sumLanes(v.part[0]);
}

// Of four vectors whose halves have been added already: even holds the first and the third, odd the others.
template <class T>
ZIM_INLINE Folded<Vec<T, 8>, 4> foldPairs(Vec<T, 8> even, Vec<T, 8> odd)
{
    return {{simd_detail::addNeighbours(even, odd)}};
}

template <class T>
ZIM_INLINE Folded<Vec<T, 8>, 4> foldLanes(const Vec<T, 8> (&v)[4])
{
    return foldPairs(addHalves(v[0], v[2]), addHalves(v[1], v[3]));
}

template <class T>
ZIM_INLINE Vec<T, 4> sumFolded(Folded<Vec<T, 8>, 4> v)
{
    return simd_detail::addNeighbours(lowHalf(v.part[0]), highHalf(v.part[0]));
}

ZIM_INLINE Folded<F8, 8> foldLanes(const F8 (&v)[8])
{
    using namespace simd_detail;
    return {{addNeighbours(addHalves(v[0], v[4]), addHalves(v[1], v[5])),
             addNeighbours(addHalves(v[2], v[6]), addHalves(v[3], v[7]))}};
}

ZIM_INLINE F8 sumFolded(Folded<F8, 8> v)
{
    return simd_detail::addNeighbours(v.part[0], v.part[1]);
}

ZIM_INLINE Folded<D4, 4> foldLanes(const D4 (&v)[4])
{
    using namespace simd_detail;
    return {{addHalves(v[0], v[2]), addHalves(v[1], v[3])}};
}

ZIM_INLINE D4 sumFolded(Folded<D4, 4> v)
{
    return simd_detail::addNeighbours(v.part[0], v.part[1]);
}

ZIM_INLINE F4 sumLanesOfFour(F8 a, F8 b, F8 c, F8 d)
{
    return sumFolded(foldLanes({a, b, c, d}));
}

ZIM_INLINE D2 sumLanesOfTwo(D4 a, D4 b)
{
    return {_mm_hadd_pd((lowHalf(a) + highHalf(a)).part[0], (lowHalf(b) + highHalf(b)).part[0])};
}

}  // namespace zimsr
