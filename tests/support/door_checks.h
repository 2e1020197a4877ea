// The common order of checks, tried on any door: each pointer null, then the length below 1, nothing written.
//
//     expectPointersThenLength(zimsAdd_32f_I);
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <tuple>
#include <type_traits>

#include <zimsr/types.h>

namespace zimsr::test {

// The place of the length: the first int behind the first pointer.
template <class... Argument>
constexpr std::size_t lengthPlace()
{
    constexpr bool isPointer[] = {std::is_pointer_v<Argument>...}, isInt[] = {std::is_same_v<Argument, int>...};
    std::size_t place = 0;
    while (!isPointer[place])
        ++place;
    while (!isInt[place])
        ++place;
    return place;
}

template <class... Argument>
void expectPointersThenLength(ZimStatus (*door)(Argument...))
{
    constexpr std::size_t count = sizeof...(Argument), length = lengthPlace<Argument...>();
    using Buffer = std::array<unsigned char, 64>;
    std::array<Buffer, count> buffers;
    for (Buffer& buffer : buffers)
        buffer.fill(0xA5);
    std::tuple<Argument...> valid;
    const auto forEachArgument = [&](auto visit) {
        [&]<std::size_t... place>(std::index_sequence<place...>)
        {
            (visit(std::integral_constant<std::size_t, place>()), ...);
        }
        (std::make_index_sequence<count>());
    };
    forEachArgument([&](auto place) {
        using Type = std::tuple_element_t<place, std::tuple<Argument...>>;
        if constexpr (std::is_pointer_v<Type>)
            std::get<place>(valid) = reinterpret_cast<Type>(buffers[place].data());
        else
            std::get<place>(valid) = 1;
    });
    forEachArgument([&](auto place) {
        auto call = valid;
        if constexpr (std::is_pointer_v<std::tuple_element_t<place, std::tuple<Argument...>>>) {
            std::get<place>(call) = nullptr;
            EXPECT_EQ(std::apply(door, call), zimStsNullPointer) << "argument " << place;
            std::get<length>(call) = 0;
            EXPECT_EQ(std::apply(door, call), zimStsNullPointer) << "argument " << place << " and the length";
        }
    });
    for (int len : {0, -1, INT_MIN}) {
        auto call = valid;
        std::get<length>(call) = len;
        EXPECT_EQ(std::apply(door, call), zimStsBadSize) << "length " << len;
    }
    for (const Buffer& buffer : buffers)
        EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](unsigned char byte) { return byte == 0xA5; }));
}

}  // namespace zimsr::test
