// Dynamic features of a stream of static ones: windows that run down the rows of a feature matrix, strip by strip of
// its columns.
#pragma once

#include <algorithm>
#include <cstddef>

#include <zimsr/delta.h>

#include "base/kernels/elementwise.h"
#include "zimcore/frame/rows.h"
#include "zimsr/kernels/delta_rules.h"
#include "zimsr/kernels/strips.h"

namespace zimsr::delta {

using RowIndex = std::ptrdiff_t;

// Rows first .. end - 1.
struct RowRange {
    RowIndex first, end;
};

// ---- Windows. sum(x) takes the rows around the centre x[0], from x[-radius] to x[radius].

struct Win1 {
    static constexpr int radius = 1;

    template <class Held>
    static ZIM_INLINE auto sum(const Held* x)
    {
        return difference(x[1], x[-1]);
    }
};

struct Win2 {
    static constexpr int radius = 2;

    template <class Held>
    static ZIM_INLINE auto sum(const Held* x)
    {
        return plusTwice(difference(x[1], x[-1]), difference(x[2], x[-2]));
    }
};

// Columns 0 .. width - 1 of out from those of in, for a range of rows; both are columns of one matrix with row stride
// step. Beyond rows 0 and last of in stand repetitions of these two. The width may be a compile-time constant.
template <class Window, class Rule, class Width, class Factors, class T = typename Rule::Element>
void runWindow(const Rule& rule, const T* in, T* out, std::ptrdiff_t step, Width width, Factors factors, RowRange rows,
               RowIndex last)
{
    constexpr int radius = Window::radius, taps = 2 * radius + 1;
    forEachStrip<T, Rule::lanes>(width, [=](auto strip, std::ptrdiff_t column) {
        const auto factor = factors.at(strip, column);
        const Rows from(in + column, step);
        const Rows to(out + column, step);
        const auto hold = [&](RowIndex r) { return rule.hold(strip.load(from[r])); };
        decltype(hold(0)) x[taps];
#pragma GCC unroll 16
        for (int k = 1; k < taps; ++k)
            x[k] = hold(std::clamp<RowIndex>(rows.first - radius + k - 1, 0, last));
        const auto advance = [&](RowIndex r, RowIndex arriving) {
#pragma GCC unroll 16
            for (int k = 1; k < taps; ++k)
                x[k - 1] = x[k];
            x[taps - 1] = hold(arriving);
            strip.store(to[r], rule.deliver(Window::sum(x + radius), factor));
        };
        RowIndex r = rows.first;
        // After a full turn of the window its rows are back in their registers, and nothing had to be moved.
        for (const RowIndex inner = std::min(rows.end, last - radius + 1); r + taps <= inner; r += taps)
#pragma GCC unroll 16
            for (int k = 0; k < taps; ++k)
                advance(r + k, r + k + radius);
        for (; r < rows.end; ++r)
            advance(r, std::min(r + radius, last));
    });
}

// ---- Static features

template <class T>
void copyRows(Rows<const T> in, Rows<T> out, int width, RowIndex height)
{
    constexpr int lanes = Native<T>::lanes;
    const auto itself = [](auto x) { return x; };
    if (width >= lanes)
        for (RowIndex r = 0; r < height; ++r)
            mapLongRow<lanes>(out[r], static_cast<std::size_t>(width), itself, in[r]);
    else
        forEachStrip<T, lanes / 2>(width, [=](auto strip, std::ptrdiff_t column) {
            for (RowIndex r = 0; r < height; ++r)
                strip.store(out[r] + column, strip.load(in[r] + column));
        });
}

template <class Rule, class T = typename Rule::Element>
void writeStatics(const Rule&, Rows<const T> in, Rows<T> out, int width, Unscaled, RowIndex height)
{
    copyRows(in, out, width, height);
}

template <class Rule, class Factors, class T = typename Rule::Element>
void writeStatics(const Rule& rule, Rows<const T> in, Rows<T> out, int width, Factors factors, RowIndex height)
{
    forEachStrip<T, Rule::lanes>(width, [=](auto strip, std::ptrdiff_t column) {
        const auto factor = factors.at(strip, column);
        for (RowIndex r = 0; r < height; ++r)
            strip.store(out[r] + column, rule.deliver(rule.hold(strip.load(in[r] + column)), factor));
    });
}

// ---- Streaming

// What a streaming call is given: frames one after the other, and the matrix that they continue. Its rows hold kinds of
// features side by side: statics, deltas, delta-deltas.
template <class T>
struct Stream {
    const T* src;
    int frameWidth;
    T* dst;
    std::ptrdiff_t dstStep;
    int height;
    int flags;

    bool begins() const { return flags & ZimDeltaBegin; }
    bool ends() const { return flags & ZimDeltaEnd; }
};
template <class T>
Stream(const T*, int, T*, int, int, int) -> Stream<T>;

// A kind of results. run(rows, last) computes a range of rows; each of them became complete when the static arrived
// that stands `reach` rows behind it.
template <class Run>
struct Stage {
    int reach;
    Run run;
};
template <class Run>
Stage(int, Run) -> Stage<Run>;

// How many rows of dst a call takes from the one before: its first static completes a result `reach` rows up, whose
// window begins one radius further up.
constexpr int contextDepth(int radius, int reach)
{
    return radius + reach;
}

// Gives the arriving rows to statics(in, out, height), and to each stage the rows whose results become complete by
// them.
template <class T, class Statics, class... Run>
ZIM_INLINE void streamRows(const Stream<T>& stream, int context, const Statics& statics, const Stage<Run>&... stages)
{
    const RowIndex tile = rowsPerTile<T>(Zim64s{2 + sizeof...(stages)} * stream.frameWidth);
    const RowIndex before = stream.begins() ? 0 : context;
    const RowIndex all = before + stream.height;
    RowIndex known = before;
    do {
        const RowIndex arrived = std::min(known + tile, all);
        statics(Rows<const T>(stream.src + (known - before) * stream.frameWidth, stream.frameWidth),
                Rows<T>(stream.dst + known * stream.dstStep, stream.dstStep), arrived - known);
        const bool closed = stream.ends() && arrived == all;
        (stages.run(RowRange{std::max<RowIndex>(known - stages.reach, 0), closed ? all : arrived - stages.reach},
                    all - 1),
         ...);
        known = arrived;
    } while (known < all);
}

// ---- Regression windows

// A delta is complete one radius behind its row's static, a delta-delta two.
template <class Window>
constexpr int reachOf(int kind)
{
    return kind * Window::radius;
}

template <class Window>
constexpr int contextOf(int order)
{
    return contextDepth(Window::radius, reachOf<Window>(order));
}

// Statics, then deltas.
template <class Window, class Rule, class T, class Scaling>
void appendDelta(const Rule& rule, const Stream<T>& stream, Scaling scaling)
{
    const int width = stream.frameWidth;
    T* const x = stream.dst;
    T* const d = x + width;
    streamRows(
        stream, contextOf<Window>(1),
        [&](auto in, auto out, RowIndex height) { writeStatics(rule, in, out, width, scaling.statics(), height); },
        Stage{reachOf<Window>(1), [&](RowRange rows, RowIndex last) {
                  runWindow<Window>(rule, x, d, stream.dstStep, width, scaling.deltas(1, width), rows, last);
              }});
}

// Statics, then deltas, then delta-deltas, which are the deltas' deltas.
template <class Window, class Rule, class T, class Scaling>
void appendDeltaDelta(const Rule& rule, const Stream<T>& stream, Scaling scaling)
{
    const int width = stream.frameWidth;
    T* const x = stream.dst;
    T* const d = x + width;
    T* const a = d + width;
    streamRows(
        stream, contextOf<Window>(2),
        [&](auto in, auto out, RowIndex height) { writeStatics(rule, in, out, width, scaling.statics(), height); },
        Stage{reachOf<Window>(1),
              [&](RowRange rows, RowIndex last) {
                  runWindow<Window>(rule, x, d, stream.dstStep, width, scaling.deltas(1, width), rows, last);
              }},
        Stage{reachOf<Window>(2), [&](RowRange rows, RowIndex last) {
                  runWindow<Window>(rule, d, a, stream.dstStep, width, scaling.deltas(2, width), rows, last);
              }});
}

}  // namespace zimsr::delta
