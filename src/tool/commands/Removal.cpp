#include "tool/commands/Removal.h"

#include "tool/Errors.h"
#include "tool/Lineage.h"
#include "tool/Paths.h"

#include <fmt/format.h>

#include <filesystem>

namespace cubes::tool {

void removeEntry(EntryWord const& word, char const* done, Surroundings const& surroundings, Output& output) {
    auto catalogue = Catalogue::open(surroundings);
    auto const entry = catalogue.entry(word);
    catalogue.refuseUse(entry);
    auto const file = catalogue.path(entry);
    if (!catalogue.remove(entry)) throw Refusal("another program has just removed it");
    warnOfRemainingFiles({file});
    warnOfOrphans(entry.text(), catalogue.childrenOf(entry).size());
    Record record;
    record.add(done, done, entry.text());
    output.show(record);
}

std::size_t orphansOf(std::vector<Entry> const& gone, Catalogue const& catalogue) {
    Lineage const lineage(catalogue);
    std::size_t count = 0;
    for (auto const& entry : gone) count += lineage.childrenOf(entry).size();
    return count;
}

void warnOfOrphans(std::string const& gone, std::size_t count) {
    if (count > 0) printWarning(fmt::format("results that still have {} as their parent: {}", gone, count));
}

void warnOfRemainingFiles(std::vector<std::string> const& files) {
    std::error_code ignored;
    for (auto const& file : files)
        if (std::filesystem::exists(toPath(file), ignored)) printWarning("cannot remove the file " + file);
}

}
