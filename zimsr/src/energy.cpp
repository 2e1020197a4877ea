// Normalisation of log-energies.
#include <cstddef>

#include <zimsr/energy.h>

#include "zimcore/frame/checks.h"
#include "zimcore/frame/scratch.h"
#include "zimsr/kernels/energy.h"

using namespace zimsr;
using namespace zimsr::energy;

namespace {

template <class T>
Column<T> columnOf(T* srcDst, int step, int height)
{
    return {srcDst, step, static_cast<std::size_t>(height)};
}

}  // namespace

ZimStatus zimsNormEnergy_32f(Zim32f* srcDst, int step, int height, Zim32f silFloor, Zim32f scale)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(step, height)))
        return fault;
    return zimsNormEnergy_RT_32f(srcDst, step, height, silFloor, greatest(columnOf(srcDst, step, height)), scale);
}

ZimStatus zimsNormEnergy_RT_32f(Zim32f* srcDst, int step, int height, Zim32f silFloor, Zim32f maxE, Zim32f scale)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(step, height)))
        return fault;
    normalise(columnOf(srcDst, step, height), FloatRule{1, maxE, silenceFloor(silFloor, maxE), scale});
    return zimStsOk;
}

ZimStatus zimsNormEnergy_16s(Zim16s* srcDst, int step, int height, Zim16s silFloor, Zim16s val, Zim32f scale)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(step, height)))
        return fault;
    const Column<Zim16s> column = columnOf(srcDst, step, height);
    // Asked for at every step, so that the step does not decide whether a call can fail.
    Scratch<Zim16s, 1024> gathered(column.height);
    if (!gathered)
        return zimStsAllocFailed;
    Zim16s* const energies = step == 1 ? srcDst : gathered.data();
    if (step != 1)
        column.gather(0, column.height, energies);
    normalise(columnOf(energies, 1, height), silFloor, greatest(energies, column.height), val, scale, height < 11);
    if (step != 1)
        column.scatter(energies, 0, column.height);
    return zimStsOk;
}

ZimStatus zimsNormEnergy_RT_16s(Zim16s* srcDst, int step, int height, Zim16s silFloor, Zim16s maxE, Zim16s val,
                                Zim32f scale)
{
    if (ZimStatus fault = firstFault(anyNull(srcDst), anyBelowOne(step, height)))
        return fault;
    normalise(columnOf(srcDst, step, height), silFloor, maxE, val, scale, false);
    return zimStsOk;
}
