#include <cubes/store/StoreError.h>

#include "host/database/SqlState.h"
#include "host/matrix/WriteLock.h"
#include "store/Failure.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace cubes {

namespace {

struct ReasonName {
    Reason reason;
    char const* name;
};

constexpr ReasonName reasonNames[] = {
    {Reason::notFound, "notFound"},
    {Reason::alreadyExists, "alreadyExists"},
    {Reason::inUse, "inUse"},
    {Reason::locked, "locked"},
    {Reason::damaged, "damaged"},
    {Reason::wrongShape, "wrongShape"},
    {Reason::outsideDirectory, "outsideDirectory"},
    {Reason::otherDirectory, "otherDirectory"},
    {Reason::noSpace, "noSpace"},
    {Reason::readOnly, "readOnly"},
    {Reason::database, "database"},
    {Reason::noProvider, "noProvider"},
    {Reason::invalidKey, "invalidKey"},
    {Reason::file, "file"},
};

struct StateReason {
    char const* sqlState;
    Reason reason;
};

constexpr StateReason stateReasons[] = {{database::sqlstate::readOnly, Reason::readOnly},
    {database::sqlstate::missingRight, Reason::readOnly}, {database::sqlstate::diskFull, Reason::noSpace},
    {database::sqlstate::locked, Reason::locked}, {database::sqlstate::deadlock, Reason::locked}};

}

char const* nameOf(Reason reason) noexcept {
    auto const* const found = std::find_if(std::begin(reasonNames), std::end(reasonNames),
        [reason](ReasonName const& candidate) { return candidate.reason == reason; });
    return found == std::end(reasonNames) ? "unknown" : found->name;
}

StoreError::StoreError(Reason reason, std::string const& action, std::string cause, std::string entry, std::string file)
    : TRkException(("cannot " + action + ": " + cause).c_str(), 0), reason_(reason), entry_(std::move(entry)),
      file_(std::move(file)), cause_(std::move(cause)) {}

StoreError::StoreError(StoreError const&) = default;
StoreError& StoreError::operator=(StoreError const&) = default;
StoreError::~StoreError() = default;

namespace store {

Reason reasonOf(std::error_code code) {
    if (code == std::errc::no_space_on_device) return Reason::noSpace;
    for (auto const error :
        {std::errc::permission_denied, std::errc::operation_not_permitted, std::errc::read_only_file_system})
        if (code == error) return Reason::readOnly;
    return code == std::errc::no_such_file_or_directory ? Reason::notFound : Reason::file;
}

Reason reasonOf(TRkDatabaseException const& error) {
    for (auto const& known : stateReasons)
        if (error.SqlState() == known.sqlState) return known.reason;
    return Reason::database;
}

void rethrow(Task const& task) {
    try {
        throw;
    } catch (StoreError const&) {
        throw;
    } catch (CallbackFailure const&) {
        throw;
    } catch (TRkDatabaseException const& error) {
        task.fail(reasonOf(error), error.what());
    } catch (matrix::LockRefused const& error) {
        task.fail(Reason::locked, error.what(), error.file());
    } catch (TRkMatrixException const& error) {
        // Without a code of the system it is the content that is wrong.
        task.fail(error.Code() ? reasonOf(error.Code()) : Reason::damaged, causeOf(error), error.File());
    } catch (std::system_error const& error) {
        task.fail(reasonOf(error.code()), error.what());
    } catch (std::bad_alloc const&) {
        task.fail(Reason::file, "not enough memory");
    } catch (std::exception const& error) {
        task.fail(Reason::file, error.what());
    }
}

std::string causeOf(TRkMatrixException const& error) {
    std::string const text = error.what();
    std::string const place = error.File() + ": ";
    auto const at = text.find(place);
    return at == std::string::npos ? text : text.substr(at + place.size());
}

}

}
