#pragma once

#include <cubes/database/TRkTableProxy.h>
#include <cubes/text/CountedPtr.h>
#include <cubes/text/TRkString.h>

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace cubes::catalogue {

/// The register of cubes through a cursor on its table: one number and name per row. Without a table it is empty and
/// nothing can be added. A table that was dropped after it was opened counts as empty.
class Register {
public:
    struct Cube {
        short number = 0;
        TRkString name;
    };

    explicit Register(CountedPtr<Rktable::TRkTableProxy> table) : table_(std::move(table)) {}

    /// Goes to the row of a number or a name. A name is compared as it would be stored, cut to the size of its column,
    /// and without regard to letter case; null is never found.
    bool locate(short cubenr) const;
    bool locate(char const* name) const;

    /// Why a name does not fit into its column: "the name has 130 characters, at most 128 are stored"; empty for one
    /// that fits. REQUIRES: there is a table.
    std::string excess(std::string const& name) const;

    /// Nothing for an unknown cube. Each name is looked up once, however many entries need it.
    std::optional<TRkString> name(short cubenr);
    /// Nothing for an unknown name.
    std::optional<short> number(char const* name) const;

    /// The number of the cube of that name; a new one gets the highest number in use plus one, at least 1. Nothing
    /// without a name or a table, or when the numbers are used up. Processes that add the same cube at once all get its
    /// number.
    std::optional<short> add(char const* name) const;
    /// Adds a row of that number unless it exists. REQUIRES: there is a table.
    void ensure(short cubenr, char const* name) const;
    /// Deletes the row of that number or name; false when there is none.
    bool remove(short cubenr) const { return removeIf(locate(cubenr)); }
    bool remove(char const* name) const { return removeIf(locate(name)); }
    /// All cubes, in the order of their numbers. REQUIRES: the table was just opened.
    std::vector<Cube> cubes() const;

private:
    bool removeIf(bool isFound) const;
    void append(long cubenr, char const* name) const;

    CountedPtr<Rktable::TRkTableProxy> table_;
    std::unordered_map<short, std::optional<TRkString>> names_;
};

}
