// Gaussian selection: bit tables against a bit-by-bit account, and mixtures against single scores added one by one.
#include <gtest/gtest.h>

#include <climits>
#include <functional>
#include <numeric>
#include <type_traits>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/door_checks.h"
#include "support/failing_allocator.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

// ---- Bit tables: rows of rowBytes bytes, one behind the other

using Bytes = std::vector<Zim8u>;

struct BitPlace {
    std::size_t byte;
    Zim8u mask;

    BitPlace(int rowBytes, int row, int bit) : byte(row * rowBytes + bit / 8), mask(static_cast<Zim8u>(0x80 >> bit % 8))
    {
    }
};

// Lists of indices below a limit, one behind the other: of one length, or each of its own.
struct Lists {
    std::vector<Zim32s> lengths;
    Guarded<Zim32s> counts, indices;

    Lists(Random& random, int lists, int limit, bool varied)
        : lengths(varied ? random.vector<Zim32s>(lists, 1, 9) : std::vector<Zim32s>(lists, random.between(1, 5))),
          counts(lengths),
          indices(random.vector<Zim32s>(std::reduce(lengths.begin(), lengths.end()), 0, limit - 1))
    {
    }
    template <class Visit>
    void forEach(Visit visit) const
    {
        const Zim32s* index = indices;
        for (std::size_t list = 0; list < lengths.size(); ++list)
            for (Zim32s i = 0; i < lengths[list]; ++i)
                visit(static_cast<int>(list), *index++);
    }
};

TEST(FillShortlist, TogglesTheBitsOfEachList)
{
    Random random(1);
    for (int width : {1, 5, 8, 17, 64, 100})
        for (int startBit : {0, 3, 8, 13, 40})
            for (int spare : {0, 2})
                for (bool varied : {false, true}) {
                    const int height = random.between(1, 9), bytes = (startBit + width + 7) / 8 + spare;
                    const Lists columns(random, height, width, varied), rows(random, width, height, varied);
                    const Bytes before = random.any<Zim8u>(height * bytes);
                    const RowMatrix<Zim8u> table(before, height, bytes);
                    const auto fill = [&] {
                        return varied ? zimsFillShortlist_RowVar_1u(columns.indices, columns.counts, width,
                                                                    table.writable(), height, bytes, startBit)
                                      : zimsFillShortlist_Row_1u(columns.indices, width, columns.counts[0],
                                                                 table.writable(), height, bytes, startBit);
                    };
                    const auto fillColumns = [&] {
                        return varied ? zimsFillShortlist_ColumnVar_1u(rows.indices, rows.counts, table.writable(),
                                                                       height, bytes, startBit, width)
                                      : zimsFillShortlist_Column_1u(rows.indices, rows.counts[0], table.writable(),
                                                                    height, bytes, startBit, width);
                    };
                    Bytes expected = before;
                    const auto toggle = [&](int r, int c) {
                        const BitPlace place(bytes, r, startBit + c);
                        expected[place.byte] ^= place.mask;
                    };
                    EXPECT_EQ(fill(), zimStsOk);
                    columns.forEach([&](int r, int c) { toggle(r, c); });
                    EXPECT_TRUE(equalBits(table.values(), expected)) << width << ' ' << startBit;
                    EXPECT_EQ(fillColumns(), zimStsOk);
                    rows.forEach([&](int c, int r) { toggle(r, c); });
                    EXPECT_TRUE(equalBits(table.values(), expected)) << width << ' ' << startBit;
                    fill();
                    fillColumns();
                    EXPECT_TRUE(equalBits(table.values(), before)) << "filled twice";
                }
    Zim8u row[2] = {}, *const rows[] = {row};
    const Zim32s index = 5;
    EXPECT_EQ(zimsFillShortlist_Row_1u(&index, 6, 1, rows, 1, 2, 3), zimStsOk);
    EXPECT_EQ(row[1], 0x80) << "the first bit of a byte is its greatest";
}

TEST(BuildSignTable, SetsABitThatAnyListedRowHas)
{
    Random random(2);
    constexpr int height = 7;
    for (int bits : {1, 2, 7, 8, 9, 24, 25, 31, 32, 55, 56, 57, 63, 64, 100, 255, 256, 257, 300, 511, 1000})
        for (int startBit : {0, 1, 7, 8, 13, 60, 129})
            for (int spare : {0, 1, 5, 33})
                for (bool varied : {false, true}) {
                    const int bytes = (startBit + bits + 7) / 8 + spare, dstHeight = random.between(1, 5);
                    // Mostly clear, or everything would be set.
                    Bytes values = random.any<Zim8u>(height * bytes);
                    for (Zim8u& byte : values)
                        byte &= random.between<Zim8u>(0, 255) & random.between<Zim8u>(0, 255);
                    const RowMatrix<Zim8u> rows(values, height, bytes);
                    const Lists lists(random, dstHeight, height, varied);
                    const int dstBytes = (bits + 7) / 8;
                    const Guarded<Zim8u> dst(dstHeight * dstBytes);
                    EXPECT_EQ(varied ? zimsBuildSignTable_Var_8u1u(lists.indices, lists.counts, rows.data(), height,
                                                                   bytes, startBit, dst, dstHeight, bits)
                                     : zimsBuildSignTable_8u1u(lists.indices, lists.counts[0], rows.data(), height,
                                                               bytes, startBit, dst, dstHeight, bits),
                              zimStsOk);
                    Bytes expected(dst.size());
                    lists.forEach([&](int r, int listed) {
                        for (int b = 0; b < bits; ++b) {
                            const BitPlace from(bytes, listed, startBit + b), to(dstBytes, r, b);
                            if (values[from.byte] & from.mask)
                                expected[to.byte] |= to.mask;
                        }
                    });
                    EXPECT_TRUE(equalBits(dst.values(), expected)) << bits << ' ' << startBit << ' ' << spare;
                }
}

TEST(BitTables, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    const Bytes clear(4, 0x11);
    Bytes a = clear, b = clear, out = clear;
    Zim8u* const rows[] = {a.data(), b.data()};
    const Zim32s i[] = {0, 1, 1, 0}, below[] = {0, 1, -1, 0}, beyond[] = {0, 1, 2, 0}, n[] = {2, 2}, zero[] = {2, 0};
    Zim8u* const dst = out.data();
    const auto row = zimsFillShortlist_Row_1u;
    const auto rowVar = zimsFillShortlist_RowVar_1u;
    const auto column = zimsFillShortlist_Column_1u;
    const auto columnVar = zimsFillShortlist_ColumnVar_1u;
    const auto build = zimsBuildSignTable_8u1u;
    const auto buildVar = zimsBuildSignTable_Var_8u1u;
    expectNullsFirst(row, i, 0, 2, rows, 2, 4, 0);
    expectNullsFirst(rowVar, i, n, 0, rows, 2, 4, 0);
    expectNullsFirst(column, i, 2, rows, 2, 4, 0, 0);
    expectNullsFirst(columnVar, i, n, rows, 2, 4, 0, 0);
    expectNullsFirst(build, i, 2, rows, 2, 4, 0, dst, 2, 0);
    expectNullsFirst(buildVar, i, n, rows, 2, 4, 0, dst, 2, 0);
    expectStatuses({
        {"Row: width", row(i, 0, 2, rows, 2, 0, 0), zimStsBadSize},
        {"Row: count", row(i, 2, 0, rows, 2, 0, 0), zimStsBadSize},
        {"Row: height", row(i, 2, 2, rows, 0, 0, 0), zimStsBadSize},
        {"Row: startBit", row(i, 2, 2, rows, 2, 0, -1), zimStsBadSize},
        {"Row: rowBytes of 0", row(beyond, 2, 2, rows, 2, 0, 0), zimStsBadStride},
        {"Row: rowBytes", row(beyond, 2, 2, rows, 2, 1, 7), zimStsBadStride},
        {"Row: bits beyond int", row(beyond, 2, 2, rows, 2, 4, INT_MAX), zimStsBadStride},
        {"Row: index at the width", row(beyond, 2, 2, rows, 2, 4, 0), zimStsBadArgument},
        {"Row: index below 0", row(below, 2, 2, rows, 2, 4, 0), zimStsBadArgument},
        {"RowVar: width", rowVar(i, zero, 0, rows, 2, 0, 0), zimStsBadSize},
        {"RowVar: height", rowVar(i, zero, 2, rows, -1, 0, 0), zimStsBadSize},
        {"RowVar: startBit", rowVar(i, zero, 2, rows, 2, 0, -1), zimStsBadSize},
        {"RowVar: a count before the stride", rowVar(i, zero, 2, rows, 2, 0, 0), zimStsBadSize},
        {"RowVar: rowBytes", rowVar(beyond, n, 2, rows, 2, 0, 0), zimStsBadStride},
        {"RowVar: index", rowVar(beyond, n, 2, rows, 2, 4, 0), zimStsBadArgument},
        {"Column: count", column(i, 0, rows, 2, 0, 0, 2), zimStsBadSize},
        {"Column: width", column(i, 2, rows, 2, 0, 0, 0), zimStsBadSize},
        {"Column: rowBytes", column(beyond, 2, rows, 2, 0, 0, 2), zimStsBadStride},
        {"Column: index at the height", column(beyond, 2, rows, 2, 4, 0, 2), zimStsBadArgument},
        {"ColumnVar: height", columnVar(i, zero, rows, 0, 0, 0, 2), zimStsBadSize},
        {"ColumnVar: the stride before a count", columnVar(i, zero, rows, 2, 0, 0, 2), zimStsBadStride},
        {"ColumnVar: a count", columnVar(beyond, zero, rows, 2, 4, 0, 2), zimStsBadSize},
        {"ColumnVar: index", columnVar(beyond, n, rows, 2, 4, 0, 2), zimStsBadArgument},
        {"Build: count", build(i, 0, rows, 2, 0, 0, dst, 2, 9), zimStsBadSize},
        {"Build: height", build(i, 2, rows, 0, 0, 0, dst, 2, 9), zimStsBadSize},
        {"Build: dstHeight", build(i, 2, rows, 2, 0, 0, dst, 0, 9), zimStsBadSize},
        {"Build: bits", build(i, 2, rows, 2, 0, 0, dst, 2, 0), zimStsBadSize},
        {"Build: startBit", build(i, 2, rows, 2, 0, -1, dst, 2, 9), zimStsBadSize},
        {"Build: rowBytes", build(beyond, 2, rows, 2, 1, 0, dst, 2, 9), zimStsBadStride},
        {"Build: index", build(beyond, 2, rows, 2, 4, 0, dst, 2, 9), zimStsBadArgument},
        {"BuildVar: the stride before a count", buildVar(i, zero, rows, 2, 1, 0, dst, 2, 9), zimStsBadStride},
        {"BuildVar: a count", buildVar(beyond, zero, rows, 2, 4, 0, dst, 2, 9), zimStsBadSize},
        {"BuildVar: index below 0", buildVar(below, n, rows, 2, 4, 0, dst, 2, 9), zimStsBadArgument},
    });
    EXPECT_EQ(a, clear);
    EXPECT_EQ(b, clear);
    EXPECT_EQ(out, clear);
}

// ---- Mixtures

template <class T>
struct Api;

template <>
struct Api<Zim32f> {
    static constexpr auto single = zimsLogGaussSingle_32f;
    static constexpr auto singleId = zimsLogGaussSingle_IdVar_32f;
    static constexpr auto block = zimsLogGaussMixture_Select_32f_D2;
    static constexpr auto rows = zimsLogGaussMixture_Select_32f_D2L;
    static constexpr auto blockId = zimsLogGaussMixture_SelectIdVar_32f_D2;
    static constexpr auto rowsId = zimsLogGaussMixture_SelectIdVar_32f_D2L;
    static constexpr Zim32f bound = 4;
};

template <>
struct Api<Zim16s> {
    static constexpr auto single = zimsLogGaussSingle_Scaled_16s32f;
    static constexpr auto singleId = zimsLogGaussSingle_IdVarScaled_16s32f;
    static constexpr auto block = zimsLogGaussMixture_SelectScaled_16s32f_D2;
    static constexpr auto rows = zimsLogGaussMixture_SelectScaled_16s32f_D2L;
    static constexpr auto blockId = zimsLogGaussMixture_SelectIdVarScaled_16s32f_D2;
    static constexpr auto rowsId = zimsLogGaussMixture_SelectIdVarScaled_16s32f_D2L;
    static constexpr Zim16s bound = 900;
};

// Calls a function, with a scale factor behind the arguments where it has one.
template <class Function, class... Argument>
ZimStatus call(Function function, Argument... arguments)
{
    if constexpr (std::is_invocable_v<Function, Argument...>)
        return function(arguments...);
    else
        return function(arguments..., 14);
}

template <class T>
struct Problem {
    int width, gaussCount, height, tableBytes;
    std::vector<T> frames, means, weights;
    std::vector<Zim32f> constants;
    Bytes table;
    Zim32f defaultVal = -9e6f;

    Problem(Random& random, int columns, int gaussians, int rows, int percent)
        : width(columns), gaussCount(gaussians), height(rows), tableBytes((gaussians + 7) / 8)
    {
        constexpr T bound = Api<T>::bound;
        const auto size = [this](int count) { return count * width; };
        frames = random.vector<T>(size(rows), T(-bound), bound);
        means = random.vector<T>(size(gaussians), T(-bound), bound);
        weights = random.vector<T>(size(gaussians), T(0), T(2));
        constants = random.vector<Zim32f>(gaussians, -60, 0);
        table.assign(rows * tableBytes, 0);
        // What stands behind the last column does not matter.
        for (int f = 0; f < rows; ++f)
            for (int g = 0; g < 8 * tableBytes; ++g)
                if (g >= gaussians || random.between(0, 99) < percent)
                    table[BitPlace(tableBytes, f, g).byte] |= BitPlace(tableBytes, f, g).mask;
    }

    std::vector<Zim32f> expected(bool weighted, int hint) const
    {
        std::vector<Zim32f> sums;
        for (int f = 0; f < height; ++f) {
            Zim32f sum = defaultVal;
            bool empty = true;
            for (int g = 0; g < gaussCount; ++g) {
                const BitPlace place(tableBytes, f, g);
                if (!(table[place.byte] & place.mask))
                    continue;
                const T *x = &frames[f * width], *mean = means.data() + g * width;
                Zim32f score;
                const Zim32f gconst = constants[g];
                if (weighted)
                    call(Api<T>::single, x, mean, weights.data() + g * width, width, &score, gconst);
                else
                    call(Api<T>::singleId, x, mean, width, &score, gconst);
                if (empty)
                    sum = score;
                else
                    zimsLogAdd_32f(&score, &sum, 1, hint);
                empty = false;
            }
            sums.push_back(sum);
        }
        return sums;
    }
};

// Arrays end at a protected page unless they are placed otherwise, and gaps between rows hold poison.
template <class T>
class Arrays {
public:
    explicit Arrays(const Problem<T>& problem, Placement placement = {})
        : p(problem),
          step(p.width + p.height % 3),
          src(p.frames, p.height, p.width, step, placement),
          mean(p.means, p.gaussCount, p.width, step, placement),
          invVar(p.weights, p.gaussCount, p.width, step, placement),
          srcRows(p.frames, p.height, p.width, placement),
          meanRows(p.means, p.gaussCount, p.width, placement),
          invVarRows(p.weights, p.gaussCount, p.width, placement),
          val(p.constants, placement),
          table(p.table),
          dst(p.height, placement)
    {
    }

    struct Form {
        const char* name;
        bool weighted, mayAddFast;
        std::function<ZimStatus()> run;
    };
    std::vector<Form> forms() const
    {
        using F = Api<T>;
        const auto over = [this](auto function, auto... matrices) {
            return [=, this] {
                return call(function, matrices..., p.width, val.data(), table.data(), p.gaussCount, dst.data(),
                            p.height, p.defaultVal);
            };
        };
        return {
            {"D2", true, true, over(F::block, src.data(), mean.data(), invVar.data(), step)},
            {"D2L", true, false, over(F::rows, srcRows.data(), meanRows.data(), invVarRows.data())},
            {"IdVar D2", false, false, over(F::blockId, src.data(), mean.data(), step)},
            {"IdVar D2L", false, false, over(F::rowsId, srcRows.data(), meanRows.data())},
        };
    }

    const Problem<T>& p;
    int step;
    StridedMatrix<T> src, mean, invVar;
    RowMatrix<T> srcRows, meanRows, invVarRows;
    Guarded<Zim32f> val;
    Guarded<Zim8u> table;
    Guarded<Zim32f> dst;
};

template <class T>
void expectAllForms(const Problem<T>& p, Placement placement = {})
{
    Arrays<T> arrays(p, placement);
    for (const auto& form : arrays.forms()) {
        const int hint = form.mayAddFast && p.gaussCount >= 9 && p.height >= 2;
        arrays.dst.fill(7);
        EXPECT_EQ(form.run(), zimStsOk);
        EXPECT_TRUE(equalBits(arrays.dst.values(), p.expected(form.weighted, hint)))
            << form.name << ", width " << p.width << ", " << p.gaussCount << " Gaussians, " << p.height << " frames";
    }
}

template <class T>
class SelectedMixture : public testing::Test {
};
using Types = testing::Types<Zim32f, Zim16s>;
TYPED_TEST_SUITE(SelectedMixture, Types);

TYPED_TEST(SelectedMixture, AddsTheScoresOfTheSelectedInTheirOrder)
{
    Random random(3);
    for (int gaussCount : {1, 2, 7, 8, 9, 20, 21, 31, 32, 33, 100, 257})
        for (int height : {1, 2, 7, 33, 70})
            for (int percent : {0, 3, 30, 100})
                expectAllForms(Problem<TypeParam>(random, random.between(1, 20), gaussCount, height, percent));
    for (int width : {1, 3, 8, 13, 39, 40})
        for (std::size_t element : {0, 1, 3})
            expectAllForms(Problem<TypeParam>(random, width, 40, 35, 40), atOffset(element * sizeof(TypeParam)));
}

TYPED_TEST(SelectedMixture, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using T = TypeParam;
    using F = Api<T>;
    using enum Size;
    // The second height is the number of Gaussians.
    expectMatrixChecks({step, width, height, height}, {zimStsNullPointer, zimStsBadSize, zimStsBadStride}, F::block,
                       F::blockId);
    expectMatrixChecks({width, height, height}, {zimStsNullPointer, zimStsBadSize}, F::rows, F::rowsId);

    const std::vector<T> x(4, 1);
    const T* const whole[] = {x.data(), x.data(), x.data()};
    const Zim32f val[3] = {};
    const Zim8u table[2] = {0xE0, 0xE0};
    for (int r = 0; r < 3; ++r) {
        const T* spoilt[] = {x.data(), x.data(), x.data()};
        spoilt[r] = nullptr;
        Zim32f dst[2] = {7, 7};
        const auto run = [&](auto function, auto... matrices) {
            return call(function, matrices..., 4, val, table, 3, dst, 2, 0.0f);
        };
        EXPECT_EQ(run(F::rows, whole, spoilt, whole), zimStsNullPointer) << "mean " << r;
        EXPECT_EQ(run(F::rows, whole, whole, spoilt), zimStsNullPointer) << "invVar " << r;
        EXPECT_EQ(run(F::rowsId, whole, spoilt), zimStsNullPointer) << "mean " << r;
        EXPECT_EQ(dst[0], 7);
        // There are two frames.
        EXPECT_EQ(run(F::rows, spoilt, whole, whole), r < 2 ? zimStsNullPointer : zimStsOk) << "frame " << r;
        EXPECT_EQ(run(F::rowsId, spoilt, whole), r < 2 ? zimStsNullPointer : zimStsOk) << "frame " << r;
        EXPECT_EQ(dst[0] == 7, r < 2);
    }
}

TYPED_TEST(SelectedMixture, MemoryFailsCleanly)
{
    Random random(4);
    const Problem<TypeParam> p(random, 13, 40, 9, 50);
    Arrays<TypeParam> arrays(p);
    const std::vector<Zim32f> untouched(9, 7);
    for (const auto& form : arrays.forms()) {
        arrays.dst.fill(7);
        const int requests = forEachFailedAllocation(form.run, [&](ZimStatus status, int leaked) {
            EXPECT_EQ(status, zimStsAllocFailed) << form.name;
            EXPECT_EQ(leaked, 0) << form.name;
            EXPECT_EQ(arrays.dst.values(), untouched) << form.name;
        });
        EXPECT_EQ(requests, 1) << form.name;
        EXPECT_NE(arrays.dst.values(), untouched) << form.name;
    }
}

}  // namespace
}  // namespace zimsr::test
