#include <cubes/text/TRkFString.h>

#include "host/platform/Files.h"
#include "host/platform/Paths.h"

namespace {

constexpr char const* delimiters = "\\/";

std::size_t fileStart(std::string const& path) {
    std::size_t const last = path.find_last_of(delimiters);
    return last == std::string::npos ? 0 : last + 1;
}

// The position of the extension with its point; the end when there is none.
std::size_t extensionStart(std::string const& path) {
    std::size_t const point = path.rfind('.');
    return point == std::string::npos || point < fileStart(path) ? path.size() : point;
}

}

TRkFString::TRkFString(char const* text) : text_(text ? text : "") {}

TRkFString::TRkFString(std::string text) : text_(std::move(text)) {}

TRkFString::TRkFString(TRkString const& text, bool asDirectory) : text_(text.str()) {
    if (asDirectory) *this = Directory(text_);
}

TRkFString::TRkFString(AnsiString const& text, bool asDirectory) : TRkFString(TRkString(text), asDirectory) {}

TRkFString TRkFString::Directory(std::string const& text) {
    if (text.empty()) return {};
    std::size_t const last = text.find_last_not_of(delimiters);
    std::string const bare = last == std::string::npos ? std::string() : text.substr(0, last + 1);
    return TRkFString(bare + cubes::platform::pathDelimiter());
}

TRkString TRkFString::Path() const {
    return TRkString(text_.substr(0, fileStart(text_)));
}

TRkString TRkFString::File() const {
    return TRkString(text_.substr(fileStart(text_)));
}

void TRkFString::SetPath(char const* path) {
    text_ = Directory(path ? path : "").text_ + File().str();
}

void TRkFString::SetName(char const* name) {
    std::size_t const start = fileStart(text_);
    text_.replace(start, extensionStart(text_) - start, name ? name : "");
}

void TRkFString::SetExtension(char const* extension) {
    text_.replace(extensionStart(text_), std::string::npos, extension ? extension : "");
}

TRkString TRkFString::Inside(char const* name) const {
    if (!name || !*name) return TRkString(text_);
    return Path() + name;
}

bool TRkFString::Exists(char const* name) const {
    return cubes::platform::exists(Inside(name).str());
}

bool TRkFString::MkDir(char const* name) const {
    return cubes::platform::createDirectories(Inside(name).str());
}

bool TRkFString::RmDir(bool withContent, char const* name) const {
    return cubes::platform::removeDirectory(Inside(name).str(), withContent);
}

bool TRkFString::CopyTo(char const* target, bool overwrite) const {
    return target && cubes::platform::copy(text_, target, overwrite);
}

bool TRkFString::RmFile(char const* name) const {
    return cubes::platform::removeFile(Inside(name).str());
}

bool TRkFString::IsSameFile(TRkFString const& other) const {
    return cubes::platform::isSamePath(text_, other.text_);
}
