// Weighted means and variances of columns: every form against a scalar account of the order of operations, bit for bit.
#include <gtest/gtest.h>

#include <vector>

#include <zimsr.h>

#include "support/columnsums.h"
#include "support/compare.h"
#include "support/door_checks.h"
#include "support/guarded.h"
#include "support/matrix.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

#define FUNCTIONS_OF_TYPE(T, tag)                                            \
    template <>                                                              \
    struct Api<T> {                                                          \
        static constexpr auto mean = zimsWeightedMeanColumn_##tag##_D2;      \
        static constexpr auto meanL = zimsWeightedMeanColumn_##tag##_D2L;    \
        static constexpr auto var = zimsWeightedVarColumn_##tag##_D2;        \
        static constexpr auto varL = zimsWeightedVarColumn_##tag##_D2L;      \
        static constexpr auto both = zimsWeightedMeanVarColumn_##tag##_D2;   \
        static constexpr auto bothL = zimsWeightedMeanVarColumn_##tag##_D2L; \
    };
template <class T>
struct Api;
FUNCTIONS_OF_TYPE(Zim32f, 32f)
FUNCTIONS_OF_TYPE(Zim64f, 64f)
#undef FUNCTIONS_OF_TYPE

template <class T>
void expectStatistics(Random& random, int height, int width, Placement placement)
{
    using F = Api<T>;
    const auto columns = static_cast<std::size_t>(width), frames = static_cast<std::size_t>(height);
    const auto values = random.vector<T>(frames * columns, -4, 4);
    const StridedMatrix<T> mat(values, height, width, width + height % 3, placement);
    const RowMatrix<T> rows(values, height, width, placement);
    const Guarded<T> weights(random.vector<T>(frames, 0, 1), placement);
    const Guarded<T> given(random.vector<T>(columns, -4, 4), placement);

    std::vector<T> mean, aboutGiven, var;
    for (std::size_t c = 0; c < columns; ++c) {
        const auto x = [&](int r) { return values[r * columns + c]; };
        mean.push_back(sumDown(height, T(0), [&](int r) { return weights[r] * x(r); }));
        const T square = sumDown(height, T(0), [&](int r) { return weights[r] * (x(r) * x(r)); });
        aboutGiven.push_back(square - given[c] * given[c]);
        var.push_back(square - mean[c] * mean[c]);
    }
    Guarded<T> m(columns, placement), v(columns, placement);
    const auto expectMeans = [&](ZimStatus status) {
        EXPECT_EQ(status, zimStsOk);
        EXPECT_TRUE(equalBits(m.values(), mean)) << height << " x " << width << ", place " << placement.offset;
        m.fill(poison<T>());
    };
    const auto expectVariances = [&](ZimStatus status, const std::vector<T>& expected) {
        EXPECT_EQ(status, zimStsOk);
        EXPECT_TRUE(equalBits(v.values(), expected)) << height << " x " << width << ", place " << placement.offset;
        v.fill(poison<T>());
    };
    expectMeans(F::mean(mat.data(), mat.step(), weights, height, m, width));
    expectMeans(F::meanL(rows.data(), weights, height, m, width));
    expectVariances(F::var(mat.data(), mat.step(), weights, height, given, v, width), aboutGiven);
    expectVariances(F::varL(rows.data(), weights, height, given, v, width), aboutGiven);
    expectVariances(F::both(mat.data(), mat.step(), weights, height, m, v, width), var);
    expectMeans(zimStsOk);
    expectVariances(F::bothL(rows.data(), weights, height, m, v, width), var);
    expectMeans(zimStsOk);
}

template <class T>
class WeightedStats : public testing::Test {
};
using FloatTypes = testing::Types<Zim32f, Zim64f>;
TYPED_TEST_SUITE(WeightedStats, FloatTypes);

TYPED_TEST(WeightedStats, EveryFormKeepsTheOrderOfOperations)
{
    Random random(1);
    for (int width = 1; width <= 45; ++width)
        for (int height = 1; height <= 9; ++height)
            expectStatistics<TypeParam>(random, height, width, {});
    for (int width : {3, 13, 39})
        for (std::size_t element = 0; element < 8; ++element)
            expectStatistics<TypeParam>(random, 103, width, atOffset(element * sizeof(TypeParam)));
}

TYPED_TEST(WeightedStats, WeightsAreUsedAsTheyAre)
{
    using T = TypeParam;
    const T x[] = {1, 3}, weights[] = {1, 1};
    T mean, var;
    EXPECT_EQ(Api<T>::both(x, 1, weights, 2, &mean, &var, 1), zimStsOk);
    EXPECT_EQ(mean, 4);
    EXPECT_EQ(var, 10 - 16);
    EXPECT_EQ(Api<T>::both(x + 1, 1, weights, 1, &mean, &var, 1), zimStsOk);
    EXPECT_EQ(mean, 3);
    EXPECT_EQ(var, 0);
}

TYPED_TEST(WeightedStats, ChecksComeInTheirOrderAndARefusedCallWritesNothing)
{
    using F = Api<TypeParam>;
    using enum Size;
    const std::vector<ZimStatus> order{zimStsNullPointer, zimStsBadStride, zimStsBadSize};
    expectMatrixChecks({step, height, width}, order, F::mean, F::var, F::both);
    expectMatrixChecks({height, width}, order, F::meanL, F::varL, F::bothL);
}

}  // namespace
}  // namespace zimsr::test
