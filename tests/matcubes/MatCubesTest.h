#pragma once

#include <cubes/core/TRkCubesException.h>
#include <cubes/database/TPgConnection.h>
#include <cubes/matcubes/TRkMatCubes.h>
#include <cubes/matrix/TRkMatrix.h>
#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "support/Backend.h"
#include "support/TempDir.h"

namespace cubes::test {

/// A fresh project of its own on either backend, with matrix cubes in it.
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
    /// The entry table as an independent client sees it: "1|1|2|3|4|0|1-1-2-3-4.odm" a line.
    std::string rows() {
        return read("select cubenr, purpose, mode, time, \"user\", \"usageCounter\", filename from " + table() +
                    " order by 1, 2, 3, 4, 5");
    }
    std::string cubeRows() { return read("select cubenr, name from cube order by cubenr"); }
    std::string table() { return project().database().table("public", "cube4data1"); }

    std::string files() { return filesIn(project().matrixDirectory()); }
    std::string pathOf(std::string const& name) { return project().matrixDirectory() + name; }

    /// A small asymmetric matrix, recognisable by its first element.
    static TRkMatrix matrix(float first) {
        TRkMatrix made = TRkMatrix::inMemory(2, 3);
        for (int row = 0; row < 2; ++row)
            for (int column = 0; column < 3; ++column)
                made.RowAt(row, 8)[column] = first + static_cast<float>(10 * row + column);
        return made;
    }

    /// What a later reader finds in the entry's file: its first element, or -1 without a matrix.
    double firstElement(short cubenr, short p, short m, short t, short u) {
        std::unique_ptr<TRkMatrix> const found(cubes().Get(cubenr, p, m, t, u, lsRead, false));
        return found ? found->RowAt(0, 8)[0] : -1.0;
    }

    /// The message of the error of cubes that the call throws.
    static std::string messageOf(std::function<void()> const& call) {
        try {
            call();
        } catch (TRkCubesException const& error) {
            return error.what();
        }
        return "nothing was thrown";
    }

private:
    std::unique_ptr<TestProject> project_;
    std::optional<TRkMatCubes> cubes_;
};

}
