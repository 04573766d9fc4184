#include "ToolSession.h"

#include "support/SharedData.h"
#include "support/SystemMessages.h"
#include "support/platform/Shell.h"

#include <filesystem>
#include <sstream>
#include <stdexcept>

namespace cubes::test {

namespace fs = std::filesystem;

namespace {

std::string replaced(std::string text, std::string const& what, std::string const& by) {
    for (auto at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size()))
        text.replace(at, what.size(), by);
    return text;
}

std::string headed(std::string const& text, std::string const& head) {
    std::istringstream lines(text);
    std::string result;
    for (std::string line; std::getline(lines, line);) result += head + line + "\n";
    return result;
}

std::string textOf(Rows const& rows) {
    std::string text;
    for (auto const& row : rows) {
        for (auto const& cell : row) text += cell + "|";
        text += "\n";
    }
    return text;
}

// Of files that are compared by their bytes; a database file changes when it is only opened.
std::string contentOf(fs::path const& file) {
    auto const kind = file.extension();
    return fs::is_regular_file(file) && (kind == ".odm" || kind == ".toml") ? readFile(file.string()) : "";
}

// The superuser may read every file.
char const* const withoutPrivileges = "AS_ANYBODY=; [ $(id -u) != 0 ] || AS_ANYBODY='" CUBES_AS_ANYBODY "'; ";

}

ToolSession::ToolSession(Backend backend) : database_(backend) {}

ProcessResult ToolSession::run(std::string const& line) const {
    return test::run({"env", "-u", "CUBES_DATABASE", "DATABASE=" + database_.url(), "DATA=" + sharedData(""),
        "SERVER_PORT=" + (database_.backend() == Backend::postgres ? postgresPort() : std::string()), "sh", "-c",
        std::string(withoutPrivileges) + "PATH='" CUBES_TOOL_DIRECTORY "':$PATH; cd '" + directory_.str() + "' && " +
            line});
}

std::string ToolSession::shown(std::string const& line) const {
    auto const result = run(line);
    std::string text = result.output + headed(result.errors, "! ");
    if (result.exitCode != 0) text += "[" + std::to_string(result.exitCode) + "]\n";
    text = replaced(withPathsOfTheShell(text), CUBES_TOOL_NAME, "cubes");
    for (std::string const directory : {"matrices/", "results/"})
        text = replaced(text, nativePath(directory), directory);
    text = replaced(text, noSuchFile(), "No such file or directory");
    text = replaced(text, withPathsOfTheShell(database_.url()), "<DATABASE>");
    return replaced(text, withPathsOfTheShell(directory_.str()), "<DIR>");
}

void ToolSession::makeProject() const {
    auto const result = run("cubes init . --database \"$DATABASE\"");
    if (result.exitCode != 0) throw std::runtime_error(result.errors);
}

std::string ToolSession::state() const {
    std::string text = listing(directory_.str());
    for (auto const& entry : fs::recursive_directory_iterator(directory_.str())) text += contentOf(entry.path());
    return text + textOf(database_.sql(
                      "SELECT cubenr, 0, 0, 0, 0, 0, name FROM " + database_.table("", "cube") +
                      " UNION ALL SELECT cubenr, purpose, mode, time, \"user\", \"usageCounter\", filename FROM " +
                      database_.table("public", "cube4data1") + " ORDER BY 1, 2, 3, 4, 5, 6, 7"));
}

}
