#include "support/Backend.h"

#include <cubes/project/Project.h>
#include <cubes/project/TRkGlobalSettings.h>

namespace cubes::test {

namespace {

Project createProject(TestDatabase const& database, std::string const& directory) {
    ProjectOptions options;
    options.database = database.url();
    return Project::create(directory, options);
}

}

TestProject::TestProject(Backend backend)
    : database_(backend), project_(std::make_unique<Project>(createProject(database_, directory_.file("delta")))) {}

TestProject::~TestProject() = default;

TRkGlobalSettings* TestProject::settings() {
    return project_->settings();
}

std::string TestProject::root() const {
    return project_->root();
}

std::string TestProject::matrixDirectory() const {
    return project_->settings()->MatrixDirectory().str();
}

}
