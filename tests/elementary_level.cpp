// The elementary functions as one instruction level compiles them: built once per level, each into a shared object of
// its own, so that the levels' inline functions do not meet.
#include "elementary_level.h"

#include "zimcore/elementary/elementary.h"

extern "C" [[gnu::visibility("default")]] void ELEMENTARY_ENTRY(int function, const double* x, double* y, int count)
{
    using namespace zimsr;
    const auto evaluate = [&](auto f) {
        for (int i = 0; i < count; i += D4::lanes)
            store(y + i, f(load<D4>(x + i)));
    };
    switch (function) {
#define EVALUATE(name)                          \
    case zimsr::test::ElementaryFunction::name: \
        return evaluate([](D4 v) { return elementary::name(v); });
        ELEMENTARY_FUNCTIONS(EVALUATE)
    }
}
