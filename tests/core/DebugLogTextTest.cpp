#include "core/DebugLogTest.h"
#include "host/platform/NarrowText.h"
#include "host/platform/SystemErrors.h"
#include "support/Errand.h"
#include "support/SystemWords.h"

#include <ctime>
#include <functional>
#include <stdexcept>

namespace cubes::test {

namespace {

using Type = ZebDebug::TypeOfMessage;

struct Letter {
    int type;
    char const* letter;
};

// The last ones are no types that are told of.
constexpr Letter letters[] = {{0, "L "}, {1, "L "}, {2, "D "}, {3, "W "}, {4, "E "}, {5, "L "}, {-1, "L "},
    {1000000, "L "}, {-2147483647 - 1, "L "}};

std::string formatted(char const* format, std::tm const& time) {
    char text[64];
    return {text, std::strftime(text, sizeof text, format, &time)};
}

struct Writer {
    char const* name;
    std::function<void()> write;
    char const* line;
};

class Writers : public DebugLogTest, public testing::WithParamInterface<Writer> {};

struct Trace {
    char const* file;
    int line;
    char const* function;
    char const* text;
    char const* message;
};

constexpr Trace traces[] = {
    {"src\\cubes\\a.cpp", 12, "f", nullptr, "a.cpp@12 f"},
    {"src/cubes/a.cpp", 12, "f", nullptr, "a.cpp@12 f"},
    {"a.cpp", 12, "f", nullptr, "a.cpp@12 f"},
    {"c:\\src/cubes\\x/a.cpp", 12, "f", nullptr, "x/a.cpp@12 f"},
    {"src\\cubes/", 1, "f", nullptr, "cubes/@1 f"},
    {"src\\", 1, "f", nullptr, "@1 f"},
    {"", 1, "f", nullptr, "@1 f"},
    {"a.cpp", -1, "f", "text", "a.cpp@-1 f text"},
    {"a.cpp", 12, "f", "", "a.cpp@12 f "},
    {"a.cpp", 12, nullptr, "text", "a.cpp@12  text"},
    {nullptr, 12, "f", "text", " text"},
    {nullptr, 12, "f", nullptr, ""},
};

}

TEST(DebugLogPrefix, startsWithTheLetterOfTheType) {
    for (auto const& [type, letter] : letters)
        EXPECT_EQ(withoutTimes(ZebDebug::now(static_cast<Type>(type))), std::string(letter) + "[time] ") << type;
}

TEST(DebugLogPrefix, tellsTheTimeOfNow) {
    std::time_t const before = std::time(nullptr);
    std::string const prefix = ZebDebug::now(ZebDebug::mtError);
    std::time_t const after = std::time(nullptr);
    bool found = false;
    for (std::time_t time = before; time <= after; ++time)
        found = found || prefix == formatted("E [%d-%m-%Y %H:%M:%S] ", *std::localtime(&time));
    EXPECT_TRUE(found) << prefix;
}

Errand const elsewhere("elsewhere", [](int, std::string const&) {
    Variable const zone("TZ", "CUB-5:30");
    tzset();
    std::time_t const there = std::time(nullptr) + (5 * 60 + 30) * 60;
    std::string const prefix = ZebDebug::now(ZebDebug::mtDebug);
    std::time_t const later = there + 1;
    if (prefix == formatted("D [%d-%m-%Y %H:%M:%S] ", *std::gmtime(&there))) return;
    if (prefix == formatted("D [%d-%m-%Y %H:%M:%S] ", *std::gmtime(&later))) return;
    throw std::runtime_error(prefix);
});

TEST(DebugLogPrefix, tellsTheLocalTime) {
    EXPECT_EQ(1, elsewhere.inProcesses(1));
}

TEST_P(Writers, writeOneLine) {
    GetParam().write();
    EXPECT_EQ(log(), GetParam().line);
}

INSTANTIATE_TEST_SUITE_P(all, Writers,
    testing::Values( //
        Writer{"aWarning", [] { ZebDebug::write(ZebDebug::mtWarning, "text"); }, "W [time] text\n"},
        Writer{"aWideWarning", [] { ZebDebug::write(ZebDebug::mtWarning, L"text"); }, "W [time] text\n"},
        Writer{"anUnknownType", [] { ZebDebug::write(static_cast<Type>(7), "text"); }, "L [time] text\n"},
        Writer{"debugChars", [] { ZebDebug::writeDebug("text"); }, "D [time] text\n"},
        Writer{"debugString", [] { ZebDebug::writeDebug(std::string("text")); }, "D [time] text\n"},
        Writer{"debugWideChars", [] { ZebDebug::writeDebug(L"text"); }, "D [time] text\n"},
        Writer{"debugWideString", [] { ZebDebug::writeDebug(std::wstring(L"text")); }, "D [time] text\n"},
        Writer{"errorChars", [] { ZebDebug::writeError("text"); }, "E [time] text\n"},
        Writer{"errorString", [] { ZebDebug::writeError(std::string("text")); }, "E [time] text\n"},
        Writer{"errorWideChars", [] { ZebDebug::writeError(L"text"); }, "E [time] text\n"},
        Writer{"errorWideString", [] { ZebDebug::writeError(std::wstring(L"text")); }, "E [time] text\n"},
        Writer{"anEmptyText", [] { ZebDebug::writeDebug(""); }, "D [time] \n"},
        Writer{"aNullText", [] { ZebDebug::writeDebug(static_cast<char const*>(nullptr)); }, "D [time] \n"},
        Writer{"aWideNullText", [] { ZebDebug::writeError(static_cast<wchar_t const*>(nullptr)); }, "E [time] \n"},
        Writer{"bytesAsTheyAre", [] { ZebDebug::writeDebug("\xFC%s\t\xC3\xBC"); }, "D [time] \xFC%s\t\xC3\xBC\n"},
        Writer{"aTextOfTwoLinesAsItIs", [] { ZebDebug::writeDebug("one\ntwo"); }, "D [time] one\ntwo\n"},
        Writer{"aStringUpToItsNul", [] { ZebDebug::writeDebug(std::string("a\0b", 3)); }, "D [time] a\n"},
        Writer{"aWideStringUpToItsNul", [] { ZebDebug::writeError(std::wstring(L"a\0b", 3)); }, "E [time] a\n"}),
    [](auto const& writer) { return writer.param.name; });

TEST_F(DebugLogTest, writesWideTextInTheNarrowEncoding) {
    ZebDebug::writeDebug(L"Z\u00FCrich \u2192 \U0001F68B");
    EXPECT_EQ(log(), "D [time] " + platform::fromUtf8("Z\xC3\xBCrich \xE2\x86\x92 \xF0\x9F\x9A\x8B") + "\n");
}

TEST_F(DebugLogTest, writesAVeryLongTextWhole) {
    std::string const text(3'000'000, 'x');
    ZebDebug::writeDebug(text);
    EXPECT_TRUE(readText(path()).substr(23) == " " + text + "\n");
}

TEST_F(DebugLogTest, tracesFileLineFunctionAndText) {
    std::string expected;
    for (auto const& [file, line, function, text, message] : traces) {
        ZebDebug::writeTrace(file, line, function, text);
        expected += std::string("L [time] ") + message + "\n";
    }
    EXPECT_EQ(log(), expected);
}

TEST_F(DebugLogTest, tellsTheLastSystemError) {
    for (std::uint32_t const code : {2u, 0x1FFFFFFFu}) {
        platform::setLastError(code);
        ZebDebug::writeLastError();
    }
    EXPECT_EQ(log(),
        "E [time] failed with error 2: [" + noSuchFileSentence() + "]\nE [time] failed with error 536870911: []\n");
}

TEST_F(DebugLogTest, writesNothingOfItToTheDebuggersOutput) {
    ZebDebug::writeToDebugger("text");
    ZebDebug::writeToDebugger(L"text");
    ZebDebug::writeToDebugger(static_cast<char const*>(nullptr));
    EXPECT_EQ(log(), "(none)");
}

}
