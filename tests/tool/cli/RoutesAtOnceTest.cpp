// Two processes store routes in one entry at the same time, and one of them fails.

#include "ToolSession.h"

#include <optional>

namespace {

using namespace cubes::test;

constexpr int routes = 2000;

std::string manyRoutes() {
    std::string text = "origin,destination,route,sequence,link,share\n";
    for (int i = 1; i <= routes; ++i) text += "1," + std::to_string(i) + ",1,1,7,1\n";
    return text;
}

class RoutesAtOnce : public BackendTest {
protected:
    void SetUp() override {
        BackendTest::SetUp();
        if (IsSkipped() || HasFatalFailure()) return;
        session_.emplace(backend());
        session_->makeProject();
        session_->write("good.csv", manyRoutes());
        session_->write("bad.csv", manyRoutes() + "1,1,2,1,seven,1\n");
        session_->run("mkdir broken && echo no library >broken/routeprovider64.dll");
    }

    ProcessResult run(std::string const& line) const { return session_->run(line); }

    /// Runs both at the same time and returns their exit codes, one per line.
    std::string codesOf(std::string const& first, std::string const& second) const {
        return run("{ { " + first + "; echo $? >a; } >first 2>&1 & { " + second +
                   "; echo $? >b; } >second 2>&1 & wait; cat a b; }")
            .output;
    }

    std::optional<ToolSession> session_;
};

CUBES_BOTH_BACKENDS(RoutesAtOnce);

// One failing process is refused before it starts, the other after it has added the entry's row.
constexpr char const* failing[] = {
    "cubes routes import bad.csv ",
    "CUBES_PROVIDER_PATH=$PWD/broken cubes routes import good.csv ",
};

TEST_P(RoutesAtOnce, areThoseOfTheOtherProcessOrNone) {
    int iteration = 0;
    for (char const* const command : failing)
        for (int round = 1; round <= 4; ++round) {
            auto const entry = "routes/1/1/1/1/1/" + std::to_string(++iteration);
            auto const codes = codesOf("cubes routes import good.csv " + entry, command + entry);
            auto const shown = run("cubes routes show " + entry);
            auto const messages = codes + session_->read("first") + session_->read("second") + shown.errors;
            if (codes == "0\n3\n") {
                EXPECT_NE(shown.output.find("routes         " + std::to_string(routes) + "\n"), std::string::npos)
                    << messages;
                continue;
            }
            // Each holds the file's lock in turn: the other one fails.
            EXPECT_EQ(codes, "3\n3\n") << messages;
            EXPECT_NE(session_->read("first").find("locked"), std::string::npos) << messages;
            EXPECT_EQ(shown.exitCode, 1) << messages;
            EXPECT_EQ(session_->state().find("1-1-1-1-1-" + std::to_string(iteration) + ".FDB"), std::string::npos);
        }
    EXPECT_EQ(run("cubes entries").output.find("missing"), std::string::npos);
}

}
