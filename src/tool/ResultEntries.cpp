#include "tool/EntryFamily.h"
#include "tool/Kinds.h"
#include "tool/Paths.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace cubes::tool {

namespace {

constexpr bool oneBased = false;
constexpr short notSet = -1;
constexpr char const* keyColumns[] = {"purpose", "mode", "time", "user", "result", "iteration"};
constexpr char const* parentColumns[] = {
    "parentpurpose", "parentmode", "parenttime", "parentuser", "parentresult", "parentiteration"};

short numberIn(Rktable::TRkTableProxy& table, char const* column, short otherwise) {
    auto const* const field = table.FindField(column);
    return field && !field->IsNull() ? static_cast<short>(field->AsInteger()) : otherwise;
}

// Calls the function with the six parts of the entry's key.
template <typename Function>
auto onKey(Entry const& e, Function const& function) {
    return function(e.key[0], e.key[1], e.key[2], e.key[3], e.key[4], e.key[5]);
}

// The condition that rows with this parent satisfy.
std::string isChildOf(ParentNumbers const& parent) {
    std::string condition = fmt::format("parentcubenr = {}", parent.cube);
    for (std::size_t i = 0; i < parent.key.size(); ++i) {
        condition += parent.key[i] == notSet
                         ? fmt::format(" AND coalesce({}, {}) = {}", parentColumns[i], notSet, notSet)
                         : fmt::format(" AND {} = {}", parentColumns[i], parent.key[i]);
    }
    return condition;
}

class ResultEntries : public EntryFamily {
public:
    ResultEntries(std::unique_ptr<TRkVarCubes> cube, Kind const& kind) : kind_(kind), cube_(std::move(cube)) {}

    bool hasTable() const override { return static_cast<bool>(cube_->Open()); }

    std::vector<Entry> entries() const override {
        std::vector<Entry> found;
        forEachRow([&](TRkVarCubes::TKey const& row) { found.push_back(entryOf(row)); });
        return found;
    }

    bool has(Entry const& e) const override {
        return onKey(e, [&](auto... k) { return cube_->Check(k..., oneBased); });
    }

    std::string path(Entry const& e) const override {
        return onKey(e, [&](auto... k) { return cube_->FileName(k..., oneBased).str(); });
    }

    std::unique_ptr<TRkMatrix> matrix(Entry const& e) const override {
        return std::unique_ptr<TRkMatrix>(onKey(e, [&](auto... k) { return cube_->Get(k..., lsNone, oneBased); }));
    }

    bool add(Entry const& e) override {
        return onKey(e, [&](auto... k) {
            return hasTable() && cube_->Add(k..., 0, notSet, notSet, notSet, notSet, notSet, notSet, oneBased);
        });
    }

    bool save(Entry const& e, TRkMatrix const& matrix) override {
        return onKey(e, [&](auto... k) { return cube_->SaveMatrix(matrix, k..., lsNone, oneBased); });
    }

    bool remove(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cube_->Clear(k..., oneBased); });
    }

    bool remove(Cube const&) override { return cube_->Clear(); }

    bool use(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cube_->incUsage(k...); });
    }

    bool leave(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cube_->decUsage(k...); });
    }

    CountedPtr<Rktable::TRkTableProxy> row(Entry const& e) const override {
        auto table = cube_->Open();
        bool const found = onKey(e, [&](auto... k) { return cube_->LookUp(table, kind_.number, k..., oneBased); });
        return found ? table : CountedPtr<Rktable::TRkTableProxy>();
    }

    bool copyFrom(EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists) override {
        auto const* const results = dynamic_cast<ResultEntries const*>(&source);
        return results && onKey(from, [&](auto... k) {
            return onKey(to,
                [&](auto... toKey) { return cube_->Copy(*results->cube_, k..., toKey..., failIfExists, oneBased); });
        });
    }

    bool moveFrom(EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists) override {
        auto const* const results = dynamic_cast<ResultEntries const*>(&source);
        return results && onKey(from, [&](auto... k) {
            return onKey(to,
                [&](auto... toKey) { return cube_->Move(*results->cube_, k..., toKey..., failIfExists, oneBased); });
        });
    }

    std::vector<Derived> derived() const override {
        std::vector<Derived> found;
        forEachRow([&](TRkVarCubes::TKey const& row) {
            ParentNumbers parent{row.parentcubenr, {}};
            for (std::size_t i = 0; i < parent.key.size(); ++i)
                parent.key[i] = static_cast<short>(row[static_cast<int>(i) + 1]);
            if (parent.areSet()) found.push_back({entryOf(row), parent});
        });
        return found;
    }

    std::vector<Entry> childrenOf(ParentNumbers const& parent) const override {
        auto const table = cube_->Open();
        if (!table) return {};
        table->SetFilterSQL(fmt::format("cubenr = {} AND {}", kind_.number, isChildOf(parent)));
        std::vector<Entry> found;
        for (; !table->GetEof(); table->Next()) found.push_back(currentEntry(*table));
        return found;
    }

    ParentNumbers parent(Entry const& e) const override {
        auto const table = row(e);
        if (!table) return {};
        ParentNumbers found{numberIn(*table, "parentcubenr", 0), {}};
        for (std::size_t i = 0; i < found.key.size(); ++i) found.key[i] = numberIn(*table, parentColumns[i], notSet);
        return found;
    }

    bool setParent(Entry const& e, ParentNumbers const& parent) override {
        auto const& up = parent.key;
        return onKey(e, [&](auto... k) {
            return cube_->Add(k..., parent.cube, up[0], up[1], up[2], up[3], up[4], up[5], oneBased);
        });
    }

    std::string fileName(Entry const& e) const override {
        auto name = onKey(e, [&](auto... k) { return cube_->createFilename(k...).str(); }) + kind_.extension;
        // Stored names have a backslash on every platform.
        std::replace(name.begin(), name.end(), '\\', '/');
        return toText(toPath(name).make_preferred());
    }

    RkMatrixType matrixType() const override { return kind_.matrixType; }

private:
    Entry entryOf(TRkVarCubes::TKey const& row) const {
        return {
            {kind_.number, kind_.word, &kind_}, {row.purpose, row.mode, row.time, row.user, row.result, row.iteration}};
    }

    Entry currentEntry(Rktable::TRkTableProxy& table) const {
        Entry found{{kind_.number, kind_.word, &kind_}, {}};
        for (char const* const column : keyColumns)
            found.key.push_back(static_cast<short>(table.FieldByName(column)->AsInteger()));
        return found;
    }

    template <typename Function>
    void forEachRow(Function const& function) const {
        TRkAutoListT<TRkVarCubes::TKey> list;
        cube_->Get(list);
        for (int i = 0; i < list.Count(); ++i) function(*list[i]);
    }

    Kind const& kind_;
    std::unique_ptr<TRkVarCubes> cube_;
};

}

std::unique_ptr<EntryFamily> resultEntries(std::unique_ptr<TRkVarCubes> cube, Kind const& kind) {
    return std::make_unique<ResultEntries>(std::move(cube), kind);
}

}
