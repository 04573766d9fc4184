#include "host/matrix/SelectedLinkBody.h"

#include "host/matrix/Failure.h"
#include "host/platform/Files.h"

#include <stdexcept>
#include <utility>

namespace cubes::matrix {

namespace {

OpenedFile zeros(TRkMatrixHeader const& header) {
    return {fileHeader(header), std::make_unique<MemoryElements>(header.Rows(), header.Columns())};
}

bool isInRange(int position, int count) {
    return position >= 0 && position < count;
}

}

SelectedLinkBody::SelectedLinkBody(std::string file, TRkMatrixHeader const& header)
    : Body(std::move(file)), header_(header), elements_(std::make_unique<FileBody>(this->file(), zeros(header))),
      isNew_(true), hasFile_(false) {
    if (!this->file().empty()) staged_.emplace(this->file());
}

SelectedLinkBody::SelectedLinkBody(std::string file, TRkMatrixHeader const& header, OpenedFile opened)
    : Body(std::move(file)), header_(header), elements_(std::make_unique<FileBody>(this->file(), std::move(opened))),
      isNew_(false), hasFile_(true) {}

void SelectedLinkBody::Add(int row, int column, float value) {
    if (!isInRange(row, header_.Rows()) || !isInRange(column, header_.Columns()))
        throwFailure("cannot add to an OD pair of", file(),
            "there is no OD pair " + std::to_string(row) + ", " + std::to_string(column) + "; the matrix has " +
                std::to_string(header_.Rows()) + " rows and " + std::to_string(header_.Columns()) + " columns");
    // All are read at once: flushing replaces the file, which must not be open then.
    elements_->all();
    elements_->writableRow(row)[column] += value;
    isChanged_ = true;
}

void SelectedLinkBody::Flush() const {
    if (file().empty()) return;
    if (isChanged_ || !hasFile_ || !platform::exists(file())) publish();
}

void SelectedLinkBody::publish() const {
    describingFailure("cannot write matrix file", file(), [&] {
        if (!elements_->isIntact()) throw std::runtime_error(reasonOfDamage("it"));
        StagedFile staged = staged_ ? std::move(*staged_) : StagedFile(file());
        staged_.reset();
        FileHeader header = fileHeader(header_);
        header.selectedLink = true;
        staged.write({.header = std::move(header), .elements = elements_->all()});
        staged.publish();
    });
    hasFile_ = true;
    isChanged_ = false;
}

// Rows written in an opened file are private to the object, as in every matrix.
float* SelectedLinkBody::writableRow(int row) {
    if (isNew_) isChanged_ = true;
    return elements_->writableRow(row);
}

float* SelectedLinkBody::writableAll() {
    if (isNew_) isChanged_ = true;
    return elements_->writableAll();
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

bool SelectedLinkBody::isIntact() {
    return elements_->isIntact();
}

}
