#include "store/Quarantine.h"

#include "host/platform/File.h"
#include "host/platform/Files.h"
#include "host/platform/Paths.h"

#include <fmt/chrono.h>
#include <fmt/format.h>

#include <chrono>
#include <optional>
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

// A new file; nothing when the name is taken.
std::optional<platform::File> newFile(std::string const& path) {
    try {
        return platform::File::createNew(path);
    } catch (std::system_error const& error) {
        if (error.code() == std::errc::file_exists) return std::nullopt;
        throw;
    }
}

/// A place in the quarantine: the name of the file and that of its note, both taken by empty files. The destructor
/// removes them unless they are used.
class Place {
public:
    // Delegates, so that the destructor runs when it throws.
    explicit Place(std::string const& wanted) : Place() {
        for (int number = 1; !note_; ++number) {
            path_ = number == 1 ? wanted : wanted + "." + std::to_string(number);
            if (!newFile(path_)) continue;
            isTaken_ = true;
            note_ = newFile(path_ + noteExtension);
            if (!note_) release();
        }
    }
    ~Place() {
        if (isTaken_) release();
    }
    Place(Place const&) = delete;
    Place& operator=(Place const&) = delete;

    std::string const& path() const noexcept { return path_; }
    void writeNote(std::string const& text) {
        note_->writeAt(0, std::as_bytes(std::span(text)));
        note_->flush();
        note_->finish();
    }
    void use() noexcept { isTaken_ = false; }

private:
    Place() = default;
    void release() noexcept {
        if (note_) note_->close();
        if (note_) platform::discardFile(path_ + noteExtension);
        platform::discardFile(path_);
        isTaken_ = false;
    }

    std::string path_;
    std::optional<platform::File> note_;
    bool isTaken_ = false;
};

void rename(std::string const& from, std::string const& to) {
    if (!platform::renameFile(from, to))
        throw std::system_error(make_error_code(std::errc::cross_device_link), "cannot move " + from);
}

// Makes the new name survive a power failure before the old one may be forgotten; takes it back when that fails.
void moveFlushed(std::string const& file, std::string const& target) {
    rename(file, target);
    try {
        platform::flushDirectory(platform::directoryOf(target));
        platform::flushDirectory(platform::directoryOf(file));
    } catch (std::system_error const&) {
        rename(target, file);
        throw;
    }
}

}

std::string moveToQuarantine(std::string const& file, std::string const& why) {
    auto const path = platform::toPath(file);
    auto const directory = path.parent_path() / quarantineName;
    if (!platform::createDirectories(platform::fromPath(directory)))
        throw std::system_error(make_error_code(std::errc::not_a_directory),
            "cannot create the directory " + platform::fromPath(directory));
    Place place(platform::fromPath(directory / path.filename()));
    place.writeNote(noteOn(file, why));
    if (!platform::isLink(file)) platform::flushFile(file);
    moveFlushed(file, place.path());
    place.use();
    return place.path();
}

}
