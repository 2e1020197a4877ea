// Compiled by itself, with all that the compiler offers for this machine.
#include "energy_peer.h"

#include <algorithm>
#include <cmath>

namespace peer {
namespace {

short sat(int v)
{
    return static_cast<short>(std::clamp(v, -32768, 32767));
}

float silenceFloor(float silFloor, float maxE)
{
    return silFloor * -0.230259f + maxE;
}

template <class T>
T greatest(const T* src, int step, int height)
{
    T maxE = src[0];
    for (int i = 1; i < height; ++i)
        maxE = std::max(maxE, src[i * step]);
    return maxE;
}

}  // namespace

void normEnergy(float* srcDst, int step, int height, float silFloor, float scale)
{
    normEnergyRT(srcDst, step, height, silFloor, greatest(srcDst, step, height), scale);
}

void normEnergyRT(float* srcDst, int step, int height, float silFloor, float maxE, float scale)
{
    const float floor = silenceFloor(silFloor, maxE);
    for (int i = 0; i < height; ++i) {
        float& e = srcDst[i * step];
        e = 1 - (maxE - std::max(e, floor)) * scale;
    }
}

void normEnergy(short* srcDst, int step, int height, short silFloor, short val, float scale)
{
    normEnergyRT(srcDst, step, height, silFloor, greatest(srcDst, step, height), val, scale);
}

void normEnergyRT(short* srcDst, int step, int height, short silFloor, short maxE, short val, float scale)
{
    const short floor = sat(static_cast<int>(std::round(silenceFloor(silFloor, maxE))));
    const int q10 = static_cast<int>(1024 * scale);
    for (int i = 0; i < height; ++i) {
        short& e = srcDst[i * step];
        e = sat(val - sat((sat(maxE - std::max(e, floor)) * q10) >> 10));
    }
}

void normEnergyTruncated(short* srcDst, int step, int height, short silFloor, short val, float scale)
{
    const float maxE = greatest(srcDst, step, height), floor = silenceFloor(silFloor, maxE);
    for (int i = 0; i < height; ++i) {
        short& e = srcDst[i * step];
        e = sat(static_cast<int>(val - (maxE - std::max<float>(e, floor)) * scale));
    }
}

}  // namespace peer
