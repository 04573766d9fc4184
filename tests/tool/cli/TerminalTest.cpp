// Progress is printed on a terminal, and not to a pipe or a file.

#include "ToolSession.h"

namespace {

using namespace cubes::test;

class Terminal : public testing::Test {
protected:
    Terminal() {
        session.makeProject();
        session.write("t.csv", "origin,destination,value\n1,1,0.5\n");
        session.run("cubes import t.csv Base/1/1/1/1");
    }

    /// What a line of the shell prints on a terminal.
    std::string onTerminal(std::string const& line) const {
        session.write("terminal.py", R"(
import os, pty, sys
child, terminal = pty.fork()
if child == 0:
    os.execvp("sh", ["sh", "-c", sys.argv[1]])
try:
    while chunk := os.read(terminal, 4096):
        sys.stdout.buffer.write(chunk)
except OSError:
    pass
)");
        return session.run("/usr/bin/python3 terminal.py '" + line + "'").output;
    }

    ToolSession const session{Backend::sqlite};
};

TEST_F(Terminal, showsProgress) {
    EXPECT_NE(onTerminal("cubes entries >listing").find("listing: 100 %"), std::string::npos);
    EXPECT_NE(session.read("listing").find("Base/1/1/1/1"), std::string::npos);
}

TEST_F(Terminal, showsNoProgressWhenMessagesAreRedirected) {
    EXPECT_EQ(onTerminal("cubes entries >listing 2>messages"), "");
    EXPECT_EQ(session.read("messages"), "");
    EXPECT_EQ(session.run("cubes entries").errors, "");
}

}
