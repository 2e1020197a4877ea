// The streaming functions of dynamic features, and what they must give: one element at a time, as the formulas are
// written.
#pragma once

#include <algorithm>
#include <functional>
#include <limits>
#include <tuple>
#include <type_traits>
#include <vector>

#include <zimsr/delta.h>

#include "support/arguments.h"
#include "support/deltas.h"

namespace zimsr::test {

constexpr int auroraWindow = 4;

// A streaming function, called in one way: width is of the statics, val has an element per column of a row.
template <class T>
struct Member {
    const char* name;
    int radius, order;
    int wideFrom;  // rows of this width and more are summed in 32 bits
    bool mul;
    std::function<ZimStatus(const T* src, const T* val, int width, T* dst, int dstStep, int height, int flags,
                            int scaleFactor)>
        call;

    template <class... Argument>
    Member(const char* name_, ZimStatus (*door)(Argument...), int radius_, int order_,
           int wideFrom_ = std::numeric_limits<int>::max())
        : name(name_),
          radius(radius_),
          order(order_),
          wideFrom(wideFrom_),
          mul((std::is_same_v<Argument, const T*> + ...) == 2),
          call([door](const T* src, const T* val, int width, T* dst, int step, int height, int flags, int scaleFactor) {
              const T first = val ? val[0] : T{}, second = val ? val[1] : T{};
              const auto fitting = [=](auto... f) {
                  return firstThatFits<decltype(door)>(
                      std::tuple(src, width, dst, step, height, first, flags, f...),
                      std::tuple(src, width, dst, step, height, first, second, flags, f...),
                      std::tuple(src, val, width, dst, step, height, flags, f...),
                      std::tuple(src, dst, step, height, flags, f...),
                      std::tuple(src, val, dst, step, height, flags, f...));
              };
              if constexpr (std::is_same_v<T, Zim16s>)
                  return std::apply(door, fitting(scaleFactor));
              else
                  return std::apply(door, fitting());
          })
    {
    }

    bool aurora() const { return radius == auroraWindow; }
    int srcWidth(int width) const { return aurora() ? 14 : width; }
    int rowLength(int width) const { return (order + 1) * width; }
    // How many rows behind the static a result of a kind is complete.
    int reach(int kind) const { return aurora() ? radius : kind * radius; }
    // K, and what of it a continuing call may read: statics from firstStatic on, deltas of the rows below deltas.
    int context() const { return aurora() ? 2 * radius : (order + 1) * radius; }
    int firstStatic() const { return aurora() || order == 1 ? 0 : radius; }
    int deltas() const { return 2 * firstStatic(); }
};

#define DELTA(name, ...)         \
    {                            \
#name, name, __VA_ARGS__ \
    }

inline const std::vector<Member<Zim32f>> members_32f = {
    DELTA(zimsDelta_Win1_32f_D2, 1, 1),
    DELTA(zimsDelta_Win2_32f_D2, 2, 1),
    DELTA(zimsDeltaDelta_Win1_32f_D2, 1, 2),
    DELTA(zimsDeltaDelta_Win2_32f_D2, 2, 2),
    DELTA(zimsDeltaMul_Win1_32f_D2, 1, 1),
    DELTA(zimsDeltaMul_Win2_32f_D2, 2, 1),
    DELTA(zimsDeltaDeltaMul_Win1_32f_D2, 1, 2),
    DELTA(zimsDeltaDeltaMul_Win2_32f_D2, 2, 2),
    DELTA(zimsDeltaDelta_Aurora_32f_D2, 4, 2),
    DELTA(zimsDeltaDeltaMul_Aurora_32f_D2, 4, 2),
    DELTA(zimsDeltaW1_32f_D2, 1, 1),
    DELTA(zimsDeltaW2_32f_D2, 2, 1),
    DELTA(zimsDeltaDeltaW1_32f_D2, 1, 2),
    DELTA(zimsDeltaDeltaW2_32f_D2, 2, 2),
};

inline const std::vector<Member<Zim16s>> members_16s = {
    DELTA(zimsDelta_Win1_16s_D2Sfs, 1, 1),         DELTA(zimsDelta_Win2_16s_D2Sfs, 2, 1),
    DELTA(zimsDeltaDelta_Win1_16s_D2Sfs, 1, 2),    DELTA(zimsDeltaDelta_Win2_16s_D2Sfs, 2, 2, 14),
    DELTA(zimsDeltaMul_Win1_16s_D2Sfs, 1, 1),      DELTA(zimsDeltaMul_Win2_16s_D2Sfs, 2, 1),
    DELTA(zimsDeltaDeltaMul_Win1_16s_D2Sfs, 1, 2), DELTA(zimsDeltaDeltaMul_Win2_16s_D2Sfs, 2, 2, 1),
    DELTA(zimsDeltaDelta_Aurora_16s_D2Sfs, 4, 2),  DELTA(zimsDeltaDeltaMul_Aurora_16s_D2Sfs, 4, 2),
};
#undef DELTA

template <class T>
const std::vector<Member<T>>& members()
{
    if constexpr (std::is_same_v<T, Zim32f>)
        return members_32f;
    else
        return members_16s;
}

// ---- What they must give: one element at a time, as the formulas are written

// Frames t - 4 .. t + 4 of one column.
template <class T>
struct Around {
    T x[9];
    T operator[](int k) const { return x[k + 4]; }
};

inline Zim32f regression(const Around<Zim32f>& x, int radius, bool, Zim32f val, int)
{
    Zim32f sum = x[1] - x[-1];
    if (radius == 2) {
        const Zim32f e = x[2] - x[-2];
        sum = (sum + e) + e;
    }
    return sum * val;
}

inline Zim16s regression(const Around<Zim16s>& x, int radius, bool wide, Zim16s val, int scaleFactor)
{
    const auto sat = [wide](long long v) { return wide ? v : limited(v); };
    long long sum = sat(x[1] - x[-1]);
    if (radius == 2) {
        const long long e = sat(x[2] - x[-2]);
        sum = sat(sum + sat(e + e));
    }
    return scaled(sum * val, scaleFactor);
}

constexpr Zim32f auroraTaps[3][9] = {
    {},
    {-1.0f, -0.75f, -0.5f, -0.25f, -0.0f, 0.25f, 0.5f, 0.75f, 1.0f},
    {1.0f, 0.25f, -0.285714f, -0.607143f, -0.714286f, -0.607143f, -0.285714f, 0.25f, 1.0f}};

template <class T>
Zim32f auroraSum(const Around<T>& x, int kind)
{
    Zim32f sum = 0.0f;
    for (int k = -4; k <= 4; ++k)
        sum = sum + static_cast<Zim32f>(x[k]) * auroraTaps[kind][k + 4];
    return sum;
}

inline Zim32f aurora(const Around<Zim32f>& x, int kind, Zim32f val, int)
{
    return auroraSum(x, kind) * val;
}

inline Zim16s aurora(const Around<Zim16s>& x, int kind, Zim16s val, long long scaleFactor)
{
    if (kind == 1) {
        long long sum = 0;
        for (int k = -4; k <= 4; ++k)
            sum += k * x[k];
        return scaled(val * sum, std::max(scaleFactor + 2, 0LL));
    }
    return scaled(static_cast<long long>(static_cast<Zim32f>(val) * auroraSum(x, 2)), std::max(scaleFactor, 0LL));
}

template <class T>
Zim32f auroraEnergy(const T* frame)
{
    return static_cast<Zim32f>(frame[12]) * 0.6f / 23.0f + static_cast<Zim32f>(frame[13]) * 0.4f;
}

inline Zim32f staticOf(const Member<Zim32f>& m, const Zim32f* frame, int column, Zim32f val, int)
{
    const Zim32f value = m.aurora() && column == 12 ? auroraEnergy(frame) : frame[column];
    return m.mul ? value * val : value;
}

inline Zim16s staticOf(const Member<Zim16s>& m, const Zim16s* frame, int column, Zim16s val, int scaleFactor)
{
    const Zim16s factor = m.mul ? val : Zim16s{1};
    if (m.aurora())
        return scaled(column == 12 ? static_cast<long long>(static_cast<Zim32f>(factor) * auroraEnergy(frame))
                                   : static_cast<long long>(frame[column]) * factor,
                      std::max(scaleFactor, 0));
    return m.mul ? scaled(static_cast<long long>(frame[column]) * val, scaleFactor) : frame[column];
}

// The features of a whole utterance, row by row without gaps.
template <class T>
std::vector<T> features(const Member<T>& m, const std::vector<T>& src, const std::vector<T>& val, int frames, int width,
                        int scaleFactor)
{
    const int row = m.rowLength(width);
    std::vector<T> all(frames * row);
    const auto at = [&](int t, int column) -> T& { return all[std::clamp(t, 0, frames - 1) * row + column]; };
    for (int t = 0; t < frames; ++t)
        for (int c = 0; c < width; ++c)
            at(t, c) = staticOf(m, &src[t * m.srcWidth(width)], c, val[c], scaleFactor);
    for (int kind = 1; kind <= m.order; ++kind)
        for (int t = 0; t < frames; ++t)
            for (int c = 0; c < width; ++c) {
                const T factor = m.mul ? val[kind * width + c] : m.aurora() ? T{1} : val[kind - 1];
                const int source = m.aurora() ? c : (kind - 1) * width + c;
                Around<T> x;
                for (int k = -4; k <= 4; ++k)
                    x.x[k + 4] = at(t + k, source);
                at(t, kind * width + c) = m.aurora()
                                              ? aurora(x, kind, factor, scaleFactor)
                                              : regression(x, m.radius, width >= m.wideFrom, factor, scaleFactor);
            }
    return all;
}

}  // namespace zimsr::test
