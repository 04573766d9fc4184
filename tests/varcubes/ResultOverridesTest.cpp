#include <filesystem>
#include <functional>
#include <vector>

#include "varcubes/VarCubesTest.h"
#include "varcubes/WatchedCube.h"

namespace cubes::test {
namespace {

// A cube that records which of its operations the others call.
class Noting : public TRkVarCubes {
public:
    using TRkVarCubes::TRkVarCubes;

    bool Check(short p, short m, short t, short u, short r, short i, bool zeroBased) const override {
        calls.push_back("Check");
        return TRkVarCubes::Check(p, m, t, u, r, i, zeroBased);
    }
    bool Clear(short p, short m, short t, short u, short r, short i, bool zeroBased) override {
        calls.push_back("Clear");
        return TRkVarCubes::Clear(p, m, t, u, r, i, zeroBased);
    }
    bool Clear() override {
        calls.push_back("ClearAll");
        return true;
    }
    bool Add(short p, short m, short t, short u, short r, short i, short parentcubenr, short pp, short pm, short pt,
        short pu, short pr, short pi, bool zeroBased) override {
        calls.push_back("Add");
        return TRkVarCubes::Add(p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    }
    bool Add(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, short r,
        short i, short parentcubenr, short pp, short pm, short pt, short pu, short pr, short pi,
        bool zeroBased) override {
        calls.push_back("AddRow");
        return TRkVarCubes::Add(table, cubenr, p, m, t, u, r, i, parentcubenr, pp, pm, pt, pu, pr, pi, zeroBased);
    }
    bool LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, short r,
        short i, bool zeroBased) const override {
        calls.push_back("LookUp");
        return TRkVarCubes::LookUp(table, cubenr, p, m, t, u, r, i, zeroBased);
    }
    CountedPtr<Rktable::TRkTableProxy> Open() const override {
        calls.push_back("Open");
        return TRkVarCubes::Open();
    }
    bool SaveMatrix(TRkMatrix const& matrix, short p, short m, short t, short u, short r, short i, RkLockState lock,
        bool zeroBased) override {
        calls.push_back("SaveMatrix");
        return TRkVarCubes::SaveMatrix(matrix, p, m, t, u, r, i, lock, zeroBased);
    }
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override {
        calls.push_back("createFilename");
        return "Sub\\" + TRkVarCubes::createFilename(p, m, t, u, r, i).str();
    }
    TRkMatrix* Get(short, short, short, short, short, short, RkLockState, bool) const override {
        calls.push_back("Get");
        return nullptr;
    }
    using TRkVarCubes::Get;

    std::string taken() const {
        std::string text;
        for (auto const& call : calls) text += (text.empty() ? "" : " ") + call;
        calls.clear();
        return text;
    }

    mutable std::vector<std::string> calls;
};

// A cube to which another process adds each new entry just before it does.
class Overtaken : public TRkSkimCube {
public:
    Overtaken(TRkGlobalSettings* settings, std::function<void()> other)
        : TRkSkimCube(settings, true), other_(std::move(other)) {}
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override {
        other_();
        return TRkSkimCube::createFilename(p, m, t, u, r, i);
    }

private:
    std::function<void()> other_;
};

class ResultOverrides : public VarCubesTest {
protected:
    Noting noting() { return {project().settings(), ".not", RkCubeTypes(-20), mtSkim, mkSkim, true}; }
};

CUBES_BOTH_BACKENDS(ResultOverrides);

TEST_P(ResultOverrides, seeTheConnectionOfTheirOwnProject) {
    WatchedCube<TRkSkimCube> cube(project().settings(), true);
    TestProject const current(backend());
    auto operations = resultOperations<TRkSkimCube>();
    operations.push_back({"Get of an element", [](TRkSkimCube& c, CountedPtr<Rktable::TRkTableProxy> const&) {
                              c.Get(1, 2, 3, 4, 5, 6, 0, 0, lsRead, false);
                          }});
    expectOwnConnection<TRkSkimCube>(cube, project().project().connection(), operations);
}

TEST_P(ResultOverrides, takeEffectInOtherOperations) {
    Noting cube = noting();
    EXPECT_TRUE(add(cube, 1));
    EXPECT_EQ(cube.taken(), "Add Open AddRow LookUp createFilename");
    EXPECT_EQ(rows(), "-20|1|1|1|1|1|1|0|Sub\\1-1-1-1-1-1.not\n");
    EXPECT_TRUE(cube.Check(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(cube.taken(), "Check Open LookUp");
    EXPECT_TRUE(cube.isCorrect(1, 1, 1, 1, 1, 1));
    EXPECT_EQ(cube.taken(), "Check Open LookUp Open LookUp");
    EXPECT_TRUE(cube.incUsage(1, 1, 1, 1, 1, 1));
    EXPECT_EQ(cube.taken(), "Open LookUp");
    cube.FileName(1, 1, 1, 1, 1, 1, false);
    EXPECT_EQ(cube.taken(), "Open LookUp");
    EXPECT_TRUE(cube.Remove(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(cube.taken(), "Clear Open LookUp");
    EXPECT_FALSE(cube.Delete(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(cube.taken(), "Clear Open LookUp");
    EXPECT_TRUE(cube.Remove());
    EXPECT_TRUE(cube.Delete());
    EXPECT_EQ(cube.taken(), "ClearAll ClearAll");
    EXPECT_EQ(cube.TRkVarCubes::Get(1, 1, 1, 1, 1, 1, 0, 0, lsRead, false), -1.0);
    EXPECT_EQ(cube.taken(), "Get");
}

TEST_P(ResultOverrides, areCalledInAFixedOrderWhenStoring) {
    Noting cube = noting();
    EXPECT_TRUE(store(cube, 1, 1));
    EXPECT_EQ(cube.taken(), "Check Open LookUp Add Open AddRow LookUp createFilename SaveMatrix");
    EXPECT_TRUE(store(cube, 1, 1));
    EXPECT_EQ(cube.taken(), "Check Open LookUp Clear Open LookUp Add Open AddRow LookUp createFilename SaveMatrix");
    // The file is named by the key alone.
    EXPECT_EQ(files(), "1-1-1-1-1-1.not\n");
}

TEST_P(ResultOverrides, acceptAnEntryThatAnotherProcessAddsMeanwhile) {
    Overtaken cube(project().settings(), [&] {
        project().execute("insert into " + table() +
                          " (cubenr, purpose, mode, time, \"user\", result, iteration, \"usageCounter\", filename)"
                          " values (-1, 1, 1, 1, 1, 1, 1, 3, 'theirs.skm')");
    });
    EXPECT_TRUE(cube.Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false));
    EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|theirs.skm\n");
    EXPECT_EQ(parents(), "-6|1|2|3|4|5|6\n");
}

// A cube whose entry is added and cleared by others at two points: before it forms a new file name, and after each
// look-up of the row.
class Disturbed : public TRkSkimCube {
public:
    using Deed = std::function<void()>;

    Disturbed(TRkGlobalSettings* settings, Deed beforeNaming, std::vector<Deed> afterLooking)
        : TRkSkimCube(settings, true), beforeNaming_(std::move(beforeNaming)), afterLooking_(std::move(afterLooking)) {}
    TRkString createFilename(short p, short m, short t, short u, short r, short i) const override {
        beforeNaming_();
        return TRkSkimCube::createFilename(p, m, t, u, r, i);
    }
    bool LookUp(CountedPtr<Rktable::TRkTableProxy> table, short cubenr, short p, short m, short t, short u, short r,
        short i, bool zeroBased) const override {
        bool const found = TRkSkimCube::LookUp(table, cubenr, p, m, t, u, r, i, zeroBased);
        if (looks_ < afterLooking_.size()) afterLooking_[looks_]();
        ++looks_;
        return found;
    }
    using TRkSkimCube::LookUp;

private:
    Deed beforeNaming_;
    std::vector<Deed> afterLooking_;
    mutable std::size_t looks_ = 0;
};

TEST_P(ResultOverrides, addAnEntryAgainThatAnotherProcessClearsMeanwhile) {
    auto const insert = [&] {
        project().execute("insert into " + table() +
                          " (cubenr, purpose, mode, time, \"user\", result, iteration, \"usageCounter\", filename)"
                          " values (-1, 1, 1, 1, 1, 1, 1, 3, 'theirs.skm')");
    };
    auto const clear = [&] { project().execute("delete from " + table()); };
    auto const nothing = [] {};
    struct Case {
        char const* name;
        bool isThere;
        Disturbed::Deed beforeNaming;
        std::vector<Disturbed::Deed> afterLooking;
    };
    Case const cases[] = {
        {"cleared before it is changed", true, nothing, {clear}},
        {"added and cleared again", false, insert, {nothing, clear}},
        {"cleared, added and cleared again", true, insert, {clear, clear}},
    };
    for (auto const& [name, isThere, beforeNaming, afterLooking] : cases) {
        SCOPED_TRACE(name);
        clear();
        if (isThere) insert();
        Disturbed cube(project().settings(), beforeNaming, afterLooking);
        EXPECT_TRUE(cube.Add(1, 1, 1, 1, 1, 1, -6, 1, 2, 3, 4, 5, 6, false));
        EXPECT_EQ(rows(), "-1|1|1|1|1|1|1|0|1-1-1-1-1-1.skm\n");
        EXPECT_EQ(parents(), "-6|1|2|3|4|5|6\n");
    }
}

// A cube that keeps its files in a subdirectory of whatever directory it was given.
class Below : public TRkSkimCube {
public:
    using TRkSkimCube::TRkSkimCube;
    TRkFString MatrixDirectory() const override { return TRkSkimCube::MatrixDirectory().str() + "below/"; }
    using TRkSkimCube::MatrixDirectory;
};

TEST_P(ResultOverrides, ofTheMatrixDirectoryPlaceEveryFile) {
    std::filesystem::create_directory(pathOf("below"));
    Below cube(project().settings(), true);
    EXPECT_TRUE(store(cube, 1, 5));
    EXPECT_EQ(firstElement(cube, 1), 5.0);
    EXPECT_EQ(cube.FileName(1, 1, 1, 1, 1, 1, false).str(), pathOf("below/1-1-1-1-1-1.skm"));
    EXPECT_TRUE(cube.Copy(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, true, false));
    EXPECT_TRUE(cube.Clear(1, 1, 1, 1, 1, 1, false));
    EXPECT_EQ(filesIn(pathOf("below")), "1-1-1-1-1-2.skm\n");
    EXPECT_TRUE(cube.Clear());
    EXPECT_EQ(filesIn(pathOf("below")), "");
}

// A cube that returns the same file for every entry.
class OneFile : public TRkSkimCube {
public:
    OneFile(TRkGlobalSettings* settings, std::string file) : TRkSkimCube(settings, true), file_(std::move(file)) {}
    TRkString FileName(short, short, short, short, short, short, bool) const override { return file_; }
    using TRkSkimCube::FileName;

private:
    std::string file_;
};

TEST_P(ResultOverrides, ofTheFileNameDetermineTheOpenedFile) {
    store(skims(), 1, 5);
    add(skims(), 2);
    OneFile const cube(project().settings(), pathOf("1-1-1-1-1-1.skm"));
    EXPECT_EQ(firstElement(cube, 2), 5.0);
    EXPECT_EQ(cube.Get(1, 1, 1, 1, 1, 2, 0, 0, lsRead, false), 5.0);
    EXPECT_NE(cube.GetHeader(1, 1, 1, 1, 1, 2, false), nullptr);
    EXPECT_EQ(skims().GetHeader(1, 1, 1, 1, 1, 2, false), nullptr);
}

TEST_P(ResultOverrides, areCalledByCopying) {
    Noting cube = noting();
    add(cube, 1);
    cube.taken();
    EXPECT_FALSE(cube.Copy(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 2, true, false));
    EXPECT_EQ(cube.taken(), "Open LookUp LookUp AddRow LookUp createFilename");
}

}
}
