#include "host/matrix/SelectedLinkBody.h"

#include "host/matrix/Failure.h"
#include "host/matrix/MatrixFileWriter.h"
#include "host/matrix/OmxNames.h"
#include "host/platform/Files.h"

#include <stdexcept>

namespace cubes::matrix {

namespace {

OpenedFile zeros(TRkMatrixHeader const& header) {
    return {fileHeader(header), std::make_unique<MemoryElements>(header.Rows(), header.Columns())};
}

bool lies(int position, int count) {
    return position >= 0 && position < count;
}

}

SelectedLinkBody::SelectedLinkBody(std::string file, TRkMatrixHeader const& header)
    : Body(std::move(file)), header_(header), elements_(std::make_unique<FileBody>(this->file(), zeros(header))),
      isNew_(true), hasFile_(false) {
    if (this->file().empty()) return;
    if (platform::isDirectory(this->file())) throw std::runtime_error("it is a directory");
    temporary_ = std::make_unique<platform::TemporaryFile>(this->file());
}

SelectedLinkBody::SelectedLinkBody(std::string file, TRkMatrixHeader const& header, OpenedFile opened)
    : Body(std::move(file)), header_(header), elements_(std::make_unique<FileBody>(this->file(), std::move(opened))),
      isNew_(false), hasFile_(true) {}

void SelectedLinkBody::Add(int row, int column, float value) {
    if (!lies(row, header_.Rows()) || !lies(column, header_.Columns()))
        throwFailure("cannot add to pair", file(),
            std::to_string(row) + ", " + std::to_string(column) + ": the matrix has " + std::to_string(header_.Rows()) +
                " rows and " + std::to_string(header_.Columns()) + " columns");
    // All are read at once: the file is replaced when this is flushed, and nothing may hold it then.
    elements_->all();
    elements_->row(row)[column] += value;
    isChanged_ = true;
}

void SelectedLinkBody::Flush() const {
    if (file().empty()) return;
    if (isChanged_ || !hasFile_ || !platform::exists(file())) publish();
}

void SelectedLinkBody::publish() const {
    describingFailure("cannot write matrix file", file(), [&] {
        auto temporary = std::move(temporary_);
        if (!temporary) temporary = std::make_unique<platform::TemporaryFile>(file());
        FileHeader header = fileHeader(header_);
        header.selectedLink = true;
        writeMatrixFile(*temporary, file(), omx::table, header, elements_->all());
    });
    hasFile_ = true;
    isChanged_ = false;
}

// What is written by rows into an opened file is private to the object, as in every matrix.
float* SelectedLinkBody::writableRow(int row) {
    if (isNew_) isChanged_ = true;
    return elements_->row(row);
}

void SelectedLinkBody::assign(TRkMatrixHeader const& header, float const* elements) {
    elements_->assign(header, elements);
    if (isNew_ && !file().empty()) publish();
}

bool SelectedLinkBody::release() {
    return hasFile_ && !isChanged_ && elements_->release();
}

void SelectedLinkBody::finish(TRkMatrixHeader const&) {
    if (isChanged_) Flush();
}

}
