#pragma once

#include "support/TempDir.h"
#include "tool/Errors.h"
#include "tool/formats/Formats.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>

namespace cubes::tool {

/// A file that is refused, and the message.
struct BadFile {
    std::string name;
    std::string content;
    std::string message;
};

inline void PrintTo(BadFile const& file, std::ostream* stream) {
    *stream << file.name;
}

inline std::string nameOf(testing::TestParamInfo<BadFile> const& info) {
    return info.param.name;
}

/// The message with which `read` refuses a file of this content; empty when it is accepted.
template <typename Read>
std::string refusalOf(std::string const& fileName, std::string const& content, Read const& read) {
    test::TempDir const directory;
    auto const path = directory.file(fileName);
    test::writeFile(path, content);
    try {
        read(path);
        return {};
    } catch (FormatError const& error) {
        return error.what();
    }
}

/// The same for a trip table.
inline std::string refusal(std::string const& fileName, std::string const& content) {
    return refusalOf(fileName, content, [](std::string const& path) { readTripTable(path); });
}

inline TripTable readContent(std::string const& fileName, std::string const& content) {
    test::TempDir const directory;
    test::writeFile(directory.file(fileName), content);
    return readTripTable(directory.file(fileName));
}

}
