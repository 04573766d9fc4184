#include <cubes/matcubes/TRkMatCubes.h>

#include <string>

namespace {

constexpr int lastBase40Version = 3;
constexpr int parts = 5;

TRkString decimalName(short const (&numbers)[parts]) {
    TRkString name;
    for (short const number : numbers) {
        if (!name.IsEmpty()) name += '-';
        name += number;
    }
    return name;
}

TRkString base40Name(short const (&numbers)[parts]) {
    TRkString name;
    for (short const number : numbers) name += TRkBaseCubes::ShortTo40T(number);
    return name;
}

// A leading minus belongs to the cube number; it is made a plus so that it does not separate.
void readDecimalName(std::string text, int* const (&numbers)[parts]) {
    if (text.front() == '-') text.front() = '+';
    auto const pieces = TRkString(text).Split('-');
    if (pieces.size() < parts) return;
    for (std::size_t i = 0; i < parts; ++i) *numbers[i] = pieces[i].ToInteger();
    if (text.front() == '+') *numbers[0] = -*numbers[0];
}

void readBase40Name(char const* text, int* const (&numbers)[parts]) {
    for (int i = 0; i < parts; ++i) *numbers[i] = TRkBaseCubes::cnvrt40TToShort(text, 2 * i, 2);
}

}

TRkString TRkMatCubes::MakeFilename(short cubenr, short p, short m, short t, short u) {
    short const numbers[parts] = {cubenr, p, m, t, u};
    return Version > lastBase40Version ? decimalName(numbers) : base40Name(numbers);
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
    readBase40Name(stem, numbers);
    return true;
}
