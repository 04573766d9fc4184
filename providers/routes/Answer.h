#pragma once

#include "LastError.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace cubes::routes {

/// Leaves "cannot `action` `file`: `reason`" in the last error.
inline void tellFailure(char const* action, std::string const& file, char const* reason) noexcept {
    try {
        VlInterfaceSetLastError((std::string("cannot ") + action + " " + file + ": " + reason).c_str());
    } catch (std::exception const&) {
        VlInterfaceSetLastError(reason);
    }
}

/// Runs an operation of the border: nothing is thrown across it. The last error is empty afterwards,
/// or tells what went wrong; then the answer is `failed`.
template <typename Answer, typename Operation>
Answer answer(char const* action, std::string const& file, Answer failed, Operation operation) noexcept {
    VlInterfaceSetLastError("");
    try {
        return operation();
    } catch (std::bad_alloc const&) {
        tellFailure(action, file, "there is not enough memory");
    } catch (std::length_error const&) {
        tellFailure(action, file, "it becomes too large");
    } catch (std::exception const& error) {
        tellFailure(action, file, error.what());
    } catch (...) {
        tellFailure(action, file, "for an unknown reason");
    }
    return failed;
}

}
