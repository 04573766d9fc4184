#include "tool/commands/Removal.h"

#include "tool/Errors.h"

#include <fmt/format.h>

#include <set>

namespace cubes::tool {

void removeEntry(std::string const& word, char const* done, Surroundings const& surroundings, Output& output) {
    Entries const entries(surroundings, {word});
    auto const entry = entries.find(word);
    entries.store().remove(entry.key);
    warnOfOrphans(entry.text, {entry}, entries.store());
    Record record;
    record.add(done, done, entry.text);
    output.show(record);
}

std::vector<EntryKey> keysOf(std::vector<EntryInfo> const& entries) {
    std::vector<EntryKey> keys;
    for (auto const& entry : entries) keys.push_back(entry.key);
    return keys;
}

void warnOfOrphans(std::string const& parents, std::vector<EntryInfo> const& removed, EntryStore const& store) {
    auto const keys = keysOf(removed);
    std::set<EntryKey> const gone(keys.begin(), keys.end());
    std::size_t orphans = 0;
    for (auto const& entry : store.entries()) orphans += entry.parent && gone.contains(*entry.parent) ? 1 : 0;
    if (orphans > 0) printWarning(fmt::format("results that still have {} as their parent: {}", parents, orphans));
}

}
