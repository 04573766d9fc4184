#include "store/EntryWalk.h"

#include "store/Failure.h"

#include <array>

namespace cubes::store {

EntryWalk::EntryWalk(StoreTables const& tables, std::vector<Stage> stages)
    : tables_(tables), stages_(std::move(stages)), names_(tables.cubes()) {
    open();
    read();
}

void EntryWalk::open() {
    rows_.reset();
    if (stage_ == stages_.size()) return;
    Stage const& stage = stages_[stage_];
    rows_.emplace(tables_.rows(stage.ofResults));
    if (!stage.condition.empty()) rows_->cursor().SetFilterSQL(stage.condition);
}

void EntryWalk::read() {
    reporting({"list entries", {}}, [this] {
        current_.reset();
        while (rows_ && rows_->cursor().GetEof()) {
            ++stage_;
            open();
        }
        if (rows_) current_ = tables_.info(*rows_, stages_[stage_].ofResults, names_);
    });
}

void EntryWalk::advance() {
    reporting({"list entries", {}}, [this] { rows_->cursor().Next(); });
    read();
}

namespace {

/// The part of a key that a selection sets; in the order of the key's numbers.
struct SelectedPart {
    char const* column;
    std::optional<short> number;
};

std::array<SelectedPart, 7> partsOf(EntrySelection const& selection, std::optional<CubeInfo> const& cube) {
    return {{{"cubenr", cube ? std::optional(cube->number) : std::nullopt}, {"purpose", selection.purpose},
        {"mode", selection.mode}, {"time", selection.time}, {"user", selection.user}, {"result", selection.result},
        {"iteration", selection.iteration}}};
}

}

std::vector<EntryWalk::Stage> stagesOf(EntrySelection const& selection, std::optional<CubeInfo> const& cube) {
    std::string condition;
    for (auto const& [column, number] : partsOf(selection, cube))
        if (number)
            condition += (condition.empty() ? "\"" : " and \"") + std::string(column) + "\"=" + std::to_string(*number);

    bool const asksForResults = selection.result || selection.iteration;
    std::vector<EntryWalk::Stage> stages;
    if (!asksForResults && !(cube && cube->holdsResults)) stages.push_back({false, condition});
    if (!cube || cube->holdsResults) stages.push_back({true, condition});
    return stages;
}

bool selects(EntrySelection const& selection, std::optional<CubeInfo> const& cube, EntryKey const& key) {
    auto const numbers = key.numbers();
    auto const parts = partsOf(selection, cube);
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (parts[i].number && (i >= numbers.size() || numbers[i] != *parts[i].number)) return false;
    return true;
}

}
