// Sums of rows and columns, and a vector against all rows: every form against a scalar account of the order of
// additions, bit for bit.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>
#include <numeric>
#include <type_traits>
#include <vector>

#include <zimsr.h>

#include "support/columnsums.h"
#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"
#include "support/rounding.h"

namespace zimsr::test {
namespace {

template <class T>
struct Problem {
    int height, width;
    std::vector<T> values;

    Problem(Random& random, int rows, int columns, T low = -100, T high = 100)
        : height(rows), width(columns), values(random.vector<T>(rows * columns, low, high))
    {
    }
    T at(int r, int c) const { return values[r * width + c]; }
};

template <class T>
using FloatOf = std::conditional_t<sizeof(T) == 8, Zim64f, Zim32f>;

template <class T>
std::vector<FloatOf<T>> columnSums(const Problem<T>& p)
{
    std::vector<FloatOf<T>> sums;
    for (int c = 0; c < p.width; ++c)
        sums.push_back(sumDown(p.height, FloatOf<T>(0), [&](int r) { return FloatOf<T>(p.at(r, c)); }));
    return sums;
}

// Of floats, partial sums, one to each place in a vector. What is left behind the last whole vector goes to the last
// places, a row shorter than a vector to the first ones. Then halves and neighbours are added.
template <class Float>
std::vector<Float> rowSums(const Problem<Float>& p)
{
    constexpr int lanes = 32 / sizeof(Float);
    const int whole = p.width / lanes * lanes, shift = whole == 0 ? 0 : lanes - p.width % lanes;
    std::vector<Float> sums;
    for (int r = 0; r < p.height; ++r) {
        Float sum[lanes] = {};
        for (int c = 0; c < p.width; ++c)
            sum[c < whole ? c % lanes : c - whole + shift] += p.at(r, c);
        for (int l = 0; l < lanes / 2; ++l)
            sum[l] += sum[l + lanes / 2];
        sums.push_back(lanes == 8 ? (sum[0] + sum[1]) + (sum[2] + sum[3]) : sum[0] + sum[1]);
    }
    return sums;
}

// Of samples, the exact sums, rounded once.
std::vector<Zim32f> rowSums(const Problem<Zim16s>& p)
{
    std::vector<Zim32f> sums;
    for (auto row = p.values.begin(); row != p.values.end(); row += p.width)
        sums.push_back(static_cast<Zim32f>(std::accumulate(row, row + p.width, Zim64s{0})));
    return sums;
}

std::vector<Zim32s> rounded(const std::vector<Zim32f>& sums, int scaleFactor)
{
    std::vector<Zim32s> results;
    for (double sum : sums)
        results.push_back(static_cast<Zim32s>(std::clamp(
            std::nearbyint(std::ldexp(sum, -std::clamp(scaleFactor, -2000, 2000))), -2147483648.0, 2147483647.0)));
    return results;
}

// ---- The functions, run on the same values

template <class T>
struct Arrays {
    StridedMatrix<T> mat;
    RowMatrix<T> rows;
    int height, width;

    explicit Arrays(const Problem<T>& p, Placement placement = {})
        : mat(p.values, p.height, p.width, p.width + p.height % 3, placement),
          rows(p.values, p.height, p.width, placement),
          height(p.height),
          width(p.width)
    {
    }
};

enum Sums { ofColumns, ofRows };

template <class T, class Result>
struct Form {
    const char* name;
    Sums sums;
    ZimStatus (*run)(const Arrays<T>&, Result* dst, int factor);
};

#define FORM(sums, ...)                                                                                      \
    {                                                                                                        \
#__VA_ARGS__, sums, [](const auto& a, auto dst, [[maybe_unused]] int factor) { return __VA_ARGS__; } \
    }
#define MATRIX a.mat.data(), a.mat.step(), a.height
#define ROWS a.rows.data()
#define FORMS_OF_FLOATS(T, tag)                                                                     \
    const Form<T, T> forms_##tag[] = {                                                              \
        FORM(ofColumns, zimsSumColumn_##tag##_D2(MATRIX, dst, a.width)),                            \
        FORM(ofColumns, zimsSumColumn_##tag##_D2L(ROWS, a.height, dst, a.width)),                   \
        FORM(ofColumns, zimsSumCol_##tag##_D2(a.mat.data(), a.mat.step(), dst, a.height, a.width)), \
        FORM(ofColumns, zimsSumCol_##tag##_D2L(ROWS, a.width, dst, a.height)),                      \
        FORM(ofRows, zimsSumRow_##tag##_D2(a.mat.data(), a.width, a.mat.step(), dst, a.height)),    \
        FORM(ofRows, zimsSumRow_##tag##_D2L(ROWS, a.width, dst, a.height)),                         \
    };
FORMS_OF_FLOATS(Zim32f, 32f)
FORMS_OF_FLOATS(Zim64f, 64f)
const Form<Zim32f, Zim32f> formsOfAllRows[] = {
    FORM(ofColumns, zimsSumAllRow_32f_D2(MATRIX, dst, a.width)),
    FORM(ofColumns, zimsSumAllRow_32f_D2L(ROWS, a.height, dst, a.width)),
};
const Form<Zim16s, Zim32f> forms_16s32f[] = {
    FORM(ofColumns, zimsSumColumn_16s32f_D2(MATRIX, dst, a.width)),
    FORM(ofColumns, zimsSumColumn_16s32f_D2L(ROWS, a.height, dst, a.width)),
    FORM(ofRows, zimsSumRow_16s32f_D2(a.mat.data(), a.width, a.mat.step(), dst, a.height)),
    FORM(ofRows, zimsSumRow_16s32f_D2L(ROWS, a.width, dst, a.height)),
};
const Form<Zim16s, Zim32s> forms_16s32s[] = {
    FORM(ofColumns, zimsSumColumn_16s32s_D2Sfs(MATRIX, dst, a.width, factor)),
    FORM(ofColumns, zimsSumColumn_16s32s_D2LSfs(ROWS, a.height, dst, a.width, factor)),
    FORM(ofRows, zimsSumRow_16s32s_D2Sfs(a.mat.data(), a.width, a.mat.step(), dst, a.height, factor)),
    FORM(ofRows, zimsSumRow_16s32s_D2LSfs(ROWS, a.width, dst, a.height, factor)),
};
#undef FORMS_OF_FLOATS
#undef ROWS
#undef MATRIX
#undef FORM

template <class T, class Result, std::size_t count>
void expectForms(const Form<T, Result> (&forms)[count], const Problem<T>& p, Placement placement = {}, int factor = 0)
{
    const Arrays<T> a(p, placement);
    for (const auto& form : forms) {
        const auto sums = form.sums == ofColumns ? columnSums(p) : rowSums(p);
        const Guarded<Result> dst(sums.size(), placement);
        EXPECT_EQ(form.run(a, dst, factor), zimStsOk);
        const auto message = testing::Message() << form.name << ' ' << p.height << " x " << p.width << ", place "
                                                << placement.offset << ", factor " << factor;
        if constexpr (std::is_integral_v<Result>)
            EXPECT_TRUE(equalBits(dst.values(), rounded(sums, factor))) << message;
        else
            EXPECT_TRUE(equalBits(dst.values(), sums)) << message;
    }
}

template <class Run>
void forEachShape(Run run)
{
    for (int width = 1; width <= 45; ++width)
        for (int height : {1, 2, 3, 4, 5, 7})
            run(height, width, Placement{});
    for (int width : {3, 13, 39})
        for (std::size_t bytes = 0; bytes < 32; bytes += 4)
            run(103, width, atOffset(bytes));
}

// ---- Tests

TEST(MatrixSums, EveryFormKeepsTheOrderOfAdditions)
{
    Random random(1);
    forEachShape([&](int height, int width, Placement placement) {
        const Problem<Zim32f> p(random, height, width);
        expectForms(forms_32f, p, placement);
        expectForms(formsOfAllRows, p, placement);
        expectForms(forms_64f, Problem<Zim64f>(random, height, width), placement);
        expectForms(forms_16s32f, Problem<Zim16s>(random, height, width, -32768, 32767), placement);
        expectForms(forms_16s32s, Problem<Zim16s>(random, height, width, -32768, 32767), placement, width % 9 - 2);
    });
}

TEST(MatrixSums, SumsOfSamplesAreExactUpTo24Bits)
{
    Random random(2);
    const Problem<Zim16s> p(random, 511, 511, -32768, -32000);
    for (bool ofRow : {false, true})
        for (int i = 0; i < 511; ++i) {
            Zim64s exact = 0;
            for (int k = 0; k < 511; ++k)
                exact += ofRow ? p.at(i, k) : p.at(k, i);
            EXPECT_EQ((ofRow ? rowSums(p) : columnSums(p))[static_cast<std::size_t>(i)], exact);
            i += 72;
        }
    expectForms(forms_16s32f, p);

    // Loud tones, whose every eighth sample has the same sign, in long rows of a small sum.
    for (int width : {5000, 65536, 65537, 140001}) {
        Problem<Zim16s> tones(random, 5, width, 0, 1);
        for (std::size_t i = 0; i < tones.values.size(); ++i)
            tones.values[i] = static_cast<Zim16s>(i % 8 < 4 ? 32767 - tones.values[i] : -32767);
        expectForms(forms_16s32f, tones);
    }
    for (Zim16s value : {-32768, 32767})
        expectForms(forms_16s32f, Problem<Zim16s>(random, 5, 65536, value, value));
}

TEST(MatrixSums, StartFromZero)
{
    Random random(6);
    for (int width : {1, 7, 8, 9, 16})
        for (int height : {1, 4}) {
            Problem<Zim32f> floats(random, height, width);
            Problem<Zim64f> doubles(random, height, width);
            std::fill(floats.values.begin(), floats.values.end(), -0.0f);
            std::fill(doubles.values.begin(), doubles.values.end(), -0.0);
            expectForms(forms_32f, floats);
            expectForms(forms_64f, doubles);
        }
}

TEST(MatrixSums, EveryScaleFactorInEveryRoundingMode)
{
    Random random(3);
    const Problem<Zim16s> p(random, 6, 11, -5, 5), zeros(random, 3, 9, 0, 0), large(random, 40, 13, -32768, 32767);
    for (int factor : {INT_MIN, -300, -127, -31, -20, -1, 0, 1, 2, 5, 31, 127, 150, 300, INT_MAX}) {
        expectForms(forms_16s32s, large, {}, factor);
        expectForms(forms_16s32s, zeros, {}, factor);
    }
    const Zim16s three[] = {1, 2};
    inEveryRoundingMode([&] {
        Zim32s sum = 0;
        EXPECT_EQ(zimsSumColumn_16s32s_D2Sfs(three, 1, 2, &sum, 1, 1), zimStsOk);
        EXPECT_EQ(sum, 2);
    });
}

TEST(AddAllRowSum, AddsRowAfterRowOntoWhatStandsThere)
{
    Random random(4);
    forEachShape([&](int height, int width, Placement placement) {
        const Problem<Zim32f> p(random, height, width);
        const Arrays<Zim32f> a(p, placement);
        const auto before = random.vector<Zim32f>(width, -9, 9);
        auto wanted = before;
        for (int r = 0; r < height; ++r)
            for (int c = 0; c < width; ++c)
                wanted[c] += p.at(r, c);
        const Guarded<Zim32f> block(before, placement), rows(before, placement);
        EXPECT_EQ(zimsAddAllRowSum_32f_D2(a.mat.data(), a.mat.step(), height, block, width), zimStsOk);
        EXPECT_EQ(zimsAddAllRowSum_32f_D2L(a.rows.data(), height, rows, width), zimStsOk);
        EXPECT_TRUE(equalBits(block.values(), wanted)) << height << " x " << width;
        EXPECT_TRUE(equalBits(rows.values(), wanted)) << height << " x " << width;
    });
}

template <class T>
void expectSubtraction(auto block, auto rows, T low, T high)
{
    Random random(5);
    forEachShape([&](int height, int width, Placement placement) {
        const Problem<T> p(random, height, width, low, high);
        const Arrays<T> a(p, placement);
        const Guarded<T> val(random.vector<T>(width, low, high), placement);
        std::vector<T> wanted;
        for (std::size_t i = 0; i < p.values.size(); ++i) {
            const auto difference = p.values[i] - val[i % width];
            wanted.push_back(static_cast<T>(std::clamp<decltype(+difference)>(difference, 2 * low, 2 * high)));
            if constexpr (sizeof(T) == 2)
                wanted.back() = static_cast<T>(std::clamp<int>(difference, -32768, 32767));
        }
        EXPECT_EQ(block(val, width, a.mat.data(), a.mat.step(), height), zimStsOk);
        EXPECT_EQ(rows(val, a.rows.writable(), width, height), zimStsOk);
        EXPECT_TRUE(equalBits(a.mat.values(), wanted)) << height << " x " << width;
        EXPECT_TRUE(equalBits(a.rows.values(), wanted)) << height << " x " << width;
    });
}

TEST(SubRow, SubtractsFromEveryRow)
{
    expectSubtraction<Zim32f>(zimsSubRow_32f_D2, zimsSubRow_32f_D2L, -3, 3);
    expectSubtraction<Zim16s>(zimsSubRow_16s_D2, zimsSubRow_16s_D2L, -32768, 32767);
}

TEST(ScaledSums, OfARow)
{
    Random random(6);
    for (int len = 1; len <= 70; ++len)
        for (std::size_t element : {0, 1}) {
            const auto values = random.vector<Zim64f>(len, -2, 2);
            const Guarded<Zim64f> x(values, element ? atOffset(8) : Placement{});
            long double magnitudes = 0, squares = 0;
            std::vector<Zim64f> scaled;
            for (Zim64f v : values) {
                magnitudes += std::fabs(v);
                scaled.push_back(v * 0.3);
                squares += static_cast<long double>(scaled.back()) * scaled.back();
            }
            Zim64f sum = 0;
            EXPECT_EQ(zimsSumRowAbs_64f(x, len, &sum), zimStsOk);
            EXPECT_LT(ulpError(sum, magnitudes), 6) << len;
            EXPECT_TRUE(equalBits(x.values(), values));
            EXPECT_EQ(zimsSumRowSqr_64f(x, len, &sum, 0.3), zimStsOk);
            EXPECT_LT(ulpError(sum, squares), 6) << len;
            EXPECT_TRUE(equalBits(x.values(), scaled));
        }
}

TEST(ScaledSums, OfAColumnFromTopToBottom)
{
    Random random(7);
    const Problem<Zim64f> p(random, 9, 5);
    for (auto [abs, sqr] : {std::pair(&zimsSumColumnAbs_64f_D2L, &zimsSumColumnSqr_64f_D2L),
                            std::pair(&zimsSumColAbs_64f_D2L, &zimsSumColSqr_64f_D2L)})
        for (int col = 0; col < 5; ++col)
            for (int first = 0; first < 9; ++first)
                for (Zim64f val : {0.3, 1.0, -0.0}) {
                    const RowMatrix<Zim64f> rows(p.values, 9, 5);
                    auto wanted = p.values;
                    Zim64f magnitudes = 0, squares = 0, sum = 0;
                    for (int r = first; r < 9; ++r) {
                        magnitudes += std::fabs(p.at(r, col));
                        Zim64f& scaled = wanted[5 * r + col] *= val;
                        squares += scaled * scaled;
                    }
                    EXPECT_EQ(abs(rows.data(), 5, 9, &sum, col, first), zimStsOk);
                    EXPECT_EQ(sum, magnitudes);
                    EXPECT_EQ(sqr(rows.writable(), 5, 9, &sum, col, first, val), zimStsOk);
                    EXPECT_EQ(sum, squares);
                    EXPECT_TRUE(equalBits(rows.values(), wanted));
                }
}

TEST(MatrixSums, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using enum Size;
    const std::vector<ZimStatus> order{zimStsNullPointer, zimStsBadSize, zimStsBadStride};
    const std::vector<Size> columns{step, height, width}, rowsOf{width, step, height};
    expectMatrixChecks(columns, order, zimsSumColumn_32f_D2, zimsSumColumn_64f_D2, zimsSumColumn_16s32f_D2,
                       zimsSumColumn_16s32s_D2Sfs, zimsAddAllRowSum_32f_D2);
    expectMatrixChecks({height, width}, order, zimsSumColumn_32f_D2L, zimsSumColumn_64f_D2L, zimsSumColumn_16s32f_D2L,
                       zimsSumColumn_16s32s_D2LSfs, zimsAddAllRowSum_32f_D2L);
    expectMatrixChecks(rowsOf, order, zimsSumRow_32f_D2, zimsSumRow_64f_D2, zimsSumRow_16s32f_D2,
                       zimsSumRow_16s32s_D2Sfs, zimsSubRow_32f_D2, zimsSubRow_16s_D2);
    expectMatrixChecks({width, height}, order, zimsSumRow_32f_D2L, zimsSumRow_64f_D2L, zimsSumRow_16s32f_D2L,
                       zimsSumRow_16s32s_D2LSfs, zimsSubRow_32f_D2L, zimsSubRow_16s_D2L);
}

TEST(ScaledSums, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    expectPointersThenLength(zimsSumRowAbs_64f, zimsSumRowSqr_64f);
    Zim64f x[2] = {1, 1}, sum = 7, *const rows[] = {x, x};
    EXPECT_EQ(zimsSumColumnAbs_64f_D2L(nullptr, 0, 2, &sum, 0, 0), zimStsNullPointer);
    EXPECT_EQ(zimsSumColumnAbs_64f_D2L(rows, 2, 2, nullptr, 2, 0), zimStsNullPointer);
    EXPECT_EQ(zimsSumColumnSqr_64f_D2L(nullptr, 0, 2, &sum, 0, 0, 2), zimStsNullPointer);
    EXPECT_EQ(zimsSumColumnSqr_64f_D2L(rows, 2, 2, nullptr, 2, 0, 2), zimStsNullPointer);
    for (auto [width, height, col, first] :
         {std::array{0, 2, 0, 0}, {2, 0, 0, 0}, {2, 2, -1, 0}, {2, 2, 2, 0}, {2, 2, 0, -1}, {2, 2, 0, 2}}) {
        EXPECT_EQ(zimsSumColumnAbs_64f_D2L(rows, width, height, &sum, col, first), zimStsBadSize);
        EXPECT_EQ(zimsSumColumnSqr_64f_D2L(rows, width, height, &sum, col, first, 2), zimStsBadSize);
    }
    EXPECT_TRUE(sum == 7 && x[0] == 1 && x[1] == 1);
}

}  // namespace
}  // namespace zimsr::test
