#include "support/EntryFamily.h"

#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/varcubes/TRkSkimCube.h>

#include <algorithm>
#include <array>
#include <tuple>

namespace cubes::test {

namespace {

bool isZeroBased(Counting counting) {
    return counting == Counting::fromZero;
}

// Calls with the last `Count` numbers of the key as arguments.
template <std::size_t Count, typename Call>
auto withKey(EntryFamily::Key const& key, Call const& call) {
    std::array<short, Count> numbers{};
    std::copy_n(key.end() - Count, Count, numbers.begin());
    return std::apply(call, numbers);
}

// Lowers the parts that a caller may pass zero-based.
EntryFamily::Key counted(EntryFamily::Key key, Counting counting) {
    if (isZeroBased(counting)) std::for_each(key.begin() + 1, key.begin() + 5, [](short& part) { --part; });
    return key;
}

template <typename List>
std::string shown(bool isThere, List const& list) {
    std::string text = isThere ? "" : "false\n";
    for (int i = 0; i < list.Count(); ++i) text += list[i]->AsString().str() + "\n";
    return text;
}

// The operations that the two families declare alike. Count: the numbers that identify an entry, with the cube number
// in four-key cubes. Whole: cube number and all parts.
template <typename Cube, std::size_t Count, std::size_t Whole>
class Bound : public EntryFamily {
public:
    explicit Bound(Cube cube) : cube_(std::move(cube)) {}

    std::string alias() const override { return cube_.cubeAliasName(); }
    std::string schema() const override { return cube_.getMatrixSchema().str(); }
    std::string directory() const override { return cube_.MatrixDirectory().str(); }
    void setSchema(std::string const& schema) override { cube_.setMatrixSchema(AnsiString(schema)); }
    void findSchema() override { cube_.FindMatrixSchema(); }
    void setConnection(Pgaccess::TPgConnection* connection) override { cube_.SetConnection(connection); }

    Table open() const override { return cube_.Open(); }
    bool close(Table& table) const override { return cube_.Close(table); }
    bool lookUp(Table const& table, Key const& key, Counting c) const override {
        return withKey<Whole>(key, [&](auto... k) { return cube_.LookUp(table, k..., isZeroBased(c)); });
    }
    std::string fileName(Table const& table, Key const& key) const override {
        return withKey<Whole>(key, [&](auto... k) { return cube_.FileName(table, k..., false); }).str();
    }
    bool check(short n, Counting c) const override {
        return withKey<Count>(key(n, c), [&](auto... k) { return cube_.Check(k..., isZeroBased(c)); });
    }
    std::string fileName(short n, Counting c) const override {
        return withKey<Count>(key(n, c), [&](auto... k) { return cube_.FileName(k..., isZeroBased(c)); }).str();
    }
    bool clear(short n, Counting c) override {
        return withKey<Count>(key(n, c), [&](auto... k) { return cube_.Clear(k..., isZeroBased(c)); });
    }
    bool erase(short n, Counting c) override {
        return withKey<Count>(key(n, c), [&](auto... k) { return cube_.Delete(k..., isZeroBased(c)); });
    }
    bool remove(short n, Counting c) override {
        return withKey<Count>(key(n, c), [&](auto... k) { return cube_.Remove(k..., isZeroBased(c)); });
    }
    bool save(TRkMatrix const& matrix, short n, RkLockState lock, Counting c) override {
        return withKey<Count>(
            key(n, c), [&](auto... k) { return cube_.SaveMatrix(matrix, k..., lock, isZeroBased(c)); });
    }
    std::unique_ptr<TRkMatrix> get(short n, RkLockState lock, Counting c) const override {
        return std::unique_ptr<TRkMatrix>(
            withKey<Count>(key(n, c), [&](auto... k) { return cube_.Get(k..., lock, isZeroBased(c)); }));
    }
    double element(short n, int row, int column, RkLockState lock, Counting c) const override {
        return withKey<Count>(key(n, c), [&](auto... k) { return cube_.Get(k..., row, column, lock, isZeroBased(c)); });
    }
    bool raise(short n) override {
        return withKey<Count>(key(n), [&](auto... k) { return cube_.incUsage(k...); });
    }
    bool lower(short n) override {
        return withKey<Count>(key(n), [&](auto... k) { return cube_.decUsage(k...); });
    }
    bool isCorrect(short n) const override {
        return withKey<Count>(key(n), [&](auto... k) { return cube_.isCorrect(k...); });
    }

protected:
    using EntryFamily::key;

    Cube cube_;
};

constexpr char const* cubeExists = "Cube already exists";
constexpr char const* entryExists = "Entry already exists in the cube";
constexpr char const* matrixExists = "Matrix already exists in the cube";

class FourKeys final : public Bound<TRkMatCubes, 5, 5> {
public:
    FourKeys(TRkMatCubes cubes, std::string name, short number)
        : Bound(std::move(cubes)), name_(std::move(name)), number_(number) {}

    std::vector<std::string> keyColumns() const override { return {"cubenr", "purpose", "mode", "time", "user"}; }
    Key key(short n, Counting counting) const override { return counted({number_, 1, 1, 1, n}, counting); }
    std::string fileOf(short n) const override {
        return std::to_string(number_) + "-1-1-1-" + std::to_string(n) + ".odm";
    }
    int matrixType() const override { return mtMatrixCube; }
    std::span<Form const> forms() const override {
        static constexpr Form forms[] = {
            {"Copy by number", false, false, false, entryExists},
            {"Copy by name", false, false, true, matrixExists},
            {"Copy of another by number", false, true, false, cubeExists},
            {"Copy of another by name", false, true, true, entryExists},
            {"Move by number", true, false, false, cubeExists},
            {"Move by name", true, false, true, cubeExists},
            {"Move of another by number", true, true, false, cubeExists},
            {"Move of another by name", true, true, true, cubeExists},
        };
        return forms;
    }
    bool resultOfNothingToTransfer() const override { return true; }
    std::unique_ptr<EntryFamily> copied() const override { return std::make_unique<FourKeys>(cube_, name_, number_); }
    std::unique_ptr<EntryFamily> otherCube() const override {
        return std::make_unique<FourKeys>(cube_, "Other", short{2});
    }

    bool addRow(Table const& table, Key const& key, Counting c) override {
        return withKey<5>(key, [&](auto... k) { return cube_.Add(table, k..., isZeroBased(c)); });
    }
    std::string listed() const override {
        TRkAutoListT<TRkMatCubes::TKey> list;
        bool const isThere = cube_.Get(list);
        return shown(isThere, list);
    }
    bool clearAll() override { return cube_.Clear(number_); }
    bool set(short n, TRkMatrix const& matrix, RkLockState lock) override {
        return cube_.Set(name_.c_str(), 1, 1, 1, n, matrix, lock, false);
    }
    TRkMatrixHeader const* header(short n, Counting c) const override {
        return withKey<4>(key(n, c), [&](auto... k) { return cube_.GetHeader(name_.c_str(), k..., isZeroBased(c)); });
    }
    bool run(Form const& form, EntryFamily const& source, short from, short to, bool failIfExists) override {
        auto const& other = dynamic_cast<FourKeys const&>(source);
        auto const between = [&](auto fromCube, auto toCube) {
            if (!form.isBetween && form.moves)
                return cube_.Move(fromCube, 1, 1, 1, from, toCube, 1, 1, 1, to, failIfExists, false);
            if (!form.isBetween) return cube_.Copy(fromCube, 1, 1, 1, from, toCube, 1, 1, 1, to, failIfExists, false);
            if (form.moves)
                return cube_.Move(other.cube_, fromCube, 1, 1, 1, from, toCube, 1, 1, 1, to, failIfExists, false);
            return cube_.Copy(other.cube_, fromCube, 1, 1, 1, from, toCube, 1, 1, 1, to, failIfExists, false);
        };
        return form.isByName ? between(other.name_.c_str(), name_.c_str()) : between(other.number_, number_);
    }

private:
    std::string name_;
    short number_;
};

class Results final : public Bound<TRkSkimCube, 6, 7> {
public:
    using Bound::Bound;

    std::vector<std::string> keyColumns() const override {
        return {"cubenr", "purpose", "mode", "time", "user", "result", "iteration"};
    }
    Key key(short n, Counting counting) const override { return counted({ctSkim, 1, 1, 1, 1, 1, n}, counting); }
    std::string fileOf(short n) const override { return "1-1-1-1-1-" + std::to_string(n) + ".skm"; }
    int matrixType() const override { return mtSkim; }
    std::span<Form const> forms() const override {
        static constexpr Form forms[] = {
            {"Copy", false, false, false, cubeExists},
            {"Copy of another", false, true, false, cubeExists},
            {"Move", true, false, false, cubeExists},
            {"Move of another", true, true, false, cubeExists},
        };
        return forms;
    }
    bool resultOfNothingToTransfer() const override { return false; }
    std::unique_ptr<EntryFamily> copied() const override { return std::make_unique<Results>(cube_); }
    std::unique_ptr<EntryFamily> otherCube() const override { return copied(); }

    bool addRow(Table const& table, Key const& key, Counting c) override {
        return withKey<7>(
            key, [&](auto... k) { return cube_.Add(table, k..., 0, -1, -1, -1, -1, -1, -1, isZeroBased(c)); });
    }
    std::string listed() const override {
        TRkAutoListT<TRkVarCubes::TKey> list;
        bool const isThere = cube_.Get(list);
        return shown(isThere, list);
    }
    bool clearAll() override { return cube_.Clear(); }
    bool set(short n, TRkMatrix const& matrix, RkLockState lock) override {
        return cube_.Set(1, 1, 1, 1, 1, n, matrix, lock, false);
    }
    TRkMatrixHeader const* header(short n, Counting c) const override {
        return withKey<6>(key(n, c), [&](auto... k) { return cube_.GetHeader(k..., isZeroBased(c)); });
    }
    bool run(Form const& form, EntryFamily const& source, short from, short to, bool failIfExists) override {
        auto const& other = dynamic_cast<Results const&>(source).cube_;
        if (!form.isBetween && form.moves)
            return cube_.Move(1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, false);
        if (!form.isBetween) return cube_.Copy(1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, false);
        if (form.moves) return cube_.Move(other, 1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, false);
        return cube_.Copy(other, 1, 1, 1, 1, 1, from, 1, 1, 1, 1, 1, to, failIfExists, false);
    }
};

}

std::unique_ptr<EntryFamily> entryFamily(Family family, TRkGlobalSettings* settings, std::string const& directory) {
    if (family == Family::results) return std::make_unique<Results>(TRkSkimCube(settings, directory.c_str(), true));
    TRkMatCubes cubes(settings, directory.c_str(), ".odm", true);
    cubes.Add("Base");
    cubes.Add("Other");
    return std::make_unique<FourKeys>(std::move(cubes), "Base", short{1});
}

std::string nameOf(FamilyOnBackend const& parameter) {
    return (parameter.family == Family::fourKeys ? "four_keys_" : "results_") + backendName(parameter.backend);
}

void EntriesTest::SetUp() {
    requireBackend(backend());
    if (IsSkipped() || HasFatalFailure()) return;
    project_ = std::make_unique<TestProject>(backend());
    entries_ = entriesOf(project_->settings());
}

std::string EntriesTest::rows() {
    return read("select " + lastColumn() + ", \"usageCounter\", filename from " + table() + " order by 1, cubenr");
}

void EntriesTest::name(short n, std::string const& filename) {
    execute(
        "update " + table() + " set filename = '" + filename + "' where " + lastColumn() + " = " + std::to_string(n));
}

void EntriesTest::defineTable(std::string const& columns, std::string const& constraint) {
    std::string keys;
    for (auto const& column : entries().keyColumns()) keys += "\"" + column + "\" smallint, ";
    execute("drop table " + table());
    execute("create table " + table() + " (" + keys + columns + constraint + ")");
}

}
