#include <zimsr/version.h>

static constexpr ZimVersion libraryVersion = {
    4, 1, 12, 5, {'l', '3', 0, 0}, "libzimsr.so", "v4.1", "Jul 23 2004",
};

const ZimVersion* zimsrGetLibVersion(void)
{
    return &libraryVersion;
}
