// Uses the installed library from C++.
#include <cmath>
#include <cstdio>

#include <zimsr.h>

int main()
{
    const ZimVersion* version = zimsrGetLibVersion();
    std::printf("%s %s\n", version->name, version->version);
    return std::isinf(zimConstantOfINF_64f) ? 0 : 1;
}
