// Objects that are read-only in use serve several threads at once. The thread sanitizer looks for races here.
#include <gtest/gtest.h>

#include <functional>
#include <thread>
#include <vector>

#include <zimsr.h>

#include "support/compare.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

using Floats = std::vector<Zim32f>;

// Runs work on several threads, many times each, and expects every result to be the one of a single thread.
void expectSameOnThreads(const std::function<Floats()>& work)
{
    const Floats alone = work();
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int& count : wrong)
        threads.emplace_back([&] {
            for (int round = 0; round < 50; ++round)
                count += !equalBits(work(), alone);
        });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(wrong, std::vector<int>(wrong.size(), 0));
}

TEST(Threads, OneTransformPlanServesAll)
{
    for (int order : {3, 9, 14}) {
        ZimsFFTPlan_R_32f* plan = nullptr;
        ASSERT_EQ(zimsFFTInitAlloc_R_32f(&plan, order, 8, 0), zimStsOk);
        const auto signal = Random(1).vector<Zim32f>(std::size_t{1} << order, -1, 1);
        expectSameOnThreads([&] {
            Floats spectrum(signal.size() + 2);
            zimsFFTFwd_RToCCS_32f(signal.data(), spectrum.data(), plan, nullptr);
            return spectrum;
        });
        zimsFFTFree_R_32f(plan);
    }
}

TEST(Threads, OneBankOnSpectraAndOneCosineTransformServeAll)
{
    ZimsFBankState_32f* bank = nullptr;
    ZimsDCTLifterState_32f* lifter = nullptr;
    int order = 0;
    ASSERT_EQ(zimsMelFBankInitAlloc_32f(&bank, &order, 256, 8000, 64, 4000, 23, 1127, 700, ZimFBankBinSlopes),
              zimStsOk);
    ASSERT_EQ(zimsDCTLifterInitAlloc_C0_32f(&lifter, 23, 12, 22, 1, 1), zimStsOk);
    const auto spectrum = Random(2).vector<Zim32f>(129, 1, 2);
    expectSameOnThreads([&] {
        Floats energies(23), cepstra(13);
        zimsEvalFBank_32f(spectrum.data(), energies.data(), bank);
        zimsLn_32f_I(energies.data(), 23);
        zimsDCTLifter_32f(energies.data(), cepstra.data(), lifter);
        return cepstra;
    });
    zimsDCTLifterFree_32f(lifter);
    zimsFBankFree_32f(bank);
    zimsFree(lifter);
    zimsFree(bank);
}

TEST(Threads, OneModelServesAll)
{
    const auto frames = Random(3).vector<Zim32f>(100 * 39, -3, 3), mean = Random(4).vector<Zim32f>(39, -3, 3),
               invVar = Random(5).vector<Zim32f>(39, 1, 2);
    expectSameOnThreads([&] {
        Floats scores(100);
        zimsLogGauss_32f_D2(frames.data(), 39, mean.data(), invVar.data(), 39, scores.data(), 100, -2);
        return scores;
    });
}

}  // namespace
}  // namespace zimsr::test
