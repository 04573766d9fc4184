// The tool's output: its bytes, and the behaviour when nobody reads it.

#include "ToolSession.h"

namespace {

using namespace cubes::test;

class Results : public testing::Test {
protected:
    Results() {
        session.makeProject();
        session.write("t.csv", "origin,destination,value\n1,1,0.5\n");
        session.run("cubes import t.csv Base/1/1/1/1");
    }

    ToolSession const session{Backend::sqlite};
};

TEST_F(Results, endWithoutAMessageWhenTheirReaderExits) {
    session.write("reader.py", R"(
import os, subprocess, sys
for restored in (True, False):
    reading, writing = os.pipe()
    os.close(reading)
    tool = subprocess.run(["cubes", "entries"], stdout=writing, stderr=subprocess.PIPE, restore_signals=restored)
    os.close(writing)
    sys.stdout.buffer.write(b"errors: " + tool.stderr + b"\n")
)");
    EXPECT_EQ(session.run("/usr/bin/python3 reader.py").output, "errors: \nerrors: \n");
}

TEST_F(Results, haveTheSameLineEndsOnEverySystem) {
    for (char const* const command : {"cubes entries", "cubes list --json", "cubes --help", "cubes nonsense"}) {
        auto const result = session.run(command);
        EXPECT_NE(result.output + result.errors, "") << command;
        EXPECT_EQ((result.output + result.errors).find('\r'), std::string::npos) << command;
    }
}

TEST_F(Results, causeAnErrorWhenTheyCannotBeWritten) {
    auto const result = session.run("cubes entries >/dev/full");
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.errors, "cubes: cannot list the entries: standard output: No space left on device\n");
}

}
