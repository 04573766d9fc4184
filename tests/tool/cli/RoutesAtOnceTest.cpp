// Two store routes in one place at once, and one of them fails.

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

    /// Runs both at once and gives their exit codes, a line each.
    std::string codesOf(std::string const& first, std::string const& second) const {
        return run("{ { " + first + "; echo $? >a; } >first 2>&1 & { " + second +
                   "; echo $? >b; } >second 2>&1 & wait; cat a b; }")
            .output;
    }

    std::optional<ToolSession> session_;
};

CUBES_BOTH_BACKENDS(RoutesAtOnce);

// One of those that fail is refused before it has begun, the other when it has added the entry's row.
constexpr char const* failing[] = {
    "cubes routes import bad.csv ",
    "CUBES_PROVIDER_PATH=$PWD/broken cubes routes import good.csv ",
};

TEST_P(RoutesAtOnce, leaveWhatTheOtherHasStoredOrNothing) {
    int iteration = 0;
    for (char const* const command : failing)
        for (int round = 1; round <= 4; ++round) {
            auto const entry = "routes/1/1/1/1/1/" + std::to_string(++iteration);
            auto const codes = codesOf("cubes routes import good.csv " + entry, command + entry);
            auto const shown = run("cubes routes show " + entry);
            auto const said = codes + session_->read("first") + session_->read("second") + shown.errors;
            if (codes == "0\n3\n") {
                EXPECT_NE(shown.output.find("routes         " + std::to_string(routes) + "\n"), std::string::npos)
                    << said;
                continue;
            }
            // Both hold the file's lock in turn: whoever finds it held gives up.
            EXPECT_EQ(codes, "3\n3\n") << said;
            EXPECT_NE(session_->read("first").find("locked"), std::string::npos) << said;
            EXPECT_EQ(shown.exitCode, 1) << said;
            EXPECT_EQ(session_->state().find("1-1-1-1-1-" + std::to_string(iteration) + ".FDB"), std::string::npos);
        }
    EXPECT_EQ(run("cubes entries").output.find("missing"), std::string::npos);
}

}
