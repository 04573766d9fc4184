#pragma once

#include "host/matrix/WriteLock.h"

#include <cubes/database/TRkDatabaseException.h>
#include <cubes/matrix/TRkMatrixException.h>
#include <cubes/store/StoreError.h>

#include <exception>
#include <new>
#include <string>
#include <system_error>

namespace cubes::store {

/// What was asked of the store, for the errors of it.
struct Task {
    /// "store Trips/1/1/1/1"
    std::string action;
    /// The text of the entry's key, or empty.
    std::string entry;

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

/// Does `work`; what goes wrong in it becomes a StoreError about the task, except a CallbackFailure.
template <typename Work>
auto reporting(Task const& task, Work const& work) -> decltype(work()) {
    try {
        return work();
    } catch (StoreError const&) {
        throw;
    } catch (TRkDatabaseException const& error) {
        task.fail(reasonOf(error), error.what());
    } catch (matrix::LockRefused const& error) {
        task.fail(Reason::locked, error.what(), error.file());
    } catch (TRkMatrixException const& error) {
        task.fail(error.Code() ? reasonOf(error.Code()) : Reason::file, causeOf(error), error.File());
    } catch (std::system_error const& error) {
        task.fail(reasonOf(error.code()), error.what());
    } catch (std::bad_alloc const&) {
        task.fail(Reason::file, "not enough memory");
    } catch (std::exception const& error) {
        task.fail(Reason::file, error.what());
    }
}

}
