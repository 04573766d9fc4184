#pragma once

#include "host/platform/LogFile.h"

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

namespace cubes {

/// The file behind the debug log: closed between messages unless it is kept open. Any thread may
/// call. Where the file lies is found out each time it is opened.
class DebugLog {
public:
    /// The one of the process.
    static DebugLog& instance();

    /// Keeps the file open from now on, if it can be opened. True when it was open already.
    bool keepOpen();
    bool isOpen();
    /// Appends the lines in one piece.
    void append(std::string_view lines);
    /// Closes the file and takes another from now on: a path, a name in the temporary directory,
    /// or the usual one when the name is empty.
    void redirect(std::string const& name);

private:
    std::optional<platform::LogFile> opened() const;

    std::mutex mutex_;
    std::string name_;
    std::optional<platform::LogFile> file_;
};

}
