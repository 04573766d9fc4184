#include <cubes/matcubes/TRkMatCubes.h>

#include <array>
#include <string>

#include "catalogue/EntryKey.h"

namespace {

constexpr int parts = 5;

// A leading minus belongs to the cube number; it is made a plus so that it does not separate.
void readDecimalName(std::string text, int* const (&numbers)[parts]) {
    if (text.front() == '-') text.front() = '+';
    auto const pieces = TRkString(text).Split('-');
    if (pieces.size() < parts) return;
    for (std::size_t i = 0; i < parts; ++i) *numbers[i] = pieces[i].ToInteger();
    if (text.front() == '+') *numbers[0] = -*numbers[0];
}

}

TRkString TRkMatCubes::MakeFilename(short cubenr, short p, short m, short t, short u) {
    return cubes::fileStem(std::array{cubenr, p, m, t, u});
}

bool TRkMatCubes::MakeFilename(char const* stem, int& cubenr, int& p, int& m, int& t, int& u) {
    if (!stem) return false;
    std::string const text(stem);
    int* const numbers[parts] = {&cubenr, &p, &m, &t, &u};
    if (text.find('-') != std::string::npos) {
        readDecimalName(text, numbers);
        return true;
    }
    if (text.size() != std::size_t{2} * parts) return false;
    cubes::readBase40Stem(stem, numbers);
    return true;
}
