#pragma once

#include "support/Backend.h"
#include "support/Process.h"
#include "support/TempDir.h"

#include <string>

namespace cubes::test {

/// A working directory and an empty database, in which the built tool is run as users run it.
class ToolSession {
public:
    explicit ToolSession(Backend backend);

    /// Runs a line of the shell in the working directory. "cubes" is the tool, $DATABASE the database's URL, $DATA the
    /// directory of real data, $SERVER_PORT the port on which the server requires passwords, $AS_ANYBODY the prefix
    /// that runs a command without the superuser's rights.
    ProcessResult run(std::string const& line) const;
    /// The same, printed as in a transcript: results, then messages prefixed by "! ", then the exit code in brackets
    /// unless it is 0. Parts that differ from run to run are replaced by <DIR> and <DATABASE>.
    std::string shown(std::string const& line) const;

    /// Creates the project in the working directory.
    void makeProject() const;
    void write(std::string const& name, std::string const& text) const { writeFile(directory_.file(name), text); }
    std::string read(std::string const& name) const { return readFile(directory_.file(name)); }
    std::string directory() const { return directory_.str(); }
    std::string file(std::string const& name) const { return directory_.file(name); }
    TestDatabase const& database() const { return database_; }
    /// Everything that must not change when a command fails: the files and the rows.
    std::string state() const;

private:
    TempDir directory_;
    TestDatabase database_;
};

}
