// Calls under each rounding mode that a caller may have set.
#pragma once

#include <fenv.h>
#include <gtest/gtest.h>
#include <xmmintrin.h>

namespace zimsr::test {

// Runs call in every mode of both float units, and expects to find both as they were set.
template <class Call>
void inEveryRoundingMode(Call call)
{
    const auto controlOfStackUnit = [] {
        unsigned short word;
        __asm__ volatile("fnstcw %0" : "=m"(word));
        return word;
    };
    for (int mode : {FE_TONEAREST, FE_DOWNWARD, FE_UPWARD, FE_TOWARDZERO}) {
        fesetround(mode);
        const unsigned vectorMode = _MM_GET_ROUNDING_MODE();
        const unsigned short stackMode = controlOfStackUnit();
        call();
        const bool kept = _MM_GET_ROUNDING_MODE() == vectorMode && controlOfStackUnit() == stackMode;
        fesetround(FE_TONEAREST);
        EXPECT_TRUE(kept) << "mode " << mode;
    }
}

}  // namespace zimsr::test
