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

/// What a new project differs in from the default. Empty texts mean the default. Relative paths
/// are taken from the project's directory.
struct ProjectOptions {
    /// "sqlite:PATH" or "postgresql://..."; default what CUBES_DATABASE says in the environment,
    /// else "sqlite:cubes.db". A password in it serves to connect and is not stored: whoever opens
    /// the project later gives it by the ways of libpq (a password file, a service, PGPASSWORD).
    std::string database = {};
    /// Where the matrix files of four-key cubes lie; default "matrices".
    std::string matrixDirectory = {};
    /// Where the matrix files of result cubes lie; default "results".
    std::string workingDirectory = {};
    /// How matrix files are stored: "plain" (the default) or "deflate".
    std::string storage = {};
    /// Whether a written matrix file is flushed to disk: "full" (the default) or "process".
    std::string durability = {};
};

/// A project: a directory with a "cubes.toml", its database and its matrix directories. The only
/// thing an application must construct; it owns the connection, the data dictionary and the
/// settings, and lends them out. Movable, not copyable; what it lends stays valid when it moves.
///
/// The project created, opened or made current last and still alive is the current one: the
/// connection manager hands out its connection.
class CUBES_API Project {
public:
    /// Makes the directory with all that is missing, the "cubes.toml" and the tables.
    /// Throws TRkProjectException when the directory already is a project or cannot be written,
    /// TRkDatabaseException when the database cannot be opened; nothing is left behind then.
    static Project create(std::string const& directory, ProjectOptions const& options = {});
    /// Opens the project in `directory`. Tables that are missing are created, existing ones are
    /// never altered. CUBES_DATABASE in the environment overrides the database of "cubes.toml";
    /// an SQLite file is made when it is missing only if it is named there.
    /// Throws TRkProjectException when there is no project or its "cubes.toml" makes no sense,
    /// TRkDatabaseException when the database cannot be opened.
    static Project open(std::string const& directory);

    Project(Project&&) noexcept;
    Project& operator=(Project&&) noexcept;
    /// Closes the connection; the project that was current before, if alive, is current again.
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
    /// Makes this project's connection the current one of this thread, and of threads that set none.
    void makeCurrent();

private:
    struct Parts;
    explicit Project(std::unique_ptr<Parts> parts);

    std::unique_ptr<Parts> parts_;
};

}
