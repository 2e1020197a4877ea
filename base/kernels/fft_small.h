// Transforms of length 1 to 8: straight-line arithmetic on the working layout
//
//     Re X[0], Re X[N/2], Re X[1], Im X[1], ..., Re X[N/2-1], Im X[N/2-1]
//
// The scaled versions multiply each result of the first layer of additions by the factor.
#pragma once

#include <cstddef>
#include <cstring>

#include "base/fft_plan.h"

namespace zimsr {

inline constexpr Zim32f sqrtHalf = 0.70710677f;
inline constexpr Zim32f sqrtTwo = 1.4142135f;

template <bool scaled>
inline Zim32f scale(Zim32f value, Zim32f factor)
{
    return scaled ? value * factor : value;
}

template <bool scaled>
inline void rFFT_1(const Zim32f* x, Zim32f* y, Zim32f factor)
{
    y[0] = scale<scaled>(x[0], factor);
}

template <bool scaled>
inline void rFFT_2(const Zim32f* x, Zim32f* y, Zim32f factor)
{
    y[0] = scale<scaled>(x[0] + x[1], factor);
    y[1] = scale<scaled>(x[0] - x[1], factor);
}

template <bool scaled>
inline void rFFTfwd_4(const Zim32f* x, Zim32f* y, Zim32f factor)
{
    const Zim32f even = scale<scaled>(x[0] + x[2], factor);
    const Zim32f odd = scale<scaled>(x[1] + x[3], factor);
    y[0] = even + odd;
    y[1] = even - odd;
    y[2] = scale<scaled>(x[0] - x[2], factor);
    y[3] = scale<scaled>(x[3] - x[1], factor);
}

template <bool scaled>
inline void rFFTfwd_8(const Zim32f* x, Zim32f* y, Zim32f factor)
{
    const Zim32f sum0 = scale<scaled>(x[0] + x[4], factor), difference0 = scale<scaled>(x[0] - x[4], factor);
    const Zim32f sum1 = scale<scaled>(x[1] + x[5], factor), difference1 = scale<scaled>(x[1] - x[5], factor);
    const Zim32f sum2 = scale<scaled>(x[2] + x[6], factor), difference2 = scale<scaled>(x[2] - x[6], factor);
    const Zim32f sum3 = scale<scaled>(x[3] + x[7], factor), difference3 = scale<scaled>(x[3] - x[7], factor);
    const Zim32f diagonalRe = (difference1 - difference3) * sqrtHalf;
    const Zim32f diagonalIm = (difference1 + difference3) * sqrtHalf;
    const Zim32f even = sum0 + sum2, odd = sum1 + sum3;
    y[0] = even + odd;
    y[1] = even - odd;
    y[2] = difference0 + diagonalRe;
    y[3] = -difference2 - diagonalIm;
    y[4] = sum0 - sum2;
    y[5] = sum3 - sum1;
    y[6] = difference0 - diagonalRe;
    y[7] = difference2 - diagonalIm;
}

template <bool scaled>
inline void rFFTinv_4(const Zim32f* x, Zim32f* y, Zim32f factor)
{
    const Zim32f even = scale<scaled>(x[0] + x[1], factor), odd = scale<scaled>(x[0] - x[1], factor);
    const Zim32f re = scale<scaled>(x[2] + x[2], factor), im = scale<scaled>(x[3] + x[3], factor);
    y[0] = even + re;
    y[1] = odd - im;
    y[2] = even - re;
    y[3] = odd + im;
}

template <bool scaled>
inline void rFFTinv_8(const Zim32f* x, Zim32f* y, Zim32f factor)
{
    const Zim32f even = scale<scaled>(x[0] + x[1], factor), odd = scale<scaled>(x[0] - x[1], factor);
    const Zim32f re2 = scale<scaled>(x[4] + x[4], factor), im2 = scale<scaled>(x[5] + x[5], factor);
    const Zim32f sumRe = scale<scaled>(x[2] + x[6], factor), differenceRe = scale<scaled>(x[2] - x[6], factor);
    const Zim32f sumIm = scale<scaled>(x[3] + x[7], factor), differenceIm = scale<scaled>(x[3] - x[7], factor);
    const Zim32f re = sumRe + sumRe, im = differenceIm + differenceIm;
    const Zim32f falling = (differenceRe - sumIm) * sqrtTwo, rising = (differenceRe + sumIm) * sqrtTwo;
    y[0] = (even + re2) + re;
    y[1] = (odd - im2) + falling;
    y[2] = (even - re2) - im;
    y[3] = (odd + im2) - rising;
    y[4] = (even + re2) - re;
    y[5] = (odd - im2) - falling;
    y[6] = (even - re2) + im;
    y[7] = (odd + im2) + rising;
}

// Input, output (another array), factor.
using SmallTransform = void (*)(const Zim32f* x, Zim32f* y, Zim32f factor);

// By order.
inline constexpr SmallTransform tbl_rFFTfwd_small[] = {rFFT_1<false>, rFFT_2<false>, rFFTfwd_4<false>,
                                                       rFFTfwd_8<false>};
inline constexpr SmallTransform tbl_rFFTfwd_norm_small[] = {rFFT_1<true>, rFFT_2<true>, rFFTfwd_4<true>,
                                                            rFFTfwd_8<true>};
inline constexpr SmallTransform tbl_rFFTinv_small[] = {rFFT_1<false>, rFFT_2<false>, rFFTinv_4<false>,
                                                       rFFTinv_8<false>};
inline constexpr SmallTransform tbl_rFFTinv_norm_small[] = {rFFT_1<true>, rFFT_2<true>, rFFTinv_4<true>,
                                                            rFFTinv_8<true>};

template <SpectrumFormat format>
inline void forwardSmall(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan)
{
    const std::size_t length = std::size_t{1} << plan.order;
    Zim32f x[8], working[8], spectrum[10] = {};
    std::memcpy(x, src, length * sizeof(Zim32f));
    (plan.scaleForward ? tbl_rFFTfwd_norm_small : tbl_rFFTfwd_small)[plan.order](x, working, plan.factor);
    constexpr std::size_t bin1 = format == SpectrumFormat::ccs ? 2 : 1;
    spectrum[0] = working[0];
    if (length > 1) {
        std::memcpy(spectrum + bin1, working + 2, (length - 2) * sizeof(Zim32f));
        spectrum[bin1 + length - 2] = working[1];
    }
    const std::size_t elements = format == SpectrumFormat::pack ? length : length == 1 ? 2 : length + 2;
    std::memcpy(dst, spectrum, elements * sizeof(Zim32f));
}

inline void inverseSmall(const Zim32f* src, Zim32f* dst, const ZimsFFTPlan_R_32f& plan)
{
    const std::size_t length = std::size_t{1} << plan.order;
    Zim32f pack[8], working[8], x[8];
    std::memcpy(pack, src, length * sizeof(Zim32f));
    working[0] = pack[0];
    if (length > 1) {
        working[1] = pack[length - 1];
        std::memcpy(working + 2, pack + 1, (length - 2) * sizeof(Zim32f));
    }
    (plan.scaleInverse ? tbl_rFFTinv_norm_small : tbl_rFFTinv_small)[plan.order](working, x, plan.factor);
    std::memcpy(dst, x, length * sizeof(Zim32f));
}

}  // namespace zimsr
