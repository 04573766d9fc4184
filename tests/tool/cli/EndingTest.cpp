// How the tool ends: interrupted, and without a standard output. What it prints on a terminal, and who may read its
// files.

#include "ToolSession.h"

#include <gtest/gtest.h>

#include <csignal>
#include <string>

namespace {

using namespace cubes::test;

class Ending : public testing::Test {
protected:
    Ending() {
        session.makeProject();
        session.write("t.csv", "origin,destination,value\n1,1,0.5\n");
        session.write("r.csv", "origin,destination,route,sequence,link,share\n1,2,1,1,10,1\n");
    }

    ToolSession const session{Backend::sqlite};
};

TEST_F(Ending, anImportThatIsInterruptedChangesNothing) {
    // The tool waits for the text when the signal comes.
    session.write("interrupt.py", R"(
import os, signal, subprocess, sys
os.mkfifo("pipe.csv")
tool = subprocess.Popen(["cubes", "import", "pipe.csv", "Base/1/1/1/1"], stderr=subprocess.PIPE, text=True,
                        preexec_fn=lambda: signal.signal(signal.SIGINT, signal.SIG_DFL))
with open("pipe.csv", "w") as pipe:
    tool.send_signal(int(sys.argv[1]))
    pipe.write("origin,destination,value\n1,1,5\n")
print(tool.wait(), tool.stderr.read(), end="")
)");
    for (int const signal : {SIGINT, SIGTERM}) {
        auto const number = std::to_string(signal);
        EXPECT_EQ(session.run("/usr/bin/python3 interrupt.py " + number + "; rm pipe.csv").output,
            std::to_string(128 + signal) +
                " cubes: cannot import pipe.csv into Base/1/1/1/1: interrupted; nothing was changed\n");
    }
    EXPECT_EQ(session.run("cubes list; find . -name '*.cubes-tmp' -o -name '*.odm'").output, "");
}

TEST_F(Ending, aDemoThatIsInterruptedIsRemoved) {
    auto const result =
        session.run("CUBES_DISK=" + session.file("demo") +
                    " CUBES_KILL_AT=100 CUBES_SIGNAL=15 LD_PRELOAD=" CUBES_FAULTY_DISK " cubes demo demo");
    EXPECT_EQ(result.exitCode, 143);
    EXPECT_EQ(result.errors, "cubes: cannot create a demo in demo: interrupted; nothing was changed\n");
    EXPECT_EQ(session.run("ls -A demo").output, "");
}

TEST_F(Ending, aCheckThatIsInterruptedPrintsWhatItHasRepaired) {
    session.run("cubes import t.csv Base/1/1/1/1");
    int repaired = 0;
    for (int call = 1; call <= 20; ++call) {
        session.write("matrices/mine.odm", "not a matrix");
        auto const result =
            session.run("CUBES_DISK=" + session.file("matrices") + " CUBES_KILL_AT=" + std::to_string(call) +
                        " CUBES_SIGNAL=15 LD_PRELOAD=" CUBES_FAULTY_DISK " cubes check --repair --yes");
        bool const isMoved = session.run("test ! -e matrices/mine.odm").exitCode == 0;
        EXPECT_EQ(isMoved, result.output.find("it was moved to ") != std::string::npos) << result.output;
        if (!isMoved || result.exitCode != 143) continue;
        ++repaired;
        EXPECT_EQ(result.errors, "cubes: cannot check the project: the repair is done, but the check after it was "
                                 "interrupted\n");
    }
    EXPECT_GT(repaired, 0);
}

TEST_F(Ending, aRepairWhoseResultCannotBePrintedReportsThatItIsDone) {
    session.run("cubes import t.csv Base/1/1/1/1");
    session.write("matrices/mine.odm", "not a matrix");
    auto const listed = session.run("cubes check > /dev/full");
    EXPECT_EQ(listed.exitCode, 3);
    EXPECT_EQ(listed.errors, "cubes: cannot check the project: standard output: No space left on device\n");
    auto const repaired = session.run("cubes check --repair --yes > /dev/full");
    EXPECT_EQ(repaired.exitCode, 3);
    EXPECT_EQ(repaired.errors, "cubes: cannot check the project: the repair is done, but the result cannot be printed: "
                               "standard output: No space left on device\n");
}

TEST_F(Ending, withoutAStandardOutputACommandReportsThatItSucceeded) {
    struct {
        char const* output;
        char const* reason;
    } const outputs[] = {{">&-", "Bad file descriptor"}, {">/dev/full", "No space left on device"}};
    for (auto const& [output, reason] : outputs) {
        auto const stored = session.run(std::string("cubes import t.csv Base/1/1/1/1 ") + output);
        EXPECT_EQ(stored.exitCode, 3);
        EXPECT_EQ(stored.errors, std::string("cubes: cannot print the result: standard output: ") + reason +
                                     "; the command succeeded: import t.csv into Base/1/1/1/1\n");
        EXPECT_EQ(session.run("cubes cell Base/1/1/1/1 1 1").output, "0.5\n");
        auto const listed = session.run(std::string("cubes list ") + output);
        EXPECT_EQ(listed.exitCode, 3);
        EXPECT_EQ(listed.errors, std::string("cubes: cannot list the cubes: standard output: ") + reason + "\n");
    }
}

TEST_F(Ending, anEmptyArgumentDoesNotStandForEverything) {
    for (auto const* const command : {"check '' --repair --yes", "entries ''"}) {
        auto const result = session.run(std::string("cubes ") + command);
        EXPECT_EQ(result.exitCode, 2) << command;
        EXPECT_NE(result.errors.find("it is empty"), std::string::npos) << result.errors;
    }
}

TEST_F(Ending, withoutAStandardErrorTheExitCodesAreTheSame) {
    EXPECT_EQ(session.run("cubes show Nope/1/1/1/1 2>&-").exitCode, 1);
    EXPECT_EQ(session.run("cubes 2>&-").exitCode, 2);
    EXPECT_EQ(session.run("cubes import t.csv Base/1/1/1/1 >&- 2>&-").exitCode, 3);
    EXPECT_EQ(session.run("cubes cell Base/1/1/1/1 1 1").output, "0.5\n");
}

TEST_F(Ending, aReaderThatHasGoneIsNoError) {
    session.write("gone.py", R"(
import os, subprocess, sys
reader, writer = os.pipe()
os.close(reader)
tool = subprocess.run(["cubes"] + sys.argv[1:], stdout=writer, stderr=subprocess.PIPE, restore_signals=True)
print(tool.returncode, tool.stderr)
)");
    for (auto const* const command : {"import t.csv Base/1/1/1/1", "list"})
        EXPECT_EQ(session.run(std::string("/usr/bin/python3 gone.py ") + command).output, "0 b''\n") << command;
}

TEST_F(Ending, aNameWithControlCharactersIsRefusedAndPrintedEscaped) {
    for (auto const* const command :
        {"add \"$(printf 'a\\033[2Jb')\"", "import t.csv \"$(printf 'a\\033[2Jb/1/1/1/1')\""}) {
        auto const result = session.run(std::string("cubes ") + command);
        EXPECT_EQ(result.exitCode, 1) << command;
        EXPECT_NE(result.errors.find("a\\x1b[2Jb"), std::string::npos) << result.errors;
        EXPECT_NE(result.errors.find("the name contains control characters"), std::string::npos) << result.errors;
        EXPECT_EQ(result.errors.find('\x1b'), std::string::npos) << result.errors;
    }
    // Another program may have made such a cube.
    session.run("cubes import t.csv Base/1/1/1/1 && cubes tree Base/1/1/1/1");
    session.database().sql("UPDATE " + session.database().table("", "cube") + " SET name = 'a\x1b[2J\nb'");
    for (auto const* const command : {"list", "entries", "tree 1/1/1/1/1", "tree 1/1/1/1/1 --dot", "show 1/1/1/1/1"}) {
        auto const result = session.run(std::string("cubes ") + command);
        EXPECT_EQ(result.exitCode, 0) << command << ": " << result.errors;
        EXPECT_NE(result.output.find("\\x1b[2J"), std::string::npos) << command << ": " << result.output;
        EXPECT_EQ(result.output.find('\x1b'), std::string::npos) << command << ": " << result.output;
    }
}

TEST_F(Ending, filesKeepTheirRightsAndNewOnesFollowTheUmask) {
    struct {
        char const* file;
        char const* command;
    } const files[] = {
        {"matrices/1-1-1-1-1.odm", "cubes import t.csv Base/1/1/1/1"},
        {"results/RouteStorage_Routes/1-1-1-1-1-0.FDB", "cubes routes import r.csv routes/1/1/1/1/1/0"},
        {"out.csv", "cubes export Base/1/1/1/1 out.csv"},
        {"out.omx", "cubes export Base/1/1/1/1 out.omx"},
        {"routes.csv", "cubes routes export routes/1/1/1/1/1/0 routes.csv"},
    };
    for (auto const& [file, command] : files) {
        std::string const again = std::string(command) + " >/dev/null && stat -c %a " + file;
        EXPECT_EQ(session.run("umask 027; " + again).output, "640\n") << command;
        EXPECT_EQ(session.run(std::string("chmod 600 ") + file + "; " + again).output, "600\n") << command;
        EXPECT_EQ(session.run(std::string("umask 077; chmod 664 ") + file + "; " + again).output, "664\n") << command;
    }
}

}
