#pragma once

#include <array>
#include <filesystem>
#include <string>

#include "matcubes/MatCubesTest.h"

namespace cubes::test {

/// One end of a transfer: the entry 1/1/1/`user` of a cube, by its number or by its name.
struct End {
    short cubenr;
    char const* name;
    short user;
};

constexpr End end(short cubenr, short user) {
    constexpr std::array names = {"Base", "Other", "New", "Newer"};
    return {cubenr, cubenr > 0 ? names[static_cast<std::size_t>(cubenr - 1)] : "StopCube", user};
}

struct Flags {
    bool failIfExists = false;
    bool zeroBased = false;
};

/// One of the eight forms of copying and moving.
struct Form {
    char const* name;
    bool moves;
    bool isByName;
    bool isBetween;
    /// What it says when the target exists and must not.
    char const* refusal;
    bool (*call)(TRkMatCubes const& here, TRkMatCubes const& other, End from, End to, Flags flags);
};

inline constexpr char const* cubeExists = "Cube already exists";
inline constexpr char const* entryExists = "Entry already exists in the cube";
inline constexpr char const* matrixExists = "Matrix already exists in the cube";

// With zero-based keys the ends are told apart by one number all the same.
#define CUBES_KEY(end)                                                                                                 \
    f.zeroBased ? short{0} : short{1}, f.zeroBased ? short{0} : short{1}, f.zeroBased ? short{0} : short{1}, (end).user
#define CUBES_WITHIN(operation, member)                                                                                \
    [](TRkMatCubes const& here, TRkMatCubes const&, End a, End b, Flags f) {                                           \
        return here.operation(a.member, CUBES_KEY(a), b.member, CUBES_KEY(b), f.failIfExists, f.zeroBased);            \
    }
#define CUBES_BETWEEN(operation, member)                                                                               \
    [](TRkMatCubes const& here, TRkMatCubes const& other, End a, End b, Flags f) {                                     \
        return here.operation(other, a.member, CUBES_KEY(a), b.member, CUBES_KEY(b), f.failIfExists, f.zeroBased);     \
    }

inline constexpr Form forms[] = {
    {"Copy by number", false, false, false, entryExists, CUBES_WITHIN(Copy, cubenr)},
    {"Copy by name", false, true, false, matrixExists, CUBES_WITHIN(Copy, name)},
    {"Copy of another by number", false, false, true, cubeExists, CUBES_BETWEEN(Copy, cubenr)},
    {"Copy of another by name", false, true, true, entryExists, CUBES_BETWEEN(Copy, name)},
    {"Move by number", true, false, false, cubeExists, CUBES_WITHIN(Move, cubenr)},
    {"Move by name", true, true, false, cubeExists, CUBES_WITHIN(Move, name)},
    {"Move of another by number", true, false, true, cubeExists, CUBES_BETWEEN(Move, cubenr)},
    {"Move of another by name", true, true, true, cubeExists, CUBES_BETWEEN(Move, name)},
};

#undef CUBES_KEY
#undef CUBES_WITHIN
#undef CUBES_BETWEEN

/// A project with the cubes 1 "Base" and 2 "Other", whose entries are named by their user alone.
class TransferTest : public MatCubesTest {
protected:
    void SetUp() override {
        MatCubesTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        cubes().Add("Base");
        cubes().Add("Other");
        other_.emplace(cubes());
    }

    /// Another catalogue of the same cubes.
    TRkMatCubes& other() { return *other_; }
    bool run(Form const& form, End from, End to, Flags flags = {}) {
        return form.call(cubes(), other(), from, to, flags);
    }

    void add(End at) { ASSERT_TRUE(cubes().Add(cubes().Open(), at.cubenr, 1, 1, 1, at.user, false)); }
    void store(End at, float first) {
        add(at);
        ASSERT_TRUE(cubes().SaveMatrix(matrix(first), at.cubenr, 1, 1, 1, at.user, lsNone, false));
    }
    bool has(End at) { return cubes().Check(at.cubenr, 1, 1, 1, at.user, false); }
    double first(End at) { return firstElement(at.cubenr, 1, 1, 1, at.user); }
    std::string file(End at) { return pathOf(fileName(at)); }
    static std::string fileName(End at) {
        return std::to_string(at.cubenr) + "-1-1-1-" + std::to_string(at.user) + ".odm";
    }
    /// Back to the beginning, for the next form.
    void clear() {
        execute("delete from " + table());
        execute("delete from cube where cubenr > 2");
        for (auto const& file : std::filesystem::directory_iterator(project().matrixDirectory()))
            std::filesystem::remove_all(file);
    }
    void name(End at, std::string const& filename) {
        execute("update " + table() + " set filename = '" + filename + "' where cubenr = " + std::to_string(at.cubenr) +
                " and \"user\" = " + std::to_string(at.user));
    }
    void execute(std::string const& statement) { project().project().connection()->Execute(statement); }

    /// Everything that a refused transfer leaves as it is.
    std::string state() {
        return read("select cubenr, purpose, mode, time, \"user\", \"usageCounter\", filename from " + table() +
                    " union all select cubenr, 0, 0, 0, 0, 0, name from cube order by 1, 2, 3, 4, 5") +
               files();
    }

private:
    std::optional<TRkMatCubes> other_;
};

}
