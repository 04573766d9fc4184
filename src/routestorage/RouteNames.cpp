#include "routestorage/RouteNames.h"

#include <string>

namespace cubes::routestorage {

namespace {

TRkString withoutDirectory(TRkString const& text, std::span<char const* const> directories) {
    for (TRkString const directory : directories) {
        if (text.SubString(0, directory.Length()) != directory) continue;
        int const separator = 1;
        return text.Trim().SubString(directory.Length() + separator, text.Length());
    }
    return text;
}

}

TRkString routeFileStem(char const* directory, Parts const& parts) {
    TRkString name(directory);
    char separator = '\\';
    for (short const part : parts) {
        name += separator;
        name += part;
        separator = '-';
    }
    return name + '.';
}

bool readRouteFileName(char const* text, std::span<char const* const> directories, std::array<int*, 6> const& numbers) {
    for (int* const number : numbers) *number = 0;
    auto const pieces = withoutDirectory(TRkString(text), directories).Split('-');
    if (pieces.size() != numbers.size()) return false;
    for (std::size_t part = 0; part < numbers.size(); ++part) *numbers[part] = pieces[part].ToInteger();
    return true;
}

}
