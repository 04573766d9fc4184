#pragma once

#include <cubes/Export.h>

#include <memory>
#include <string>

namespace cubes::database {
class Session;
}

namespace Pgaccess {

/// An open connection to a project's database: an embedded SQLite file or a PostgreSQL server.
///
/// Neither copyable nor movable: cursors and catalogues hold it by pointer and never own it. It
/// must outlive them. Any number of threads may use a connection and what works through it; their
/// operations run one after the other.
///
/// A forked process connects to its PostgreSQL server anew with its first statement; inside a
/// transaction, and on SQLite, it is refused with an error. There each process opens its own.
///
/// A lost server is reported by the operation that notices it, as a TRkDatabaseException that names the server; the
/// next operation reconnects, so the object works again when the server is back.
class CUBES_API TPgConnection {
public:
    /// Opens the database that `url` names: "sqlite:PATH" (created when missing) or "postgresql://...". Passwords come
    /// from the URL or from where libpq looks for them, and are never printed or stored. Throws TRkDatabaseException
    /// when the database cannot be opened.
    explicit TPgConnection(std::string const& url);
    ~TPgConnection();
    TPgConnection(TPgConnection const&) = delete;
    TPgConnection& operator=(TPgConnection const&) = delete;

    /// The URL without a password.
    std::string const& Url() const noexcept;
    /// Runs one SQL statement that returns no rows, in the backend's own dialect; for definitions and for tests.
    /// Afterwards the descriptions of tables are read again. Throws TRkDatabaseException with the statement and the
    /// database's reason.
    void Execute(std::string const& sql);

    /// The backend's side of the connection, for the library's own use.
    cubes::database::Session& Backend() const noexcept { return *session_; }

private:
    std::unique_ptr<cubes::database::Session> session_;
};

}
