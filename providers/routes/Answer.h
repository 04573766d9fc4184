#pragma once

#include "LastError.h"

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace cubes::routes {

/// Runs an operation of the border: nothing is thrown across it. The last-error text is empty
/// afterwards, or tells "cannot `action` `file`: " and the reason; the answer is then `failed`.
template <typename Answer, typename Operation>
Answer answer(char const* action, std::string const& file, Answer failed, Operation operation) noexcept {
    VlInterfaceSetLastError("");
    try {
        try {
            return operation();
        } catch (std::bad_alloc const&) {
            throw std::runtime_error("there is not enough memory");
        } catch (std::length_error const&) {
            throw std::runtime_error("it becomes too large");
        }
    } catch (std::exception const& error) {
        try {
            VlInterfaceSetLastError((std::string("cannot ") + action + " " + file + ": " + error.what()).c_str());
        } catch (...) {
            VlInterfaceSetLastError("there is not enough memory");
        }
    } catch (...) {
        VlInterfaceSetLastError("an unknown failure");
    }
    return failed;
}

}
