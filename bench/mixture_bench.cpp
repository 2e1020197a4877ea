// Whole mixtures beside the scores of their Gaussians alone: what the folding costs.
#include <benchmark/benchmark.h>

#include <random>
#include <vector>

#include <zimsr.h>

namespace {

template <class T>
using Vector = std::vector<T>;

// A frame near one Gaussian of its mixture. With spread 1 the Gaussians lie as far apart as those of a trained state,
// and few of them count; with a spread near 0 all of them count, and every addition takes its polynomial.
template <class T>
struct Problem {
    int width, height;
    Vector<T> mean, invVar, x, constants, scores;

    Problem(int width_, int height_, T spread)
        : width(width_),
          height(height_),
          mean(draw(width * height, 0, spread, 1)),
          invVar(draw(width * height, 1, T(0.1), 2)),
          x(draw(width, 0, spread, 1)),
          constants(draw(height, -50, 1, 3)),
          scores(constants)
    {
        for (T& value : invVar)
            value = value < T(0.5) ? T(0.5) : value;
    }

    static Vector<T> draw(int count, T mean, T deviation, unsigned seed)
    {
        std::mt19937 random(seed);
        std::normal_distribution<T> values(mean, deviation);
        Vector<T> drawn(static_cast<std::size_t>(count));
        for (T& value : drawn)
            value = values(random);
        return drawn;
    }
};

template <class T, class Run>
void run(benchmark::State& state, T spread, Run runOnce)
{
    Problem<T> p(static_cast<int>(state.range(0)), static_cast<int>(state.range(1)), spread);
    for (auto _ : state) {
        runOnce(p);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * p.height);
}

// The scores alone, of constants that stay where they are.
void gaussiansAlone(Problem<Zim32f>& p)
{
    zimsCopy_32f(p.constants.data(), p.scores.data(), p.height);
    zimsLogGaussMultiMix_32f_D2(p.mean.data(), p.invVar.data(), p.width, p.x.data(), p.width, p.scores.data(),
                                p.height);
}

void gaussiansAlone(Problem<Zim64f>& p)
{
    zimsCopy_64f(p.constants.data(), p.scores.data(), p.height);
    zimsLogGaussMultiMix_64f_D2(p.mean.data(), p.invVar.data(), p.width, p.x.data(), p.width, p.scores.data(),
                                p.height);
}

void mixture(Problem<Zim32f>& p)
{
    zimsLogGaussMixture_32f_D2(p.x.data(), p.mean.data(), p.invVar.data(), p.height, p.width, p.width,
                               p.constants.data(), p.scores.data());
}

void mixture(Problem<Zim64f>& p)
{
    zimsLogGaussMixture_64f_D2(p.x.data(), p.mean.data(), p.invVar.data(), p.height, p.width, p.width,
                               p.constants.data(), p.scores.data());
}

void mixtureOfIdentity(Problem<Zim32f>& p)
{
    zimsLogGaussMixture_IdVar_32f_D2(p.x.data(), p.mean.data(), p.height, p.width, p.width, p.constants.data(),
                                     p.scores.data());
}

// height frames, one Gaussian.
void framesAlone(Problem<Zim32f>& p)
{
    zimsLogGauss_32f_D2(p.mean.data(), p.width, p.x.data(), p.invVar.data(), p.width, p.scores.data(), p.height, -50);
}

void framesByMaximum(Problem<Zim32f>& p)
{
    zimsLogGaussMax_32f_D2(p.mean.data(), p.width, p.x.data(), p.invVar.data(), p.width, p.scores.data(), p.height,
                           -50);
}

void framesByAddition(Problem<Zim32f>& p)
{
    zimsLogGaussAdd_32f_D2(p.mean.data(), p.width, p.x.data(), p.invVar.data(), p.width, p.scores.data(), p.height,
                           -50);
}

const bool registered = [] {
    for (int width : {13, 39, 40})
        for (double spread : {1.0, 0.1}) {
            const auto add = [&](const char* name, auto bench, int height) {
                const std::string full = std::string(name) + (spread == 1 ? "/apart" : "/close");
                benchmark::RegisterBenchmark(full.c_str(), bench)->Args({width, height});
            };
            add(
                "32f/scores alone",
                [=](auto& state) { run<Zim32f>(state, Zim32f(spread), [](auto& p) { gaussiansAlone(p); }); }, 32);
            add(
                "32f/mixture", [=](auto& state) { run<Zim32f>(state, Zim32f(spread), [](auto& p) { mixture(p); }); },
                32);
            add(
                "32f/mixture IdVar", [=](auto& state) { run<Zim32f>(state, Zim32f(spread), mixtureOfIdentity); }, 32);
            add(
                "64f/scores alone",
                [=](auto& state) { run<Zim64f>(state, Zim64f(spread), [](auto& p) { gaussiansAlone(p); }); }, 32);
            add(
                "64f/mixture", [=](auto& state) { run<Zim64f>(state, Zim64f(spread), [](auto& p) { mixture(p); }); },
                32);
            add(
                "frames/scores alone", [=](auto& state) { run<Zim32f>(state, Zim32f(spread), framesAlone); }, 512);
            add(
                "frames/by maximum", [=](auto& state) { run<Zim32f>(state, Zim32f(spread), framesByMaximum); }, 512);
            add(
                "frames/by addition", [=](auto& state) { run<Zim32f>(state, Zim32f(spread), framesByAddition); }, 512);
        }
    return true;
}();

}  // namespace
