#pragma once

#include <cubes/database/TPgConnection.h>
#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

#include "support/Backend.h"
#include "support/CubeTesting.h"
#include "support/TempDir.h"

namespace cubes::test {

/// A new project on either backend, with matrix cubes in it.
class MatCubesTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        project_ = std::make_unique<TestProject>(backend());
        cubes_.emplace(project_->settings(), ".odm", true);
    }

    TestProject& project() { return *project_; }
    TRkMatCubes& cubes() { return *cubes_; }

    std::string read(std::string const& query) { return joined(project().sql(query)); }
    /// The entry table as an independent client reads it: "1|1|2|3|4|0|1-1-2-3-4.odm" per line.
    std::string rows() {
        return read("select cubenr, purpose, mode, time, \"user\", \"usageCounter\", filename from " + table() +
                    " order by 1, 2, 3, 4, 5");
    }
    std::string cubeRows() { return read("select cubenr, name from cube order by cubenr"); }
    std::string table() { return project().database().table("public", "cube4data1"); }

    std::string files() { return filesIn(project().matrixDirectory()); }
    std::string pathOf(std::string const& name) { return project().matrixDirectory() + name; }

    /// The first element that a later reader finds in the entry's file; -1 without a matrix.
    double firstElement(short cubenr, short p, short m, short t, short u) {
        return firstElementOf(std::unique_ptr<TRkMatrix>(cubes().Get(cubenr, p, m, t, u, lsRead, false)));
    }

private:
    std::unique_ptr<TestProject> project_;
    std::optional<TRkMatCubes> cubes_;
};

}
