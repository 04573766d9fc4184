#include "support/Process.h"

#include "support/TempDir.h"

#include "support/platform/Shell.h"

namespace cubes::test {

namespace {

std::string quoted(std::string const& word) {
    std::string result = "'";
    for (char const c : word) result += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return result + "'";
}

}

ProcessResult run(std::vector<std::string> const& command) {
    TempDir const directory;
    std::string line;
    for (auto const& word : command) line += quoted(word) + " ";
    line += "</dev/null >" + quoted(directory.file("out")) + " 2>" + quoted(directory.file("err"));
    ProcessResult result;
    result.exitCode = shell(line);
    result.output = readFile(directory.file("out"));
    result.errors = readFile(directory.file("err"));
    return result;
}

ProcessResult runPython(std::string const& program, std::vector<std::string> const& arguments) {
    std::vector<std::string> command = {"/usr/bin/python3", "-c", program};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return run(command);
}

}
