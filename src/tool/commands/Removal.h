#pragma once

#include "tool/Catalogue.h"

#include <string>
#include <vector>

/// What the commands that remove entries share.
namespace cubes::tool {

/// Removes an entry with its file and prints it under the label `done`. Throws Refusal when it is in use.
void removeEntry(EntryWord const& word, char const* done, Surroundings const& surroundings, Output& output);

/// The number of results that were derived from the removed entries.
std::size_t orphansOf(std::vector<Entry> const& gone, Catalogue const& catalogue);
/// Warns of results whose parent was removed.
void warnOfOrphans(std::string const& gone, std::size_t count);
/// Warns of files that remain although their rows are removed.
void warnOfRemainingFiles(std::vector<std::string> const& files);

}
