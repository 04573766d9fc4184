#pragma once

#include "tool/Command.h"

#include <cubes/project/Project.h>
#include <cubes/store/EntryStore.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace cubes::tool {

/// Whether a word is written as an entry and not as a cube: with at least four slashes.
bool isEntry(std::string const& word);
/// Throws UsageError for a word that is not written as an entry. When it names a cube of the project
/// that the command line names, the message says so.
void requireEntry(std::string const& word, Surroundings const& surroundings);
/// The kind of results that a word written as an entry names; nothing for an entry of a cube or a fare.
std::optional<CubeInfo> resultKindOf(std::string const& word);
/// Throws Refusal for a name that would be read as a number, a kind or an entry of one, UsageError for
/// an empty one.
void requireCubeName(std::string const& name);

/// Whether it is the fares or a kind of results.
bool isKind(CubeInfo const& cube);
/// Sorts entries as lists show them: those of cubes, then kind by kind, then fares.
bool isListedBefore(EntryKey const& a, EntryKey const& b);

/// A project and the entries that the words of a command line name in it. Throws Refusal with a hint for cubes and
/// entries that do not exist.
class Entries {
public:
    /// The project that the command line names. Throws UsageError, before the project is opened, for
    /// one of the words that is not written as an entry.
    explicit Entries(Surroundings const& surroundings, std::vector<std::string> const& words = {});
    explicit Entries(Project project) : project_(std::move(project)) {}

    Project const& project() const noexcept { return project_; }
    EntryStore& store() const noexcept { return project_.store(); }

    CubeInfo cube(std::string const& word) const;
    /// The cube's name, or its number where the name would not be read as that of the cube.
    std::string nameOf(CubeInfo const& cube) const;
    /// The key that a word stands for; the entry need not exist.
    EntryKey key(std::string const& word) const;
    EntryInfo find(std::string const& word) const;
    /// The same for an entry that is to be read: a result in use is refused.
    EntryInfo findReadable(std::string const& word) const;

    /// Runs `action`, which stores the entry that a word stands for, and returns the entry. A cube of a
    /// new name is added, and removed again when that fails. Prints a note when the name resembles that of a kind or
    /// another cube.
    EntryInfo write(std::string const& word, std::function<void(EntryKey const&)> const& action) const;

private:
    std::string hintFor(std::string const& cube) const;
    std::optional<short> addMissingCube(std::string const& word) const;
    /// The entry that may have been meant when a word names one of a new cube; empty when no name is near.
    std::string alternativeTo(std::string const& word) const;
    void noteNewCube(std::string const& word) const;
    void removeIfEmpty(short cube) const noexcept;

    Project project_;
};

/// Throws Refusal for an entry in use. `called`: what the message calls it.
void refuseUse(EntryInfo const& entry, std::string const& called);

}
