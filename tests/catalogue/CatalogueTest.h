#pragma once

#include <cubes/catalogue/TRkBaseCubes.h>
#include <cubes/project/Project.h>

#include "support/Backend.h"

#include <memory>
#include <optional>
#include <string>

namespace cubes::test {

/// A new project on either backend, with a plain catalogue on it.
class CatalogueTest : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        project_ = std::make_unique<TestProject>(backend());
        catalogue_ = catalogueOf(project_->settings());
    }

    TestProject& project() { return *project_; }
    TRkBaseCubes& catalogue() { return *catalogue_; }

    static TRkBaseCubes catalogueOf(TRkGlobalSettings* settings) {
        return {settings, nullptr, nullptr, ctMatrix, mtMatrixCube, mkDefault, false};
    }

    /// The register as an independent client reads it: "1|Base" per line.
    std::string rows() { return joined(project().sql("select cubenr, name from cube order by cubenr")); }

private:
    std::unique_ptr<TestProject> project_;
    std::optional<TRkBaseCubes> catalogue_;
};

}
