#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkException.h>

#include <string>

/// An error of the matrix layer: what was asked, of which file, and why it failed.
class CUBES_API TRkMatrixException : public TRkException {
public:
    TRkMatrixException(std::string const& message, std::string file);
    TRkMatrixException(TRkMatrixException const&);
    TRkMatrixException& operator=(TRkMatrixException const&);
    ~TRkMatrixException() override;

    std::string const& File() const noexcept { return file_; }

private:
    std::string file_;
};
