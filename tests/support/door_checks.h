// The order of checks, tried on any doors: every fault by itself and with others, nothing written.
//
//     expectPointersThenLength(zimsAdd_32f_I, zimsAdd_64f_I);
//     expectMatrixChecks({Size::step, Size::width, Size::height}, {zimStsBadStride, zimStsNullPointer, zimStsBadSize},
//                        zimsLogGauss_32f_D2, zimsLogGauss_64f_D2);
//     expectNullsFirst(zimsFBankGetCenters_32f, bank, centers);
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <climits>
#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

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

// Arguments that point at buffers of their own; numbers are 1. Once it goes, the buffers must be as they were.
template <class... Argument>
class Untouched {
    static constexpr std::size_t count = sizeof...(Argument);

public:
    Untouched()
    {
        for (Buffer& buffer : buffers_)
            buffer.fill(0xA5);
        forEach([this](auto place) {
            using Type = std::tuple_element_t<place, std::tuple<Argument...>>;
            if constexpr (std::is_pointer_v<Type>)
                std::get<place>(valid) = reinterpret_cast<Type>(buffers_[place].data());
            else
                std::get<place>(valid) = 1;
        });
    }
    ~Untouched()
    {
        for (const Buffer& buffer : buffers_)
            EXPECT_TRUE(std::all_of(buffer.begin(), buffer.end(), [](unsigned char byte) { return byte == 0xA5; }));
    }

    // visit(place), where place is a constant.
    template <class Visit>
    static void forEach(Visit visit)
    {
        [&]<std::size_t... place>(std::index_sequence<place...>)
        {
            (visit(std::integral_constant<std::size_t, place>()), ...);
        }
        (std::make_index_sequence<count>());
    }

    std::tuple<Argument...> valid;

private:
    using Buffer = std::array<unsigned char, 64>;
    std::array<Buffer, count> buffers_;
};

// pointersFirst: what a null pointer and a length of 0 give together.
template <class... Argument>
void expectVectorChecks(bool pointersFirst, ZimStatus (*door)(Argument...))
{
    constexpr std::size_t length = lengthPlace<Argument...>();
    const Untouched<Argument...> arguments;
    arguments.forEach([&](auto place) {
        auto call = arguments.valid;
        if constexpr (std::is_pointer_v<std::tuple_element_t<place, std::tuple<Argument...>>>) {
            std::get<place>(call) = nullptr;
            EXPECT_EQ(std::apply(door, call), zimStsNullPointer) << "argument " << place;
            std::get<length>(call) = 0;
            EXPECT_EQ(std::apply(door, call), pointersFirst ? zimStsNullPointer : zimStsBadSize)
                << "argument " << place << " and the length";
        }
    });
    for (int len : {0, -1, INT_MIN}) {
        auto call = arguments.valid;
        std::get<length>(call) = len;
        EXPECT_EQ(std::apply(door, call), zimStsBadSize) << "length " << len;
    }
}

template <class... Door>
void expectPointersThenLength(Door... doors)
{
    (expectVectorChecks(true, doors), ...);
}

template <class... Door>
void expectLengthThenPointers(Door... doors)
{
    (expectVectorChecks(false, doors), ...);
}

// Each pointer null in turn, whatever else is wrong with the arguments. One that is given as null may be null.
template <class... Argument, class... Given>
void expectNullsFirst(ZimStatus (*door)(Argument...), Given... given)
{
    const std::tuple<Argument...> arguments(given...);
    Untouched<Argument...>::forEach([&](auto place) {
        auto call = arguments;
        if constexpr (std::is_pointer_v<std::tuple_element_t<place, std::tuple<Argument...>>>)
            if (std::exchange(std::get<place>(call), nullptr) != nullptr) {
                EXPECT_EQ(std::apply(door, call), zimStsNullPointer) << "argument " << place;
            }
    });
}

// What the ints of a signature are, from left to right; the ones behind them are not touched.
enum class Size { step, width, height };

// order: what is checked first, second, third.
template <class... Argument>
void expectMatrixChecksOf(ZimStatus (*door)(Argument...), const std::vector<Size>& sizes,
                          const std::vector<ZimStatus>& order)
{
    const Untouched<Argument...> arguments;
    const auto expect = [&](auto nullPlace, int step, int width, int height) {
        auto call = arguments.valid;
        std::vector<ZimStatus> faults;
        std::size_t size = 0;
        arguments.forEach([&](auto place) {
            using Type = std::tuple_element_t<place, std::tuple<Argument...>>;
            if constexpr (std::is_pointer_v<Type> && place == nullPlace) {
                std::get<place>(call) = nullptr;
                faults.push_back(zimStsNullPointer);
            } else if constexpr (std::is_same_v<Type, int>) {
                if (size < sizes.size())
                    std::get<place>(call) = sizes[size] == Size::step    ? step
                                            : sizes[size] == Size::width ? width
                                                                         : height;
                ++size;
            }
        });
        if (step < width && std::count(sizes.begin(), sizes.end(), Size::step))
            faults.push_back(zimStsBadStride);
        if (width < 1 || height < 1)
            faults.push_back(zimStsBadSize);
        if (faults.empty())
            return;
        const ZimStatus wanted = *std::find_first_of(order.begin(), order.end(), faults.begin(), faults.end());
        EXPECT_EQ(std::apply(door, call), wanted)
            << "null " << nullPlace << ", step " << step << ", " << height << " x " << width;
    };
    const auto expectAll = [&](auto nullPlace) {
        for (int width : {4, 0, -1})
            for (int height : {2, 0, -1})
                for (int step : {width, width - 1})
                    expect(nullPlace, step, width, height);
    };
    arguments.forEach(expectAll);
    expectAll(std::integral_constant<std::size_t, sizeof...(Argument)>());
}

template <class... Door>
void expectMatrixChecks(const std::vector<Size>& sizes, const std::vector<ZimStatus>& order, Door... doors)
{
    (expectMatrixChecksOf(doors, sizes, order), ...);
}

}  // namespace zimsr::test
