#pragma once

#include <cubes/matrix/MatrixStorage.h>
#include <cubes/project/Project.h>

#include <string>

namespace cubes::project {

/// What a project's "cubes.toml" says. Paths are as written: relative to the project's directory
/// or absolute.
struct ProjectFile {
    std::string database = "sqlite:cubes.db";
    std::string matrixDirectory = "matrices";
    std::string workingDirectory = "results";
    MatrixStorage storage;
    /// The SQL schema of the project's result cubes; empty when the file does not say.
    std::string schema;
};

bool isProject(std::string const& directory);
std::string projectFilePath(std::string const& directory);

/// What is to be written for the options given for the project in `directory`.
/// Throws TRkProjectException for a storage or durability that does not exist.
ProjectFile projectFileFor(ProjectOptions const& options, std::string const& directory);
/// Throws TRkProjectException that tells file, line and reason.
ProjectFile readProjectFile(std::string const& directory);
/// Puts the whole file in place or none; a password in the database's URL is left out.
/// Throws TRkProjectException.
void writeProjectFile(ProjectFile const& file, std::string const& directory);

}
