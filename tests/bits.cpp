// Prints a digest of the results of each floating-point family, a line each. Two instruction levels, two pointer widths
// or two compilers must print the same text.
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include <zimsr.h>

namespace {

using Floats = std::vector<Zim32f>;
using Doubles = std::vector<Zim64f>;

// FNV-1a over the bytes of results.
class Digest {
public:
    template <class T>
    void add(const std::vector<T>& values)
    {
        const auto* bytes = reinterpret_cast<const unsigned char*>(values.data());
        for (std::size_t i = 0; i < values.size() * sizeof(T); ++i)
            hash_ = (hash_ ^ bytes[i]) * UINT64_C(1099511628211);
    }
    void add(ZimStatus status) { add(std::vector<ZimStatus>{status}); }
    std::uint64_t value() const { return hash_; }

private:
    std::uint64_t hash_ = UINT64_C(14695981039346656037);
};

// Numbers that every build draws alike: multiples of 2^-24 from a linear congruence (Knuth, MMIX).
class Numbers {
public:
    explicit Numbers(std::uint64_t seed) : state_(seed * 2 + 1) {}

    std::int32_t integer() { return static_cast<std::int32_t>(next()); }

    template <class T>
    std::vector<T> between(int count, double low, double high)
    {
        std::vector<T> values;
        for (int i = 0; i < count; ++i)
            values.push_back(static_cast<T>(low + (high - low) * (next() >> 8) / 16777216.0));
        return values;
    }

private:
    std::uint32_t next()
    {
        state_ = state_ * UINT64_C(6364136223846793005) + UINT64_C(1442695040888963407);
        return static_cast<std::uint32_t>(state_ >> 32);
    }
    std::uint64_t state_;
};

void report(const std::string& name, const std::function<void(Digest&)>& run)
{
    Digest digest;
    run(digest);
    std::printf("%-34s %016llx\n", name.c_str(), static_cast<unsigned long long>(digest.value()));
}

// Runs over lengths that take every path, with arrays at several places in a vector register.
void overLengths(const std::function<void(int len, int offset)>& run)
{
    for (int len = 1; len <= 70; ++len)
        run(len, len % 4);
    for (int len : {100, 255, 256, 257, 1000, 4099, 70000})
        for (int offset = 0; offset < 2; ++offset)
            run(len, offset);
}

template <class T>
using Unary = ZimStatus (*)(const T*, int, T*);

template <class T>
void reportReduction(const char* name, Unary<T> function, double low, double high)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(1);
        overLengths([&](int len, int offset) {
            const auto x = numbers.between<T>(len + offset, low, high);
            std::vector<T> result(1);
            digest.add(function(x.data() + offset, len, result.data()));
            digest.add(result);
        });
    });
}

template <class T, class Result>
void reportDotProduct(const char* name, ZimStatus (*function)(const T*, const T*, int, Result*), double bound)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(2);
        overLengths([&](int len, int offset) {
            const auto x = numbers.between<T>(len + offset, -bound, bound), y = numbers.between<T>(len, -bound, bound);
            std::vector<Result> result(1);
            digest.add(function(x.data() + offset, y.data(), len, result.data()));
            digest.add(result);
        });
    });
}

template <class T>
void reportElementwise(const char* name, const std::function<ZimStatus(const T*, T*, int)>& function, double low,
                       double high)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(3);
        overLengths([&](int len, int offset) {
            const auto x = numbers.between<T>(len + offset, low, high);
            auto y = numbers.between<T>(len, low, high);
            digest.add(function(x.data() + offset, y.data(), len));
            digest.add(y);
        });
    });
}

void vectors()
{
    reportReduction<Zim32f>("zimsMax_32f", zimsMax_32f, -1, 1);
    reportReduction<Zim32f>("zimsMin_32f", zimsMin_32f, -1, 1);
    reportReduction<Zim64f>("zimsMax_64f", zimsMax_64f, -1, 1);
    reportReduction<Zim64f>("zimsMin_64f", zimsMin_64f, -1, 1);
    reportReduction<Zim32f>("zimsSumLn_32f", zimsSumLn_32f, 1e-9, 100);
    reportReduction<Zim64f>("zimsSumLn_64f", zimsSumLn_64f, 1e-9, 100);
    for (int hint : {0, 1})
        reportReduction<Zim32f>(
            hint ? "zimsSum_32f fast" : "zimsSum_32f accurate",
            hint ? [](const Zim32f* x, int len, Zim32f* sum) { return zimsSum_32f(x, len, sum, 1); }
                 : [](const Zim32f* x, int len, Zim32f* sum) { return zimsSum_32f(x, len, sum, 0); },
            -1, 1);
    reportDotProduct("zimsDotProd_32f", zimsDotProd_32f, 1);
    reportDotProduct("zimsDotProd_64f", zimsDotProd_64f, 1);
    reportDotProduct("zimsDotProd_32f64f", zimsDotProd_32f64f, 1);
    reportDotProduct("zimsDotProd_16s32f", zimsDotProd_16s32f, 32767);
    reportElementwise<Zim32f>("zimsAdd_32f_I", zimsAdd_32f_I, -1, 1);
    reportElementwise<Zim64f>("zimsSub_64f_I", zimsSub_64f_I, -1, 1);
    reportElementwise<Zim32f>("zimsDiv_32f_I", zimsDiv_32f_I, 0.01, 1);
    reportElementwise<Zim32f>(
        "zimsMulC_32f", [](const Zim32f* x, Zim32f* y, int len) { return zimsMulC_32f(x, 0.3f, y, len); }, -1, 1);
    reportElementwise<Zim64f>(
        "zimsDivC_64f", [](const Zim64f* x, Zim64f* y, int len) { return zimsDivC_64f(x, 0.3, y, len); }, -1, 1);
    reportElementwise<Zim32f>(
        "zimsLn_32f_I", [](const Zim32f*, Zim32f* y, int len) { return zimsLn_32f_I(y, len); }, 1e-9, 1000);
    reportElementwise<Zim64f>(
        "zimsSqrt_64f_I", [](const Zim64f*, Zim64f* y, int len) { return zimsSqrt_64f_I(y, len); }, 0, 1000);
    report("zimsMagnitude_32fc", [](Digest& digest) {
        Numbers numbers(4);
        overLengths([&](int len, int offset) {
            const auto x = numbers.between<Zim32f>(2 * (len + offset), -1, 1);
            Floats magnitude(static_cast<std::size_t>(len));
            digest.add(zimsMagnitude_32fc(reinterpret_cast<const Zim32fc*>(x.data()) + offset, magnitude.data(), len));
            digest.add(magnitude);
        });
    });
}

void transforms()
{
    report("zimsFFTFwd_RToCCS_32f", [](Digest& digest) {
        for (int order = 0; order <= 19; ++order) {
            Numbers numbers(5);
            const int len = 1 << order;
            ZimsFFTPlan_R_32f* plan = nullptr;
            digest.add(zimsFFTInitAlloc_R_32f(&plan, order, order % 2 ? 4 : 2, 0));
            const auto x = numbers.between<Zim32f>(len + 1, -1, 1);
            Floats ccs(static_cast<std::size_t>(len) + 3), pack(ccs.size()), back(ccs.size());
            digest.add(zimsFFTFwd_RToCCS_32f(x.data() + 1, ccs.data() + order % 2, plan, nullptr));
            digest.add(zimsFFTFwd_RToPack_32f(x.data(), pack.data(), plan, nullptr));
            digest.add(zimsFFTInv_PackToR_32f(pack.data(), back.data(), plan, nullptr));
            zimsFFTFree_R_32f(plan);
            digest.add(ccs);
            digest.add(pack);
            digest.add(back);
        }
    });
    report("zimsAutoCorr_32f", [](Digest& digest) {
        Numbers numbers(6);
        for (int len : {1, 2, 7, 8, 9, 31, 100, 400, 855, 900, 2000}) {
            const auto x = numbers.between<Zim32f>(len, -1, 1);
            Floats correlation(1000);
            digest.add(zimsAutoCorr_32f(x.data(), len, correlation.data(), 1000));
            digest.add(correlation);
        }
    });
}

template <class T, class Call>
void reportScores(const char* name, Call call)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(7);
        for (int width = 1; width <= 70; ++width)
            for (int height : {1, 2, 4, 7}) {
                const int step = width + width % 3;
                const auto mat = numbers.between<T>(step * height, -4, 4),
                           mean = numbers.between<T>(step * height, -4, 4),
                           invVar = numbers.between<T>(step * height, 0.1, 4);
                auto result = numbers.between<T>(height, -3, 3);
                digest.add(call(mat.data(), step, mean.data(), invVar.data(), width, result.data(), height));
                digest.add(result);
            }
    });
}

// Every fold in turn, on the same running scores.
template <class T, class Frames, class Gaussians, class Whole, class WholeOfIdentity>
void reportMixtures(const char* name, Frames max, Frames add, Gaussians maxMix, Gaussians addMix, Whole mixture,
                    WholeOfIdentity mixtureOfIdentity)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(13);
        for (int width = 1; width <= 45; ++width)
            for (int height : {1, 4, 7, 130}) {
                const int step = width + width % 3;
                const auto mat = numbers.between<T>(step * height, -1, 1),
                           weights = numbers.between<T>(step * height, 0.1, 3), x = numbers.between<T>(width, -1, 1),
                           constants = numbers.between<T>(height, -40, 0);
                auto scores = numbers.between<T>(height, -60, 0);
                for (Frames fold : {max, add}) {
                    digest.add(fold(mat.data(), step, x.data(), weights.data(), width, scores.data(), height, -9));
                    digest.add(scores);
                }
                for (Gaussians fold : {maxMix, addMix}) {
                    digest.add(fold(mat.data(), weights.data(), step, x.data(), width, constants.data(), scores.data(),
                                    height));
                    digest.add(scores);
                }
                digest.add(mixture(x.data(), mat.data(), weights.data(), height, step, width, constants.data(),
                                   scores.data()));
                digest.add(scores);
                digest.add(
                    mixtureOfIdentity(x.data(), mat.data(), height, step, width, constants.data(), scores.data()));
                digest.add(scores);
            }
    });
}

void scores()
{
    reportScores<Zim32f>("zimsLogGauss_32f_D2",
                         [](auto mat, auto step, auto mean, auto invVar, auto width, auto result, auto height) {
                             return zimsLogGauss_32f_D2(mat, step, mean, invVar, width, result, height, -1.3f);
                         });
    reportScores<Zim64f>("zimsLogGauss_64f_D2",
                         [](auto mat, auto step, auto mean, auto invVar, auto width, auto result, auto height) {
                             return zimsLogGauss_64f_D2(mat, step, mean, invVar, width, result, height, -1.3);
                         });
    reportScores<Zim32f>("zimsLogGauss_IdVar_32f_D2",
                         [](auto mat, auto step, auto mean, auto, auto width, auto result, auto height) {
                             return zimsLogGauss_IdVar_32f_D2(mat, step, mean, width, result, height, -1.3f);
                         });
    reportScores<Zim64f>("zimsLogGauss_IdVar_64f_D2",
                         [](auto mat, auto step, auto mean, auto, auto width, auto result, auto height) {
                             return zimsLogGauss_IdVar_64f_D2(mat, step, mean, width, result, height, -1.3);
                         });
    reportScores<Zim32f>("zimsLogGaussMultiMix_32f_D2",
                         [](auto mat, auto step, auto mean, auto invVar, auto width, auto result, auto height) {
                             return zimsLogGaussMultiMix_32f_D2(mean, invVar, step, mat, width, result, height);
                         });
    reportScores<Zim64f>("zimsLogGaussMultiMix_64f_D2",
                         [](auto mat, auto step, auto mean, auto invVar, auto width, auto result, auto height) {
                             return zimsLogGaussMultiMix_64f_D2(mean, invVar, step, mat, width, result, height);
                         });
    reportMixtures<Zim32f>("mixtures of Zim32f", zimsLogGaussMax_32f_D2, zimsLogGaussAdd_32f_D2,
                           zimsLogGaussMaxMultiMix_32f_D2, zimsLogGaussAddMultiMix_32f_D2, zimsLogGaussMixture_32f_D2,
                           zimsLogGaussMixture_IdVar_32f_D2);
    reportMixtures<Zim64f>("mixtures of Zim64f", zimsLogGaussMax_64f_D2, zimsLogGaussAdd_64f_D2,
                           zimsLogGaussMaxMultiMix_64f_D2, zimsLogGaussAddMultiMix_64f_D2, zimsLogGaussMixture_64f_D2,
                           zimsLogGaussMixture_IdVar_64f_D2);
    reportScores<Zim32f>("zimsLogGaussSingle_32f",
                         [](auto mat, auto, auto mean, auto invVar, auto width, auto result, auto) {
                             return zimsLogGaussSingle_32f(mat, mean, invVar, width, result, -1.3f);
                         });
    reportScores<Zim32f>("zimsLogGaussSingle_DirectVar_32f",
                         [](auto mat, auto, auto mean, auto var, auto width, auto result, auto) {
                             return zimsLogGaussSingle_DirectVar_32f(mat, mean, var, width, result, -1.3f);
                         });
    reportScores<Zim64f>("zimsLogGaussSingle_DirectVar_64f",
                         [](auto mat, auto, auto mean, auto var, auto width, auto result, auto) {
                             return zimsLogGaussSingle_DirectVar_64f(mat, mean, var, width, result, -1.3);
                         });
    reportScores<Zim64f>("zimsLogGaussSingle_IdVar_64f",
                         [](auto mat, auto, auto mean, auto, auto width, auto result, auto) {
                             return zimsLogGaussSingle_IdVar_64f(mat, mean, width, result, -1.3);
                         });
}

void fixedScores()
{
    report("fixed-point scores", [](Digest& digest) {
        Numbers numbers(17);
        for (int width = 1; width <= 45; ++width)
            for (int height : {1, 4, 7, 130}) {
                const int step = width + width % 3;
                const auto mat = numbers.between<Zim16s>(step * height, -32768, 32767),
                           weights = numbers.between<Zim16s>(step * height, -32768, 32767),
                           x = numbers.between<Zim16s>(width, -32768, 32767);
                const auto constants = numbers.between<Zim32f>(height, -40, 0);
                const auto integers = numbers.between<Zim32s>(height, -1e6, 1e6);
                auto scores = numbers.between<Zim32f>(height, -1e9, 0);
                auto running = numbers.between<Zim32s>(height, -1e9, 1e9);
                for (int factor : {3, 20, -2}) {
                    const auto weighted = [&](auto& into, auto... doors) {
                        ((digest.add(doors(mat.data(), step, x.data(), weights.data(), width, into.data(), height, -9,
                                           factor)),
                          digest.add(into)),
                         ...);
                    };
                    const auto unweighted = [&](auto& into, auto... doors) {
                        ((digest.add(doors(mat.data(), step, x.data(), width, into.data(), height, -9, factor)),
                          digest.add(into)),
                         ...);
                    };
                    const auto gaussians = [&](auto& into, const auto& val, auto... doors) {
                        ((digest.add(doors(mat.data(), weights.data(), step, x.data(), width, val.data(), into.data(),
                                           height, factor)),
                          digest.add(into)),
                         ...);
                    };
                    weighted(scores, zimsLogGauss_Scaled_16s32f_D2, zimsLogGaussMax_LowScaled_16s32f_D2,
                             zimsLogGaussAdd_Scaled_16s32f_D2, zimsLogGaussAdd_LowScaled_16s32f_D2);
                    weighted(running, zimsLogGauss_16s32s_D2Sfs, zimsLogGaussMax_16s32s_D2Sfs,
                             zimsLogGauss_Low_16s32s_D2Sfs, zimsLogGaussMax_Low_16s32s_D2Sfs);
                    unweighted(scores, zimsLogGauss_IdVarScaled_16s32f_D2, zimsLogGauss_IdVarLowScaled_16s32f_D2);
                    unweighted(running, zimsLogGauss_IdVar_16s32s_D2Sfs, zimsLogGaussMax_IdVar_16s32s_D2Sfs,
                               zimsLogGauss_IdVarLow_16s32s_D2Sfs, zimsLogGaussMax_IdVarLow_16s32s_D2Sfs);
                    gaussians(scores, constants, zimsLogGaussMaxMultiMix_Scaled_16s32f_D2,
                              zimsLogGaussAddMultiMix_LowScaled_16s32f_D2);
                    gaussians(running, integers, zimsLogGaussMaxMultiMix_16s32s_D2Sfs,
                              zimsLogGaussMaxMultiMix_Low_16s32s_D2Sfs);
                    digest.add(zimsLogGaussMixture_Scaled_16s32f_D2(x.data(), mat.data(), weights.data(), height, step,
                                                                    width, constants.data(), scores.data(), factor));
                    digest.add(zimsLogGaussMixture_IdVarScaled_16s32f_D2(x.data(), mat.data(), height, step, width,
                                                                         constants.data(), scores.data() + height - 1,
                                                                         factor));
                    digest.add(scores);
                    for (auto single : {zimsLogGaussSingle_16s32s_Sfs, zimsLogGaussSingle_Low_16s32s_Sfs,
                                        zimsLogGaussSingle_DirectVar_16s32s_Sfs}) {
                        digest.add(single(mat.data(), x.data(), weights.data(), width, running.data(), 5, factor));
                        digest.add(running);
                    }
                }
            }
    });
}

void distances()
{
    reportScores<Zim32f>("zimsMahDist_32f_D2",
                         [](auto mat, auto step, auto mean, auto invVar, auto width, auto result, auto height) {
                             return zimsMahDist_32f_D2(mat, step, mean, invVar, width, result, height);
                         });
    reportScores<Zim64f>("zimsMahDistMultiMix_64f_D2",
                         [](auto mat, auto step, auto mean, auto invVar, auto width, auto result, auto height) {
                             return zimsMahDistMultiMix_64f_D2(mean, invVar, step, mat, width, result, height);
                         });
    report("zimsMeanVarAcc_32f", [](Digest& digest) {
        Numbers numbers(12);
        for (int width = 1; width <= 40; ++width) {
            const auto x = numbers.between<Zim32f>(width, -4, 4), mean = numbers.between<Zim32f>(width, -4, 4);
            auto meanAcc = numbers.between<Zim32f>(width, -4, 4), varAcc = numbers.between<Zim32f>(width, 0, 4);
            digest.add(zimsMeanVarAcc_32f(x.data(), mean.data(), meanAcc.data(), varAcc.data(), width, 0.3f));
            digest.add(meanAcc);
            digest.add(varAcc);
        }
    });
}

void logDomain()
{
    for (int hint : {0, 1, 2})
        reportElementwise<Zim32f>(
            ("zimsLogAdd_32f, hint " + std::to_string(hint)).c_str(),
            [hint](const Zim32f* x, Zim32f* y, int len) { return zimsLogAdd_32f(x, y, len, hint); }, -20, 0);
    reportElementwise<Zim64f>(
        "zimsLogAdd_64f", [](const Zim64f* x, Zim64f* y, int len) { return zimsLogAdd_64f(x, y, len, 0); }, -30, 0);
    const auto belowSource = [](auto* x, auto* y, int len) {
        for (int i = 0; i < len; ++i)
            y[i] += x[i];
    };
    reportElementwise<Zim32f>(
        "zimsLogSub_32f",
        [&](const Zim32f* x, Zim32f* y, int len) {
            belowSource(x, y, len);
            return zimsLogSub_32f(x, y, len);
        },
        -20, -0.001);
    reportElementwise<Zim64f>(
        "zimsLogSub_64f",
        [&](const Zim64f* x, Zim64f* y, int len) {
            belowSource(x, y, len);
            return zimsLogSub_64f(x, y, len);
        },
        -30, -0.001);
    reportReduction<Zim32f>(
        "zimsLogSum_32f", [](const Zim32f* x, int len, Zim32f* sum) { return zimsLogSum_32f(x, sum, len); }, -20, 0);
    reportReduction<Zim64f>(
        "zimsLogSum_64f", [](const Zim64f* x, int len, Zim64f* sum) { return zimsLogSum_64f(x, sum, len); }, -30, 0);
}

template <class T, class Score, class Matrix>
void reportBlockScores(const char* name, ZimStatus (*initAlloc)(Matrix**, const T* const*, const Zim32s*, int),
                       ZimStatus (*free)(Matrix*),
                       ZimStatus (*score)(const T*, const T*, const Matrix*, int, Score*, Score))
{
    report(name, [=](Digest& digest) {
        Numbers numbers(13);
        for (int size = 1; size <= 40; ++size) {
            const Zim32s sizes[] = {size, 3, size};
            const int len = 2 * size + 3;
            const auto x = numbers.between<T>(len, -40, 40), mean = numbers.between<T>(len, -40, 40);
            const auto elements = numbers.between<T>(len * len, -40, 40);
            std::vector<const T*> rows;
            for (int r = 0; r < len; ++r)
                rows.push_back(elements.data() + r * len);
            Matrix* matrix = nullptr;
            digest.add(initAlloc(&matrix, rows.data(), sizes, 3));
            std::vector<Score> result(1);
            digest.add(score(x.data(), mean.data(), matrix, len, result.data(), Score(-13)));
            digest.add(result);
            free(matrix);
        }
    });
}

void blockScores()
{
    const auto init = zimsBlockDMatrixInitAlloc_32f;
    const auto free = zimsBlockDMatrixFree_32f;
    reportBlockScores("zimsLogGaussSingle_BlockDVar_32f", init, free, zimsLogGaussSingle_BlockDVar_32f);
    reportBlockScores("zimsLogGaussSingle_BlockDVar_32f64f", init, free, zimsLogGaussSingle_BlockDVar_32f64f);
    reportBlockScores("zimsLogGaussSingle_BlockDVar_64f", zimsBlockDMatrixInitAlloc_64f, zimsBlockDMatrixFree_64f,
                      zimsLogGaussSingle_BlockDVar_64f);
    reportBlockScores("zimsLogGaussSingle_BlockDVar_16s32f", zimsBlockDMatrixInitAlloc_16s, zimsBlockDMatrixFree_16s,
                      zimsLogGaussSingle_BlockDVar_16s32f);
}

void selections()
{
    report("zimsLogGaussMixture_Select_32f_D2", [](Digest& digest) {
        Numbers numbers(14);
        for (int gaussCount : {1, 8, 9, 33, 200})
            for (int height : {1, 2, 9, 40}) {
                const auto src = numbers.between<Zim32f>(13 * height, -4, 4);
                const auto mean = numbers.between<Zim32f>(13 * gaussCount, -4, 4);
                const auto invVar = numbers.between<Zim32f>(13 * gaussCount, 0.1, 4);
                const auto val = numbers.between<Zim32f>(gaussCount, -9, 0);
                const auto table = numbers.between<Zim8u>((gaussCount + 7) / 8 * height, 0, 256);
                Floats sums(static_cast<std::size_t>(height));
                digest.add(zimsLogGaussMixture_Select_32f_D2(src.data(), mean.data(), invVar.data(), 13, 13, val.data(),
                                                             table.data(), gaussCount, sums.data(), height, -1));
                digest.add(sums);
                digest.add(zimsLogGaussMixture_SelectIdVar_32f_D2(src.data(), mean.data(), 13, 13, val.data(),
                                                                  table.data(), gaussCount, sums.data(), height, -1));
                digest.add(sums);
            }
    });
    report("zimsBuildSignTable_8u1u", [](Digest& digest) {
        Numbers numbers(15);
        for (int bits = 1; bits <= 600; bits += 13) {
            const int rowBytes = (bits + 11 + 7) / 8;
            const auto bytes = numbers.between<Zim8u>(5 * rowBytes, 0, 256);
            const auto indices = numbers.between<Zim32s>(6, 0, 5);
            const Zim8u* rows[5];
            for (int r = 0; r < 5; ++r)
                rows[r] = bytes.data() + r * rowBytes;
            std::vector<Zim8u> table(static_cast<std::size_t>(3 * ((bits + 7) / 8)));
            digest.add(zimsBuildSignTable_8u1u(indices.data(), 2, rows, 5, rowBytes, 11, table.data(), 3, bits));
            digest.add(table);
        }
    });
}

void frontEnd()
{
    report("zimsEvalFBank_32f", [](Digest& digest) {
        Numbers numbers(8);
        for (int flags : {1, 2, 5, 6}) {
            ZimsFBankState_32f* bank = nullptr;
            int order;
            digest.add(zimsMelFBankInitAlloc_32f(&bank, &order, 400, 16000, 64, 8000, 26, 1127, 700, flags));
            const auto x = numbers.between<Zim32f>(512, -1, 1);
            Floats energies(26);
            digest.add(zimsEvalFBank_32f(x.data(), energies.data(), bank));
            digest.add(energies);
            zimsFBankFree_32f(bank);
            zimsFree(bank);
        }
    });
    report("zimsDCTLifter_32f", [](Digest& digest) {
        Numbers numbers(9);
        for (int len = 1; len <= 40; ++len)
            for (int cepstra : {1, (len + 1) / 2, len}) {
                ZimsDCTLifterState_32f* state = nullptr;
                digest.add(zimsDCTLifterInitAlloc_C0_32f(&state, len, cepstra, 22, 0.3f, 0.7f));
                const auto x = numbers.between<Zim32f>(len, -5, 5);
                Floats result(static_cast<std::size_t>(cepstra) + 1);
                digest.add(zimsDCTLifter_32f(x.data(), result.data(), state));
                digest.add(result);
                zimsDCTLifterFree_32f(state);
                zimsFree(state);
            }
    });
    report("zimsMelToLinear_32f", [](Digest& digest) {
        Numbers numbers(10);
        const auto mel = numbers.between<Zim32f>(1001, 0, 4000);
        Floats hertz(mel.size()), back(mel.size());
        digest.add(zimsMelToLinear_32f(mel.data(), hertz.data(), 1001, 1127, 700));
        digest.add(zimsLinearToMel_32f(hertz.data(), back.data(), 1001, 1127, 700));
        digest.add(hertz);
        digest.add(back);
    });
    report("delta features", [](Digest& digest) {
        Numbers numbers(11);
        for (int width = 1; width <= 40; ++width) {
            const auto x = numbers.between<Zim32f>(14 * width, -5, 5);
            Floats deltas(static_cast<std::size_t>(14 * 3 * width));
            digest.add(zimsDeltaDelta_Win1_32f_D2(x.data(), width, deltas.data(), 3 * width, 14, 0.5f, 0.3f, 3));
            digest.add(deltas);
            digest.add(zimsDeltaDelta_Win2_32f_D2(x.data(), width, deltas.data(), 3 * width, 14, 0.1f, 0.3f, 3));
            digest.add(deltas);
        }
        const auto x = numbers.between<Zim32f>(14 * 20, -5, 5);
        Floats aurora(39 * 20);
        digest.add(zimsDeltaDelta_Aurora_32f_D2(x.data(), aurora.data(), 39, 20, 3));
        digest.add(aurora);
    });
}

// Rows of samples that swing around 0, at every length and place.
template <class T, class Call>
void reportSignal(const char* name, double bound, Call call)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(20);
        overLengths([&](int len, int offset) {
            const auto x = numbers.between<T>(len + offset, -bound, bound);
            std::vector<T> y(static_cast<std::size_t>(len));
            T previous = 3;
            digest.add(call(x.data() + offset, y.data(), len, &previous));
            digest.add(y);
        });
    });
}

void conditioning()
{
    reportSignal<Zim32f>("zimsCompensateOffset_32f", 30000, [](auto x, auto y, int len, auto previous) {
        return zimsCompensateOffset_32f(x, y, len, previous, 1, 0.999f);
    });
    reportSignal<Zim16s>("zimsCompensateOffset_16s", 30000, [](auto x, auto y, int len, auto previous) {
        return zimsCompensateOffset_16s(x, y, len, previous, 1, 0.999f);
    });
    reportSignal<Zim16s>("zimsCompensateOffset_16s rounded", 30000, [](auto x, auto y, int len, auto previous) {
        return zimsCompensateOffset_16s(x, y, len, previous, 1, 1.01f);
    });
    reportSignal<Zim32f>("zimsSignChangeRate_32f", 1,
                         [](auto x, auto y, int len, auto) { return zimsSignChangeRate_32f(x, len, y); });
    reportSignal<Zim32f>("zimsSignChangeRate_Count0_32f", 1,
                         [](auto x, auto y, int len, auto) { return zimsSignChangeRate_Count0_32f(x, len, y); });
    reportSignal<Zim32f>("zimsNormEnergy_32f", 20, [](auto x, auto y, int len, auto) {
        zimsCopy_32f(x, y, len);
        return zimsNormEnergy_32f(y, 1 + len % 3, (len + 2) / 3, 50, 0.1f);
    });
    for (float scale : {0.7f, 1.7f})
        reportSignal<Zim16s>("zimsNormEnergy_16s", 3000, [scale](auto x, auto y, int len, auto) {
            zimsCopy_16s(x, y, len);
            return zimsNormEnergy_16s(y, 1 + len % 3, (len + 2) / 3, 50, 1000, scale);
        });
    report("column normalisation", [](Digest& digest) {
        Numbers numbers(22);
        for (int width = 1; width <= 45; ++width) {
            const int step = width + width % 3, height = 30;
            auto x = numbers.between<Zim32f>(step * height, -3000, 4000);
            const auto samples = numbers.between<Zim16s>(step * height, -3000, 4000);
            Floats sum(static_cast<std::size_t>(width), 3), sumSq(sum);
            std::vector<Zim32s> rounded(sum.size(), 3), roundedSq(rounded);
            digest.add(zimsSumMeanVar_32f_I(x.data(), step, height, sum.data(), sumSq.data(), width));
            digest.add(
                zimsSumMeanVar_16s32s_ISfs(samples.data(), step, height, rounded.data(), roundedSq.data(), width, 3));
            digest.add(zimsNormalizeColumn_32f_D2(x.data(), step, height, sum.data(), sumSq.data(), width));
            digest.add(sum);
            digest.add(sumSq);
            digest.add(rounded);
            digest.add(roundedSq);
            digest.add(x);
        }
    });
    report("zimsEvalFBank_32s_Sfs", [](Digest& digest) {
        Numbers numbers(21);
        std::vector<char> block(1 << 20);
        auto* const bank = reinterpret_cast<ZimsFBankState_32s*>(block.data());
        int order;
        digest.add(zimsMelFBankInit_32s(bank, &order, 400, 16000, 64, 8000, 26, 36929880, 22937600, 2));
        const auto x = numbers.between<Zim32s>(257, 0, 2e9);
        std::vector<Zim32s> energies(26);
        digest.add(zimsEvalFBank_32s_Sfs(x.data(), energies.data(), bank, 5));
        digest.add(energies);
    });
}

template <class T>
void reportUpdates(const char* name, ZimStatus (*updateMean)(const T*, T*, int, T),
                   ZimStatus (*updateVar)(const T*, const T*, const T*, T*, int, T, T),
                   ZimStatus (*updateWeight)(const T*, T*, int, T*, T, T), Unary<T> updateGConst,
                   ZimStatus (*weightedSum)(const T*, const T*, T*, int, T, T))
{
    report(name, [&](Digest& digest) {
        Numbers numbers(12);
        overLengths([&](int len, int offset) {
            const auto acc = numbers.between<T>(len + offset, -5, 5), floor = numbers.between<T>(len, -1, 1);
            auto mean = numbers.between<T>(len, -1, 1), var = numbers.between<T>(len + offset, 0.1, 9);
            std::vector<T> single(1);
            digest.add(updateGConst(var.data() + offset, len, single.data()));
            digest.add(single);
            digest.add(updateMean(acc.data() + offset, mean.data(), len, T(37.3)));
            digest.add(mean);
            digest.add(updateVar(mean.data(), acc.data() + offset, floor.data(), var.data(), len, T(3.7), T(2.9)));
            digest.add(var);
            digest.add(updateWeight(acc.data() + offset, mean.data(), len, single.data(), T(811), T(0.001)));
            digest.add(mean);
            digest.add(single);
            digest.add(weightedSum(var.data() + offset, acc.data(), mean.data(), len, T(3.7), T(-1.1)));
            digest.add(mean);
        });
    });
}

void updates()
{
    reportUpdates<Zim32f>("model updates_32f", zimsUpdateMean_32f, zimsUpdateVar_32f, zimsUpdateWeight_32f,
                          zimsUpdateGConst_32f, zimsWeightedSum_32f);
    reportUpdates<Zim64f>("model updates_64f", zimsUpdateMean_64f, zimsUpdateVar_64f, zimsUpdateWeight_64f,
                          zimsUpdateGConst_DirectVar_64f, zimsWeightedSumHalf_64f);
    report("zimsNewVar", [](Digest& digest) {
        Numbers numbers(13);
        overLengths([&](int len, int offset) {
            const auto mean = numbers.between<Zim32f>(len + offset, -9, 9),
                       varAcc = numbers.between<Zim32f>(len, 0, 999);
            Floats var(varAcc.size());
            digest.add(zimsNewVar_32f(mean.data() + offset, varAcc.data(), var.data(), len, 12.7f, 0.07f));
            digest.add(var);
            const auto means = numbers.between<Zim32s>(len + offset, -999, 999);
            auto sums = numbers.between<Zim32s>(len, 0, 2147483647);
            digest.add(zimsNewVar_32s_ISfs(means.data() + offset, sums.data(), len, 12.7f, 0.07f, 3));
            digest.add(sums);
        });
    });
    report("zimsWeightedSum_16s", [](Digest& digest) {
        Numbers numbers(14);
        overLengths([&](int len, int offset) {
            const auto a = numbers.between<Zim16s>(len + offset, -32768, 32767),
                       b = numbers.between<Zim16s>(len, -32768, 32767);
            std::vector<Zim16s> sum(b.size());
            digest.add(zimsWeightedSum_16s(a.data() + offset, b.data(), sum.data(), len, 3.7f, -1.1f));
            digest.add(sum);
        });
    });
}

// run(x, height, width, step) over matrices of many shapes, gaps between the rows included.
template <class T, class Run>
void reportMatrices(const char* name, Run run)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(22);
        for (int width = 1; width <= 45; ++width)
            for (int height : {2, 3, 4, 7, 70}) {
                const int step = width + width % 3;
                const auto x = numbers.between<T>(step * height, -3000, 4000);
                run(digest, numbers, x.data(), height, width, step);
            }
    });
}

template <class T, class Call>
void reportWeighted(const char* name, Call call)
{
    reportMatrices<T>(name, [&](Digest& digest, Numbers& numbers, auto x, int height, int width, int step) {
        const auto weights = numbers.between<T>(height, 0, 1);
        std::vector<T> mean(static_cast<std::size_t>(width)), var(mean);
        digest.add(call(x, step, weights.data(), height, mean.data(), var.data(), width));
        digest.add(mean);
        digest.add(var);
    });
}

void statistics()
{
    reportMatrices<Zim32f>("column statistics", [](Digest& digest, Numbers&, auto x, int height, int width, int step) {
        Floats mean(static_cast<std::size_t>(width)), var(mean);
        digest.add(zimsMeanVarColumn_32f_D2(x, height, step, mean.data(), var.data(), width));
        digest.add(mean);
        digest.add(var);
        digest.add(zimsVarColumn_32f_D2(x, height, step, x, var.data(), width));
        digest.add(var);
        Floats sums(static_cast<std::size_t>(height));
        digest.add(zimsSumRow_32f_D2(x, width, step, sums.data(), height));
        digest.add(sums);
    });
    reportMatrices<Zim64f>(
        "sums in double precision", [](Digest& digest, Numbers&, auto x, int height, int width, int step) {
            Doubles columns(static_cast<std::size_t>(width)), rows(static_cast<std::size_t>(height)), magnitudes(1);
            digest.add(zimsSumColumn_64f_D2(x, step, height, columns.data(), width));
            digest.add(zimsSumRow_64f_D2(x, width, step, rows.data(), height));
            digest.add(zimsSumRowAbs_64f(x, width, magnitudes.data()));
            digest.add(columns);
            digest.add(rows);
            digest.add(magnitudes);
        });
    reportMatrices<Zim16s>(
        "statistics of samples", [](Digest& digest, Numbers&, auto x, int height, int width, int step) {
            std::vector<Zim16s> mean(static_cast<std::size_t>(width)), var(mean);
            std::vector<Zim32s> wideMean(mean.size()), wideVar(mean.size());
            digest.add(zimsMeanVarColumn_16s_D2Sfs(x, height, step, mean.data(), var.data(), width, 9));
            digest.add(zimsMeanVarColumn_16s32s_D2Sfs(x, height, step, wideMean.data(), wideVar.data(), width, 0));
            digest.add(mean);
            digest.add(var);
            digest.add(wideMean);
            digest.add(wideVar);
        });
    reportWeighted<Zim32f>("zimsWeightedMeanVarColumn_32f_D2", zimsWeightedMeanVarColumn_32f_D2);
    reportWeighted<Zim64f>("zimsWeightedMeanVarColumn_64f_D2", zimsWeightedMeanVarColumn_64f_D2);
    reportMatrices<Zim32f>(
        "zimsAccCovarianceMatrix_32f64f_D2", [](Digest& digest, Numbers&, auto x, int height, int width, int step) {
            Doubles scatter(static_cast<std::size_t>(width * width));
            digest.add(zimsAccCovarianceMatrix_32f64f_D2(x, step, height, x, scatter.data(), width, width, 0.3));
            digest.add(scatter);
        });
}

}  // namespace

int main()
{
    vectors();
    transforms();
    scores();
    fixedScores();
    distances();
    logDomain();
    blockScores();
    selections();
    frontEnd();
    conditioning();
    updates();
    statistics();
}
