#include "store/EntryWriting.h"

#include "catalogue/EntryFile.h"
#include "catalogue/Tables.h"
#include "host/database/Session.h"
#include "host/database/Transaction.h"
#include "host/matrix/StagedFile.h"
#include "host/matrix/WriteLock.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/TemporaryFile.h"

#include <cubes/matrix/TRkVLSelectedLinkMatrix.h>

#include <memory>

namespace cubes::store {

using catalogue::kindOf;
using matrix::isToBeFlushed;
using matrix::StagedFile;
using matrix::WriteLock;

namespace {

// Kinds above this one belong to a matrix itself and outlive its saving in a cube.
constexpr unsigned lastCubeKind = 31;

// Keeps the file that is replaced under a second name, and puts it back unless the new one is to stay.
class Replaced {
public:
    explicit Replaced(StagedFile const& staged) : staged_(staged) {
        if (!platform::exists(staged.target())) return;
        aside_ = platform::temporaryPath(staged.target());
        platform::linkOrCopy(staged.target(), aside_);
    }
    ~Replaced() {
        try {
            if (!stays_ && staged_.isPublished()) putBack();
        } catch (std::system_error const&) {
            // The error that led here is the one to report; the old file lies under its second name.
            return;
        }
        if (!aside_.empty()) platform::discardFile(aside_);
    }
    Replaced(Replaced const&) = delete;
    Replaced& operator=(Replaced const&) = delete;

    void stay() noexcept { stays_ = true; }

private:
    void putBack() {
        if (aside_.empty())
            platform::discardFile(staged_.target());
        else
            platform::renameFile(aside_, staged_.target());
    }

    StagedFile const& staged_;
    std::string aside_;
    bool stays_ = false;
};

matrix::MatrixContent contentOf(TRkMatrix const& matrix, catalogue::Kind const& kind) {
    matrix::MatrixContent content;
    content.header = matrix::fileHeader(matrix.Header());
    content.header.name.clear();
    content.header.type = kind.matrixType;
    if (kind.isResult || matrix.Header().Kind() <= lastCubeKind) content.header.kind = kind.matrixKind;
    content.header.selectedLink = dynamic_cast<TRkVLSelectedLinkMatrix const*>(matrix.Body()) != nullptr;
    content.elements = matrix.Elements().data();
    return content;
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
    if (!found) task.fail(Reason::notFound, "there is no such entry");
    requireOwn(task, key);
    return *std::move(found);
}

std::string EntryWriting::requireFile(Task const& task, EntryInfo const& entry) const {
    if (entry.file.empty())
        task.fail(Reason::outsideDirectory, "its row names the file \"" + entry.storedName +
                                                "\", which is not inside the directory " +
                                                tables_.directory(entry.key.isResult()));
    if (!platform::exists(entry.file)) task.fail(Reason::notFound, "there is no file " + entry.file, entry.file);
    return entry.file;
}

void EntryWriting::requireOwn(Task const& task, EntryKey const& key) const {
    if (auto contents = tables_.contents(key.isResult())) requireOwn(task, key, *contents);
}

void EntryWriting::requireOwn(Task const& task, EntryKey const& key, Rows& contents) const {
    auto const recorded = tables_.recordedDirectory(key, contents);
    if (!recorded.isKnown()) return;
    auto const own = tables_.identity(key.isResult());
    if (!own.isKnown() || own == recorded || isStoredHere(key, recorded)) return;
    task.fail(Reason::otherDirectory, "the file of " + tables_.text(key) +
                                          " lies with another project that shares the database (directory " +
                                          recorded.text() + "); do it in that project");
}

// A directory that lost its "cubes-id" has another identity than was recorded, and what the cube
// objects store is not recorded at all. Results stand in a table of this project alone.
bool EntryWriting::isStoredHere(EntryKey const& key, hdf5::Id128 const& recorded) const {
    if (key.isResult()) return true;
    auto rows = tables_.rows(false);
    if (!rows->locate(key.numbers())) return false;
    auto const file = tables_.path(key, rows->filename());
    if (!platform::isRegularFile(file)) return false;
    auto const origin = matrix::readOrigin(file);
    return !origin || !origin->stamp.directory.isKnown() || origin->stamp.directory == recorded;
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
    if (!kind && !names_.name(key.cube()))
        task.fail(Reason::notFound, "there is no cube " + std::to_string(key.cube()) + "; add the cube first");
}

void EntryWriting::requireReplaceable(Task const& task, EntryInfo const& existing, OnExisting exists) const {
    if (exists == OnExisting::fail) task.fail(Reason::alreadyExists, existing.text + " already exists");
    requireFree(task, existing);
    requireOwn(task, existing.key);
}

void EntryWriting::requireFree(Task const& task, EntryInfo const& entry) const {
    if (entry.users == 0) return;
    task.fail(Reason::inUse, entry.text + " is in use; try again later");
}

std::string EntryWriting::targetOf(
    Task const& task, EntryKey const& key, std::optional<EntryInfo> const& existing) const {
    if (!existing) return tables_.path(key, catalogue::newFileName(key.numbers()));
    if (existing->file.empty())
        task.fail(Reason::outsideDirectory, "its row names the file \"" + existing->storedName +
                                                "\", which is not inside the directory " +
                                                tables_.directory(key.isResult()) + "; remove the entry first");
    return existing->file;
}

hdf5::FileStamp EntryWriting::stampOf(EntryKey const& key) const {
    auto const name = names_.name(key.cube());
    auto const parts = key.parts();
    return {tables_.identity(key.isResult()), platform::toUtf8(name ? name->str() : kindOf(key.cube()).word),
        key.cube(), {parts.begin(), parts.end()}};
}

// The entry is stored whether this succeeds or not: what is recorded can be had from the files.
void EntryWriting::recordFile(EntryKey const& key, std::string const& file) const {
    try {
        auto const origin = matrix::readOrigin(file);
        tables_.record(key, tables_.identity(key.isResult()), origin ? origin->content : hdf5::Id128());
    } catch (TRkDatabaseException const&) {
    } catch (std::system_error const&) {
    }
}

void EntryWriting::store(Task const& task, EntryKey const& key, Change const& change, Write const& write) const {
    requireStorable(task, key);
    std::string const target = targetOf(task, key, find(key));
    if (kindOf(key.cube()).holdsRoutes) platform::createDirectories(platform::directoryOf(target));
    std::optional<WriteLock> source;
    if (change.movedFrom) source.emplace(change.movedFrom->file, WriteLock::Purpose::create);
    WriteLock const lock(target, WriteLock::Purpose::create);
    // What others did before the lock was held counts.
    auto const existing = find(key);
    if (targetOf(task, key, existing) != target)
        task.fail(Reason::locked, "another program is changing the entry; try again");
    if (existing) requireReplaceable(task, *existing, change.exists);
    if (platform::isDirectory(target)) task.fail(Reason::file, "it is a directory", target);

    StagedFile staged(target);
    write(staged);
    auto const late = commit(task, key, existing, change, staged);
    if (change.movedFrom) leave(change.movedFrom->file, key, target);
    if (late)
        task.fail(reasonOf(late->Code()),
            "it is done, but may not survive a power failure: the directory was not flushed: " + causeOf(*late),
            target);
}

// A moved file keeps its content, and says where it is now once it is nowhere else.
void EntryWriting::leave(std::string const& source, EntryKey const& key, std::string const& target) const {
    platform::discardFile(source);
    try {
        auto file = platform::File::openShared(target);
        hdf5::restamp(file, stampOf(key));
    } catch (std::exception const&) {
        // The stamp is a hint: the row decides.
    }
}

std::optional<TRkMatrixException> EntryWriting::commit(Task const& task, EntryKey const& key,
    std::optional<EntryInfo> const& existing, Change const& change, StagedFile& staged) const {
    bool const changesParent = existing && change.parentage.isReplaced && existing->parent != change.parentage.parent;
    tables_.requireContentTable(key.isResult());
    if (existing && !changesParent && !change.movedFrom) {
        auto late = publish(staged);
        recordFile(key, staged.target());
        return late;
    }
    database::Transaction transaction(tables_.session());
    if (change.movedFrom) takeRow(task, *change.movedFrom);
    auto rows = tables_.rows(key.isResult());
    auto const parent = numbersOf(change.parentage.parent);
    if (!existing && !rows->insert(key.numbers(), catalogue::newFileName(key.numbers()), parent))
        task.fail(Reason::locked, "another program is adding it; try again");
    if (changesParent && (!rows->locate(key.numbers()) || !rows->setParent(parent)))
        task.fail(Reason::notFound, "it was removed meanwhile");
    Replaced replaced(staged);
    auto late = publish(staged);
    recordFile(key, staged.target());
    transaction.commit();
    replaced.stay();
    return late;
}

void EntryWriting::takeRow(Task const& task, EntryInfo const& entry) const {
    auto const taken = deleteRows(task, {entry.key});
    if (taken.empty()) task.fail(Reason::notFound, entry.text + " was removed meanwhile");
    if (taken.front().storedName != entry.storedName)
        task.fail(Reason::locked, "another program is changing " + entry.text + "; try again");
}

void EntryWriting::put(Task const& task, EntryKey const& key, TRkMatrix const& matrix, Change const& change) const {
    auto const& kind = kindOf(key.cube());
    if (kind.holdsRoutes) task.fail(Reason::invalidKey, task.entry + " holds routes, not a matrix");
    if (!matrix.IsValid()) task.fail(Reason::wrongShape, "the matrix is not valid: " + matrix.Reason());
    if (change.parentage.parent && !key.isResult()) task.fail(Reason::invalidKey, "only results have parents");
    matrix.Prepare();
    store(task, key, change, [&](StagedFile& staged) {
        auto content = contentOf(matrix, kind);
        content.stamp = stampOf(key);
        staged.write(content);
    });
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

void EntryWriting::rename(Task const& task, EntryKey const& to, Change const& change) const {
    std::string const source = requireFile(task, *change.movedFrom);
    store(task, to, change, [&](StagedFile& staged) { staged.link(source); });
}

void EntryWriting::remove(Task const& task, EntryKey const& key) const {
    auto const entry = require(task, key);
    std::optional<WriteLock> lock;
    if (!entry.file.empty() && platform::isDirectory(platform::directoryOf(entry.file)))
        lock.emplace(entry.file, WriteLock::Purpose::create);
    if (deleteRows(task, {key}).empty()) task.fail(Reason::notFound, "it was removed meanwhile");
    if (!entry.file.empty()) catalogue::removeResult(entry.file);
}

std::size_t EntryWriting::removeAll(
    Task const& task, std::vector<EntryKey> const& keys, std::optional<short> const& cube) const {
    database::Transaction transaction(tables_.session());
    auto const removed = deleteRows(task, keys);
    if (cube) names_.remove(*cube);
    transaction.commit();
    for (auto const& entry : removed) removeFile(entry);
    return removed.size();
}

std::vector<EntryInfo> EntryWriting::deleteRows(Task const& task, std::vector<EntryKey> const& keys) const {
    database::Transaction transaction(tables_.session());
    std::vector<EntryInfo> deleted;
    std::optional<Rows> tables[2];
    std::optional<Rows> contents[2];
    for (auto const& key : keys) {
        auto const family = key.isResult() ? 1 : 0;
        auto& rows = tables[family];
        if (!rows) {
            // Nobody else writes to the table until the transaction ends.
            database::ExclusiveAccess(rows.emplace(tables_.rows(key.isResult())).cursor()).commit();
            if (auto const recorded = tables_.contents(key.isResult())) contents[family].emplace(*recorded);
        }
        if (!(*rows)->locate(key.numbers())) continue;
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

// Another program may have stored the entry anew since its row was deleted; then the file is in use.
void EntryWriting::removeFile(EntryInfo const& entry) const {
    if (entry.file.empty() || !platform::exists(entry.file)) return;
    try {
        WriteLock const lock(entry.file, WriteLock::Purpose::create);
        if (!tables_.rows(entry.key.isResult())->locate(entry.key.numbers())) catalogue::removeResult(entry.file);
    } catch (matrix::LockRefused const&) {
    } catch (TRkDatabaseException const&) {
    } catch (std::system_error const&) {
        // A file without a row is harmless: the next entry of that name replaces it.
    }
}

}
