#pragma once

#include "host/platform/System.h"

#include <cubes/database/TRkDatabaseException.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

struct sqlite3;

namespace cubes::database::sqlite {

/// How long one operation waits for other processes that write.
/// Tests make it shorter.
extern std::chrono::milliseconds longestWait;

/// By which a change of a database file is noticed.
struct FileState {
    std::uintmax_t size = 0;
    std::filesystem::file_time_type changed;
    /// The log or journal beside the file that holds changes; empty without one.
    std::string log;

    friend bool operator==(FileState const&, FileState const&) = default;
};

/// An open SQLite database file.
class Handle {
public:
    /// Opens the file, makes it when it is missing. A database with a log that this user may not
    /// write is opened as a file that nobody changes, where there is no log.
    /// Throws TRkDatabaseException.
    explicit Handle(std::string path);
    ~Handle();
    Handle(Handle const&) = delete;
    Handle& operator=(Handle const&) = delete;

    sqlite3* get() const noexcept { return database_; }
    bool isInTransaction() const noexcept;
    /// Whether a parent process opened it, to whom it is left.
    bool isInherited() const noexcept { return forkCount_ != platform::forkCount(); }
    /// The error that the last operation on the handle left.
    TRkDatabaseException failure(std::string const& statement) const;
    void execute(std::string const& sql) const;

    /// Throws where the file was opened as one that nobody changes, and changed since.
    void requireUnchanged() const;

private:
    void open(std::string const& name, int flags);
    void openUnchanging();
    void prepareForUse() const;

    std::string path_;
    sqlite3* database_ = nullptr;
    unsigned long forkCount_ = platform::forkCount();
    // Set where the file is read without the means to notice writers.
    std::optional<FileState> unchanged_;
    bool isDiskFull_ = false;
};

}
