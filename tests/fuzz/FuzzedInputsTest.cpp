// What the fuzzers start with and what they found, read by every compiler's build.

#include "Target.h"

#include "support/TempDir.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

namespace cubes::fuzz {

namespace fs = std::filesystem;

void PrintTo(Target const& target, std::ostream* out) {
    *out << target.name;
}

namespace {

fs::path folderOf(Target const& target, std::string const& kind) {
    return fs::path(CUBES_FUZZED_INPUTS) / kind / target.name;
}

std::vector<std::string> inputsOf(Target const& target, std::string const& kind) {
    std::vector<std::string> inputs;
    if (!fs::exists(folderOf(target, kind))) return inputs;
    for (auto const& file : fs::directory_iterator(folderOf(target, kind)))
        inputs.push_back(test::readFile(file.path().string()));
    return inputs;
}

std::vector<Target> allTargets() {
    return {targets().begin(), targets().end()};
}

std::vector<Target> targetsThatFailed() {
    auto failed = allTargets();
    std::erase_if(failed, [](Target const& target) { return !fs::exists(folderOf(target, "pinned")); });
    return failed;
}

std::string testName(testing::TestParamInfo<Target> const& target) {
    std::string name = target.param.name;
    std::ranges::replace(name, '-', '_');
    return name;
}

class FuzzedInputs : public testing::TestWithParam<Target> {
protected:
    static void read(std::vector<std::string> const& inputs) {
        for (auto const& input : inputs) EXPECT_NO_THROW(GetParam().read(input)) << testing::PrintToString(input);
    }
    /// What the fuzzer starts with.
    static std::vector<std::string> seeds() {
        auto inputs = inputsOf(GetParam(), "corpus");
        std::ranges::copy(GetParam().seeds(), std::back_inserter(inputs));
        return inputs;
    }
};

TEST_P(FuzzedInputs, ofTheCorpusAreReadOrRefused) {
    EXPECT_FALSE(seeds().empty());
    read(seeds());
}

TEST_P(FuzzedInputs, mayBeEmptyOrCutShort) {
    read({""});
    for (auto const& seed : seeds())
        read({seed.substr(0, seed.size() / 8), seed.substr(0, seed.size() / 2), seed.substr(0, seed.size() - 1)});
}

INSTANTIATE_TEST_SUITE_P(, FuzzedInputs, testing::ValuesIn(allTargets()), testName);

// Only targets of which an input has failed.
class PinnedInputs : public FuzzedInputs {};
GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(PinnedInputs);

TEST_P(PinnedInputs, areReadOrRefused) {
    auto const inputs = inputsOf(GetParam(), "pinned");
    EXPECT_FALSE(inputs.empty());
    read(inputs);
}

INSTANTIATE_TEST_SUITE_P(, PinnedInputs, testing::ValuesIn(targetsThatFailed()), testName);

}
}
