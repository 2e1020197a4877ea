// The arguments that a function takes, chosen by its signature among those that the members of its family take.
#pragma once

#include <tuple>
#include <type_traits>

namespace zimsr::test {

struct Nothing {};

template <class Door, class Arguments>
struct Takes;
template <class Door, class... Argument>
struct Takes<Door, std::tuple<Argument...>> : std::is_invocable<Door, Argument...> {
};

// The first tuple that Door can be called with, or Nothing.
template <class Door>
Nothing firstThatFits()
{
    return {};
}

template <class Door, class Arguments, class... Others>
auto firstThatFits(const Arguments& arguments, const Others&... others)
{
    if constexpr (Takes<Door, Arguments>::value)
        return arguments;
    else
        return firstThatFits<Door>(others...);
}

}  // namespace zimsr::test
