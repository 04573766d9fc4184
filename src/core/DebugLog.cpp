#include "core/DebugLog.h"

#include "host/platform/Paths.h"
#include "host/platform/TemporaryDirectory.h"

#include <memory>

namespace cubes {

namespace {

bool isPath(std::string_view name) {
    return name.find_first_of("/\\") != std::string_view::npos;
}

std::string pathOf(std::string const& name) {
    if (isPath(name)) return platform::withNativeDelimiters(name);
    return platform::temporaryDirectory() + (name.empty() ? "debug.log" : name);
}

}

DebugLog& DebugLog::instance() {
    // Never destroyed: destructors that run while the program ends may still write.
    static DebugLog& log = *std::make_unique<DebugLog>().release();
    return log;
}

bool DebugLog::keepOpen() {
    std::lock_guard const lock(mutex_);
    if (file_) return true;
    file_ = opened();
    return false;
}

bool DebugLog::isOpen() {
    std::lock_guard const lock(mutex_);
    return file_.has_value();
}

void DebugLog::append(std::string_view lines) {
    std::lock_guard const lock(mutex_);
    if (file_) return file_->append(lines);
    if (auto file = opened()) file->append(lines);
}

void DebugLog::redirect(std::string const& name) {
    std::lock_guard const lock(mutex_);
    file_.reset();
    name_ = name;
}

std::optional<platform::LogFile> DebugLog::opened() const {
    return platform::LogFile::open(pathOf(name_));
}

}
