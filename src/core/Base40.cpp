#include "core/Base40.h"

#include <cstddef>
#include <cstdint>

namespace cubes {

namespace {

unsigned digitOf(char character) {
    std::size_t const digit = std::string_view(base40Digits).find(character);
    return digit == std::string_view::npos ? 0 : static_cast<unsigned>(digit);
}

}

void encodeBase40(int number, char* text) {
    text[0] = base40Digits[number / 40];
    text[1] = base40Digits[number % 40];
}

short decodeBase40(std::string_view characters) {
    std::uint16_t value = 0;
    for (char const character : characters) value = static_cast<std::uint16_t>(value * 40u + digitOf(character));
    return static_cast<short>(value);
}

}
