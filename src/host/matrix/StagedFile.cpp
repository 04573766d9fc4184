#include "host/matrix/StagedFile.h"

#include "host/matrix/Failure.h"
#include "host/matrix/MatrixFileWriter.h"
#include "host/matrix/OmxReader.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"

#include <algorithm>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <system_error>
#include <vector>

namespace cubes::matrix {

namespace {

constexpr char identityName[] = "cubes-id";
// A longer file cannot be an identity of 32 digits and a line end.
constexpr std::uint64_t longestIdentity = 40;

std::string const& fileTarget(std::string const& target) {
    if (target.empty()) throw std::runtime_error("the file name is empty");
    if (platform::isDirectory(target)) throw std::runtime_error("it is a directory");
    return target;
}

void requireComplete(platform::File const& file) {
    auto const written = hdf5::findRecord(file);
    if (!written || written->record.fileSize != file.size())
        throw std::runtime_error("the file is not complete after writing");
}

bool isRecordOf(std::string const& path, std::uint64_t offset) {
    try {
        return OmxReader(path).hasRecordAt(offset);
    } catch (std::exception const&) {
        return false;
    }
}

// The record, unless another program has deleted its dataset. A matrix whose structure holds needs no HDF5 to know.
std::optional<hdf5::IndexRecord> validRecord(std::string const& path) {
    auto const view = platform::FileView::open(path);
    auto found = hdf5::findRecord(view.bytes());
    if (!found) return std::nullopt;
    if (findIndex(view.bytes()) || isRecordOf(path, found->offset)) return std::move(found->record);
    return std::nullopt;
}

std::string identityPath(std::string const& directory) {
    return platform::fromPath(platform::toPath(directory) / identityName);
}

Id128 randomIdentity() {
    std::random_device device;
    Id128 id;
    for (auto& byte : id.bytes) byte = static_cast<std::uint8_t>(device());
    return id;
}

// Nothing without a file; unknown when it cannot be read or has other content.
std::optional<Id128> readIdentity(std::string const& path) {
    if (!platform::exists(path)) return std::nullopt;
    try {
        auto const file = platform::File::openForReading(path);
        std::string text(static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), longestIdentity)), '\0');
        file.readAt(0, std::as_writable_bytes(std::span(text)));
        if (text.ends_with('\n')) text.pop_back();
        return Id128::parse(text).value_or(Id128{});
    } catch (std::system_error const&) {
        return Id128{};
    }
}

void writeWhole(platform::File& file, std::string const& text) {
    file.writeAt(0, std::as_bytes(std::span(text)));
    file.flush();
}

// For file systems without hard links. Whoever reads the file before it is complete does not know the identity yet.
void makeIdentityInPlace(std::string const& path, std::string const& text) {
    auto file = platform::File::createNew(path);
    try {
        writeWhole(file, text);
    } catch (std::system_error const&) {
        // The next one to ask shall make it.
        file.close();
        platform::discardFile(path);
        throw;
    }
}

// A hard link names the complete file only if the name is free: of several that try, one succeeds.
void makeIdentity(std::string const& path) {
    std::string const text = randomIdentity().text() + "\n";
    try {
        platform::TemporaryFile temporary(path);
        writeWhole(temporary.file(), text);
        std::error_code failure;
        std::filesystem::create_hard_link(platform::toPath(temporary.path()), platform::toPath(path), failure);
        if (failure == std::errc::file_exists) return;
        if (failure) makeIdentityInPlace(path, text);
        platform::flushDirectory(platform::directoryOf(path));
    } catch (std::system_error const&) {
        // Another one has made it, or nothing can be written there and the identity stays unknown.
    }
}

}

StagedFile::StagedFile(std::string const& target, std::string action)
    : action_(std::move(action)), temporary_(std::make_unique<platform::TemporaryFile>(fileTarget(target))) {}

template <typename Work>
void StagedFile::writing(Work const& work) const {
    describingFailure(action_, target(), work);
}

void StagedFile::write(MatrixContent const& content) {
    writing([&] {
        platform::File& file = temporary_->file();
        writeMatrixFile(file, content, matrixStorage(platform::directoryOf(target())).storage);
        requireComplete(file);
        flush();
    });
}

void StagedFile::copy(std::string const& source) {
    writing([&] {
        temporary_->copyFrom(source);
        flush();
    });
}

void StagedFile::copy(std::string const& source, FileStamp const& stamp) {
    writing([&] {
        temporary_->copyFrom(source);
        hdf5::restamp(temporary_->file(), stamp);
        flush();
    });
}

void StagedFile::link(std::string const& source) {
    writing([&] {
        temporary_->linkTo(source);
        if (isToBeFlushed(target())) platform::flushFile(temporary_->path());
    });
}

void StagedFile::write(std::function<void(std::string const& path)> const& writer, FileStamp const& stamp) {
    writing([&] {
        std::string const& path = temporary_->path();
        writer(path);
        temporary_->reopen();
        if (temporary_->file().size() == 0) throw std::runtime_error("nothing was written");
        hdf5::restamp(temporary_->file(), stamp);
        flush();
    });
}

void StagedFile::flush() {
    if (isToBeFlushed(target())) temporary_->file().flush();
}

void StagedFile::publish() {
    writing([&] {
        temporary_->publish();
        isPublished_ = true;
        if (isToBeFlushed(target())) platform::flushDirectory(platform::directoryOf(target()));
    });
}

void replaceMatrixFile(std::string const& target, MatrixContent const& content, std::string const& action) {
    describingFailure(action, target, [&] {
        StagedFile staged(target, action);
        staged.write(content);
        try {
            staged.publish();
        } catch (TRkMatrixException const& error) {
            if (!staged.isPublished()) throw;
            throwFailure(action, target, platform::mayBeLost + error.Code().message(), error.Code());
        }
    });
}

FileHeader fileHeader(TRkMatrixHeader const& header) {
    return {header.Rows(), header.Columns(), header.Type(), static_cast<RkMatrixKind>(header.Kind()),
        platform::toUtf8(header.Name().str()), header.Zones(), false};
}

bool isToBeFlushed(std::string const& path) {
    return matrixStorage(platform::directoryOf(path)).durability == Durability::full;
}

std::optional<RecordedOrigin> readOrigin(std::string const& path) {
    auto const record = validRecord(path);
    if (!record) return std::nullopt;
    return RecordedOrigin{record->stamp, record->content};
}

std::optional<FileStamp> readStamp(std::string const& path) {
    auto const found = hdf5::findRecord(platform::File::openForReading(path));
    return found ? std::optional(found->record.stamp) : std::nullopt;
}

Provenance readProvenance(std::string const& path) {
    return describingFailure("cannot read matrix file", path, [&]() -> Provenance {
        auto const record = validRecord(path);
        if (!record || !record->provenance.isKnown()) return {};
        return OmxReader(path).provenance();
    });
}

Id128 directoryIdentity(std::string const& directory) {
    std::string const path = identityPath(directory);
    if (auto const known = readIdentity(path)) return *known;
    makeIdentity(path);
    return knownDirectoryIdentity(directory);
}

Id128 knownDirectoryIdentity(std::string const& directory) {
    return readIdentity(identityPath(directory)).value_or(Id128{});
}

}
