#include "host/text/Utf8.h"

namespace cubes::text {

namespace {

// Every byte but those that continue a character begins one.
bool beginsCharacter(char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

}

std::string firstCharacters(std::string_view text, int count) {
    int characters = 0;
    for (std::size_t at = 0; at < text.size(); ++at)
        if (beginsCharacter(text[at]) && ++characters > count) return std::string(text.substr(0, at));
    return std::string(text);
}

}
