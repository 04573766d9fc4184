#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkException.h>

#include <string>

/// A project that cannot be created or opened: which directory, and why.
class CUBES_API TRkProjectException : public TRkException {
public:
    TRkProjectException(std::string const& message, std::string directory);
    TRkProjectException(TRkProjectException const&);
    TRkProjectException& operator=(TRkProjectException const&);
    ~TRkProjectException() override;

    std::string const& Directory() const noexcept { return directory_; }

private:
    std::string directory_;
};
