#pragma once

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/project/Project.h>

#include <string>

namespace cubes::project {

/// The content of a project's "cubes.toml". Paths are as written: relative to the project's directory or absolute.
struct ProjectFile {
    std::string database = "sqlite:cubes.db";
    std::string matrixDirectory = "matrices";
    std::string workingDirectory = "results";
    MatrixStorage storage;
    /// The SQL schema of the project's result cubes; empty when the file does not name one.
    std::string schema;
};

bool isProject(std::string const& directory);
std::string projectFilePath(std::string const& directory);

/// The content for the given options of the project in `directory`. Throws TRkProjectException for an unknown storage
/// or durability.
ProjectFile projectFileFor(ProjectOptions const& options, std::string const& directory);
/// Throws TRkProjectException with file, line and reason.
ProjectFile readProjectFile(std::string const& directory);
/// Writes the file atomically; a password in the database's URL is omitted. Throws TRkProjectException.
void writeProjectFile(ProjectFile const& file, std::string const& directory);

}
