// Filter banks of both types under one set of names, and the test's grip on them.
#pragma once

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include <zimsr/melfbank.h>

#include "support/compare.h"
#include "support/guarded.h"

namespace zimsr::test {

#define BANK_FUNCTIONS(tag)                                                    \
    using State = ZimsFBankState_##tag;                                        \
    static constexpr auto mel = zimsMelFBankInitAlloc_##tag;                   \
    static constexpr auto mixed = zimsMelLinFBankInitAlloc_##tag;              \
    static constexpr auto empty = zimsEmptyFBankInitAlloc_##tag;               \
    static constexpr auto lowAurora = zimsMelFBankInitAllocLow_Aurora_##tag;   \
    static constexpr auto highAurora = zimsMelFBankInitAllocHigh_Aurora_##tag; \
    static constexpr auto getCenters = zimsFBankGetCenters_##tag;              \
    static constexpr auto setCenters = zimsFBankSetCenters_##tag;              \
    static constexpr auto getCoeffs = zimsFBankGetCoeffs_##tag;                \
    static constexpr auto setCoeffs = zimsFBankSetCoeffs_##tag;                \
    static constexpr auto free = zimsFBankFree_##tag

struct Float {
    BANK_FUNCTIONS(32f);

    // Formulas in double, where differences of mel values cancel, and one rounding.
    static testing::AssertionResult isWeight(float actual, long double exact)
    {
        if (ulpError(actual, exact) <= 0.501L || std::fabs(actual - exact) < 1e-11L)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << actual << " for " << exact;
    }
};

struct Fixed {
    BANK_FUNCTIONS(16s);

    // Q14, truncated toward zero.
    static testing::AssertionResult isWeight(float actual, long double exact)
    {
        if (actual == std::trunc(exact * 16384) / 16384)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << actual * 16384 << " for " << exact * 16384;
    }
};
#undef BANK_FUNCTIONS

// A bank made by one builder, released with the test's grip on it.
template <class Type>
class Bank {
public:
    template <class Builder, class... Argument>
    explicit Bank(Builder build, Argument... arguments)
    {
        EXPECT_EQ(build(&state_, arguments...), zimStsOk);
    }
    ~Bank()
    {
        EXPECT_EQ(Type::free(state_), zimStsOk);
        zimsFree(state_);
    }
    Bank(const Bank&) = delete;
    Bank& operator=(const Bank&) = delete;

    operator typename Type::State *() const { return state_; }

private:
    typename Type::State* state_ = nullptr;
};

template <class Type>
std::vector<int> edgesOf(const Bank<Type>& bank, int nFilter)
{
    const Guarded<Zim32s> centers(nFilter + 2);
    EXPECT_EQ(Type::getCenters(bank, centers), zimStsOk);
    return std::vector<int>(centers.begin(), centers.end());
}

// Filter i as its weights over the bins c[i-1] .. c[i+1].
template <class Type>
std::vector<float> filterOf(const Bank<Type>& bank, const std::vector<int>& c, int i)
{
    const Guarded<float> weights(c[i + 1] - c[i - 1] + 1);
    EXPECT_EQ(Type::getCoeffs(bank, i, weights), zimStsOk);
    return weights.values();
}

using BankTypes = testing::Types<Float, Fixed>;

}  // namespace zimsr::test
