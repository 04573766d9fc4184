#pragma once

#include <cubes/database/TPgConnection.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>
#include <cubes/varcubes/TRkPathCube.h>
#include <cubes/varcubes/TRkSkimCube.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "support/Backend.h"
#include "support/CubeTesting.h"
#include "support/TempDir.h"

namespace cubes::test {

/// A new project on either backend, with a skim cube in it.
class VarCubesTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        project_ = std::make_unique<TestProject>(backend());
        skims_.emplace(project_->settings(), true);
    }

    TestProject& project() { return *project_; }
    TRkSkimCube& skims() { return *skims_; }

    void execute(std::string const& statement) { project().project().connection()->Execute(statement); }
    std::string read(std::string const& query) { return joined(project().sql(query)); }
    /// The entry table as an independent client reads it: "-1|1|2|3|4|5|6|0|1-2-3-4-5-6.skm" per line.
    std::string rows() {
        return read(
            "select cubenr, purpose, mode, time, \"user\", result, iteration, \"usageCounter\", filename from " +
            table() + " order by 1, 2, 3, 4, 5, 6, 7");
    }
    /// The parents: "-6|1|2|3|4|5|6" per line.
    std::string parents() {
        return read("select parentcubenr, parentpurpose, parentmode, parenttime, parentuser, parentresult, "
                    "parentiteration from " +
                    table() + " order by cubenr, purpose, mode, time, \"user\", result, iteration");
    }
    std::string table() { return project().database().table(project().project().schema(), "cube5data1"); }

    std::string directory() { return project().settings()->WorkingDirectory().str(); }
    /// The files of the matrix directory without the lock file of all writers.
    std::string files() { return filesIn(directory()); }
    std::string pathOf(std::string const& name) { return directory() + name; }

    /// Adds an entry without parent: 1/1/1/1/1/`iteration`.
    static bool add(TRkVarCubes& cube, short iteration) {
        return cube.Add(1, 1, 1, 1, 1, iteration, 0, -1, -1, -1, -1, -1, -1, false);
    }
    /// Stores 1/1/1/1/1/`iteration` with a matrix that is identified by its first element.
    static bool store(TRkVarCubes& cube, short iteration, float first) {
        return cube.Set(1, 1, 1, 1, 1, iteration, smallMatrix(first), lsReadWrite, false);
    }
    static std::unique_ptr<TRkMatrix> open(TRkVarCubes const& cube, short iteration, RkLockState lock) {
        return std::unique_ptr<TRkMatrix>(cube.Get(1, 1, 1, 1, 1, iteration, lock, false));
    }
    /// The first element that a later reader finds in the file of 1/1/1/1/1/`iteration`, or -1 without a matrix.
    static double firstElement(TRkVarCubes const& cube, short iteration) {
        return firstElementOf(open(cube, iteration, lsRead));
    }

private:
    std::unique_ptr<TestProject> project_;
    std::optional<TRkSkimCube> skims_;
};

}
