#include "host/matrix/Body.h"

#include "host/matrix/Failure.h"

#include <cstring>

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
    : Body(std::move(file)), rows_(opened.header.rows), columns_(opened.header.columns),
      elements_(std::move(opened.elements)) {}

FileBody::FileBody(std::string file, int rows, int columns) : Body(std::move(file)), rows_(rows), columns_(columns) {}

Elements& FileBody::opened() {
    if (elements_) return *elements_;
    OpenedFile again = openMatrixFile(file());
    if (again.header.rows != rows_ || again.header.columns != columns_)
        throw TRkMatrixException(
            "cannot open matrix file " + file() + " again: it has been replaced by one of other dimensions", file());
    elements_ = std::move(again.elements);
    return *elements_;
}

float* FileBody::row(int row) {
    return describingFailure("cannot read matrix file", file(), [&] { return opened().row(row); });
}

float* FileBody::all() {
    return describingFailure("cannot read matrix file", file(), [&] { return opened().all(); });
}

bool FileBody::release() {
    elements_.reset();
    return true;
}

void FileBody::assign(TRkMatrixHeader const& header, float const* elements) {
    copyElements(header, elements, all());
}

}
