#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace cubes::platform {

/// A text file that several processes append to at once. Nothing here reports a failure. Movable.
class LogFile {
public:
    /// Makes the file when it is missing. Nothing when it can't be opened.
    static std::optional<LogFile> open(std::string const& path);

    LogFile(LogFile&& other) noexcept;
    LogFile& operator=(LogFile&& other) noexcept;
    ~LogFile();

    /// Appends the text in one piece, with the platform's line ends for its "\n"; nothing of it
    /// when there is no room for the whole.
    void append(std::string_view text);

private:
    explicit LogFile(std::intptr_t native) noexcept : native_(native) {}
    void close() noexcept;

    static constexpr std::intptr_t none = -1;
    std::intptr_t native_;
};

}
