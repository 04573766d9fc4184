#include "store/EntryWriting.h"

#include "catalogue/EntryFile.h"
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

// Undoes a step unless what follows it succeeds.
class Undo {
public:
    explicit Undo(std::function<void()> work) : work_(std::move(work)) {}
    ~Undo() {
        try {
            if (work_) work_();
        } catch (std::exception const&) {
            // The error that led here is the one to report.
        }
    }
    Undo(Undo const&) = delete;
    Undo& operator=(Undo const&) = delete;

    void dismiss() noexcept { work_ = nullptr; }

private:
    std::function<void()> work_;
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

// Routes that keep their content under another key say where they are now.
void restampFile(std::string const& path, hdf5::FileStamp const& stamp) {
    auto file = platform::File::openShared(path);
    hdf5::restamp(file, stamp);
}

void flushAfterRename(std::string const& left, std::string const& target) {
    if (!isToBeFlushed(target)) return;
    platform::flushDirectory(platform::directoryOf(target));
    if (!platform::isSamePath(platform::directoryOf(left), platform::directoryOf(target)))
        platform::flushDirectory(platform::directoryOf(left));
}

}

std::optional<EntryInfo> EntryWriting::find(EntryKey const& key) const {
    auto rows = tables_.rows(key.isResult());
    if (!rows->locate(key.numbers())) return std::nullopt;
    auto names = tables_.cubes();
    return tables_.info(rows, key.isResult(), names);
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
    if (!platform::exists(entry.file)) task.fail(Reason::notFound, "its file is missing", entry.file);
    return entry.file;
}

void EntryWriting::requireOwn(Task const& task, EntryKey const& key) const {
    auto const recorded = tables_.recordedDirectory(key);
    if (!recorded.isKnown()) return;
    auto const own = tables_.identity(key.isResult());
    if (!own.isKnown() || own == recorded) return;
    task.fail(Reason::otherDirectory, "its file lies with another project that shares the database (directory " +
                                          recorded.text() + "); do it in that project");
}

void EntryWriting::requireStorable(Task const& task, EntryKey const& key) const {
    auto const* const kind = catalogue::findKind(key.cube());
    bool const isResult = kind && kind->isResult;
    if (isResult != key.isResult())
        task.fail(Reason::invalidKey, isResult ? "keys of results have a result and an iteration"
                                               : "only results have a result and an iteration");
    auto const parts = key.parts();
    constexpr std::size_t partsFromOne = 4;
    for (std::size_t i = 0; i < parts.size(); ++i)
        if (parts[i] < (i < partsFromOne ? 1 : 0))
            task.fail(
                Reason::invalidKey, "purpose, mode, time and user run from 1 to 32767, result and iteration from 0");
    if (!kind && !tables_.cubes().locate(key.cube()))
        task.fail(Reason::notFound, "there is no cube " + std::to_string(key.cube()) + "; add the cube first");
}

void EntryWriting::requireReplaceable(Task const& task, EntryInfo const& existing, OnExisting exists) const {
    if (exists == OnExisting::fail) task.fail(Reason::alreadyExists, existing.text + " exists already");
    requireFree(task, existing);
    requireOwn(task, existing.key);
}

void EntryWriting::requireFree(Task const& task, EntryInfo const& entry) const {
    if (entry.users == 0) return;
    task.fail(Reason::inUse, entry.text + " is in use (users: " + std::to_string(entry.users) + ")");
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

bool EntryWriting::insertRow(EntryKey const& key, std::optional<EntryKey> const& parent) const {
    return tables_.rows(key.isResult())
        ->insert(key.numbers(), catalogue::newFileName(key.numbers()), numbersOf(parent));
}

void EntryWriting::deleteRow(EntryKey const& key) const {
    auto rows = tables_.rows(key.isResult());
    if (rows->locate(key.numbers())) rows.cursor().Delete();
}

void EntryWriting::setParent(EntryKey const& key, std::optional<EntryKey> const& parent) const {
    auto rows = tables_.rows(key.isResult());
    if (!rows->locate(key.numbers()) || !rows->setParent(numbersOf(parent)))
        throw TRkDatabaseException("the row was removed meanwhile", "02000");
}

hdf5::FileStamp EntryWriting::stampOf(EntryKey const& key) const {
    auto const name = tables_.cubes().name(key.cube());
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

void EntryWriting::store(
    Task const& task, EntryKey const& key, OnExisting exists, Parentage const& parentage, Stage const& stage) const {
    requireStorable(task, key);
    std::string const target = targetOf(task, key, find(key));
    if (kindOf(key.cube()).holdsRoutes) platform::createDirectories(platform::directoryOf(target));
    WriteLock const lock(target, WriteLock::Purpose::create);
    // What others did before the lock was held counts.
    auto existing = find(key);
    if (targetOf(task, key, existing) != target)
        task.fail(Reason::locked, "another program is changing the entry; try again");
    if (existing) requireReplaceable(task, *existing, exists);

    auto const publish = stage(target);
    if (!existing) {
        if (platform::removeFile(target) && isToBeFlushed(target))
            platform::flushDirectory(platform::directoryOf(target));
        if (!insertRow(key, parentage.parent)) task.fail(Reason::locked, "another program is adding it; try again");
    } else if (parentage.isReplaced && existing->parent != parentage.parent) {
        setParent(key, parentage.parent);
    }
    Undo undo([&] {
        if (!existing) return deleteRow(key);
        if (parentage.isReplaced) setParent(key, existing->parent);
    });
    publish();
    undo.dismiss();
    recordFile(key, target);
}

void EntryWriting::put(
    Task const& task, EntryKey const& key, TRkMatrix const& matrix, PutOptions const& options) const {
    auto const& kind = kindOf(key.cube());
    if (kind.holdsRoutes) task.fail(Reason::invalidKey, "it holds routes and no matrix");
    if (!matrix.IsValid()) task.fail(Reason::wrongShape, "the matrix is not valid: " + matrix.Reason());
    if (options.parent && !key.isResult()) task.fail(Reason::invalidKey, "only results have parents");
    matrix.Prepare();
    store(task, key, options.exists, {options.parent.has_value(), options.parent}, [&](std::string const& target) {
        auto staged = std::make_shared<StagedFile>(target);
        auto content = contentOf(matrix, kind);
        content.stamp = stampOf(key);
        staged->write(content);
        return [staged] { staged->publish(); };
    });
}

void EntryWriting::putFile(
    Task const& task, EntryKey const& key, EntryStore::FileWriter const& write, PutOptions const& options) const {
    if (!kindOf(key.cube()).holdsRoutes) task.fail(Reason::invalidKey, "it holds a matrix and no routes");
    store(task, key, options.exists, {options.parent.has_value(), options.parent}, [&](std::string const& target) {
        if (platform::isDirectory(target)) task.fail(Reason::file, "it is a directory", target);
        auto file = std::make_shared<platform::TemporaryFile>(target);
        try {
            write(file->path());
        } catch (...) {
            throw CallbackFailure{std::current_exception()};
        }
        restampFile(file->path(), stampOf(key));
        if (isToBeFlushed(target)) platform::flushFile(file->path());
        return [file] {
            file->publish();
            if (isToBeFlushed(file->target())) platform::flushDirectory(platform::directoryOf(file->target()));
        };
    });
}

void EntryWriting::putCopy(Task const& task, EntryKey const& key, std::string const& source, OnExisting exists) const {
    store(task, key, exists, {key.isResult(), std::nullopt}, [&](std::string const& target) {
        auto staged = std::make_shared<StagedFile>(target);
        staged->copy(source, stampOf(key));
        return [staged] { staged->publish(); };
    });
}

void EntryWriting::rename(Task const& task, EntryInfo const& from, EntryKey const& to, OnExisting exists) const {
    requireStorable(task, to);
    std::string const source = requireFile(task, from);
    std::string const target = targetOf(task, to, find(to));
    if (kindOf(to.cube()).holdsRoutes) platform::createDirectories(platform::directoryOf(target));
    WriteLock const sourceLock(source, WriteLock::Purpose::create);
    WriteLock const targetLock(target, WriteLock::Purpose::create);
    if (isToBeFlushed(target)) platform::flushFile(source);

    auto rows = tables_.rows(to.isResult());
    database::ExclusiveAccess access(rows.cursor());
    auto const existing = find(to);
    if (existing) requireReplaceable(task, *existing, exists);
    if (!existing && !insertRow(to, from.parent)) task.fail(Reason::locked, "another program is adding it; try again");
    if (existing && to.isResult()) setParent(to, from.parent);
    if (!rows->locate(from.key.numbers()) || rows->users() != 0)
        task.fail(Reason::inUse, from.text + " is in use, or was removed meanwhile");
    rows.cursor().Delete();

    // The file that is replaced waits aside until the rows are committed.
    platform::TemporaryFile aside(target);
    bool const isReplaced = platform::exists(target) && platform::renameFile(target, aside.path());
    Undo restore([&] {
        if (isReplaced) platform::renameFile(aside.path(), target);
    });
    bool const isRenamed = platform::renameFile(source, target);
    if (!isRenamed) {
        StagedFile staged(target);
        staged.copy(source);
        staged.publish();
    }
    Undo back([&] {
        if (isRenamed)
            platform::renameFile(target, source);
        else
            platform::discardFile(target);
    });
    flushAfterRename(source, target);
    access.commit();
    back.dismiss();
    restore.dismiss();

    if (!isRenamed) platform::discardFile(source);
    tables_.forget(from.key);
    restampFile(target, stampOf(to));
    recordFile(to, target);
}

void EntryWriting::remove(Task const& task, EntryKey const& key) const {
    auto const entry = require(task, key);
    std::optional<WriteLock> lock;
    if (platform::isRegularFile(entry.file)) lock.emplace(entry.file, WriteLock::Purpose::create);
    removeAll(task, {key});
}

std::size_t EntryWriting::removeAll(Task const& task, std::vector<EntryKey> const& keys) const {
    std::vector<EntryInfo> removed;
    auto names = tables_.cubes();
    std::optional<Rows> tables[2];
    // One transaction in another, so that all entries go or none.
    std::optional<database::ExclusiveAccess> outer;
    std::optional<database::ExclusiveAccess> inner;
    for (auto const& key : keys) {
        auto& rows = tables[key.isResult() ? 1 : 0];
        if (!rows) (outer ? inner : outer).emplace(rows.emplace(tables_.rows(key.isResult())).cursor());
        if (!(*rows)->locate(key.numbers())) continue;
        auto const entry = tables_.info(*rows, key.isResult(), names);
        requireFree(task, entry);
        requireOwn(task, key);
        rows->cursor().Delete();
        tables_.forget(key);
        removed.push_back(entry);
    }
    if (inner) inner->commit();
    if (outer) outer->commit();
    for (auto const& entry : removed)
        if (!entry.file.empty()) catalogue::removeResult(entry.file);
    return removed.size();
}

}
