#include "store/EntryWriting.h"

#include "catalogue/EntryFile.h"
#include "catalogue/Tables.h"
#include "host/database/Session.h"
#include "host/database/SqlState.h"
#include "host/database/Transaction.h"
#include "host/matrix/StagedFile.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/System.h"
#include "host/platform/TemporaryFile.h"

#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include <algorithm>
#include <chrono>
#include <memory>
#include <set>
#include <thread>

namespace cubes::store {

using catalogue::kindOf;
using matrix::isToBeFlushed;
using matrix::StagedFile;
using matrix::WriteLock;

namespace {

// Keeps the file that is replaced under a second name, and puts it back unless the new one is to stay.
class Replaced {
public:
    explicit Replaced(StagedFile const& staged) : staged_(staged) {
        if (!platform::isPresent(staged.target())) return;
        aside_.emplace(staged.target(), platform::TemporaryFile::Purpose::keepOld);
        aside_->linkTo(staged.target());
    }
    ~Replaced() {
        try {
            if (!stays_ && staged_.isPublished()) putBack();
        } catch (std::system_error const&) {
            // The error that led here is the one to report; the old file lies under its second name.
            if (aside_) aside_->leave();
        }
    }
    Replaced(Replaced const&) = delete;
    Replaced& operator=(Replaced const&) = delete;

    void stay(bool stays = true) noexcept { stays_ = stays; }
    /// Whether there was a file.
    bool hasOld() const noexcept { return aside_.has_value(); }

private:
    void putBack() {
        if (aside_)
            aside_->publish();
        else
            platform::discardFile(staged_.target());
    }

    StagedFile const& staged_;
    std::optional<platform::TemporaryFile> aside_;
    bool stays_ = false;
};

matrix::MatrixContent contentOf(TRkMatrix const& matrix, catalogue::Kind const& kind) {
    matrix::MatrixContent content;
    content.header = matrix::fileHeader(matrix.Header());
    content.header.name.clear();
    content.header.type = kind.matrixType;
    if (kind.isResult || matrix.Header().Kind() <= catalogue::lastCubeKind) content.header.kind = kind.matrixKind;
    content.header.selectedLink = dynamic_cast<TRkVLSelectedLinkMatrix const*>(matrix.Body()) != nullptr;
    content.elements = matrix.Elements().data();
    return content;
}

// Who stored the entry that is being removed may hold the lock for another moment, and on Windows a check does. Null
// when it is held for longer.
std::unique_ptr<WriteLock> lockSoon(std::string const& file) {
    constexpr int attempts = 50;
    constexpr std::chrono::milliseconds pause(2);
    for (int attempt = 0; attempt < attempts; ++attempt) {
        try {
            return std::make_unique<WriteLock>(file, WriteLock::Purpose::create);
        } catch (matrix::LockRefused const&) {
            std::this_thread::sleep_for(pause);
        }
    }
    return nullptr;
}

bool mayBeRead(std::string const& file) {
    try {
        platform::File::openForReading(file);
        return true;
    } catch (std::system_error const&) {
        return false;
    }
}

// Replaces the target. Returns the error of a flush that failed afterwards.
std::optional<TRkMatrixException> publish(StagedFile& staged) {
    try {
        staged.publish();
        return std::nullopt;
    } catch (TRkMatrixException const& error) {
        if (!staged.isPublished()) throw;
        return error;
    }
}

}

std::optional<EntryInfo> EntryWriting::find(EntryKey const& key) const {
    auto rows = tables_.rows(key.isResult());
    if (!rows->locate(key.numbers())) return std::nullopt;
    return tables_.info(rows, key.isResult(), names_);
}

EntryInfo EntryWriting::require(Task const& task, EntryKey const& key) const {
    auto found = find(key);
    if (!found) missing(task, key);
    requireOwn(task, key);
    return *std::move(found);
}

void EntryWriting::missing(Task const& task, EntryKey const& key) const {
    auto const name = text(key);
    Task{task.action, name}.fail(
        Reason::notFound, task.subject(name) == "it" ? "there is no such entry" : "there is no entry " + name);
}

void EntryWriting::outside(Task const& task, EntryInfo const& entry, char const* advice) const {
    auto const row = task.subject(entry.text) == "it" ? std::string("its row") : "the row of " + entry.text;
    Task{task.action, entry.text}.fail(Reason::outsideDirectory, row + " names the file \"" + entry.storedName +
                                                                     "\", which is not inside the directory " +
                                                                     tables_.directory(entry.key.isResult()) + advice);
}

std::string EntryWriting::requireFile(Task const& task, EntryInfo const& entry) const {
    if (entry.file.empty()) outside(task, entry, "");
    if (!platform::isPresent(entry.file))
        Task{task.action, entry.text}.fail(Reason::notFound, "there is no file " + entry.file, entry.file);
    return entry.file;
}

void EntryWriting::requireOwn(Task const& task, EntryKey const& key) const {
    if (auto contents = tables_.contents(key.isResult())) requireOwn(task, key, *contents);
}

void EntryWriting::requireOwn(Task const& task, EntryKey const& key, Rows& contents) const {
    auto const recorded = tables_.recordedDirectory(key, contents);
    if (!recorded.isKnown()) return;
    auto const own = tables_.identity(key.isResult());
    if (!own.isKnown() || own == recorded || isStoredHere(key, recorded) || !tables_.hasOtherProjects()) return;
    auto const name = text(key);
    Task{task.action, name}.fail(Reason::otherDirectory,
        "the file of " + name + " belongs to another project that shares the database (directory " + recorded.text() +
            "); do it in that project");
}

// A directory that lost its "cubes-id" has another identity than was recorded. The table of results
// belongs to this project alone.
bool EntryWriting::isStoredHere(EntryKey const& key, hdf5::Id128 const& recorded) const {
    if (key.isResult()) return true;
    auto rows = tables_.rows(false);
    if (!rows->locate(key.numbers())) return false;
    auto const file = tables_.path(key, rows->filename());
    if (!platform::isRegularFile(file)) return false;
    auto const stamp = matrix::readStamp(file);
    return stamp && stamp->directory == recorded;
}

void EntryWriting::requireStorable(Task const& task, EntryKey const& key) const {
    auto const* const kind = catalogue::findKind(key.cube());
    bool const isResult = kind && kind->isResult;
    if (isResult != key.isResult())
        task.fail(Reason::invalidKey, isResult ? "keys of results have a result and an iteration"
                                               : "only results have a result and an iteration");
    auto const parts = key.parts();
    constexpr std::size_t partsFromOne = 4;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        short const least = i < partsFromOne ? 1 : 0;
        if (parts[i] < least)
            task.fail(Reason::invalidKey, std::string(catalogue::keyColumns[i + 1]) + " must be a number from " +
                                              std::to_string(least) + " to 32767, not " + std::to_string(parts[i]));
    }
    requireCube(task, key);
}

// Asks the database each time: another program may have removed the cube.
void EntryWriting::requireCube(Task const& task, EntryKey const& key) const {
    if (catalogue::findKind(key.cube()) || names_.locate(key.cube())) return;
    task.fail(Reason::notFound, "there is no cube " + std::to_string(key.cube()) + "; add it first");
}

void EntryWriting::requireReplaceable(Task const& task, EntryInfo const& existing, OnExisting exists) const {
    if (exists == OnExisting::fail) task.fail(Reason::alreadyExists, task.subject(existing.text) + " already exists");
    requireFree(task, existing);
    requireOwn(task, existing.key);
}

void EntryWriting::requireFree(Task const& task, EntryInfo const& entry) const {
    if (entry.users == 0) return;
    Task{task.action, entry.text}.fail(Reason::inUse, task.subject(entry.text) + " is in use; try again later");
}

std::string EntryWriting::targetOf(
    Task const& task, EntryKey const& key, std::optional<EntryInfo> const& existing) const {
    if (!existing) return tables_.path(key, catalogue::newFileName(key.numbers()));
    if (existing->file.empty()) outside(task, *existing, "; remove the entry first");
    return existing->file;
}

hdf5::FileStamp EntryWriting::stampOf(EntryKey const& key) const {
    auto const name = names_.name(key.cube());
    auto const parts = key.parts();
    return {tables_.identity(key.isResult()), platform::toUtf8(name ? name->str() : kindOf(key.cube()).word),
        key.cube(), {parts.begin(), parts.end()}};
}

// The entry is stored whether these succeed or not: what is recorded can be read from the file.

void EntryWriting::commitRecord(database::Transaction& transaction) {
    try {
        transaction.commit();
    } catch (TRkDatabaseException const&) {
    }
}

void EntryWriting::recordFile(EntryKey const& key, ContentRecord const& record) const {
    try {
        tables_.record(key, record);
    } catch (TRkDatabaseException const&) {
    }
}

void EntryWriting::requireDirectory(Task const& task, std::string const& directory) {
    if (!platform::isDirectory(directory))
        task.fail(Reason::notFound, "the directory " + directory + " is missing; restore it or create it", directory);
}

void EntryWriting::store(Task const& task, EntryKey const& key, Change const& change, Write const& write) const {
    requireStorable(task, key);
    auto const existing = find(key);
    std::string const target = targetOf(task, key, existing);
    if (existing) requireReplaceable(task, *existing, change.exists);
    if (kindOf(key.cube()).holdsRoutes) platform::createDirectories(platform::directoryOf(target));
    requireDirectory(task, platform::directoryOf(target));
    std::optional<WriteLock> source;
    if (change.movedFrom) {
        if (platform::isSamePath(change.movedFrom->file, target))
            task.fail(Reason::file, "the rows of both entries name the same file", target);
        source.emplace(change.movedFrom->file, WriteLock::Purpose::create);
    }
    auto const lock = lockSoon(target);
    if (!lock) throw matrix::LockRefused(target);
    if (platform::isDirectory(target)) task.fail(Reason::file, "it is a directory", target);

    StagedFile staged(target);
    write(staged);
    auto const record = tables_.recordOf(key, staged.path());
    auto const late = commit(task, key, change, staged, record);
    auto const left = change.movedFrom ? removeContent(*change.movedFrom) : Left();
    if (late) task.fail(reasonOf(late->Code()), platform::mayBeLost + causeOf(*late), target);
    if (left)
        task.fail(left->reason, "it is done, but the file of " + change.movedFrom->text + " stays: " + left->cause,
            change.movedFrom->file);
}

std::optional<TRkMatrixException> EntryWriting::commit(
    Task const& task, EntryKey const& key, Change change, StagedFile& staged, ContentRecord const& record) const {
    tables_.requireContentTable(key.isResult());
    database::Transaction transaction(tables_.session());
    if (change.movedFrom) {
        // Another program may have set the parent while the file was copied.
        auto const taken = takeRow(task, *change.movedFrom);
        if (key.isResult()) change.parentage.parent = taken.parent;
    }
    auto const rowChange = changeRow(task, key, change, staged.target());
    bool const changesRows = rowChange != RowChange::none || change.movedFrom;
    std::optional<Replaced> replaced;
    if (changesRows) replaced.emplace(staged);
    auto late = publish(staged);
    // The file that a removed entry left must not come back with the new row, whatever the rule of the directory.
    if (rowChange == RowChange::added && replaced->hasOld())
        platform::flushDirectory(platform::directoryOf(staged.target()));
    recordFile(key, record);
    if (!changesRows) {
        commitRecord(transaction);
        return late;
    }
    try {
        transaction.commit();
    } catch (TRkDatabaseException const& error) {
        if (!mayBeCommitted(error)) throw;
        // When that cannot be found out, the new file stays: there must be no row without a file.
        replaced->stay();
        if (!isCommitted(task, key, change)) {
            replaced->stay(false);
            throw;
        }
    }
    replaced->stay();
    return late;
}

// The server may have committed although its answer was lost.
bool EntryWriting::mayBeCommitted(TRkDatabaseException const& error) const {
    return error.SqlState() == database::sqlstate::connectionLost && !tables_.session().isInTransaction();
}

bool EntryWriting::isCommitted(Task const& task, EntryKey const& key, Change const& change) const {
    try {
        auto const now = find(key);
        if (!now || (change.movedFrom && find(change.movedFrom->key))) return false;
        return !change.parentage.isReplaced || now->parent == change.parentage.parent;
    } catch (TRkDatabaseException const& error) {
        task.fail(Reason::database,
            "the connection was lost during the commit, and it is not known whether the rows were changed; the new "
            "file is stored; look at the entry when the database can be reached again (" +
                std::string(error.what()) + ")");
    }
}

// What others did to the entry while the file was written counts: the row is read again, and then
// stays as it is until the transaction ends.
EntryWriting::RowChange EntryWriting::changeRow(
    Task const& task, EntryKey const& key, Change const& change, std::string const& target) const {
    auto rows = tables_.rows(key.isResult());
    auto const parent = numbersOf(change.parentage.parent);
    bool const isNew = !rows->locateAndLock(key.numbers());
    auto const existing = isNew ? std::nullopt : std::optional(tables_.info(rows, key.isResult(), names_));
    if (targetOf(task, key, existing) != target) task.fail(Reason::locked, "another program is changing it; try again");
    bool const changesParent = isNew || (change.parentage.isReplaced && existing->parent != change.parentage.parent);
    if (changesParent) requireParentable(task, key, change.parentage.parent, rows);
    if (isNew) {
        if (!rows->insert(key.numbers(), catalogue::newFileName(key.numbers()), parent))
            task.fail(Reason::locked, "another program is adding it; try again");
        requireCube(task, key);
        return RowChange::added;
    }
    requireReplaceable(task, *existing, change.exists);
    if (!changesParent) return RowChange::none;
    if (!rows->setParent(parent)) task.fail(Reason::notFound, "it was removed meanwhile");
    return RowChange::changed;
}

void EntryWriting::setParent(Task const& task, EntryKey const& key, std::optional<EntryKey> const& parent) const {
    database::Transaction transaction(tables_.session());
    auto rows = tables_.rows(true);
    if (!rows->locateAndLock(key.numbers())) missing(task, key);
    requireFree(task, tables_.info(rows, true, names_));
    requireParentable(task, key, parent, rows);
    if (!rows->setParent(numbersOf(parent))) task.fail(Reason::notFound, "it was removed meanwhile");
    transaction.commit();
}

void EntryWriting::requireParentable(
    Task const& task, EntryKey const& key, std::optional<EntryKey> const& parent, Rows const& rows) const {
    if (!parent) return;
    rows->requireParent();
    if (*parent == key) task.fail(Reason::invalidKey, "an entry cannot be its own parent");
    auto results = tables_.rows(true);
    std::set<EntryKey> seen;
    // Rows that applications wrote may form a cycle already.
    for (auto up = parent; up && up->isResult() && seen.insert(*up).second && results->locate(up->numbers());) {
        up = parentOf(results->parent());
        if (up == key) task.fail(Reason::invalidKey, text(*parent) + " was derived from " + task.subject(text(key)));
    }
}

EntryInfo EntryWriting::takeRow(Task const& task, EntryInfo const& entry) const {
    auto taken = deleteRows(task, {entry.key});
    if (taken.empty()) task.fail(Reason::notFound, task.subject(entry.text) + " was removed meanwhile");
    if (taken.front().storedName != entry.storedName)
        task.fail(Reason::locked, "another program is changing " + task.subject(entry.text) + "; try again");
    return std::move(taken.front());
}

TRkMatrix EntryWriting::read(Task const& task, EntryInfo const& entry) const {
    requireMatrix(task, entry.key);
    auto const& kind = kindOf(entry.key.cube());
    auto const file = requireFile(task, entry);
    TRkMatrix matrix(file.c_str(), 1, entry.text.c_str(), true, kind.matrixKind, lsNone, 0);
    if (matrix.IsValid()) return matrix;
    Task{task.action, entry.text}.fail(mayBeRead(file) ? Reason::damaged : Reason::file, matrix.Reason(), file);
}

void EntryWriting::requireIntact(Task const& task, TRkMatrix const& matrix) {
    if (!matrix.IsIntact()) task.fail(Reason::damaged, matrix::reasonOfDamage(matrix.FileName()), matrix.FileName());
}

void EntryWriting::put(Task const& task, EntryKey const& key, TRkMatrix const& matrix, Change const& change) const {
    requireMatrix(task, key);
    if (!matrix.IsValid()) task.fail(Reason::wrongShape, "the matrix is not valid: " + matrix.Reason());
    if (change.parentage.parent && !key.isResult()) task.fail(Reason::invalidKey, "only results have parents");
    matrix.Prepare();
    requireIntact(task, matrix);
    store(task, key, change, [&](StagedFile& staged) { write(staged, key, matrix); });
}

void EntryWriting::rewrite(Task const& task, EntryKey const& key) const {
    auto const entry = require(task, key);
    store(task, key, {OnExisting::replace, {false, std::nullopt}},
        [&](StagedFile& staged) { writeIntact(task, staged, key, entry); });
}

// The lock of the source is held by then: nobody replaces what was read.
void EntryWriting::writeIntact(
    Task const& task, StagedFile& staged, EntryKey const& key, EntryInfo const& source) const {
    auto const matrix = read(task, source);
    requireIntact(task, matrix);
    write(staged, key, matrix);
}

void EntryWriting::moveMatrix(Task const& task, EntryKey const& to, Change const& change) const {
    requireMatrix(task, change.movedFrom->key);
    requireMatrix(task, to);
    requireFile(task, *change.movedFrom);
    store(task, to, change, [&](StagedFile& staged) { writeIntact(task, staged, to, *change.movedFrom); });
}

void EntryWriting::requireMatrix(Task const& task, EntryKey const& key) const {
    if (kindOf(key.cube()).holdsRoutes)
        task.fail(Reason::invalidKey, task.subject(text(key)) + " holds routes, not a matrix");
}

void EntryWriting::write(StagedFile& staged, EntryKey const& key, TRkMatrix const& matrix) const {
    auto content = contentOf(matrix, kindOf(key.cube()));
    content.stamp = stampOf(key);
    staged.write(content);
}

void EntryWriting::putFile(
    Task const& task, EntryKey const& key, EntryStore::FileWriter const& write, Change const& change) const {
    if (!kindOf(key.cube()).holdsRoutes) task.fail(Reason::invalidKey, "it holds a matrix and no routes");
    auto const guarded = [&write](std::string const& path) {
        try {
            write(path);
        } catch (...) {
            throw CallbackFailure{std::current_exception()};
        }
    };
    store(task, key, change, [&](StagedFile& staged) { staged.write(guarded, stampOf(key)); });
}

void EntryWriting::putCopy(
    Task const& task, EntryKey const& key, std::string const& source, Change const& change) const {
    store(task, key, change, [&](StagedFile& staged) { staged.copy(source, stampOf(key)); });
}

EntryWriting::Removal::Removal(EntryWriting const& writing, Task const& task, EntryKey const& key)
    : writing_(writing), task_(task) {
    writing_.requireOwnTransaction(task_);
    entry_ = writing_.require(task_, key);
    writing_.requireFree(task_, *entry_);
    if (!entry_->file.empty() && platform::isDirectory(platform::directoryOf(entry_->file)))
        lock_.emplace(entry_->file, WriteLock::Purpose::create);
}

void EntryWriting::Removal::finish() {
    writing_.takeRow(task_, *entry_);
    requireRemoved(task_, *entry_, removeContent(*entry_));
}

EntryWriting::Obstacle::Obstacle(std::error_code code) : Obstacle(reasonOf(code), code.message()) {}

// A result may be a directory that is named like the file of an entry; others hold the files of several.
EntryWriting::Left EntryWriting::removeContent(EntryInfo const& entry) {
    try {
        if (entry.file.empty() || !platform::isPresent(entry.file)) return {};
        bool const mayBeDirectory = entry.key.isResult() && catalogue::hasEntryExtension(entry.storedName);
        if (platform::isDirectory(entry.file) && !mayBeDirectory) return Obstacle(Reason::file, "it is a directory");
        if (!entry.key.isResult() && !platform::isRegularFile(entry.file)) return {};
    } catch (std::system_error const& error) {
        return Obstacle(error.code());
    }
    bool const isRemoved =
        entry.key.isResult() ? catalogue::removeResult(entry.file) : platform::discardFile(entry.file);
    return isRemoved ? Left() : Obstacle(platform::lastSystemError());
}

void EntryWriting::requireRemoved(Task const& task, EntryInfo const& entry, Left const& left, std::size_t others) {
    if (!left) return;
    std::string const advice = others == 0
                                   ? "; delete it, or restore the entry with: cubes check --repair --yes"
                                   : "; so do " + std::to_string(others) +
                                         " more; delete them, or restore the entries with: cubes check --repair --yes";
    Task{task.action, entry.text}.fail(left->reason,
        entry.text + " is removed, but its file " + entry.file + " stays: " + left->cause + advice, entry.file);
}

// The file itself keeps its old stamp, which is only a hint.
void EntryWriting::moveFile(Task const& task, EntryKey const& to, Change const& change) const {
    std::string const source = requireFile(task, *change.movedFrom);
    store(task, to, change, [&](StagedFile& staged) {
        try {
            staged.copy(source, stampOf(to));
        } catch (TRkMatrixException const& error) {
            if (reasonOf(error.Code()) != Reason::noSpace) throw;
            staged.link(source);
        }
    });
}

void EntryWriting::remove(Task const& task, EntryKey const& key) const {
    Removal(*this, task, key).finish();
}

std::size_t EntryWriting::removeAll(Task const& task, std::vector<EntryKey> const& keys) const {
    requireOwnTransaction(task);
    auto const locks = lockRemovals(keys);
    auto const removed = deleteRows(task, keys);
    removeFiles(task, removed);
    return removed.size();
}

std::size_t EntryWriting::removeCube(Task const& task, short cube) const {
    requireOwnTransaction(task);
    database::Transaction transaction(tables_.session());
    auto rows = tables_.rows(false);
    // Nobody adds an entry until the transaction ends.
    database::ExclusiveAccess(rows.cursor()).commit();
    std::vector<EntryKey> keys;
    for (rows.cursor().SetFilterSQL(rows->ofCube(cube)); !rows.cursor().GetEof(); rows.cursor().Next())
        keys.push_back(keyOf(rows->key()));
    auto const locks = lockRemovals(keys);
    auto const removed = deleteRows(task, keys);
    if (!names_.remove(cube)) task.fail(Reason::notFound, "there is no such cube");
    transaction.commit();
    removeFiles(task, removed);
    return removed.size();
}

std::vector<RemovalLock> EntryWriting::lockRemovals(std::vector<EntryKey> const& keys) const {
    std::vector<RemovalLock> locks;
    for (bool const ofResults : {false, true})
        if (std::ranges::any_of(keys, [&](EntryKey const& key) { return key.isResult() == ofResults; }))
            locks.emplace_back(tables_.directory(ofResults));
    return locks;
}

void EntryWriting::requireOwnTransaction(Task const& task) const {
    auto const held = tables_.session().lock();
    if (tables_.session().isInTransaction())
        task.fail(Reason::database, "a transaction is under way on the project's connection, and rolling it back "
                                    "would not bring the file back; end it first");
}

// Deletes the rows in the order of their keys, so that two that remove the same entries do not deadlock.
std::vector<EntryInfo> EntryWriting::deleteRows(Task const& task, std::vector<EntryKey> keys) const {
    std::sort(keys.begin(), keys.end());
    keys.erase(std::unique(keys.begin(), keys.end()), keys.end());
    database::Transaction transaction(tables_.session());
    std::vector<EntryInfo> deleted;
    std::optional<Rows> tables[2];
    std::optional<Rows> contents[2];
    for (auto const& key : keys) {
        auto const family = key.isResult() ? 1 : 0;
        auto& rows = tables[family];
        if (!rows) {
            rows.emplace(tables_.rows(key.isResult()));
            if (auto const recorded = tables_.contents(key.isResult())) contents[family].emplace(*recorded);
        }
        if (!(*rows)->locateAndLock(key.numbers())) continue;
        auto const entry = tables_.info(*rows, key.isResult(), names_);
        requireFree(task, entry);
        if (contents[family]) requireOwn(task, key, *contents[family]);
        rows->cursor().Delete();
        deleted.push_back(entry);
    }
    tables_.forget(deleted);
    transaction.commit();
    return deleted;
}

// As many as possible; the first one that stays is reported.
void EntryWriting::removeFiles(Task const& task, std::vector<EntryInfo> const& removed) const {
    EntryInfo const* first = nullptr;
    Left why;
    std::size_t staying = 0;
    for (auto const& entry : removed) {
        auto left = removeFile(entry);
        if (!left || staying++ > 0) continue;
        first = &entry;
        why = std::move(left);
    }
    if (first) requireRemoved(task, *first, why, staying - 1);
}

// Another program may have stored the entry anew since its row was deleted, or may be storing it: then the file is its.
EntryWriting::Left EntryWriting::removeFile(EntryInfo const& entry) const {
    try {
        if (entry.file.empty() || !platform::isPresent(entry.file)) return {};
        auto const lock = lockSoon(entry.file);
        if (tables_.rows(entry.key.isResult())->locate(entry.key.numbers())) return {};
        if (lock) return removeContent(entry);
        if (platform::isBeingReplaced(entry.file)) return {};
        return Obstacle(Reason::locked, matrix::LockRefused(entry.file).what());
    } catch (TRkDatabaseException const& error) {
        return Obstacle(reasonOf(error), error.what());
    } catch (std::system_error const& error) {
        return Obstacle(error.code());
    }
}

}
