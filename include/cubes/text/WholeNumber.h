#pragma once

#include <concepts>

namespace cubes {

/// Any whole number that a text may be made from; characters and flags are none.
template <typename T>
concept WholeNumber =
    std::integral<T> && !std::same_as<T, bool> && !std::same_as<T, char> && !std::same_as<T, wchar_t> &&
    !std::same_as<T, char8_t> && !std::same_as<T, char16_t> && !std::same_as<T, char32_t>;

}
