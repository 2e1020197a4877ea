#include "selection_peer.h"

#include <cstring>

// Byte by byte. The rows have a byte behind the last one that is used, and bits is a multiple of 8.
void peerBuildSignTable(const int* indices, int count, const unsigned char* const* rows, int startBit,
                        unsigned char* dst, int dstHeight, int bits)
{
    const int bytes = bits / 8, shift = startBit % 8;
    for (int r = 0; r < dstHeight; ++r, dst += bytes, indices += count) {
        std::memset(dst, 0, static_cast<std::size_t>(bytes));
        for (int i = 0; i < count; ++i) {
            const unsigned char* source = rows[indices[i]] + startBit / 8;
            for (int b = 0; b < bytes; ++b)
                dst[b] = static_cast<unsigned char>(dst[b] | source[b] << shift | source[b + 1] >> (8 - shift));
        }
    }
}
