#pragma once

#include "tool/Entries.h"

/// What the commands that remove entries share.
namespace cubes::tool {

/// Removes an entry with its file and prints it under the label `done`.
void removeEntry(std::string const& word, char const* done, Surroundings const& surroundings, Output& output);

std::vector<EntryKey> keysOf(std::vector<EntryInfo> const& entries);
/// Warns of results whose parent was removed. `parents`:
/// what messages call the removed entries, "an entry of Base".
void warnOfOrphans(std::string const& parents, std::vector<EntryInfo> const& removed, EntryStore const& store);

}
