// The entry points of the elementary functions compiled for each level.
#pragma once

// Every elementary function of one argument.
#define ELEMENTARY_FUNCTIONS(apply) apply(exp) apply(log) apply(sin) apply(cos)

namespace zimsr::test {

namespace ElementaryFunction {
#define ENUMERATE(name) name,
enum { ELEMENTARY_FUNCTIONS(ENUMERATE) };
#undef ENUMERATE
}  // namespace ElementaryFunction

}  // namespace zimsr::test

// y[i] = function(x[i]); count is a multiple of 8.
extern "C" {
void elementaryAt_baseline(int function, const double* x, double* y, int count);
void elementaryAt_x86_64_v3(int function, const double* x, double* y, int count);
void elementaryAt_x86_64_v4(int function, const double* x, double* y, int count);
}
