#include "host/project/ProjectFile.h"

#include "host/database/DatabaseUrl.h"
#include "host/platform/Files.h"
#include "host/platform/NarrowText.h"
#include "host/platform/Paths.h"
#include "host/platform/TemporaryFile.h"

#include <cubes/project/TRkProjectException.h>

// The parser asserts what it then checks: a malformed date must not end a program with assertions.
#define TOML_ASSERT(claim) static_cast<void>(0)
#include <toml++/toml.h>

#include <fstream>
#include <iterator>
#include <span>
#include <sstream>
#include <system_error>

namespace cubes::project {

namespace {

struct StorageName {
    char const* name;
    Storage storage;
};
constexpr StorageName storageNames[] = {{"plain", Storage::plain}, {"deflate", Storage::deflate}};

struct DurabilityName {
    char const* name;
    Durability durability;
};
constexpr DurabilityName durabilityNames[] = {{"full", Durability::full}, {"process", Durability::process}};

// Reads the values of one file; errors name the file and the line.
class Reader {
public:
    Reader(std::string directory, toml::table const& table) : directory_(std::move(directory)), table_(table) {}

    // The text of the key, or the fallback.
    std::string text(char const* key, std::string const& fallback) const {
        toml::node const* const node = table_.get(key);
        if (!node) return fallback;
        if (!node->is_string()) fail(*node, std::string("'") + key + "' must be a text");
        std::string const value = platform::fromUtf8(node->as_string()->get());
        if (value.empty()) fail(*node, std::string("'") + key + "' must not be empty");
        return value;
    }

    // The choice that the text of the key names.
    template <typename Name, std::size_t count>
    Name const& choice(char const* key, Name const (&names)[count]) const {
        toml::node const* const node = table_.get(key);
        std::string const value = text(key, names[0].name);
        for (Name const& name : names)
            if (value == name.name) return name;
        fail(*node, std::string("'") + key + "' must be \"" + names[0].name + "\" or \"" + names[1].name +
                        "\", not \"" + value + "\"");
    }

private:
    [[noreturn]] void fail(toml::node const& node, std::string const& reason) const {
        throw TRkProjectException(
            projectFilePath(directory_) + ", line " + std::to_string(node.source().begin.line) + ": " + reason,
            directory_);
    }

    std::string directory_;
    toml::table const& table_;
};

std::string contentOf(std::string const& directory) {
    std::string const path = projectFilePath(directory);
    std::ifstream stream(platform::toPath(path), std::ios::binary);
    if (!stream || !platform::isRegularFile(path))
        throw TRkProjectException(path + " is not a readable file", directory);
    return {std::istreambuf_iterator<char>(stream), {}};
}

toml::table parsed(std::string const& directory) {
    std::string const content = contentOf(directory);
    try {
        return toml::parse(content, projectFilePath(directory));
    } catch (toml::parse_error const& error) {
        throw TRkProjectException(projectFilePath(directory) + ", line " + std::to_string(error.source().begin.line) +
                                      ": " + std::string(error.description()),
            directory);
    }
}

template <typename Name, std::size_t count>
Name const& option(
    char const* what, std::string const& given, Name const (&names)[count], std::string const& directory) {
    if (given.empty()) return names[0];
    for (Name const& name : names)
        if (given == name.name) return name;
    throw TRkProjectException(
        std::string(what) + " must be \"" + names[0].name + "\" or \"" + names[1].name + "\", not \"" + given + "\"",
        directory);
}

template <typename Name, std::size_t count, typename Wanted>
std::string nameOf(Wanted wanted, Wanted Name::*member, Name const (&names)[count]) {
    for (Name const& name : names)
        if (name.*member == wanted) return name.name;
    return names[0].name;
}

toml::table tableOf(ProjectFile const& file) {
    return toml::table{
        {"database", platform::toUtf8(database::withoutPassword(file.database))},
        {"matrix_directory", platform::toUtf8(file.matrixDirectory)},
        {"working_directory", platform::toUtf8(file.workingDirectory)},
        {"storage", nameOf(file.storage.storage, &StorageName::storage, storageNames)},
        {"durability", nameOf(file.storage.durability, &DurabilityName::durability, durabilityNames)},
        {"schema", platform::toUtf8(file.schema)},
    };
}

}

std::string projectFilePath(std::string const& directory) {
    return platform::fromPath(platform::toPath(directory) / "cubes.toml");
}

bool isProject(std::string const& directory) {
    return platform::exists(projectFilePath(directory));
}

ProjectFile projectFileFor(ProjectOptions const& options, std::string const& directory) {
    ProjectFile file;
    if (!options.database.empty()) file.database = options.database;
    if (!options.matrixDirectory.empty()) file.matrixDirectory = options.matrixDirectory;
    if (!options.workingDirectory.empty()) file.workingDirectory = options.workingDirectory;
    file.storage.storage = option("storage", options.storage, storageNames, directory).storage;
    file.storage.durability = option("durability", options.durability, durabilityNames, directory).durability;
    return file;
}

ProjectFile readProjectFile(std::string const& directory) {
    toml::table const table = parsed(directory);
    Reader const reader(directory, table);
    ProjectFile file;
    file.database = reader.text("database", file.database);
    file.matrixDirectory = reader.text("matrix_directory", file.matrixDirectory);
    file.workingDirectory = reader.text("working_directory", file.workingDirectory);
    file.storage.storage = reader.choice("storage", storageNames).storage;
    file.storage.durability = reader.choice("durability", durabilityNames).durability;
    file.schema = reader.text("schema", file.schema);
    return file;
}

void writeProjectFile(ProjectFile const& file, std::string const& directory) {
    std::ostringstream content;
    content << tableOf(file) << '\n';
    std::string const text = content.str();
    try {
        platform::TemporaryFile temporary(projectFilePath(directory));
        temporary.file().writeAt(0, std::as_bytes(std::span(text)));
        temporary.file().flush();
        temporary.publish();
    } catch (std::system_error const& error) {
        throw TRkProjectException(
            "writing " + projectFilePath(directory) + " failed: " + error.code().message(), directory);
    }
}

}
