// Prints a digest of the results of each floating-point family, a line each. Two instruction levels, two pointer widths
// or two compilers must print the same text.
#include <cstdint>
#include <cstdio>
#include <functional>
#include <string_view>
#include <tuple>
#include <type_traits>
#include <vector>

#include <zimsr.h>

namespace {

using Floats = std::vector<Zim32f>;

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

    template <class T>
    std::vector<T> between(int count, double low, double high)
    {
        const auto number = [&] { return low + (high - low) * (next() >> 8) / 16777216.0; };
        std::vector<T> values(count);
        for (T& value : values)
            if constexpr (std::is_same_v<T, Zim32fc>) {
                value.re = static_cast<Zim32f>(number());
                value.im = static_cast<Zim32f>(number());
            } else {
                value = static_cast<T>(number());
            }
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

void report(const char* name, const std::function<void(Digest&)>& run)
{
    Digest digest;
    run(digest);
    std::printf("%-34s %016llx\n", name, static_cast<unsigned long long>(digest.value()));
}

// ---- Any function on arrays, called as its signature tells

// Arrays hold numbers of one range; constants are passed by value in their order.
struct Range {
    double low, high;
    std::vector<double> constants = {};
};

// The ints of a signature, from left to right: length, step, width, height, scale factor, three times the width, or a
// digit for itself.
struct Shape {
    int width, height, offset;

    int step() const { return width + width % 3; }
    int capacity() const { return 3 * width * (height + 6) + width * width; }
    int value(char what) const
    {
        constexpr int factors[] = {3, 20, -2};
        switch (what) {
            case 'n':
            case 'w':
                return width;
            case 's':
                return step();
            case 'h':
                return height;
            case 'f':
                return factors[(width + height) % 3];
            case 't':
                return 3 * width;
            default:
                return what - '0';
        }
    }
};

struct Drawing {
    Numbers& numbers;
    const Shape& shape;
    int capacity;
    std::string_view ints;
    const Range& range;
    std::size_t nextInt = 0, nextConstant = 0, nextArray = 0;
};

template <class Argument>
struct Operand {
    Argument value;

    explicit Operand(Drawing& d)
    {
        if constexpr (std::is_same_v<Argument, int>)
            value = d.shape.value(d.ints[d.nextInt++]);
        else
            value = static_cast<Argument>(d.range.constants[d.nextConstant++]);
    }
    Argument passed() { return value; }
    void addTo(Digest&) const {}
};

template <class T>
struct Operand<T*> {
    using Element = std::remove_const_t<T>;
    std::vector<Element> values;
    int offset;

    explicit Operand(Drawing& d)
        : values(d.numbers.between<Element>(d.capacity + d.shape.offset, d.range.low, d.range.high)),
          offset(d.nextArray++ % 2 == 0 ? d.shape.offset : 0)
    {
    }
    T* passed() { return values.data() + offset; }
    void addTo(Digest& digest) const
    {
        if (!std::is_const_v<T>)
            digest.add(values);
    }
};

template <class... Argument>
void addCall(Digest& digest, ZimStatus (*function)(Argument...), Drawing drawing)
{
    std::tuple<Operand<Argument>...> operands{Operand<Argument>(drawing)...};
    std::apply(
        [&](auto&... operand) {
            digest.add(function(operand.passed()...));
            (operand.addTo(digest), ...);
        },
        operands);
}

// Over lengths that take every path, with arrays at several places in a vector register.
template <class... Function>
void reportVectors(const char* name, std::string_view ints, const Range& range, Function... functions)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(1);
        const auto add = [&](int len, int offset) {
            const Shape shape{len, 1, offset};
            (addCall(digest, functions, Drawing{numbers, shape, len, ints, range}), ...);
        };
        for (int len = 1; len <= 70; ++len)
            add(len, len % 4);
        for (int len : {100, 255, 256, 257, 1000, 4099, 70000})
            for (int offset = 0; offset < 2; ++offset)
                add(len, offset);
    });
}

// Over matrices of many shapes, gaps between the rows included.
template <class... Function>
void reportMatrices(const char* name, std::string_view ints, const Range& range, Function... functions)
{
    report(name, [&](Digest& digest) {
        Numbers numbers(7);
        for (int width = 1; width <= 45; ++width)
            for (int height : {2, 3, 4, 7, 130}) {
                const Shape shape{width, height, 0};
                if (height < 10 || width % 8 == 5)
                    (addCall(digest, functions, Drawing{numbers, shape, shape.capacity(), ints, range}), ...);
            }
    });
}

#define VECTORS(function, ...) reportVectors(#function, __VA_ARGS__, function)
#define MATRICES(function, ...) reportMatrices(#function, __VA_ARGS__, function)

// ---- Families

void vectors()
{
    VECTORS(zimsMax_32f, "n", Range{-1, 1});
    VECTORS(zimsMin_32f, "n", Range{-1, 1});
    VECTORS(zimsMax_64f, "n", Range{-1, 1});
    VECTORS(zimsMin_64f, "n", Range{-1, 1});
    VECTORS(zimsSumLn_32f, "n", Range{1e-9, 100});
    VECTORS(zimsSumLn_64f, "n", Range{1e-9, 100});
    reportVectors("zimsSum_32f accurate", "n0", Range{-1, 1}, zimsSum_32f);
    reportVectors("zimsSum_32f fast", "n1", Range{-1, 1}, zimsSum_32f);
    VECTORS(zimsDotProd_32f, "n", Range{-1, 1});
    VECTORS(zimsDotProd_64f, "n", Range{-1, 1});
    VECTORS(zimsDotProd_32f64f, "n", Range{-1, 1});
    VECTORS(zimsDotProd_16s32f, "n", Range{-32767, 32767});
    VECTORS(zimsAdd_32f_I, "n", Range{-1, 1});
    VECTORS(zimsSub_64f_I, "n", Range{-1, 1});
    VECTORS(zimsDiv_32f_I, "n", Range{0.01, 1});
    reportVectors("zimsMulC_32f", "n", Range{-1, 1, {0.3}}, zimsMulC_32f);
    reportVectors("zimsDivC_64f", "n", Range{-1, 1, {0.3}}, zimsDivC_64f);
    VECTORS(zimsLn_32f_I, "n", Range{1e-9, 1000});
    VECTORS(zimsSqrt_64f_I, "n", Range{0, 1000});
    VECTORS(zimsMagnitude_32fc, "n", Range{-1, 1});
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

void scores()
{
    const Range one{0.1, 4, {-1.3}}, many{0.1, 4}, folded{0.1, 1, {-9}};
    MATRICES(zimsLogGauss_32f_D2, "swh", one);
    MATRICES(zimsLogGauss_64f_D2, "swh", one);
    MATRICES(zimsLogGauss_IdVar_32f_D2, "swh", one);
    MATRICES(zimsLogGauss_IdVar_64f_D2, "swh", one);
    MATRICES(zimsLogGaussMultiMix_32f_D2, "swh", many);
    MATRICES(zimsLogGaussMultiMix_64f_D2, "swh", many);
    MATRICES(zimsLogGaussSingle_32f, "w", one);
    MATRICES(zimsLogGaussSingle_DirectVar_32f, "w", one);
    MATRICES(zimsLogGaussSingle_DirectVar_64f, "w", one);
    MATRICES(zimsLogGaussSingle_IdVar_64f, "w", one);
    reportMatrices("frames folded", "swh", folded, zimsLogGaussMax_32f_D2, zimsLogGaussAdd_32f_D2,
                   zimsLogGaussMax_64f_D2, zimsLogGaussAdd_64f_D2);
    reportMatrices("Gaussians folded", "swh", folded, zimsLogGaussMaxMultiMix_32f_D2, zimsLogGaussAddMultiMix_32f_D2,
                   zimsLogGaussMaxMultiMix_64f_D2, zimsLogGaussAddMultiMix_64f_D2);
    reportMatrices("whole mixtures", "hsw", folded, zimsLogGaussMixture_32f_D2, zimsLogGaussMixture_IdVar_32f_D2,
                   zimsLogGaussMixture_64f_D2, zimsLogGaussMixture_IdVar_64f_D2);
    // The bits of a table are as random as its bytes.
    reportMatrices("selected mixtures", "swhh", Range{0, 200, {-1}}, zimsLogGaussMixture_Select_32f_D2,
                   zimsLogGaussMixture_SelectIdVar_32f_D2);
    MATRICES(zimsMahDist_32f_D2, "swh", many);
    MATRICES(zimsMahDistMultiMix_64f_D2, "swh", many);
    reportMatrices("zimsMeanVarAcc_32f", "w", Range{-4, 4, {0.3}}, zimsMeanVarAcc_32f);
}

void fixedScores()
{
    const Range samples{-32768, 32767, {-9}};
    reportMatrices("fixed-point scores", "swhf", samples, zimsLogGauss_Scaled_16s32f_D2,
                   zimsLogGauss_IdVarScaled_16s32f_D2, zimsLogGauss_IdVarLowScaled_16s32f_D2,
                   zimsLogGaussMax_LowScaled_16s32f_D2, zimsLogGaussAdd_Scaled_16s32f_D2,
                   zimsLogGaussAdd_LowScaled_16s32f_D2, zimsLogGaussMaxMultiMix_Scaled_16s32f_D2,
                   zimsLogGaussAddMultiMix_LowScaled_16s32f_D2, zimsLogGaussMaxMultiMix_16s32s_D2Sfs,
                   zimsLogGaussMaxMultiMix_Low_16s32s_D2Sfs);
    reportMatrices("fixed-point scores in integers", "swh9f", samples, zimsLogGauss_16s32s_D2Sfs,
                   zimsLogGaussMax_16s32s_D2Sfs, zimsLogGauss_Low_16s32s_D2Sfs, zimsLogGaussMax_Low_16s32s_D2Sfs,
                   zimsLogGauss_IdVar_16s32s_D2Sfs, zimsLogGaussMax_IdVar_16s32s_D2Sfs,
                   zimsLogGauss_IdVarLow_16s32s_D2Sfs, zimsLogGaussMax_IdVarLow_16s32s_D2Sfs);
    reportMatrices("fixed-point scores of a vector", "w5f", samples, zimsLogGaussSingle_16s32s_Sfs,
                   zimsLogGaussSingle_Low_16s32s_Sfs);
    reportMatrices("fixed-point mixtures", "hswf", samples, zimsLogGaussMixture_Scaled_16s32f_D2,
                   zimsLogGaussMixture_IdVarScaled_16s32f_D2);
    // No variance is 0.
    reportMatrices("fixed-point scores of a variance", "w5f", Range{1, 32767}, zimsLogGaussSingle_DirectVar_16s32s_Sfs);
}

void logDomain()
{
    reportVectors("zimsLogAdd_32f, hint 0", "n0", Range{-20, 0}, zimsLogAdd_32f);
    reportVectors("zimsLogAdd_32f, hint 1", "n1", Range{-20, 0}, zimsLogAdd_32f);
    reportVectors("zimsLogAdd_32f, hint 2", "n2", Range{-20, 0}, zimsLogAdd_32f);
    VECTORS(zimsLogAdd_64f, "n0", Range{-30, 0});
    VECTORS(zimsLogSum_32f, "n", Range{-20, 0});
    VECTORS(zimsLogSum_64f, "n", Range{-30, 0});
    // Only from a greater one a number can be subtracted.
    reportVectors(
        "zimsLogSub_32f", "n", Range{-20, -0.001}, +[](const Zim32f* x, Zim32f* y, int len) {
            zimsAdd_32f_I(x, y, len);
            return zimsLogSub_32f(x, y, len);
        });
    reportVectors(
        "zimsLogSub_64f", "n", Range{-30, -0.001}, +[](const Zim64f* x, Zim64f* y, int len) {
            zimsAdd_64f_I(x, y, len);
            return zimsLogSub_64f(x, y, len);
        });
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
    VECTORS(zimsMelToLinear_32f, "n", Range{0, 4000, {1127, 700}});
    VECTORS(zimsLinearToMel_32f, "n", Range{0, 4000, {1127, 700}});
    // As many frames as the longest window wants.
    report("delta features", [](Digest& digest) {
        Numbers numbers(11);
        const Range range{-5, 5, {0.5, 0.3}};
        for (int width = 1; width <= 40; ++width) {
            const Shape shape{width, 14, 0};
            const Drawing drawing{numbers, shape, shape.capacity(), "wth3", range};
            addCall(digest, zimsDeltaDelta_Win1_32f_D2, drawing);
            addCall(digest, zimsDeltaDelta_Win2_32f_D2, drawing);
        }
        const Shape aurora{13, 20, 0};
        addCall(digest, zimsDeltaDelta_Aurora_32f_D2, Drawing{numbers, aurora, aurora.capacity(), "th3", range});
    });
}

void conditioning()
{
    VECTORS(zimsCompensateOffset_32f, "n", Range{-30000, 30000, {1, 0.999}});
    VECTORS(zimsCompensateOffset_16s, "n", Range{-30000, 30000, {1, 0.999}});
    reportVectors("zimsCompensateOffset_16s rounded", "n", Range{-30000, 30000, {1, 1.01}}, zimsCompensateOffset_16s);
    VECTORS(zimsSignChangeRate_32f, "n", Range{-1, 1});
    VECTORS(zimsSignChangeRate_Count0_32f, "n", Range{-1, 1});
    MATRICES(zimsNormEnergy_32f, "sh", Range{-20, 20, {50, 0.1}});
    MATRICES(zimsNormEnergy_16s, "sh", Range{-3000, 3000, {50, 1000, 0.7}});
    reportMatrices("zimsNormEnergy_16s louder", "sh", Range{-3000, 3000, {50, 1000, 1.7}}, zimsNormEnergy_16s);
    MATRICES(zimsSumMeanVar_32f_I, "shw", Range{1, 4000});
    MATRICES(zimsSumMeanVar_16s32s_ISfs, "shwf", Range{-3000, 4000});
    MATRICES(zimsNormalizeColumn_32f_D2, "shw", Range{-3000, 4000});
}

void updates()
{
    const Range positive{0.1, 9};
    VECTORS(zimsUpdateMean_32f, "n", Range{-5, 5, {37.3}});
    VECTORS(zimsUpdateMean_64f, "n", Range{-5, 5, {37.3}});
    VECTORS(zimsUpdateVar_32f, "n", Range{-5, 5, {3.7, 2.9}});
    VECTORS(zimsUpdateVar_64f, "n", Range{-5, 5, {3.7, 2.9}});
    VECTORS(zimsUpdateWeight_32f, "n", Range{-5, 5, {811, 0.001}});
    VECTORS(zimsUpdateWeight_64f, "n", Range{-5, 5, {811, 0.001}});
    VECTORS(zimsUpdateGConst_32f, "n", positive);
    VECTORS(zimsUpdateGConst_DirectVar_64f, "n", positive);
    VECTORS(zimsWeightedSum_32f, "n", Range{-5, 5, {3.7, -1.1}});
    VECTORS(zimsWeightedSumHalf_64f, "n", Range{-5, 5, {3.7, -1.1}});
    VECTORS(zimsWeightedSum_16s, "n", Range{-32768, 32767, {3.7, -1.1}});
    VECTORS(zimsNewVar_32f, "n", Range{-9, 999, {12.7, 0.07}});
    VECTORS(zimsNewVar_32s_ISfs, "n3", Range{-999, 99999, {12.7, 0.07}});
}

void statistics()
{
    const Range values{-3000, 4000}, weights{0.01, 4};
    MATRICES(zimsMeanVarColumn_32f_D2, "hsw", values);
    MATRICES(zimsVarColumn_32f_D2, "hsw", values);
    MATRICES(zimsMeanVarColumn_16s_D2Sfs, "hsw9", values);
    MATRICES(zimsMeanVarColumn_16s32s_D2Sfs, "hsw0", values);
    MATRICES(zimsSumRow_32f_D2, "wsh", values);
    MATRICES(zimsSumRow_64f_D2, "wsh", values);
    MATRICES(zimsSumColumn_64f_D2, "shw", values);
    MATRICES(zimsSumRowAbs_64f, "w", values);
    MATRICES(zimsWeightedMeanVarColumn_32f_D2, "shw", weights);
    MATRICES(zimsWeightedMeanVarColumn_64f_D2, "shw", weights);
    MATRICES(zimsAccCovarianceMatrix_32f64f_D2, "shww", Range{-3000, 4000, {0.3}});
}

}  // namespace

int main()
{
    vectors();
    transforms();
    scores();
    fixedScores();
    logDomain();
    blockScores();
    frontEnd();
    conditioning();
    updates();
    statistics();
}
