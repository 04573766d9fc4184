#pragma once

#include <cubes/matrix/TRkMatrixException.h>

#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

namespace cubes::matrix {

[[noreturn]] inline void throwFailure(char const* action, std::string const& file, std::string const& reason) {
    throw TRkMatrixException(std::string(action) + " " + file + ": " + reason, file);
}

/// Does `work`; what goes wrong in it becomes a TRkMatrixException: "cannot open matrix file
/// /data/a.skm: it is empty".
template <typename Work>
auto describingFailure(char const* action, std::string const& file, Work const& work) -> decltype(work()) {
    try {
        return work();
    } catch (TRkMatrixException const&) {
        throw;
    } catch (std::bad_alloc const&) {
        throwFailure(action, file, "not enough memory");
    } catch (std::system_error const& error) {
        // The system's words alone where they are about this very file.
        bool const sameFile = std::string_view(error.what()).find(" " + file + ":") != std::string_view::npos;
        throwFailure(action, file, sameFile ? error.code().message() : error.what());
    } catch (std::exception const& error) {
        throwFailure(action, file, error.what());
    }
}

}
