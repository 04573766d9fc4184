#include "catalogue/EntryKey.h"

#include <cubes/catalogue/TRkBaseCubes.h>

namespace cubes {

namespace {

constexpr int lastBase40Version = 3;
constexpr int pairLength = 2;

std::string joined(std::span<short const> numbers, char separator) {
    std::string text;
    for (short const number : numbers) {
        if (!text.empty()) text += separator;
        text += std::to_string(number);
    }
    return text;
}

std::string base40Pairs(std::span<short const> numbers) {
    std::string text;
    for (short const number : numbers) text += TRkBaseCubes::ShortTo40T(number);
    return text;
}

}

std::vector<Rktable::Value> valuesOf(std::span<short const> key) {
    return {key.begin(), key.end()};
}

std::string displayKey(std::span<short const> parts) {
    return "[" + joined(parts, ',') + "]";
}

TRkString fileStem(std::span<short const> numbers) {
    return TRkBaseCubes::Version > lastBase40Version ? joined(numbers, '-') : base40Pairs(numbers);
}

void readBase40Stem(char const* stem, std::span<int* const> numbers) {
    int start = 0;
    for (int* const number : numbers) {
        *number = TRkBaseCubes::cnvrt40TToShort(stem, start, pairLength);
        start += pairLength;
    }
}

}
