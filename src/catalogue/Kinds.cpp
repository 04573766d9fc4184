#include "catalogue/Kinds.h"

#include "catalogue/StoredName.h"

#include <algorithm>
#include <charconv>

namespace cubes::catalogue {

namespace {

constexpr Kind cubes = {"", 0, ".odm", "", mtMatrixCube, mkDefault, false, false};

constexpr Kind all[] = {
    {"skim", -1, ".skm", "", mtSkim, mkSkim, true, false},
    {"selectedlink", -2, ".slm", "", mtSelectedLink, mkSelectedLink, true, false},
    {"cordon", -3, ".cwm", "", mtCordon, mkDefault, true, false},
    {"screen", -4, ".crm", "", mtScreenLine, mkScreenLine, true, false},
    {"transit", -5, ".tsm", "", mtMatrixCube, mkTransit, true, false},
    {"path", -6, ".ptm", "", mtMatrixCube, mkPath, true, false},
    {"stop2stop", -7, ".s2s", "", mtStopToStop, mkStopToStop, true, false},
    {"routes", -9, ".FDB", "RouteStorage_Routes\\", mtMatrixCube, mkSelectedLink, true, true},
    {"routedata", -10, ".FDB", "RouteStorage_RouteData\\", mtMatrixCube, mkSelectedLink, true, true},
    {"fare", -8, ".frs", "", mtFare, mkDefault, false, false},
};

template <typename Property>
Kind const* findWith(Property const& isWanted) {
    auto const* const found = std::find_if(std::begin(all), std::end(all), isWanted);
    return found == std::end(all) ? nullptr : found;
}

// The numbers of a decimal stem, the first of which may be negative; empty for any other text.
std::vector<short> numbersIn(std::string_view stem) {
    std::vector<short> numbers;
    for (std::size_t start = 0; start <= stem.size();) {
        std::size_t const end = std::min(stem.find('-', start + 1), stem.size());
        short number = 0;
        auto const [behind, error] = std::from_chars(stem.data() + start, stem.data() + end, number);
        if (error != std::errc() || behind != stem.data() + end) return {};
        numbers.push_back(number);
        start = end + 1;
    }
    return numbers;
}

// The key of a file of that kind; empty for the name of another file.
std::vector<short> keyIn(Kind const& kind, std::string_view name) {
    std::string_view const directory = kind.directory;
    std::string_view const extension = kind.extension;
    if (!name.starts_with(directory) || !name.ends_with(extension)) return {};
    auto const stem = name.substr(directory.size(), name.size() - directory.size() - extension.size());
    auto key = numbersIn(stem);
    constexpr std::size_t cubeNumbers = 5;
    constexpr std::size_t resultParts = 6;
    bool const isWritten = !key.empty() && decimalStem(key) == stem;
    if (!isWritten || key.size() != (kind.isResult ? resultParts : cubeNumbers)) return {};
    if (kind.isResult) key.insert(key.begin(), kind.number);
    return kindOf(key.front()).number == kind.number ? key : std::vector<short>();
}

}

std::span<Kind const> kinds() {
    return all;
}

Kind const* findKind(std::string_view word) {
    return findWith([word](Kind const& kind) { return kind.word == word; });
}

Kind const* findKind(short number) {
    return findWith([number](Kind const& kind) { return kind.number == number; });
}

Kind const& kindOf(short number) {
    auto const* const kind = findKind(number);
    return kind ? *kind : cubes;
}

bool hasEntryExtension(std::string_view name) {
    return name.ends_with(cubes.extension) ||
           findWith([name](Kind const& kind) { return name.ends_with(kind.extension); }) != nullptr;
}

std::vector<short> keyOfFileName(std::string_view name) {
    for (Kind const& kind : all)
        if (auto key = keyIn(kind, name); !key.empty()) return key;
    return keyIn(cubes, name);
}

std::string newFileName(std::span<short const> key) {
    Kind const& kind = kindOf(key[0]);
    // File names of results identify the kind by their extension, not by its number.
    auto const numbers = kind.isResult ? key.subspan(1) : key;
    return kind.directory + (kind.holdsRoutes ? decimalStem(numbers) : fileStem(numbers).str()) + kind.extension;
}

}
