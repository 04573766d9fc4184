#include "host/matrix/Body.h"

#include "host/matrix/Failure.h"
#include "host/platform/Files.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace cubes::matrix {

namespace {

void copyElements(TRkMatrixHeader const& header, float const* from, float* to) {
    if (from == to) return;
    std::memcpy(
        to, from, static_cast<std::size_t>(header.Rows()) * static_cast<std::size_t>(header.Columns()) * sizeof(float));
}

}

MemoryBody::MemoryBody(int rows, int columns) : Body({}), elements_(rows, columns) {}

void MemoryBody::assign(TRkMatrixHeader const& header, float const* elements) {
    copyElements(header, elements, elements_.all());
}

FileBody::FileBody(std::string file, OpenedFile opened)
    : Body(std::move(file)), rows_(opened.header.rows), columns_(opened.header.columns), opened_(std::move(opened)) {}

FileBody::FileBody(std::string file, int rows, int columns) : Body(std::move(file)), rows_(rows), columns_(columns) {}

OpenedFile& FileBody::opened() {
    if (opened_) return *opened_;
    OpenedFile again = openMatrixFile(file());
    if (again.header.rows != rows_ || again.header.columns != columns_)
        throw TRkMatrixException(
            "cannot open matrix file " + file() + " again: it has been replaced by one of other dimensions", file());
    opened_ = std::move(again);
    return *opened_;
}

float* FileBody::row(int row) {
    return describingFailure("cannot read matrix file", file(), [&] { return opened().elements->row(row); });
}

float* FileBody::writableRow(int row) {
    isWritable_ = true;
    return this->row(row);
}

float* FileBody::all() {
    return describingFailure("cannot read matrix file", file(), [&] { return opened().elements->all(); });
}

float* FileBody::writableAll() {
    isWritable_ = true;
    return all();
}

bool FileBody::release() {
    opened_.reset();
    isWritable_ = false;
    return true;
}

void FileBody::assign(TRkMatrixHeader const& header, float const* elements) {
    copyElements(header, elements, writableAll());
}

// What the caller has written is not damage: then the file itself is verified, as long as it is there.
bool FileBody::isIntact() {
    bool const isReadAlone = opened().recorded.has_value();
    if (isReadAlone && agreesWithRecord()) return true;
    if (isReadAlone && !isWritable_) return false;
    return !platform::exists(file()) || isIntactFile(file());
}

bool FileBody::agreesWithRecord() {
    auto const& [header, elements, recorded] = opened();
    return !recorded->isKnown() || recorded->agreesWith(header, all());
}

NewFileBody::NewFileBody(std::string file, int rows, int columns)
    : Body(std::move(file)), rows_(rows), columns_(columns) {
    elementCount(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(columns));
    staged_.emplace(this->file());
}

MemoryElements& NewFileBody::memory() {
    if (!memory_) memory_ = std::make_unique<MemoryElements>(rows_, columns_);
    return *memory_;
}

float* NewFileBody::row(int row) {
    return published_ && !memory_ ? published_->row(row) : memory().row(row);
}

float* NewFileBody::writableRow(int row) {
    if (published_ && !memory_) return published_->writableRow(row);
    if (!published_) filled_ = true;
    return memory().row(row);
}

float* NewFileBody::all() {
    return published_ && !memory_ ? published_->all() : memory().all();
}

float* NewFileBody::writableAll() {
    if (published_ && !memory_) return published_->writableAll();
    if (!published_) filled_ = true;
    return memory().all();
}

void NewFileBody::assign(TRkMatrixHeader const& header, float const* elements) {
    publish(header, elements);
    // Rows returned before stay valid, and show the assigned elements.
    if (memory_ && memory_->all() != elements)
        std::copy_n(elements, static_cast<std::size_t>(rows_) * static_cast<std::size_t>(columns_), memory_->all());
}

void NewFileBody::publish(TRkMatrixHeader const& header, float const* elements) {
    // A second assignment starts again, as does one after a failure.
    StagedFile staged = staged_ ? std::move(*staged_) : StagedFile(file());
    staged_.reset();
    staged.write({.header = fileHeader(header), .elements = elements});
    staged.publish();
    published_.emplace(file(), rows_, columns_);
}

// More elements may be assigned to a new file, so it never counts as finished.
bool NewFileBody::release() {
    if (!published_) return false;
    memory_.reset();
    published_->release();
    return false;
}

void NewFileBody::finish(TRkMatrixHeader const& header) {
    if (filled_ && !published_) publish(header, memory().all());
}

bool NewFileBody::isIntact() {
    return !published_ || memory_ || published_->isIntact();
}

}
