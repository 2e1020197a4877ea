// The elementary functions: against the 80-bit functions of libm, at special values, and for one result everywhere.
#include "zimcore/elementary/elementary.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "elementary_level.h"
#include "support/compare.h"
#include "support/random.h"

namespace zimsr::test {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double largest = std::numeric_limits<double>::max(), smallestNormal = std::numeric_limits<double>::min(),
                 smallest = std::numeric_limits<double>::denorm_min();

struct Function {
    const char* name;
    int number;
    double (*scalar)(double);
    D2 (*two)(D2);
    D4 (*four)(D4);
    D8 (*eight)(D8);
    long double (*reference)(long double);
};

const Function functions[] = {
#define DESCRIBE(name)                             \
    {#name,                                        \
     ElementaryFunction::name,                     \
     [](double x) { return elementary::name(x); }, \
     [](D2 x) { return elementary::name(x); },     \
     [](D4 x) { return elementary::name(x); },     \
     [](D8 x) { return elementary::name(x); },     \
     [](long double x) -> long double { return std::name(x); }},
    ELEMENTARY_FUNCTIONS(DESCRIBE)
#undef DESCRIBE
};

// Evenly spread.
std::vector<double> even(unsigned seed, double low, double high, std::size_t count = 40000)
{
    Random random(seed);
    std::vector<double> x(count);
    for (double& value : x)
        value = random.between(low, high) + random.between(low, high) * 0x1p-32;
    return x;
}

// Of every magnitude alike, from 2^low to 2^high, of both signs.
std::vector<double> magnitudes(unsigned seed, int low, int high, std::size_t count = 40000)
{
    Random random(seed);
    std::vector<double> x(count);
    for (double& value : x)
        value = std::ldexp(random.between(1.0, 2.0) + random.between(0.0, 0x1p-31), random.between(low, high - 1)) *
                (random.between(0, 1) ? 1 : -1);
    return x;
}

std::vector<double> positive(std::vector<double> x)
{
    for (double& value : x)
        value = std::fabs(value);
    return x;
}

// The doubles around the multiples of pi/2, where a reduction cancels: small multiples and those of every magnitude.
// Among them 6381956970095103 * 2^797, the double that is nearest to a multiple.
std::vector<double> nearMultiplesOfHalfPi()
{
    std::vector<double> x = {0x1.6ac5b262ca1ffp+849, -0x1.6ac5b262ca1ffp+849};
    Random random(5);
    for (int i = 1; i < 4000; ++i) {
        const double k = i < 1000 ? i : std::ldexp(random.between(1.0, 2.0), random.between(10, 60));
        const double angle = static_cast<double>(std::floor(k) * 1.57079632679489661923132169163975144L);
        for (double near : {angle, std::nextafter(angle, 0), std::nextafter(angle, infinity)})
            x.push_back(near);
    }
    return x;
}

std::vector<double> together(std::initializer_list<std::vector<double>> parts)
{
    std::vector<double> all;
    for (const auto& part : parts)
        all.insert(all.end(), part.begin(), part.end());
    return all;
}

std::vector<double> specials()
{
    std::vector<double> x;
    const double whole[] = {0, 0.5, 1, 2, 746, 1e4, 1e22, 1e300, 1e-20, 1e-300, 0x1p-27, 0x1p20, 0x1.fffffffffffffp19};
    const double edges[] = {0.671875,         0.70710678118654752, 1.34375,           1.41421356237309505,
                            709.782712893384, 709.7827128933841,   745.1332191019411, 745.1332191019412};
    const double limits[] = {smallest, smallestNormal, std::nextafter(smallestNormal, 0), largest, infinity};
    for (double v : together({{std::begin(whole), std::end(whole)},
                              {std::begin(edges), std::end(edges)},
                              {std::begin(limits), std::end(limits)}}))
        for (double signedValue : {v, -v})
            x.insert(x.end(), {signedValue, std::nextafter(signedValue, 0), std::nextafter(signedValue, 1e308)});
    x.push_back(std::numeric_limits<double>::quiet_NaN());
    while (x.size() % 8 != 0)
        x.push_back(1);
    return x;
}

const Function& functionOf(int number)
{
    return functions[number];
}

void expectWithin(double bound, int number, const std::vector<double>& arguments)
{
    const Function& f = functionOf(number);
    long double worst = 0;
    double worstArgument = 0;
    for (double x : arguments) {
        const long double exact = f.reference(x);
        const double rounded = static_cast<double>(exact);
        const long double error = ulpError<double>(f.scalar(x), std::isinf(rounded) ? rounded : exact);
        if (!(error <= worst)) {
            worst = error;
            worstArgument = x;
        }
    }
    EXPECT_LT(worst, bound) << f.name << " at " << std::hexfloat << worstArgument;
}

// The bounds are a little above the largest errors met in some hundred million arguments.

TEST(Elementary, ExpIsAccurate)
{
    expectWithin(0.57, ElementaryFunction::exp,
                 together({even(1, -708, 709.78), even(2, -1, 1), magnitudes(3, -60, 9), specials()}));
    // Subnormal results are rounded twice.
    expectWithin(0.78, ElementaryFunction::exp, even(4, -745.2, -708));
}

TEST(Elementary, LogIsAccurate)
{
    expectWithin(0.62, ElementaryFunction::log,
                 together({positive(magnitudes(1, -1074, 1024)), even(2, 0.5, 2, 200000), even(3, 0.999, 1.001),
                           positive(magnitudes(4, -1, 1)), specials()}));
}

TEST(Elementary, SineAndCosineAreAccurate)
{
    const auto arguments = together({even(1, -7, 7, 100000), even(2, -0x1p20, 0x1p20), magnitudes(3, -1074, 20),
                                     magnitudes(4, 19, 1024), nearMultiplesOfHalfPi(), specials()});
    expectWithin(0.6, ElementaryFunction::sin, arguments);
    expectWithin(0.6, ElementaryFunction::cos, arguments);
}

TEST(Elementary, SpecialValues)
{
    using elementary::cos;
    using elementary::exp;
    using elementary::log;
    using elementary::sin;
    EXPECT_TRUE(sameBits(exp(0.0), 1.0));
    EXPECT_TRUE(sameBits(exp(-0.0), 1.0));
    EXPECT_TRUE(sameBits(exp(infinity), infinity));
    EXPECT_TRUE(sameBits(exp(-infinity), 0.0));
    EXPECT_TRUE(sameBits(exp(0x1.62e42fefa39efp+9), 0x1.fffffffffff2ap+1023));  // the last finite result
    EXPECT_TRUE(sameBits(exp(0x1.62e42fefa39f0p+9), infinity));
    EXPECT_TRUE(sameBits(exp(-0x1.74910d52d3051p+9), smallest));  // the last result that is not 0
    EXPECT_TRUE(sameBits(exp(-0x1.74910d52d3052p+9), 0.0));
    EXPECT_TRUE(sameBits(exp(-largest), 0.0));

    EXPECT_TRUE(sameBits(log(1.0), 0.0));
    EXPECT_TRUE(sameBits(log(0.0), -infinity));
    EXPECT_TRUE(sameBits(log(-0.0), -infinity));
    EXPECT_TRUE(sameBits(log(infinity), infinity));
    for (double negative : {-smallest, -1.0, -largest, -infinity})
        EXPECT_TRUE(std::isnan(log(negative))) << negative;

    for (double tiny : {0.0, smallest, smallestNormal, 0x1p-30}) {
        EXPECT_TRUE(sameBits(sin(tiny), tiny));
        EXPECT_TRUE(sameBits(sin(-tiny), -tiny));
        EXPECT_TRUE(sameBits(cos(tiny), 1.0));
    }
    for (double x : {infinity, -infinity}) {
        EXPECT_TRUE(std::isnan(sin(x)));
        EXPECT_TRUE(std::isnan(cos(x)));
    }
    for (const Function& f : functions)
        EXPECT_TRUE(std::isnan(f.scalar(std::numeric_limits<double>::quiet_NaN()))) << f.name;
}

// Arguments that take every path, in an order that brings different paths into one vector.
std::vector<double> mixture()
{
    auto x = together({specials(), even(11, -800, 800, 4000), even(12, -4, 4, 4000), magnitudes(13, -1074, 1024, 8000),
                       nearMultiplesOfHalfPi()});
    Random random(14);
    for (std::size_t i = x.size() - 1; i > 0; --i)
        std::swap(x[i], x[random.between<std::size_t>(0, i)]);
    x.resize(x.size() / 8 * 8);
    return x;
}

std::vector<double> scalarResults(const Function& f, const std::vector<double>& x)
{
    std::vector<double> y;
    for (double value : x)
        y.push_back(f.scalar(value));
    return y;
}

TEST(Elementary, EveryLaneOfEveryVectorIsTheScalar)
{
    const auto x = mixture();
    for (const Function& f : functions) {
        const auto scalar = scalarResults(f, x);
        std::vector<double> y(x.size());
        const auto inVectors = [&](auto evaluate, auto sample) {
            for (std::size_t i = 0; i < x.size(); i += decltype(sample)::lanes)
                store(&y[i], evaluate(load<decltype(sample)>(&x[i])));
            return y;
        };
        EXPECT_TRUE(equalBits(inVectors(f.two, D2{}), scalar)) << f.name;
        EXPECT_TRUE(equalBits(inVectors(f.four, D4{}), scalar)) << f.name;
        EXPECT_TRUE(equalBits(inVectors(f.eight, D8{}), scalar)) << f.name;
    }
}

TEST(Elementary, EveryInstructionLevelGivesTheSameBits)
{
    struct Level {
        const char* name;
        void (*evaluate)(int function, const double* x, double* y, int count);
        bool runnable;
    };
    const Level levels[] = {
        {"baseline", elementaryAt_baseline, true},
#if defined(ELEMENTARY_HAS_x86_64_v3)
        {"x86-64-v3", elementaryAt_x86_64_v3, __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")},
#endif
#if defined(ELEMENTARY_HAS_x86_64_v4)
        {"x86-64-v4", elementaryAt_x86_64_v4, __builtin_cpu_supports("avx512vl") && __builtin_cpu_supports("avx512dq")},
#endif
    };
    const auto x = mixture();
    for (const Function& f : functions) {
        const auto scalar = scalarResults(f, x);
        for (const Level& level : levels) {
            if (!level.runnable)
                continue;
            std::vector<double> y(x.size());
            level.evaluate(f.number, x.data(), y.data(), static_cast<int>(x.size()));
            EXPECT_TRUE(equalBits(y, scalar)) << f.name << " at " << level.name;
        }
    }
}

}  // namespace
}  // namespace zimsr::test
