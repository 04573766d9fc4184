#pragma once

#include "host/platform/File.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>

namespace cubes::platform {

/// What became of a transfer to or from a child process. `ended`: the child has ended or closed its end. `silent`: not
/// a byte passed for as long as the owner waits.
enum class Transfer { done, ended, silent };

/// A program that answers over its standard input and output, which it alone shares with this process, and that reads
/// one open file. It has no other handles, no terminal and no signals of this process, and ends with this object at the
/// latest. The application's own handling of signals and children makes no difference. One thread at a time may use an
/// object.
class ChildProcess {
public:
    /// Starts the program with one argument: the number that gives it the file (see inheritedFile). Throws
    /// std::system_error when the program cannot be started.
    ChildProcess(std::string const& program, File const& file);
    ChildProcess(ChildProcess const&) = delete;
    ChildProcess& operator=(ChildProcess const&) = delete;
    ~ChildProcess();

    /// Passes all the bytes. `patience` is how long the child may pass none of them, whatever signals this process
    /// gets.
    Transfer write(std::span<std::byte const> bytes, std::chrono::milliseconds patience);
    Transfer read(std::span<std::byte> bytes, std::chrono::milliseconds patience);
    std::uint64_t id() const noexcept;

private:
    struct State;
    std::unique_ptr<State> state_;
};

// For the program that was started:

/// Makes the standard streams pass bytes unchanged, allows about so many bytes of memory more than are in use, leaves
/// no traces of a crash behind, and lets the program end as soon as its parent is gone. Throws
/// std::system_error where the system refuses a thread for that.
void prepareAsChild(std::uint64_t memory);
/// The file that the program was given.
File inheritedFile(std::string const& number);

}
