// What the fuzzers start with and what they found, read by every compiler's build.

#include "Target.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

namespace cubes::fuzz {

namespace fs = std::filesystem;

void PrintTo(Target const& target, std::ostream* out) {
    *out << target.name;
}

namespace {

class FuzzedInputs : public testing::TestWithParam<Target> {
protected:
    static void read(std::vector<std::string> const& inputs) {
        for (auto const& input : inputs) EXPECT_NO_THROW(GetParam().read(input)) << testing::PrintToString(input);
    }
    static std::vector<std::string> inputsIn(std::string const& folder) {
        fs::path const files = fs::path(CUBES_FUZZED_INPUTS) / folder / GetParam().name;
        std::vector<std::string> inputs;
        if (!fs::exists(files)) return inputs;
        for (auto const& file : fs::directory_iterator(files)) inputs.push_back(test::readFile(file.path().string()));
        return inputs;
    }
};

TEST_P(FuzzedInputs, ofTheCorpusAreReadOrRefused) {
    auto const stored = inputsIn("corpus");
    auto const made = GetParam().seeds();
    EXPECT_FALSE(stored.empty() && made.empty());
    read(stored);
    read(made);
}

TEST_P(FuzzedInputs, thatOnceFailedAreReadOrRefused) {
    read(inputsIn("pinned"));
}

TEST_P(FuzzedInputs, mayBeEmptyOrCutShort) {
    read({""});
    for (auto const& seed : GetParam().seeds())
        read({seed.substr(0, seed.size() / 8), seed.substr(0, seed.size() / 2), seed.substr(0, seed.size() - 1)});
}

INSTANTIATE_TEST_SUITE_P(, FuzzedInputs, testing::ValuesIn(targets().begin(), targets().end()), [](auto const& target) {
    std::string name = target.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
});

}
}
