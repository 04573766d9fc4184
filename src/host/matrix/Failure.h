#pragma once

#include "host/hdf5/GuardedFile.h"
#include "host/platform/TemporaryFile.h"

#include <cubes/matrix/TRkMatrixException.h>

#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <string_view>
#include <system_error>

namespace cubes::matrix {

/// A matrix is larger than the limit, or than the memory that is available. Says nothing about a file.
class BeyondLimits : public std::length_error {
public:
    using std::length_error::length_error;
};

[[noreturn]] inline void throwFailure(
    std::string_view action, std::string const& file, std::string const& reason, std::error_code code = {}) {
    throw TRkMatrixException(std::string(action) + (file.empty() ? file : " " + file) + ": " + reason, file, code);
}

/// Runs `work` and converts its exceptions to TRkMatrixException: "cannot open matrix file /data/a.skm: it is empty".
template <typename Work>
auto describingFailure(std::string_view action, std::string const& file, Work const& work) -> decltype(work()) {
    try {
        return work();
    } catch (TRkMatrixException const&) {
        throw;
    } catch (hdf5::NoReader const& error) {
        throwFailure(action, file, error.what(), std::make_error_code(std::errc::resource_unavailable_try_again));
    } catch (std::bad_alloc const&) {
        throwFailure(action, file, "not enough memory", std::make_error_code(std::errc::not_enough_memory));
    } catch (BeyondLimits const& error) {
        throwFailure(action, file, error.what(), std::make_error_code(std::errc::not_enough_memory));
    } catch (std::system_error const& error) {
        // The system's message alone if it concerns this file or the temporary file that replaces it.
        std::string_view const text = error.what();
        bool const sameFile =
            text.find(" " + file + ":") != std::string_view::npos || platform::mentionsTemporaryFile(text);
        throwFailure(action, file, sameFile ? error.code().message() : error.what(), error.code());
    } catch (std::exception const& error) {
        throwFailure(action, file, error.what());
    }
}

}
