#pragma once

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/store/StoreError.h>

#include <concepts>
#include <exception>
#include <string>
#include <system_error>

namespace cubes::store {

/// What was asked of the store, for the errors of it.
struct Task {
    /// "store Trips/1/1/1/1"
    std::string action;
    /// The text of the entry's key, or empty.
    std::string entry;

    /// "it" when the action names that entry and no other: "remove Trips/1/1/1/1"; the entry's text
    /// elsewhere: "copy Trips/1/1/1/1 to Trips/2/1/1/1".
    std::string subject(std::string const& text) const {
        bool const isTarget = action.find(" to " + text) != std::string::npos;
        return text == entry && !isTarget && action.ends_with(" " + text) ? "it" : text;
    }
    [[noreturn]] void fail(Reason reason, std::string const& cause, std::string const& file = {}) const {
        throw StoreError(reason, action, cause, entry, file);
    }
};

Reason reasonOf(std::error_code code);
Reason reasonOf(TRkDatabaseException const& error);
/// The error's text without what was asked of the file.
std::string causeOf(TRkMatrixException const& error);

/// What a callback of the caller threw, on its way through the store.
struct CallbackFailure {
    std::exception_ptr error;
};

/// Throws the exception being handled as a StoreError about the task; a StoreError and a CallbackFailure as they are.
[[noreturn]] void rethrow(Task const& task);

/// Does `work`; what goes wrong in it becomes a StoreError about the task.
template <typename Work>
auto reporting(Task const& task, Work const& work) -> decltype(work()) {
    try {
        return work();
    } catch (...) {
        rethrow(task);
    }
}

/// The same for a task that is described only when something goes wrong, because its text takes a look-up.
template <std::invocable Describe, typename Work>
auto reporting(Describe const& describe, Work const& work) -> decltype(work()) {
    try {
        return work();
    } catch (StoreError const&) {
        throw;
    } catch (...) {
        rethrow(describe());
    }
}

}
