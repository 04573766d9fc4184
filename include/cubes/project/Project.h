#pragma once

#include <cubes/Export.h>

#include <memory>
#include <string>

class TRkGlobalSettings;
namespace Pgaccess {
class TPgConnection;
}

namespace cubes {

class EntryStore;

/// The options of a new project. Empty texts mean the default. Relative paths are relative to the project's directory.
struct ProjectOptions {
    /// "sqlite:PATH" or "postgresql://..."; by default CUBES_DATABASE of the environment, or "sqlite:cubes.db". A
    /// password in it is used to connect and not stored: whoever opens the project later supplies it in one of libpq's
    /// ways (a password file, a service, PGPASSWORD).
    std::string database = {};
    /// The directory of the matrix files of four-key cubes; "matrices" by default.
    std::string matrixDirectory = {};
    /// The directory of the matrix files of result cubes; "results" by default.
    std::string workingDirectory = {};
    /// How matrix files are stored: "plain" (the default) or "deflate".
    std::string storage = {};
    /// Whether a written matrix file is flushed to disk: "full" (the default) or "process".
    std::string durability = {};
};

/// A project: a directory with a "cubes.toml", its database and its matrix directories. The only object that an
/// application must construct; it owns the connection, the data dictionary and the settings, and returns references to
/// them, which stay valid when it is moved. Movable, not copyable.
///
/// The current project is the one that was last created, opened or made current and still exists: the connection
/// manager returns its connection.
class CUBES_API Project {
public:
    /// Creates the directory with all missing levels, the "cubes.toml" and the tables. Throws TRkProjectException when
    /// the directory already is a project or cannot be written, TRkDatabaseException when the database cannot be
    /// opened; nothing is left behind then.
    static Project create(std::string const& directory, ProjectOptions const& options = {});
    /// Opens the project in `directory`. Missing tables are created, existing ones are never altered. CUBES_DATABASE in
    /// the environment overrides the database of "cubes.toml". A missing SQLite file is an error. Throws
    /// TRkProjectException when the directory is not a project or its "cubes.toml" is not valid, TRkDatabaseException
    /// when the database cannot be opened.
    static Project open(std::string const& directory);

    Project(Project&&) noexcept;
    Project& operator=(Project&&) noexcept;
    /// Closes the connection; the previous current project, if it still exists, becomes current again.
    ~Project();

    /// The project's settings, with the data dictionary under "RkLib.DataDictionary".
    TRkGlobalSettings* settings() const noexcept;
    Pgaccess::TPgConnection* connection() const noexcept;
    /// The absolute path of the project's directory, without a trailing delimiter.
    std::string const& root() const noexcept;
    /// The SQL schema of the project's result cubes.
    std::string const& schema() const noexcept;
    /// All entries of the project. Any number of threads may use it at once.
    EntryStore& store() const noexcept;
    /// Makes this project's connection the current one of this thread, and of threads that have set none.
    void makeCurrent();

private:
    struct Parts;
    explicit Project(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

}
