#include "store/Quarantine.h"

#include "host/platform/File.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <chrono>
#include <system_error>

namespace cubes::store {

namespace {

constexpr char quarantineName[] = "quarantine";
constexpr char noteExtension[] = ".txt";

std::string noteOn(std::string const& file, std::string const& why) {
    auto const now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now());
    return fmt::format("moved:  {:%Y-%m-%d %H:%M:%S} UTC\nfrom:   {}\nreason: {}\n",
        fmt::gmtime(std::chrono::system_clock::to_time_t(now)), file, why);
}

// The note of a file in the quarantine whose name is free. Creating it takes the name.
platform::File newNote(std::string const& path) {
    for (int number = 1;; ++number) {
        auto const name = number == 1 ? path : path + "." + std::to_string(number);
        if (platform::isPresent(name) || platform::isPresent(name + noteExtension)) continue;
        try {
            return platform::File::createNew(name + noteExtension);
        } catch (std::system_error const& error) {
            if (error.code() != std::errc::file_exists) throw;
        }
    }
}

void moveBeside(platform::File& note, std::string const& file, std::string const& target, std::string const& why) {
    auto const text = noteOn(file, why);
    note.writeAt(0, std::as_bytes(std::span(text)));
    note.flush();
    note.close();
    if (!platform::renameFile(file, target))
        throw std::system_error(make_error_code(std::errc::cross_device_link), "cannot move " + file);
}

}

std::string moveToQuarantine(std::string const& file, std::string const& why) {
    auto const path = platform::toPath(file);
    auto const directory = path.parent_path() / quarantineName;
    if (!platform::createDirectories(platform::fromPath(directory)))
        throw std::system_error(make_error_code(std::errc::not_a_directory),
            "cannot create the directory " + platform::fromPath(directory));
    auto note = newNote(platform::fromPath(directory / path.filename()));
    auto const notePath = note.path();
    auto const target = notePath.substr(0, notePath.size() - (sizeof noteExtension - 1));
    try {
        moveBeside(note, file, target, why);
    } catch (std::system_error const&) {
        note.close();
        platform::discardFile(notePath);
        throw;
    }
    platform::flushDirectory(platform::fromPath(directory));
    platform::flushDirectory(platform::directoryOf(file));
    return target;
}

}
