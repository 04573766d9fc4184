#pragma once

#include <cubes/Export.h>
#include <cubes/text/TRkException.h>

#include <string>
#include <system_error>

/// An error of the matrix layer: "cannot <do what> <file>: <cause>".
class CUBES_API TRkMatrixException : public TRkException {
public:
    TRkMatrixException(std::string const& message, std::string file, std::error_code code = {});
    TRkMatrixException(TRkMatrixException const&);
    TRkMatrixException& operator=(TRkMatrixException const&);
    ~TRkMatrixException() override;

    /// The file concerned; empty for a matrix in memory.
    std::string const& File() const noexcept { return file_; }
    /// The system's error, as std::errc::no_space_on_device; std::errc::not_enough_memory also for a matrix beyond
    /// the limits (see MatrixLimits.h). Empty when the cause is the content of the file.
    std::error_code Code() const noexcept { return code_; }

private:
    std::string file_;
    std::error_code code_;
};
