#include "tool/Output.h"

#include "tool/Errors.h"
#include "tool/Terminal.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

namespace cubes::tool {

namespace {

// File names need not be UTF-8, JSON must be.
std::string dumped(Json const& json) {
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + "\n";
}

template <typename Shown>
std::string textIn(Form form, Shown const& shown) {
    return form == Form::json ? dumped(shown.asJson()) : shown.asText();
}

bool written(std::string const& text) {
    return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() && std::fflush(stdout) == 0;
}

}

void Output::show(Table const& table) {
    add(textIn(form_, table));
}

void Output::show(Record const& record) {
    add(textIn(form_, record));
}

void Output::show(Json const& value) {
    add(dumped(value));
}

void Output::write() const {
    if (written(text_) || readerWentAway()) return;
    throw Failure(fmt::format("standard output: {}", std::strerror(errno)));
}

}
