#pragma once

#include <cubes/Export.h>

#include <string>

/// The debug log of a process: lines appended to "debug.log" in the user's temporary directory and
/// echoed to an attached debugger, while the environment variable "ZEB.DEBUG" is "true" (in any
/// letter case). The variable is asked anew by every call.
///
/// Nothing here throws or reports a failure: what can't be written is not written, and the calling
/// thread's last system error stays as it was. Any thread may call any operation, and several
/// processes may write to one log: each message arrives whole.
///
/// Narrow texts are written as they are, wide ones in the narrow encoding (UTF-8 off Windows). A
/// null text counts as an empty one.
class CUBES_API ZebDebug {
public:
    /// What a line is about: the letter it starts with. Any number may be cast in and counts as mtLog.
    enum TypeOfMessage : int {
        mtLog = 0,     ///< "L "
        mtTrace = 1,   ///< "L " as well
        mtDebug = 2,   ///< "D "
        mtWarning = 3, ///< "W "
        mtError = 4,   ///< "E "
    };

    ZebDebug() = delete;

    /// Whether "ZEB.DEBUG" says "true".
    static bool isDebuggingActive();

    /// Keeps the log open, until setDebugOutput closes it; otherwise each message opens and closes
    /// it. Gives true when it was open already; false when it was opened now, could not be opened,
    /// or is not active.
    static bool openStream();

    /// What a line starts with: the letter and the local time, "E [05-03-2024 14:07:09] ".
    static std::string now(TypeOfMessage type);

    /// Writes one line: prefix and text. An attached debugger gets the text.
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

    /// Hands the text to the debugger's output and not to the log. Does nothing off Windows.
    static void writeToDebugger(char const* text);
    static void writeToDebugger(wchar_t const* text);

    /// Writes the calling thread's last system error as an error:
    /// "failed with error 2: [No such file or directory]".
    static void writeLastError();

    /// Writes where the program is: "a.cpp@12 f text". Of the file only the part behind the last
    /// "\" is shown, or behind the last "/" when there is no "\". Without a file there is neither
    /// line nor function; the text may be null.
    static void writeTrace(char const* file, int line, char const* function, char const* text);

    /// Writes the call stack under the heading "writeStack", the caller first, a line for each frame:
    /// number, module, function, source line and address, with "?" for what is not known.
    static void writeStack();

    /// From now on the log is `name`: a path when there is a "/" or "\" in it, otherwise a file in
    /// the temporary directory; "debug.log" again when it is empty. Closes the log when it is open.
    static void setDebugOutput(std::string const& name);

    static bool isDebuggerPresent();
    /// Stops in the attached debugger; does nothing without one.
    static void doDebuggingBreak();
};
