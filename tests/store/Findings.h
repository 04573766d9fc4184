#pragma once

#include <cubes/store/EntryCheck.h>

#include <set>
#include <string>
#include <vector>

namespace cubes::test {

/// "missingFile Trips/1/1/1/1", one per line and sorted.
inline std::string textOf(std::vector<Finding> const& findings) {
    std::multiset<std::string> lines;
    for (auto const& finding : findings)
        lines.insert(
            std::string(infoOf(finding.problem).name) + (finding.text.empty() ? "" : " ") + finding.text + "\n");
    std::string text;
    for (auto const& line : lines) text += line;
    return text;
}

}
