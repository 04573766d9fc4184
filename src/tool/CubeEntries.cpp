#include "tool/EntryFamily.h"

#include <cubes/matcubes/TRkMatCubes.h>

namespace cubes::tool {

namespace {

constexpr char const* extension = ".odm";
constexpr bool oneBased = false;

class CubeEntries : public EntryFamily {
public:
    explicit CubeEntries(TRkGlobalSettings* settings) : cubes_(settings, extension, false) {}

    bool hasTable() const override { return static_cast<bool>(cubes_.Open()); }

    std::vector<Entry> entries() const override {
        TRkAutoListT<TRkMatCubes::TKey> list;
        cubes_.Get(list);
        std::vector<Entry> found;
        for (int i = 0; i < list.Count(); ++i) {
            auto const& key = *list[i];
            found.push_back({{key.cubenr, key.name.str()}, {key.purpose, key.mode, key.time, key.user}});
        }
        return found;
    }

    bool has(Entry const& e) const override {
        return cubes_.Check(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], oneBased);
    }

    bool isFree(Entry const& e) const override {
        return cubes_.isCorrect(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3]);
    }

    std::string path(Entry const& e) const override {
        return cubes_.FileName(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], oneBased).str();
    }

    std::unique_ptr<TRkMatrix> matrix(Entry const& e) const override {
        return std::unique_ptr<TRkMatrix>(
            cubes_.Get(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], lsNone, oneBased));
    }

    bool add(Entry const& e) override {
        return cubes_.Add(cubes_.Open(), e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], oneBased);
    }

    bool save(Entry const& e, TRkMatrix const& matrix) override {
        return cubes_.SaveMatrix(matrix, e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], lsNone, oneBased);
    }

    bool remove(Entry const& e) override {
        return cubes_.Clear(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], oneBased);
    }

    bool remove(Cube const& cube) override { return cubes_.Delete(cube.number); }

    bool use(Entry const& e) override { return cubes_.incUsage(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3]); }

    bool leave(Entry const& e) override {
        return cubes_.decUsage(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3]);
    }

    CountedPtr<Rktable::TRkTableProxy> row(Entry const& e) const override {
        auto table = cubes_.Open();
        bool const found = cubes_.LookUp(table, e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3], oneBased);
        return found ? table : CountedPtr<Rktable::TRkTableProxy>();
    }

    bool copyFrom(EntryFamily const&, Entry const&, Entry const&) override { return false; }
    bool moveFrom(EntryFamily const&, Entry const&, Entry const&) override { return false; }

    std::string fileName(Entry const& e) const override {
        return TRkMatCubes::MakeFilename(e.cube.number, e.key[0], e.key[1], e.key[2], e.key[3]).str() + extension;
    }

    RkMatrixType matrixType() const override { return mtMatrixCube; }

private:
    TRkMatCubes cubes_;
};

}

std::unique_ptr<EntryFamily> cubeEntries(TRkGlobalSettings* settings) {
    return std::make_unique<CubeEntries>(settings);
}

}
