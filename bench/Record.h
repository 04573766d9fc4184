#pragma once

#include <array>
#include <memory>
#include <string>
#include <vector>

namespace bench {

/// What a list of entries holds of each row.
struct Record {
    std::array<short, 14> numbers{};
    std::string filename;
};

using Records = std::vector<std::unique_ptr<Record>>;

}
