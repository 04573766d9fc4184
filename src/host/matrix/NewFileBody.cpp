#include "host/matrix/NewFileBody.h"

#include "host/matrix/MatrixFileWriter.h"
#include "host/matrix/OmxNames.h"
#include "host/platform/Files.h"

#include <algorithm>
#include <stdexcept>

namespace cubes::matrix {

NewFileBody::NewFileBody(std::string file, int rows, int columns)
    : Body(std::move(file)), rows_(rows), columns_(columns) {
    elementCount(static_cast<std::uint64_t>(rows), static_cast<std::uint64_t>(columns));
    if (this->file().empty()) throw std::runtime_error("there is no file name");
    if (platform::isDirectory(this->file())) throw std::runtime_error("it is a directory");
    temporary_.emplace(this->file());
}

MemoryElements& NewFileBody::memory() {
    if (!memory_) memory_ = std::make_unique<MemoryElements>(rows_, columns_);
    return *memory_;
}

float* NewFileBody::row(int row) {
    return published_ && !memory_ ? published_->row(row) : memory().row(row);
}

float* NewFileBody::writableRow(int row) {
    if (!published_) filled_ = true;
    return this->row(row);
}

float* NewFileBody::all() {
    return published_ && !memory_ ? published_->all() : memory().all();
}

void NewFileBody::assign(TRkMatrixHeader const& header, float const* elements) {
    publish(header, elements);
    // Rows handed out before stay valid, and show what was assigned.
    if (memory_ && memory_->all() != elements)
        std::copy_n(elements, static_cast<std::size_t>(rows_) * static_cast<std::size_t>(columns_), memory_->all());
}

void NewFileBody::publish(TRkMatrixHeader const& header, float const* elements) {
    if (!temporary_) temporary_.emplace(file());
    writeMatrixFile(*temporary_, file(), omx::table, fileHeader(header), elements);
    temporary_.reset();
    published_.emplace(file(), rows_, columns_);
}

// More may be assigned to a new file, so that it never counts as finished.
bool NewFileBody::release() {
    if (!published_) return false;
    memory_.reset();
    published_->release();
    return false;
}

void NewFileBody::finish(TRkMatrixHeader const& header) {
    if (filled_ && !published_) publish(header, memory().all());
}

}
