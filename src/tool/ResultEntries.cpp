#include "tool/EntryFamily.h"
#include "tool/Kinds.h"

namespace cubes::tool {

namespace {

constexpr bool oneBased = false;

// Calls the function with the six parts of the entry's key.
template <typename Function>
auto onKey(Entry const& e, Function const& function) {
    return function(e.key[0], e.key[1], e.key[2], e.key[3], e.key[4], e.key[5]);
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

    bool isFree(Entry const& e) const override {
        return onKey(e, [&](auto... k) { return cube_->isCorrect(k...); });
    }

    std::string path(Entry const& e) const override {
        return onKey(e, [&](auto... k) { return cube_->FileName(k..., oneBased).str(); });
    }

    std::unique_ptr<TRkMatrix> matrix(Entry const& e) const override {
        return std::unique_ptr<TRkMatrix>(onKey(e, [&](auto... k) { return cube_->Get(k..., lsNone, oneBased); }));
    }

    bool add(Entry const& e) override {
        return onKey(e, [&](auto... k) {
            constexpr short none = -1;
            return hasTable() && cube_->Add(k..., 0, none, none, none, none, none, none, oneBased);
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

    bool copyFrom(EntryFamily const& source, Entry const& from, Entry const& to) override {
        auto const* const results = dynamic_cast<ResultEntries const*>(&source);
        return results && onKey(from, [&](auto... k) {
            return onKey(
                to, [&](auto... toKey) { return cube_->Copy(*results->cube_, k..., toKey..., false, oneBased); });
        });
    }

    bool moveFrom(EntryFamily const& source, Entry const& from, Entry const& to) override {
        auto const* const results = dynamic_cast<ResultEntries const*>(&source);
        return results && onKey(from, [&](auto... k) {
            return onKey(
                to, [&](auto... toKey) { return cube_->Move(*results->cube_, k..., toKey..., false, oneBased); });
        });
    }

    std::vector<Derived> derived() const override {
        std::vector<Derived> found;
        forEachRow([&](TRkVarCubes::TKey const& row) {
            ParentNumbers parent{row.parentcubenr, {}};
            for (std::size_t i = 0; i < parent.key.size(); ++i)
                parent.key[i] = static_cast<short>(row[static_cast<int>(i) + 1]);
            if (parent.cube != 0 || parent.key != ParentNumbers().key) found.push_back({entryOf(row), parent});
        });
        return found;
    }

    bool setParent(Entry const& e, ParentNumbers const& parent) override {
        auto const& up = parent.key;
        return onKey(e, [&](auto... k) {
            return cube_->Add(k..., parent.cube, up[0], up[1], up[2], up[3], up[4], up[5], oneBased);
        });
    }

    std::string fileName(Entry const& e) const override {
        return onKey(e, [](auto... k) { return TRkVarCubes::MakeFilename(k...).str(); }) + kind_.extension;
    }

    RkMatrixType matrixType() const override { return kind_.matrixType; }

private:
    Entry entryOf(TRkVarCubes::TKey const& row) const {
        return {
            {kind_.number, kind_.word, &kind_}, {row.purpose, row.mode, row.time, row.user, row.result, row.iteration}};
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
