#include <cubes/varcubes/TRkVarCubes.h>

#include <array>
#include <string>

#include "catalogue/EntryKey.h"

namespace {

constexpr std::size_t keyParts = 6;

bool readDecimalName(std::string const& text, std::array<int*, keyParts> const& numbers) {
    auto const pieces = TRkString(text).Split('-');
    if (pieces.size() != keyParts) return false;
    for (std::size_t part = 0; part < keyParts; ++part) *numbers[part] = pieces[part].ToInteger();
    return true;
}

}

TRkString TRkVarCubes::MakeFilename(short p, short m, short t, short u, short r, short i) {
    return cubes::fileStem(std::array{p, m, t, u, r, i});
}

bool TRkVarCubes::MakeFilename(char const* stem, int& p, int& m, int& t, int& u, int& r, int& i) {
    if (!stem) return false;
    std::string const text(stem);
    std::array const numbers = {&p, &m, &t, &u, &r, &i};
    if (text.find('-') != std::string::npos) return readDecimalName(text, numbers);
    if (text.size() != 2 * keyParts) return false;
    cubes::readBase40Stem(stem, numbers);
    return true;
}

TRkString TRkVarCubes::createFilename(short p, short m, short t, short u, short r, short i) const {
    return MakeFilename(p, m, t, u, r, i);
}
