#include "tool/commands/Removal.h"

#include "tool/Errors.h"
#include "tool/Messages.h"

#include <fmt/format.h>

#include <filesystem>

namespace cubes::tool {

void removeEntry(EntryWord const& word, char const* done, Surroundings const& surroundings, Output& output) {
    auto catalogue = Catalogue::open(surroundings);
    auto const entry = catalogue.entry(word);
    if (catalogue.isInUse(entry)) throw Refusal(fmt::format("{} is in use", entry.text()));
    auto const file = catalogue.path(entry);
    catalogue.remove(entry);
    tellOfFilesThatStayed({file});
    Record record;
    record.add(done, done, entry.text());
    output.show(record);
}

// A file that the system keeps is not worth an error.
void tellOfFilesThatStayed(std::vector<std::string> const& files) {
    std::error_code ignored;
    for (auto const& file : files)
        if (std::filesystem::exists(file, ignored)) tellWarning(file + " could not be removed");
}

}
