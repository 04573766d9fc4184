#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// The data of each row in a list of entries.
struct Record {
    std::array<short, 14> numbers{};
    std::string filename;
};

using Records = std::vector<std::unique_ptr<Record>>;

}
