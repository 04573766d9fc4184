#pragma once

#include "tool/Catalogue.h"

#include <string>
#include <vector>

/// What the commands that take entries away share.
namespace cubes::tool {

/// Removes one entry with its file and tells of it under that word. Refuses one that is in use.
void removeEntry(EntryWord const& word, char const* done, Surroundings const& surroundings, Output& output);

/// How many results were derived from the entries that are gone.
std::size_t orphansOf(std::vector<Entry> const& gone, Catalogue const& catalogue);
/// Warns of results that still name what is gone as their parent.
void tellOfOrphans(std::string const& gone, std::size_t count);
/// Warns of files that are still there after their rows are gone.
void tellOfFilesThatStayed(std::vector<std::string> const& files);

}
