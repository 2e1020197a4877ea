// Bit tables: rows of bytes in which bit b is the mask 0x80 >> (b & 7) of byte b >> 3.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include <zimsr/types.h>

#include "zimcore/frame/simd.h"

namespace zimsr {

// Bytes of a row of that many bits.
constexpr std::size_t bitRowBytes(Zim64s bits)
{
    return static_cast<std::size_t>((bits + 7) >> 3);
}

// The first bytes of a row as one number, the first bit on top; what is not read is 0.
template <class Word>
ZIM_INLINE Word loadBits(const Zim8u* source)
{
    Word word;
    std::memcpy(&word, source, sizeof(Word));
    return sizeof(Word) == 8 ? static_cast<Word>(__builtin_bswap64(word)) : static_cast<Word>(__builtin_bswap32(word));
}

template <class Word>
ZIM_INLINE Word loadFirstBits(const Zim8u* source, int bytes)
{
    constexpr int wordBytes = sizeof(Word);
    if (bytes >= wordBytes) [[likely]]
        return loadBits<Word>(source);
    Word word = 0;
    for (int i = 0; i < bytes; ++i)
        word |= static_cast<Word>(source[i]) << (8 * (wordBytes - 1 - i));
    return word;
}

ZIM_INLINE void storeFirstBits(Zim8u* destination, std::uint64_t word, std::size_t bytes)
{
    const std::uint64_t turned = __builtin_bswap64(word);
    if (bytes >= 8) [[likely]]
        std::memcpy(destination, &turned, 8);
    else
        std::memcpy(destination, &turned, bytes);
}

// All but the first count bits of a word cleared; 1 <= count.
template <class Word>
ZIM_INLINE Word firstBits(Word word, int count)
{
    constexpr int bits = 8 * sizeof(Word);
    return count >= bits ? word : word & ~(static_cast<Word>(~Word{0}) >> count);
}

ZIM_INLINE void toggleBit(Zim8u* row, Zim64s bit)
{
    row[bit >> 3] = static_cast<Zim8u>(row[bit >> 3] ^ 0x80 >> (bit & 7));
}

// ---- Lists of indices that stand one behind the other, all of one length or each of its own

class IndexLists {
public:
    IndexLists(const Zim32s* indices, int lists, int count) : indices_(indices), lists_(lists), count_(count) {}
    IndexLists(const Zim32s* indices, int lists, const Zim32s* counts)
        : indices_(indices), lists_(lists), counts_(counts)
    {
    }

    // Calls visit(list, its first index, its length) for each.
    template <class Visit>
    ZIM_INLINE void forEach(Visit visit) const
    {
        const Zim32s* first = indices_;
        for (int list = 0; list < lists_; ++list) {
            const Zim32s count = counts_ ? counts_[list] : count_;
            visit(list, first, count);
            first += count;
        }
    }

    bool anyOutside(int limit) const
    {
        Zim32u outside = 0;
        forEach([&](int, const Zim32s* first, Zim32s count) {
            for (Zim32s i = 0; i < count; ++i)
                outside |= static_cast<Zim32u>(first[i]) >= static_cast<Zim32u>(limit);
        });
        return outside != 0;
    }

private:
    const Zim32s* indices_;
    int lists_;
    int count_ = 0;
    const Zim32s* counts_ = nullptr;
};

// Toggles the listed bits of each list's row.
inline void toggleColumnsOfRows(const IndexLists& lists, Zim8u* const* rows, int startBit)
{
    lists.forEach([=](int r, const Zim32s* first, Zim32s count) {
        for (Zim32s i = 0; i < count; ++i)
            toggleBit(rows[r], Zim64s{startBit} + first[i]);
    });
}

// Toggles each list's bit of the listed rows.
inline void toggleRowsOfColumns(const IndexLists& lists, Zim8u* const* rows, int startBit)
{
    lists.forEach([=](int c, const Zim32s* first, Zim32s count) {
        for (Zim32s i = 0; i < count; ++i)
            toggleBit(rows[first[i]], Zim64s{startBit} + c);
    });
}

// ---- Gathering: the rows of a list, or-ed together from startBit on, become one row of bits columns

class BitGather {
public:
    BitGather(const Zim8u* const* rows, int rowBytes, int startBit, int bits)
        : rows_(rows), rowBytes_(rowBytes), firstByte_(startBit >> 3), shift_(startBit & 7), bits_(bits)
    {
    }

    // Writes a row to dst, and may set more bytes behind it, up to room bytes in all.
    void row(const Zim32s* list, Zim32s count, Zim8u* dst, std::size_t room) const
    {
        int at = 0;
        for (; vectorFits(at); at += vectorBytes)
            store(dst + at, vectorAt(list, count, firstByte_ + at));
        for (const int bytes = (bits_ - 1) / 8 + 1; at < bytes; at += wordBytes)
            storeFirstBits(dst + at, firstBits(wordAt(list, count, firstByte_ + at), bits_ - 8 * at),
                           room - static_cast<std::size_t>(at));
    }

private:
    static constexpr int vectorBytes = 32;
    static constexpr int wordBytes = 7;  // of eight, since a word is shifted by less than a byte
    using Bytes = Vec<Zim8u, vectorBytes>;
    using Pairs = Vec<Zim16u, vectorBytes / 2>;

    bool vectorFits(int at) const
    {
        return bits_ - 8 * at >= 8 * vectorBytes && rowBytes_ - (firstByte_ + at) > vectorBytes;
    }

    ZIM_INLINE Bytes vectorAt(const Zim32s* list, Zim32s count, int place) const
    {
        Bytes bytes = splat<Bytes>(0), followers = bytes;
        for (Zim32s i = 0; i < count; ++i) {
            const Zim8u* source = rows_[list[i]] + place;
            bytes |= load<Bytes>(source);
            followers |= load<Bytes>(source + 1);
        }
        // Bytes are shifted in pairs; what comes over from the other byte is removed.
        const Bytes upper = reinterpret<Bytes>(reinterpret<Pairs>(bytes) << shift_);
        const Bytes lower = reinterpret<Bytes>(reinterpret<Pairs>(followers) >> (8 - shift_));
        const auto kept = static_cast<Zim8u>(0xFF << shift_);
        return (upper & splat<Bytes>(kept)) | (lower & splat<Bytes>(static_cast<Zim8u>(~kept)));
    }

    // A word that begins with the bits of byte place, read so that it ends within the row.
    ZIM_INLINE std::uint64_t wordAt(const Zim32s* list, Zim32s count, int place) const
    {
        const int from = std::max(std::min(place, rowBytes_ - 8), 0);
        std::uint64_t word = 0;
        for (Zim32s i = 0; i < count; ++i)
            word |= loadFirstBits<std::uint64_t>(rows_[list[i]] + from, rowBytes_);
        return word << (8 * (place - from) + shift_);
    }

    const Zim8u* const* rows_;
    int rowBytes_, firstByte_, shift_, bits_;
};

inline void gatherRows(const IndexLists& lists, const Zim8u* const* rows, int rowBytes, int startBit, Zim8u* dst,
                       int dstHeight, int bits)
{
    const BitGather gather(rows, rowBytes, startBit, bits);
    const std::size_t dstRow = bitRowBytes(bits);
    // A word may overlap the rows behind it, which are written later, but not the end of the table.
    std::size_t room = static_cast<std::size_t>(dstHeight) * dstRow;
    lists.forEach([&](int, const Zim32s* first, Zim32s count) {
        gather.row(first, count, dst, room);
        dst += dstRow;
        room -= dstRow;
    });
}

}  // namespace zimsr
