#pragma once

#include "store/StoreTables.h"

#include <cubes/store/EntryInfo.h>

#include <optional>
#include <string>
#include <vector>

namespace cubes::store {

/// Walks the rows of entries that satisfy conditions, first those of cubes, then results.
class EntryWalk {
public:
    /// The rows of one table that satisfy the condition of an SQL WHERE clause; empty: all.
    struct Stage {
        bool ofResults;
        std::string condition;
    };

    /// REQUIRES: `tables` outlives this object.
    EntryWalk(StoreTables const& tables, std::vector<Stage> stages);

    EntryInfo const& current() const { return *current_; }
    void advance();
    bool isAtEnd() const noexcept { return !current_.has_value(); }

private:
    void open();
    void read();

    StoreTables const& tables_;
    std::vector<Stage> stages_;
    std::size_t stage_ = 0;
    std::optional<Rows> rows_;
    catalogue::Register names_;
    std::optional<EntryInfo> current_;
};

/// The rows that a selection means; `cube` is the one that it names, if it names one.
std::vector<EntryWalk::Stage> stagesOf(EntrySelection const& selection, std::optional<CubeInfo> const& cube);
/// Whether the selection means an entry of that key.
bool selects(EntrySelection const& selection, std::optional<CubeInfo> const& cube, EntryKey const& key);

}
