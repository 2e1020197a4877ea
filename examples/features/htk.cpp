#include "htk.h"

#include <bit>
#include <cmath>
#include <cstdint>

namespace {

// What the parameters are: the kind of base and what was added to it.
enum : std::uint16_t {
    mfcc = 6,
    withEnergy = 0100,
    withDeltas = 0400,
    withAccelerations = 01000,
    withZeroMean = 04000,
    withC0 = 020000
};

template <typename Unsigned>
void writeBigEndian(std::ostream& out, Unsigned value)
{
    for (int shift = 8 * (sizeof value - 1); shift >= 0; shift -= 8)
        out.put(static_cast<char>(value >> shift));
}

}  // namespace

void writeHtk(std::ostream& out, const Matrix& features, HtkKind kind, double shiftSeconds)
{
    const int last = kind.energy ? withEnergy : withC0, mean = kind.zeroMean ? withZeroMean : 0;
    writeBigEndian(out, static_cast<std::uint32_t>(features.rows));
    writeBigEndian(out, static_cast<std::uint32_t>(std::lround(shiftSeconds * 1e7)));  // in units of 100 ns
    writeBigEndian(out, static_cast<std::uint16_t>(features.columns * sizeof(float)));
    writeBigEndian(out, static_cast<std::uint16_t>(mfcc | withDeltas | withAccelerations | last | mean));
    for (const float value : features.values)
        writeBigEndian(out, std::bit_cast<std::uint32_t>(value));
}
