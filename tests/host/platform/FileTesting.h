#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <system_error>

namespace cubes::test {

inline std::span<std::byte const> bytesOf(std::string const& text) {
    return std::as_bytes(std::span(text.data(), text.size()));
}

/// The system error that the work throws; none when it succeeds.
std::error_code failureOf(auto const& work) {
    try {
        work();
    } catch (std::system_error const& error) {
        return error.code();
    }
    return {};
}

}
