#pragma once

#include <cubes/matrix/RkMatrixKind.h>
#include <cubes/matrix/RkMatrixType.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace cubes::catalogue {

/// The differences between the entries of cubes, the fares and the kinds of results.
struct Kind {
    /// Replaces the cube's name in an entry's text; empty for the cubes of the register.
    char const* word;
    /// The number of the cube; 0 for the cubes of the register, which have numbers of their own.
    short number;
    /// The extension of its files, with the point.
    char const* extension;
    /// The beginning of its file names, as they are stored.
    char const* directory;
    RkMatrixType matrixType;
    RkMatrixKind matrixKind;
    /// Whether keys have a result and an iteration.
    bool isResult;
    /// Whether the files hold routes or route data.
    bool holdsRoutes;
};

/// The fares and every kind of results, in the order in which users see them.
std::span<Kind const> kinds();
/// Null for a word that names no kind.
Kind const* findKind(std::string_view word);
/// Null for any other number.
Kind const* findKind(short number);
/// The kind of the cubes of the register for any other number.
Kind const& kindOf(short number);

/// Matrix kinds above this one belong to a matrix itself: saving it in a cube keeps them.
inline constexpr unsigned lastCubeKind = 31;

/// The file name of a new entry: "3-1-1-1-1.odm", "1-1-1-1-2-0.skm".
std::string newFileName(std::span<short const> key);
/// Whether a file has the extension of one of the kinds.
bool hasEntryExtension(std::string_view name);
/// The key whose new file has this name, with decimal numbers; empty for any other name.
std::vector<short> keyOfFileName(std::string_view name);

}
