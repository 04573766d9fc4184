#include <cubes/project/TRkProjectException.h>

TRkProjectException::TRkProjectException(std::string const& message, std::string directory)
    : TRkException(message.c_str(), 0), directory_(std::move(directory)) {}

TRkProjectException::TRkProjectException(TRkProjectException const&) = default;
TRkProjectException& TRkProjectException::operator=(TRkProjectException const&) = default;
TRkProjectException::~TRkProjectException() = default;
