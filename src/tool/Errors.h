#pragma once

#include <exception>
#include <stdexcept>
#include <string>

namespace cubes::tool {

/// What was named does not exist, or the command is refused.
class Refusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The command line is wrong.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Something that should have worked did not: the database, the disk, a file.
class Failure : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The user or the system asked the tool to end, before anything was changed.
class Interrupted : public std::runtime_error {
public:
    Interrupted() : std::runtime_error("interrupted; nothing was changed") {}
};

/// Throws Interrupted when the tool was asked to end.
void stopIfInterrupted();

/// A file that cannot be read or written in its format. The message gives the line where it is known,
/// what was found and what was expected, but not the file's name: "line 7: found 'abc', expected a number".
class FormatError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    /// `line`: counted from 1.
    FormatError(std::size_t line, std::string const& problem);
};

/// The exit code of the tool. Scripts rely on the numbers: they are only ever added to. A tool that was asked to end
/// by a signal ends with 128 and the signal's number.
enum class ExitCode : int {
    done = 0,
    /// Not found, or refused.
    refused = 1,
    /// Wrong usage.
    usage = 2,
    /// The database, the disk or a file failed.
    failed = 3,
};

/// The exit code that the tool ends with after this error.
ExitCode exitCodeOf(std::exception const& error);

/// Why a task failed, to be printed after "cannot TASK: ": the error's text without what a lower layer could not do,
/// and with the entry and file of the error unless they are named already.
std::string causeOf(std::exception const& error, std::string const& task);

/// Print a message to standard error, one line each, with the tool's name in front.
void printError(std::string const& message);
void printWarning(std::string const& message);
void printNote(std::string const& message);

}
