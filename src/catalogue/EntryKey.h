#pragma once

#include <cubes/database/Value.h>
#include <cubes/text/TRkString.h>

#include <array>
#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Keys of entries: the cube number, then purpose, mode, time, user and what a family adds.
namespace cubes {

/// The stored form of a caller's key: purpose, mode, time and user are one-based. Nothing for one of
/// them that has no successor in 16 bits.
template <std::size_t Size>
std::optional<std::array<short, Size>> storedKey(std::array<short, Size> key, bool zeroBased) {
    constexpr std::size_t firstPart = 1;
    constexpr std::size_t lastShifted = 4;
    for (std::size_t i = firstPart; zeroBased && i <= lastShifted; ++i) {
        if (key[i] == std::numeric_limits<short>::max()) return std::nullopt;
        ++key[i];
    }
    return key;
}

/// The numbers as values to locate a row by.
std::vector<Rktable::Value> valuesOf(std::span<short const> key);

/// "[1,2,3,4]": the parts as people read them.
std::string displayKey(std::span<short const> parts);

/// The stem of a new file name, in the form that TRkBaseCubes::Version asks for: "12-1-2-3-4" or
/// base-40 pairs (which throws ecCubeNrOutOfRange for a number that a pair cannot hold).
TRkString fileStem(std::span<short const> numbers);

/// Reads as many base-40 pairs as there are numbers. REQUIRES: the text is that long.
void readBase40Stem(char const* stem, std::span<int* const> numbers);

}
