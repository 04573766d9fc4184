#pragma once

#include <cubes/text/TRkString.h>

#include <span>
#include <string>

/// File names as entry tables store them: relative to a directory of the project, with "\" between parts on every
/// platform, since a database may be shared by several.
namespace cubes::catalogue {

/// The stem of a new file name, in the form that TRkBaseCubes::Version selects: "12-1-2-3-4" or base-40 pairs. Throws
/// ecCubeNrOutOfRange for a number that a pair cannot hold.
TRkString fileStem(std::span<short const> numbers);
/// The decimal form, whatever the version.
std::string decimalStem(std::span<short const> numbers);

/// Reads as many base-40 pairs as there are numbers. REQUIRES: the text is that long.
void readBase40Stem(char const* stem, std::span<int* const> numbers);

/// The native full path of a stored name: the directory's text unchanged, followed by the name. Empty for a name that
/// must not be used: one that is empty or ".", is absolute, or leads out of the directory, judged by its text alone. A
/// name with ".." that stays inside is normalised first, so that no link is followed on the way.
std::string storedPath(std::string const& directory, std::string const& name);

}
