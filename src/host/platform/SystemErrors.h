#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace cubes::platform {

/// The calling thread's last operating-system error: GetLastError, or errno off Windows.
std::uint32_t lastError();
void setLastError(std::uint32_t code);

/// The system's own text for an error number, as the system gives it (with its line end on
/// Windows); nothing when the system does not know the number.
std::optional<std::string> errorText(std::uint32_t code);

/// Leaves the calling thread's last error as it was, whatever fails meanwhile.
class LastErrorKept {
public:
    LastErrorKept() : code_(lastError()) {}
    ~LastErrorKept() { setLastError(code_); }
    LastErrorKept(LastErrorKept const&) = delete;
    LastErrorKept& operator=(LastErrorKept const&) = delete;

private:
    std::uint32_t code_;
};

}
