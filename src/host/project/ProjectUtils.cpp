#include <cubes/project/ProjectUtils.h>

#include "host/platform/NarrowText.h"

#include <cubes/text/TRkException.h>

#include <algorithm>

namespace ProjectUtils {

namespace {

// The longest name that a PostgreSQL server accepts.
constexpr std::size_t longestName = 63;

std::string lastComponent(std::string const& path) {
    std::size_t const end = path.find_last_not_of("\\/");
    if (end == std::string::npos) return {};
    std::size_t const delimiter = path.find_last_of("\\/", end);
    std::size_t const start = delimiter == std::string::npos ? 0 : delimiter + 1;
    return path.substr(start, end + 1 - start);
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

char nameCharacter(char c) {
    char const lower = cubes::platform::asciiLower(c);
    return (lower >= 'a' && lower <= 'z') || isDigit(lower) ? lower : '_';
}

}

AnsiString toSqlSchemaName(AnsiString directory, AnsiString prefix) {
    std::string name = lastComponent(directory.c_str());
    if (name.empty()) throw TRkException("no SQL schema name can be formed from an empty directory", 0);
    if (!prefix.IsEmpty()) name = prefix.c_str() + ("_" + name);
    std::transform(name.begin(), name.end(), name.begin(), nameCharacter);
    if (isDigit(name[0])) name.insert(0, "_");
    return AnsiString(name.substr(0, longestName));
}

}
