#pragma once

#include "LastError.h"

#include <atomic>
#include <exception>
#include <new>
#include <stdexcept>
#include <string>
#include <system_error>

/// The provider's interface to the library: reference-counted objects, and operations that never throw.
namespace cubes::routes {

/// An object that crosses the interface. Its reference count begins at 0: one release deletes the factory's object
/// unless references were added in between.
template <typename Interface>
class Counted : public Interface {
public:
    Counted() = default;
    Counted(Counted const&) = delete;
    Counted& operator=(Counted const&) = delete;

    void addRef() final { ++references_; }
    long release() final {
        long const left = --references_;
        if (left < 1) delete this;
        return left;
    }

protected:
    virtual ~Counted() = default;

private:
    std::atomic<long> references_ = 0;
};

/// Sets the last error to "cannot `action` `file`: `reason`".
inline void reportFailure(char const* action, std::string const& file, char const* reason) noexcept {
    try {
        VlInterfaceSetLastError((std::string("cannot ") + action + " " + file + ": " + reason).c_str());
    } catch (std::exception const&) {
        VlInterfaceSetLastError(reason);
    }
}

/// Runs an operation of the interface and returns its result, or `failed` when it throws. The last error is empty
/// afterwards, or describes the failure.
template <typename Answer, typename Operation>
Answer answer(char const* action, std::string const& file, Answer failed, Operation operation) noexcept {
    VlInterfaceSetLastError("");
    try {
        return operation();
    } catch (std::bad_alloc const&) {
        reportFailure(action, file, "not enough memory");
    } catch (std::length_error const&) {
        reportFailure(action, file, "too large");
    } catch (std::system_error const& error) {
        // Its text names the file again, or a temporary one.
        reportFailure(action, file, error.code().message().c_str());
    } catch (std::exception const& error) {
        reportFailure(action, file, error.what());
    } catch (...) {
        reportFailure(action, file, "unknown reason");
    }
    return failed;
}

}
