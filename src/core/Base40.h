#pragma once

#include <string_view>

/// The base-40 code of numbers in older file names: two characters for 0 to 1599.
namespace cubes {

/// The digits in order. There is no "u": digit 30 is "v".
inline constexpr char const* base40Digits = "0123456789abcdefghijklmnopqrstvwxyz_@#&^";

inline constexpr int base40Limit = 40 * 40;

/// Writes the two characters of `number` to `text`. REQUIRES: 0 <= number < base40Limit.
void encodeBase40(int number, char* text);

/// The number that the characters represent, kept in 16 bits at every step. An invalid character counts as 0.
short decodeBase40(std::string_view characters);

}
