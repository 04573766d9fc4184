#pragma once

#include <cubes/matrix/TRkMatrixException.h>

#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <system_error>

namespace cubes::matrix {

/// Does `work`; what goes wrong in it becomes a TRkMatrixException: "cannot open matrix file
/// /data/a.skm: it is empty".
template <typename Work>
auto describingFailure(char const* action, std::string const& file, Work const& work) -> decltype(work()) {
    std::string const what = std::string(action) + " " + file + ": ";
    try {
        return work();
    } catch (TRkMatrixException const&) {
        throw;
    } catch (std::bad_alloc const&) {
        throw TRkMatrixException(what + "not enough memory", file);
    } catch (std::system_error const& error) {
        // The system's words alone where they are about this very file.
        bool const sameFile = std::string_view(error.what()).find(" " + file + ":") != std::string_view::npos;
        throw TRkMatrixException(what + (sameFile ? error.code().message() : error.what()), file);
    } catch (std::exception const& error) {
        throw TRkMatrixException(what + error.what(), file);
    }
}

}
