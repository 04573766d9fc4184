#include <cubes/store/EntryCheck.h>

#include <array>

namespace cubes {

namespace {

constexpr char dropsRow[] = "remove the row (--drop-rows)";

constexpr std::array table = {
    ProblemInfo{Problem::unregisteredCube, "unregisteredCube", Severity::error, "register the cube"},
    ProblemInfo{Problem::missingFile, "missingFile", Severity::error, dropsRow},
    ProblemInfo{Problem::outsideDirectory, "outsideDirectory", Severity::error, dropsRow},
    ProblemInfo{Problem::unreadableFile, "unreadableFile", Severity::error, ""},
    ProblemInfo{Problem::damagedFile, "damagedFile", Severity::error, ""},
    ProblemInfo{Problem::damagedIndex, "damagedIndex", Severity::error, "write the file anew"},
    ProblemInfo{Problem::wrongContent, "wrongContent", Severity::error, ""},
    ProblemInfo{Problem::wrongShape, "wrongShape", Severity::error, ""},
    ProblemInfo{Problem::orphanedRouteData, "orphanedRouteData", Severity::error, ""},
    ProblemInfo{Problem::fileWithoutRow, "fileWithoutRow", Severity::error, "move the file to quarantine"},
    ProblemInfo{Problem::leftoverFile, "leftoverFile", Severity::error, "remove the file"},
    ProblemInfo{Problem::recentTemporaryFile, "recentTemporaryFile", Severity::note, ""},
    ProblemInfo{Problem::copiedFile, "copiedFile", Severity::note, ""},
    ProblemInfo{Problem::missingParent, "missingParent", Severity::note, ""},
    ProblemInfo{Problem::inUse, "inUse", Severity::note, ""},
    ProblemInfo{Problem::otherDirectory, "otherDirectory", Severity::note, ""},
    ProblemInfo{Problem::unknownOwner, "unknownOwner", Severity::note, ""},
    ProblemInfo{Problem::unclaimedDirectory, "unclaimedDirectory", Severity::note, ""},
};

constexpr bool isInOrder() {
    for (std::size_t i = 0; i < table.size(); ++i)
        if (table[i].problem != static_cast<Problem>(i)) return false;
    return true;
}
static_assert(isInOrder());

}

std::span<ProblemInfo const> problems() noexcept {
    return table;
}

ProblemInfo const& infoOf(Problem problem) noexcept {
    return table[static_cast<std::size_t>(problem)];
}

char const* nameOf(Severity severity) noexcept {
    return severity == Severity::error ? "error" : "note";
}

}
