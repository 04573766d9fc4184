#pragma once

#include "host/database/sqlite/WriterQueue.h"
#include "host/platform/System.h"

#include <cubes/database/TRkDatabaseException.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

struct sqlite3;
struct sqlite3_stmt;

namespace cubes::database::sqlite {

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
    /// The file's own path, without links; empty for a database in memory.
    std::string file() const;
    bool isInTransaction() const noexcept;
    /// Whether a parent process opened it, to whom it is left.
    bool isInherited() const noexcept { return forkCount_ != platform::forkCount(); }
    /// The error that the last operation on the handle left.
    TRkDatabaseException failure(std::string const& statement) const;
    void execute(std::string const& sql) const;

    /// Throws where the file was opened as one that nobody changes, and changed since.
    void requireUnchanged() const;

    /// A statement's turn to write, in fair order with all connections of ours; the transaction that it begins keeps
    /// the turn. Without effect for a statement that only reads, and inside a transaction.
    class Turn {
    public:
        /// REQUIRES: both outlive this object.
        Turn(Handle const& handle, sqlite3_stmt* statement);
        ~Turn();
        Turn(Turn const&) = delete;
        Turn& operator=(Turn const&) = delete;

    private:
        Handle const& handle_;
    };

private:
    bool canWrite() const noexcept;
    void run(sqlite3_stmt* statement, std::string const& sql) const;
    void open(std::string const& name, int flags);
    void openUnchanging();
    void prepareForUse() const;

    std::string path_;
    sqlite3* database_ = nullptr;
    unsigned long forkCount_ = platform::forkCount();
    // Set where the file is read without the means to notice writers.
    std::optional<FileState> unchanged_;
    bool isDiskFull_ = false;
    mutable WriterQueue queue_;
};

}
