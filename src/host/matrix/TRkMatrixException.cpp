#include <cubes/matrix/TRkMatrixException.h>

TRkMatrixException::TRkMatrixException(std::string const& message, std::string file)
    : TRkException(message.c_str(), 0), file_(std::move(file)) {}

TRkMatrixException::TRkMatrixException(TRkMatrixException const&) = default;
TRkMatrixException& TRkMatrixException::operator=(TRkMatrixException const&) = default;
TRkMatrixException::~TRkMatrixException() = default;
