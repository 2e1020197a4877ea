// The plain loops that the normalisation of energies is measured against.
#pragma once

namespace peer {

void normEnergy(float* srcDst, int step, int height, float silFloor, float scale);
void normEnergyRT(float* srcDst, int step, int height, float silFloor, float maxE, float scale);
// In fixed point.
void normEnergy(short* srcDst, int step, int height, short silFloor, short val, float scale);
void normEnergyRT(short* srcDst, int step, int height, short silFloor, short maxE, short val, float scale);
// In floating point, truncated.
void normEnergyTruncated(short* srcDst, int step, int height, short silFloor, short val, float scale);

}  // namespace peer
