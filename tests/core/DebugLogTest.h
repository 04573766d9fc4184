#pragma once

#include <cubes/core/ZebDebug.h>

#include "support/TempDir.h"
#include "support/Variable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>

namespace cubes::test {

/// Whether the text begins as the pattern tells, in which "9" stands for any digit.
inline bool beginsLike(std::string_view text, std::string_view pattern) {
    auto const fits = [](char wanted, char found) {
        return wanted == '9' ? found >= '0' && found <= '9' : wanted == found;
    };
    return text.size() >= pattern.size() && std::equal(pattern.begin(), pattern.end(), text.begin(), fits);
}

/// The text with "[time]" for each time that is written as it should be.
inline std::string withoutTimes(std::string_view text) {
    static constexpr std::string_view time = "[99-99-9999 99:99:99]";
    std::string result;
    while (!text.empty()) {
        bool const isTime = beginsLike(text, time);
        result += isTime ? "[time]" : text.substr(0, 1);
        text.remove_prefix(isTime ? time.size() : 1);
    }
    return result;
}

/// The text of a log with "[time]" for its times and "\n" for its line ends; "(none)" when there is no such file.
inline std::string logIn(std::string const& path) {
    return std::filesystem::exists(path) ? withoutTimes(readText(path)) : "(none)";
}

/// An active log in a temporary directory of its own.
class DebugLogTest : public testing::Test {
protected:
    ~DebugLogTest() override {
        active_.set("true");
        ZebDebug::setDebugOutput("");
    }

    std::string path() const { return directory_.file("debug.log"); }
    std::string log() const { return logIn(path()); }

    // Made before the variable that would lead it elsewhere.
    TempDir directory_;
    Variable active_{"ZEB.DEBUG", "true"};
    Variable temporary_{Variable::temporaryDirectory, directory_.str()};
};

}
