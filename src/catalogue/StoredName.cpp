#include "catalogue/StoredName.h"

#include "core/Base40.h"
#include "host/platform/Paths.h"

#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/core/TRkCubesException.h>

#include <algorithm>
#include <optional>
#include <string_view>
#include <vector>

namespace cubes::catalogue {

namespace {

constexpr int lastBase40Version = 3;
constexpr int pairLength = 2;
constexpr std::string_view delimiters = "\\/";

using Parts = std::vector<std::string_view>;

std::string base40Pairs(std::span<short const> numbers) {
    std::string text;
    for (short const number : numbers) {
        if (number < 0 || number >= base40Limit) throw TRkCubesException(TRkCubesException::ecCubeNrOutOfRange);
        char pair[pairLength];
        encodeBase40(number, pair);
        text.append(pair, pairLength);
    }
    return text;
}

bool isAbsolute(std::string_view name) {
    bool const hasDrive = name.size() > 1 && name[1] == ':';
    return hasDrive || (!name.empty() && delimiters.find(name.front()) != std::string_view::npos);
}

Parts partsOf(std::string_view name) {
    Parts parts;
    for (std::size_t start = 0; start <= name.size();) {
        std::size_t const end = std::min(name.find_first_of(delimiters, start), name.size());
        parts.push_back(name.substr(start, end - start));
        start = end + 1;
    }
    return parts;
}

// Without ".", ".." and empty parts; nothing when a ".." leads out of the directory.
std::optional<Parts> normalised(Parts const& parts) {
    Parts result;
    for (auto const part : parts) {
        if (part.empty() || part == ".") continue;
        if (part != "..") {
            result.push_back(part);
            continue;
        }
        if (result.empty()) return std::nullopt;
        result.pop_back();
    }
    return result;
}

std::string joined(Parts const& parts) {
    std::string text;
    for (auto const part : parts) {
        if (!text.empty()) text += platform::pathDelimiter();
        text += part;
    }
    return text;
}

}

TRkString fileStem(std::span<short const> numbers) {
    return TRkBaseCubes::Version > lastBase40Version ? decimalStem(numbers) : base40Pairs(numbers);
}

std::string decimalStem(std::span<short const> numbers) {
    std::string text;
    for (short const number : numbers) text += (text.empty() ? "" : "-") + std::to_string(number);
    return text;
}

void readBase40Stem(char const* stem, std::span<int* const> numbers) {
    int start = 0;
    for (int* const number : numbers) {
        *number = TRkBaseCubes::cnvrt40TToShort(stem, start, pairLength);
        start += pairLength;
    }
}

std::string storedPath(std::string const& directory, std::string const& name) {
    if (isAbsolute(name) || name.find('\0') != std::string::npos) return {};
    Parts const parts = partsOf(name);
    auto const shortened = normalised(parts);
    if (!shortened || shortened->empty()) return {};
    bool const goesUp = std::find(parts.begin(), parts.end(), "..") != parts.end();
    return directory + (goesUp ? joined(*shortened) : platform::withNativeDelimiters(name));
}

}
