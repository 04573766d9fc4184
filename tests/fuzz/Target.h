#pragma once

#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace cubes::fuzz {

/// A reader that any bytes may be given to: it accepts them or refuses them with a reason.
struct Target {
    /// Also of the folders of its inputs: corpus/NAME, pinned/NAME.
    char const* name;
    /// Reads an input. Throws BrokenPromise, or anything else that the reader must not throw.
    void (*read)(std::string const& input);
    /// Inputs that are made, not stored: files of the current version.
    std::vector<std::string> (*seeds)();
};

/// The targets of this program.
std::span<Target const> targets();

/// What was read is not what a reader may return.
class BrokenPromise : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

void require(bool isKept, char const* promise);
/// A message has a reason: it is neither empty nor ends where the reason should begin.
void requireReason(std::string const& message);

/// A path in a directory of this process, which is removed at its end.
std::string pathOf(std::string const& name);
/// The same for a file with this content.
std::string fileOf(std::string const& name, std::string const& content);

inline std::vector<std::string> noSeeds() {
    return {};
}

}
