// Sessions with the tool as a user sees them: a line that begins with "$ " is a command, followed by its output, see
// ToolSession::shown. Lines that begin with "#" are comments.

#include "ToolSession.h"

#include <filesystem>
#include <fstream>
#include <sstream>

namespace {

using namespace cubes::test;
namespace fs = std::filesystem;

std::vector<std::string> transcripts() {
    std::vector<std::string> names;
    for (auto const& file : fs::directory_iterator(CUBES_TRANSCRIPTS)) names.push_back(file.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

bool isRemark(std::string const& line) {
    return line.starts_with("#");
}

/// The transcript with the current output of the tool.
std::string played(std::string const& transcript, ToolSession const& session) {
    std::istringstream lines(transcript);
    std::string text;
    for (std::string line; std::getline(lines, line);) {
        bool const isCommand = line.starts_with("$ ");
        if (isCommand || isRemark(line)) text += line + "\n";
        if (isCommand) text += session.shown(line.substr(2));
    }
    return text;
}

using Parameters = std::tuple<std::string, Backend>;

class Transcript : public testing::TestWithParam<Parameters> {
protected:
    void SetUp() override { requireBackend(std::get<Backend>(GetParam())); }
};

TEST_P(Transcript, agreesWithTheToolsOutput) {
    auto const& [name, backend] = GetParam();
    auto const path = fs::path(CUBES_TRANSCRIPTS) / (name + ".txt");
    auto const written = readFile(path.string());
    ToolSession const session(backend);
    auto const now = played(written, session);
    if (std::getenv("CUBES_REWRITE_TRANSCRIPTS")) writeFile(path.string(), now);
    EXPECT_EQ(now, written);
}

INSTANTIATE_TEST_SUITE_P(, Transcript,
    testing::Combine(testing::ValuesIn(transcripts()), testing::Values(Backend::sqlite, Backend::postgres)),
    [](auto const& parameter) {
        return std::get<0>(parameter.param) + "_" + backendName(std::get<1>(parameter.param));
    });

}
