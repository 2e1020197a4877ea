// Makes and releases the tables of a plan.
#include <algorithm>
#include <cstddef>

#include "base/allocator.h"
#include "base/fft_transform.h"
#include "base/kernels/fft_tables.h"
#include "zimcore/frame/rounding.h"
#include "zimcore/frame/scratch.h"

namespace zimsr {
namespace {

using namespace fft;

// All allocations come before the first table is filled, so that a plan too large for the memory fails at once.
class TableAllocation {
public:
    template <class T>
    void operator()(T*& table, std::size_t count)
    {
        table = static_cast<T*>(allocate(count, sizeof(T)));
        complete_ = complete_ && table;
    }
    bool complete() const { return complete_; }

private:
    bool complete_ = true;
};

int bufferSizeOf(int order)
{
    if (order <= lastBufferedOrder)
        return (4 << order) + 16;
    constexpr int tbl_buf_order[] = {9, 10, 10, 10, 13, 15};
    return (8 << tbl_buf_order[std::min(order - lastBufferedOrder - 1, 5)]) + 0x80010;
}

}  // namespace

bool createTablesCFFT(ZimsFFTPlan_R_32f& plan)
{
    const int order = plan.order;
    const bool large = order > lastBufferedOrder;
    const LargeShape largeShape(order);
    const BufferedShape bufferedShape(order);
    const std::size_t bins = std::size_t{1} << (order - 1);
    const std::size_t rows = large ? largeShape.columnRows() : bufferedShape.rows();

    TableAllocation allocateTable;
    HeapScratch<Zim32f> base(bins / 2 + 1);
    allocateTable(plan.bitRevTable, rows);
    allocateTable(plan.twiddleL1, spanTwiddlesUpTo(rows) + (large ? 0 : bufferedShape.stepFloats()));
    allocateTable(plan.realRecTable, bins + (large ? largeShape.outer() : 0));
    allocateTable(plan.ccsRecTable, bins + (large ? largeShape.outer() : 0));
    if (large)
        allocateTable(plan.blockTwiddles[0], 2 * bins);
    if (large && largeShape.separateMiddle())
        allocateTable(plan.blockTwiddles[1], 2 * largeShape.rowLength());
    if (!base || !allocateTable.complete())
        return false;

    const RoundToNearest mode;
    zims_createTabTwdBase_32f(base.data(), order);
    const UnitRoots roots(base.data(), order);
    if (large)
        zims_createTabTwd_Large_32f(plan, roots, largeShape);
    else if (bufferedShape.log2Lanes == 3)
        createBufferedTables<F8>(plan, roots);
    else if (bufferedShape.log2Lanes == 2)
        createBufferedTables<F4>(plan, roots);
    else
        createBufferedTables<float>(plan, roots);
    plan.bufferSize = bufferSizeOf(order);
    return true;
}

void deleteFftCtx(ZimsFFTPlan_R_32f* plan)
{
    plan->identity = 0;
    release(plan->bitRevTable);
    release(plan->twiddleL1);
    release(plan->realRecTable);
    release(plan->ccsRecTable);
    for (Zim32f* table : plan->blockTwiddles)
        release(table);
    release(plan);
}

}  // namespace zimsr
