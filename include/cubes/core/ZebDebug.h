#pragma once

#include <cubes/Export.h>

#include <string>

/// The debug log of a process: lines appended to "debug.log" in the user's temporary directory and passed to an
/// attached debugger, while the environment variable "ZEB.DEBUG" is "true" in any letter case. Every call reads the
/// variable.
///
/// No operation throws or reports a failure: a message that cannot be written is lost. The calling thread's last system
/// error does not change. Any thread may call any operation.
///
/// Narrow texts are written unchanged, wide ones in the narrow encoding (UTF-8 off Windows). A null
/// text counts as an empty one.
class CUBES_API ZebDebug {
public:
    /// The type of a message: the letter its line starts with. An unknown number counts as mtLog.
    enum TypeOfMessage : int {
        mtLog = 0,     ///< "L "
        mtTrace = 1,   ///< "L " as well
        mtDebug = 2,   ///< "D "
        mtWarning = 3, ///< "W "
        mtError = 4,   ///< "E "
    };

    ZebDebug() = delete;

    /// Whether "ZEB.DEBUG" is "true".
    static bool isDebuggingActive();

    /// Keeps the log open until setDebugOutput closes it; without this each message opens and closes
    /// it. Returns whether it was open already.
    static bool openStream();

    /// The prefix of a line: letter and local time, "E [05-03-2024 14:07:09] ".
    static std::string now(TypeOfMessage type);

    /// Writes one line, prefix and text, and passes the text to an attached debugger.
    static void write(TypeOfMessage type, char const* text);
    static void write(TypeOfMessage type, wchar_t const* text);

    static void writeDebug(char const* text);
    static void writeDebug(std::string const& text);
    static void writeDebug(wchar_t const* text);
    static void writeDebug(std::wstring const& text);

    static void writeError(char const* text);
    static void writeError(std::string const& text);
    static void writeError(wchar_t const* text);
    static void writeError(std::wstring const& text);

    /// Passes the text to the debugger only. Does nothing off Windows.
    static void writeToDebugger(char const* text);
    static void writeToDebugger(wchar_t const* text);

    /// Writes the calling thread's last system error as an error:
    /// "failed with error 2: [No such file or directory]".
    static void writeLastError();

    /// Writes a place in the program: "a.cpp@12 f text". Only the last component of the file is shown (after the last
    /// "\", or the last "/" without a "\"). A null file omits line and function as well; a null text is omitted.
    static void writeTrace(char const* file, int line, char const* function, char const* text);

    /// Writes the call stack under the heading "writeStack", the innermost call first, one line a
    /// frame: number, module, function, source line and address, with "?" for what is unknown.
    static void writeStack();

    /// Writes to another file from now on: a path, relative to the temporary directory; empty
    /// restores "debug.log". Closes the log when it is open.
    static void setDebugOutput(std::string const& name);

    static bool isDebuggerPresent();
    /// Breaks into the attached debugger; does nothing without one.
    static void doDebuggingBreak();
};
