#include "catalogue/Kinds.h"

#include "catalogue/StoredName.h"

#include <algorithm>

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

std::string newFileName(std::span<short const> key) {
    Kind const& kind = kindOf(key[0]);
    // File names of results identify the kind by their extension, not by its number.
    auto const numbers = kind.isResult ? key.subspan(1) : key;
    return kind.directory + (kind.holdsRoutes ? decimalStem(numbers) : fileStem(numbers).str()) + kind.extension;
}

}
