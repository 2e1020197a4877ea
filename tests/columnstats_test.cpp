// Means and variances of columns: every form against a scalar account of the order of operations, bit for bit, and the
// floating-point forms against long double.
#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <limits>
#include <vector>

#include <zimsr.h>

#include "support/columnsums.h"
#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"
#include "support/rounding.h"

namespace zimsr::test {
namespace {

// ---- What the statistics must be

template <class T>
struct Problem {
    int height, width;
    std::vector<T> values, mean;

    Problem(Random& random, int rows, int columns, T low, T high)
        : height(rows),
          width(columns),
          values(random.vector<T>(rows * columns, low, high)),
          mean(random.vector<T>(columns, low, high))
    {
    }

    T at(int r, std::size_t c) const { return values[r * mean.size() + c]; }
};

// The mean and the variance of a column, in what their type computes.
template <class T>
struct Column {
    T mean, varianceAboutGiven, variance;
};

template <class T>
Column<float> expectedFloats(const Problem<T>& p, std::size_t c)
{
    const float h = static_cast<float>(p.height);
    const bool samples = sizeof(T) == 2;
    const float invH = samples ? 1 / h : static_cast<float>(1.0 / p.height);
    const float invH1 = samples ? 1 / (h - 1) : static_cast<float>(1.0 / (p.height - 1));
    const auto x = [&](int r) { return static_cast<float>(p.at(r, c)); };
    const auto square = [&](int r) { return x(r) * x(r); };
    const float given = static_cast<float>(p.mean[c]);
    const float m = sumDown(p.height, 0.0f, x) * invH;
    const float aboutGiven =
        samples ? sumDown(p.height, 0.0f, square) + -h * given * given : sumDown(p.height, -h * given * given, square);
    return {m, aboutGiven * invH1, (sumDown(p.height, 0.0f, square) - h * m * m) * invH1};
}

// round(v * 2^-scaleFactor), ties to even, saturated. The variance of one row is NaN, and not looked at.
template <class Int>
Int rounded(double v, int scaleFactor)
{
    if (std::isnan(v))
        return 0;
    const double scaled = std::nearbyint(std::ldexp(v, -std::clamp(scaleFactor, -2000, 2000)));
    return static_cast<Int>(
        std::clamp<double>(scaled, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
}

Column<Zim16s> expectedRounded(const Problem<Zim16s>& p, std::size_t c, int scaleFactor)
{
    const Column<float> exact = expectedFloats(p, c);
    return {rounded<Zim16s>(exact.mean, 0), rounded<Zim16s>(exact.varianceAboutGiven, scaleFactor),
            rounded<Zim16s>(exact.variance, scaleFactor)};
}

// An arithmetic shift of an integer, saturated.
Zim16s shifted(float t, int scaleFactor)
{
    if (std::isnan(t))
        return 0;
    const double v = std::floor(std::ldexp(std::trunc(static_cast<double>(t)), -std::clamp(scaleFactor, -100, 100)));
    return static_cast<Zim16s>(std::clamp(v, -32768.0, 32767.0));
}

Column<Zim16s> expectedTruncated(const Problem<Zim16s>& p, std::size_t c, int scaleFactor)
{
    const float invH = 1 / static_cast<float>(p.height), invH1 = 1 / static_cast<float>(p.height - 1);
    Zim64s s = 0, squares = 0;
    float q = 0;
    for (int r = 0; r < p.height; ++r) {
        const Zim64s x = p.at(r, c);
        s += x;
        squares += x * x;
        q += static_cast<float>(x * x);
    }
    const Zim64s given = p.mean[c], deviation = -p.height * given * given + squares;
    const float m = static_cast<float>(s) * invH;
    return {static_cast<Zim16s>(m), shifted(static_cast<float>(deviation) * invH1, scaleFactor),
            shifted((q + m * m * -static_cast<float>(p.height)) * invH1, scaleFactor)};
}

// Rounded from Zim64f; reciprocals in Zim32f where `narrowQuotients`.
Column<Zim32s> expectedWide(const Problem<Zim16s>& p, std::size_t c, int scaleFactor, bool narrowQuotients)
{
    const auto reciprocal = [=](int n) {
        return narrowQuotients ? 1 / static_cast<float>(n) : 1 / static_cast<double>(n);
    };
    double s = 0, q = 0;
    for (int r = 0; r < p.height; ++r) {
        s += p.at(r, c);
        q += static_cast<double>(p.at(r, c)) * p.at(r, c);
    }
    const double m = s * reciprocal(p.height);
    const double v = (q - m * m * p.height) * reciprocal(p.height - 1);
    return {rounded<Zim32s>(m, 0), 0, rounded<Zim32s>(v, scaleFactor)};
}

// ---- The functions, run on the same values

template <class T>
struct Arrays {
    StridedMatrix<T> mat;
    RowMatrix<T> apart;         // rows that lie apart, each guarded by itself, or,
    StridedMatrix<T> together;  // where they are too many for that, in one block
    std::vector<const T*> table;
    Guarded<T> given;
    int height, width;

    static constexpr int mostApart = 1000;

    explicit Arrays(const Problem<T>& p, Placement placement = {})
        : mat(p.values, p.height, p.width, p.width + p.height % 3, placement),
          apart(p.values, std::min(p.height, mostApart), p.width, placement),
          together(p.values, p.height > mostApart ? p.height : 1, p.width, (p.width + 7) / 8 * 8, placement),
          given(p.mean, placement),
          height(p.height),
          width(p.width)
    {
        for (int r = 0; r < height; ++r)
            table.push_back(height > mostApart ? together.data() + static_cast<std::ptrdiff_t>(r) * together.step()
                                               : apart.data()[r]);
    }

    bool rowsAligned() const
    {
        return std::all_of(table.begin(), table.end(),
                           [](const T* row) { return reinterpret_cast<std::uintptr_t>(row) % 16 == 0; });
    }
};

enum Writes { mean = 1, variance = 2, both = 3, aboutGiven = 6 };

template <class T, class Mean, class Var>
struct Form {
    const char* name;
    int writes;
    bool rows;
    ZimStatus (*run)(const Arrays<T>&, Mean* m, Var* v, int factor);
};

#define MATRIX a.mat.data(), a.height, a.mat.step()
#define ROWS a.table.data(), a.height
#define FORM(writes, rows, ...)                                                 \
    {                                                                           \
#__VA_ARGS__, writes, rows,                                             \
            [](const auto& a, [[maybe_unused]] auto m, [[maybe_unused]] auto v, \
               [[maybe_unused]] int factor) { return __VA_ARGS__; }             \
    }

const Form<float, float, float> floatForms[] = {
    FORM(mean, false, zimsMeanColumn_32f_D2(MATRIX, m, a.width)),
    FORM(mean, true, zimsMeanColumn_32f_D2L(ROWS, m, a.width)),
    FORM(aboutGiven, false, zimsVarColumn_32f_D2(MATRIX, a.given, v, a.width)),
    FORM(aboutGiven, true, zimsVarColumn_32f_D2L(ROWS, a.given, v, a.width)),
    FORM(both, false, zimsMeanVarColumn_32f_D2(MATRIX, m, v, a.width)),
    FORM(both, true, zimsMeanVarColumn_32f_D2L(ROWS, m, v, a.width)),
    FORM(mean, false, zimsMeanCol_32f_D2(MATRIX, m, a.width)),
    FORM(mean, true, zimsMeanCol_32f_D2L(ROWS, m, a.width)),
    FORM(aboutGiven, false, zimsVarCol_32f_D2(MATRIX, a.given, v, a.width)),
    FORM(aboutGiven, true, zimsVarCol_32f_D2L(ROWS, a.given, v, a.width)),
    FORM(both, false, zimsMeanVarCol_32f_D2(MATRIX, m, v, a.width)),
    FORM(both, true, zimsMeanVarCol_32f_D2L(ROWS, m, v, a.width)),
};
const Form<Zim16s, Zim16s, Zim16s> sampleForms[] = {
    FORM(mean, false, zimsMeanColumn_16s_D2(MATRIX, m, a.width)),
    FORM(mean, true, zimsMeanColumn_16s_D2L(ROWS, m, a.width)),
    FORM(aboutGiven, false, zimsVarColumn_16s_D2Sfs(MATRIX, a.given, v, a.width, factor)),
    FORM(aboutGiven, true, zimsVarColumn_16s_D2LSfs(ROWS, a.given, v, a.width, factor)),
    FORM(both, false, zimsMeanVarColumn_16s_D2Sfs(MATRIX, m, v, a.width, factor)),
    FORM(both, true, zimsMeanVarColumn_16s_D2LSfs(ROWS, m, v, a.width, factor)),
};
const Form<Zim16s, Zim32s, Zim32s> wideForms[] = {
    FORM(both, false, zimsMeanVarColumn_16s32s_D2Sfs(MATRIX, m, v, a.width, factor)),
    FORM(both, true, zimsMeanVarColumn_16s32s_D2LSfs(ROWS, m, v, a.width, factor)),
};
const Form<Zim16s, Zim16s, Zim32s> mixedForms[] = {
    FORM(both, false, zimsMeanVarColumn_16s16s32s_D2(MATRIX, m, v, a.width)),
    FORM(both, true, zimsMeanVarColumn_16s16s32s_D2L(ROWS, m, v, a.width)),
};
#undef FORM
#undef ROWS
#undef MATRIX

// expected(form, column) gives the Column that the form writes from.
template <class T, class Mean, class Var, std::size_t count, class Expected>
void expectForms(const Form<T, Mean, Var> (&forms)[count], const Arrays<T>& a, int factor, Placement placement,
                 Expected expected)
{
    for (const auto& form : forms) {
        if (a.height < 2 && form.writes != mean)
            continue;
        const auto width = static_cast<std::size_t>(a.width);
        const Guarded<Mean> m(width, placement);
        const Guarded<Var> v(width, placement);
        std::vector<Mean> means = m.values();
        std::vector<Var> variances = v.values();
        for (std::size_t c = 0; c < width; ++c) {
            const auto column = expected(form, c);
            if (form.writes & mean)
                means[c] = static_cast<Mean>(column.mean);
            if (form.writes & variance)
                variances[c] = form.writes == aboutGiven ? column.varianceAboutGiven : column.variance;
        }
        EXPECT_EQ(form.run(a, m, v, factor), zimStsOk);
        EXPECT_TRUE(equalBits(m.values(), means) && equalBits(v.values(), variances))
            << form.name << ' ' << a.height << " x " << a.width << ", factor " << factor << ", place "
            << placement.offset;
    }
}

void expectFloatForms(const Problem<float>& p, Placement placement = {})
{
    expectForms(floatForms, Arrays(p, placement), 0, placement,
                [&](const auto&, std::size_t c) { return expectedFloats(p, c); });
}

void expectSampleForms(const Problem<Zim16s>& p, int factor, Placement placement = {})
{
    const Arrays a(p, placement);
    expectForms(sampleForms, a, factor, placement, [&](const auto& form, std::size_t c) {
        return form.rows && !a.rowsAligned() ? expectedTruncated(p, c, factor) : expectedRounded(p, c, factor);
    });
    expectForms(wideForms, a, factor, placement,
                [&](const auto& form, std::size_t c) { return expectedWide(p, c, factor, form.rows); });
    expectForms(mixedForms, a, 0, placement,
                [&](const auto& form, std::size_t c) { return expectedWide(p, c, 0, form.rows); });
}

// ---- Tests

TEST(ColumnStats, FloatFormsKeepTheOrderOfOperations)
{
    Random random(1);
    for (int width = 1; width <= 45; ++width)
        for (int height = 1; height <= 9; ++height)
            expectFloatForms({random, height, width, -4, 4});
    for (int width : {3, 13, 39, 100})
        expectFloatForms({random, 203, width, 90, 100});
    for (int width : {3, 8, 13, 39})
        for (std::size_t element = 0; element < 8; ++element)
            expectFloatForms({random, 11, width, -4, 4}, atOffset(element * sizeof(float)));
}

TEST(ColumnStats, FloatsAreCloseToTheFormula)
{
    Random random(2);
    for (int height : {2, 3, 17, 1000}) {
        const Problem<float> p(random, height, 5, -3, 5);
        for (std::size_t c = 0; c < 5; ++c) {
            long double sum = 0, squares = 0;
            for (int r = 0; r < height; ++r) {
                sum += p.at(r, c);
                squares += static_cast<long double>(p.at(r, c)) * p.at(r, c);
            }
            const auto actual = expectedFloats(p, c);
            const long double mean = sum / height;
            const float unit = std::numeric_limits<float>::epsilon();
            EXPECT_NEAR(actual.mean, mean, 5 * (height / 8 + 4) * unit);
            EXPECT_NEAR(actual.variance, (squares - height * mean * mean) / (height - 1), 25 * (height / 4 + 8) * unit);
        }
    }
}

TEST(ColumnStats, SampleFormsRoundOrTruncate)
{
    Random random(3);
    for (int width = 1; width <= 40; ++width)
        for (int height = 1; height <= 9; ++height)
            for (int offset : {0, 2})
                expectSampleForms({random, height, width, -300, 300}, (width + height) % 7 - 2, atOffset(offset));
    for (int factor : {INT_MIN, -1100, -60, -33, -15, -1, 0, 1, 8, 15, 16, 17, 30, 33, 64, 1100, INT_MAX})
        for (int offset : {0, 2})
            for (int bound : {1, 100, 32767})
                expectSampleForms({random, 37, 13, static_cast<Zim16s>(-bound), static_cast<Zim16s>(bound)}, factor,
                                  atOffset(offset));
    for (int width : {1, 7, 9, 17})
        expectSampleForms({random, 6, width, -32768, 32767}, 16);  // each array ends at a protected page
}

// Many rows at the bounds of their type: no inner sum may overflow.
TEST(ColumnStats, LongColumnsOfExtremeSamples)
{
    Random random(4);
    for (Zim16s value : {-32768, 32767})
        for (int height : {65536, 65537, 140001})
            for (int offset : {0, 2})
                expectSampleForms({random, height, 3, value, value}, 12, atOffset(offset));
    expectSampleForms({random, 70001, 9, -32768, 32767}, 12, atOffset(0));
}

TEST(ColumnStats, KnownCases)
{
    const Zim16s extremes[] = {-32768, 32767}, oneTwo[] = {1, 2};
    Zim32s wideMean, wideVar;
    EXPECT_EQ(zimsMeanVarColumn_16s32s_D2Sfs(extremes, 2, 1, &wideMean, &wideVar, 1, 0), zimStsOk);
    EXPECT_EQ(wideMean, 0);
    EXPECT_EQ(wideVar, 2147418112);
    // A constant column keeps its variance of 0 at a scale that is infinite.
    const Zim16s constant[] = {7, 7};
    EXPECT_EQ(zimsMeanVarColumn_16s32s_D2Sfs(constant, 2, 1, &wideMean, &wideVar, 1, INT_MIN), zimStsOk);
    EXPECT_EQ(wideVar, 0);

    alignas(16) Zim16s block[16] = {1, 1, 0, 0, 0, 0, 0, 0, 2, 2};
    const Zim16s* const aligned[] = {block, block + 8};
    const Zim16s* const shiftedRows[] = {block, block + 9};
    inEveryRoundingMode([&] {
        Zim16s mean = 0;
        zimsMeanColumn_16s_D2(oneTwo, 2, 1, &mean, 1);
        EXPECT_EQ(mean, 2);
        zimsMeanColumn_16s_D2L(aligned, 2, &mean, 1);
        EXPECT_EQ(mean, 2);
        zimsMeanColumn_16s_D2L(shiftedRows, 2, &mean, 1);
        EXPECT_EQ(mean, 1);
        zimsMeanVarColumn_16s32s_D2Sfs(oneTwo, 2, 1, &wideMean, &wideVar, 1, 0);
        EXPECT_EQ(wideMean, 2);
        EXPECT_EQ(wideVar, 0);
    });

    // A single row is its own mean.
    const std::vector<float> row(9, -0.0f);
    const float* const rows[] = {row.data()};
    std::vector<float> copy(9, 1), copyOfRows(9, 1);
    EXPECT_EQ(zimsMeanColumn_32f_D2(row.data(), 1, 9, copy.data(), 9), zimStsOk);
    EXPECT_EQ(zimsMeanColumn_32f_D2L(rows, 1, copyOfRows.data(), 9), zimStsOk);
    EXPECT_TRUE(equalBits(copy, row) && equalBits(copyOfRows, row));

    // About a mean that is not the columns' own, the formula stands as it is.
    const float x[] = {1, 3}, mean[] = {5};
    float var;
    EXPECT_EQ(zimsVarColumn_32f_D2(x, 2, 1, mean, &var, 1), zimStsOk);
    EXPECT_EQ(var, -40);
}

TEST(ColumnStats, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using enum Size;
    const std::vector<ZimStatus> strideFirst{zimStsBadStride, zimStsNullPointer, zimStsBadSize},
        strideLast{zimStsNullPointer, zimStsBadSize, zimStsBadStride};
    const std::vector<Size> block{height, step, width}, rows{height, width};
    expectMatrixChecks(block, strideFirst, zimsMeanColumn_32f_D2, zimsMeanColumn_16s_D2, zimsVarColumn_32f_D2,
                       zimsVarColumn_16s_D2Sfs);
    expectMatrixChecks(rows, strideLast, zimsMeanColumn_32f_D2L, zimsMeanColumn_16s_D2L, zimsVarColumn_32f_D2L,
                       zimsVarColumn_16s_D2LSfs, zimsMeanVarColumn_32f_D2L, zimsMeanVarColumn_16s_D2LSfs,
                       zimsMeanVarColumn_16s32s_D2LSfs, zimsMeanVarColumn_16s16s32s_D2L);
    expectMatrixChecks(block, strideLast, zimsMeanVarColumn_32f_D2, zimsMeanVarColumn_16s_D2Sfs,
                       zimsMeanVarColumn_16s32s_D2Sfs, zimsMeanVarColumn_16s16s32s_D2);
}

template <class T, class Mean, class Var>
ZimStatus refusedOneRow(const Form<T, Mean, Var>& form, const Arrays<T>& a)
{
    std::vector<Mean> m(a.width, 7);
    std::vector<Var> v(m.size(), 7);
    const ZimStatus status = form.run(a, m.data(), v.data(), 0);
    EXPECT_EQ(m, std::vector<Mean>(m.size(), 7));
    EXPECT_EQ(v, std::vector<Var>(v.size(), 7));
    return status;
}

TEST(ColumnStats, AVarianceNeedsTwoRows)
{
    Random random(6);
    const auto expectRefusal = [](const auto& forms, const auto& a) {
        for (const auto& form : forms)
            if (form.writes != mean) {
                EXPECT_EQ(form.run(a, nullptr, nullptr, 0), zimStsNullPointer) << form.name;
                EXPECT_EQ(refusedOneRow(form, a), zimStsBadSize) << form.name;
            }
    };
    expectRefusal(floatForms, Arrays(Problem<float>(random, 1, 3, -1, 1)));
    const Arrays samples(Problem<Zim16s>(random, 1, 3, -9, 9));
    expectRefusal(sampleForms, samples);
    expectRefusal(wideForms, samples);
    expectRefusal(mixedForms, samples);
}

TEST(ColumnStats, NoMemoryLeavesTheResultsAlone)
{
    Random random(5);
    const Problem<Zim16s> p(random, 4, 11, -50, 50);
    const Arrays<Zim16s> a(p, atOffset(0)), unaligned(p, atOffset(2));
    const std::vector<Zim16s> untouched(11, 777);
    std::vector<Zim16s> m(untouched), v(untouched);
    for (const auto& form : sampleForms) {
        const auto call = [&] { return form.run(a, m.data(), v.data(), 0); };
        const int requests = forEachFailedAllocation(call, [&](ZimStatus status, int leaked) {
            EXPECT_EQ(status, zimStsNoMemory);
            EXPECT_EQ(leaked, 0);
            EXPECT_TRUE(m == untouched && v == untouched) << form.name;
        });
        EXPECT_EQ(requests, 1) << form.name;
        m = v = untouched;
        const AllocationWatch watch(1);
        EXPECT_EQ(form.run(unaligned, m.data(), v.data(), 0), form.rows ? zimStsOk : zimStsNoMemory) << form.name;
        m = v = untouched;
    }
}

}  // namespace
}  // namespace zimsr::test
