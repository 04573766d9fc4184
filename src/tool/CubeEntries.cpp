#include "tool/EntryFamily.h"
#include "tool/Kinds.h"

#include <cubes/matcubes/TRkFareCube.h>
#include <cubes/matcubes/TRkMatCube.h>

namespace cubes::tool {

namespace {

constexpr bool oneBased = false;

// Calls the function with the entry's cube and the four parts of its key.
template <typename Function>
auto onKey(Entry const& e, Function const& function) {
    return function(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3]);
}

/// Between two cubes the library takes the flag for "fail if the cube exists".
bool failIfEntryExists(bool failIfExists, Entry const& from, Entry const& to) {
    return failIfExists && from.cube.number == to.cube.number;
}

/// The entries with keys of four parts; cubes are always given by number.
class CubeEntries : public EntryFamily {
public:
    CubeEntries(std::unique_ptr<TRkMatCubes> cubes, char const* extension, RkMatrixType matrixType)
        : cubes_(std::move(cubes)), extension_(extension), matrixType_(matrixType) {}

    bool hasTable() const override { return static_cast<bool>(cubes_->Open()); }

    // Cubes and fares share their table.
    std::vector<Entry> entries() const override {
        TRkAutoListT<TRkMatCubes::TKey> list;
        cubes_->Get(list);
        std::vector<Entry> found;
        for (int i = 0; i < list.Count(); ++i)
            if (!findKind(list[i]->cubenr)) found.push_back(entryOf(*list[i], {list[i]->cubenr, list[i]->name.str()}));
        return found;
    }

    bool has(Entry const& e) const override {
        return onKey(e, [&](auto... k) { return cubes_->Check(k..., oneBased); });
    }

    std::string path(Entry const& e) const override {
        return onKey(e, [&](auto... k) { return cubes_->FileName(k..., oneBased).str(); });
    }

    std::unique_ptr<TRkMatrix> matrix(Entry const& e) const override {
        return std::unique_ptr<TRkMatrix>(onKey(e, [&](auto... k) { return cubes_->Get(k..., lsNone, oneBased); }));
    }

    bool add(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cubes_->Add(cubes_->Open(), k..., oneBased); });
    }

    bool save(Entry const& e, TRkMatrix const& matrix) override {
        return onKey(e, [&](auto... k) { return cubes_->SaveMatrix(matrix, k..., lsNone, oneBased); });
    }

    bool remove(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cubes_->Clear(k..., oneBased); });
    }

    bool remove(Cube const& cube) override { return cubes_->Delete(cube.number); }

    bool use(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cubes_->incUsage(k...); });
    }

    bool leave(Entry const& e) override {
        return onKey(e, [&](auto... k) { return cubes_->decUsage(k...); });
    }

    CountedPtr<Rktable::TRkTableProxy> row(Entry const& e) const override {
        auto table = cubes_->Open();
        bool const found = onKey(e, [&](auto... k) { return cubes_->LookUp(table, k..., oneBased); });
        return found ? table : CountedPtr<Rktable::TRkTableProxy>();
    }

    bool copyFrom(EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists) override {
        auto const* const cubes = dynamic_cast<CubeEntries const*>(&source);
        return cubes && onKey(from, [&](auto... k) {
            return onKey(to, [&](auto... toKey) {
                return cubes_->Copy(
                    *cubes->cubes_, k..., toKey..., failIfEntryExists(failIfExists, from, to), oneBased);
            });
        });
    }

    bool moveFrom(EntryFamily const& source, Entry const& from, Entry const& to, bool failIfExists) override {
        auto const* const cubes = dynamic_cast<CubeEntries const*>(&source);
        return cubes && onKey(from, [&](auto... k) {
            return onKey(to, [&](auto... toKey) {
                return cubes_->Move(
                    *cubes->cubes_, k..., toKey..., failIfEntryExists(failIfExists, from, to), oneBased);
            });
        });
    }

    std::string fileName(Entry const& e) const override {
        return onKey(e, [](auto... k) { return TRkMatCubes::MakeFilename(k...).str(); }) + extension_;
    }

    RkMatrixType matrixType() const override { return matrixType_; }

protected:
    static Entry entryOf(TRkMatCubes::TKey const& key, Cube const& cube) {
        return {cube, {key.purpose, key.mode, key.time, key.user}};
    }

private:
    std::unique_ptr<TRkMatCubes> cubes_;
    char const* extension_;
    RkMatrixType matrixType_;
};

class FareEntries : public CubeEntries {
public:
    FareEntries(TRkGlobalSettings* settings, Kind const& kind)
        : CubeEntries(std::make_unique<TRkFareCube>(settings, false), kind.extension, kind.matrixType), kind_(kind),
          fares_(settings, false) {}

    std::vector<Entry> entries() const override {
        TRkAutoListT<TRkMatCubes::TKey> list;
        fares_.Get(list);
        std::vector<Entry> found;
        for (int i = 0; i < list.Count(); ++i) found.push_back(entryOf(*list[i], {kind_.number, kind_.word, &kind_}));
        return found;
    }

    using CubeEntries::remove;
    // No register names the fares as a cube.
    bool remove(Cube const&) override { return fares_.Clear(); }

private:
    Kind const& kind_;
    TRkFareCube fares_;
};

}

std::unique_ptr<EntryFamily> cubeEntries(TRkGlobalSettings* settings) {
    return std::make_unique<CubeEntries>(
        std::make_unique<TRkMatCubes>(settings, TRkMatCube::Ext, false), TRkMatCube::Ext, mtMatrixCube);
}

std::unique_ptr<EntryFamily> fareEntries(TRkGlobalSettings* settings, Kind const& kind) {
    return std::make_unique<FareEntries>(settings, kind);
}

}
