#include "host/database/sqlite/Handle.h"

#include "host/database/LockTimeout.h"
#include "host/database/SqlState.h"
#include "host/database/sqlite/Dialect.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"

#include <sqlite3.h>

#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace cubes::database::sqlite {

namespace {

// SQLite calls it while others have the lock that it needs: 1 tries again, 0 gives up.
int waitForOthers(void* queue, int attempt) noexcept {
    return static_cast<WriterQueue*>(queue)->waitForLocks(attempt) ? 1 : 0;
}

// Repeats an operation that SQLite refuses while others write without asking the handler.
template <typename Operation>
int retryWhileBusy(WriterQueue& queue, Operation const& operation) {
    queue.begin();
    int code = operation();
    for (int attempt = 0; (code & 0xFF) == SQLITE_BUSY && queue.waitForLocks(attempt); ++attempt) code = operation();
    queue.leave(false);
    return code;
}

struct State {
    int code;
    char const* sqlState;
};

// The SQLSTATE of each of SQLite's codes that callers distinguish.
constexpr State states[] = {
    {SQLITE_CONSTRAINT_PRIMARYKEY, sqlstate::duplicateKey},
    {SQLITE_CONSTRAINT_UNIQUE, sqlstate::duplicateKey},
    {SQLITE_CONSTRAINT_ROWID, sqlstate::duplicateKey},
    {SQLITE_CONSTRAINT_NOTNULL, sqlstate::missingValue},
    {SQLITE_CONSTRAINT_CHECK, sqlstate::failedCheck},
    {SQLITE_CONSTRAINT_FOREIGNKEY, sqlstate::missingForeignKey},
    {SQLITE_CONSTRAINT_TRIGGER, sqlstate::raisedByTrigger},
    {SQLITE_BUSY, sqlstate::locked},
    {SQLITE_LOCKED, sqlstate::locked},
    {SQLITE_READONLY, sqlstate::readOnly},
    {SQLITE_FULL, sqlstate::diskFull},
    {SQLITE_CORRUPT, sqlstate::damaged},
    {SQLITE_NOTADB, sqlstate::damaged},
    {SQLITE_IOERR, sqlstate::inputOutput},
    {SQLITE_CANTOPEN, sqlstate::inputOutput},
};

char const* sqlStateOf(int code) {
    for (State const& state : states)
        if (state.code == code || state.code == (code & 0xFF)) return state.sqlState;
    return sqlstate::general;
}

// A page that cannot be read is a damaged one to SQLite.
std::string lastFailureToRead(sqlite3* database) {
    int code = 0;
    sqlite3_file_control(database, nullptr, SQLITE_FCNTL_LAST_ERRNO, &code);
    std::error_code const failure(code, std::system_category());
    return failure == std::errc::io_error ? failure.message() : std::string();
}

std::string reason(int code, sqlite3* database, std::chrono::milliseconds longestWait) {
    if (code == SQLITE_BUSY_SNAPSHOT)
        return "another connection has changed it since this transaction began to read; roll back and try again";
    if ((code & 0xFF) == SQLITE_BUSY)
        return "other connections, of this program or of others, have been writing to it for more than " +
               textOf(longestWait) + "; try again later";
    if ((code & 0xFF) == SQLITE_READONLY)
        return "it is read-only; to change it, get permission to write the file and its directory";
    if ((code & 0xFF) == SQLITE_CORRUPT) {
        auto const failure = lastFailureToRead(database);
        return failure.empty() ? "it is damaged; restore it from a backup" : "it cannot be read: " + failure;
    }
    return platform::fromUtf8(sqlite3_errmsg(database));
}

std::string whyNotOpened(std::string const& path, std::string const& reason) {
    if (platform::isDirectory(path)) return "it is a directory";
    auto const directory = platform::fromPath(platform::toPath(platform::absolutePath(path)).parent_path());
    if (!platform::isDirectory(directory)) return "the directory '" + directory + "' does not exist";
    return reason + "; check that it exists and that you may read it";
}

void lowerCase(sqlite3_context* context, int /*count*/, sqlite3_value** values) {
    auto const* const text = reinterpret_cast<char const*>(sqlite3_value_text(values[0]));
    if (!text) return sqlite3_result_null(context);
    try {
        std::string const lower = platform::lowerCase({text, static_cast<std::size_t>(sqlite3_value_bytes(values[0]))});
        sqlite3_result_text(context, lower.data(), static_cast<int>(lower.size()), SQLITE_TRANSIENT);
    } catch (std::bad_alloc const&) {
        sqlite3_result_error_nomem(context);
    }
}

// SQLite takes a file of one byte for an empty one and writes over it.
void refuseFragment(std::string const& path) {
    constexpr std::uintmax_t header = 100;
    std::error_code error;
    auto const size = std::filesystem::file_size(platform::toPath(path), error);
    if (!error && size > 0 && size < header)
        throw TRkDatabaseException("SQLite database '" + path + "': file is not a database", sqlstate::damaged);
}

// The file with a parameter, as SQLite takes it; characters with a meaning in it are escaped.
std::string immutableUri(std::string const& path) {
    auto const generic = platform::toPath(platform::absolutePath(path)).generic_u8string();
    std::string uri = generic.starts_with(u8'/') ? "file://" : "file:///";
    for (char8_t const c : generic) {
        if (c == u8'%' || c == u8'?' || c == u8'#')
            uri += c == u8'%' ? "%25" : c == u8'?' ? "%3f" : "%23";
        else
            uri += static_cast<char>(c);
    }
    return uri + "?immutable=1";
}

// An empty log holds nothing, as one that was created on a full disk.
bool holdsSomething(std::string const& path) {
    std::error_code missing;
    auto const size = std::filesystem::file_size(platform::toPath(path), missing);
    return !missing && size > 0;
}

FileState stateOf(std::string const& path) {
    std::error_code error;
    auto const file = platform::toPath(path);
    FileState state;
    state.size = std::filesystem::file_size(file, error);
    state.changed = std::filesystem::last_write_time(file, error);
    for (char const* const suffix : {"-wal", "-journal"})
        if (holdsSomething(path + suffix)) state.log = path + suffix;
    return state;
}

bool isDiskFull(std::string const& path) {
    constexpr std::uintmax_t roomForALog = 65536;
    std::error_code error;
    auto const directory = platform::toPath(platform::absolutePath(path)).parent_path();
    auto const space = std::filesystem::space(directory, error);
    return !error && space.available < roomForALog;
}

// Reading a database with a log needs files beside it; whoever may not make them gets one of these.
bool needsToWrite(TRkDatabaseException const& error) {
    return error.SqlState() == sqlstate::readOnly || error.SqlState() == sqlstate::inputOutput;
}

}

Handle::Handle(std::string path) : path_(std::move(path)), queue_({}, givenLockTimeout().value_or(defaultLockTimeout)) {
    refuseFragment(path_);
    try {
        open(platform::toUtf8(path_), SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
        try {
            prepareForUse();
        } catch (TRkDatabaseException const& error) {
            if (!needsToWrite(error) || !platform::exists(path_)) throw;
            openUnchanging();
        }
    } catch (...) {
        sqlite3_close_v2(database_);
        throw;
    }
}

void Handle::open(std::string const& name, int flags) {
    int const code =
        sqlite3_open_v2(name.c_str(), &database_, flags | SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE, nullptr);
    if (code != SQLITE_OK)
        throw TRkDatabaseException(
            "SQLite database '" + path_ + "': " + whyNotOpened(path_, reason(code, database_, queue_.longestWait())),
            sqlStateOf(code));
    queue_ = WriterQueue(file(), queue_.longestWait());
}

// Without its log, the file holds everything as long as nobody writes to it, which is checked
// after each statement.
void Handle::openUnchanging() {
    unchanged_ = stateOf(path_);
    isDiskFull_ = isDiskFull(path_);
    if (!unchanged_->log.empty())
        throw TRkDatabaseException("SQLite database '" + path_ + "': '" + unchanged_->log +
                                       "' holds changes of a program that is writing, or was stopped while it wrote, "
                                       "and this user may not write the directory; try again later or as a user who "
                                       "may",
            sqlstate::readOnly);
    sqlite3_close_v2(std::exchange(database_, nullptr));
    open(immutableUri(path_), SQLITE_OPEN_READONLY | SQLITE_OPEN_URI);
    prepareForUse();
}

void Handle::requireUnchanged() const {
    if (!unchanged_ || stateOf(path_) == *unchanged_) return;
    throw TRkDatabaseException("SQLite database '" + path_ +
                                   "': another program has changed it, and this user may not write its directory; open "
                                   "it again",
        sqlstate::fileChanged);
}

// Statements that a cursor still holds keep what they need until they are gone.
Handle::~Handle() {
    if (isInherited()) return;
    if (canWrite()) queue_.removeFile();
    sqlite3_close_v2(database_);
}

std::string Handle::file() const {
    char const* const file = sqlite3_db_filename(database_, "main");
    return platform::fromUtf8(file ? file : "");
}

bool Handle::isInTransaction() const noexcept {
    return sqlite3_get_autocommit(database_) == 0;
}

void Handle::prepareForUse() const {
    sqlite3_busy_handler(database_, waitForOthers, &queue_);
    sqlite3_create_function(
        database_, lowerCaseFunction, 1, SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, lowerCase, nullptr, nullptr);
    // The first question that reads the file finds out whether it is a database at all.
    execute("PRAGMA schema_version");
    if (sqlite3_db_readonly(database_, "main") == 1) return;
    // With a log beside it, the file can be read while another process writes, and a commit
    // flushes once. Where the file system does not let the log be shared SQLite does without.
    retryWhileBusy(
        queue_, [this] { return sqlite3_exec(database_, "PRAGMA journal_mode = WAL", nullptr, nullptr, nullptr); });
    execute("PRAGMA synchronous = FULL");
}

TRkDatabaseException Handle::failure(std::string const& statement) const {
    int const code = sqlite3_extended_errcode(database_);
    if ((code & 0xFF) == SQLITE_READONLY && isDiskFull_)
        return {"SQLite database '" + path_ +
                    "': the disk was full when it was opened, so that it can only be read; make room on the disk and "
                    "open it again",
            sqlstate::diskFull, statement};
    std::string const message = "SQLite database '" + path_ + "': " + reason(code, database_, queue_.longestWait());
    bool const noTable = std::string_view(sqlite3_errmsg(database_)).starts_with("no such table");
    return {message, noTable ? sqlstate::missingTable : sqlStateOf(code), statement};
}

// A database in memory has no file.
bool Handle::canWrite() const noexcept {
    char const* const file = sqlite3_db_filename(database_, "main");
    return file && *file && sqlite3_db_readonly(database_, "main") == 0;
}

// A transaction that has begun to read must not wait: its snapshot would be outdated by then, and in the journal mode
// without shared memory a writer waits for it.
Handle::Turn::Turn(Handle const& handle, sqlite3_stmt* statement) : handle_(handle) {
    handle_.queue_.begin();
    bool const begins = sqlite3_txn_state(handle.database_, "main") == SQLITE_TXN_NONE;
    if (begins && sqlite3_stmt_readonly(statement) == 0 && handle.canWrite()) handle.queue_.enter();
}

Handle::Turn::~Turn() {
    handle_.queue_.leave(sqlite3_txn_state(handle_.database_, "main") == SQLITE_TXN_WRITE);
}

void Handle::run(sqlite3_stmt* statement, std::string const& sql) const {
    Turn const turn(*this, statement);
    int code = sqlite3_step(statement);
    while (code == SQLITE_ROW) code = sqlite3_step(statement);
    sqlite3_finalize(statement);
    if (code != SQLITE_DONE) throw failure(sql);
}

void Handle::execute(std::string const& sql) const {
    std::string const text = platform::toUtf8(sql);
    for (char const* rest = text.c_str(); *rest != '\0';) {
        sqlite3_stmt* statement = nullptr;
        if (sqlite3_prepare_v2(database_, rest, -1, &statement, &rest) != SQLITE_OK) throw failure(sql);
        // White space and comments are no statement.
        if (statement) run(statement, sql);
    }
}

}
